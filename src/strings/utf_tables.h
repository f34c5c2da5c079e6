// What the UTF converters share: the tables of UTF-8 sequences, the legality rule, surrogate pair
// arithmetic, the UTF-8 encoder and the loop that every converter runs. Internal to src/strings/.
#ifndef ZEL_STRINGS_UTF_TABLES_H
#define ZEL_STRINGS_UTF_TABLES_H

#include <zel/strings.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zel::utf {

// Number of trailing bytes by the first byte of a sequence. 0x80 to 0xBF count as single bytes
// here and are refused by the legality rule.
inline constexpr std::array<uint8_t, 256> kTrailingBytes = [] {
    std::array<uint8_t, 256> table{};
    for (unsigned b = 0; b < 256; ++b)
        table[b] = b < 0xC0 ? 0 : b < 0xE0 ? 1 : b < 0xF0 ? 2 : b < 0xF8 ? 3 : b < 0xFC ? 4 : 5;
    return table;
}();

// What adding up the bytes of a sequence (shifting by 6 before each further byte) leaves above
// the value: the length marks and continuation bits, by number of trailing bytes. Only sequences
// of up to four bytes are ever added up.
inline constexpr DWORD kSequenceOffsets[4] = {0, 0x3080, 0xE2080, 0x3C82080};

// Mark of the first byte by encoded length.
inline constexpr BYTE kFirstByteMarks[5] = {0, 0, 0xC0, 0xE0, 0xF0};

inline constexpr bool IsHighSurrogate(DWORD c) {
    return c >= ZEL_SURROGATE_HIGH_FIRST && c <= ZEL_SURROGATE_HIGH_LAST;
}
inline constexpr bool IsLowSurrogate(DWORD c) {
    return c >= ZEL_SURROGATE_LOW_FIRST && c <= ZEL_SURROGATE_LOW_LAST;
}
inline constexpr bool IsSurrogate(DWORD c) {
    return c >= ZEL_SURROGATE_HIGH_FIRST && c <= ZEL_SURROGATE_LOW_LAST;
}
inline constexpr DWORD CombineSurrogates(DWORD high, DWORD low) {
    return ((high - ZEL_SURROGATE_HIGH_FIRST) << ZEL_SURROGATE_SHIFT) + (low - ZEL_SURROGATE_LOW_FIRST) +
           ZEL_PLANE_BASE;
}
// Writes the pair of a value from 0x10000 to 0x10FFFF; the caller has checked for two places.
inline void WriteSurrogatePair(DWORD c, ZelUTF16* out) {
    c -= ZEL_PLANE_BASE;
    out[0] = static_cast<ZelUTF16>((c >> ZEL_SURROGATE_SHIFT) + ZEL_SURROGATE_HIGH_FIRST);
    out[1] = static_cast<ZelUTF16>((c & ZEL_SURROGATE_MASK) + ZEL_SURROGATE_LOW_FIRST);
}

// The full rules' pair: written when two places are left, otherwise a stop for want of room.
inline bool PutSurrogatePair(DWORD c, ZelUTF16*& tgt, const ZelUTF16* targetEnd, ZelConvResult& result) {
    if (targetEnd - tgt < 2) {
        result = ZelConvTargetExhausted;
        return false;
    }
    WriteSurrogatePair(c, tgt);
    tgt += 2;
    return true;
}

// Whether the length bytes at s make a legal sequence. Lengths other than 1 to 4 never do. The
// three-byte forms of the surrogates are legal here: the converters judge them by their value.
inline bool IsLegalSequence(const BYTE* s, int length) {
    if (length < 1 || length > 4) return false;
    for (int i = 2; i < length; ++i)
        if (s[i] < 0x80 || s[i] > 0xBF) return false;
    const BYTE first = s[0];
    if (length > 1) {
        BYTE low = 0x80, high = 0xBF;
        switch (first) {
            case 0xE0: low = 0xA0; break;
            case 0xF0: low = 0x90; break;
            case 0xF4: high = 0x8F; break;
            default: break;
        }
        if (s[1] < low || s[1] > high) return false;
    }
    return !(first >= 0x80 && first <= 0xC1) && first <= 0xF4;
}

// Adds up a legal sequence of extra + 1 bytes into its value.
inline DWORD SequenceValue(const BYTE* s, int extra) {
    DWORD c = s[0];
    for (int i = 1; i <= extra; ++i) c = (c << 6) + s[i];
    return c - kSequenceOffsets[extra];
}

// The encoded length of a value, which is replaced by U+FFFD at 0x200000 and above. Values from
// 0x110000 to 0x1FFFFF take four bytes like any other.
inline int EncodedLength(DWORD& c) {
    if (c < 0x80) return 1;
    if (c < 0x800) return 2;
    if (c < 0x10000) return 3;
    if (c < 0x200000) return 4;
    c = ZEL_REPLACEMENT_CHAR;
    return 3;
}

// Writes c in length bytes, from the last to the first.
inline void WriteSequence(DWORD c, int length, BYTE* out) {
    switch (length) {
        case 4: out[3] = static_cast<BYTE>((c & 0x3F) | 0x80); c >>= 6; [[fallthrough]];
        case 3: out[2] = static_cast<BYTE>((c & 0x3F) | 0x80); c >>= 6; [[fallthrough]];
        case 2: out[1] = static_cast<BYTE>((c & 0x3F) | 0x80); c >>= 6; [[fallthrough]];
        default: out[0] = static_cast<BYTE>(c | kFirstByteMarks[length]);
    }
}

// The loop of every converter: a fast loop over the stretch where both buffers have room to spare,
// then one character by the full rules, until the source is used up or a step stops.
//
// kGrowth is the most target units that one source unit gives. Below the end that fast is handed
// there are 8 more source units and room for what 8 of them give, so fast(src, fastEnd, tgt) can
// take a word or a whole sequence at a time without testing either end; it stops early at
// whatever it leaves to the full rules.
// step(src, tgt, result) converts one character; it gives false to stop with result set, and may
// set result and go on.
template <ptrdiff_t kGrowth, typename From, typename To, typename Fast, typename Step>
inline ZelConvResult RunConverter(const From** source, const From* sourceEnd, To** target, To* targetEnd,
                                  Fast&& fast, Step&& step) {
    const From* src = *source;
    To* tgt = *target;
    ZelConvResult result = ZelConvOk;
    while (src < sourceEnd) {
        const ptrdiff_t room = std::min(sourceEnd - src, (targetEnd - tgt) / kGrowth) - 8;
        if (room > 0) {
            fast(src, src + room, tgt);
            if (src >= sourceEnd) break;
        }
        if (!step(src, tgt, result)) break;
    }
    *source = src;
    *target = tgt;
    return result;
}

// Word-sized tests for runs that need no sequence handling.
inline uint64_t Load64(const void* p) {
    uint64_t word;
    std::memcpy(&word, p, sizeof word);
    return word;
}
inline constexpr uint64_t kAsciiBytes = 0x8080808080808080ull;   // a high bit in any byte
inline constexpr uint64_t kAsciiUnits16 = 0xFF80FF80FF80FF80ull;  // any of four 16-bit units >= 0x80

}  // namespace zel::utf

#endif  // ZEL_STRINGS_UTF_TABLES_H
