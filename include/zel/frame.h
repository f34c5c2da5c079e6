// The module frame: module records and their table, per-thread errors and warnings.
#ifndef ZEL_FRAME_H
#define ZEL_FRAME_H

#include <zel/wintypes.h>

struct tagZELMODULEDEF;
struct tagZELERRORDETAIL;

// Requests of a sub-module callback.
#define ZEL_SUBMODULE_START 0
#define ZEL_SUBMODULE_END 1
#define ZEL_SUBMODULE_DESCRIBE 2

// Module record flags.
#define ZEL_MODULE_KEEP_RESOURCE 0x00000001UL   // the registry neither loads nor frees resourceHandle
#define ZEL_MODULE_NO_FAILURE_BOX 0x00000002UL  // no message box when initialisation fails
#define ZEL_MODULE_INIT_FAILED 0x80000000UL     // set by ZelInitModule on failure; never cleared

// Module ids: below this a module brings its own; at or above it the table assigns one.
#define ZEL_MODULE_ID_ASSIGNED 384
#define ZEL_MODULE_SLOTS 64

// The library's own plain error codes.
#define ZEL_ERROR_MESSAGE 1
#define ZEL_ERROR_OUT_OF_MEMORY 2
#define ZEL_ERROR_RESOURCE_MISSING 9
#define ZEL_ERROR_FILE 10

// Error code layout.
#define ZEL_ERROR_SYSTEM_BIT 0x80000000UL
#define ZEL_ERROR_RUNTIME_BIT 0x40000000UL
#define ZEL_MAKE_ERROR(module, submodule, number) \
    ((DWORD)((((DWORD)(module) & 0x1FF) << 19) | (((DWORD)(submodule) & 0x1FF) << 10) | ((DWORD)(number) & 0x3FF)))
#define ZEL_ERROR_MODULE(code) (((DWORD)(code) >> 19) & 0x1FF)
#define ZEL_ERROR_SUBMODULE(code) (((DWORD)(code) >> 10) & 0x1FF)
#define ZEL_ERROR_NUMBER(code) ((DWORD)(code) & 0x3FF)

#define ZEL_ERROR_DATA_SIZE 1024
#define ZEL_ERROR_TEXT_SIZE 260
#define ZEL_WARNING_SLOTS 4

typedef LONG (*ZelSubModuleFunc)(struct tagZELMODULEDEF* module, LONG subModuleId, LONG request,
                                 struct tagZELERRORDETAIL* detail, DWORD reserved);

typedef struct tagZELSUBMODULEENTRY {
    LONG id;  // -1 ends the table
    ZelSubModuleFunc func;
} ZelSubModuleEntry;

typedef struct tagZELMODULEDEF {
    const WCHAR* name;
    const WCHAR* resourceName;
    HMODULE moduleHandle;
    HMODULE resourceHandle;
    LONG moduleId;
    DWORD flags;
    ZelSubModuleEntry* subModules;
} ZelModuleDef;

typedef struct tagZELERRORINFO {
    DWORD code;
    DWORD kind;
    BYTE data[ZEL_ERROR_DATA_SIZE];
} ZelErrorInfo;

typedef struct tagZELERRORDETAIL {
    DWORD code;
    DWORD kind;
    BYTE data[ZEL_ERROR_DATA_SIZE];
    WCHAR text[ZEL_ERROR_TEXT_SIZE];
    WCHAR text2[ZEL_ERROR_TEXT_SIZE];
    DWORD extra;
} ZelErrorDetail;

typedef struct tagZELTHREADDATA {
    ZelErrorInfo error;
    ZelErrorInfo* warnings[ZEL_WARNING_SLOTS];
    DWORD head;
    DWORD tail;
} ZelThreadData;

// Library entry.
ZEL_API void LoadZelBL70DLL();

// Module table.
ZEL_API BOOL ZelInitModule(ZelModuleDef* module);
ZEL_API void ZelExitModule(ZelModuleDef* module);
ZEL_API ZelModuleDef* ZelGetModuleDef(LONG moduleId);
ZEL_API ZelSubModuleFunc ZelGetSubModuleFunc(ZelModuleDef* module, LONG subModuleId);
ZEL_API int ZelGetFirstModule();
ZEL_API ZelModuleDef* ZelGetNextModule(int* position);

// Current error of the calling thread.
ZEL_API DWORD ZelGetError();
ZEL_API void ZelSetError(DWORD code);
ZEL_API void ZelSetErrorEx(DWORD code, DWORD kind, const void* data, DWORD size);
ZEL_API void ZelSetFileError(DWORD fileError, const WCHAR* fileName);
ZEL_API void ZelSetErrorMesg(const WCHAR* text);
ZEL_API void ZelSetErrorMesgID(HMODULE module, UINT stringId);
ZEL_API void ZelClearError();
ZEL_API void ZelStoreError(ZelErrorInfo* block);
ZEL_API void ZelRestoreError(const ZelErrorInfo* block);
ZEL_API BOOL ZelGetErrorDetail(ZelErrorDetail* detail);

// Warning queue of the calling thread.
ZEL_API BOOL ZelSetWarning(DWORD code);
ZEL_API BOOL ZelSetWarningEx(DWORD code, DWORD kind, const void* data, DWORD size);
ZEL_API void ZelSetWarningMesg(const WCHAR* text);
ZEL_API void ZelSetWarningMesgID(HMODULE module, UINT stringId);
ZEL_API DWORD ZelGetWarning(BOOL remove);
ZEL_API BOOL ZelGetWarningDetail(ZelErrorDetail* detail, BOOL remove);
ZEL_API void ZelClearWarning();

// The library's own sub-module: describes the library's error codes.
ZEL_API LONG ZelBaseSubModuleFunc(ZelModuleDef* module, LONG subModuleId, LONG request, ZelErrorDetail* detail,
                                  DWORD reserved);
ZEL_API BOOL ZelFormatBaseError(ZelErrorDetail* detail);

// Resource files and the user's language. A module m.dll keeps its strings in m.KOR, m.ENU ...
// beside it; the language is the suite's user setting first and the system's second.
ZEL_API LCID ZelGetUserLCID();
ZEL_API UINT ZelGetUserCP();  // 0 while no code page is set
// name holds a base name or is empty on entry (260 characters), and the full name on success. On
// failure the calling thread's error is 9 with the module's file name.
ZEL_API BOOL ZelGetResourcePath(HMODULE module, WCHAR* name);
// The extension for a language, or with 0xFFFF for the language of the library's own file.
ZEL_API void ZelGetResourceExt(LANGID language, WCHAR* extension);
ZEL_API HMODULE ZelLoadResource(const WCHAR* name);
ZEL_API BOOL ZelFreeResource(HMODULE resource);
// String id of the module's string table, cut to size - 1 characters, with /uXXXX escapes decoded:
// its length, or 0 and an empty buffer when there is none.
ZEL_API int ZelLoadStringW(HMODULE module, UINT id, WCHAR* buffer, int size);
// From the record's resource file, else from the module itself.
ZEL_API int ZelLoadStringExA(ZelModuleDef* module, UINT id, char* buffer, int size);
ZEL_API int ZelLoadStringExW(ZelModuleDef* module, UINT id, WCHAR* buffer, int size);
ZEL_API BOOL ZelGetLocaleInfo(LCID locale, LCTYPE type, WCHAR* buffer, int size);

// Symbol defines of the installation, the application and the language; the layout direction of
// the library's language.
ZEL_API BOOL ZelIsDefined(const WCHAR* name);
ZEL_API BOOL ZelLayoutIsR2L();

#endif  // ZEL_FRAME_H
