// The INI file form: what a save writes, byte for byte, and how the reader takes files written
// by hand, including broken ones and the short-line rule.
#include <gtest/gtest.h>
#include <zel/frame.h>
#include <zel/paths.h>
#include <zel/settings.h>

#include <string>

#include "platform/win32.h"
#include "support/support.h"

namespace {

std::u16string Str(const WCHAR* text) { return text ? std::u16string(text) : u"<null>"; }

// The bytes of 16-bit text in file order, with or without the byte order mark.
std::string Units(const std::u16string& text, bool mark = true) {
    std::string bytes;
    if (mark) bytes = "\xFF\xFE";
    for (char16_t unit : text) {
        bytes.push_back(char(unit & 0xFF));
        bytes.push_back(char(unit >> 8));
    }
    return bytes;
}

class IniFile : public ::testing::Test {
protected:
    std::u16string Path(const char* name) const { return ZelPlatformPathFromSystem(dir.file(name).c_str()); }
    void Put(const char* name, const std::string& bytes) const { zeltest::WriteFile(dir.file(name), bytes); }
    std::string Bytes(const char* name) const { return zeltest::ReadFile(dir.file(name)); }

    // Loads text (behind a byte order mark) into ini; the result code.
    LONG Load(const std::u16string& text) {
        Put("in.ini", Units(text));
        return ini.LoadCfgFromFile(Path("in.ini").c_str());
    }
    // Every section as "name:id=value;id=value" lines, for comparing whole models.
    std::u16string Dump() {
        std::u16string out;
        for (int s = 0; s < ini.GetSecCount(); ++s) {
            out += Str(ini.GetSectionName(s)) + u":";
            for (int i = 0; i < ini.GetIdCount(s); ++i)
                out += Str(ini.GetIdStr(s, i)) + u"=" + Str(ini.GetValueStr(s, i)) + u";";
            out += u"\n";
        }
        return out;
    }

