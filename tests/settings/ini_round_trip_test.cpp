// Save then load gives the same model back, for random models of the kind that the file form
// carries unchanged: bracketed section names without a "]" inside, ids without "=", values
// without leading spaces, no line breaks, lines of three units or more, and no line that the
// reader would take for a comment or a section.
#include <gtest/gtest.h>
#include <zel/settings.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "platform/win32.h"
#include "support/support.h"

namespace {

class ModelMaker {
public:
    explicit ModelMaker(unsigned seed) : random_(seed) {}

    std::u16string SectionName() {
        for (;;) {
            std::u16string body = Text(Pick(0, 12) == 0 ? 255 : 12);
            if (body.find(u']') == std::u16string::npos) return u"[" + body + u"]";
        }
    }
    std::u16string Id() {
        for (;;) {
            std::u16string id = Text(10);
            if (!id.empty() && id.find(u'=') == std::u16string::npos && id.back() != u' ' && id[0] != u';' &&
                !StartsSection(id))
                return id;
        }
    }
    std::u16string Value() {
        for (;;) {
            std::u16string value = Text(12);
            if (value.empty() || value[0] != u' ') return value;
        }
    }
    // The value of an entry without id: the line holds it alone.
    std::u16string Alone() {
        for (;;) {
            std::u16string value = Value();
            if (value.size() >= 3 && value.find(u'=') == std::u16string::npos && value[0] != u';' && value[0] != u'[')
                return value;
        }
    }
    int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

private:
    static bool StartsSection(const std::u16string& text) {
        const size_t first = text.find_first_not_of(u' ');
        return first != std::u16string::npos && text[first] == u'[';
    }
    // Mostly the units the reader looks at, and now and then any unit but zero and line ends.
    std::u16string Text(int longest) {
        static const std::u16string common = u"ab Z09=;[]\t\uAC00\uFEFF" + std::u16string(1, char16_t(0xD800));
        std::u16string text(Pick(0, longest), u'x');
        for (char16_t& unit : text) {
            if (Pick(0, 4) > 0) {
                unit = common[Pick(0, int(common.size()) - 1)];
            } else {
                do unit = char16_t(Pick(1, 0xFFFF));
                while (unit == u'\r' || unit == u'\n');
            }
        }
        return text;
    }

