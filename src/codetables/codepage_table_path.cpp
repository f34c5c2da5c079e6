// The walks of the table path. Each code page gets its own instance of the two walks, so the
// single bytes of 932 and the four-byte sequences of 936 cost the other pages nothing.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "codetables/codepage_blocks.h"
#include "codetables/codepage_table_path.h"
#include "codetables/gb_four_byte_runs.h"
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

using Page = ZelTablePage;

// Whether the block kernels run here.
inline bool BlocksHere() {
#if ZEL_UTF_BLOCKS
    return ZelCodePageBlocks();
#else
    return false;
#endif
}

Page PageOf(UINT codePage) {
    if (codePage == 932) return Page::Kana932;
    if (codePage == 936) return Page::Gb936;
    return Page::Plain;
}

// Bytes beyond a counted text read as 0, as the terminator of a zero-terminated one would.
inline BYTE ByteAt(const BYTE* text, int at, int length) { return at < length ? text[at] : 0; }

// Eight bytes at once: all of them below 0x80.
inline bool EightAscii(const BYTE* bytes) {
    uint64_t word;
    std::memcpy(&word, bytes, 8);
    return (word & 0x8080808080808080ull) == 0;
}

struct DecodeState {
    const WORD* mb2Uni;
    unsigned count;
    unsigned first;
    int length;
    int limit;
};

// One character toward Unicode with every bound checked; false when it does not fit.
template <Page kPage>
inline bool DecodeOne(const DecodeState& s, const BYTE* text, int& in, WCHAR* buffer, int& out) {
    const BYTE b = text[in];
    if (b < 0x80) {
        buffer[out++] = b;
        ++in;
        return true;
    }
    if constexpr (kPage == Page::Kana932) {
        if (IsHalfWidthByte(b)) {
            buffer[out++] = WCHAR(b + kHalfWidthOffset);
            ++in;
            return true;
        }
    }
    const unsigned code = unsigned{b} << 8 | ByteAt(text, in + 1, s.length);
    if (code < s.first) {
        buffer[out++] = b;
        ++in;
        return true;
    }
    const unsigned index = code - s.first;
    const WORD unit = index < s.count ? s.mb2Uni[index] : kNoUnicode;
    if constexpr (kPage == Page::Gb936) {
        if (unit == kZel936OpenerMarker) {
            WCHAR units[2];
            const int n = Zel936FourBytesToUnicode(b, ByteAt(text, in + 1, s.length), ByteAt(text, in + 2, s.length),
                                                   ByteAt(text, in + 3, s.length), units);
            // Both halves of a pair or neither.
            if (n > s.limit - out) return false;
            buffer[out++] = units[0];
            if (n == 2) buffer[out++] = units[1];
            in += 4;
            return true;
        }
    }
    buffer[out++] = unit;
    in += 2;
    return true;
}

DecodeState DecodeStateOf(const ZelCodePageTables& tables, int length, int size) {
    return {tables.mb2Uni, tables.mb2Uni ? unsigned(tables.mb2UniCount) : 0u, tables.firstCode, length, size - 1};
}

template <Page kPage>
int DecodeOneByOne(const ZelCodePageTables& tables, const BYTE* text, int length, WCHAR* buffer, int size) {
    const DecodeState s = DecodeStateOf(tables, length, size);
    int in = 0;
    int out = 0;
    while (in < length && out < s.limit)
        if (!DecodeOne<kPage>(s, text, in, buffer, out)) break;
    buffer[out] = 0;
    return out;
}

