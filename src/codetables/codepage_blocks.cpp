// The block kernel of the table path's decoder, in AVX-512.
//
// Where the characters start follows from one bit a byte: h, the byte would open a double-byte
// code if a character started there (at or above the first code with the byte behind it, and for
// 932 outside the half-width bytes). The byte behind a byte without h always starts a character,
// so a byte is the second of a code exactly when an odd run of h bytes stands before it; one
// subtraction over the 64 bits of a block finds those runs. Each start then gets its unit: the
// byte itself, or for an opening byte the table entry of the code that it and the byte behind it
// make, gathered sixteen at a time; a compress puts the units of the starts side by side.
//
// A four-byte sequence of 936 (opener, digit, byte from 0x81, digit) reads as two codes to the
// above, so the starts agree again behind it. Its opener is a code before a digit that is not
// the second half of another such sequence: in a chain of those codes every second one opens,
// the same runs problem once more over every other bit. The kernel leaves the second code out of
// the starts, gives a pair a second slot and checks that the table opens exactly those codes.
// The sequences' units come all at once too: their bytes compressed to one 32-bit lane each, V
// from two multiply-adds, a place of the basic plane gathered, a pair computed. The first unit
// takes the opener's entry, the second the slot of the byte behind the opener, so that one store
// writes the block.
#include "codetables/codepage_block_kernels.h"

#include <cstdint>

#include "codetables/code_tables.h"
#include "codetables/codepage_table_path.h"

#if ZEL_UTF_BLOCKS

namespace {

using zel::codepage::Entries;
using zel::codepage::kAll16;

constexpr uint64_t kOddBits = 0xAAAAAAAAAAAAAAAAull;
constexpr uint64_t kEvenBits = 0x5555555555555555ull;
// Code page 932 reads 0xA0 to 0xDF as U+FF60 to U+FF9F.
constexpr short kHalfWidthOffset = short(0xFEC0);

// The bits of x below bit `at`.
inline uint64_t Below(uint64_t x, unsigned at) { return at >= 64 ? x : x & ((uint64_t(1) << at) - 1); }

// The first, third, fifth ... bit of each run of set bits.
inline uint64_t OddPlacesOfRuns(uint64_t x) { return ((((x << 1) | kOddBits) - x) ^ kOddBits) & x; }

ZEL_AVX512 inline uint64_t BytesIn(__m512i bytes, int low, int high) {
    return _mm512_cmpge_epu8_mask(bytes, _mm512_set1_epi8(char(low))) &
           _mm512_cmple_epu8_mask(bytes, _mm512_set1_epi8(char(high)));
}

// The 32 bytes from p widened to 16 bits, and the codes that each makes with the byte behind it.
struct Half {
    __m512i bytes;
    __m512i codes;
};

ZEL_AVX512 inline Half HalfAt(const BYTE* p) {
    const __m512i b = _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)));
    const __m512i n = _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 1)));
    return {b, _mm512_or_si512(_mm512_slli_epi16(b, 8), n)};
}

// The unit of a byte that stands alone.
template <ZelTablePage kPage>
ZEL_AVX512 inline __m512i SingleUnits(__m512i b) {
    if constexpr (kPage != ZelTablePage::Kana932) return b;
    const __mmask32 halfWidth =
        _mm512_cmpge_epu16_mask(b, _mm512_set1_epi16(0xA0)) & _mm512_cmple_epu16_mask(b, _mm512_set1_epi16(0xDF));
    return _mm512_mask_add_epi16(b, halfWidth, b, _mm512_set1_epi16(kHalfWidthOffset));
}

// The 16-bit lanes of v from lane `from` on, moved down to lane 0.
ZEL_AVX512 inline __m512i LanesFrom(__m512i v, unsigned from) {
    alignas(64) static constexpr short kLanes[32] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10,
                                                     11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21,
                                                     22, 23, 24, 25, 26, 27, 28, 29, 30, 31};
    const __m512i lanes = _mm512_add_epi16(_mm512_load_si512(kLanes), _mm512_set1_epi16(short(from)));
    return _mm512_permutexvar_epi16(lanes, v);
}

