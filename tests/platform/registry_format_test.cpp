// The registry's file format: what is written reads back the same, and damage anywhere costs no
// more than the record it hit.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "platform/posix/registry/registry_format.h"

using namespace zelreg;
using Lines = std::set<std::u16string>;

namespace {

void AddValue(RegKey* key, const std::u16string& name, DWORD type, const std::string& data) {
    key->values.push_back({name, type, std::vector<BYTE>(data.begin(), data.end())});
}

// A small hive: a root value, a key with a class and two values, a chain below it, and a volatile key.
std::unique_ptr<RegKey> SampleHive() {
    auto root = std::make_unique<RegKey>();
    AddValue(root.get(), u"", REG_SZ, std::string("r\0\0\0", 4));
    RegKey* a = root->AddSubKey(u"Alpha", 11, false);
    a->keyClass = u"Class";
    a->lastWrite = 0x0123456789ABCDEFull;
    AddValue(a, u"one", REG_DWORD, "\x01\x00\x00\x00");
    AddValue(a, u"Two", REG_BINARY, std::string(300, 'Z'));  // data full of the markers' first byte
    RegKey* b = a->AddSubKey(u"Beta", 12, false);
    AddValue(b, u"é", 0x77, "");
    b->AddSubKey(u"Gamma", 13, false);
    root->AddSubKey(u"Delta", 14, true)->AddSubKey(u"Inner", 15, true);
    return root;
}

std::u16string Wide(const std::string& s) { return {s.begin(), s.end()}; }

// One line per key (path, and with ids its id, time, flag and class) and per value.
void Dump(const RegKey& key, const std::u16string& path, Lines& lines, bool withIds) {
    lines.insert(u"K " + path + (withIds ? Wide(" " + std::to_string(key.id) + " " + std::to_string(key.lastWrite) +
                                                (key.isVolatile ? " v " : " ")) +
                                               key.keyClass
                                         : u""));
    for (const RegValue& value : key.values)
        lines.insert(u"V " + path + u":" + value.name +
                     Wide(" " + std::to_string(value.type) + " " + std::string(value.data.begin(), value.data.end())));
    for (const auto& [folded, sub] : key.subKeys) Dump(*sub, path + u"\\" + sub->name, lines, withIds);
}

Lines Load(const std::vector<uint8_t>& bytes, HiveLoader::Volatility volatility, bool withIds,
           LoadStats* stats = nullptr) {
    RegKey root;
    LoadStats result = HiveLoader(root).Load(bytes.data(), bytes.size(), volatility);
    if (stats) *stats = result;
    Lines lines;
    Dump(root, u"", lines, withIds);
    return lines;
}

}  // namespace

TEST(RegistryFormat, EachKindOfFileReadsBackWhatWasWritten) {
    auto hive = SampleHive();
    Lines all, lasting;
    Dump(*hive, u"", all, true);

    // The persistent file holds everything but the volatile keys.
    LoadStats stats;
    auto p = WriteHiveFile(*hive, FileKind::Persistent, 42);
    auto persistent = Load(p, HiveLoader::Volatility::Off, true, &stats);
    EXPECT_TRUE(stats.headerValid);
    EXPECT_EQ(stats.stamp, 42u);
    EXPECT_EQ(stats.skipped, 0u);
    for (const auto& line : all)
        if (line.find(u"Delta") == std::u16string::npos) lasting.insert(line);
    EXPECT_EQ(persistent, lasting);

    // A persistent and a volatile file loaded together give the hive again.
    RegKey root;
    HiveLoader loader(root);
    auto v = WriteHiveFile(*hive, FileKind::Volatile, 2);
    loader.Load(p.data(), p.size(), HiveLoader::Volatility::Off);
    EXPECT_EQ(loader.Load(v.data(), v.size(), HiveLoader::Volatility::On).keys, 2u);
    Lines merged;
    Dump(root, u"", merged, true);
    EXPECT_EQ(merged, all);
    // A volatile file cannot take over a lasting key.
    EXPECT_EQ(loader.Load(p.data(), p.size(), HiveLoader::Volatility::On).keys, 0u);

    auto saved = Load(WriteHiveFile(*hive->FindSubKey(u"ALPHA"), FileKind::Saved, 3), HiveLoader::Volatility::FromFile,
                      false);
    EXPECT_TRUE(saved.count(u"K \\Beta\\Gamma"));
    EXPECT_EQ(saved.size(), 6u);
}

TEST(RegistryFormat, ADamagedByteCostsAtMostTheRecordItHits) {
    auto bytes = WriteHiveFile(*SampleHive(), FileKind::Persistent, 7);
    auto intact = Load(bytes, HiveLoader::Volatility::Off, false);
    for (size_t i = 0; i < bytes.size(); ++i) {
        for (uint8_t flip : {0x01, 0x80, 0xFF}) {
            auto damaged = bytes;
            damaged[i] ^= flip;
            LoadStats stats;
            auto got = Load(damaged, HiveLoader::Volatility::Off, false, &stats);
            // A lost key record takes its own values; its sub-keys come back under a parent made anew.
            size_t lost[2] = {};
            for (const auto& line : intact) lost[line[0] == u'V'] += !got.count(line);
            EXPECT_LE(lost[0], 1u) << "byte " << i;
            EXPECT_LE(lost[1], 2u) << "byte " << i;
            EXPECT_LE(got.size(), intact.size()) << "byte " << i;
            EXPECT_GE(stats.skipped, 1u) << "byte " << i;
        }
    }
}

TEST(RegistryFormat, EveryTruncationLoadsTheWholeRecordsBeforeIt) {
    auto bytes = WriteHiveFile(*SampleHive(), FileKind::Persistent, 7);
    auto intact = Load(bytes, HiveLoader::Volatility::Off, false);
    size_t previous = 0;
    for (size_t length = 0; length <= bytes.size(); ++length) {
        LoadStats stats;
        auto got = Load({bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(length)}, HiveLoader::Volatility::Off,
                        false, &stats);
        for (const auto& line : got) EXPECT_TRUE(intact.count(line)) << "length " << length;
        EXPECT_GE(stats.keys + stats.values, previous) << "length " << length;
        previous = stats.keys + stats.values;
    }
    EXPECT_EQ(previous, 8u);
}