    zeltest::TempDir dir;
    CZelIniManager ini;
};

TEST_F(IniFile, SaveWritesTheDocumentedForm) {
    ini.SetHeaderInfo(u"H");
    ini.AddSection(u"[General]");
    ini.AddIdValueStr(0, u"Name", u"Value");
    ini.AddIdValueStr(0, u"", u"alone");
    ini.AddIdValueStr(0, u"Empty", u"");
    ini.AddIdValueStr(0, u"x", u"");
    ini.SetIDStr(0, 3, u"");  // both empty: written as nothing
    ini.AddSection(u"Bare");
    ini.AddSection(u"[Empty]");
    ASSERT_EQ(ini.SaveCfgToFile(Path("out.ini").c_str()), 1);
    EXPECT_EQ(ini.IsModified(), 0);
    EXPECT_EQ(Bytes("out.ini"),
              Units(u"H\r\n\r\n[General]\r\nName=Value\r\nalone\r\nEmpty=\r\n\r\nBare\r\n[Empty]\r\n"));

    // A null path goes where the last save went.
    ini.SetValue(0, u"Name", u"Other");
    ASSERT_EQ(ini.SaveCfgToFile(nullptr), 1);
    EXPECT_NE(Bytes("out.ini").find(Units(u"Name=Other", false)), std::string::npos);
}

TEST_F(IniFile, SaveRefusals) {
    EXPECT_EQ(ini.SaveCfgToFile(nullptr), 0);  // no path yet
    Put("out.ini", "old");
    EXPECT_EQ(ini.SaveCfgToFile(Path("out.ini").c_str()), 0);  // no sections: the file is emptied
    EXPECT_EQ(Bytes("out.ini"), "");
    ini.AddSection(u"[A]");
    EXPECT_EQ(ini.SaveCfgToFile(Path("no/such/dir/out.ini").c_str()), 0);
    EXPECT_EQ(ini.IsModified(), 1);
}

TEST_F(IniFile, ResultCodesOfBrokenFiles) {
    EXPECT_EQ(ini.LoadCfgFromFile(Path("missing.ini").c_str()), 3);
    EXPECT_EQ(ZelGetError(), 0u);
    Put("utf8.ini", "[A]\r\na=b\r\n");
    EXPECT_EQ(ini.LoadCfgFromFile(Path("utf8.ini").c_str()), 5);
    Put("empty.ini", "");
    EXPECT_EQ(ini.LoadCfgFromFile(Path("empty.ini").c_str()), 5);
    Put("one.ini", "\xFF");
    EXPECT_EQ(ini.LoadCfgFromFile(Path("one.ini").c_str()), 5);
    Put("be.ini", "\xFE\xFF");
    EXPECT_EQ(ini.LoadCfgFromFile(Path("be.ini").c_str()), 5);
    EXPECT_EQ(ini.GetSecCount(), 0);

    // An odd last byte is a unit of its own with a zero high byte: "[A]" then 'b'.
    Put("odd.ini", Units(u"[A]\r\na=") + "b");
    EXPECT_EQ(ini.LoadCfgFromFile(Path("odd.ini").c_str()), 0);
    EXPECT_EQ(Str(ini.GetValueStr(u"[A]", u"a")), u"b");

    // Only a byte order mark: nothing to read, and that is a success.
    ini.RemoveAllSecList();
    EXPECT_EQ(Load(u""), 0);
    EXPECT_EQ(ini.GetSecCount(), 0);
    EXPECT_EQ(ini.IsModified(), 0);
}

TEST_F(IniFile, HeaderIsComparedButNeverRead) {
    EXPECT_EQ(Load(u"Version 2 and more\r\n[A]\r\nx=1\r\n"), 0);  // no header asked: passed over
    EXPECT_EQ(ini.GetHeaderInfo(), nullptr);
    ini.RemoveAllSecList();
    ini.SetHeaderInfo(u"Version 2");
    EXPECT_EQ(Load(u"Version 2 and more\r\n[A]\r\nx=1\r\n"), 0);
    EXPECT_EQ(Load(u"\r\nVersion 2\r\n[A]\r\n"), 4);
    EXPECT_EQ(Load(u"Version"), 4);
    EXPECT_EQ(ini.GetSecCount(), 1);

    // A header with brackets reads back as a section.
    CZelIniManager other;
    other.SetHeaderInfo(u"[Head]");
    other.AddSection(u"[A]");
    other.SaveCfgToFile(Path("h.ini").c_str());
    ini.RemoveAllSecList();
    ini.SetHeaderInfo(nullptr);
    EXPECT_EQ(ini.LoadCfgFromFile(Path("h.ini").c_str()), 0);
    EXPECT_EQ(Dump(), u"[Head]:\n[A]:\n");
}

TEST_F(IniFile, ReaderRulesForSectionsAndComments) {
    EXPECT_EQ(Load(u"junk=1\r\n; note\r\n[A]\r\n[B];comment\r\n; c\r\nk=v\r\n; c2\r\n"
                   u"[C] ;kept\r\n  [D]\r\nlast=line\r\n["),
              0);
    EXPECT_EQ(Dump(), u"[A]:\n[B]:k=v;\n[C]:= ;kept;\n[D]:last=line;\n");

    // A comment as the last line without a line end ends the parse there.
    ini.RemoveAllSecList();
    EXPECT_EQ(Load(u"[A]\r\na=1\r\n;end[B]"), 0);
    EXPECT_EQ(Dump(), u"[A]:a=1;\n");

    // A load appends, duplicates included.
    EXPECT_EQ(Load(u"[A]\r\na=1\r\n;end[B]"), 0);
    EXPECT_EQ(Dump(), u"[A]:a=1;\n[A]:a=1;\n");
}

TEST_F(IniFile, ReaderRulesForEntries) {
    EXPECT_EQ(Load(u"[A]\r\na=b=c\r\n  x  =  y  \r\nnoid\r\n=vv\r\n  =w\r\ndup=1\r\ndup=2\r\nin;side=1\r\n"
                   u" ;lead=2\r\nlf=1\nb=2\rlast=end"),
              0);
    EXPECT_EQ(Dump(), u"[A]:a=b=c;  x=y  ;=noid;=vv;=w;dup=1;dup=2;in;side=1; ;lead=2;lf=1\nb=2;last=end;\n");
    EXPECT_EQ(Str(ini.GetValueStr(u"[A]", u"dup")), u"1");
    EXPECT_EQ(Str(ini.GetValueStr(0, 6)), u"2");
}

TEST_F(IniFile, ShortLinesTakeTheNextLineWithThem) {
    EXPECT_EQ(Load(u"[A]\r\na=\r\nb=c\r\nxy\r\n\r\nlong=1\r\nz\r\n"), 0);
    EXPECT_EQ(Dump(), u"[A]:a=\r\nb=c;=xy\r\n;long=1;=z\r\n;\n");

    // An entry longer than the first buffer, after a short one.
    ini.RemoveAllSecList();
    const std::u16string big(700, u'v');
    EXPECT_EQ(Load(u"[A]\r\ns=1\r\nbig=" + big + u"\r\n"), 0);
    EXPECT_EQ(Str(ini.GetValueStr(u"[A]", u"big")), big);
}

TEST_F(IniFile, LongSectionNamesAreRefused) {
    const std::u16string longest = u"[" + std::u16string(255, u'n') + u"]";
    EXPECT_EQ(Load(u"[A]\r\n" + longest + u"\r\nx=1\r\n"), 0);
    EXPECT_EQ(ini.GetIdCount(longest.c_str()), 1);

    ini.RemoveAllSecList();
    ini._SetModified(1);
    const std::u16string tooLong = u"[" + std::u16string(256, u'n') + u"]";
    EXPECT_EQ(Load(u"[A]\r\nx=1\r\n" + tooLong + u"\r\n[B]\r\n"), 2);
    EXPECT_EQ(Dump(), u"[A]:x=1;\n");  // what was finished stays
    EXPECT_EQ(ini.IsModified(), 1);
}

TEST_F(IniFile, PathMacrosAndTheKeptPath) {
    ASSERT_TRUE(ZelRegisterPath(u"IniTest", Path("").c_str()));
    ini.AddSection(u"[A]");
    ini.AddIdValueStr(0, u"k", u"v");
    ASSERT_EQ(ini.SaveCfgToFile(u"${IniTest}m.ini"), 1);
    EXPECT_EQ(Bytes("m.ini"), Units(u"[A]\r\nk=v\r\n\r\n"));
    // A failed load keeps the path it tried.
    EXPECT_EQ(ini.LoadCfgFromFile(u"${IniTest}none.ini"), 3);
    EXPECT_EQ(ini.SaveCfgToFile(nullptr), 1);
    EXPECT_EQ(Bytes("none.ini"), Units(u"[A]\r\nk=v\r\n\r\n"));
    ZelUnregisterPath(u"IniTest");
}

}  // namespace
