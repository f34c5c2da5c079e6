// Registers a module, routes an error to it and unregisters: the interface works from outside.
#include <zel/zel.h>

#include <cstdio>

namespace {
LONG Describe(ZelModuleDef*, LONG, LONG request, ZelErrorDetail* detail, DWORD) {
    if (request == ZEL_SUBMODULE_DESCRIBE) {
        detail->text[0] = u'o';
        detail->text[1] = u'k';
        detail->text[2] = 0;
    }
    return 0;
}
ZelSubModuleEntry rows[] = {{1, Describe}, {-1, nullptr}};
ZelModuleDef module = {u"Consumer", nullptr, nullptr, nullptr, ZEL_MODULE_ID_ASSIGNED, 0, rows};
}  // namespace

int main() {
    if (!ZelInitModule(&module)) return 1;
    ZelSetError(ZEL_MAKE_ERROR(module.moduleId, 1, 3));
    ZelErrorDetail detail;
    if (!ZelGetErrorDetail(&detail) || detail.text[0] != u'o') return 2;
    ZelExitModule(&module);
    puts("consumer ok");
    return 0;
}
