#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "platform/common/modules/resource_file.h"
#include "platform/win32.h"
#include "resource_file_writer.h"
#include "support/support.h"

using zeltest::TempDir;

namespace {

// A resource file written to a temporary directory and loaded as a data module.
class DataModule {
public:
    explicit DataModule(const std::vector<uint8_t>& bytes) {
        EXPECT_TRUE(zelres::WriteBytes(dir_.file("m.KOR"), bytes));
        module_ = LoadLibraryExW(ZelPlatformPathFromSystem(dir_.file("m.KOR").c_str()).c_str(), nullptr,
                                 LOAD_LIBRARY_AS_DATAFILE);
        EXPECT_NE(module_, nullptr);
    }
    ~DataModule() { FreeLibrary(module_); }
    HMODULE get() const { return module_; }

private:
    TempDir dir_;
    HMODULE module_ = nullptr;
};

std::vector<uint8_t> FileWith(const zelres::StringTable& strings, std::vector<zelres::Resource> extra = {}) {
    auto resources = zelres::StringTableResources(strings);
    resources.insert(resources.end(), extra.begin(), extra.end());
    return zelres::ResourceFileBytes("test file", resources);
}

void PutU32(std::vector<uint8_t>& bytes, size_t at, uint32_t value) {
    for (int i = 0; i < 4; ++i) bytes[at + i] = static_cast<uint8_t>(value >> (8 * i));
}

uint32_t GetU32(const std::vector<uint8_t>& bytes, size_t at) {
    return bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 | static_cast<uint32_t>(bytes[at + 3]) << 24;
}

// The text that an ANSI string of the current code page stands for.
std::u16string FromAnsi(const std::string& text) {
    if (text.empty()) return {};
    std::u16string out(text.size(), u'\0');
    int n = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), out.data(),
                                static_cast<int>(out.size()));
    out.resize(n > 0 ? static_cast<size_t>(n) : 0);
    return out;
}

HRSRC FindBlock(HMODULE module, UINT block) { return FindResourceA(module, MAKEINTRESOURCEA(block), RT_STRING); }

const zelres::StringTable kStrings = {
    {0, u"zero"},
    {15, u"last of block one"},
    {16, u"first of block two"},
    {275, u"메모리가 부족합니다"},
    {279, u"/uAC00 stays as text: %s"},
    {0xFFFF, u"the highest id"},
};

TEST(ResourceFile, StringsLoadByIdInTheAnsiCodePage) {
    zeltest::SystemLocale korean({.acp = "949"});
    if (!korean.active()) GTEST_SKIP() << "the run in the Korean code page checks it";
    DataModule file(FileWith(kStrings));
    for (const auto& [id, text] : kStrings) {
        char buffer[256];
        int n = LoadStringA(file.get(), id, buffer, sizeof buffer);
        ASSERT_GT(n, 0) << id;
        EXPECT_EQ(buffer[n], 0);
        EXPECT_EQ(FromAnsi(std::string(buffer, static_cast<size_t>(n))), text) << id;
    }
    // Missing strings: in a block that exists, and in one that doesn't.
    for (UINT id : {1u, 17u, 274u, 300u, 0x10000u, 0xFFFFFFFFu}) {
        char buffer[8] = "xxxxxxx";
        SetLastError(0);
        EXPECT_EQ(LoadStringA(file.get(), id, buffer, sizeof buffer), 0) << id;
        EXPECT_EQ(buffer[0], 0);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_NAME_NOT_FOUND)) << id;
    }
    char untouched = 'x';
    EXPECT_EQ(LoadStringA(file.get(), 0, &untouched, 0), 0);
    EXPECT_EQ(untouched, 'x');
    EXPECT_EQ(LoadStringA(file.get(), 0, nullptr, 10), 0);
}

