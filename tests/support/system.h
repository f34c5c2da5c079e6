// What the shared helpers need of the system, one body per system (support_posix.cpp,
// support_windows.cpp).
#ifndef ZEL_TESTS_SUPPORT_SYSTEM_H
#define ZEL_TESTS_SUPPORT_SYSTEM_H

#include <map>
#include <optional>
#include <string>

namespace zeltest {

// Sets, or with nullopt removes, an environment variable of this process.
void SetEnvironment(const std::string& name, const std::optional<std::string>& value);
// The file of this test program, for running it again.
std::string OwnProgramPath();
// The program that runs tests again with the environment changes in force, or empty with the
// reason in whyNot when this system cannot give them.
std::string ProgramForRerun(const std::map<std::string, std::optional<std::string>>& env, std::string* whyNot);
// Whether the locale settings are fixed for the life of a process, and a knob's value in this one
// ("ZEL_ACP", "ZEL_OEMCP", "ZEL_LCID", "ZEL_SYSTEM_LCID").
bool LocaleFixedPerProcess();
unsigned long CurrentLocaleSetting(const std::string& knob);
// Gives this run a registry of its own where the system's is shared by every process (Windows:
// the current user's and the machine's keys are redirected to a private key, which a rerun of the
// program shares and the first process removes at the end); the POSIX layer's lies in the run's
// own directory already.
void UsePrivateRegistry();
void RemovePrivateRegistry();
// A crash ends the program with a failing status at once, with no debugger or dialog to wait for.
void EndOnCrash();
// Whether the run-time's descriptor fd is open.
bool DescriptorIsOpen(int fd);
// Whether the tests run under Wine, which departs from Windows in a few places (README, "Windows").
bool RunningUnderWine();

}  // namespace zeltest

#endif  // ZEL_TESTS_SUPPORT_SYSTEM_H
