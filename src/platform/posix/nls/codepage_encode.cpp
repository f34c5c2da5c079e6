// 16-bit text to bytes of a code page: the Unicode forms here, the other code pages through iconv
// with the default character for what they lack.
#include <errno.h>
#include <iconv.h>

#include <string>

#include "platform/posix/nls/codepage_convert.h"

namespace zelcp {
namespace {

// ---------------------------------------------------------------------------------------------
// From 16-bit text

size_t AsciiPrefix(const WCHAR* s, size_t n) {
    size_t i = 0;
    while (i < n && s[i] < 0x80) ++i;
    return i;
}

// The code point at s[i] and the units it takes; a lone surrogate reports itself as invalid.
uint32_t NextCodePoint(const WCHAR* s, size_t n, size_t i, size_t& units, bool& lone) {
    uint32_t u = s[i];
    units = 1;
    lone = false;
    if (IsHighSurrogate(u) && i + 1 < n && IsLowSurrogate(s[i + 1])) {
        units = 2;
        return 0x10000 + ((u - 0xD800) << 10) + (s[i + 1] - 0xDC00u);
    }
    lone = IsHighSurrogate(u) || IsLowSurrogate(u);
    return u;
}

struct ByteStage {
    explicit ByteStage(ByteSink& target) : sink(target) {}
    ByteSink& sink;
    char bytes[512];
    size_t n = 0;

    bool Put(const char* p, size_t k) {
        if (n + k > sizeof bytes && !Flush()) return false;
        std::memcpy(bytes + n, p, k);
        n += k;
        return true;
    }
    bool Flush() {
        bool ok = sink.Put(bytes, n);
        n = 0;
        return ok;
    }
};

size_t EncodeUtf8(uint32_t c, char* out) {
    if (c < 0x80) {
        out[0] = static_cast<char>(c);
        return 1;
    }
    if (c < 0x800) {
        out[0] = static_cast<char>(0xC0 | (c >> 6));
        out[1] = static_cast<char>(0x80 | (c & 0x3F));
        return 2;
    }
    if (c < 0x10000) {
        out[0] = static_cast<char>(0xE0 | (c >> 12));
        out[1] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out[2] = static_cast<char>(0x80 | (c & 0x3F));
        return 3;
    }
    out[0] = static_cast<char>(0xF0 | (c >> 18));
    out[1] = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out[2] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out[3] = static_cast<char>(0x80 | (c & 0x3F));
    return 4;
}

DWORD EncodeUtf8(const WCHAR* s, size_t n, bool strict, ByteSink& sink) {
    ByteStage stage{sink};
    size_t i = 0;
    while (i < n) {
        if (s[i] < 0x80) {
            size_t run = AsciiPrefix(s + i, n - i);
            if (!stage.Flush() || !sink.PutAscii(s + i, run)) return ERROR_INSUFFICIENT_BUFFER;
            i += run;
            continue;
        }
        size_t units;
        bool lone;
        uint32_t c = NextCodePoint(s, n, i, units, lone);
        if (lone) {
            if (strict) return ERROR_NO_UNICODE_TRANSLATION;
            c = kReplacement;
        }
        char bytes[8];
        size_t k = EncodeUtf8(c, bytes);
        if (!stage.Put(bytes, k)) return ERROR_INSUFFICIENT_BUFFER;
        i += units;
    }
    return stage.Flush() ? 0 : ERROR_INSUFFICIENT_BUFFER;
}

DWORD EncodeIconv(const ZelCodePage& page, const WCHAR* s, size_t n, bool strict, DefaultChar* fallback,
                  ByteSink& sink) {
    iconv_t cd = Descriptor(page, false);
    if (cd == kNoDescriptor) return ERROR_INVALID_PARAMETER;
    iconv(cd, nullptr, nullptr, nullptr, nullptr);

    char* in = reinterpret_cast<char*>(const_cast<WCHAR*>(s));
    size_t left = n * sizeof(WCHAR);
    char chunk[1024];
    bool flushed = false;
    while (!flushed) {
        char* out = chunk;
        size_t room = sizeof chunk;
        size_t result;
        if (left) {
            result = iconv(cd, &in, &left, &out, &room);
        } else {
            result = iconv(cd, nullptr, nullptr, &out, &room);  // closes a shifted state
            flushed = true;
        }
        int error = errno;
        if (!sink.Put(chunk, sizeof chunk - room)) return ERROR_INSUFFICIENT_BUFFER;
        if (result != static_cast<size_t>(-1) || error == E2BIG) continue;
        if (flushed) break;
        // A character the code page lacks, or a lone surrogate: the default character stands
        // for each of its units, as the tables of Windows go unit by unit. iconv stops on
        // character boundaries, so the position is a whole unit.
        size_t at = static_cast<size_t>(in - reinterpret_cast<char*>(const_cast<WCHAR*>(s))) / sizeof(WCHAR);
        size_t units;
        bool lone;
        NextCodePoint(s, n, at, units, lone);
        if (lone && strict) return ERROR_NO_UNICODE_TRANSLATION;
        if (page.codePage == 1361 && s[at] == u'\\') {
            // iconv's table of this page has no backslash: byte 0x5C is one here, as on the way in.
            if (!sink.Put("\\", 1)) return ERROR_INSUFFICIENT_BUFFER;
        } else if (fallback) {
            for (size_t k = 0; k < units; ++k)
                if (!sink.Put(fallback->bytes, fallback->length)) return ERROR_INSUFFICIENT_BUFFER;
            fallback->used = true;
        }
        in += units * sizeof(WCHAR);
        left -= units * sizeof(WCHAR);
    }
    return 0;
}

}  // namespace

DWORD Encode(const ZelCodePage& page, const WCHAR* s, size_t n, bool strict, DefaultChar& fallback,
             ByteSink& sink) {
    switch (page.kind) {
    case ZelCodePageKind::Iconv: {
        size_t run = AsciiPrefix(s, n);
        if (!sink.PutAscii(s, run)) return ERROR_INSUFFICIENT_BUFFER;
        return run == n ? 0 : EncodeIconv(page, s + run, n - run, strict, &fallback, sink);
    }
    case ZelCodePageKind::Utf7: {
        // Lone surrogates are settled first, so that iconv sees only text it can shift into.
        std::u16string clean(s, n);
        for (size_t i = 0; i < n;) {
            size_t units;
            bool lone;
            NextCodePoint(s, n, i, units, lone);
            if (lone) {
                if (strict) return ERROR_NO_UNICODE_TRANSLATION;
                clean[i] = kReplacement;
            }
            i += units;
        }
        // The zero character stays a zero byte rather than a shifted sequence, so that a
        // terminator is one.
        for (size_t i = 0; i < n;) {
            size_t end = i;
            while (end < n && clean[end]) ++end;
            if (end > i)
                if (DWORD error = EncodeIconv(page, clean.data() + i, end - i, strict, nullptr, sink)) return error;
            if (end < n && !sink.Put('\0')) return ERROR_INSUFFICIENT_BUFFER;
            i = end + 1;
        }
        return 0;
    }
    case ZelCodePageKind::Utf8:
        return EncodeUtf8(s, n, strict, sink);
    }
    return ERROR_INVALID_PARAMETER;
}

}  // namespace zelcp
