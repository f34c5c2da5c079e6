// Reading and editing the lines of an 8-bit INI file. Lines are read as wide text through the ANSI
// code page, so that a trail byte of a double-byte character is never taken for a bracket; lines
// that no edit touches keep their bytes.
#include "platform/posix/profile_file.h"

#include <algorithm>

#include "platform/posix/registry_tree.h"
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
    const size_t equals = text.find(u'=');
    line.name = Trim(text.substr(0, equals));
    if (line.name.empty()) return line;
    line.kind = ProfileLine::Kind::Entry;
    if (equals != npos) line.value = Trim(text.substr(equals + 1));
    return line;
}

}  // namespace

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
    for (const ProfileLine& line : lines_) {
        if (line.kind != ProfileLine::Kind::Section) continue;
        const bool seen = std::any_of(names.begin(), names.end(),
                                      [&](const std::u16string& name) { return SameName(name, line.name); });
        if (!seen) names.push_back(line.name);
    }
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
    bool changed = false;
    for (size_t header; (header = FindSection(section)) != npos; changed = true) {
        const size_t end = SectionEnd(header);
        // The last section takes the blank line before it, which parted it from the rest when it
        // was added, so that adding and deleting a section gives the file back as it was.
        if (end == lines_.size() && header > 0 && Trim(Decode(lines_[header - 1].raw)).empty()) --header;
        lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(header),
                     lines_.begin() + static_cast<std::ptrdiff_t>(end));
    }
    return changed;
}

}  // namespace zelprofile
