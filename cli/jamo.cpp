// zel jamo: Hangul syllables into their KS (compatibility) or private-use Jamo, and KS Jamo back
// into syllables.
#include <zel/codetables.h>

#include <cstdio>
#include <string>

#include "commands.h"
#include "report.h"
#include "input.h"
#include "text.h"

const char kJamoUsage[] =
    "Usage: zel jamo ks|pua|join [--codes] [TEXT | -]\n\n"
    "ks    each Hangul syllable or Jamo into its KS Jamo (the filler for a missing Jamo is left out)\n"
    "pua   each Hangul syllable or Jamo into its three private-use Jamo\n"
    "join  KS Jamo into syllables: an initial, a vowel and a final unless a vowel follows it;\n"
    "      U+3164 stands for a missing Jamo. A sequence without a character comes out as its\n"
    "      private-use Jamo.\n\n"
    "--codes  print code points (U+XXXX) instead of text\n"
    "Other characters pass through. Text is UTF-8 on the command line and on standard input\n"
    "and output.\n";

namespace {

constexpr WCHAR kCompatFiller = 0x3164;

bool IsHangul(WCHAR c) {
    return (c >= 0xAC00 && c <= 0xD7A3) || (c >= 0x1100 && c <= 0x11FF) || (c >= 0x3131 && c <= 0x318E) ||
           (c >= 0xE0BC && c <= 0xF66E && (c < 0xF000 || c > 0xF0FF)) || (c >= 0xF784 && c <= 0xF8FF);
}

bool IsCompatVowel(WCHAR c) { return (c >= 0x314F && c <= 0x3163) || (c >= 0x3187 && c <= 0x318E); }
bool IsCompatJamo(WCHAR c) { return c >= 0x3131 && c <= 0x318E; }

std::u16string Split(const std::u16string& text, bool pua) {
    std::u16string out;
    for (WCHAR c : text) {
        WCHAR jamo[4] = {};
        if (!IsHangul(c)) {
            out += c;
            continue;
        }
        if (pua) {
            UniHangul2UniPUAJaso(c, jamo, 4);
        } else {
            UniHangul2UniKSJaso(c, jamo, 4);
        }
        for (int i = 0; i < 3 && jamo[i] != 0; ++i) {
            if (pua || jamo[i] != kCompatFiller) out += jamo[i];
        }
    }
    return out;
}

// Takes an initial, a vowel and a final from text at position, as far as they are there.
void TakeGroup(const std::u16string& text, size_t* position, WCHAR group[3]) {
    size_t p = *position;
    auto isConsonant = [](WCHAR c) { return c == kCompatFiller || (IsCompatJamo(c) && !IsCompatVowel(c)); };
    if (p < text.size() && isConsonant(text[p])) group[0] = text[p++];
    if (p < text.size() && (IsCompatVowel(text[p]) || text[p] == kCompatFiller)) group[1] = text[p++];
    const bool vowelFollows = p + 1 < text.size() && IsCompatVowel(text[p + 1]);
    if (group[1] != 0 && p < text.size() && isConsonant(text[p]) && !vowelFollows) group[2] = text[p++];
    if (p == *position) group[0] = text[p++];  // never stand still
    *position = p;
}

std::u16string Join(const std::u16string& text) {
    std::u16string out;
    size_t p = 0;
    while (p < text.size()) {
        if (!IsCompatJamo(text[p])) {
            out += text[p++];
            continue;
        }
        WCHAR group[3] = {0, 0, 0};
        TakeGroup(text, &p, group);
        const WCHAR result = UniKSJaso2UniHangul(group);
        if (result == 0xFFFE) {
            for (const WCHAR* unit = GetMultiCode(); *unit != 0; ++unit) out += *unit;
        } else if (result == 0xFFFD || result == 0) {
            for (WCHAR c : group) {
                if (c != 0) out += c;
            }
        } else {
            out += result;
        }
    }
    return out;
}

std::string Codes(const std::u16string& text) {
    std::string out;
    for (WCHAR c : text) {
        char code[16];
        snprintf(code, sizeof code, "%sU+%04X", out.empty() ? "" : " ", static_cast<unsigned>(c));
        out += code;
    }
    return out;
}

}  // namespace

int RunJamo(const Args& args) {
    if (args.empty() || (args[0] != "ks" && args[0] != "pua" && args[0] != "join")) return ActionMisuse(args, {});
    const std::string& mode = args[0];
    size_t first = 1;
    const bool codes = args.size() > 1 && args[1] == "--codes";
    if (codes) ++first;
    auto input = LineArgument(args, first);
    if (!input) return 1;
    LoadUnicodeTbl();
    const std::u16string text = FromUtf8(*input);
    const std::u16string result = mode == "join" ? Join(text) : Split(text, mode == "pua");
    printf("%s\n", codes ? Codes(result).c_str() : ToUtf8(result.c_str()).c_str());
    return 0;
}
