// What the shared helpers need of the system, one body per system (support_posix.cpp,
// support_windows.cpp).
#ifndef ZEL_TESTS_SUPPORT_SYSTEM_H
#define ZEL_TESTS_SUPPORT_SYSTEM_H

#include <cstdint>
#include <optional>
#include <string>

namespace zeltest {

// Sets, or with nullopt removes, an environment variable of this process.
void SetEnvironment(const std::string& name, const std::optional<std::string>& value);
// The file of this test program, for running it again.
std::string OwnProgramPath();
// Sets a file's last access and last write times, in seconds since 1970 (and nanoseconds of the
// write time), past the library; false when the system refused.
bool SetFileTimes(const std::string& path, std::int64_t accessSeconds, std::int64_t writeSeconds,
                  long writeNanoseconds = 0);
// Whether the program runs under Wine rather than Windows (false on POSIX).
bool RunningUnderWine();

}  // namespace zeltest

#endif  // ZEL_TESTS_SUPPORT_SYSTEM_H
