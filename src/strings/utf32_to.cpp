// UTF-32 to UTF-16 and to UTF-8.
#include <zel/strings.h>

#include "strings/utf_tables.h"

namespace {

using namespace zel::utf;

// Eight values below kLimit.
template <DWORD kLimit>
inline bool EightBelow(const ZelUTF32* src) {
    bool below = true;
    for (int i = 0; i < 8; ++i) below &= src[i] < kLimit;
    return below;
}

}  // namespace

ZelConvResult ZelConvertUTF32toUTF16(const ZelUTF32** source, const ZelUTF32* sourceEnd, ZelUTF16** target,
                                     ZelUTF16* targetEnd, DWORD flags) {
    const bool strict = flags == ZelConvStrict;
    auto fast = [](const ZelUTF32*& src, const ZelUTF32* fastEnd, ZelUTF16*& tgt) {
        while (src < fastEnd) {
            if (EightBelow<ZEL_SURROGATE_HIGH_FIRST>(src)) {
                for (int i = 0; i < 8; ++i) tgt[i] = static_cast<ZelUTF16>(src[i]);
                src += 8;
                tgt += 8;
                continue;
            }
            const DWORD c = *src;
            if (c <= ZEL_BASIC_PLANE_LAST && !IsSurrogate(c)) {
                *tgt++ = static_cast<ZelUTF16>(c);
            } else if (c >= ZEL_PLANE_BASE && c <= ZEL_UNICODE_LAST) {
                WriteSurrogatePair(c, tgt);
                tgt += 2;
            } else {
                return;
            }
            ++src;
        }
    };
    // The target is tested before the value.
    auto step = [targetEnd, strict](const ZelUTF32*& src, ZelUTF16*& tgt, ZelConvResult& result) {
        if (targetEnd - tgt < 1) {
            result = ZelConvTargetExhausted;
            return false;
        }
        const DWORD c = *src;
        if (c <= ZEL_BASIC_PLANE_LAST) {
            if (strict && IsSurrogate(c)) {
                result = ZelConvSourceIllegal;
                return false;
            }
            *tgt++ = static_cast<ZelUTF16>(c);
        } else if (c > ZEL_UNICODE_LAST) {
            // A strict run passes over the value and goes on; the status stands unless a later
            // stop replaces it.
            if (strict) {
                result = ZelConvSourceIllegal;
            } else {
                *tgt++ = static_cast<ZelUTF16>(ZEL_REPLACEMENT_CHAR);
            }
        } else if (!PutSurrogatePair(c, tgt, targetEnd, result)) {
            return false;
        }
        ++src;
        return true;
    };
    return RunConverter<2>(source, sourceEnd, target, targetEnd, fast, step);
}

ZelConvResult ZelConvertUTF32toUTF8(const ZelUTF32** source, const ZelUTF32* sourceEnd, ZelUTF8** target,
                                    ZelUTF8* targetEnd, DWORD flags) {
    const bool strict = flags == ZelConvStrict;
    auto fast = [strict](const ZelUTF32*& src, const ZelUTF32* fastEnd, ZelUTF8*& tgt) {
        while (src < fastEnd) {
            DWORD c = *src;
            if (c < 0x80 && EightBelow<0x80>(src)) {
                for (int i = 0; i < 8; ++i) tgt[i] = static_cast<ZelUTF8>(src[i]);
                src += 8;
                tgt += 8;
                continue;
            }
            if (strict && IsSurrogate(c)) return;
            const int length = EncodedLength(c);
            WriteSequence(c, length, tgt);
            tgt += length;
            ++src;
        }
    };
    // The value is tested before the target.
    auto step = [targetEnd, strict](const ZelUTF32*& src, ZelUTF8*& tgt, ZelConvResult& result) {
        DWORD c = *src;
        if (strict && IsSurrogate(c)) {
            result = ZelConvSourceIllegal;
            return false;
        }
        const int length = EncodedLength(c);
        if (targetEnd - tgt < length) {
            result = ZelConvTargetExhausted;
            return false;
        }
        WriteSequence(c, length, tgt);
        tgt += length;
        ++src;
        return true;
    };
    return RunConverter<4>(source, sourceEnd, target, targetEnd, fast, step);
}