// No character gives more units than it has bytes, so while the room left is at least the input
// left (and seven bytes of input stay behind, for the bytes after a lead byte and the reads of
// eight at once) nothing needs a bound; the rest goes one character at a time.
template <Page kPage>
int Decode(const ZelCodePageTables& tables, const BYTE* text, int length, WCHAR* buffer, int size) {
    const DecodeState s = DecodeStateOf(tables, length, size);
    if (s.count != 0x10000 - s.first || s.first < 0x8000)
        return DecodeOneByOne<kPage>(tables, text, length, buffer, size);
    [[maybe_unused]] const WCHAR* unitsOfPlaces = nullptr;
    if constexpr (kPage == Page::Gb936) unitsOfPlaces = Zel936UnitsOfPlaces();
    [[maybe_unused]] const bool blocks = BlocksHere();
    int in = 0;
    int out = 0;
    while (in < length && out < s.limit) {
        const int span = std::min(length - in, s.limit - out) - 7;
        if (span > 0) {
            const BYTE* p = text + in;
            const BYTE* const end = p + span;
            WCHAR* o = buffer + out;
            while (p < end) {
#if ZEL_UTF_BLOCKS
                // The kernel stops at a character it leaves to the steps below, which take that
                // one character and hand back.
                if (blocks && end - p >= 64) {
                    ZelDecodeBlocks(kPage, s.mb2Uni, s.first, unitsOfPlaces, p, end, o);
                    if (p >= end) break;
                }
#endif
                // Every first code lies above 0x8000, so a byte below 0x80 and a lead byte
                // below the first code are one case.
                const BYTE b = *p;
                const unsigned code = unsigned{b} << 8 | p[1];
                if (code < s.first) {
                    if (b < 0x80 && EightAscii(p)) {
                        for (int i = 0; i < 8; ++i) o[i] = p[i];
                        p += 8;
                        o += 8;
                        continue;
                    }
                    *o++ = b;
                    ++p;
                    continue;
                }
                if constexpr (kPage == Page::Kana932) {
                    if (IsHalfWidthByte(b)) {
                        *o++ = WCHAR(b + kHalfWidthOffset);
                        ++p;
                        continue;
                    }
                }
                const WORD unit = s.mb2Uni[code - s.first];
                if constexpr (kPage == Page::Gb936) {
                    if (unit == kZel936OpenerMarker) {
                        o += Zel936FourBytesAt(p, unitsOfPlaces, o);
                        p += 4;
                        continue;
                    }
                }
                *o++ = unit;
                p += 2;
            }
            in = int(p - text);
            out = int(o - buffer);
            if (in >= length || out >= s.limit) break;
        }
        if (!DecodeOne<kPage>(s, text, in, buffer, out)) break;
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
        const DWORD code = Zel936FourByteCode(u);
        if (code != 0) {
            for (int i = 0; i < 4; ++i) bytes[i] = BYTE(code >> 8 * i);
            return 4;
        }
    }
    if (place < 0) {
        bytes[0] = BYTE(kZel936FourByteMarker >> 8);
        bytes[1] = BYTE(kZel936FourByteMarker & 0xFF);
        return 2;
    }
    Zel936FourBytesOfPlace(DWORD(place), bytes);
    return 4;
}

// One character toward the code page with every bound checked; false when it does not fit.
template <Page kPage>
inline bool EncodeOne(const WORD* uni2Mb, const WCHAR* text, int length, int& in, BYTE* buffer, int& out, int limit) {
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
                if (n > limit - out) return false;
                std::memcpy(buffer + out, bytes, 4);
                out += 4;
                in += used;
                return true;
            }
        }
    }
    // A double-byte code at the very end keeps its lead byte alone.
    if (v > 0xFF) buffer[out++] = BYTE(v >> 8);
    if (out < limit) buffer[out++] = BYTE(v);
    ++in;
    return true;
}

template <Page kPage>
int EncodeOneByOne(const ZelCodePageTables& tables, const WCHAR* text, int length, BYTE* buffer, int size) {
    const int limit = size - 1;
    int in = 0;
    int out = 0;
    while (in < length && out < limit)
        if (!EncodeOne<kPage>(tables.uni2Mb, text, length, in, buffer, out, limit)) break;
    buffer[out] = 0;
    return out;
}

