// Kana strings to full width and to half width, joining and splitting the sound marks.
#include <zel/codetables.h>

#include "codetables/kana_tables.h"
#include "strings/wstr.h"

namespace {

constexpr WCHAR kVoicedMark = 0x309B;
constexpr WCHAR kSemiVoicedMark = 0x309C;

}  // namespace

int ToLargeKanaStr(const WCHAR* source, int count, WCHAR* output, int script) {
    if (count < 1 || !source || !output) return 0;
    // The row of kana that a mark joins; none for a script other than Hiragana or Katakana.
    const WCHAR* voicing = (script == 0 || script == 1) ? zelkana::kVoicing[script] : nullptr;

    int written = 0;
    WCHAR last = 0;
    for (int i = 0; i < count; ++i) {
        WCHAR c = HalfKanaToFullKana(source[i]);
        if (script == 1 && zelkana::IsShiftableHiragana(c)) c += zelkana::kKatakanaOffset;
        if (script == 0 && zelkana::IsShiftableKatakana(c)) c -= zelkana::kKatakanaOffset;

        // A mark raises the kana before it to its voiced (+1) or semi-voiced (+2) form. The
        // remembered kana stays the unmarked one, so a second mark raises the result again. Like
        // every kana list, the row is searched with its terminator.
        if (c == kVoicedMark && written && voicing && zelkana::PlaceInList(voicing, last)) {
            output[written - 1] += 1;
            continue;
        }
        if (c == kSemiVoicedMark && written && voicing &&
            zelkana::PlaceInList(voicing + zelkana::kSemiVoicedFirst, last)) {
            output[written - 1] += 2;
            continue;
        }
        output[written++] = c;
        last = c;
    }
    return written;
}

int ToSmallKanaStr(const WCHAR* source, int count, WCHAR* output) {
    if (!source || !output) return 0;
    if (count == -1) count = static_cast<int>(wcslen(source));
    if (count < 1) return 0;

    int written = 0;
    for (int i = 0; i < count; ++i) {
        WCHAR c = source[i];
        if (zelkana::IsShiftableHiragana(c)) c += zelkana::kKatakanaOffset;
        WCHAR half[3];
        const int n = FullKanaToHalfKana(c, half);
        for (int k = 0; k < n; ++k) output[written++] = half[k];
    }
    return written;
}
