// zel base64: Base64 of bytes, and back.
#include <zel/strings.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "commands.h"
#include "input.h"

namespace {
int Usage(int status) {
    printf("Usage: zel base64 encode [TEXT | -]\n"
           "       zel base64 decode [TEXT | -]\n\n"
           "encode writes the Base64 form of TEXT (its UTF-8 bytes), or of standard input, in lines of\n"
           "72 characters. decode writes the bytes that Base64 TEXT, or standard input, stands for;\n"
           "white space in it is passed over. Bad Base64 is an error.\n");
    return status;
}
}  // namespace

int RunBase64(const Args& args) {
    if (WantsHelp(args)) return Usage(0);
    if (args.empty() || (args[0] != "encode" && args[0] != "decode")) return Usage(2);
    auto input = TextArgument(args, 1);
    if (!input) return 1;
    char* output = nullptr;
    if (args[0] == "encode") {
        int length = ZelAsciiToBase64(input->data(), static_cast<int>(input->size()), &output);
        if (!output) {
            fprintf(stderr, "zel base64: out of memory\n");
            return 1;
        }
        fwrite(output, 1, static_cast<size_t>(length), stdout);
        if (length > 0 && output[length - 1] != '\n') fputc('\n', stdout);
    } else {
        int length = ZelBase64ToAscii(input->c_str(), &output);
        if (length == 0 && !input->empty()) {
            fprintf(stderr, "zel base64: not Base64 text\n");
            free(output);
            return 1;
        }
        if (output) fwrite(output, 1, static_cast<size_t>(length), stdout);
    }
    free(output);
    return 0;
}
