// The INI store's model: look-ups by name and by position, edits, the modified flag, removals that
// move positions, and copies that own their records.
#include <gtest/gtest.h>
#include <zel/frame.h>
#include <zel/settings.h>

#include <string>

namespace {

std::u16string Str(const WCHAR* text) { return text ? std::u16string(text) : u"<null>"; }

// Two sections: [General] with a=1 and b=2, and an empty [Empty].
CZelIniManager Sample() {
    CZelIniManager ini;
    ini.AddSection(u"[General]");
    ini.AddIdValueStr(u"[General]", u"a", u"1");
    ini.AddIdValueStr(0, u"b", u"2");
    ini.AddSection(u"[Empty]");
    ini._SetModified(0);
    return ini;
}

TEST(IniModel, SectionsAreFoundOnlyByTheirExactBracketedName) {
    CZelIniManager ini;
    EXPECT_EQ(ini.IsModified(), 0);
    EXPECT_EQ(ini.AddSection(u"[Main]"), 0);
    EXPECT_EQ(ini.IsModified(), 1);
    EXPECT_EQ(ini.GetSecIndex(u"[Main]"), 0);
    EXPECT_EQ(ini.GetSecIndex(u"[main]"), -1);
    EXPECT_EQ(ini.GetSecIndex(u"[Main ]"), -1);

    ini._SetModified(0);
    EXPECT_EQ(ini.AddSection(u"[Main]"), -1);
    EXPECT_EQ(ini.IsModified(), 0);

    // A name without brackets is never looked for: it is added every time and found by nobody.
    EXPECT_EQ(ini.AddSection(u"Plain"), 1);
    EXPECT_EQ(ini.AddSection(u"Plain"), 2);
    EXPECT_EQ(ini.GetSecIndex(u"Plain"), -1);
    EXPECT_EQ(Str(ini.GetSectionName(2)), u"Plain");
    EXPECT_EQ(ini.GetSectionName(3), nullptr);
    EXPECT_EQ(ini.GetSectionName(-1), nullptr);
    EXPECT_EQ(ini.GetSecCount(), 3);
}

TEST(IniModel, EntriesByNameAndByPosition) {
    CZelIniManager ini = Sample();
    EXPECT_EQ(Str(ini.GetValueStr(u"[General]", u"b")), u"2");
    EXPECT_EQ(Str(ini.GetValueStr(u"[General]", 0)), u"1");
    EXPECT_EQ(Str(ini.GetValueStr(0, 1)), u"2");
    EXPECT_EQ(Str(ini.GetIdStr(u"[General]", 1)), u"b");
    EXPECT_EQ(Str(ini.GetIdStr(0, 0)), u"a");
    EXPECT_EQ(ini.GetIdIndex(u"[General]", u"b"), 1);
    EXPECT_EQ(ini.GetIdIndex(0, u"B"), -1);

    EXPECT_EQ(ini.GetValueStr(u"[General]", u"missing"), nullptr);
    EXPECT_EQ(ini.GetValueStr(u"[Missing]", u"a"), nullptr);
    EXPECT_EQ(ini.GetValueStr(0, -1), nullptr);
    EXPECT_EQ(ini.GetValueStr(0, 2), nullptr);
    EXPECT_EQ(ini.GetIdStr(5, 0), nullptr);

    EXPECT_EQ(ini.GetIdCount(u"[General]"), 2);
    EXPECT_EQ(ini.GetIdCount(u"[Empty]"), 0);
    EXPECT_EQ(ini.GetIdCount(u"[Missing]"), -1);
    EXPECT_EQ(ini.GetIdCount(-1), -1);
    EXPECT_EQ(ini.IsModified(), 0);
}

TEST(IniModel, AddAndChangeOnlyWhatTheRulesAllow) {
    CZelIniManager ini = Sample();
    EXPECT_EQ(ini.AddIdValueStr(u"[General]", u"a", u"again"), 0);
    EXPECT_EQ(ini.AddIdValueStr(u"[Missing]", u"a", u"x"), 0);
    EXPECT_EQ(ini.AddIdValueStr(7, u"a", u"x"), 0);
    EXPECT_EQ(ini.SetValue(u"[General]", u"missing", u"x"), 0);
    EXPECT_EQ(ini.SetValue(0, 9, u"x"), 0);
    EXPECT_EQ(ini.SetIDStr(0, u"missing", u"x"), 0);
    EXPECT_EQ(ini.GetIdCount(0), 2);
    EXPECT_EQ(ini.IsModified(), 0);

    EXPECT_EQ(ini.SetValue(u"[General]", u"a", u"one"), 1);
    EXPECT_EQ(ini.SetValue(0, u"b", u""), 1);
    EXPECT_EQ(Str(ini.GetValueStr(0, 0)), u"one");
    EXPECT_EQ(Str(ini.GetValueStr(0, 1)), u"");
    EXPECT_EQ(ini.IsModified(), 1);

    // A rename is not checked against the other ids: the first of two equal ids answers.
    EXPECT_EQ(ini.SetIDStr(u"[General]", u"b", u"a"), 1);
    EXPECT_EQ(ini.GetIdIndex(0, u"a"), 0);
    EXPECT_EQ(ini.SetValue(0, 1, u"second"), 1);
    EXPECT_EQ(Str(ini.GetValueStr(u"[General]", u"a")), u"one");
    EXPECT_EQ(ini.SetIDStr(0, 1, u"c"), 1);
    EXPECT_EQ(Str(ini.GetValueStr(u"[General]", u"c")), u"second");

    EXPECT_EQ(ini.AddIdValueStr(1, u"", u""), 1);
    EXPECT_EQ(ini.GetIdIndex(u"[Empty]", u""), 0);
}

TEST(IniModel, RemovalsMovePositionsDown) {
    CZelIniManager ini = Sample();
    ini.AddIdValueStr(0, u"c", u"3");
    EXPECT_EQ(ini.RemoveId(0, 0), 1);
    EXPECT_EQ(Str(ini.GetIdStr(0, 0)), u"b");
    EXPECT_EQ(ini.RemoveId(u"[General]", u"c"), 1);
    EXPECT_EQ(ini.RemoveId(0, u"c"), 0);
    EXPECT_EQ(ini.RemoveId(0, 3), 0);
    EXPECT_EQ(ini.GetIdCount(0), 1);

    EXPECT_EQ(ini.RemoveAllId(u"[General]"), 1);
    EXPECT_EQ(ini.GetIdCount(0), 0);
    EXPECT_EQ(ini.RemoveAllId(u"[Missing]"), 0);
    EXPECT_EQ(ini.AddIdValueStr(0, u"new", u"v"), 1);
    EXPECT_EQ(ini.GetIdCount(0), 1);

    EXPECT_EQ(ini.RemoveSection(0), 1);
    EXPECT_EQ(ini.GetSecIndex(u"[Empty]"), 0);

    ini._SetModified(0);
    EXPECT_EQ(ini.RemoveSection(1), 0);
    EXPECT_EQ(ini.IsModified(), 0);
    EXPECT_EQ(ini.RemoveSection(u"[Missing]"), 1);
    EXPECT_EQ(ini.IsModified(), 1);
    EXPECT_EQ(ini.GetSecCount(), 1);

    ini._SetModified(0);
    ini.RemoveAllSecList();
    EXPECT_EQ(ini.GetSecCount(), 0);
    EXPECT_EQ(ini.IsModified(), 1);
    EXPECT_EQ(ini.AddSection(u"[Empty]"), 0);
}

TEST(IniModel, HeaderTextAndItsModifiedFlag) {
    CZelIniManager ini;
    EXPECT_EQ(ini.GetHeaderInfo(), nullptr);
    EXPECT_EQ(ini.CheckHeaderInfo(), 1);
    ini.SetHeaderInfo(u"; settings");
    EXPECT_EQ(Str(ini.GetHeaderInfo()), u"; settings");
    EXPECT_EQ(ini.CheckHeaderInfo(), 1);  // no file being read
    ini._SetModified(0);
    ini.SetHeaderInfo(nullptr);
    EXPECT_EQ(ini.GetHeaderInfo(), nullptr);
    EXPECT_EQ(ini.IsModified(), 1);
}

TEST(IniModel, CopiesOwnTheirRecords) {
    CZelIniManager original = Sample();
    original.SetHeaderInfo(u"H");
    CZelIniManager copy(original);
    CZelIniManager assigned;
    assigned.AddSection(u"[Old]");
    assigned = original;
    original.SetValue(0, u"a", u"changed");
    original.RemoveSection(1);

    for (CZelIniManager* ini : {&copy, &assigned}) {
        EXPECT_EQ(ini->GetSecCount(), 2);
        EXPECT_EQ(Str(ini->GetValueStr(u"[General]", u"a")), u"1");
        EXPECT_EQ(ini->GetSecIndex(u"[Old]"), -1);
        EXPECT_EQ(Str(ini->GetHeaderInfo()), u"H");
    }
    CZelIniManager& same = assigned;
    assigned = same;
    EXPECT_EQ(assigned.GetSecCount(), 2);
}

TEST(IniModel, LookUpFailuresLeaveTheThreadErrorAlone) {
    ZelSetError(1234);
    CZelIniManager ini = Sample();
    ini.GetValueStr(u"[Missing]", u"x");
    ini.GetIdIndex(3, u"x");
    ini.AddSection(u"[General]");
    EXPECT_EQ(ZelGetError(), 1234u);
    ZelClearError();
}

}  // namespace
