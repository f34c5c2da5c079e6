// A private ${Common} with code page tables written for the case at hand, and a clean table state
// before and after it.
#ifndef ZEL_TESTS_CODETABLES_TABLE_PATH_FIXTURE_H
#define ZEL_TESTS_CODETABLES_TABLE_PATH_FIXTURE_H

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <zel/paths.h>

#include <filesystem>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "code_table_writer.h"
#include "codetables/code_tables.h"
#include "platform/win32.h"
#include "support/support.h"

// ${Common} on a directory (in the system's form) while the object lives, and the value it had
// before back afterwards.
class ScopedCommon {
public:
    explicit ScopedCommon(const std::string& directory) {
        if (ZelIsRegisterPath(u"Common")) ZelPathToAbsolute(u"${Common}", saved_);
        ZelUnregisterPath(u"Common");
        registered_ = ZelRegisterPath(u"Common", ZelPlatformPathFromSystem(directory.c_str()).c_str());
    }
    ~ScopedCommon() {
        ZelUnregisterPath(u"Common");
        if (saved_[0]) ZelRegisterPath(u"Common", saved_);
    }
    ScopedCommon(const ScopedCommon&) = delete;
    ScopedCommon& operator=(const ScopedCommon&) = delete;
    bool registered() const { return registered_; }

private:
    WCHAR saved_[MAX_PATH] = {};
    bool registered_ = false;
};

class TablePathFixture : public ::testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directory(dir_.file("Code").c_str());
        ZelResetCodeTablesForTest();
        common_.emplace(dir_.path());
        ASSERT_TRUE(common_->registered());
    }

    void TearDown() override {
        ZelResetCodeTablesForTest();
        common_.reset();
    }

    // Writes the table of a code page: the codes given, 0xFFFD for all others from the first code
    // of the page up to 0xFFFF.
    void WriteTable(UINT codePage, const std::map<unsigned, uint16_t>& codes) {
        const unsigned first = ZelFirstCodeOf(codePage);
        ASSERT_NE(0u, first);
        std::vector<uint16_t> entries(0x10000 - first, 0xFFFD);
        for (const auto& [code, unit] : codes) entries.at(code - first) = unit;
        Write16(std::to_string(codePage), entries, entries.size());
    }

    // Writes the file of a kind under number 320, with count in its header.
    void Write16(const std::string& kind, const std::vector<uint16_t>& elements, size_t count) {
        ASSERT_TRUE(zeltables::WriteFile(zeltables::FileName(dir_.file("Code"), 320, kind), zeltables::Header{},
                                         count, zeltables::Payload16(elements)));
    }
    void Write32(const std::string& kind, const std::vector<uint32_t>& elements) {
        ASSERT_TRUE(zeltables::WriteFile(zeltables::FileName(dir_.file("Code"), 320, kind), zeltables::Header{},
                                         elements.size(), zeltables::Payload32(elements)));
    }

    // The four files of the main group: no mapping anywhere, and the "pua" records given (6400
    // records of four units).
    void WriteMainGroup(const std::vector<uint16_t>& pua) {
        Write16("gen", std::vector<uint16_t>(16384, 0x3441), 16384);
        Write16("com", std::vector<uint16_t>(3328, 0x3441), 3328);
        Write16("pua", pua, 6400);
        Write16("cjk", std::vector<uint16_t>(28416, 0x3441), 28416);
    }

private:
    zeltest::TempDir dir_;
    std::optional<ScopedCommon> common_;
};

#endif  // ZEL_TESTS_CODETABLES_TABLE_PATH_FIXTURE_H
