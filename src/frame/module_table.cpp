// The table of module records: 64 slots, process-wide, with no lock; registration belongs to
// start-up or to one thread.
#include <zel/frame.h>

#include "frame/own_module.h"
#include "frame/resource_lookup.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

ZelModuleDef* table[ZEL_MODULE_SLOTS];

// A slot taken by a ZelInitModule that is still starting its sub-modules. A callback that
// registers another module then cannot be given the same slot, and readers pass over it.
ZelModuleDef reserved;

constexpr int kAllRows = 0x7FFFFFFF;

bool Holds(int slot) { return table[slot] && table[slot] != &reserved; }

int FirstFree() {
    for (int slot = 0; slot < ZEL_MODULE_SLOTS; ++slot)
        if (!table[slot]) return slot;
    return -1;
}

int NextHeld(int from) {
    for (int slot = from; slot < ZEL_MODULE_SLOTS; ++slot)
        if (Holds(slot)) return slot;
    return -1;
}

void CallRows(ZelModuleDef* module, LONG request, int rowCount) {
    for (int row = 0; row < rowCount && module->subModules[row].id != -1; ++row)
        if (ZelSubModuleFunc func = module->subModules[row].func)
            func(module, module->subModules[row].id, request, nullptr, 0);
}

// Loads the module's resource file. False after it has set error 9.
bool LoadModuleResource(ZelModuleDef* module) {
    WCHAR name[MAX_PATH] = {};
    if (module->resourceName) {
        wcsncpy(name, module->resourceName, MAX_PATH - 1);
        name[MAX_PATH - 1] = 0;
    }
    if (!ZelGetResourcePath(module->moduleHandle, name)) return false;
    module->resourceHandle = ZelLoadResource(name);
    if (module->resourceHandle) return true;
    ZelSetResourceMissingError(module->moduleHandle);
    return false;
}

void ShowFailure() {
    ZelErrorDetail detail;
    detail.text[0] = 0;
    ZelGetErrorDetail(&detail);
    if (detail.text[0]) MessageBoxW(nullptr, detail.text, u"Initialization Error", MB_ICONHAND);
}

}  // namespace

BOOL ZelInitModule(ZelModuleDef* module) {
    if (!module) return FALSE;
    const int slot = FirstFree();
    if (slot < 0) return FALSE;
    const bool own = module == &g_zelOwnModule;
    table[slot] = own ? module : &reserved;

    if (module->moduleId >= ZEL_MODULE_ID_ASSIGNED) module->moduleId = ZEL_MODULE_ID_ASSIGNED + slot;

    bool failed = false;
    int failingRow = -1;
    if (!(module->flags & ZEL_MODULE_KEEP_RESOURCE) && module->moduleHandle && !module->resourceHandle)
        failed = !LoadModuleResource(module);
    if (!failed && module->subModules) {
        for (int row = 0; module->subModules[row].id != -1; ++row) {
            ZelSubModuleFunc func = module->subModules[row].func;
            if (func && func(module, module->subModules[row].id, ZEL_SUBMODULE_START, nullptr, 0) == -1) {
                failingRow = row;
                failed = true;
                break;
            }
        }
    }
    if (!failed) {
        table[slot] = module;
        return TRUE;
    }

    // Roll back: end the rows that started, in the order they started, and give back the rest.
    if (failingRow > 0) CallRows(module, ZEL_SUBMODULE_END, failingRow);
    if (!(module->flags & ZEL_MODULE_KEEP_RESOURCE) && module->resourceHandle) {
        ZelFreeResource(module->resourceHandle);
        module->resourceHandle = nullptr;
    }
    if (!own) table[slot] = nullptr;
    module->flags |= ZEL_MODULE_INIT_FAILED;
    if (!(module->flags & ZEL_MODULE_NO_FAILURE_BOX)) ShowFailure();
    return FALSE;
}

void ZelExitModule(ZelModuleDef* module) {
    if (!module) return;
    int slot = 0;
    while (slot < ZEL_MODULE_SLOTS && table[slot] != module) ++slot;
    if (slot == ZEL_MODULE_SLOTS) return;
    if (module->flags & ZEL_MODULE_INIT_FAILED) return;
    table[slot] = nullptr;
    if (module->subModules) CallRows(module, ZEL_SUBMODULE_END, kAllRows);
    if (!(module->flags & ZEL_MODULE_KEEP_RESOURCE) && module->resourceHandle) {
        ZelFreeResource(module->resourceHandle);
        module->resourceHandle = nullptr;
    }
}

ZelModuleDef* ZelGetModuleDef(LONG moduleId) {
    for (int slot = 0; slot < ZEL_MODULE_SLOTS; ++slot)
        if (Holds(slot) && table[slot]->moduleId == moduleId) return table[slot];
    return nullptr;
}

ZelSubModuleFunc ZelGetSubModuleFunc(ZelModuleDef* module, LONG subModuleId) {
    if (!module || !module->subModules) return nullptr;
    for (const ZelSubModuleEntry* row = module->subModules; row->id != -1; ++row)
        if (row->id == subModuleId) return row->func;
    return nullptr;
}

int ZelGetFirstModule() { return NextHeld(0) + 1; }

ZelModuleDef* ZelGetNextModule(int* position) {
    // A position of 0, or one that no longer holds a record, gives null and ends the walk.
    if (!position || *position < 1 || *position > ZEL_MODULE_SLOTS || !Holds(*position - 1)) {
        if (position) *position = 0;
        return nullptr;
    }
    ZelModuleDef* module = table[*position - 1];
    *position = NextHeld(*position) + 1;
    return module;
}
