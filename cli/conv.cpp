// zel conv and zel codetables: text between code pages through the code table files, and what
// of those files the library finds.
#include <zel/codetables.h>
#include <zel/paths.h>

#include <cstdio>
#include <string>
#include <vector>

#include "code_table_files.h"
#include "commands.h"
#include "input.h"
#include "numbers.h"
#include "report.h"
#include "text.h"

const char kConvUsage[] =
    "Usage: zel conv -f FROM -t TO [--system] [FILE | -]\n\n"
    "Converts a file or standard input from one code page to another and writes the result\n"
    "to standard output. FROM and TO are code page numbers (949, 1361, 932, 936, 950, or any\n"
    "that the system converts) or utf-8. Code pages with a code table file in the library's\n"
    "Code directory convert through it; --system takes the system's conversion instead.\n";

const char kCodeTablesUsage[] =
    "Usage: zel codetables\n\n"
    "The library's Code directory, the code table files in it with their numbers, and the\n"
    "state of each group after a first use: ready, failed (or missing), not tried.\n";

namespace {

bool IsUtf8(const std::string& name) { return name == "utf-8" || name == "utf8" || name == "UTF-8"; }

bool ParseCodePage(const std::string& option, const std::string& name, DWORD* codePage, std::string& problem) {
    if (IsUtf8(name)) return true;
    long long value = 0;
    if (!ParseNumber("the code page of " + option, name, 0, 0xFFFF, NumberBase::kDecimal, value, problem)) return false;
    *codePage = static_cast<DWORD>(value);
    return true;
}

std::u16string Decode(const std::string& bytes, const std::string& from, DWORD codePage, bool system) {
    if (IsUtf8(from)) return FromUtf8(bytes);
    if (bytes.empty()) return {};
    // A unit per byte at most, the terminator, and the unit the conversion keeps free.
    std::vector<WCHAR> wide(bytes.size() + 2);
    const int length = static_cast<int>(bytes.size());
    const int size = static_cast<int>(wide.size());
    int count = system ? ZelAnsiToUnicode(0, codePage, bytes.data(), length, wide.data(), size)
                       : ZelAnsiToUnicode(0, codePage, bytes.data(), length, wide.data(), size, 0);
    return std::u16string(wide.data(), count > 0 ? static_cast<size_t>(count) : 0);
}

std::string Encode(const std::u16string& text, const std::string& to, DWORD codePage, bool system) {
    if (IsUtf8(to)) return ToUtf8(text.c_str());
    if (text.empty()) return {};
    // Four bytes a unit at most (the four-byte forms of code page 936), and the terminator.
    std::vector<char> narrow(text.size() * 4 + 2);
    const int length = static_cast<int>(text.size());
    const int size = static_cast<int>(narrow.size());
    int count = system ? ZelUnicodeToAnsi(0, codePage, text.data(), length, narrow.data(), size)
                       : ZelUnicodeToAnsi(0, codePage, text.data(), length, narrow.data(), size, nullptr);
    return std::string(narrow.data(), count > 0 ? static_cast<size_t>(count) : 0);
}

const char* StateName(int state) { return state == 2 ? "ready" : state == 1 ? "failed or missing" : "not tried"; }

// A code page's table is in use when a conversion counts as the table path does: with a length
// of -1 the system counts the terminator, the table path does not.
bool UsesTable(DWORD codePage) {
    WCHAR wide[4];
    return ZelAnsiToUnicode(0, codePage, "A", -1, wide, 4, 0) == 1;
}

}  // namespace

int RunConv(const Args& args) {
    std::string from, to, file;
    bool system = false;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "-f" || args[i] == "-t") {
            if (i + 1 == args.size()) return Misuse(args[i] + " takes a code page");
            std::string& page = args[i] == "-f" ? from : to;
            page = args[++i];
        } else if (args[i] == "--system") {
            system = true;
        } else if (args[i].size() > 1 && args[i][0] == '-') {
            return Misuse("unknown option " + args[i]);
        } else if (!file.empty()) {
            return Misuse("one input at most: " + file + " and " + args[i]);
        } else {
            file = args[i];
        }
    }
    if (from.empty() || to.empty()) return Misuse("both -f FROM and -t TO are needed");
    DWORD fromPage = 0, toPage = 0;
    std::string problem;
    if (!ParseCodePage("-f", from, &fromPage, problem) || !ParseCodePage("-t", to, &toPage, problem))
        return Misuse(problem);
    auto input = ReadInput(file.empty() ? "-" : file);
    if (!input) return 1;
    const std::u16string text = Decode(*input, from, fromPage, system);
    if (text.empty() && !input->empty()) return Fail("nothing converts from code page " + from);
    const std::string output = Encode(text, to, toPage, system);
    if (output.empty() && !text.empty()) return Fail("nothing converts to code page " + to);
    fwrite(output.data(), 1, output.size(), stdout);
    return 0;
}

int RunCodeTables(const Args& args) {
    if (!args.empty()) return Misuse("no arguments are taken");
    printf("directory %s\n", CodeTableDirectory().c_str());
    for (const CodeTableFile& file : CodeTableFiles())
        printf("file %s number %s kind %s\n", file.name.c_str(), file.number.c_str(), file.kind.c_str());
    printf("group main (KChar, sort index, variants) %s\n", StateName(LoadUnicodeTbl()));
    printf("group zel (Yi and plane 15) %s\n", StateName(LoadUniYi2UniSurrogatePuaTbl()));
    for (DWORD codePage : {949u, 1361u, 932u, 936u, 950u, 9566u})
        printf("group %u %s\n", codePage, UsesTable(codePage) ? "ready" : "failed or missing");
    return 0;
}
