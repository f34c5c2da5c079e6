// Random lines through the bidi resolution and reordering, in exactly sized heap buffers.
// BidiString: the classes are the stored ones, every level lies between the base level and two
// above it (no explicit embedding exists, so nothing goes higher), the display order is the one the
// levels give, mirroring only swaps characters for their partners, and null arrays change nothing.
// BidiAlgorithm on random classes, some skipped, and any base level: only L, R, AN, EN and BN come
// out, skipped positions stay as they were, and levels rise by at most 2. Every output is also
// held to the straightforward form of the same operations, and a line that ShapeString resolved
// just before gives BidiString the same results as a fresh one.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <numeric>
#include <vector>

#include <zel/bidi.h>

#include "bidi/bidi_reference.h"
#include "fuzz_check.h"

namespace {

// Characters of every class and the ones with a rule of their own. A unit of input picks one of
// them when its first byte is below 0x40, else it gives a character of U+0000 to U+3FFF or
// U+8000 to U+FFFF.
constexpr WCHAR kAlphabet[] = {
    u'a',   u'Z',   0x05D0, 0xFB21, 0xFB1E, 0x0627, 0x0644, 0x064E, 0x0660, u'0',   u'9',   u'.',
    u',',   u':',   u'+',   u'-',   u'$',   u'%',   u'#',   u' ',   u'\t',  0x001F, u'\n',  0x2029,
    0x200B, 0x200D, 0x202A, 0x202B, 0x202C, 0x202D, 0x202E, u'(',   u')',   u'<',   u'>',   u'[',
    0x2201, 0x2208, u'!',   u'"',
};
constexpr size_t kAlphabetSize = sizeof(kAlphabet) / sizeof(kAlphabet[0]);

// The display order that levels give: from the highest level down to the lowest odd one, every
// run at that level or above is reversed.
std::vector<WCHAR> Reordered(const WCHAR* text, const WORD* levels, size_t count, WORD base) {
    std::vector<WCHAR> out(text, text + count);
    WORD top = base;
    for (size_t i = 0; i < count; ++i) top = std::max(top, levels[i]);
    const WORD lowest = (base & 1) ? base : static_cast<WORD>(base + 1);
    for (WORD level = top; level >= lowest && level > 0; --level) {
        for (size_t i = 0; i < count;) {
            if (levels[i] < level) {
                ++i;
                continue;
            }
            size_t end = i;
            while (end < count && levels[end] >= level) ++end;
            std::reverse(out.begin() + static_cast<long>(i), out.begin() + static_cast<long>(end));
            i = end;
        }
    }
    return out;
}

void Lines(const std::vector<WCHAR>& source, int direction) {
    const size_t count = source.size();
    const DWORD n = static_cast<DWORD>(count);
    const WORD base = direction == 1 ? 1 : 0;

    auto plain = std::make_unique<WCHAR[]>(count);
    auto mirrored = std::make_unique<WCHAR[]>(count);
    auto bare = std::make_unique<WCHAR[]>(count);
    auto classes = std::make_unique<WORD[]>(count);
    auto levels = std::make_unique<WORD[]>(count);
    auto levels2 = std::make_unique<WORD[]>(count);
    std::copy(source.begin(), source.end(), plain.get());
    std::copy(source.begin(), source.end(), mirrored.get());
    std::copy(source.begin(), source.end(), bare.get());

    // The straightforward form first, so that the line ShapeString leaves below is the last one.
    auto expected = std::make_unique<WCHAR[]>(count);
    auto expectedClasses = std::make_unique<WORD[]>(count);
    auto expectedLevels = std::make_unique<WORD[]>(count);
    std::copy(source.begin(), source.end(), expected.get());
    Check(zelbidi::reference::BidiString(expected.get(), n, expectedClasses.get(), expectedLevels.get(), 0,
                                         direction) == n);
    // ShapeString on the same line leaves its resolution for the next BidiString.
    auto shaped = std::make_unique<WCHAR[]>(count + 1);
    Check(ShapeString(shaped.get(), source.data(), n, nullptr, nullptr, direction & 1, direction) == n);
    Check(BidiString(plain.get(), n, classes.get(), levels.get(), 0, direction) == n);
    Check(std::equal(plain.get(), plain.get() + count, expected.get()));
    Check(std::equal(classes.get(), classes.get() + count, expectedClasses.get()));
    Check(std::equal(levels.get(), levels.get() + count, expectedLevels.get()));
    Check(BidiString(mirrored.get(), n, nullptr, levels2.get(), 1, direction) == n);
    Check(BidiString(bare.get(), n, nullptr, nullptr, 0, direction) == n);
    for (size_t i = 0; i < count; ++i) {
        Check(classes[i] == ZelClassFromChWS(source[i]));
        Check(levels[i] >= base && levels[i] <= base + 2);
        Check(levels2[i] == levels[i]);
        Check(bare[i] == plain[i]);
        // Mirroring swaps a character for its partner and moves nothing.
        Check(mirrored[i] == plain[i] || mirrored[i] == GetBidiMirroredChar(plain[i]));
    }
    Check(Reordered(source.data(), levels.get(), count, base) == std::vector<WCHAR>(plain.get(), plain.get() + count));
}

void Classes(const uint8_t* data, size_t size) {
    if (size < 2) return;
    const LONG base = static_cast<LONG>(data[0]) - 64;
    const size_t count = size - 1;
    auto classes = std::make_unique<WORD[]>(count);
    auto levels = std::make_unique<WORD[]>(count);
    for (size_t i = 0; i < count; ++i) {
        const uint8_t b = data[1 + i];
        classes[i] = b >= 0xF0 ? 0xFFFF : static_cast<WORD>(b % 21);
        levels[i] = static_cast<WORD>(b * 7);
    }
    std::vector<WORD> before(classes.get(), classes.get() + count);
    std::vector<WORD> expectedClasses = before, expectedLevels(levels.get(), levels.get() + count);
    DWORD raised = 9, expectedRaised = 9;
    Check(BidiAlgorithm(base, nullptr, static_cast<DWORD>(count), classes.get(), levels.get(), &raised) == count);
    zelbidi::reference::BidiAlgorithm(base, static_cast<DWORD>(count), expectedClasses.data(), expectedLevels.data(),
                                      &expectedRaised);
    Check(std::equal(expectedClasses.begin(), expectedClasses.end(), classes.get()));
    Check(std::equal(expectedLevels.begin(), expectedLevels.end(), levels.get()));
    Check(raised == expectedRaised);
    const WORD stored = static_cast<WORD>(base);
    bool up = false;
    for (size_t i = 0; i < count; ++i) {
        if (before[i] == 0xFFFF) {
            Check(classes[i] == 0xFFFF && levels[i] == static_cast<WORD>(data[1 + i] * 7));
            continue;
        }
        const WORD c = classes[i];
        Check(c == ZelBidiL || c == ZelBidiR || c == ZelBidiAN || c == ZelBidiEN || c == ZelBidiBN);
        const WORD rise = static_cast<WORD>(levels[i] - stored);
        Check(rise <= 2);
        if (c == ZelBidiBN) Check(rise == 0);
        up = up || rise != 0;
    }
    Check(raised == (up ? 1u : 0u));

    // White space resolution on the same classes leaves a level where it was or sets it to the
    // base level; a BN may also take the level of the nearest position before it not skipped.
    std::vector<WORD> resolved(levels.get(), levels.get() + count);
    BidiResolveWhitespace(stored, before.data(), levels.get(), static_cast<DWORD>(count));
    zelbidi::reference::ResolveWhitespace(stored, before.data(), expectedLevels.data(), static_cast<DWORD>(count));
    Check(std::equal(expectedLevels.begin(), expectedLevels.end(), levels.get()));
    WORD last = stored;
    for (size_t i = 0; i < count; ++i) {
        Check(levels[i] == resolved[i] || levels[i] == stored || (before[i] == ZelBidiBN && levels[i] == last));
        if (before[i] != 0xFFFF) last = levels[i];
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > 1 << 16) return 0;
    static constexpr int kDirections[] = {0, 1, 2, -1};
    const int direction = kDirections[data[0] & 3];

    std::vector<WCHAR> text;
    for (size_t i = 1; i + 1 < size; i += 2) {
        const uint8_t pick = data[i];
        const uint8_t low = data[i + 1];
        if (pick < 0x40)
            text.push_back(kAlphabet[low % kAlphabetSize]);
        else if (pick < 0x80)
            text.push_back(static_cast<WCHAR>((pick & 0x3F) << 8 | low));
        else
            text.push_back(static_cast<WCHAR>(pick << 8 | low));
    }
    Lines(text, direction);
    Classes(data, size);
    return 0;
}
