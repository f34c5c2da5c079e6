// Class tests of kana: a search of a constant list, its terminator included.
#include <zel/codetables.h>

#include "codetables/kana_tables.h"

using zelkana::PlaceInList;

int IsJpnBaseHiragana(WCHAR c) { return PlaceInList(zelkana::kBaseHiragana, c) ? 1 : 0; }

int IsJpnSmallHiragana(WCHAR c) {
    // The one test that turns character 0 away before searching.
    if (!c) return 0;
    return PlaceInList(zelkana::kSmallHiragana, c) ? 1 : 0;
}

int IsJpnBaseKatakana(WCHAR c) { return PlaceInList(zelkana::kBaseKatakana, c) ? 1 : 0; }

int IsJpnSmallKatakana(WCHAR c) { return PlaceInList(zelkana::kSmallKatakana, c) ? 1 : 0; }

int IsJpnSmallHalfKatakana(WCHAR c) { return PlaceInList(zelkana::kSmallHalfKatakana, c) ? 1 : 0; }

int IsJpnBaseHalfKatakana(WCHAR c) { return PlaceInList(zelkana::kBaseHalfKatakana, c); }