TEST(ResourceFile, LoadStringACutsBetweenCharacters) {
    const std::u16string korean = u"가나다라마바사";  // two bytes each in 949
    const std::u16string astral = u"a\U0001F600b\U0001F601";  // 1, 4, 1, 4 bytes in UTF-8
    for (const auto& [page, text] : {std::pair{"949", korean}, std::pair{"65001", astral}}) {
        zeltest::SystemLocale locale({.acp = page});
        if (!locale.active()) continue;  // the run in that code page checks it (none has UTF-8 on Windows)
        DataModule file(FileWith({{7, text}}));
        char full[64];
        const int fullLength = LoadStringA(file.get(), 7, full, sizeof full);
        ASSERT_GT(fullLength, 0);
        for (int size = 1; size <= fullLength + 2; ++size) {
            std::vector<char> buffer(static_cast<size_t>(size) + 4, '#');
            int n = LoadStringA(file.get(), 7, buffer.data(), size);
            ASSERT_LE(n, size - 1) << page << " " << size;
            EXPECT_EQ(buffer[static_cast<size_t>(n)], 0);
            EXPECT_EQ(buffer[static_cast<size_t>(size)], '#');
            EXPECT_EQ(std::string(buffer.data(), static_cast<size_t>(n)), std::string(full, static_cast<size_t>(n)));
            // Whole characters only: the prefix reads back as a prefix of the text.
            std::u16string back = FromAnsi(std::string(buffer.data(), static_cast<size_t>(n)));
            EXPECT_EQ(back, text.substr(0, back.size())) << page << " " << size;
            // And the cut takes as much as fits: one more character would not.
            if (n < fullLength) {
                size_t next = back.size() + (text[back.size()] >= 0xD800 && text[back.size()] <= 0xDBFF ? 2 : 1);
                char probe[64];
                int more = WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(next), probe, sizeof probe,
                                               nullptr, nullptr);
                EXPECT_GT(more, size - 1) << page << " " << size;
            }
        }
    }
}

TEST(ResourceFile, FindLoadAndSizeOfResources) {
    const std::vector<uint8_t> icon = {1, 2, 3, 4, 5};
    DataModule file(FileWith(kStrings, {{3, 9, icon}, {10, 1, {}}}));

    // Block 18 holds strings 272 to 287; string 275 is its fourth.
    HRSRC block = FindBlock(file.get(), 18);
    ASSERT_NE(block, nullptr);
    std::vector<std::u16string> texts(16);
    texts[3] = kStrings.at(275);
    texts[7] = kStrings.at(279);
    const std::vector<uint8_t> expected = zelres::StringBlock(texts);
    ASSERT_EQ(SizeofResource(file.get(), block), expected.size());
    const auto* bytes = static_cast<const uint8_t*>(LockResource(LoadResource(file.get(), block)));
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(std::vector<uint8_t>(bytes, bytes + expected.size()), expected);

    // Other types are listed and found as they are; names may be written "#id".
    HRSRC other = FindResourceA(file.get(), "#9", MAKEINTRESOURCEA(3));
    ASSERT_NE(other, nullptr);
    ASSERT_EQ(SizeofResource(file.get(), other), icon.size());
    EXPECT_EQ(std::memcmp(LoadResource(file.get(), other), icon.data(), icon.size()), 0);
    HRSRC empty = FindResourceW(file.get(), MAKEINTRESOURCEW(1), u"#10");
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(SizeofResource(file.get(), empty), 0u);

    auto fails = [](HRSRC found, DWORD error) { return found == nullptr && GetLastError() == error; };
    EXPECT_TRUE(fails(FindBlock(file.get(), 3), ERROR_RESOURCE_NAME_NOT_FOUND));
    EXPECT_TRUE(
        fails(FindResourceA(file.get(), MAKEINTRESOURCEA(1), MAKEINTRESOURCEA(4)), ERROR_RESOURCE_TYPE_NOT_FOUND));
    EXPECT_TRUE(fails(FindResourceA(file.get(), "NAMED", RT_STRING), ERROR_RESOURCE_NAME_NOT_FOUND));
    EXPECT_TRUE(fails(FindResourceA(file.get(), "#70000", RT_STRING), ERROR_RESOURCE_NAME_NOT_FOUND));
    EXPECT_TRUE(fails(FindResourceA(file.get(), "#", RT_STRING), ERROR_RESOURCE_NAME_NOT_FOUND));
    EXPECT_TRUE(fails(FindResourceA(file.get(), MAKEINTRESOURCEA(1), "STRINGS"), ERROR_RESOURCE_TYPE_NOT_FOUND));
    EXPECT_TRUE(fails(FindResourceA(file.get(), nullptr, RT_STRING), ERROR_INVALID_PARAMETER));

    // Modules without resources here: none, the loader's own, a handle that names nothing.
    HMODULE math = LoadLibraryA("libm.so.6");
    for (HMODULE module : {HMODULE{}, math, reinterpret_cast<HMODULE>(0x1231)})
        EXPECT_TRUE(fails(FindBlock(module, 18), ERROR_RESOURCE_DATA_NOT_FOUND));
    FreeLibrary(math);

    // A resource handle belongs to its module: another module's, or a pointer between the
    // entries, is refused.
    DataModule second(FileWith(kStrings));
    HRSRC foreign = FindBlock(second.get(), 18);
    ASSERT_NE(foreign, nullptr);
    for (HRSRC bad : {foreign, HRSRC{}, reinterpret_cast<HRSRC>(reinterpret_cast<BYTE*>(block) + 4)}) {
        SetLastError(0);
        EXPECT_EQ(LoadResource(file.get(), bad), nullptr);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
        EXPECT_EQ(SizeofResource(file.get(), bad), 0u);
    }
    EXPECT_EQ(LoadResource(nullptr, block), nullptr);
}

