// Reading and editing the lines of an 8-bit INI file. Lines are read as wide text through the ANSI
// code page, so that a trail byte of a double-byte character is never taken for a bracket; lines
// that no edit touches keep their bytes.
#include "platform/posix/profile/profile_file.h"

#include <algorithm>
#include <string_view>

#include "platform/posix/registry/registry_tree.h"
#include "platform/win32.h"

namespace zelprofile {

namespace {

constexpr size_t npos = std::string::npos;

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t'; }

std::u16string Trim(const std::u16string& text) {
    size_t first = 0, last = text.size();
    while (first < last && IsBlank(text[first])) ++first;
    while (last > first && IsBlank(text[last - 1])) --last;
    return text.substr(first, last - first);
}

std::u16string Decode(const std::string& bytes) {
    if (bytes.empty()) return {};
    const int length = static_cast<int>(bytes.size());
    // No byte of any code page gives more than one unit.
    std::u16string wide(bytes.size(), u'\0');
    const int n = MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, wide.data(), length);
    wide.resize(n > 0 ? static_cast<size_t>(n) : 0);
    return wide;
}

std::string Encode(const std::u16string& wide) { return ZelPlatformWideToAnsi(wide.c_str()); }

bool SameName(const std::u16string& a, const std::u16string& b) {
    return a.size() == b.size() && zelreg::Fold(a) == zelreg::Fold(b);
}

ProfileLine ParseLine(std::string raw) {
    ProfileLine line;
    line.raw = std::move(raw);
    const std::u16string text = Trim(Decode(line.raw));
    if (text.empty() || text[0] == u';') return line;
    if (text[0] == u'[') {
        const size_t close = text.find(u']', 1);
        line.kind = ProfileLine::Kind::Section;
        line.name = Trim(text.substr(1, close == npos ? npos : close - 1));
        return line;
    }
    // A line without "=" is no key: it is neither listed nor read, only kept.
    const size_t equals = text.find(u'=');
    if (equals == npos) return line;
    line.name = Trim(text.substr(0, equals));
    if (line.name.empty()) return line;
    line.kind = ProfileLine::Kind::Entry;
    line.value = Trim(text.substr(equals + 1));
    return line;
}

// ParseLine on a line of ASCII bytes, in a code page that reads ASCII as itself: the kind, and
// the name and value as views into the line.
ProfileLine::Kind AsciiLine(std::string_view raw, std::string_view& name, std::string_view& value) {
    auto trim = [](std::string_view text) {
        while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
        while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
        return text;
    };
    const std::string_view text = trim(raw);
    if (text.empty() || text[0] == ';') return ProfileLine::Kind::Other;
    if (text[0] == '[') {
        const size_t close = text.find(']', 1);
        name = trim(text.substr(1, close == npos ? npos : close - 1));
        return ProfileLine::Kind::Section;
    }
    const size_t equals = text.find('=');
    if (equals == npos) return ProfileLine::Kind::Other;
    name = trim(text.substr(0, equals));
    if (name.empty()) return ProfileLine::Kind::Other;
    value = trim(text.substr(equals + 1));
    return ProfileLine::Kind::Entry;
}

bool IsAscii(std::string_view bytes) {
    unsigned char any = 0;
    for (char c : bytes) any |= static_cast<unsigned char>(c);
    return any < 0x80;
}

bool AsciiReadsAsItself() {
    char probe[96];
    probe[0] = '\t';
    for (int i = 1; i < 96; ++i) probe[i] = static_cast<char>(0x1F + i);
    char16_t wide[96];
    if (MultiByteToWideChar(CP_ACP, 0, probe, 96, wide, 96) != 96) return false;
    return std::equal(probe, probe + 96, wide, [](char c, char16_t unit) { return unit == char16_t(c); });
}

// One line of a file in bytes, without its line break.
struct RawLine {
    size_t start, end, next;  // next: where the following line starts
};

RawLine LineAt(const std::string& bytes, size_t start) {
    size_t end = bytes.find('\n', start);
    const size_t next = end == npos ? bytes.size() : end + 1;
    if (end == npos) end = bytes.size();
    if (end > start && bytes[end - 1] == '\r') --end;
    return {start, end, next};
}

// The line's kind and its name and value, as ParseLine gives them.
ProfileLine::Kind Meaning(const std::string& bytes, const RawLine& line, std::u16string& name, std::u16string& value) {
    const std::string_view raw(bytes.data() + line.start, line.end - line.start);
    if (!IsAscii(raw)) {
        ProfileLine parsed = ParseLine(std::string(raw));
        name = std::move(parsed.name);
        value = std::move(parsed.value);
        return parsed.kind;
    }
    std::string_view asciiName, asciiValue;
    const ProfileLine::Kind kind = AsciiLine(raw, asciiName, asciiValue);
    name.assign(asciiName.begin(), asciiName.end());
    value.assign(asciiValue.begin(), asciiValue.end());
    return kind;
}

}  // namespace