// No unit gives more than two bytes, bar the four-byte codes of 936, which leave the bulk loop:
// while the room left is at least twice the input left nothing needs a bound. Both bytes of
// every code are stored and the output moves on by its length; the byte too many is overwritten
// by the next code or the terminator.
template <Page kPage>
int Encode(const ZelCodePageTables& tables, const WCHAR* text, int length, BYTE* buffer, int size) {
    const WORD* const uni2Mb = tables.uni2Mb;
    if (!uni2Mb) return EncodeOneByOne<kPage>(tables, text, length, buffer, size);
    [[maybe_unused]] const DWORD* fourByteCodes = nullptr;
    if constexpr (kPage == Page::Gb936) fourByteCodes = Zel936FourByteCodes();
    [[maybe_unused]] const bool blocks = BlocksHere();
    const int limit = size - 1;
    int in = 0;
    int out = 0;
    while (in < length && out < limit) {
        const int span = std::min(length - in, (limit - out) / 2);
        if (span > 0) {
            const WCHAR* p = text + in;
            const WCHAR* const end = p + span;
            BYTE* o = buffer + out;
            while (p < end) {
#if ZEL_UTF_BLOCKS
                // As in the decoder: the kernel hands back at a unit for the steps below.
                if (blocks && end - p >= 32) {
                    ZelEncodeBlocks(kPage, uni2Mb, fourByteCodes, p, end, o, buffer + limit);
                    if (p >= end) break;
                }
#endif
                const WCHAR u = *p;
                unsigned v = uni2Mb[u];
                if constexpr (kPage == Page::Kana932) v = IsHalfWidthUnit(u) ? unsigned(u - kHalfWidthOffset) : v;
                v = u <= 0x7F ? u : v;
                if constexpr (kPage == Page::Gb936) {
                    // The marker without a four-byte form (a lone half among them) goes out
                    // as the two bytes it is, below.
                    if (v == kZel936FourByteMarker && IsHighSurrogate(u)) {
                        // A pair: four bytes for two units. Its second half beyond the span is
                        // left to the step one at a time.
                        if (p + 1 == end) break;
                        if (IsLowSurrogate(p[1])) {
                            const DWORD codePoint = 0x10000 + ((DWORD(u) - 0xD800) << 10) + (DWORD(p[1]) - 0xDC00);
                            Zel936FourBytesOfPlace(DWORD(Zel936SupplementaryPlaceOf(codePoint)), o);
                            o += 4;
                            p += 2;
                            continue;
                        }
                    } else if (v == kZel936FourByteMarker && fourByteCodes[u] != 0) {
                        // Four bytes for one unit: taken here while the room keeps two bytes for
                        // every unit behind it; the last of the room goes one at a time.
                        if ((buffer + limit) - o < 2 * (end - p) + 2) break;
                        const DWORD code = fourByteCodes[u];
                        for (int i = 0; i < 4; ++i) o[i] = BYTE(code >> 8 * i);
                        o += 4;
                        ++p;
                        continue;
                    }
                }
                const unsigned two = v > 0xFF;
                o[0] = BYTE(v >> (8 * two));
                o[1] = BYTE(v);
                o += 1 + two;
                ++p;
            }
            in = int(p - text);
            out = int(o - buffer);
            if (in >= length || out >= limit) break;
        }
        if (!EncodeOne<kPage>(uni2Mb, text, length, in, buffer, out, limit)) break;
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

namespace {

// Runs a walk made for the page of codePage: walk(std::integral_constant<Page, ...>).
template <typename Walk>
int ForPage(UINT codePage, Walk walk) {
    switch (PageOf(codePage)) {
    case Page::Kana932:
        return walk(std::integral_constant<Page, Page::Kana932>{});
    case Page::Gb936:
        return walk(std::integral_constant<Page, Page::Gb936>{});
    case Page::Plain:
        break;
    }
    return walk(std::integral_constant<Page, Page::Plain>{});
}

}  // namespace

int ZelTableToUnicode(UINT codePage, const ZelCodePageTables& tables, const char* text, int length, WCHAR* buffer,
                      int size) {
    if (!buffer || size < 1) return 0;
    length = ZelTextUnits(text, length);
    const BYTE* bytes = reinterpret_cast<const BYTE*>(text);
    return ForPage(codePage, [&](auto page) { return Decode<page.value>(tables, bytes, length, buffer, size); });
}

int ZelTableFromUnicode(UINT codePage, const ZelCodePageTables& tables, const WCHAR* text, int length, char* buffer,
                        int size) {
    if (!buffer || size < 1) return 0;
    length = ZelTextUnits(text, length);
    BYTE* bytes = reinterpret_cast<BYTE*>(buffer);
    return ForPage(codePage, [&](auto page) { return Encode<page.value>(tables, text, length, bytes, size); });
}

int ZelTableToUnicodeOneByOne(UINT codePage, const ZelCodePageTables& tables, const char* text, int length,
                              WCHAR* buffer, int size) {
    if (!buffer || size < 1) return 0;
    length = ZelTextUnits(text, length);
    const BYTE* bytes = reinterpret_cast<const BYTE*>(text);
    return ForPage(codePage,
                   [&](auto page) { return DecodeOneByOne<page.value>(tables, bytes, length, buffer, size); });
}

int ZelTableFromUnicodeOneByOne(UINT codePage, const ZelCodePageTables& tables, const WCHAR* text, int length,
                                char* buffer, int size) {
    if (!buffer || size < 1) return 0;
    length = ZelTextUnits(text, length);
    BYTE* bytes = reinterpret_cast<BYTE*>(buffer);
    return ForPage(codePage,
                   [&](auto page) { return EncodeOneByOne<page.value>(tables, text, length, bytes, size); });
}
