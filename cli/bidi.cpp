// zel bidi and zel shape: a line of mixed-direction text in display order, and shaped.
#include <zel/bidi.h>

#include <cstdio>
#include <string>
#include <vector>

#include "commands.h"
#include "report.h"
#include "input.h"
#include "text.h"

const char kBidiUsage[] =
    "Usage: zel bidi [--rtl] [--mirror] [TEXT | -]\n\n"
    "Puts a line in logical order into display order and prints it, then the resolved level\n"
    "of each character in logical order. --rtl: a right-to-left line; --mirror: mirrored\n"
    "characters at odd levels take their partners. Text is UTF-8.\n";

const char kShapeUsage[] =
    "Usage: zel shape [--rtl] [--mirror] [--codes] [TEXT | -]\n\n"
    "Shapes a line in logical order: display order, Arabic presentation forms and lam-alef\n"
    "ligatures. --rtl: a right-to-left line (the output then starts with its rightmost\n"
    "character); --mirror: mirrored characters at odd levels take their partners; --codes:\n"
    "print code points instead of text. Text is UTF-8.\n";

namespace {

struct LineOptions {
    bool rtl = false;
    bool mirror = false;
    bool codes = false;
    std::u16string text;
};

// Parses the options and reads the line; the status to exit with when it cannot go on.
bool ReadLine(const Args& args, bool allowCodes, LineOptions& options, int& status) {
    Args rest;
    for (const auto& arg : args) {
        if (arg == "--rtl") options.rtl = true;
        else if (arg == "--mirror") options.mirror = true;
        else if (arg == "--codes" && allowCodes) options.codes = true;
        else if (arg.size() > 2 && arg.rfind("--", 0) == 0) return status = Misuse("unknown option " + arg), false;
        else rest.push_back(arg);
    }
    auto line = LineArgument(rest, 0);
    if (!line) return status = 1, false;
    options.text = FromUtf8(*line);
    return true;
}

void PrintCodes(const WCHAR* text, size_t count) {
    for (size_t i = 0; i < count; ++i) printf(i ? " %04X" : "%04X", static_cast<unsigned>(text[i]));
    printf("\n");
}

}  // namespace

int RunBidi(const Args& args) {
    LineOptions options;
    int status = 0;
    if (!ReadLine(args, false, options, status)) return status;
    std::u16string text = options.text;
    const DWORD count = static_cast<DWORD>(text.size());
    std::vector<WORD> levels(text.size() + 1);
    if (count && BidiString(text.data(), count, nullptr, levels.data(), options.mirror, options.rtl ? 1 : 0) != count)
        return Fail("out of memory");
    printf("%s\n", ToUtf8(text.c_str()).c_str());
    for (DWORD i = 0; i < count; ++i) printf("%u", static_cast<unsigned>(levels[i]));
    printf("\n");
    return 0;
}

int RunShape(const Args& args) {
    LineOptions options;
    int status = 0;
    if (!ReadLine(args, true, options, status)) return status;
    const DWORD count = static_cast<DWORD>(options.text.size());
    std::vector<WCHAR> shaped(options.text.size() + 1, 0);
    if (count) ShapeString(shaped.data(), options.text.data(), count, nullptr, nullptr, options.mirror, options.rtl ? 1 : 0);
    // The plain copy of an untouched line carries no terminator of its own: the vector's does.
    size_t length = 0;
    while (length < count && shaped[length]) ++length;
    if (options.codes) PrintCodes(shaped.data(), length);
    else printf("%s\n", ToUtf8(std::u16string(shaped.data(), length).c_str()).c_str());
    return 0;
}