// Writes the units of the slots side by side, the lead units that entries holds in order at the
// slots of leads and the single units at the others; gives how many slots there were.
ZEL_AVX512 inline unsigned Store(WCHAR* out, __m512i singles, __m512i entries, uint32_t slots, uint32_t leads) {
    const unsigned count = unsigned(__builtin_popcount(slots));
    const __m512i units =
        _mm512_mask_expand_epi16(_mm512_maskz_compress_epi16(slots, singles), _pext_u32(leads, slots), entries);
    _mm512_mask_storeu_epi16(out, __mmask32(uint32_t((uint64_t(1) << count) - 1)), units);
    return count;
}

// The units of the four-byte sequences that start at the bits of `at` (of the shape the kernel
// takes, none reaching beyond the block), in their order: the first unit of each, the second of
// those that give a pair, and the sequences with neither a place of the basic plane nor a pair.
struct Sequences {
    __m512i units;  // the first units in lanes 0 to 15, the second units in lanes 16 to 31
    uint32_t odd;
};

ZEL_AVX512 inline Sequences SequencesAt(__m512i bytes, uint64_t at, const WCHAR* unitsOfPlaces) {
    // The four bytes of each sequence side by side, one 32-bit lane a sequence, the first lowest;
    // V = (b1 x 10 + b2) x 1260 + b3 x 10 + b4.
    const __m512i four = _mm512_maskz_compress_epi8(at | at << 1 | at << 2 | at << 3, bytes);
    const __m512i tens = _mm512_maddubs_epi16(four, _mm512_set1_epi16(0x010A));
    const __m512i value = _mm512_madd_epi16(tens, _mm512_set1_epi32(1 << 16 | 1260));
    const unsigned count = unsigned(__builtin_popcountll(at));
    const __mmask16 lanes = __mmask16((1u << count) - 1);
    const __m512i place = _mm512_sub_epi32(value, _mm512_set1_epi32(kZel936FirstFourByteValue));
    const __mmask16 basic =
        _mm512_mask_cmplt_epu32_mask(lanes, place, _mm512_set1_epi32(int(kZelFourByteBasicPlaneCodes)));
    // Openers up to 0xE2 only: from 0x90 on every sequence is a code point beyond the basic plane.
    const __mmask16 pair = _mm512_mask_cmpge_epu32_mask(
        lanes, _mm512_and_si512(four, _mm512_set1_epi32(0xFF)), _mm512_set1_epi32(0x90));
    const __m512i beyond = _mm512_sub_epi32(value, _mm512_set1_epi32(kZel936SupplementaryBase + 0x10000));
    __m512i firsts = _mm512_add_epi32(_mm512_maskz_srli_epi32(kAll16, beyond, 10), _mm512_set1_epi32(0xD800));
    // A place is read as 32 bits, with the unit behind it; the table keeps one unit beyond the
    // last place. A gather costs by its width, not by the lanes it reads, and a block rarely
    // holds more than four sequences: the first four take a narrow one, with no branch.
    const __m128i reads = _mm512_maskz_extracti32x4_epi32(0xF, _mm512_maskz_set1_epi32(basic, -1), 0);
    const __m128i units = _mm_mask_i32gather_epi32(_mm512_maskz_extracti32x4_epi32(0xF, firsts, 0),
                                                   reinterpret_cast<const int*>(unitsOfPlaces),
                                                   _mm512_maskz_extracti32x4_epi32(0xF, place, 0), reads, 2);
    firsts = _mm512_inserti32x4(firsts, units, 0);
    if (count > 4) firsts = _mm512_mask_i32gather_epi32(firsts, __mmask16(basic & ~0xF), place, unitsOfPlaces, 2);
    const __m512i seconds =
        _mm512_add_epi32(_mm512_and_si512(beyond, _mm512_set1_epi32(0x3FF)), _mm512_set1_epi32(0xDC00));
    alignas(64) static constexpr short kLowHalves[32] = {0,  2,  4,  6,  8,  10, 12, 14, 16, 18, 20,
                                                         22, 24, 26, 28, 30, 32, 34, 36, 38, 40, 42,
                                                         44, 46, 48, 50, 52, 54, 56, 58, 60, 62};
    return {_mm512_permutex2var_epi16(firsts, _mm512_load_si512(kLowHalves), seconds),
            uint32_t(lanes & ~basic & ~pair)};
}

