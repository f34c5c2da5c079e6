// zel hex: the "U+" form of 16-bit text, and /uXXXX escapes.
#include <zel/strings.h>

#include <cstdio>
#include <string>
#include <vector>

#include "commands.h"
#include "input.h"
#include "report.h"
#include "text.h"

const char kHexUsage[] =
    "Usage: zel hex to [TEXT | -]        text to its \"U+\" form, four digits a 16-bit unit\n"
    "       zel hex from [U+XXXX... | -]   the \"U+\" form back to text\n"
    "       zel hex unescape [TEXT | -]  decode the /uXXXX escapes in the text\n\n"
    "Text is UTF-8 on the command line and on standard input and output.\n";

int RunHex(const Args& args) {
    if (args.empty()) return Misuse("no action given");
    if (args[0] != "to" && args[0] != "from" && args[0] != "unescape") return Misuse("unknown action '" + args[0] + "'");
    auto input = LineArgument(args, 1);
    if (!input) return 1;
    const std::string& text = *input;
    if (args[0] == "to") {
        std::u16string wide = FromUtf8(text);
        std::vector<char> output(wide.size() * 4 + 3);
        ZelUniStrToHexStr(wide.c_str(), output.data(), static_cast<int>(output.size()));
        printf("%s\n", output.data());
        return 0;
    }
    if (args[0] == "from") {
        // U+ and four hexadecimal digits a unit, nothing else.
        const bool form = text.size() >= 2 && (text[0] == 'U' || text[0] == 'u') && text[1] == '+' &&
                          (text.size() - 2) % 4 == 0 &&
                          text.find_first_not_of("0123456789abcdefABCDEF", 2) == std::string::npos;
        if (!text.empty() && !form) return Fail("not of the form U+ and four hexadecimal digits a unit: " + text);
        std::vector<WCHAR> output(text.size() / 4 + 1);
        if (ZelHexStrToUniStr(text.c_str(), output.data()) == 0 && !text.empty())
            return Fail("not of the form U+XXXX...: " + text);
        printf("%s\n", ToUtf8(output.data()).c_str());
        return 0;
    }
    std::u16string wide = FromUtf8(text);
    std::vector<WCHAR> output(wide.size() + 1);
    ZelHexChrToUniStr(wide.c_str(), output.data());
    printf("%s\n", ToUtf8(output.data()).c_str());
    return 0;
}
