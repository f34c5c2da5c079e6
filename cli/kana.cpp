// zel kana and zel width: Japanese Kana between widths and scripts, and half-width and full-width
// characters in general.
#include <zel/codetables.h>

#include <cstdio>
#include <string>
#include <vector>

#include "commands.h"
#include "report.h"
#include "input.h"
#include "text.h"

const char kKanaUsage[] =
    "Usage: zel kana full|half|hiragana|katakana [TEXT | -]\n\n"
    "full      half-width Katakana to full-width Katakana, sound marks joined to their kana\n"
    "half      Hiragana and full-width Katakana to half-width Katakana\n"
    "hiragana  Katakana of either width to Hiragana\n"
    "katakana  Hiragana and half-width Katakana to full-width Katakana\n\n"
    "Text is UTF-8 on the command line and on standard input and output.\n";

const char kWidthUsage[] =
    "Usage: zel width full|half [TEXT | -]\n\n"
    "Exchanges each character that has one for its full-width (full) or half-width (half)\n"
    "form: ASCII, the space, half-width Katakana and a few symbols.\n";

int RunKana(const Args& args) {
    if (args.empty() || (args[0] != "full" && args[0] != "half" && args[0] != "hiragana" && args[0] != "katakana"))
        return ActionMisuse(args, {});
    auto input = LineArgument(args, 1);
    if (!input) return 1;
    const std::u16string text = FromUtf8(*input);
    const int count = static_cast<int>(text.size());
    std::vector<WCHAR> output(text.size() * 2 + 1);
    int written;
    if (args[0] == "full" || args[0] == "katakana") written = ToLargeKanaStr(text.c_str(), count, output.data(), 1);
    else if (args[0] == "hiragana") written = ToLargeKanaStr(text.c_str(), count, output.data(), 0);
    else written = ToSmallKanaStr(text.c_str(), count, output.data());
    output[static_cast<size_t>(written)] = 0;
    printf("%s\n", ToUtf8(output.data()).c_str());
    return 0;
}

int RunWidth(const Args& args) {
    if (args.empty() || (args[0] != "full" && args[0] != "half")) return ActionMisuse(args, {});
    auto input = LineArgument(args, 1);
    if (!input) return 1;
    std::u16string text = FromUtf8(*input);
    const int direction = args[0] == "full" ? 0 : 1;
    for (auto& c : text) c = ZelUniHalfFullChange(c, direction);
    printf("%s\n", ToUtf8(text.c_str()).c_str());
    return 0;
}
