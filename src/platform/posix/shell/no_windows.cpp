// Windows, window classes and dropped files don't exist here: each call gives the Win32 failure
// result and says the call is not implemented.
#include "platform/win32.h"

namespace {

template <typename Result>
Result NotImplemented(Result failure) {
    SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
    return failure;
}

}  // namespace

HWND FindWindowA(LPCSTR, LPCSTR) { return NotImplemented<HWND>(nullptr); }
HWND FindWindowW(LPCWSTR, LPCWSTR) { return NotImplemented<HWND>(nullptr); }
int GetClassNameA(HWND, LPSTR, int) { return NotImplemented(0); }
int GetClassNameW(HWND, LPWSTR, int) { return NotImplemented(0); }
BOOL GetClassInfoA(HINSTANCE, LPCSTR, LPWNDCLASSA) { return NotImplemented<BOOL>(FALSE); }
BOOL GetClassInfoExA(HINSTANCE, LPCSTR, LPWNDCLASSEXA) { return NotImplemented<BOOL>(FALSE); }
UINT DragQueryFileA(HDROP, UINT, LPSTR, UINT) { return NotImplemented(0u); }
UINT DragQueryFileW(HDROP, UINT, LPWSTR, UINT) { return NotImplemented(0u); }
