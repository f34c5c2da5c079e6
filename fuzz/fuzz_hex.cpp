// Random input through the hexadecimal forms. As 16-bit units, the escapes are decoded into an
// exactly sized buffer and in place, which must agree; the units also go to the "U+" form and back.
// As bytes, the input is read as a "U+" string into a buffer of exactly the documented size.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <zel/strings.h>

#include "fuzz_check.h"
#include "strings/wstr.h"

namespace {

void Units(const uint8_t* data, size_t size) {
    const size_t count = size / 2;
    auto text = std::make_unique<WCHAR[]>(count + 1);
    std::memcpy(text.get(), data, count * 2);
    text[count] = 0;
    const size_t n = wcslen(text.get());

    auto out = std::make_unique<WCHAR[]>(n + 1);
    const int result = ZelHexChrToUniStr(text.get(), out.get());
    // An escape of zero decodes to a zero unit inside the result, so the terminator is looked for
    // at the result's end rather than by length.
    Check(result >= 0 && static_cast<size_t>(result) <= n && out[static_cast<size_t>(result)] == 0);

    auto inPlace = std::make_unique<WCHAR[]>(n + 1);
    std::memcpy(inPlace.get(), text.get(), (n + 1) * sizeof(WCHAR));
    Check(ZelHexChrToUniStr(inPlace.get(), inPlace.get()) == result);
    Check(std::memcmp(inPlace.get(), out.get(), (static_cast<size_t>(result) + 1) * sizeof(WCHAR)) == 0);

    const size_t hexSize = 4 * n + 3;
    auto hex = std::make_unique<char[]>(hexSize);
    Check(ZelUniStrToHexStr(text.get(), hex.get(), static_cast<int>(hexSize)) == static_cast<int>(hexSize - 1));
    auto tooSmall = std::make_unique<char[]>(hexSize - 1);
    Check(ZelUniStrToHexStr(text.get(), tooSmall.get(), static_cast<int>(hexSize - 1)) == 0 && !tooSmall[0]);
    if (n >= 1) {
        auto back = std::make_unique<WCHAR[]>(n + 1);
        Check(ZelHexStrToUniStr(hex.get(), back.get()) == static_cast<int>(n));
        Check(std::memcmp(back.get(), text.get(), (n + 1) * sizeof(WCHAR)) == 0);
    }
}

void Bytes(const uint8_t* data, size_t size) {
    auto text = std::make_unique<char[]>(size + 1);
    std::memcpy(text.get(), data, size);
    text[size] = '\0';
    const size_t length = std::strlen(text.get());
    auto out = std::make_unique<WCHAR[]>(length / 4 + 1);
    const int result = ZelHexStrToUniStr(text.get(), out.get());
    const bool wellFormed = length >= 6 && text[0] == 'U' && text[1] == '+';
    Check(result == (wellFormed ? static_cast<int>(length / 4) : 0));
    if (wellFormed) Check(out[length / 4] == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 1 << 16) return 0;
    Units(data, size);
    Bytes(data, size);
    return 0;
}
