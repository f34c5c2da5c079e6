// Display order in one pass: each run at the lowest odd level or above is turned around, and the
// runs one level higher inside it are turned around once more, which leaves them in reading order.
#include "bidi/bidi_internal.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "bidi/bidi_simd.h"
#include "bidi/unicode_lookup.h"

namespace zelbidi {

namespace {

// The four units of a 64-bit word in the opposite order.
inline uint64_t Reversed4(uint64_t v) {
    v = (v >> 32) | (v << 32);
    return ((v >> 16) & 0x0000FFFF0000FFFFull) | ((v & 0x0000FFFF0000FFFFull) << 16);
}

#if ZEL_BIDI_SSE2
// The eight units of a register in the opposite order.
inline __m128i Reversed8(__m128i v) {
    v = _mm_shufflelo_epi16(v, 0x1B);
    v = _mm_shufflehi_epi16(v, 0x1B);
    return _mm_shuffle_epi32(v, 0x4E);
}
#endif

// Reverses [first, last) in place, eight units from each end at a time where there are registers
// of eight, then four.
void ReverseUnits(WCHAR* first, WCHAR* last) {
#if ZEL_BIDI_SSE2
    while (last - first >= 16) {
        const __m128i front = Reversed8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(first)));
        const __m128i back = Reversed8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(last - 8)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(first), back);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(last - 8), front);
        first += 8;
        last -= 8;
    }
#endif
    while (last - first >= 8) {
        uint64_t front, back;
        std::memcpy(&front, first, sizeof front);
        std::memcpy(&back, last - 4, sizeof back);
        front = Reversed4(front);
        back = Reversed4(back);
        std::memcpy(first, &back, sizeof back);
        std::memcpy(last - 4, &front, sizeof front);
        first += 4;
        last -= 4;
    }
    std::reverse(first, last);
}

// Bit k set where levels[k] isn't level, for the n (at most 64) levels from levels on; none
// beyond n.
uint64_t HigherMask(const WORD* levels, DWORD n, unsigned level) {
    uint64_t same = 0;
    DWORD k = 0;
#if ZEL_BIDI_SSE2
    const __m128i all = _mm_set1_epi16(static_cast<short>(level));
    for (; n - k >= 16; k += 16) {
        const __m128i* const at = reinterpret_cast<const __m128i*>(levels + k);
        const __m128i low = _mm_cmpeq_epi16(_mm_loadu_si128(at), all);
        const __m128i high = _mm_cmpeq_epi16(_mm_loadu_si128(at + 1), all);
        same |= uint64_t{static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(low, high)))} << k;
    }
#endif
    for (; k < n; ++k) same |= uint64_t{levels[k] == level} << k;
    const uint64_t inside = n >= 64 ? ~uint64_t{0} : (uint64_t{1} << n) - 1;
    return ~same & inside;
}

// Mirrors, in the run turned around at turn, the units of [start, end) at level lowest whose
// property byte has the mirrored flag. Mirrored characters are few: the flags are looked through
// sixteen at a time where there are registers of sixteen bytes, then eight.
void MirrorRun(WCHAR* turn, const WCHAR* text, const BYTE* props, const WORD* levels, DWORD start, DWORD end,
               unsigned lowest) {
    DWORD j = start;
#if ZEL_BIDI_SSE2
    for (; end - j >= 16; j += 16) {
        const __m128i sixteen = _mm_loadu_si128(reinterpret_cast<const __m128i*>(props + j));
        auto flags = static_cast<unsigned>(_mm_movemask_epi8(sixteen));
        for (; flags; flags &= flags - 1) {
            const DWORD k = j + static_cast<DWORD>(__builtin_ctz(flags));
            if (levels[k] == lowest) *(turn - k) = MirrorOf(text[k]);
        }
    }
#endif
    for (; j < end; ++j) {
        if (end - j >= 8) {
            uint64_t eight;
            std::memcpy(&eight, props + j, sizeof eight);
            if (!(eight & 0x8080808080808080ull)) {
                j += 7;
                continue;
            }
        }
        if ((props[j] >> kMirroredShift) && levels[j] == lowest) *(turn - j) = MirrorOf(text[j]);
    }
}

// The run [start, end) at lowest or above: every unit to the mirror place of the run, and then
// each higher run inside it, turned around with the rest, turned back.
template <bool kMirror>
void TurnRun(WCHAR* out, const WCHAR* text, const BYTE* props, const WORD* levels, DWORD start, DWORD end,
             unsigned lowest) {
    WCHAR* const turn = out + start + end - 1;
    DWORD j = start;
#if ZEL_BIDI_SSE2
    for (; end - j >= 8; j += 8) {
        const __m128i eight = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + j));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(turn - j - 7), Reversed8(eight));
    }
#endif
    for (; end - j >= 4; j += 4) {
        uint64_t four;
        std::memcpy(&four, text + j, sizeof four);
        four = Reversed4(four);
        std::memcpy(turn - j - 3, &four, sizeof four);
    }
    for (; j < end; ++j) *(turn - j) = text[j];
    // Only the units at the lowest odd level have an odd level.
    if (kMirror) {
        if (props) {
            MirrorRun(turn, text, props, levels, start, end, lowest);
        } else {
            for (j = start; j < end; ++j)
                if (levels[j] == lowest) *(turn - j) = MirrorOf(text[j]);
        }
    }
    // The higher runs, found 64 levels at a time: a bit of edges marks where a run begins or
    // ends, and a run still open at the end of a window goes on into the next.
    DWORD open = 0;
    bool inside = false;
    for (DWORD window = start; window < end; window += 64) {
        const DWORD n = std::min<DWORD>(64, end - window);
        const uint64_t higher = HigherMask(levels + window, n, lowest);
        for (uint64_t edges = higher ^ (higher << 1 | uint64_t{inside}); edges; edges &= edges - 1) {
            const DWORD at = window + static_cast<DWORD>(__builtin_ctzll(edges));
            if (!inside) open = at;
            else ReverseUnits(turn - (at - 1), turn - open + 1);
            inside = !inside;
        }
        inside = n == 64 && (higher >> 63);
    }
    if (inside) ReverseUnits(turn - (end - 1), turn - open + 1);
}

template <bool kMirror>
void Reorder(WCHAR* out, const WCHAR* text, const BYTE* props, const WORD* levels, DWORD count, WORD baseLevel) {
    // At an odd base level the whole line is one run.
    if (baseLevel & 1) {
        TurnRun<kMirror>(out, text, props, levels, 0, count, baseLevel);
        return;
    }
    const unsigned lowest = baseLevel + 1u;
    DWORD i = 0;
    while (i < count) {
        if (levels[i] < lowest) {
            out[i] = text[i];
            ++i;
            continue;
        }
        const DWORD start = i;
        while (i < count && levels[i] >= lowest) ++i;
        TurnRun<kMirror>(out, text, props, levels, start, i, lowest);
    }
}

}  // namespace

void ReorderInto(WCHAR* out, const WCHAR* text, const BYTE* props, const WORD* levels, DWORD count, WORD baseLevel,
                 bool mirror) {
    if (mirror) Reorder<true>(out, text, props, levels, count, baseLevel);
    else Reorder<false>(out, text, props, levels, count, baseLevel);
}

}  // namespace zelbidi
