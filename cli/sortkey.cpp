// zel sortkey: the sort keys of Hangul text, one a character, and lines sorted by them.
#include <zel/codetables.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "commands.h"
#include "input.h"
#include "text.h"

namespace {

int SortKeyUsage(int status) {
    printf("Usage: zel sortkey [TEXT | -]\n"
           "       zel sortkey --sort [FILE | -]\n\n"
           "Without --sort: each character of the text on a line of its own, with its code point and\n"
           "its sort key in hexadecimal, or - where it has none. A key is 01, then the places of the\n"
           "initial, medial and final in the order of Jamo, so modern and old Hangul sort alike.\n\n"
           "--sort  writes the lines of the file or standard input sorted by the keys of their\n"
           "        characters; characters without a key come after all Hangul, by code point.\n\n"
           "Text is UTF-8 on the command line and on standard input and output.\n");
    return status;
}

constexpr DWORD kNoKey = 0xFFFFFFFF;

bool TablesReady() {
    if (LoadUnicodeTbl() == 2) return true;
    fprintf(stderr, "zel sortkey: the code tables in ${Common}\\Code could not be read\n");
    return false;
}

std::vector<DWORD> KeysOf(const std::u16string& text) {
    std::vector<DWORD> keys(text.size() + 1);
    const int count = ZelUnicodeToSortIndex(0, text.c_str(), -1, keys.data(), static_cast<int>(keys.size()));
    keys.resize(static_cast<size_t>(count));
    return keys;
}

// A character as it can be shown on its own line: lone surrogate halves and controls are not.
std::string Shown(WCHAR c) {
    if (c < 0x20 || c == 0x7F || (c >= 0xD800 && c <= 0xDFFF)) return " ";
    const WCHAR one[2] = {c, 0};
    return ToUtf8(one);
}

int ListKeys(const std::u16string& text) {
    const std::vector<DWORD> keys = KeysOf(text);
    for (size_t i = 0; i < keys.size(); ++i) {
        const unsigned code = text[i];
        if (keys[i] == kNoKey) printf("%s U+%04X -\n", Shown(text[i]).c_str(), code);
        else printf("%s U+%04X %08X\n", Shown(text[i]).c_str(), code, static_cast<unsigned>(keys[i]));
    }
    return 0;
}

struct Line {
    std::string bytes;
    std::u16string text;
    std::vector<DWORD> keys;
};

// By key, and where keys are equal (no key at all, or the same Jamo in another form) by code unit.
bool Before(const Line& a, const Line& b) {
    const size_t n = std::min(a.keys.size(), b.keys.size());
    for (size_t i = 0; i < n; ++i) {
        if (a.keys[i] != b.keys[i]) return a.keys[i] < b.keys[i];
        if (a.text[i] != b.text[i]) return a.text[i] < b.text[i];
    }
    return a.keys.size() < b.keys.size();
}

int SortLines(const std::string& input) {
    std::vector<Line> lines;
    size_t start = 0;
    while (start < input.size()) {
        size_t end = input.find('\n', start);
        if (end == std::string::npos) end = input.size();
        Line line;
        line.bytes = input.substr(start, end - start);
        if (!line.bytes.empty() && line.bytes.back() == '\r') line.bytes.pop_back();
        line.text = FromUtf8(line.bytes);
        line.keys = KeysOf(line.text);
        lines.push_back(std::move(line));
        start = end + 1;
    }
    std::stable_sort(lines.begin(), lines.end(), Before);
    for (const Line& line : lines) printf("%s\n", line.bytes.c_str());
    return 0;
}

}  // namespace

int RunSortKey(const Args& args) {
    if (WantsHelp(args)) return SortKeyUsage(0);
    if (!args.empty() && args[0] == "--sort") {
        if (args.size() > 2) return SortKeyUsage(2);
        auto input = ReadInput(args.size() == 2 ? args[1] : "-");
        if (!input) return 1;
        if (!TablesReady()) return 1;
        return SortLines(*input);
    }
    if (!args.empty() && args[0].size() > 1 && args[0][0] == '-') return SortKeyUsage(2);
    auto input = LineArgument(args, 0);
    if (!input) return 1;
    if (!TablesReady()) return 1;
    return ListKeys(FromUtf8(*input));
}
