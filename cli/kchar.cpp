// zel kchar: text to the suite's internal KChar code and back, with the conversion flags by name.
#include <zel/codetables.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "commands.h"
#include "numbers.h"
#include "report.h"
#include "input.h"
#include "text.h"

const char kKCharUsage[] =
    "Usage: zel kchar to [--flags LIST] [TEXT | -]\n"
    "       zel kchar from [--flags LIST] [UNIT ... | -]\n\n"
    "to    UTF-8 text to KChar units, written in hexadecimal\n"
    "from  KChar units in hexadecimal (0x optional) to UTF-8 text; old Hangul without a single\n"
    "      character comes out as a sequence of private-use Jamo\n\n"
    "LIST  names joined by commas: symbol, hanja, hangul, oldhangul, and the language variants\n"
    "      of Hanja chs, jpn, kor, cht; \"all\" is symbol,hanja,hangul,oldhangul (the default).\n"
    "An unmapped character is 0x3441 as KChar and U+FFFD as text.\n";

namespace {

constexpr DWORD kDefaultFlags = KConvSymbol | KConvHanja | KConvHangul | KConvOldHangul;

struct FlagName {
    const char* name;
    DWORD flag;
};

constexpr FlagName kFlagNames[] = {
    {"symbol", KConvSymbol}, {"hanja", KConvHanja},   {"chs", KConvChs},
    {"jpn", KConvJpn},       {"kor", KConvKor},       {"cht", KConvCht},
    {"hangul", KConvHangul}, {"oldhangul", KConvOldHangul}, {"all", kDefaultFlags},
};

bool ParseFlags(const std::string& list, DWORD* flags, std::string& problem) {
    *flags = 0;
    std::stringstream names(list);
    std::string name;
    while (std::getline(names, name, ',')) {
        bool known = false;
        for (const FlagName& f : kFlagNames) {
            if (name == f.name) {
                *flags |= f.flag;
                known = true;
            }
        }
        if (!known) return problem = "unknown flag '" + name + "'", false;
    }
    return true;
}

bool ParseUnit(const std::string& word, KChar* unit, std::string& problem) {
    long long value = 0;
    if (!ParseNumber("the unit", word, 0, 0xFFFF, NumberBase::kHex, value, problem)) return false;
    *unit = static_cast<KChar>(value);
    return true;
}

int ToKChar(DWORD flags, const Args& args, size_t first) {
    auto input = LineArgument(args, first);
    if (!input) return 1;
    const std::u16string text = FromUtf8(*input);
    // One unit a character at most: a sequence of Jamo becomes one code.
    std::vector<KChar> output(text.size() + 1);
    const int count = ZelUnicodeToKChar(flags, text.c_str(), static_cast<int>(text.size()), output.data(),
                                        static_cast<int>(output.size()), nullptr);
    for (int i = 0; i < count; ++i) printf("%s0x%04X", i ? " " : "", output[static_cast<size_t>(i)]);
    printf("\n");
    return 0;
}

int FromKChar(DWORD flags, const Args& args, size_t first) {
    auto input = TextArgument(args, first);
    if (!input) return 1;
    std::vector<KChar> units;
    std::stringstream words(*input);
    std::string word;
    while (words >> word) {
        KChar unit = 0;
        std::string problem;
        if (!ParseUnit(word, &unit, problem)) return Misuse(problem);
        units.push_back(unit);
    }
    units.push_back(0);
    // A code of old Hangul may become three private-use Jamo.
    std::vector<WCHAR> output(units.size() * 3 + 1);
    ZelKCharToUnicode(flags, units.data(), static_cast<int>(units.size() - 1), output.data(),
                      static_cast<int>(output.size()), nullptr);
    printf("%s\n", ToUtf8(output.data()).c_str());
    return 0;
}

}  // namespace

int RunKChar(const Args& args) {
    if (args.empty() || (args[0] != "to" && args[0] != "from")) return ActionMisuse(args, {});
    DWORD flags = kDefaultFlags;
    size_t first = 1;
    if (args.size() > 1 && args[1] == "--flags") {
        if (args.size() < 3) return Misuse("--flags takes a list of names");
        std::string problem;
        if (!ParseFlags(args[2], &flags, problem)) return Misuse(problem);
        first = 3;
    }
    return args[0] == "to" ? ToKChar(flags, args, first) : FromKChar(flags, args, first);
}
