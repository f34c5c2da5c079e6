// String operations on paths, and the directory chain of ZelPathCreate.
#include <gtest/gtest.h>
#include <zel/paths.h>

#include <string>
#include <sys/stat.h>

#include "platform/win32.h"
#include "support/support.h"

namespace {

std::u16string InPlace(const std::u16string& path, const std::function<void(WCHAR*)>& transform) {
    WCHAR buffer[MAX_PATH] = {};
    path.copy(buffer, MAX_PATH - 1);
    transform(buffer);
    return buffer;
}

bool IsDirectory(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

}  // namespace

TEST(PathTransform, SeparatorsAndTitles) {
    const std::u16string full(259, u'a');
    const std::u16string appended[][2] = {{u"", u""}, {u"c:\\a\\", u"c:\\a\\"}, {u"c:\\a/", u"c:\\a/\\"}, {full, full}};
    for (const auto& c : appended) EXPECT_EQ(c[1], InPlace(c[0], ZelAppendBackSlash));
    const std::u16string removed[][2] = {{u"c:\\a\\", u"c:\\a"}, {u"c:\\a/", u"c:\\a"}, {u"c:\\", u"c:\\"}, {u"\\", u"\\"}};
    for (const auto& c : removed) EXPECT_EQ(c[1], InPlace(c[0], ZelRemoveBackSlash));

    WCHAR title[8];
    EXPECT_EQ(0, ZelGetFileTitle(u"c:file.txt", title, 8));
    EXPECT_EQ(std::u16string(u"file.tx"), title);
    ZelGetFileTitle(u"c:\\a\\", title, 8);
    EXPECT_EQ(std::u16string(), title);
    EXPECT_EQ(6, ZelGetFileTitle(u"c:\\a\\b.txt", nullptr, 0));
    EXPECT_EQ(4, ZelGetFileTitle(u"x/y.z", nullptr, 0));
}

TEST(PathTransform, AbbreviationKeepsTheRootAndTheTitle) {
    const struct {
        const WCHAR* path;
        int maximum;
        BOOL keepTitle;
        const WCHAR* expected;
    } cases[] = {
        {u"c:\\aa\\bb\\cc\\dd\\file.txt", 20, 1, u"c:\\aa\\...\\file.txt"},
        {u"c:\\aa\\bb\\cc\\dd\\file.txt", 22, 1, u"c:\\aa\\...\\dd\\file.txt"},
        {u"c:\\aa\\bb\\cc\\dd\\file.txt", 23, 1, u"c:\\aa\\bb\\cc\\dd\\file.txt"},
        {u"c:\\a\\b\\c\\file.txt", 15, 1, u"file.txt"},
        {u"c:\\a\\b\\c\\longname", 7, 1, u"longname"},
        {u"c:\\a\\b\\c\\longname", 7, 0, u""},
        {u"\\\\server\\share\\dir\\sub\\f.txt", 25, 1, u"\\\\server\\share\\...\\f.txt"},
        {u"c:/aa/bb/cc/dd/file.txt", 20, 0, u"file.txt"},
        {u"c:\\aa\\bb\\cc\\dd/file.txt", 20, 0, u"c:\\aa\\.../file.txt"},
        {u"\\", -1, 0, u""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.expected, InPlace(c.path, [&](WCHAR* p) { ZelAbbreviateName(p, c.maximum, c.keepTitle); }))
            << ZelPlatformWideToUtf8(c.path);
}

TEST(PathTransform, MasksWalkTheListUntilAnEmptyField) {
    WCHAR mask[MAX_PATH];
    auto next = [&](const WCHAR* list) { return ZelGetNextMask(list, mask) ? std::u16string(mask) : u"<end>"; };
    EXPECT_EQ(u"*.a", next(u"*.a;*.b"));
    EXPECT_EQ(u"*.b", next(nullptr));
    EXPECT_EQ(u"<end>", next(nullptr));
    EXPECT_EQ(u"*.a", next(u"*.a;;*.b"));
    EXPECT_EQ(u"<end>", next(nullptr));
    const std::u16string longMask = std::u16string(400, u'm') + u";x";
    EXPECT_EQ(std::u16string(259, u'm'), next(longMask.c_str()));
    EXPECT_EQ(u"x", next(nullptr));
}

TEST(PathTransform, NameTests) {
    for (const WCHAR* bad : {u"", u"a\\b", u"a/b", u"c:", u"<", u">", u"a?", u"*", u"|", u"\"q\""})
        EXPECT_FALSE(ZelPathIsValidDirName(bad)) << ZelPlatformWideToUtf8(bad);
    EXPECT_TRUE(ZelPathIsValidDirName(u"dir name.d"));
    for (const WCHAR* name : {u"con", u"PRN", u"Aux", u"clock$", u"NUL", u"com1", u"COM9", u"lpt5"})
        EXPECT_TRUE(ZelPathIsReservedFileName(name)) << ZelPlatformWideToUtf8(name);
    for (const WCHAR* name : {u"", u"LPT0", u"COM10", u"con.txt", u"CLOCK"})
        EXPECT_FALSE(ZelPathIsReservedFileName(name)) << ZelPlatformWideToUtf8(name);
}

TEST(PathTransform, CreateMakesEveryMissingDirectoryButTheFileName) {
    zeltest::TempDir dir;
    ASSERT_TRUE(ZelRegisterPath(u"CreateRoot", ZelPlatformPathFromSystem(dir.path().c_str()).c_str()));
    EXPECT_TRUE(ZelPathCreate(u"${CreateRoot}\\x\\y\\") && ZelPathCreate(u"${CreateRoot}\\x\\y\\"));
    EXPECT_TRUE(IsDirectory(dir.file("x/y")));
    EXPECT_TRUE(ZelPathCreate(u"${CreateRoot}\\p\\q\\file.txt"));
    EXPECT_TRUE(IsDirectory(dir.file("p/q")) && !IsDirectory(dir.file("p/q/file.txt")));
    EXPECT_TRUE(ZelPathCreate(u"plain.txt") && ZelPathCreate(u"${Nobody}") && ZelPathCreate(u"c:\\"));

    zeltest::WriteFile(dir.file("blocker"), "x");
    EXPECT_FALSE(ZelPathCreate(u"${CreateRoot}\\blocker\\z\\"));
    EXPECT_FALSE(ZelPathCreate((u"${CreateRoot}\\" + std::u16string(260, u'l') + u"\\").c_str()));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILENAME_EXCED_RANGE), GetLastError());
    ZelUnregisterPath(u"CreateRoot");

    WCHAR out[MAX_PATH] = {};
    const std::u16string existing = ZelPlatformPathFromSystem(dir.path().c_str());
    EXPECT_TRUE(ZelPathToLongPath(existing.c_str(), out));
    EXPECT_EQ(existing, out);
}
