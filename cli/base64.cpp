// zel base64: Base64 of bytes, and back.
#include <zel/strings.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "commands.h"
#include "report.h"
#include "input.h"

const char kBase64Usage[] =
    "Usage: zel base64 encode [TEXT | -]\n"
    "       zel base64 decode [TEXT | -]\n\n"
    "encode writes the Base64 form of TEXT (its UTF-8 bytes), or of standard input, in lines of\n"
    "72 characters. decode writes the bytes that Base64 TEXT, or standard input, stands for;\n"
    "white space in it is passed over. Bad Base64 is an error.\n";

int RunBase64(const Args& args) {
    if (args.empty() || (args[0] != "encode" && args[0] != "decode")) return ActionMisuse(args, {});
    auto input = TextArgument(args, 1);
    if (!input) return 1;
    char* output = nullptr;
    if (args[0] == "encode") {
        int length = ZelAsciiToBase64(input->data(), static_cast<int>(input->size()), &output);
        if (!output) return Fail("out of memory");
        fwrite(output, 1, static_cast<size_t>(length), stdout);
        if (length > 0 && output[length - 1] != '\n') fputc('\n', stdout);
    } else {
        int length = ZelBase64ToAscii(input->c_str(), &output);
        if (length == 0 && !input->empty()) {
            free(output);
            return Fail("not Base64 text");
        }
        if (output) fwrite(output, 1, static_cast<size_t>(length), stdout);
    }
    free(output);
    return 0;
}
