// UTF-8 to UTF-16 and to UTF-32.
#include <zel/strings.h>

#include "strings/utf_blocks.h"
#include "strings/utf_tables.h"

namespace {

using namespace zel::utf;

// Both decoders in one: Unit is ZelUTF16 or ZelUTF32. A sequence never gives more units than it
// has bytes. With kBlocks, the decoder to UTF-16 takes plain text in blocks first.
template <typename Unit, bool kBlocks = false>
ZelConvResult DecodeUtf8(const ZelUTF8** source, const ZelUTF8* sourceEnd, Unit** target, Unit* targetEnd,
                         bool strict) {
    constexpr bool kToUtf16 = sizeof(Unit) == 2;

    // ASCII words and well-formed sequences up to stop; false at what is left to the full rules.
    auto words = [strict](const ZelUTF8*& src, const ZelUTF8* stop, Unit*& tgt) {
        while (src < stop) {
            const DWORD b0 = src[0];
            if (b0 < 0x80) {
                if (!(Load64(src) & kAsciiBytes)) {
                    for (int i = 0; i < 8; ++i) tgt[i] = static_cast<Unit>(src[i]);
                    src += 8;
                    tgt += 8;
                } else {
                    *tgt++ = static_cast<Unit>(b0);
                    ++src;
                }
                continue;
            }
            const DWORD b1 = src[1];
            if ((b1 & 0xC0) != 0x80) return false;
            if (b0 < 0xE0) {
                if (b0 < 0xC2) return false;  // a stray trailing byte or an overlong form
                *tgt++ = static_cast<Unit>(((b0 & 0x1F) << 6) | (b1 & 0x3F));
                src += 2;
                continue;
            }
            const DWORD b2 = src[2];
            if ((b2 & 0xC0) != 0x80) return false;
            if (b0 < 0xF0) {
                const DWORD c = ((b0 & 0x0F) << 12) | ((b1 & 0x3F) << 6) | (b2 & 0x3F);
                // Below 0x800 is overlong; the surrogates of a strict run are refused by the full rules.
                if (c < 0x800 || (kToUtf16 && strict && IsSurrogate(c))) return false;
                *tgt++ = static_cast<Unit>(c);
                src += 3;
                continue;
            }
            const DWORD b3 = src[3];
            if ((b3 & 0xC0) != 0x80 || b0 > 0xF4) return false;
            const DWORD c = ((b0 & 0x07) << 18) | ((b1 & 0x3F) << 12) | ((b2 & 0x3F) << 6) | (b3 & 0x3F);
            if (c < ZEL_PLANE_BASE || c > ZEL_UNICODE_LAST) return false;
            if constexpr (kToUtf16) {
                WriteSurrogatePair(c, tgt);
                tgt += 2;
            } else {
                *tgt++ = c;
            }
            src += 4;
        }
        return true;
    };

    // Blocks while they are plain; after one that is not, the words take 32 bytes or stop.
    auto fast = [&words](const ZelUTF8*& src, const ZelUTF8* fastEnd, Unit*& tgt) {
        while (src < fastEnd) {
            const ZelUTF8* stop = fastEnd;
#if ZEL_UTF_BLOCKS
            if constexpr (kBlocks && kToUtf16) {
                Utf8ToUtf16Blocks(src, fastEnd, tgt);
                if (src >= fastEnd) return;
                stop = std::min(fastEnd, src + 32);
            }
#endif
            if (!words(src, stop, tgt)) return;
        }
    };

    // The full rules, in their order: cut off by the source end, illegal, no target room, and
    // for UTF-16 the value.
    auto step = [=](const ZelUTF8*& src, Unit*& tgt, ZelConvResult& result) {
        const int extra = kTrailingBytes[*src];
        if (sourceEnd - src <= extra) {
            result = ZelConvSourceExhausted;
            return false;
        }
        if (!IsLegalSequence(src, extra + 1)) {
            result = ZelConvSourceIllegal;
            return false;
        }
        const DWORD c = SequenceValue(src, extra);
        if (targetEnd - tgt < 1) {
            result = ZelConvTargetExhausted;
            return false;
        }
        if constexpr (kToUtf16) {
            if (c <= ZEL_BASIC_PLANE_LAST) {
                if (strict && IsSurrogate(c)) {
                    result = ZelConvSourceIllegal;
                    return false;
                }
                *tgt++ = static_cast<Unit>(c);
            } else if (!PutSurrogatePair(c, tgt, targetEnd, result)) {
                return false;
            }
        } else {
            *tgt++ = c;
        }
        src += extra + 1;
        return true;
    };

    return RunConverter<1>(source, sourceEnd, target, targetEnd, fast, step);
}

}  // namespace

ZelConvResult ZelConvertUTF8toUTF16(const ZelUTF8** source, const ZelUTF8* sourceEnd, ZelUTF16** target,
                                    ZelUTF16* targetEnd, DWORD flags) {
    if (BlocksAvailable()) return DecodeUtf8<ZelUTF16, true>(source, sourceEnd, target, targetEnd, flags == ZelConvStrict);
    return DecodeUtf8(source, sourceEnd, target, targetEnd, flags == ZelConvStrict);
}

ZelConvResult zel::utf::ScalarUTF8toUTF16(const ZelUTF8** source, const ZelUTF8* sourceEnd, ZelUTF16** target,
                                          ZelUTF16* targetEnd, DWORD flags) {
    return DecodeUtf8(source, sourceEnd, target, targetEnd, flags == ZelConvStrict);
}

ZelConvResult ZelConvertUTF8toUTF32(const ZelUTF8** source, const ZelUTF8* sourceEnd, ZelUTF32** target,
                                    ZelUTF32* targetEnd, DWORD /*flags*/) {
    return DecodeUtf8(source, sourceEnd, target, targetEnd, false);
}
