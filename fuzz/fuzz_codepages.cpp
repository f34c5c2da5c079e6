// Random bytes through MultiByteToWideChar for several code pages, and the result (and the raw
// bytes read as 16-bit units) back through WideCharToMultiByte, with exact and short buffers.
// Every buffer is allocated at exactly the size given, so a write past it is caught; the size
// query must agree with the conversion, and one unit less must fail cleanly.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "platform/win32.h"

#include "fuzz_check.h"

namespace {

constexpr UINT kCodePages[] = {CP_UTF8, 949, 932, 936, 950, 1361, 1252, 437, 54936, 20127, 1200, 12001, CP_UTF7};

std::u16string ToWide(UINT codePage, DWORD flags, const char* bytes, int length) {
    int size = MultiByteToWideChar(codePage, flags, bytes, length, nullptr, 0);
    if (size == 0) {
        Check(GetLastError() == ERROR_NO_UNICODE_TRANSLATION);
        return {};
    }
    auto exact = std::make_unique<WCHAR[]>(static_cast<size_t>(size));
    Check(MultiByteToWideChar(codePage, flags, bytes, length, exact.get(), size) == size);
    if (size > 1) {
        auto shorter = std::make_unique<WCHAR[]>(static_cast<size_t>(size - 1));
        Check(MultiByteToWideChar(codePage, flags, bytes, length, shorter.get(), size - 1) == 0);
        Check(GetLastError() == ERROR_INSUFFICIENT_BUFFER);
    }
    return std::u16string(exact.get(), static_cast<size_t>(size));
}

void ToBytes(UINT codePage, DWORD flags, const std::u16string& text, bool withDefault) {
    if (text.empty()) return;
    const int length = static_cast<int>(text.size());
    const bool unicode = codePage == CP_UTF8 || codePage == CP_UTF7 || codePage == 1200 || codePage == 12001;
    BOOL used = FALSE;
    LPBOOL usedArg = withDefault && !unicode ? &used : nullptr;
    LPCSTR defaultArg = withDefault && !unicode ? "\xA1\xA1" : nullptr;

    int size = WideCharToMultiByte(codePage, flags, text.data(), length, nullptr, 0, defaultArg, usedArg);
    if (size == 0) {
        Check(GetLastError() == ERROR_NO_UNICODE_TRANSLATION);
        return;
    }
    auto exact = std::make_unique<char[]>(static_cast<size_t>(size));
    Check(WideCharToMultiByte(codePage, flags, text.data(), length, exact.get(), size, defaultArg, usedArg) == size);
    if (size > 1) {
        auto shorter = std::make_unique<char[]>(static_cast<size_t>(size - 1));
        Check(WideCharToMultiByte(codePage, flags, text.data(), length, shorter.get(), size - 1, defaultArg,
                                  usedArg) == 0);
        Check(GetLastError() == ERROR_INSUFFICIENT_BUFFER);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const UINT codePage = kCodePages[data[0] % std::size(kCodePages)];
    const bool strict = (data[1] & 1) && codePage != CP_UTF7;  // UTF-7 takes no flags
    const bool withDefault = data[1] & 2;
    data += 2;
    size -= 2;
    if (size == 0 || size > 4096) return 0;

    // The input in a buffer of its own size, so that reading past it is caught too.
    auto bytes = std::make_unique<char[]>(size);
    std::memcpy(bytes.get(), data, size);
    const int length = static_cast<int>(size);

    std::u16string wide = ToWide(codePage, strict ? MB_ERR_INVALID_CHARS : 0, bytes.get(), length);
    const bool utf = codePage == CP_UTF8;
    ToBytes(codePage, utf && strict ? WC_ERR_INVALID_CHARS : 0, wide, withDefault);

    // The same bytes as 16-bit units: lone surrogates and anything else.
    std::u16string units(size / 2, u'\0');
    std::memcpy(units.data(), data, units.size() * sizeof(WCHAR));
    ToBytes(codePage, utf && strict ? WC_ERR_INVALID_CHARS : 0, units, withDefault);

    // A terminated source: the count includes the terminator. (The 16- and 32-bit code pages end
    // at a zero unit of their own size, which these bytes need not hold.)
    if (codePage != 1200 && codePage != 12001) {
        std::string terminated(bytes.get(), size);
        terminated.push_back('\0');
        int withTerminator = MultiByteToWideChar(codePage, 0, terminated.c_str(), -1, nullptr, 0);
        Check(withTerminator > 0);
        auto exact = std::make_unique<WCHAR[]>(static_cast<size_t>(withTerminator));
        Check(MultiByteToWideChar(codePage, 0, terminated.c_str(), -1, exact.get(), withTerminator) ==
              withTerminator);
        Check(exact[static_cast<size_t>(withTerminator) - 1] == 0);
    }
    return 0;
}
