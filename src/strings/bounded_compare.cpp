// Case-blind comparison of 16-bit strings. Only the 26 Latin letters are case-blind: a to z fold to
// A to Z and every other unit stays, so the units from 0x5B to 0x60 (the low line among them) sort
// above all letters. A null string compares as an empty one.
#include <zel/strings.h>

namespace {

unsigned Fold(WCHAR unit) { return unit >= u'a' && unit <= u'z' ? unit - 0x20u : unit; }

// The difference of the last folded pair read: the walk ends at the first string's terminator, at
// the first pair that differs, or (when bounded) after count pairs. count is at least 1.
int Compare(const WCHAR* a, const WCHAR* b, bool bounded, unsigned int count) {
    if (!a) a = u"";
    if (!b) b = u"";
    unsigned x, y;
    do {
        x = Fold(*a++);
        y = Fold(*b++);
    } while ((!bounded || --count) && x && x == y);
    return static_cast<int>(x) - static_cast<int>(y);
}

}  // namespace

int _ustricmp(const WCHAR* a, const WCHAR* b) { return Compare(a, b, false, 0); }

int _ustrnicmp(const WCHAR* a, const WCHAR* b, unsigned int count) { return count ? Compare(a, b, true, count) : 0; }