// The places in a file of FileWith({{275, ...}}): a header, a comment, one entry, one block.
struct Damage {
    const char* what;
    void (*apply)(std::vector<uint8_t>&);
    DWORD error;
};

TEST(ResourceFile, DamagedFilesAreRefused) {
    const Damage damages[] = {
        {"magic", [](std::vector<uint8_t>& b) { b[0] = 'X'; }, ERROR_RESOURCE_DATA_NOT_FOUND},
        {"version", [](std::vector<uint8_t>& b) { b[8] = 2; }, ERROR_RESOURCE_DATA_NOT_FOUND},
        {"comment past the end", [](std::vector<uint8_t>& b) { PutU32(b, 12, static_cast<uint32_t>(b.size())); },
         ERROR_BAD_FORMAT},
        {"directory inside the header", [](std::vector<uint8_t>& b) { PutU32(b, 16, 8); }, ERROR_BAD_FORMAT},
        {"directory past the end", [](std::vector<uint8_t>& b) { PutU32(b, 16, static_cast<uint32_t>(b.size())); },
         ERROR_BAD_FORMAT},
        {"entry count too large", [](std::vector<uint8_t>& b) { PutU32(b, 20, 0xFFFFFFFF); }, ERROR_BAD_FORMAT},
        {"data offset past the end",
         [](std::vector<uint8_t>& b) { PutU32(b, GetU32(b, 16) + 8, 0xFFFFFFF0); }, ERROR_BAD_FORMAT},
        {"data size past the end",
         [](std::vector<uint8_t>& b) { PutU32(b, GetU32(b, 16) + 12, static_cast<uint32_t>(b.size())); },
         ERROR_BAD_FORMAT},
        {"a string longer than its block",
         [](std::vector<uint8_t>& b) {
             // the block of string 275: three empty strings, then the length of string 275
             size_t length = GetU32(b, GetU32(b, 16) + 8) + 6;
             b[length] = 0xFF;
             b[length + 1] = 0x7F;
         },
         ERROR_BAD_FORMAT},
        {"a block with 15 strings",
         [](std::vector<uint8_t>& b) { PutU32(b, GetU32(b, 16) + 12, GetU32(b, GetU32(b, 16) + 12) - 2); },
         ERROR_BAD_FORMAT},
    };
    const std::vector<uint8_t> sound = FileWith({{275, u"memory ran out"}});
    for (const Damage& damage : damages) {
        std::vector<uint8_t> bytes = sound;
        damage.apply(bytes);
        DataModule file(bytes);
        SetLastError(0);
        EXPECT_EQ(FindBlock(file.get(), 18), nullptr) << damage.what;
        EXPECT_EQ(GetLastError(), damage.error) << damage.what;
        char buffer[32] = "untouched";
        EXPECT_EQ(LoadStringA(file.get(), 275, buffer, sizeof buffer), 0) << damage.what;
        EXPECT_EQ(buffer[0], 0) << damage.what;
    }
}

