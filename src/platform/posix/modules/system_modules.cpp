// The two system modules that the library binds calls from at run time. They are not files here:
// each has a fixed handle, and its procedures are the platform's own functions, looked up by
// name. ZEL_HIDE_CALLS lets a test take calls away to run the library's fallbacks.
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/win32.h"

namespace {

// The handles are the addresses of these records: distinct from any loader handle, and even, so
// that they never read as data modules.
struct alignas(16) SystemModule {
    const char16_t* name;
    const char16_t* title;  // without the extension
};

const SystemModule kKernel32{u"kernel32.dll", u"kernel32"};
const SystemModule kShell32{u"shell32.dll", u"shell32"};

HMODULE HandleOf(const SystemModule& module) {
    return reinterpret_cast<HMODULE>(const_cast<SystemModule*>(&module));
}

const SystemModule* ModuleOf(HMODULE handle) {
    if (handle == HandleOf(kKernel32)) return &kKernel32;
    if (handle == HandleOf(kShell32)) return &kShell32;
    return nullptr;
}

// The address comes from a function: a cast of a function's address is no constant, and the table
// must be constant so that it is there before anything of the library runs.
struct Procedure {
    const char* name;
    FARPROC (*address)();
};

// void (*)() converts to and from any function pointer type without complaint.
template <typename Function>
FARPROC AsProc(Function* function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(function));
}

#define ZEL_PROCEDURE(name) Procedure{#name, [] { return AsProc(&name); }}

constexpr Procedure kKernel32Procedures[] = {
    ZEL_PROCEDURE(GetLongPathNameA), ZEL_PROCEDURE(GetLongPathNameW), ZEL_PROCEDURE(GetShortPathNameA),
    ZEL_PROCEDURE(GetShortPathNameW), ZEL_PROCEDURE(IsWow64Process),  ZEL_PROCEDURE(GetVersionExA),
};

constexpr Procedure kShell32Procedures[] = {
    ZEL_PROCEDURE(SHGetSpecialFolderPathA), ZEL_PROCEDURE(SHGetSpecialFolderPathW),
    ZEL_PROCEDURE(SHGetSettings),           ZEL_PROCEDURE(SHGetKnownFolderPath),
    ZEL_PROCEDURE(SHGetKnownFolderIDList),  ZEL_PROCEDURE(SHFileOperationA),
    ZEL_PROCEDURE(SHFileOperationW),        ZEL_PROCEDURE(ShellExecuteA),
    ZEL_PROCEDURE(ShellExecuteW),           ZEL_PROCEDURE(SHGetPathFromIDListA),
    ZEL_PROCEDURE(SHGetPathFromIDListW),    ZEL_PROCEDURE(SHGetDesktopFolder),
    ZEL_PROCEDURE(SHGetMalloc),             ZEL_PROCEDURE(SHGetFileInfoA),
    ZEL_PROCEDURE(SHGetFileInfoW),          ZEL_PROCEDURE(SHGetDataFromIDListA),
    ZEL_PROCEDURE(SHGetDataFromIDListW),
};

#undef ZEL_PROCEDURE

char16_t LowerAscii(char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c - u'A' + u'a') : c; }

bool SameName(const std::u16string& wanted, const char16_t* known) {
    size_t i = 0;
    for (; i < wanted.size() && known[i]; ++i)
        if (LowerAscii(wanted[i]) != known[i]) return false;
    return i == wanted.size() && !known[i];
}

// Whether name appears in the comma-separated list of ZEL_HIDE_CALLS (exact spelling).
bool IsHidden(const char* name) {
    const char* list = getenv("ZEL_HIDE_CALLS");
    if (!list) return false;
    const size_t length = strlen(name);
    for (const char* cursor = list;;) {
        const char* comma = strchr(cursor, ',');
        const size_t itemLength = comma ? static_cast<size_t>(comma - cursor) : strlen(cursor);
        if (itemLength == length && strncmp(cursor, name, length) == 0) return true;
        if (!comma) return false;
        cursor = comma + 1;
    }
}

}  // namespace

HMODULE ZelPlatformSystemModule(const std::u16string& name) {
    for (const SystemModule* module : {&kKernel32, &kShell32})
        if (SameName(name, module->name) || SameName(name, module->title)) return HandleOf(*module);
    return nullptr;
}

LPCWSTR ZelPlatformSystemModuleName(HMODULE module) {
    const SystemModule* known = ModuleOf(module);
    return known ? known->name : nullptr;
}

FARPROC ZelPlatformSystemProc(HMODULE module, LPCSTR name) {
    const SystemModule* known = ModuleOf(module);
    // An ordinal (a value below 0x10000 in place of the name) finds nothing here.
    if (!known || !name || reinterpret_cast<uintptr_t>(name) < 0x10000 || IsHidden(name)) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    const bool kernel = known == &kKernel32;
    const Procedure* first = kernel ? std::begin(kKernel32Procedures) : std::begin(kShell32Procedures);
    const Procedure* last = kernel ? std::end(kKernel32Procedures) : std::end(kShell32Procedures);
    for (const Procedure* p = first; p != last; ++p)
        if (strcmp(p->name, name) == 0) return p->address();
    SetLastError(ERROR_PROC_NOT_FOUND);
    return nullptr;
}
