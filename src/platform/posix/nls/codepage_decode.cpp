// Bytes of a code page to 16-bit text: the Unicode forms here, the other code pages through iconv,
// and UTF-7 a stretch between zero bytes at a time.
#include <errno.h>
#include <iconv.h>

#include <iterator>

#include "platform/posix/nls/codepage_convert.h"

namespace zelcp {
namespace {

// ---------------------------------------------------------------------------------------------
// To 16-bit text

size_t AsciiPrefix(const unsigned char* s, size_t n) {
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        uint64_t word;
        std::memcpy(&word, s + i, 8);
        if (word & 0x8080808080808080ull) break;
    }
    while (i < n && s[i] < 0x80) ++i;
    return i;
}

// A buffer of units between a decoder and the sink, so that the sink sees few, large writes.
struct WideStage {
    explicit WideStage(WideSink& target) : sink(target) {}
    WideSink& sink;
    WCHAR units[256];
    size_t n = 0;

    bool Put(uint32_t codePoint) {
        if (n + 2 > std::size(units) && !Flush()) return false;
        if (codePoint >= 0x10000) {
            codePoint -= 0x10000;
            units[n++] = static_cast<WCHAR>(0xD800 + (codePoint >> 10));
            units[n++] = static_cast<WCHAR>(0xDC00 + (codePoint & 0x3FF));
        } else {
            units[n++] = static_cast<WCHAR>(codePoint);
        }
        return true;
    }
    bool Flush() {
        bool ok = sink.Put(units, n);
        n = 0;
        return ok;
    }
};

// The length of a well-formed UTF-8 sequence at s, or 0 with taken set to the length of the
// longest start of one there (at least 1): that start is one malformed piece, as the Unicode
// standard recommends, so a sequence cut off by the end of the text gives one replacement.
size_t Utf8Sequence(const unsigned char* s, size_t n, uint32_t& codePoint, size_t& taken) {
    unsigned char b = s[0];
    size_t length;
    unsigned char low = 0x80, high = 0xBF;
    taken = 1;
    if (b >= 0xC2 && b <= 0xDF) {
        length = 2;
        codePoint = b & 0x1F;
    } else if (b >= 0xE0 && b <= 0xEF) {
        length = 3;
        codePoint = b & 0x0F;
        if (b == 0xE0) low = 0xA0;
        if (b == 0xED) high = 0x9F;  // no surrogates
    } else if (b >= 0xF0 && b <= 0xF4) {
        length = 4;
        codePoint = b & 0x07;
        if (b == 0xF0) low = 0x90;
        if (b == 0xF4) high = 0x8F;  // nothing above U+10FFFF
    } else {
        return 0;
    }
    if (n < 2 || s[1] < low || s[1] > high) return 0;
    for (size_t i = 1; i < length; ++i) {
        if (i >= n || (s[i] & 0xC0) != 0x80) return 0;
        codePoint = (codePoint << 6) | (s[i] & 0x3F);
        taken = i + 1;
    }
    return length;
}

DWORD DecodeUtf8(const unsigned char* s, size_t n, bool strict, WideSink& sink) {
    WideStage stage{sink};
    size_t i = 0;
    while (i < n) {
        if (s[i] < 0x80) {
            size_t run = AsciiPrefix(s + i, n - i);
            if (!stage.Flush() || !sink.PutAscii(s + i, run)) return ERROR_INSUFFICIENT_BUFFER;
            i += run;
            continue;
        }
        uint32_t codePoint;
        size_t taken;
        size_t length = Utf8Sequence(s + i, n - i, codePoint, taken);
        if (!length) {
            if (strict) return ERROR_NO_UNICODE_TRANSLATION;
            codePoint = kReplacement;
            length = taken;
        }
        if (!stage.Put(codePoint)) return ERROR_INSUFFICIENT_BUFFER;
        i += length;
    }
    return stage.Flush() ? 0 : ERROR_INSUFFICIENT_BUFFER;
}

DWORD DecodeIconv(const ZelCodePage& page, const char* s, size_t n, bool strict, WideSink& sink) {
    iconv_t cd = Descriptor(page, true);
    if (cd == kNoDescriptor) return ERROR_INVALID_PARAMETER;
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
    // The Korean combination code page maps byte 0x5C to the won sign; as everywhere else the
    // bytes below 0x80 are ASCII here, so that paths keep their separators.
    const bool wonIsBackslash = page.codePage == 1361;

    char* in = const_cast<char*>(s);
    size_t left = n;
    WCHAR chunk[512];
    bool flushed = false;
    while (!flushed) {
        char* out = reinterpret_cast<char*>(chunk);
        size_t room = sizeof chunk;
        size_t result;
        if (left) {
            result = iconv(cd, &in, &left, &out, &room);
        } else {
            result = iconv(cd, nullptr, nullptr, &out, &room);  // what a stateful decoder still holds
            flushed = true;
        }
        int error = errno;
        size_t produced = (sizeof chunk - room) / sizeof(WCHAR);
        if (wonIsBackslash)
            for (size_t i = 0; i < produced; ++i)
                if (chunk[i] == 0x20A9) chunk[i] = u'\\';
        if (!sink.Put(chunk, produced)) return ERROR_INSUFFICIENT_BUFFER;
        if (result != static_cast<size_t>(-1) || error == E2BIG) continue;
        if (flushed) break;
        // An invalid or incomplete sequence: each of its bytes gives one replacement.
        if (strict) return ERROR_NO_UNICODE_TRANSLATION;
        if (!sink.Put(kReplacement)) return ERROR_INSUFFICIENT_BUFFER;
        ++in;
        --left;
    }
    return 0;
}

}  // namespace

DWORD Decode(const ZelCodePage& page, const char* s, size_t n, bool strict, WideSink& sink) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(s);
    switch (page.kind) {
    case ZelCodePageKind::Utf8:
        return DecodeUtf8(bytes, n, strict, sink);
    case ZelCodePageKind::Utf7:
        // iconv takes a zero byte for no UTF-7 at all; here it is the zero character, as a
        // terminator must be, and each stretch between zeros is a text of its own.
        for (size_t i = 0; i < n;) {
            const char* zero = static_cast<const char*>(std::memchr(s + i, 0, n - i));
            size_t end = zero ? static_cast<size_t>(zero - s) : n;
            if (end > i) {
                size_t before = sink.count;
                if (DWORD error = DecodeIconv(page, s + i, end - i, strict, sink)) return error;
                // Shift sequences that carry no whole character are malformed.
                if (sink.count == before) {
                    if (strict) return ERROR_NO_UNICODE_TRANSLATION;
                    if (!sink.Put(kReplacement)) return ERROR_INSUFFICIENT_BUFFER;
                }
            }
            if (zero && !sink.Put(u'\0')) return ERROR_INSUFFICIENT_BUFFER;
            i = end + 1;
        }
        return 0;
    case ZelCodePageKind::Iconv: {
        // A byte below 0x80 that no lead byte precedes is a character of its own.
        size_t run = AsciiPrefix(bytes, n);
        if (!sink.PutAscii(bytes, run)) return ERROR_INSUFFICIENT_BUFFER;
        return run == n ? 0 : DecodeIconv(page, s + run, n - run, strict, sink);
    }
    }
    return ERROR_INVALID_PARAMETER;
}

}  // namespace zelcp