int ProfileFile::QuickValue(const std::string& bytes, const std::u16string& section, const std::u16string& key,
                            std::u16string& value) {
    if (!AsciiReadsAsItself()) return -1;
    const std::u16string wantedSection = Trim(section), wantedKey = Trim(key);
    std::u16string name, text;
    // A line is a section's when its first byte past the blanks is "[": the blanks read as
    // themselves, and no other byte reads as "[".
    for (size_t at = 0, open; (open = bytes.find('[', at)) != npos;) {
        const size_t newline = open == 0 ? npos : bytes.rfind('\n', open - 1);
        const size_t start = newline == npos ? 0 : newline + 1;
        const RawLine header = LineAt(bytes, start);
        at = header.next;
        const bool blanksOnly = std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(start),
                                            bytes.begin() + static_cast<std::ptrdiff_t>(open),
                                            [](char c) { return IsBlank(c); });
        if (!blanksOnly || Meaning(bytes, header, name, text) != ProfileLine::Kind::Section ||
            !SameName(name, wantedSection))
            continue;
        for (RawLine line = LineAt(bytes, header.next); line.start < bytes.size(); line = LineAt(bytes, line.next)) {
            const ProfileLine::Kind kind = Meaning(bytes, line, name, text);
            if (kind == ProfileLine::Kind::Section) return 0;
            if (kind == ProfileLine::Kind::Entry && SameName(name, wantedKey)) {
                value = std::move(text);
                return 1;
            }
        }
        return 0;
    }
    return 0;
}

ProfileFile::ProfileFile(const std::string& bytes) {
    const size_t firstBreak = bytes.find('\n');
    if (firstBreak != npos && (firstBreak == 0 || bytes[firstBreak - 1] != '\r')) lineBreak_ = "\n";
    size_t start = 0;
    while (start < bytes.size()) {
        size_t end = bytes.find('\n', start);
        const size_t next = end == npos ? bytes.size() : end + 1;
        if (end == npos) end = bytes.size();
        if (end > start && bytes[end - 1] == '\r') --end;
        lines_.push_back(ParseLine(bytes.substr(start, end - start)));
        start = next;
    }
}

std::string ProfileFile::Bytes() const {
    std::string bytes;
    for (const ProfileLine& line : lines_) bytes += line.raw + lineBreak_;
    return bytes;
}

size_t ProfileFile::FindSection(const std::u16string& section) const {
    const std::u16string wanted = Trim(section);
    for (size_t i = 0; i < lines_.size(); ++i)
        if (lines_[i].kind == ProfileLine::Kind::Section && SameName(lines_[i].name, wanted)) return i;
    return npos;
}

size_t ProfileFile::SectionEnd(size_t header) const {
    size_t end = header + 1;
    while (end < lines_.size() && lines_[end].kind != ProfileLine::Kind::Section) ++end;
    return end;
}

size_t ProfileFile::FindEntry(size_t header, const std::u16string& key) const {
    const std::u16string wanted = Trim(key);
    for (size_t i = header + 1, end = SectionEnd(header); i < end; ++i)
        if (lines_[i].kind == ProfileLine::Kind::Entry && SameName(lines_[i].name, wanted)) return i;
    return npos;
}

std::vector<std::u16string> ProfileFile::SectionNames() const {
    std::vector<std::u16string> names;
    for (const ProfileLine& line : lines_)
        if (line.kind == ProfileLine::Kind::Section) names.push_back(line.name);
    return names;
}

std::optional<std::vector<std::u16string>> ProfileFile::KeyNames(const std::u16string& section) const {
    const size_t header = FindSection(section);
    if (header == npos) return std::nullopt;
    std::vector<std::u16string> keys;
    for (size_t i = header + 1, end = SectionEnd(header); i < end; ++i)
        if (lines_[i].kind == ProfileLine::Kind::Entry) keys.push_back(lines_[i].name);
    return keys;
}

std::optional<std::u16string> ProfileFile::Value(const std::u16string& section, const std::u16string& key) const {
    const size_t header = FindSection(section);
    if (header == npos) return std::nullopt;
    const size_t entry = FindEntry(header, key);
    if (entry == npos) return std::nullopt;
    return lines_[entry].value;
}

bool ProfileFile::Set(const std::u16string& section, const std::u16string& key, const std::u16string& value) {
    const size_t header = FindSection(section);
    if (header == npos) {
        // A new section goes at the end, parted from what was there by a blank line.
        if (!lines_.empty() && !Trim(Decode(lines_.back().raw)).empty()) lines_.push_back(ParseLine(""));
        lines_.push_back(ParseLine("[" + Encode(Trim(section)) + "]"));
        lines_.push_back(ParseLine(Encode(Trim(key)) + "=" + Encode(value)));
        return true;
    }
    const size_t entry = FindEntry(header, key);
    if (entry != npos) {
        std::string raw = Encode(lines_[entry].name) + "=" + Encode(value);
        if (raw == lines_[entry].raw) return false;
        lines_[entry] = ParseLine(std::move(raw));
        return true;
    }
    // A new key follows the section's last key, before the comments and blank lines after it.
    size_t at = header + 1;
    for (size_t i = header + 1, end = SectionEnd(header); i < end; ++i)
        if (lines_[i].kind == ProfileLine::Kind::Entry) at = i + 1;
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(at),
                  ParseLine(Encode(Trim(key)) + "=" + Encode(value)));
    return true;
}

bool ProfileFile::DeleteKey(const std::u16string& section, const std::u16string& key) {
    const size_t header = FindSection(section);
    if (header == npos) return false;
    bool changed = false;
    for (size_t entry; (entry = FindEntry(header, key)) != npos; changed = true)
        lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(entry));
    return changed;
}

bool ProfileFile::DeleteSection(const std::u16string& section) {
    size_t header = FindSection(section);
    if (header == npos) return false;
    const size_t end = SectionEnd(header);
    // The last section takes the blank line before it, which parted it from the rest when it was
    // added, so that adding and deleting a section gives the file back as it was.
    if (end == lines_.size() && header > 0 && Trim(Decode(lines_[header - 1].raw)).empty()) --header;
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(header),
                 lines_.begin() + static_cast<std::ptrdiff_t>(end));
    return true;
}

}  // namespace zelprofile
