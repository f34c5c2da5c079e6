// zel utf: conversion between UTF-8, UTF-16 and UTF-32 with the library's converters.
#include <zel/strings.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "commands.h"
#include "input.h"

namespace {

int Usage(int status) {
    printf("Usage: zel utf --from FORM --to FORM [--lenient] [FILE | -]\n\n"
           "Converts FILE, or standard input, from one form to another and writes the result to\n"
           "standard output. FORM is utf8, utf16 or utf32; the 16- and 32-bit forms are in the\n"
           "machine's byte order. Strict by default: a surrogate out of place stops the conversion;\n"
           "--lenient lets it through. A malformed UTF-8 sequence stops either. On a stop, what was\n"
           "converted before it is written, the status and the byte offset of the character that\n"
           "stopped it go to standard error, and the exit status is 1.\n");
    return status;
}

const char* StatusName(ZelConvResult status) {
    switch (status) {
        case ZelConvOk: return "ZelConvOk";
        case ZelConvSourceExhausted: return "ZelConvSourceExhausted";
        case ZelConvTargetExhausted: return "ZelConvTargetExhausted";
        case ZelConvSourceIllegal: return "ZelConvSourceIllegal";
    }
    return "unknown";
}

template <typename From, typename To>
using Converter = ZelConvResult (*)(const From**, const From*, To**, To*, DWORD);

// Converts in pieces of a fixed target size, resuming where each piece stopped for want of room.
template <typename From, typename To>
int Convert(const std::string& bytes, Converter<From, To> convert, DWORD flags) {
    if (bytes.size() % sizeof(From) != 0) {
        fprintf(stderr, "zel utf: the input is not a whole number of %zu-byte units\n", sizeof(From));
        return 1;
    }
    std::vector<From> units(bytes.size() / sizeof(From));
    if (!bytes.empty()) memcpy(units.data(), bytes.data(), bytes.size());
    const From* source = units.data();
    const From* const end = source + units.size();
    std::vector<To> piece(1 << 16);
    ZelConvResult status;
    do {
        To* target = piece.data();
        status = convert(&source, end, &target, piece.data() + piece.size(), flags);
        fwrite(piece.data(), sizeof(To), static_cast<size_t>(target - piece.data()), stdout);
    } while (status == ZelConvTargetExhausted);
    if (status == ZelConvOk) return 0;
    fflush(stdout);
    fprintf(stderr, "zel utf: %s at byte offset %zu\n", StatusName(status),
            static_cast<size_t>(source - units.data()) * sizeof(From));
    return 1;
}

}  // namespace

int RunUtf(const Args& args) {
    std::string from, to, file = "-";
    DWORD flags = ZelConvStrict;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--help" || args[i] == "-h") return Usage(0);
        if (args[i] == "--lenient") flags = ZelConvLenient;
        else if (args[i] == "--strict") flags = ZelConvStrict;
        else if (args[i] == "--from" && i + 1 < args.size()) from = args[++i];
        else if (args[i] == "--to" && i + 1 < args.size()) to = args[++i];
        else if (args[i].rfind("--", 0) == 0) return Usage(2);
        else file = args[i];
    }
    auto bytes = ReadInput(file);
    if (!bytes) return 1;
    if (from == "utf8" && to == "utf16") return Convert(*bytes, ZelConvertUTF8toUTF16, flags);
    if (from == "utf8" && to == "utf32") return Convert(*bytes, ZelConvertUTF8toUTF32, flags);
    if (from == "utf16" && to == "utf8") return Convert(*bytes, ZelConvertUTF16toUTF8, flags);
    if (from == "utf16" && to == "utf32") return Convert(*bytes, ZelConvertUTF16toUTF32, flags);
    if (from == "utf32" && to == "utf8") return Convert(*bytes, ZelConvertUTF32toUTF8, flags);
    if (from == "utf32" && to == "utf16") return Convert(*bytes, ZelConvertUTF32toUTF16, flags);
    fprintf(stderr, "zel utf: --from and --to name two different forms of utf8, utf16, utf32\n");
    return 2;
}
