// ShapeString on arbitrary text. The first byte chooses the direction (0, 1 or another value), the
// mirror flag and whether the caller gives the class and level arrays; the rest is the text, two
// bytes a unit, most of them pulled into U+06xx, the lam-alef pairs and the formatting controls so
// that shaping has letters, marks and ligatures to work on; a zero unit becomes a space, so that
// a zero in the destination can only be its terminator. Every buffer is a heap block of exactly
// its size. Checked: the source is unchanged; the result is the count; the caller's levels stay
// within two above the base level; the destination either is the exact copy (left to right with
// nothing raised) or holds, before a terminator, at most count units and no fewer than count less
// one for each lam, with every formatting control turned into a blank; and every output is the one
// the straightforward form of ShapeString gives, whether or not BidiString resolved the same line
// just before (bit 4 of the first byte).
#include <zel/bidi.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "bidi/bidi_reference.h"

namespace {

// A failed check stops the run, naming the line, so that the fuzzer keeps the input.
void Check(bool ok, int line) {
    if (ok) return;
    std::fprintf(stderr, "fuzz_shape.cpp:%d: check failed\n", line);
    std::abort();
}
#define CHECK(condition) Check((condition), __LINE__)

WCHAR Unit(const uint8_t* p) {
    static constexpr WCHAR kLigature[8] = {0x0644, 0x0622, 0x0623, 0x0625, 0x0627, 0x0644, 0x064E, 0x0628};
    const WCHAR c = static_cast<WCHAR>(p[0] | (p[1] << 8));
    switch (p[1] & 7) {
        case 0:
        case 1:
        case 2:
            return static_cast<WCHAR>(0x0600 | (c & 0xFF));  // letters, marks, digits
        case 3:
            return kLigature[c & 7];
        case 4:
            return static_cast<WCHAR>(0x2000 | (c & 0x3F));  // spaces, joiners, controls
        default:
            return c ? c : WCHAR{0x0020};
    }
}

// Shapes into exact-size blocks and gives the number of units before the terminator, or count + 1
// for the exact copy without one.
size_t Run(const WCHAR* text, DWORD count, int direction, int mirror, bool ownArrays, bool bidiFirst,
           std::unique_ptr<WCHAR[]>& out) {
    std::unique_ptr<WCHAR[]> source(new WCHAR[count]);
    std::copy(text, text + count, source.get());
    out.reset(new WCHAR[count + 1]);
    std::fill(out.get(), out.get() + count + 1, WCHAR{0xBEEF});
    std::unique_ptr<WORD[]> classes(ownArrays ? new WORD[count] : nullptr);
    std::unique_ptr<WORD[]> levels(ownArrays ? new WORD[count] : nullptr);

    std::unique_ptr<WCHAR[]> expected(new WCHAR[count + 1]);
    std::fill(expected.get(), expected.get() + count + 1, WCHAR{0xBEEF});
    std::unique_ptr<WORD[]> expectedClasses(new WORD[count]), expectedLevels(new WORD[count]);
    CHECK(zelbidi::reference::ShapeString(expected.get(), source.get(), count, expectedClasses.get(),
                                          expectedLevels.get(), mirror, direction) == count);
    if (bidiFirst) {
        // BidiString leaves its resolution of the line for ShapeString, with the mirror flag
        // sometimes the other one.
        std::unique_ptr<WCHAR[]> display(new WCHAR[count]);
        std::copy(text, text + count, display.get());
        CHECK(BidiString(display.get(), count, nullptr, nullptr, mirror ^ (count & 1), direction) == count);
    }

    const DWORD n = ShapeString(out.get(), source.get(), count, classes.get(), levels.get(), mirror, direction);
    CHECK(n == count);
    CHECK(std::equal(out.get(), out.get() + count + 1, expected.get()));
    if (ownArrays) {
        CHECK(std::equal(classes.get(), classes.get() + count, expectedClasses.get()));
        CHECK(std::equal(levels.get(), levels.get() + count, expectedLevels.get()));
    }
    CHECK(std::equal(text, text + count, source.get()));
    if (ownArrays) {
        for (DWORD i = 0; i < count; ++i) CHECK(levels[i] <= (direction == 1 ? 3 : 2));
    }
    for (size_t i = 0; i <= count; ++i) {
        if (out[i] == 0) return i;
    }
    // No terminator: only the exact copy of a left-to-right line.
    CHECK(direction != 1);
    CHECK(std::equal(text, text + count, out.get()));
    CHECK(out[count] == 0xBEEF);
    return count + 1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const uint8_t flags = data[0];
    const int direction = (flags & 3) == 3 ? 7 : (flags & 1);
    const int mirror = (flags >> 2) & 1;
    const bool ownArrays = (flags >> 3) & 1;
    const bool bidiFirst = (flags >> 4) & 1;
    const DWORD count = static_cast<DWORD>((size - 1) / 2);
    std::unique_ptr<WCHAR[]> text(new WCHAR[count]);
    for (DWORD i = 0; i < count; ++i) text[i] = Unit(data + 1 + 2 * i);

    std::unique_ptr<WCHAR[]> out;
    const size_t length = Run(text.get(), count, direction, mirror, ownArrays, bidiFirst, out);
    if (length > count) return 0;  // the exact copy, checked in Run

    size_t lams = 0;
    for (DWORD i = 0; i < count; ++i) lams += text[i] == 0x0644;
    CHECK(length + lams >= count);
    for (size_t i = 0; i < length; ++i) {
        const WCHAR c = out[i];
        CHECK(!(c >= 0x200C && c <= 0x200F) && !(c >= 0x202A && c <= 0x202E));
    }
    return 0;
}
