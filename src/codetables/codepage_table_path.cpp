// The walks of the table path. Each code page gets its own instance of the two walks, so the
// single bytes of 932 and the four-byte sequences of 936 cost the other pages nothing.
#include <cstring>

#include "codetables/codepage_table_path.h"
#include "platform/win32.h"

namespace {

constexpr WORD kNoUnicode = 0xFFFD;

// Code page 932 reads 0xA0 to 0xDF as U+FF60 to U+FF9F, one byte each.
constexpr WORD kHalfWidthOffset = 0xFEC0;
constexpr bool IsHalfWidthByte(BYTE b) { return b >= 0xA0 && b <= 0xDF; }
constexpr bool IsHalfWidthUnit(WCHAR u) { return u >= 0xFF60 && u <= 0xFF9F; }

constexpr bool IsHighSurrogate(WCHAR u) { return u >= 0xD800 && u <= 0xDBFF; }
constexpr bool IsLowSurrogate(WCHAR u) { return u >= 0xDC00 && u <= 0xDFFF; }
constexpr bool IsSurrogate(WCHAR u) { return u >= 0xD800 && u <= 0xDFFF; }

enum class Page { Plain, Kana932, Gb936 };

Page PageOf(UINT codePage) {
    if (codePage == 932) return Page::Kana932;
    if (codePage == 936) return Page::Gb936;
    return Page::Plain;
}

// Bytes beyond a counted text read as 0, as the terminator of a zero-terminated one would.
inline BYTE ByteAt(const BYTE* text, int at, int length) { return at < length ? text[at] : 0; }

template <Page kPage>
int Decode(const ZelCodePageTables& tables, const BYTE* text, int length, WCHAR* buffer, int size) {
    const WORD* const mb2Uni = tables.mb2Uni;
    const unsigned count = mb2Uni ? tables.mb2UniCount : 0;
    const unsigned first = tables.firstCode;
    const int limit = size - 1;
    int in = 0;
    int out = 0;
    while (in < length && out < limit) {
        const BYTE b = text[in];
        if (b < 0x80) {
            buffer[out++] = b;
            ++in;
            continue;
        }
        if constexpr (kPage == Page::Kana932) {
            if (IsHalfWidthByte(b)) {
                buffer[out++] = WCHAR(b + kHalfWidthOffset);
                ++in;
                continue;
            }
        }
        const unsigned code = unsigned{b} << 8 | ByteAt(text, in + 1, length);
        if (code < first) {
            buffer[out++] = b;
            ++in;
            continue;
        }
        const unsigned index = code - first;
        const WORD unit = index < count ? mb2Uni[index] : kNoUnicode;
        if constexpr (kPage == Page::Gb936) {
            if (unit == kZel936OpenerMarker) {
                WCHAR units[2];
                const int n = Zel936FourBytesToUnicode(b, ByteAt(text, in + 1, length), ByteAt(text, in + 2, length),
                                                       ByteAt(text, in + 3, length), units);
                // Both halves of a pair or neither.
                if (n > limit - out) break;
                buffer[out++] = units[0];
                if (n == 2) buffer[out++] = units[1];
                in += 4;
                continue;
            }
        }
        buffer[out++] = unit;
        in += 2;
    }
    buffer[out] = 0;
    return out;
}

// The four bytes of a code point that carries the marker of code page 936, or the marker itself
// as two bytes when it has no four-byte place. Gives the bytes and the units used.
int FourByteForm(const WCHAR* text, int at, int length, BYTE bytes[4], int* used) {
    const WCHAR u = text[at];
    long place = -1;
    *used = 1;
    if (IsHighSurrogate(u) && at + 1 < length && IsLowSurrogate(text[at + 1])) {
        const DWORD codePoint = 0x10000 + ((DWORD(u) - 0xD800) << 10) + (DWORD(text[at + 1]) - 0xDC00);
        place = Zel936SupplementaryPlaceOf(codePoint);
        *used = 2;
    } else if (!IsSurrogate(u)) {
        place = Zel936FourBytePlaceOf(u);
    }
    if (place < 0) {
        bytes[0] = BYTE(kZel936FourByteMarker >> 8);
        bytes[1] = BYTE(kZel936FourByteMarker & 0xFF);
        return 2;
    }
    Zel936FourBytesOfPlace(DWORD(place), bytes);
    return 4;
}

template <Page kPage>
int Encode(const ZelCodePageTables& tables, const WCHAR* text, int length, BYTE* buffer, int size) {
    const WORD* const uni2Mb = tables.uni2Mb;
    const int limit = size - 1;
    int in = 0;
    int out = 0;
    while (in < length && out < limit) {
        const WCHAR u = text[in];
        WORD v;
        if (u <= 0x7F) {
            v = u;
        } else if (kPage == Page::Kana932 && IsHalfWidthUnit(u)) {
            v = WORD(u - kHalfWidthOffset);
        } else {
            v = uni2Mb ? uni2Mb[u] : WORD{'?'};
        }
        if constexpr (kPage == Page::Gb936) {
            if (v == kZel936FourByteMarker) {
                BYTE bytes[4];
                int used = 1;
                const int n = FourByteForm(text, in, length, bytes, &used);
                if (n == 4) {
                    // A four-byte code is written whole or not at all.
                    if (n > limit - out) break;
                    std::memcpy(buffer + out, bytes, 4);
                    out += 4;
                    in += used;
                    continue;
                }
            }
        }
        // A double-byte code at the very end keeps its lead byte alone.
        if (v > 0xFF) buffer[out++] = BYTE(v >> 8);
        if (out < limit) buffer[out++] = BYTE(v);
        ++in;
    }
    buffer[out] = 0;
    return out;
}

}  // namespace

UINT ZelResolveCodePage(UINT codePage) {
    if (codePage == CP_ACP) return GetACP();
    if (codePage == CP_OEMCP) return GetOEMCP();
    return codePage;
}

int ZelTableToUnicode(UINT codePage, const ZelCodePageTables& tables, const char* text, int length, WCHAR* buffer,
                      int size) {
    if (!buffer || size < 1) return 0;
    length = ZelTextUnits(text, length);
    const BYTE* bytes = reinterpret_cast<const BYTE*>(text);
    switch (PageOf(codePage)) {
    case Page::Kana932:
        return Decode<Page::Kana932>(tables, bytes, length, buffer, size);
    case Page::Gb936:
        return Decode<Page::Gb936>(tables, bytes, length, buffer, size);
    case Page::Plain:
        break;
    }
    return Decode<Page::Plain>(tables, bytes, length, buffer, size);
}

int ZelTableFromUnicode(UINT codePage, const ZelCodePageTables& tables, const WCHAR* text, int length, char* buffer,
                        int size) {
    if (!buffer || size < 1) return 0;
    length = ZelTextUnits(text, length);
    BYTE* bytes = reinterpret_cast<BYTE*>(buffer);
    switch (PageOf(codePage)) {
    case Page::Kana932:
        return Encode<Page::Kana932>(tables, text, length, bytes, size);
    case Page::Gb936:
        return Encode<Page::Gb936>(tables, text, length, bytes, size);
    case Page::Plain:
        break;
    }
    return Encode<Page::Plain>(tables, text, length, bytes, size);
}
