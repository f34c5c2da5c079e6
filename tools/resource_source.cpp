// The text sources of resource files: "ID<blanks>text" lines in UTF-8.
#include <string_view>

#include "resource_file_writer.h"

namespace zelres {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// Appends the UTF-16 form of UTF-8 text; false on a byte sequence that isn't UTF-8.
bool AppendUtf8(std::string_view text, std::u16string* out) {
    size_t i = 0;
    while (i < text.size()) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const int more = lead < 0x80 ? 0
                         : (lead & 0xE0) == 0xC0 ? 1
                         : (lead & 0xF0) == 0xE0 ? 2
                         : (lead & 0xF8) == 0xF0 ? 3
                                                 : -1;
        if (more < 0 || text.size() - i <= static_cast<size_t>(more)) return false;
        char32_t c = more == 0 ? lead : lead & (0x3F >> more);
        for (int k = 1; k <= more; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0) != 0x80) return false;
            c = c << 6 | (next & 0x3F);
        }
        static constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
        if (c < kLeast[more] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return false;
        if (c >= 0x10000) {
            out->push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
            out->push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
        } else {
            out->push_back(static_cast<char16_t>(c));
        }
        i += static_cast<size_t>(more) + 1;
    }
    return true;
}

// The text of a line after its id: escapes resolved, quotes taken off. Empty message on success.
std::string ParseText(std::string_view rest, std::u16string* text) {
    const bool quoted = !rest.empty() && rest.front() == '"';
    if (quoted) {
        rest.remove_prefix(1);
    } else {
        while (!rest.empty() && IsBlank(rest.back())) rest.remove_suffix(1);
    }
    std::string plain;
    bool closed = false;
    for (size_t i = 0; i < rest.size(); ++i) {
        char c = rest[i];
        if (quoted && c == '"') {
            if (rest.find_first_not_of(" \t", i + 1) != std::string_view::npos) return "text behind the closing quote";
            closed = true;
            break;
        }
        if (c != '\\') {
            plain.push_back(c);
            continue;
        }
        if (++i == rest.size()) return "a backslash ends the line";
        switch (rest[i]) {
        case 'n': plain.push_back('\n'); break;
        case 'r': plain.push_back('\r'); break;
        case 't': plain.push_back('\t'); break;
        case '\\': plain.push_back('\\'); break;
        case '"': plain.push_back('"'); break;
        default: return std::string("unknown escape \\") + rest[i];
        }
    }
    if (quoted && !closed) return "no closing quote";
    if (!AppendUtf8(plain, text)) return "text that is not UTF-8";
    if (text->empty()) return "an empty text (it would read as no string)";
    if (text->size() > 0xFFFF) return "a text longer than 65535 UTF-16 units";
    return {};
}

}  // namespace

bool ParseSource(const std::string& source, StringTable* strings, SourceError* error) {
    std::string_view rest(source);
    if (rest.substr(0, 3) == "\xEF\xBB\xBF") rest.remove_prefix(3);
    int lineNumber = 0;
    auto fail = [&](std::string message) {
        *error = {lineNumber, std::move(message)};
        return false;
    };
    while (!rest.empty()) {
        ++lineNumber;
        size_t end = rest.find('\n');
        std::string_view line = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);

        size_t start = 0;
        while (start < line.size() && IsBlank(line[start])) ++start;
        if (start == line.size() || line[start] == '#') continue;

        uint32_t id = 0;
        size_t i = start;
        for (; i < line.size() && line[i] >= '0' && line[i] <= '9'; ++i) {
            id = id * 10 + static_cast<uint32_t>(line[i] - '0');
            if (id > 0xFFFF) return fail("an id above 65535");
        }
        if (i == start) return fail("a line that doesn't start with an id");
        if (i == line.size() || !IsBlank(line[i])) return fail("no blank between the id and the text");
        while (i < line.size() && IsBlank(line[i])) ++i;

        std::u16string text;
        if (std::string message = ParseText(line.substr(i), &text); !message.empty()) return fail(message);
        if (!strings->emplace(id, std::move(text)).second) return fail("id " + std::to_string(id) + " given twice");
    }
    return true;
}

}  // namespace zelres
