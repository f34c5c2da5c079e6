// zel utf: conversion between UTF-8, UTF-16 and UTF-32 with the library's converters.
#include <zel/strings.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "commands.h"
#include "input.h"
#include "report.h"

const char kUtfUsage[] =
    "Usage: zel utf --from FORM --to FORM [--lenient] [FILE | -]\n\n"
    "Converts FILE, or standard input, from one form to another and writes the result to\n"
    "standard output. FORM is utf8, utf16 or utf32; the 16- and 32-bit forms are in the\n"
    "machine's byte order. Strict by default: a surrogate out of place stops the conversion;\n"
    "--lenient lets it through. A malformed UTF-8 sequence stops either. On a stop, what was\n"
    "converted before it is written, the status and the byte offset of the character that\n"
    "stopped it go to standard error, and the exit status is 1.\n";

namespace {

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
        return Fail("the input is not a whole number of " + std::to_string(sizeof(From)) + "-byte units");
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
    return Fail(std::string(StatusName(status)) + " at byte offset " +
                std::to_string(static_cast<size_t>(source - units.data()) * sizeof(From)));
}

}  // namespace

int RunUtf(const Args& args) {
    std::string from, to, file;
    DWORD flags = ZelConvStrict;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--lenient") flags = ZelConvLenient;
        else if (args[i] == "--strict") flags = ZelConvStrict;
        else if (args[i] == "--from" || args[i] == "--to") {
            if (i + 1 == args.size()) return Misuse(args[i] + " takes a form: utf8, utf16 or utf32");
            (args[i] == "--from" ? from : to) = args[i + 1];
            ++i;
        } else if (args[i].size() > 1 && args[i][0] == '-') return Misuse("unknown option " + args[i]);
        else if (!file.empty()) return Misuse("one input at most: " + file + " and " + args[i]);
        else file = args[i];
    }
    const bool forms = (from == "utf8" || from == "utf16" || from == "utf32") &&
                       (to == "utf8" || to == "utf16" || to == "utf32") && from != to;
    if (!forms) return Misuse("--from and --to name two different forms of utf8, utf16, utf32");
    auto bytes = ReadInput(file.empty() ? "-" : file);
    if (!bytes) return 1;
    if (from == "utf8" && to == "utf16") return Convert(*bytes, ZelConvertUTF8toUTF16, flags);
    if (from == "utf8" && to == "utf32") return Convert(*bytes, ZelConvertUTF8toUTF32, flags);
    if (from == "utf16" && to == "utf8") return Convert(*bytes, ZelConvertUTF16toUTF8, flags);
    if (from == "utf16" && to == "utf32") return Convert(*bytes, ZelConvertUTF16toUTF32, flags);
    if (from == "utf32" && to == "utf8") return Convert(*bytes, ZelConvertUTF32toUTF8, flags);
    return Convert(*bytes, ZelConvertUTF32toUTF16, flags);
}
