// zel hex: the "U+" form of 16-bit text, and /uXXXX escapes.
#include <zel/strings.h>

#include <cstdio>
#include <string>
#include <vector>

#include "commands.h"
#include "input.h"
#include "text.h"

namespace {
int Usage(int status) {
    printf("Usage: zel hex to [TEXT | -]        text to its \"U+\" form, four digits a 16-bit unit\n"
           "       zel hex from [U+XXXX... | -]   the \"U+\" form back to text\n"
           "       zel hex unescape [TEXT | -]  decode the /uXXXX escapes in the text\n\n"
           "Text is UTF-8 on the command line and on standard input and output.\n");
    return status;
}
}  // namespace

int RunHex(const Args& args) {
    if (WantsHelp(args)) return Usage(0);
    if (args.empty()) return Usage(2);
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
        std::vector<WCHAR> output(text.size() / 4 + 1);
        if (ZelHexStrToUniStr(text.c_str(), output.data()) == 0 && !text.empty()) {
            fprintf(stderr, "zel hex: not of the form U+XXXX...\n");
            return 1;
        }
        printf("%s\n", ToUtf8(output.data()).c_str());
        return 0;
    }
    if (args[0] == "unescape") {
        std::u16string wide = FromUtf8(text);
        std::vector<WCHAR> output(wide.size() + 1);
        ZelHexChrToUniStr(wide.c_str(), output.data());
        printf("%s\n", ToUtf8(output.data()).c_str());
        return 0;
    }
    return Usage(2);
}