    std::mt19937 random_;
};

void Fill(CZelIniManager& ini, ModelMaker& make) {
    const int sections = make.Pick(0, 6);
    for (int s = 0; s < sections; ++s) {
        const int index = ini.AddSection(make.SectionName().c_str());
        if (index < 0) continue;
        const int entries = make.Pick(0, 8);
        for (int e = 0; e < entries; ++e) {
            if (make.Pick(0, 5) == 0) {
                ini.AddIdValueStr(index, u"", make.Alone().c_str());
                continue;
            }
            const std::u16string id = make.Id();
            std::u16string value = make.Value();
            while (id.size() + 1 + value.size() < 3) value += u'v';
            ini.AddIdValueStr(index, id.c_str(), value.c_str());
        }
    }
}

bool SameSections(CZelIniManager& a, CZelIniManager& b) {
    if (a.GetSecCount() != b.GetSecCount()) return false;
    for (int s = 0; s < a.GetSecCount(); ++s) {
        if (std::u16string(a.GetSectionName(s)) != b.GetSectionName(s)) return false;
        if (a.GetIdCount(s) != b.GetIdCount(s)) return false;
        for (int i = 0; i < a.GetIdCount(s); ++i) {
            if (std::u16string(a.GetIdStr(s, i)) != b.GetIdStr(s, i)) return false;
            if (std::u16string(a.GetValueStr(s, i)) != b.GetValueStr(s, i)) return false;
        }
    }
    return true;
}

TEST(IniRoundTrip, RandomModelsComeBackUnchanged) {
    zeltest::TempDir dir;
    const std::u16string path = ZelPlatformPathFromSystem(dir.file("round.ini").c_str());
    for (unsigned seed = 1; seed <= 300; ++seed) {
        ModelMaker make(seed);
        CZelIniManager saved;
        if (seed % 3 == 0) saved.SetHeaderInfo(u"Settings file, version 3");
        Fill(saved, make);
        if (saved.GetSecCount() == 0) continue;
        ASSERT_EQ(saved.SaveCfgToFile(path.c_str()), 1) << "seed " << seed;

        CZelIniManager loaded;
        loaded.SetHeaderInfo(saved.GetHeaderInfo());
        ASSERT_EQ(loaded.LoadCfgFromFile(path.c_str()), 0) << "seed " << seed;
        EXPECT_TRUE(SameSections(saved, loaded)) << "seed " << seed;
    }
}

// A model of many sections, edited at random through names and positions, where renames and a
// double load make entries and sections of one name: the answers of the look-ups and the bytes of
// the file must stay those of the first release of the store (FNV-1a, 64 bits, over both).
TEST(IniRoundTrip, RandomEditsKeepTheirAnswersAndBytes) {
    zeltest::TempDir dir;
    const std::u16string path = ZelPlatformPathFromSystem(dir.file("edits.ini").c_str());
    ModelMaker make(20261124);
    std::vector<std::u16string> names, ids;
    for (int n = 0; n < 80; ++n) names.push_back(make.SectionName());
    for (int n = 0; n < 40; ++n) ids.push_back(make.Id());
    auto name = [&] { return names[make.Pick(0, 79)].c_str(); };
    auto id = [&] { return ids[make.Pick(0, 39)].c_str(); };
    std::string answers;
    auto note = [&](long long answer) { answers += std::to_string(answer) + ","; };
    auto noteText = [&](const WCHAR* text) { note(text ? long(std::u16string(text).size()) * 7 + text[0] : -9); };
    auto ask = [&](CZelIniManager& ini) {
        note(ini.GetSecIndex(name()));
        note(ini.GetIdIndex(name(), id()));
        noteText(ini.GetValueStr(name(), id()));
    };

    CZelIniManager ini;
    for (int s = 0; s < 60; ++s) {
        const int index = ini.AddSection(name());
        for (int e = make.Pick(0, 30); index >= 0 && e > 0; --e) ini.AddIdValueStr(index, id(), make.Value().c_str());
    }
    for (int n = 0; n < 6000; ++n) {
        switch (make.Pick(0, 9)) {
        case 0: note(ini.SetIDStr(name(), id(), id())); break;
        case 1: note(ini.RemoveId(name(), id())); break;
        case 2: note(ini.RemoveId(make.Pick(-1, 60), make.Pick(-1, 30))); break;
        case 3: note(ini.AddIdValueStr(name(), id(), make.Value().c_str())); break;
        case 4: note(make.Pick(0, 20) ? ini.SetValue(name(), id(), u"v") : ini.RemoveSection(make.Pick(0, 60))); break;
        case 5: note(make.Pick(0, 10) ? ini.SetIDStr(make.Pick(0, 60), make.Pick(0, 30), id()) : ini.AddSection(name())); break;
        default: ask(ini);
        }
    }
    ASSERT_EQ(1, ini.SaveCfgToFile(path.c_str()));
    std::string bytes = zeltest::ReadFile(dir.file("edits.ini"));
    CZelIniManager twice;
    ASSERT_EQ(0, twice.LoadCfgFromFile(path.c_str()));
    ASSERT_EQ(0, twice.LoadCfgFromFile(path.c_str()));
    for (int n = 0; n < 2000; ++n) ask(twice);
    uint64_t hash = 0xcbf29ce484222325ULL;
    for (unsigned char byte : bytes + answers) hash = (hash ^ byte) * 0x100000001b3ULL;
    EXPECT_EQ(7718u, bytes.size());
    EXPECT_EQ(46332u, answers.size());
    EXPECT_EQ(5849734983011999949ULL, hash);
}

}  // namespace
