#include "input.h"

#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

std::optional<std::string> ReadInput(const std::string& path) {
    if (path == "-") {
        std::ostringstream all;
        all << std::cin.rdbuf();
        return all.str();
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        fprintf(stderr, "zel: cannot read %s\n", path.c_str());
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::optional<std::string> TextArgument(const Args& args, size_t first) {
    if (args.size() <= first || (args.size() == first + 1 && args[first] == "-")) return ReadInput("-");
    std::string text = args[first];
    for (size_t i = first + 1; i < args.size(); ++i) text += " " + args[i];
    return text;
}

std::optional<std::string> LineArgument(const Args& args, size_t first) {
    auto text = TextArgument(args, first);
    if (text)
        while (!text->empty() && (text->back() == '\n' || text->back() == '\r')) text->pop_back();
    return text;
}

bool WantsHelp(const Args& args) {
    for (const auto& arg : args)
        if (arg == "--help" || arg == "-h") return true;
    return false;
}
