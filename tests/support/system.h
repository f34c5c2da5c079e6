// What the shared helpers need of the system, one body per system (support_posix.cpp,
// support_windows.cpp).
#ifndef ZEL_TESTS_SUPPORT_SYSTEM_H
#define ZEL_TESTS_SUPPORT_SYSTEM_H

#include <optional>
#include <string>

namespace zeltest {

// Sets, or with nullopt removes, an environment variable of this process.
void SetEnvironment(const std::string& name, const std::optional<std::string>& value);
// The file of this test program, for running it again.
std::string OwnProgramPath();
// Whether the program runs under Wine rather than on Windows (never on POSIX).
bool RunningUnderWine();

}  // namespace zeltest

#endif  // ZEL_TESTS_SUPPORT_SYSTEM_H
