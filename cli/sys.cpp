// zel sys: what the library tells of the system and the process.
#include <zel/paths.h>

#include <cstdio>
#include <cstdint>
#include <string>

#include "commands.h"
#include "limits.h"
#include "numbers.h"
#include "report.h"
#include "text.h"

const char kSysUsage[] =
    "Usage: zel sys [ACTION]\n\n"
    "version          the system's version value and text (ZEL_OS_VERSION sets it)\n"
    "constants        the platform constants: system, byte order, application bit, 32 on 64\n"
    "args             this process's arguments as the library reads them\n"
    "time [FILETIME] [--time]  the long date (and time) of now or of a FILETIME value\n"
    "serial [PATH]    the serial number of the volume of PATH (default: the root)\n"
    "muldiv A B C     A x B / C, rounded half away from zero (32-bit integers)\n\n"
    "Without an action all but muldiv are shown.\n";

namespace {

// The last FILETIME that the system turns into a date.
constexpr long long kLastFiletime = 0x7FFFFFFFFFFFFFFF;

void Version() { printf("version %d %s\n", ZelGetWinVersion(), ToUtf8(ZelGetOSVersion()).c_str()); }

void Constants() {
    printf("os %d\nendian %c\napplication-bit %d\nwow64 %d\n", ZelGetOS(), static_cast<char>(ZelGetEndian()),
           ZelGetApplicationBit(), IsWinWow64());
}

void Arguments() {
    WCHAR argument[4096];
    for (int index = 0; ZelGetArgV(index, argument, 4095); ++index) {
        argument[4095] = 0;
        printf("arg %d %s\n", index, ToUtf8(argument).c_str());
    }
}

int Time(const Args& args) {
    FILETIME time;
    ZelGetFiletime(&time);
    bool withTime = false, given = false;
    for (size_t i = 1; i < args.size(); ++i) {
        if (args[i] == "--time") {
            withTime = true;
            continue;
        }
        if (given) return Misuse("one FILETIME at most");
        long long value = 0;
        std::string problem;
        if (!ParseNumber("the FILETIME", args[i], 0, kLastFiletime, NumberBase::kDecimalOrHex, value, problem))
            return Misuse(problem);
        time.dwLowDateTime = static_cast<DWORD>(value);
        time.dwHighDateTime = static_cast<DWORD>(static_cast<unsigned long long>(value) >> 32);
        given = true;
    }
    WCHAR text[MAX_PATH] = {};
    ZelGetFiletimeStr(text, &time, withTime);
    if (!text[0]) return Fail("no date for the FILETIME " + args.back());
    printf("%s\n", ToUtf8(text).c_str());
    return 0;
}

int MulDiv(const Args& args) {
    long long numbers[3] = {};
    const char* names[3] = {"muldiv's A", "muldiv's B", "muldiv's C"};
    std::string problem;
    for (size_t i = 0; i < 3; ++i)
        if (!ParseNumber(names[i], args[i + 1], INT32_MIN, INT32_MAX, NumberBase::kDecimal, numbers[i], problem))
            return Misuse(problem);
    printf("%d\n", ZelIntMulDiv(static_cast<int>(numbers[0]), static_cast<int>(numbers[1]), static_cast<int>(numbers[2])));
    return 0;
}

int Serial(const std::string& path) {
    if (!PathFits("the path", path)) return 1;
    printf("serial %s %s\n", Hex(ZelGetVolumeSerialNumber(FromUtf8(path).c_str())).c_str(), path.c_str());
    return 0;
}

}  // namespace

int RunSys(const Args& args) {
    if (args.empty()) {
        Version();
        Constants();
        Arguments();
        Time({"time", "--time"});
        return Serial("\\");
    }
    const std::string& action = args[0];
    if (action == "version" && args.size() == 1) return Version(), 0;
    if (action == "constants" && args.size() == 1) return Constants(), 0;
    if (action == "args") return Arguments(), 0;
    if (action == "time") return Time(args);
    if (action == "serial" && args.size() <= 2) return Serial(args.size() == 2 ? args[1] : "\\");
    if (action == "muldiv" && args.size() == 4) return MulDiv(args);
    return ActionMisuse(args, {"version", "constants", "serial", "muldiv"});
}
