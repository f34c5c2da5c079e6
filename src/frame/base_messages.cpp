// Texts of the library's own error codes: from the library's resource file, the system's message
// table and the run-time's error texts.
#include <cstring>

#include <zel/codetables.h>
#include <zel/frame.h>

#include "frame/error_block.h"
#include "frame/own_module.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

constexpr int kStringChars = 256;
constexpr size_t kTextChars = ZEL_ERROR_TEXT_SIZE - 1;

// String ids of the library's resource file.
constexpr UINT kStandardMessage = 278;
constexpr UINT kFileNotFound = 279;       // file error 3
constexpr UINT kFileAccessDenied = 280;   // file error 4
constexpr UINT kFileOther = 281;          // any other file error without a system text
constexpr UINT kWrongDisk = 282;          // 0x80070022
constexpr UINT kPlainCodes2To8 = 283;     // codes 2 to 8, in order
constexpr UINT kPlainCodes12To13 = 290;   // codes 12 and 13
constexpr UINT kPlainCodes14To15 = 296;   // codes 14 and 15, and file errors 14 and 15
constexpr UINT kSharingViolation = 298;   // 0x80070020
constexpr UINT kComponentFailure = 299;   // 0x82000001

void LoadString(UINT id, WCHAR* buffer) { ZelLoadStringW(g_zelOwnModule.resourceHandle, id, buffer, kStringChars); }

void SetText(ZelErrorDetail* detail, const WCHAR* text) {
    wcsncpy(detail->text, text, kTextChars);
    detail->text[kTextChars] = 0;
}

void SetString(ZelErrorDetail* detail, UINT id) {
    WCHAR text[kStringChars];
    LoadString(id, text);
    SetText(detail, text);
}

// A resource string used as a format with the file name and the file error.
void SetFileString(ZelErrorDetail* detail, UINT id, const WCHAR* fileName, DWORD fileError) {
    WCHAR format[kStringChars];
    LoadString(id, format);
    if (_snwprintf(detail->text, kTextChars, format, fileName, fileError) < 0) detail->text[kTextChars] = 0;
}

BOOL FormatFileError(ZelErrorDetail* detail) {
    if (detail->kind != 1) return FALSE;
    const DWORD fileError = ZelBlockFileError(detail->data);
    // The block may hold a name written without its terminator within the data: copy it out bounded.
    WCHAR fileName[kZelBlockFileNameChars + 1];
    memcpy(fileName, ZelBlockFileName(detail->data), sizeof fileName - sizeof(WCHAR));
    fileName[kZelBlockFileNameChars] = 0;
    switch (fileError) {
        case 3: SetFileString(detail, kFileNotFound, fileName, fileError); return TRUE;
        case 4: SetFileString(detail, kFileAccessDenied, fileName, fileError); return TRUE;
        case 14: SetFileString(detail, kPlainCodes14To15, fileName, fileError); return TRUE;
        case 15: SetFileString(detail, kPlainCodes14To15 + 1, fileName, fileError); return TRUE;
        default: break;
    }
    detail->text[0] = 0;
    if (fileError & ZEL_ERROR_SYSTEM_BIT) ZelFormatSystemError(fileName, fileError, detail);
    if (!detail->text[0]) SetFileString(detail, kFileOther, fileName, fileError);
    return TRUE;
}

BOOL FormatRuntimeError(ZelErrorDetail* detail) {
    const char* text = strerror(static_cast<int>(detail->code & ~ZEL_ERROR_RUNTIME_BIT));
    if (!text) return FALSE;
    WCHAR wide[ZEL_ERROR_TEXT_SIZE];
    ZelAnsiToUnicode(0, CP_ACP, text, -1, wide, ZEL_ERROR_TEXT_SIZE, 0);
    SetText(detail, wide);
    return TRUE;
}

}  // namespace

LONG ZelBaseSubModuleFunc(ZelModuleDef*, LONG, LONG request, ZelErrorDetail* detail, DWORD) {
    return request == ZEL_SUBMODULE_DESCRIBE ? ZelFormatBaseError(detail) : 0;
}

BOOL ZelFormatBaseError(ZelErrorDetail* detail) {
    if (!detail) return FALSE;
    const DWORD code = detail->code;
    if (code == ZEL_ERROR_MESSAGE) {
        if (detail->kind == 1) {
            // The text may fill the data without a terminator: never read past the block.
            WCHAR text[kZelBlockTextChars + 1];
            memcpy(text, detail->data, sizeof text - sizeof(WCHAR));
            text[kZelBlockTextChars] = 0;
            SetText(detail, text);
            return TRUE;
        }
        if (detail->kind == 2) {
            SetString(detail, kStandardMessage);
            return TRUE;
        }
        return FALSE;
    }
    if (code == ZEL_ERROR_FILE) return FormatFileError(detail);
    if (code == ZEL_ERROR_RESOURCE_MISSING) {
        if (detail->kind == 1) {
            WCHAR fileName[kZelBlockTextChars + 1];
            memcpy(fileName, detail->data, sizeof fileName - sizeof(WCHAR));
            fileName[kZelBlockTextChars] = 0;
            if (_snwprintf(detail->text, kTextChars, u"Resource file for module\n( %s )\nis missing or corrupt.",
                           fileName) < 0)
                detail->text[kTextChars] = 0;
        } else {
            SetText(detail, u"Resource file is missing or corrupt.");
        }
        return TRUE;
    }
    if (code & ZEL_ERROR_SYSTEM_BIT) {
        switch (code) {
            case 0x80070020: SetString(detail, kSharingViolation); return TRUE;
            case 0x80070022: SetString(detail, kWrongDisk); return TRUE;
            case 0x82000001: SetString(detail, kComponentFailure); return TRUE;
            default: return ZelFormatSystemError(nullptr, code, detail);
        }
    }
    if (code & ZEL_ERROR_RUNTIME_BIT) return FormatRuntimeError(detail);
    if (code >= 2 && code <= 8) SetString(detail, kPlainCodes2To8 + (code - 2));
    else if (code == 12 || code == 13) SetString(detail, kPlainCodes12To13 + (code - 12));
    else if (code == 14 || code == 15) SetString(detail, kPlainCodes14To15 + (code - 14));
    return FALSE;
}