template <ZelTablePage kPage>
ZEL_AVX512 void DecodeBlocks(const WORD* table, unsigned first, const WCHAR* unitsOfPlaces, const BYTE*& text,
                             const BYTE* end, WCHAR*& out) {
    const BYTE* p = text;
    WCHAR* o = out;
    const __m512i firstHigh = _mm512_set1_epi8(char(first >> 8));
    const __m512i firstLow = _mm512_set1_epi8(char(first & 0xFF));
    while (end - p >= 64) {
        const __m512i bytes = _mm512_loadu_si512(p);
        if (!_mm512_movepi8_mask(bytes)) {
            _mm512_storeu_si512(o, _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))));
            _mm512_storeu_si512(o + 32,
                                _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 32))));
            p += 64;
            o += 64;
            continue;
        }
        const __m512i next = _mm512_loadu_si512(p + 1);
        uint64_t h = _mm512_cmpgt_epu8_mask(bytes, firstHigh) |
                     (_mm512_cmpeq_epi8_mask(bytes, firstHigh) & _mm512_cmpge_epu8_mask(next, firstLow));
        if constexpr (kPage == ZelTablePage::Kana932) h &= ~BytesIn(bytes, 0xA0, 0xDF);
        // Runs of h: every second byte from the start of a run opens a code.
        const uint64_t runs = (((h << 1) | kOddBits) - h) ^ kOddBits;
        uint64_t leads = runs & h;
        uint64_t starts = ~(runs ^ h);
        uint64_t refused = 0;
        uint64_t cut = 0;
        uint64_t openers = 0;
        uint64_t sequences = 0;
        uint64_t slots = starts;
        if constexpr (kPage == ZelTablePage::Gb936) {
            const uint64_t digits = BytesIn(bytes, '0', '9');
            const uint64_t chained = leads & BytesIn(next, '0', '9');
            openers = _pdep_u64(OddPlacesOfRuns(_pext_u64(chained, kEvenBits)), kEvenBits) |
                      _pdep_u64(OddPlacesOfRuns(_pext_u64(chained, kOddBits)), kOddBits);
            // A sequence that the block cuts ends the block before it; the next block starts
            // there. The shape the kernel takes whole: a third byte from 0x81 to 0xFE, a fourth
            // that is a digit, and an opener below 0xE3, so that the sequence gives two units
            // exactly when its opener is 0x90 or above.
            constexpr uint64_t kWhole = ~uint64_t(0) >> 4;
            cut = openers & ~kWhole;
            const uint64_t third = BytesIn(bytes, 0x81, 0xFE);
            const uint64_t shaped = (third >> 2) & (digits >> 3) & BytesIn(bytes, 0x81, 0xE2);
            refused = openers & ~shaped & kWhole;
            sequences = openers & shaped & kWhole;
            starts &= ~(openers << 2) & ~(openers << 3);
            leads &= starts;
            slots = starts | (openers & BytesIn(bytes, 0x90, 0xFF)) << 1;
        }
        // At most 32 leads in 64 bytes: their indexes side by side in one register, the codes
        // 0xFFFF left out of the reads.
        const Half halves[2] = {HalfAt(p), HalfAt(p + 32)};
        const uint32_t leadsOf[2] = {uint32_t(leads), uint32_t(leads >> 32)};
        const unsigned firstLeads = unsigned(__builtin_popcount(leadsOf[0]));
        const unsigned allLeads = firstLeads + unsigned(__builtin_popcount(leadsOf[1]));
        uint32_t last = 0;
        __m512i indexes[2];
        for (int half = 0; half < 2; ++half) {
            const __m512i codes = halves[half].codes;
            const uint32_t lastHere = _mm512_cmpeq_epi16_mask(codes, _mm512_set1_epi16(-1)) & leadsOf[half];
            refused |= uint64_t(lastHere) << 32 * half;
            last |= _pext_u32(lastHere, leadsOf[half]) << (half ? firstLeads : 0);
            indexes[half] = _mm512_maskz_compress_epi16(
                leadsOf[half], _mm512_sub_epi16(codes, _mm512_set1_epi16(short(first))));
        }
        const __m512i all = _mm512_mask_expand_epi16(indexes[0], __mmask32(~((uint64_t(1) << firstLeads) - 1)),
                                                     indexes[1]);
        const uint32_t read = uint32_t((uint64_t(1) << allLeads) - 1);
        __m512i entries = Entries(table, all, read & ~last);
        __m512i singles[2] = {SingleUnits<kPage>(halves[0].bytes), SingleUnits<kPage>(halves[1].bytes)};
        if constexpr (kPage == ZelTablePage::Gb936) {
            const uint32_t opened =
                _mm512_cmpeq_epi16_mask(entries, _mm512_set1_epi16(short(kZel936OpenerMarker))) & read;
            refused |= (_pdep_u64(opened, leads) ^ openers) & leads;
            // A sequence's first unit takes the place of its opener's entry; the second unit of a
            // pair, the slot of the byte behind the opener. Units of sequences at or beyond the
            // stop below land in lanes that no slot takes.
            if (sequences) {
                const Sequences units = SequencesAt(bytes, sequences, unitsOfPlaces);
                refused |= _pdep_u64(units.odd, sequences);
                entries = _mm512_mask_expand_epi16(entries, __mmask32(_pext_u64(sequences, leads)), units.units);
                const uint64_t seconds = sequences << 1;
                const unsigned secondsBefore = 16 + unsigned(__builtin_popcount(uint32_t(seconds)));
                singles[0] = _mm512_mask_expand_epi16(singles[0], __mmask32(seconds), LanesFrom(units.units, 16));
                singles[1] = _mm512_mask_expand_epi16(singles[1], __mmask32(seconds >> 32),
                                                      LanesFrom(units.units, secondsBefore));
            }
        }
        // Up to the first character left to the walk one at a time, or to the cut.
        const unsigned cutAt = cut ? unsigned(__builtin_ctzll(cut)) : 64;
        const unsigned refusedAt = refused ? unsigned(__builtin_ctzll(refused)) : 64;
        const unsigned stop = refusedAt < cutAt ? refusedAt : cutAt;
        slots = Below(slots, stop);
        o += Store(o, singles[0], entries, uint32_t(slots), leadsOf[0]);
        o += Store(o, singles[1], LanesFrom(entries, firstLeads), uint32_t(slots >> 32), leadsOf[1]);
        // The next block's start depends on the bytes alone, not on this block's gathers.
        if (refusedAt < cutAt) {
            p += refusedAt;
            break;
        }
        if (cut) {
            p += cutAt;
            continue;
        }
        // A code opened by the last byte ends behind the block.
        p += 64 + (leads >> 63);
    }
    text = p;
    out = o;
}

}  // namespace

bool ZelCodePageBlocks() {
    // The kernels also take bits apart and together with BMI2, which every processor with the
    // kernels of level 2 has so far, but which is a feature of its own.
    static const bool bitFields = (__builtin_cpu_init(), __builtin_cpu_supports("bmi2"));
    return bitFields && zel::utf::BlockLevel() >= 2;
}

void ZelDecodeBlocks(ZelTablePage page, const WORD* mb2Uni, unsigned first, const WCHAR* unitsOfPlaces,
                     const BYTE*& text, const BYTE* end, WCHAR*& out) {
    switch (page) {
    case ZelTablePage::Kana932: return DecodeBlocks<ZelTablePage::Kana932>(mb2Uni, first, nullptr, text, end, out);
    case ZelTablePage::Gb936: return DecodeBlocks<ZelTablePage::Gb936>(mb2Uni, first, unitsOfPlaces, text, end, out);
    case ZelTablePage::Plain: break;
    }
    DecodeBlocks<ZelTablePage::Plain>(mb2Uni, first, nullptr, text, end, out);
}

#endif  // ZEL_UTF_BLOCKS
