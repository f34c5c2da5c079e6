// Bounded helpers on 16-bit strings: a character is one unit, so a cut may fall between the two
// halves of a surrogate pair.
#include <zel/strings.h>

#include "strings/bounded_units.h"
#include "strings/wctype16.h"

namespace {
bool IsSpace(WCHAR c) { return iswspace(c) != 0; }
}  // namespace

int ustrlcpy(WCHAR* dest, const WCHAR* src, int size) { return zelbounded::Copy(dest, src, size); }

int ustrlcat(WCHAR* dest, const WCHAR* src, int size) {
    return zelbounded::Append(dest, src, size, zelbounded::Copy<WCHAR>);
}

int ustrcut(WCHAR* s, int size) { return zelbounded::Cut(s, size); }

int ustrtriml(WCHAR* s) { return zelbounded::TrimLeft(s, IsSpace); }

int ustrtrimr(WCHAR* s) { return zelbounded::TrimRight(s, IsSpace); }
