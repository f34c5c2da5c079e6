// The ANSI registry calls: each converts its names, classes and, for the text types REG_SZ,
// REG_EXPAND_SZ and REG_MULTI_SZ, its data through the ANSI code page and calls its wide twin.
// Sizes given back are those of the ANSI form.
#include <algorithm>
#include <cstring>

#include "platform/posix/registry/registry_tree.h"
#include "platform/win32.h"

namespace {

bool IsTextType(DWORD type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

// Counted conversions: every unit or byte converts, terminators included, and nothing is added.
std::vector<BYTE> WideBytesToAnsi(const std::vector<BYTE>& bytes) {
    std::u16string units(bytes.size() / sizeof(WCHAR), 0);
    memcpy(units.data(), bytes.data(), units.size() * sizeof(WCHAR));
    if (units.empty()) return {};
    int count = static_cast<int>(units.size());
    int needed = WideCharToMultiByte(CP_ACP, 0, units.data(), count, nullptr, 0, nullptr, nullptr);
    std::vector<BYTE> out(static_cast<size_t>(std::max(needed, 0)));
    if (needed > 0)
        WideCharToMultiByte(CP_ACP, 0, units.data(), count, reinterpret_cast<LPSTR>(out.data()), needed, nullptr,
                            nullptr);
    return out;
}

std::u16string AnsiBytesToWide(const BYTE* bytes, DWORD size) {
    if (!size) return {};
    auto text = reinterpret_cast<LPCSTR>(bytes);
    int count = static_cast<int>(size);
    int needed = MultiByteToWideChar(CP_ACP, 0, text, count, nullptr, 0);
    std::u16string out(static_cast<size_t>(std::max(needed, 0)), 0);
    if (needed > 0) MultiByteToWideChar(CP_ACP, 0, text, count, out.data(), needed);
    return out;
}

LPWSTR Writable(ZelAnsiArg& arg) { return arg.null ? nullptr : arg.text.data(); }

// Gives data of the ANSI form back in the caller's places, with the system's rules for short buffers.
LONG GiveData(const std::vector<BYTE>& out, LPBYTE data, LPDWORD dataSize) {
    if (data) {
        if (out.size() > *dataSize) {
            *dataSize = static_cast<DWORD>(out.size());
            return ERROR_MORE_DATA;
        }
        std::copy(out.begin(), out.end(), data);
    }
    if (dataSize) *dataSize = static_cast<DWORD>(out.size());
    return ERROR_SUCCESS;
}

// Calls read until the buffer holds the whole of what read gives (a value may grow between calls).
template <typename Read>
LONG ReadWhole(std::vector<BYTE>& bytes, Read read) {
    DWORD size = 0;
    LONG status = read(nullptr, &size);
    while (status == ERROR_SUCCESS && size > 0) {
        bytes.resize(size);
        status = read(bytes.data(), &size);
        if (status == ERROR_MORE_DATA) status = ERROR_SUCCESS;
        else if (status == ERROR_SUCCESS && size <= bytes.size()) break;
    }
    if (status == ERROR_SUCCESS) bytes.resize(size);
    return status;
}

}  // namespace

LONG RegOpenKeyA(HKEY key, LPCSTR subKey, PHKEY result) {
    return RegOpenKeyW(key, ZelPlatformAnsiToWide(subKey).get(), result);
}

LONG RegOpenKeyExA(HKEY key, LPCSTR subKey, DWORD options, REGSAM access, PHKEY result) {
    return RegOpenKeyExW(key, ZelPlatformAnsiToWide(subKey).get(), options, access, result);
}

LONG RegCreateKeyA(HKEY key, LPCSTR subKey, PHKEY result) {
    return RegCreateKeyW(key, ZelPlatformAnsiToWide(subKey).get(), result);
}

LONG RegCreateKeyExA(HKEY key, LPCSTR subKey, DWORD reserved, LPSTR keyClass, DWORD options, REGSAM access,
                     const SECURITY_ATTRIBUTES* security, PHKEY result, LPDWORD disposition) {
    ZelAnsiArg wideClass = ZelPlatformAnsiToWide(keyClass);
    return RegCreateKeyExW(key, ZelPlatformAnsiToWide(subKey).get(), reserved, Writable(wideClass), options, access,
                           security, result, disposition);
}

LONG RegDeleteKeyA(HKEY key, LPCSTR subKey) { return RegDeleteKeyW(key, ZelPlatformAnsiToWide(subKey).get()); }

LONG RegDeleteValueA(HKEY key, LPCSTR valueName) {
    return RegDeleteValueW(key, ZelPlatformAnsiToWide(valueName).get());
}

LONG RegSaveKeyA(HKEY key, LPCSTR fileName, const SECURITY_ATTRIBUTES* security) {
    return RegSaveKeyW(key, ZelPlatformAnsiToWide(fileName).get(), security);
}

LONG RegEnumKeyA(HKEY key, DWORD index, LPSTR name, DWORD nameSize) {
    if (!name) return RegEnumKeyW(key, index, nullptr, nameSize);
    WCHAR wide[zelreg::kMaxKeyNameLength + 1];
    LONG status = RegEnumKeyW(key, index, wide, static_cast<DWORD>(std::size(wide)));
    if (status != ERROR_SUCCESS) return status;
    std::string ansi = ZelPlatformWideToAnsi(wide);
    if (ansi.size() + 1 > nameSize) return ERROR_MORE_DATA;
    memcpy(name, ansi.c_str(), ansi.size() + 1);
    return ERROR_SUCCESS;
}

LONG RegEnumValueA(HKEY key, DWORD index, LPSTR valueName, LPDWORD valueNameSize, LPDWORD reserved, LPDWORD type,
                   LPBYTE data, LPDWORD dataSize) {
    if (reserved || !valueName || !valueNameSize || (data && !dataSize)) return ERROR_INVALID_PARAMETER;
    std::u16string wideName(zelreg::kMaxValueNameLength + 1, 0);
    DWORD wideType = REG_NONE;
    std::vector<BYTE> bytes;
    LONG status = ReadWhole(bytes, [&](LPBYTE buffer, LPDWORD size) {
        DWORD nameSize = static_cast<DWORD>(wideName.size());
        return RegEnumValueW(key, index, wideName.data(), &nameSize, nullptr, &wideType, buffer, size);
    });
    if (status != ERROR_SUCCESS) return status;
    std::string name = ZelPlatformWideToAnsi(wideName.c_str());
    std::vector<BYTE> out = IsTextType(wideType) ? WideBytesToAnsi(bytes) : std::move(bytes);
    if (type) *type = wideType;
    if (name.size() + 1 > *valueNameSize || (data && out.size() > *dataSize)) {
        if (dataSize) *dataSize = static_cast<DWORD>(out.size());
        return ERROR_MORE_DATA;
    }
    memcpy(valueName, name.c_str(), name.size() + 1);
    *valueNameSize = static_cast<DWORD>(name.size());
    return GiveData(out, data, dataSize);
}

LONG RegQueryValueExA(HKEY key, LPCSTR valueName, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD dataSize) {
    if (reserved || (data && !dataSize)) return ERROR_INVALID_PARAMETER;
    ZelAnsiArg name = ZelPlatformAnsiToWide(valueName);
    DWORD wideType = REG_NONE;
    std::vector<BYTE> bytes;
    LONG status = ReadWhole(bytes, [&](LPBYTE buffer, LPDWORD size) {
        return RegQueryValueExW(key, name.get(), nullptr, &wideType, buffer, size);
    });
    if (status != ERROR_SUCCESS) return status;
    if (type) *type = wideType;
    return GiveData(IsTextType(wideType) ? WideBytesToAnsi(bytes) : bytes, data, dataSize);
}

LONG RegSetValueExA(HKEY key, LPCSTR valueName, DWORD reserved, DWORD type, const BYTE* data, DWORD dataSize) {
    ZelAnsiArg name = ZelPlatformAnsiToWide(valueName);
    if (!IsTextType(type) || !data) return RegSetValueExW(key, name.get(), reserved, type, data, dataSize);
    std::u16string wide = AnsiBytesToWide(data, dataSize);
    return RegSetValueExW(key, name.get(), reserved, type, reinterpret_cast<const BYTE*>(wide.data()),
                          static_cast<DWORD>(wide.size() * sizeof(WCHAR)));
}

LONG RegQueryValueA(HKEY key, LPCSTR subKey, LPSTR data, PLONG dataSize) {
    if (data && !dataSize) return ERROR_INVALID_PARAMETER;
    ZelAnsiArg wideSubKey = ZelPlatformAnsiToWide(subKey);
    std::vector<BYTE> bytes;
    LONG status = ReadWhole(bytes, [&](LPBYTE buffer, LPDWORD size) {
        LONG wideSize = static_cast<LONG>(*size);
        LONG result = RegQueryValueW(key, wideSubKey.get(), reinterpret_cast<LPWSTR>(buffer), &wideSize);
        *size = static_cast<DWORD>(wideSize);
        return result;
    });
    if (status != ERROR_SUCCESS) return status;
    std::vector<BYTE> out = WideBytesToAnsi(bytes);
    if (data && static_cast<LONG>(out.size()) > *dataSize) {
        *dataSize = static_cast<LONG>(out.size());
        return ERROR_MORE_DATA;
    }
    if (data) std::copy(out.begin(), out.end(), data);
    if (dataSize) *dataSize = static_cast<LONG>(out.size());
    return ERROR_SUCCESS;
}

LONG RegSetValueA(HKEY key, LPCSTR subKey, DWORD type, LPCSTR data, DWORD dataSize) {
    return RegSetValueW(key, ZelPlatformAnsiToWide(subKey).get(), type, ZelPlatformAnsiToWide(data).get(), dataSize);
}

LONG RegQueryInfoKeyA(HKEY key, LPSTR keyClass, LPDWORD classSize, LPDWORD reserved, LPDWORD subKeys,
                      LPDWORD maxSubKeyLen, LPDWORD maxClassLen, LPDWORD values, LPDWORD maxValueNameLen,
                      LPDWORD maxValueLen, LPDWORD securityDescriptorSize, PFILETIME lastWriteTime) {
    if (reserved || (keyClass && !classSize)) return ERROR_INVALID_PARAMETER;
    // The counts and longest lengths are the wide ones, as the system gives them.
    DWORD wideClassSize = 0;
    LONG status = RegQueryInfoKeyW(key, nullptr, &wideClassSize, nullptr, subKeys, maxSubKeyLen, maxClassLen, values,
                                   maxValueNameLen, maxValueLen, securityDescriptorSize, lastWriteTime);
    if (status != ERROR_SUCCESS || !classSize) return status;
    std::u16string wideClass(wideClassSize + 1, 0);
    DWORD capacity = wideClassSize + 1;
    status = RegQueryInfoKeyW(key, wideClass.data(), &capacity, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                              nullptr, nullptr, nullptr);
    if (status != ERROR_SUCCESS) return status;
    std::string ansi = ZelPlatformWideToAnsi(wideClass.c_str());
    if (keyClass) {
        if (ansi.size() + 1 > *classSize) {
            *classSize = static_cast<DWORD>(ansi.size());
            return ERROR_MORE_DATA;
        }
        memcpy(keyClass, ansi.c_str(), ansi.size() + 1);
    }
    *classSize = static_cast<DWORD>(ansi.size());
    return ERROR_SUCCESS;
}
