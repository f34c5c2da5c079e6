// What the shared helpers need of the system, one body per system (support_posix.cpp,
// support_windows.cpp).
#ifndef ZEL_TESTS_SUPPORT_SYSTEM_H
#define ZEL_TESTS_SUPPORT_SYSTEM_H

#include <cstdint>
#include <map>
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
// The program that runs tests again with the environment changes in force, or empty with the
// reason in whyNot when this system cannot give them.
std::string ProgramForRerun(const std::map<std::string, std::optional<std::string>>& env, std::string* whyNot);
// A test run again in a new process for RunInChild takes the temporary directories shared with
// reruns that the first process had made by then: the first process notes each one it makes during
// a test, and the rerun gets them back in the same order (nullopt: make a new one).
void NoteTempDirForReruns(const std::string& path);
std::optional<std::string> TempDirOfFirstRun();
// Whether the locale settings are fixed for the life of a process, and whether a knob ("ZEL_ACP",
// "ZEL_OEMCP", "ZEL_LCID", "ZEL_SYSTEM_LCID") has the value ("949", "0x412") in this one: always
// where the knobs are read at every call, and so set by the test.
bool LocaleFixedPerProcess();
bool LocaleSettingIs(const std::string& knob, const std::string& value);
// Gives this run a registry of its own where the system's is shared by every process (Windows:
// the current user's and the machine's keys are redirected to a private key, which a rerun of the
// program shares and the first process removes at the end); the POSIX layer's lies in the run's
// own directory already.
void UsePrivateRegistry();
void RemovePrivateRegistry();
// Enables the right to back up files and registry keys, which Windows asks of RegSaveKey's caller;
// the POSIX layer asks for none. False when the process cannot have it.
bool HoldBackupRight();
// A crash ends the program with a failing status at once, with no debugger or dialog to wait for.
void EndOnCrash();
// Whether the run-time's descriptor fd is open.
bool DescriptorIsOpen(int fd);
// Whether the tests run under Wine, which departs from Windows in a few places (README, "Windows").
bool RunningUnderWine();

}  // namespace zeltest

#endif  // ZEL_TESTS_SUPPORT_SYSTEM_H
