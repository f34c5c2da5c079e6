// Display order: the runs of higher levels are reversed, the deepest first, one level at a time.
#include "bidi/bidi_internal.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace zelbidi {

namespace {

// The four units of a 64-bit word in the opposite order.
inline uint64_t Reversed4(uint64_t v) {
    v = (v >> 32) | (v << 32);
    return ((v >> 16) & 0x0000FFFF0000FFFFull) | ((v & 0x0000FFFF0000FFFFull) << 16);
}

// Reverses [first, last), four units from each end at a time.
void ReverseUnits(WCHAR* first, WCHAR* last) {
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

}  // namespace

void ReorderRuns(WORD baseLevel, unsigned top, bool noneBelowBase, WCHAR* text, const WORD* levels, DWORD count) {
    // At an even base level the base runs stay as they are; every level from the lowest odd one up
    // turns its runs around.
    const unsigned lowest = (baseLevel & 1) ? baseLevel : baseLevel + 1u;
    for (unsigned level = top; level >= lowest; --level) {
        if (level == baseLevel && noneBelowBase) {
            ReverseUnits(text, text + count);
            break;
        }
        DWORD i = 0;
        while (i < count) {
            while (i < count && levels[i] < level) ++i;
            const DWORD start = i;
            while (i < count && levels[i] >= level) ++i;
            ReverseUnits(text + start, text + i);
        }
    }
}

void BidiReorder(WORD baseLevel, WCHAR* text, const WORD* levels, DWORD count) {
    WORD top = 0;
    for (DWORD i = 0; i < count; ++i) top = std::max(top, levels[i]);
    ReorderRuns(baseLevel, top, false, text, levels, count);
}

}  // namespace zelbidi
