// UTF-16 to UTF-32 and to UTF-8.
#include <zel/strings.h>

#include "strings/utf_blocks.h"
#include "strings/utf_tables.h"

namespace {

using namespace zel::utf;

// The pairing step: reads the character at src and moves past it. Gives false with the status
// set, src left on the unit, when a strict run refuses a surrogate that is not part of a pair.
inline bool ReadPaired(const ZelUTF16*& src, const ZelUTF16* sourceEnd, bool strict, DWORD& c,
                       ZelConvResult& result) {
    c = *src;
    if (IsHighSurrogate(c)) {
        if (src + 1 < sourceEnd) {
            const DWORD next = src[1];
            if (IsLowSurrogate(next)) {
                c = CombineSurrogates(c, next);
                src += 2;
                return true;
            }
            if (strict) {
                result = ZelConvSourceIllegal;
                return false;
            }
        }
        // The last unit of the source: nothing follows to pair it with.
    } else if (strict && IsLowSurrogate(c)) {
        result = ZelConvSourceIllegal;
        return false;
    }
    ++src;
    return true;
}

// Four units below 0x80 in a 64-bit word.
inline bool FourAscii(const ZelUTF16* src) { return !(Load64(src) & kAsciiUnits16); }

}  // namespace

ZelConvResult ZelConvertUTF16toUTF32(const ZelUTF16** source, const ZelUTF16* sourceEnd, ZelUTF32** target,
                                     ZelUTF32* targetEnd, DWORD flags) {
    const bool strict = flags == ZelConvStrict;
    auto fast = [](const ZelUTF16*& src, const ZelUTF16* fastEnd, ZelUTF32*& tgt) {
        while (src < fastEnd) {
            // Eight units without a surrogate widen as they are.
            bool plain = true;
            for (int i = 0; i < 8; ++i) plain &= !IsSurrogate(src[i]);
            if (plain) {
                for (int i = 0; i < 8; ++i) tgt[i] = src[i];
                src += 8;
                tgt += 8;
                continue;
            }
            const DWORD c = src[0];
            if (!IsSurrogate(c)) {
                *tgt++ = c;
                ++src;
            } else if (IsHighSurrogate(c) && IsLowSurrogate(src[1])) {
                *tgt++ = CombineSurrogates(c, src[1]);
                src += 2;
            } else {
                return;
            }
        }
    };
    auto step = [sourceEnd, targetEnd, strict](const ZelUTF16*& src, ZelUTF32*& tgt, ZelConvResult& result) {
        const ZelUTF16* start = src;
        DWORD c;
        if (!ReadPaired(src, sourceEnd, strict, c, result)) return false;
        if (targetEnd - tgt < 1) {
            src = start;
            result = ZelConvTargetExhausted;
            return false;
        }
        *tgt++ = c;
        return true;
    };
    return RunConverter<1>(source, sourceEnd, target, targetEnd, fast, step);
}

namespace {

// With kBlocks, plain text is taken in blocks first.
template <bool kBlocks>
ZelConvResult EncodeUtf16(const ZelUTF16** source, const ZelUTF16* sourceEnd, ZelUTF8** target, ZelUTF8* targetEnd,
                          DWORD flags) {
    const bool strict = flags == ZelConvStrict;
    // Up to stop; false at what is left to the full rules.
    auto words = [](const ZelUTF16*& src, const ZelUTF16* stop, ZelUTF8*& tgt) {
        while (src < stop) {
            const DWORD c = src[0];
            if (c < 0x80) {
                if (FourAscii(src) && FourAscii(src + 4)) {
                    for (int i = 0; i < 8; ++i) tgt[i] = static_cast<ZelUTF8>(src[i]);
                    src += 8;
                    tgt += 8;
                } else {
                    *tgt++ = static_cast<ZelUTF8>(c);
                    ++src;
                }
            } else if (c >= 0x800 && !IsSurrogate(c)) {
                tgt[0] = static_cast<ZelUTF8>(0xE0 | (c >> 12));
                tgt[1] = static_cast<ZelUTF8>(0x80 | ((c >> 6) & 0x3F));
                tgt[2] = static_cast<ZelUTF8>(0x80 | (c & 0x3F));
                tgt += 3;
                ++src;
            } else if (c < 0x800) {
                tgt[0] = static_cast<ZelUTF8>(0xC0 | (c >> 6));
                tgt[1] = static_cast<ZelUTF8>(0x80 | (c & 0x3F));
                tgt += 2;
                ++src;
            } else if (IsHighSurrogate(c) && IsLowSurrogate(src[1])) {
                WriteSequence(CombineSurrogates(c, src[1]), 4, tgt);
                tgt += 4;
                src += 2;
            } else {
                return false;
            }
        }
        return true;
    };
    // Blocks while they are plain; after one that is not, the words take 8 units or stop.
    auto fast = [&words](const ZelUTF16*& src, const ZelUTF16* fastEnd, ZelUTF8*& tgt) {
        while (src < fastEnd) {
            const ZelUTF16* stop = fastEnd;
#if ZEL_UTF_BLOCKS
            if constexpr (kBlocks) {
                Utf16ToUtf8Blocks(src, fastEnd, tgt);
                if (src >= fastEnd) return;
                stop = std::min(fastEnd, src + 8);
            }
#endif
            if (!words(src, stop, tgt)) return;
        }
    };
    auto step = [sourceEnd, targetEnd, strict](const ZelUTF16*& src, ZelUTF8*& tgt, ZelConvResult& result) {
        const ZelUTF16* start = src;
        DWORD c;
        if (!ReadPaired(src, sourceEnd, strict, c, result)) return false;
        const int length = EncodedLength(c);
        if (targetEnd - tgt < length) {
            src = start;
            result = ZelConvTargetExhausted;
            return false;
        }
        WriteSequence(c, length, tgt);
        tgt += length;
        return true;
    };
    // A unit gives three bytes at the most; a pair gives four.
    return RunConverter<3>(source, sourceEnd, target, targetEnd, fast, step);
}

}  // namespace

ZelConvResult ZelConvertUTF16toUTF8(const ZelUTF16** source, const ZelUTF16* sourceEnd, ZelUTF8** target,
                                    ZelUTF8* targetEnd, DWORD flags) {
    if (BlocksAvailable()) return EncodeUtf16<true>(source, sourceEnd, target, targetEnd, flags);
    return EncodeUtf16<false>(source, sourceEnd, target, targetEnd, flags);
}

ZelConvResult zel::utf::ScalarUTF16toUTF8(const ZelUTF16** source, const ZelUTF16* sourceEnd, ZelUTF8** target,
                                          ZelUTF8* targetEnd, DWORD flags) {
    return EncodeUtf16<false>(source, sourceEnd, target, targetEnd, flags);
}
