#include "code_table_writer.h"

#include <cstdio>

namespace zeltables {

std::string FileName(const std::string& directory, int number, const std::string& kind) {
    char name[64];
    std::snprintf(name, sizeof name, "u%03d_%s.dat", number, kind.c_str());
    return directory + "/" + name;
}

std::vector<uint8_t> Payload16(const std::vector<uint16_t>& elements) {
    std::vector<uint8_t> bytes;
    bytes.reserve(elements.size() * 2);
    for (uint16_t value : elements) {
        bytes.push_back(static_cast<uint8_t>(value));
        bytes.push_back(static_cast<uint8_t>(value >> 8));
    }
    return bytes;
}

std::vector<uint8_t> Payload32(const std::vector<uint32_t>& elements) {
    std::vector<uint8_t> bytes;
    bytes.reserve(elements.size() * 4);
    for (uint32_t value : elements) {
        for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<uint8_t>(value >> shift));
    }
    return bytes;
}

static std::string HeaderText(const Header& header, size_t elementCount) {
    std::string text;
    auto line = [&](const std::string& content) { text += content + header.lineEnd; };
    for (const std::string& before : header.before) line(before);
    if (header.versionLine) line("Unicode version : " + header.version);
    for (const std::string& between : header.between) line(between);
    if (header.countLine) line("Data count : " + (header.count.empty() ? std::to_string(elementCount) : header.count));
    return text;
}

bool WriteFile(const std::string& path, const Header& header, size_t elementCount, const std::vector<uint8_t>& payload) {
    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) return false;
    std::string text = HeaderText(header, elementCount);
    bool ok = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    if (ok && !payload.empty()) ok = std::fwrite(payload.data(), 1, payload.size(), file) == payload.size();
    return std::fclose(file) == 0 && ok;
}

}  // namespace zeltables
