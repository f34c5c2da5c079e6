#include "resource_file_writer.h"

#include <algorithm>
#include <cstdio>

#include "platform/common/modules/resource_file_layout.h"

namespace zelres {
namespace {

void PutU16(std::vector<uint8_t>& out, uint32_t value) {
    out.push_back(static_cast<uint8_t>(value));
    out.push_back(static_cast<uint8_t>(value >> 8));
}

void PutU32(std::vector<uint8_t>& out, uint32_t value) {
    PutU16(out, value & 0xFFFF);
    PutU16(out, value >> 16);
}

void PadTo4(std::vector<uint8_t>& out) {
    while (out.size() % 4) out.push_back(0);
}

}  // namespace

std::vector<uint8_t> StringBlock(const std::vector<std::u16string>& strings) {
    std::vector<uint8_t> out;
    for (unsigned i = 0; i < kStringsPerBlock; ++i) {
        std::u16string text = i < strings.size() ? strings[i] : std::u16string();
        text.resize(std::min<size_t>(text.size(), 0xFFFF));
        PutU16(out, static_cast<uint32_t>(text.size()));
        for (char16_t unit : text) PutU16(out, unit);
    }
    return out;
}

std::vector<Resource> StringTableResources(const StringTable& strings) {
    std::map<uint32_t, std::vector<std::u16string>> blocks;
    for (const auto& [id, text] : strings) {
        if (text.empty()) continue;
        auto& block = blocks[StringBlockId(id)];
        block.resize(kStringsPerBlock);
        block[StringIndexInBlock(id)] = text;
    }
    std::vector<Resource> resources;
    for (const auto& [block, texts] : blocks) resources.push_back({kTypeString, block, StringBlock(texts)});
    return resources;
}

std::vector<uint8_t> ResourceFileBytes(const std::string& comment, const std::vector<Resource>& resources) {
    std::vector<uint8_t> out(kFileMagic, kFileMagic + sizeof kFileMagic);
    PutU16(out, kFormatVersion);
    PutU16(out, 0);
    PutU32(out, static_cast<uint32_t>(comment.size()));
    const size_t directory = (kHeaderSize + comment.size() + 3) / 4 * 4;
    PutU32(out, static_cast<uint32_t>(directory));
    PutU32(out, static_cast<uint32_t>(resources.size()));
    out.insert(out.end(), comment.begin(), comment.end());
    PadTo4(out);

    size_t offset = directory + resources.size() * kEntrySize;
    for (const Resource& r : resources) {
        PutU32(out, r.type);
        PutU32(out, r.id);
        PutU32(out, static_cast<uint32_t>(offset));
        PutU32(out, static_cast<uint32_t>(r.data.size()));
        offset = (offset + r.data.size() + 3) / 4 * 4;
    }
    for (const Resource& r : resources) {
        out.insert(out.end(), r.data.begin(), r.data.end());
        PadTo4(out);
    }
    return out;
}

bool WriteBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) return false;
    bool ok = bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    ok = std::fclose(file) == 0 && ok;
    if (!ok) std::remove(path.c_str());
    return ok;
}

}  // namespace zelres
