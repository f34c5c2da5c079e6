// zel sys: what the library tells of the system and the process.
#include <zel/paths.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "commands.h"
#include "text.h"

namespace {

int Usage(int status) {
    printf("Usage: zel sys [ACTION]\n\n"
           "version          the system's version value and text (ZEL_OS_VERSION sets it)\n"
           "constants        the platform constants: system, byte order, application bit, 32 on 64\n"
           "args             this process's arguments as the library reads them\n"
           "time [FILETIME] [--time]  the long date (and time) of now or of a FILETIME value\n"
           "serial [PATH]    the serial number of the volume of PATH (default: the root)\n"
           "muldiv A B C     A x B / C, rounded half away from zero\n\n"
           "Without an action all but muldiv are shown.\n");
    return status;
}

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
    bool withTime = false;
    for (size_t i = 1; i < args.size(); ++i) {
        if (args[i] == "--time") {
            withTime = true;
            continue;
        }
        char* end = nullptr;
        unsigned long long value = std::strtoull(args[i].c_str(), &end, 0);
        if (!end || *end) return Usage(2);
        time.dwLowDateTime = static_cast<DWORD>(value);
        time.dwHighDateTime = static_cast<DWORD>(value >> 32);
    }
    WCHAR text[MAX_PATH];
    ZelGetFiletimeStr(text, &time, withTime);
    printf("%s\n", ToUtf8(text).c_str());
    return 0;
}

void Serial(const std::string& path) {
    printf("serial %s %s\n", Hex(ZelGetVolumeSerialNumber(FromUtf8(path).c_str())).c_str(), path.c_str());
}

}  // namespace

int RunSys(const Args& args) {
    if (args.empty()) {
        Version();
        Constants();
        Arguments();
        Time({"time", "--time"});
        Serial("\\");
        return 0;
    }
    const std::string& action = args[0];
    if (action == "--help" || action == "-h") return Usage(0);
    if (action == "version" && args.size() == 1) return Version(), 0;
    if (action == "constants" && args.size() == 1) return Constants(), 0;
    if (action == "args") return Arguments(), 0;
    if (action == "time") return Time(args);
    if (action == "serial" && args.size() <= 2) return Serial(args.size() == 2 ? args[1] : "\\"), 0;
    if (action == "muldiv" && args.size() == 4) {
        printf("%d\n", ZelIntMulDiv(std::atoi(args[1].c_str()), std::atoi(args[2].c_str()), std::atoi(args[3].c_str())));
        return 0;
    }
    return Usage(2);
}