// Every shorter piece of a sound file is refused whole, or, once it holds every resource, read
// as the whole file. The reader gets buffers of exactly the cut length, so that a read past them
// is caught by the sanitizers.
TEST(ResourceFile, FilesCutAtEveryLength) {
    const std::vector<uint8_t> sound = FileWith(kStrings, {{3, 9, {1, 2, 3}}});
    size_t needed = 0;  // the end of the last resource's data
    for (size_t i = 0; i < GetU32(sound, 20); ++i) {
        const size_t entry = GetU32(sound, 16) + i * zelres::kEntrySize;
        needed = std::max<size_t>(needed, GetU32(sound, entry + 8) + GetU32(sound, entry + 12));
    }
    for (size_t length = 0; length <= sound.size(); ++length) {
        auto cut = std::make_unique<uint8_t[]>(length);
        std::memcpy(cut.get(), sound.data(), length);
        zelres::Entry entry{};
        zelres::Lookup result = zelres::FindEntry(cut.get(), length, zelres::kTypeString, 18, &entry);
        if (length >= needed) {
            EXPECT_EQ(result, zelres::Lookup::Found) << length;
        } else {
            EXPECT_EQ(result, length < zelres::kHeaderSize ? zelres::Lookup::NotAResourceFile : zelres::Lookup::Damaged)
                << length;
        }
        if (length % 16 != 0 && length + 1 < needed) continue;  // the platform calls on a sample of the cuts
        DataModule file(std::vector<uint8_t>(sound.begin(), sound.begin() + static_cast<ptrdiff_t>(length)));
        char buffer[64];
        int n = LoadStringA(file.get(), 16, buffer, sizeof buffer);
        EXPECT_EQ(std::string(buffer, static_cast<size_t>(n)), length >= needed ? "first of block two" : "") << length;
    }
}

TEST(ResourceFile, SourceTextsAndEscapes) {
    const std::string source =
        "\xEF\xBB\xBF# a comment\r\n"
        "\n"
        "   # an indented comment\n"
        "1\tplain text   \n"
        "2   \"  quoted, with blanks  \"  \n"
        "3\tline\\nbreak\\ttab\\\\ \\\"quote\\\" # not a comment\r\n"
        "4\t\xED\x95\x9C\xEA\xB8\x80 /uAC00 \xF0\x9F\x98\x80\n"
        "65535\t\"\\\"\"";  // no line end at the end
    zelres::StringTable strings;
    zelres::SourceError error;
    ASSERT_TRUE(zelres::ParseSource(source, &strings, &error)) << error.line << ": " << error.message;
    const zelres::StringTable expected = {
        {1, u"plain text"},
        {2, u"  quoted, with blanks  "},
        {3, u"line\nbreak\ttab\\ \"quote\" # not a comment"},
        {4, u"한글 /uAC00 \U0001F600"},
        {65535, u"\""},
    };
    EXPECT_EQ(strings, expected);
}

TEST(ResourceFile, SourceErrorsNameTheirLine) {
    const struct {
        std::string source;
        int line;
    } cases[] = {
        {"1\tone\n# fine\n1\tagain\n", 3},  // an id twice
        {"65536\ttoo high\n", 1},
        {"x1\tno id\n", 1},
        {"12text\n", 1},                    // no blank behind the id
        {"12\n", 1},                        // no text
        {"5\t\"\"\n", 1},                   // an empty text
        {"5\tbad \\q escape\n", 1},
        {"5\tends in a backslash\\\n", 1},
        {"\n5\t\"unclosed\n", 2},
        {"5\t\"closed\" and more\n", 1},
        {"5\t\xC3\x28 broken UTF-8\n", 1},
        {"5\t\xE0\x80\x80 overlong\n", 1},
        {"5\t\xED\xA0\x80 surrogate\n", 1},
        {"5\t" + std::string(65536, 'a') + "\n", 1},
    };
    for (const auto& c : cases) {
        zelres::StringTable strings;
        zelres::SourceError error;
        EXPECT_FALSE(zelres::ParseSource(c.source, &strings, &error)) << c.source.substr(0, 40);
        EXPECT_EQ(error.line, c.line) << c.source.substr(0, 40);
        EXPECT_FALSE(error.message.empty());
    }
}

}  // namespace
