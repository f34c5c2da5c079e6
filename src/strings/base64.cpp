// Base64 for byte data: lines of 72 characters, each ended by a line feed, and = for padding.
#include <zel/strings.h>

#include <climits>
#include <cstdint>
#include <cstdlib>

#include "strings/wchar_classes.h"

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr int kLineLength = 72;

// The 6-bit value of an alphabet character, or -1.
int SextetOf(char c) {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a' + 26;
    if (c >= '0' && c <= '9') return c - '0' + 52;
    if (c == '+') return 62;
    if (c == '/') return 63;
    return -1;
}

bool IsAlphabet(char c) { return SextetOf(c) >= 0; }

// The checking pass: the number of bytes the text decodes to, or -1 when the text is bad.
// Alphabet characters count; white space between them is passed over; a = ends the data, and
// after it only white space and further padding may follow.
int64_t DecodedLength(const char* text) {
    int64_t count = 0;
    const char* p = text;
    while (*p) {
        if (IsAlphabet(*p)) {
            ++count;
            ++p;
        } else if (zelchars::IsSpace(*p)) {
            ++p;
        } else if (*p == '=') {
            break;
        } else {
            return -1;
        }
    }
    const int64_t length = count / 4 * 3;
    if (!*p) return length;

    // Padding completes a group of 2 or 3 characters; a group of 0 or 1 can't be padded.
    const int64_t rest = count % 4;
    if (rest < 2) return -1;
    // Data behind the padding would be counted here yet never decoded, so such a text is refused.
    for (; *p; ++p) {
        if (IsAlphabet(*p)) return -1;
    }
    return length + rest - 1;
}

}  // namespace

int ZelAsciiToBase64(const char* input, int length, char** output) {
    if (!output) return 0;
    if (!input || length < 0) length = 0;

    const int64_t groups = length / 3;
    const int rest = length % 3;
    const int64_t total = groups * 4 + groups * 4 / kLineLength + (rest ? 4 : 0);
    if (total > INT_MAX) return 0;

    char* out = *output;
    if (!out) {
        out = static_cast<char*>(std::malloc(static_cast<size_t>(total) + 1));
        if (!out) return 0;
        *output = out;
    }

    const auto* in = reinterpret_cast<const unsigned char*>(input);
    char* w = out;
    int lineCount = 0;
    for (int64_t g = 0; g < groups; ++g, in += 3) {
        const uint32_t bits = (uint32_t{in[0]} << 16) | (uint32_t{in[1]} << 8) | in[2];
        *w++ = kAlphabet[(bits >> 18) & 0x3F];
        *w++ = kAlphabet[(bits >> 12) & 0x3F];
        *w++ = kAlphabet[(bits >> 6) & 0x3F];
        *w++ = kAlphabet[bits & 0x3F];
        lineCount += 4;
        if (lineCount == kLineLength) {
            *w++ = '\n';
            lineCount = 0;
        }
    }
    if (rest) {
        const uint32_t bits = (uint32_t{in[0]} << 16) | (rest == 2 ? uint32_t{in[1]} << 8 : 0);
        *w++ = kAlphabet[(bits >> 18) & 0x3F];
        *w++ = kAlphabet[(bits >> 12) & 0x3F];
        *w++ = rest == 2 ? kAlphabet[(bits >> 6) & 0x3F] : '=';
        *w++ = '=';
    }
    *w = '\0';
    return static_cast<int>(w - out);
}

int ZelBase64ToAscii(const char* text, char** output) {
    if (!text || !*text || !output) return 0;
    const int64_t length = DecodedLength(text);
    // Lengths past INT_MAX can't be reported; such a text is refused like a bad one.
    if (length <= 0 || length > INT_MAX) return 0;

    char* out = *output;
    if (!out) {
        out = static_cast<char*>(std::malloc(static_cast<size_t>(length)));
        if (!out) return static_cast<int>(length);
        *output = out;
    }

    auto* w = reinterpret_cast<unsigned char*>(out);
    const auto* end = w + length;
    uint32_t bits = 0;
    int held = 0;
    for (const char* p = text; *p && *p != '=' && w < end; ++p) {
        const int sextet = SextetOf(*p);
        if (sextet < 0) continue;  // white space; the first pass let nothing else through
        bits = (bits << 6) | static_cast<uint32_t>(sextet);
        if (++held == 4) {
            *w++ = static_cast<unsigned char>(bits >> 16);
            if (w < end) *w++ = static_cast<unsigned char>(bits >> 8);
            if (w < end) *w++ = static_cast<unsigned char>(bits);
            bits = 0;
            held = 0;
        }
    }
    // A padded group of 2 or 3 characters leaves 1 or 2 bytes.
    if (held >= 2 && w < end) *w++ = static_cast<unsigned char>(bits >> (held * 6 - 8));
    if (held == 3 && w < end) *w++ = static_cast<unsigned char>(bits >> 2);
    return static_cast<int>(length);
}
