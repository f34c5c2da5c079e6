// zel demo: the library's services on bundled samples.
#include <zel/frame.h>

#include <cstdio>
#include <string>

#include "commands.h"
#include "text.h"

namespace {

// A client module of the demo: two sub-modules, the second of which describes its own errors.
LONG DemoSubModule(ZelModuleDef* module, LONG id, LONG request, ZelErrorDetail* detail, DWORD) {
    switch (request) {
        case 0: printf("  sub-module %d of %s starts\n", id, ToUtf8(module->name).c_str()); return 0;
        case 1: printf("  sub-module %d of %s ends\n", id, ToUtf8(module->name).c_str()); return 0;
        default: break;
    }
    std::u16string text = u"Sample failure number " + FromUtf8(std::to_string(ZEL_ERROR_NUMBER(detail->code)));
    text.copy(detail->text, ZEL_ERROR_TEXT_SIZE - 1);
    detail->text[text.size()] = 0;
    return 0;
}

ZelSubModuleEntry demoRows[] = {{1, DemoSubModule}, {2, DemoSubModule}, {-1, nullptr}};
ZelModuleDef demoModule = {u"Demo.Client", nullptr, nullptr, nullptr, ZEL_MODULE_ID_ASSIGNED, 0, demoRows};

void ShowError(const char* what) {
    ZelErrorDetail detail;
    detail.text[0] = 0;
    ZelGetErrorDetail(&detail);
    printf("  %-28s code %-10s -> \"%s\"\n", what, Hex(ZelGetError()).c_str(), ToUtf8(detail.text).c_str());
}

void ModuleFrame() {
    printf("== Module frame\n");
    for (int position = ZelGetFirstModule(); position != 0;) {
        ZelModuleDef* module = ZelGetNextModule(&position);
        printf("  registered: %s, id %d\n", ToUtf8(module->name).c_str(), module->moduleId);
    }
    printf("  registering Demo.Client, which asks for an id\n");
    if (!ZelInitModule(&demoModule)) {
        printf("  registration failed\n");
        return;
    }
    printf("  Demo.Client has id %d (384 plus its slot)\n", demoModule.moduleId);

    printf("\n== Errors of the calling thread, described by their owners\n");
    ZelSetError(ZEL_MAKE_ERROR(demoModule.moduleId, 2, 7));
    ShowError("Demo.Client, sub-module 2:");
    ZelSetErrorMesg(u"한국어와 日本語 text is carried as it is");
    ShowError("message (code 1, kind 1):");
    const WCHAR fileName[] = u"c:\\suite\\m.dll";
    ZelSetErrorEx(ZEL_ERROR_RESOURCE_MISSING, 1, fileName, sizeof fileName);
    ShowError("resource file missing:");
    ZelErrorInfo saved;
    ZelStoreError(&saved);
    ZelSetError(12345);
    ZelRestoreError(&saved);
    printf("  after store, another error and restore, the code is %s again\n", Hex(ZelGetError()).c_str());

    printf("\n== Warnings: a ring that keeps the newest three\n");
    for (DWORD code = 11; code <= 14; ++code) ZelSetWarning(code);
    printf("  set 11, 12, 13, 14; read back:");
    while (DWORD code = ZelGetWarning(1)) printf(" %u", code);
    printf("\n");

    printf("\n== Unregistering Demo.Client\n");
    ZelExitModule(&demoModule);
}

}  // namespace

int RunDemo(const Args& args) {
    if (!args.empty()) {
        printf("Usage: zel demo\n\nRuns the bundled samples through the library's services and shows the results.\n");
        return args[0] == "--help" ? 0 : 2;
    }
    printf("ZelBL70KT demo\n\n");
    ModuleFrame();
    return 0;
}
