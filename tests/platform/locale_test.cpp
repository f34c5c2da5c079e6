// The user's and the system's language ids from the locale environment and their overrides.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "platform/win32.h"
#include "support/support.h"

namespace {

using zeltest::ScopedEnv;
using Value = std::optional<std::string>;

// Every variable that the calls read, set for the scope of one check.
struct LocaleEnv {
    LocaleEnv(Value all, Value messages, Value lang, Value user = std::nullopt, Value system = std::nullopt)
        : all_("LC_ALL", all),
          messages_("LC_MESSAGES", messages),
          lang_("LANG", lang),
          user_("ZEL_LCID", user),
          system_("ZEL_SYSTEM_LCID", system) {}
    ScopedEnv all_, messages_, lang_, user_, system_;
};

TEST(Locale, NamesMapToWindowsIds) {
    struct {
        const char* name;
        LCID lcid;
    } cases[] = {
        {"ko_KR.UTF-8", 0x412}, {"ja_JP.eucJP", 0x411}, {"en_US", 0x409},     {"en_GB.UTF-8", 0x809},
        {"zh_CN.GB18030", 0x804}, {"zh_TW.Big5", 0x404}, {"zh_HK", 0xC04},    {"zh_SG", 0x1004},
        {"de_DE@euro", 0x407},  {"fr_FR", 0x40C},       {"es_ES", 0xC0A},     {"it_IT", 0x410},
        {"pt_BR", 0x416},       {"pt_PT", 0x816},       {"ru_RU.KOI8-R", 0x419}, {"ar_SA", 0x401},
        {"he_IL", 0x40D},       {"fr_CA", 0xC0C},       {"es_MX", 0x80A},     {"sv_FI", 0x81D},
        // A bare language, or one with a territory the table lacks, takes its primary country.
        {"ko", 0x412},          {"ja.UTF-8", 0x411},    {"zh", 0x804},        {"es", 0xC0A},
        {"de_XX", 0x407},       {"en-AU", 0xC09},       {"KO_kr", 0x412},
        // No language of the table: English, United States.
        {"C", 0x409},           {"POSIX", 0x409},       {"C.UTF-8", 0x409},   {"xx_YY", 0x409},
        {"", 0x409},
    };
    for (const auto& c : cases) {
        LocaleEnv env(std::string(c.name), std::nullopt, std::nullopt);
        EXPECT_EQ(GetUserDefaultLCID(), c.lcid) << c.name;
        EXPECT_EQ(GetSystemDefaultLCID(), c.lcid) << c.name;
        EXPECT_EQ(GetUserDefaultLangID(), LANGIDFROMLCID(c.lcid)) << c.name;
    }
}

TEST(Locale, VariablesTakePrecedenceInOrderAndOverridesWin) {
    const Value none;
    struct {
        Value all, messages, lang, user, system;
        LCID userId, systemId;
    } cases[] = {
        {none, none, none, none, none, 0x409, 0x409},
        {"ja_JP", "ko_KR", "de_DE", none, none, 0x411, 0x411},
        // The messages category speaks for the user only; an empty variable counts as unset.
        {"", "ko_KR.UTF-8", "de_DE.UTF-8", none, none, 0x412, 0x407},
        // Each override speaks for its own side.
        {"de_DE", none, none, "0x411", "1042", 0x411, 0x412},
        {"de_DE", none, none, "0X804", none, 0x804, 0x407},
    };
    int row = 0;
    for (const auto& c : cases) {
        LocaleEnv env(c.all, c.messages, c.lang, c.user, c.system);
        EXPECT_EQ(GetUserDefaultLCID(), c.userId) << "row " << row;
        EXPECT_EQ(GetSystemDefaultLCID(), c.systemId) << "row " << row;
        EXPECT_EQ(GetSystemDefaultLangID(), LANGIDFROMLCID(c.systemId)) << "row " << row++;
    }
    // Overrides that are no valid id count as unset.
    for (const char* bad : {"0x", "12ab", "-1", "0", " 1041"}) {
        LocaleEnv env(std::string("fr_FR"), none, none, std::string(bad), std::string(bad));
        EXPECT_EQ(GetUserDefaultLCID(), 0x40Cu) << bad;
        EXPECT_EQ(GetSystemDefaultLCID(), 0x40Cu) << bad;
    }
}

}  // namespace
