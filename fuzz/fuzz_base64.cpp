// Random bytes as Base64 text: decoding must stay inside exactly sized buffers, agree between an
// allocated and a caller's buffer, and what it gives must encode and decode back to itself. The
// bytes are also encoded into a buffer of exactly the documented size and decoded back.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <zel/strings.h>

#include "fuzz_check.h"
#include "strings/wstr.h"

namespace {

// Characters of the encoded form of n bytes, without the terminator.
size_t EncodedLength(size_t n) { return (n + 2) / 3 * 4 + n / 54; }

void RoundTrip(const char* bytes, size_t size) {
    const size_t length = EncodedLength(size);
    auto text = std::make_unique<char[]>(length + 1);
    char* out = text.get();
    Check(ZelAsciiToBase64(bytes, static_cast<int>(size), &out) == static_cast<int>(length));
    Check(out == text.get() && std::strlen(out) == length);

    char* decoded = nullptr;
    const int n = ZelBase64ToAscii(text.get(), &decoded);
    Check(n == static_cast<int>(size));
    if (size) Check(decoded && std::memcmp(decoded, bytes, size) == 0);
    std::free(decoded);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 1 << 16) return 0;
    auto text = std::make_unique<char[]>(size + 1);
    std::memcpy(text.get(), data, size);
    text[size] = '\0';

    char* allocated = nullptr;
    const int n = ZelBase64ToAscii(text.get(), &allocated);
    Check(n >= 0 && (n > 0) == (allocated != nullptr));
    if (n > 0) {
        auto own = std::make_unique<char[]>(static_cast<size_t>(n));
        char* out = own.get();
        Check(ZelBase64ToAscii(text.get(), &out) == n && out == own.get());
        Check(std::memcmp(own.get(), allocated, static_cast<size_t>(n)) == 0);
        RoundTrip(allocated, static_cast<size_t>(n));
    }
    std::free(allocated);

    RoundTrip(reinterpret_cast<const char*>(data), size);
    return 0;
}
