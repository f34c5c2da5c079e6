// The library's entry point: what runs at load and unload and at the end of each thread.
#include <clocale>

#include <zel/frame.h>

#include "frame/attach_steps.h"
#include "frame/own_module.h"
#include "frame/thread_data.h"
#include "platform/win32.h"

namespace {

ZelSubModuleEntry ownSubModules[] = {{0, ZelBaseSubModuleFunc}, {-1, nullptr}};

// The language that the suite seeds for users of any other system language.
constexpr DWORD kSeedLanguage = 0x411;
constexpr REGSAM kAllAccess = 0xF003F;

// Seeds the user locale: a volatile key with LCID 0x411, written only by the attach that created
// the key. False when the value could not be written, which ends the attach.
bool SeedUserLocale() {
    if (GetUserDefaultLangID() == kSeedLanguage) return true;
    HKEY key = nullptr;
    DWORD disposition = 0;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\Morvalis\\Global Settings\\User Locales", 0, nullptr,
                        REG_OPTION_VOLATILE, kAllAccess, nullptr, &key, &disposition) != ERROR_SUCCESS)
        return true;
    bool written = true;
    if (disposition == REG_CREATED_NEW_KEY) {
        const DWORD value = kSeedLanguage;
        written = RegSetValueExA(key, "LCID", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value) ==
                  ERROR_SUCCESS;
    }
    RegCloseKey(key);
    return written;
}

void ProcessAttach(HINSTANCE module) {
    OutputDebugStringA("DllMain() : DLL_PROCESS_ATTACH -  ZelBase Start!\n");
    if (!SeedUserLocale()) return;
    g_zelOwnModule.moduleHandle = module;
    g_zelThreadSlot = TlsAlloc();
    if (g_zelThreadSlot == TLS_OUT_OF_INDEXES) return;
    setlocale(LC_ALL, "");
    ZelRegisterDefaultPaths();
    ZelInitModule(&g_zelOwnModule);
}

void ReleaseThreadSlotAndPaths() {
    if (g_zelThreadSlot == TLS_OUT_OF_INDEXES) return;
    ZelFreeThreadData();
    TlsFree(g_zelThreadSlot);
    // Code that runs after the detach finds no slot rather than a freed one.
    g_zelThreadSlot = TLS_OUT_OF_INDEXES;
    ZelFreePathTable();
}

void ProcessDetach() {
    OutputDebugStringA("DllMain() : DLL_PROCESS_DETACH -  ZelBase End!\n");
    ZelExitModule(&g_zelOwnModule);
    UnloadUnicodeTbl();
    ReleaseThreadSlotAndPaths();
}

}  // namespace

ZelModuleDef g_zelOwnModule = {u"ZelModKT.ZelBase", nullptr, nullptr, nullptr, 0, 0, ownSubModules};

BOOL DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    switch (reason) {
        case DLL_PROCESS_ATTACH: ProcessAttach(module); break;
        case DLL_PROCESS_DETACH: ProcessDetach(); break;
        case DLL_THREAD_DETACH: ZelFreeThreadData(); break;
        default: break;
    }
    return TRUE;
}

void LoadZelBL70DLL() {}
