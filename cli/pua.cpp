// zel pua: the library's characters U+A000 to U+A8FF to their outside form (plane 15 code
// points, the Yi table's code points and four Latin letters) and back.
#include <zel/codetables.h>

#include <cstdio>
#include <string>
#include <vector>

#include "commands.h"
#include "report.h"
#include "input.h"
#include "text.h"

const char kPuaUsage[] =
    "Usage: zel pua to|from [--units] [TEXT | -]\n\n"
    "to       the library's characters U+A000 to U+A8FF to their outside form: U+A700 to\n"
    "         U+A7FF by the Yi table, U+A400 to U+A403 as Latin letters with tone marks, and\n"
    "         the rest as U+F0000 to U+F08FF\n"
    "from     plane 15 and the Yi table's code points back to U+A000 to U+A8FF\n"
    "--units  writes the 16-bit units of the result in hexadecimal instead of the text\n\n"
    "Without the Yi table (u???_zel.dat in ${Common}\\Code) text passes through.\n"
    "Text is UTF-8 on the command line and on standard input and output.\n";

int RunPua(const Args& args) {
    if (args.empty() || (args[0] != "to" && args[0] != "from")) return ActionMisuse(args, {});
    size_t first = 1;
    const bool units = args.size() > 1 && args[1] == "--units";
    if (units) ++first;
    if (args.size() > first && args[first].size() > 1 && args[first][0] == '-')
        return Misuse("unknown option " + args[first]);
    auto input = LineArgument(args, first);
    if (!input) return 1;

    // The Yi table becomes ready only after the main group.
    LoadUnicodeTbl();
    if (LoadUniYi2UniSurrogatePuaTbl() != 2) fprintf(stderr, "zel pua: no Yi table; the text passes through\n");

    const std::u16string text = FromUtf8(*input);
    // Two units a character going out, and the terminator with the one more place kept free.
    std::vector<WCHAR> output(text.size() * 2 + 2);
    const int size = static_cast<int>(output.size());
    const int written = args[0] == "to" ? ZelUnicodeToSurrogatePua(0, text.c_str(), -1, output.data(), size)
                                        : ZelSurrogatePuaToUnicode(0, text.c_str(), -1, output.data(), size);
    if (units) {
        for (int i = 0; i < written; ++i) printf(i ? " %04X" : "%04X", static_cast<unsigned>(output[i]));
        printf("\n");
    } else {
        output[static_cast<size_t>(written)] = 0;
        printf("%s\n", ToUtf8(output.data()).c_str());
    }
    return 0;
}
