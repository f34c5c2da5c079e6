// The suite runs twice: in wide mode, and as on a system of the 95 family with the Korean ANSI
// code page (on POSIX the second run sets ZEL_OS_VERSION=1.4.0 and ZEL_ACP=949; on Windows it is
// a copy of the program, named *_95.exe, that the system reports as one of that family).
#include <gtest/gtest.h>
#include <zel/paths.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "support/system.h"

TEST(Mode, FollowsTheSystemVersion) {
    const char* version = std::getenv("ZEL_OS_VERSION");
    const std::string program = zeltest::OwnProgramPath();
    const bool ansi = (version && !std::strcmp(version, "1.4.0")) ||
                      (program.size() > 7 && program.compare(program.size() - 7, 7, "_95.exe") == 0);
    const int mode = ZelGetWinVersion();
    EXPECT_EQ(ansi, mode >= 1 && mode <= 3) << mode;
}
