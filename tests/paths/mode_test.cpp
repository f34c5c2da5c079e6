// The suite runs twice: in wide mode, and as on a system of the 95 family with the Korean ANSI
// code page (the second run sets ZEL_OS_VERSION=1.4.0 and ZEL_ACP=949).
#include <gtest/gtest.h>
#include <zel/paths.h>

#include <cstdlib>
#include <cstring>

TEST(Mode, FollowsTheSystemVersion) {
    const char* version = std::getenv("ZEL_OS_VERSION");
    bool ansi = version && !std::strcmp(version, "1.4.0");
    EXPECT_EQ(ansi ? 1 : 9, ZelGetWinVersion());
}
