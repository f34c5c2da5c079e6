// zel path: the path table with its ${Name} macros, path transforms and temporary names.
#include <zel/paths.h>
#include <zel/strings.h>

#include <cstdio>
#include <string>
#include <vector>

#include "commands.h"
#include "input.h"
#include "limits.h"
#include "numbers.h"
#include "report.h"
#include "text.h"

const char kPathUsage[] =
    "Usage: zel path [-D NAME=VALUE]... ACTION [ARGUMENTS]\n\n"
    "abs TEXT               expand the ${Name} macros of TEXT\n"
    "rel PATH               PATH told by the first registered value that begins it\n"
    "register NAME VALUE    register a path (1 when added, 0 when refused), then list\n"
    "list                   the registered names and their values\n"
    "create PATH            make every missing directory of PATH (macros expanded)\n"
    "title PATH             the file title of PATH\n"
    "abbrev PATH MAX [keep] PATH shortened for a display of MAX characters (1 to 259)\n"
    "temp [PREFIX [EXT [SUBDIR]]]  a free temporary name below ${Temp} (no file is made)\n"
    "temp --file PREFIX     a temporary file made below ${Temp}\n"
    "temp --image SOURCE    a free name for an image copy of SOURCE\n\n"
    "-D registers a path before the action, in place of a default of that name; a refused\n"
    "name (empty or longer than 15 characters) is a failure, as is a refused register.\n"
    "Paths hold 259 characters at most.\n"
    "(zel paths lists the defaults). Paths are in the Windows form (backslashes,\n"
    "optional drive x:); ZEL_DRIVE_X names the directory of drive x:.\n";

namespace {

// Names that the table may hold, for listing: the defaults a host registers, then the ones given.
std::vector<std::u16string> knownNames = {u"App",      u"Common",      u"Zel",    u"SharedData", u"Temp",
                                          u"UserData", u"AllUserData", u"SysExt", u"ResExt",     u"DsoExt"};

// The library refuses a name of more than 15 characters and a value of more than 259 itself.
bool Register(const std::string& name, const std::string& value) {
    std::u16string wideName = FromUtf8(name);
    knownNames.push_back(wideName);
    return ZelRegisterPath(wideName.c_str(), FromUtf8(value).c_str());
}

void List() {
    std::vector<std::u16string> shown;
    for (const auto& name : knownNames) {
        bool seen = false;
        for (const auto& other : shown) seen = seen || _ustricmp(other.c_str(), name.c_str()) == 0;
        if (seen || !ZelIsRegisterPath(name.c_str())) continue;
        shown.push_back(name);
        WCHAR value[MAX_PATH];
        ZelPathToAbsolute((u"${" + name + u"}").c_str(), value);
        printf("%s=%s\n", ToUtf8(name.c_str()).c_str(), ToUtf8(value).c_str());
    }
}

std::string Abs(const std::string& text) {
    WCHAR out[MAX_PATH];
    ZelPathToAbsolute(FromUtf8(text).c_str(), out);
    return ToUtf8(out);
}

// The parts of a temporary name, with ${Temp} and the number, must fit in one path.
bool TempFits(const Args& args) {
    std::u16string parts;
    for (size_t i = 1; i < args.size(); ++i)
        if (args[i] != "--file" && args[i] != "--image") parts += FromUtf8(args[i]);
    WCHAR temp[MAX_PATH] = {};
    ZelPathToAbsolute(u"${Temp}\\", temp);
    constexpr size_t kNumberAndDots = 12;
    const std::u16string whole = std::u16string(temp) + parts;
    return Fits("a temporary name of these parts", whole, kPathUnits - kNumberAndDots,
                "with the Temp directory and the number, a temporary name holds");
}

int Temp(const Args& args) {
    WCHAR name[MAX_PATH] = {};
    if (!TempFits(args)) return 1;
    if (args.size() == 3 && args[1] == "--file") {
        UINT number = ZelPathMakeTemp(FromUtf8(args[2]).c_str(), 0, name);
        if (!number) return Fail("no temporary file could be made");
        printf("%s\n", ToUtf8(name).c_str());
        return 0;
    }
    if (args.size() == 3 && args[1] == "--image") {
        if (!ZelPathMakeImageTemp(FromUtf8(args[2]).c_str(), name))
            return Fail("no image name could be made");
        printf("%s\n", ToUtf8(name).c_str());
        return 0;
    }
    if (args.size() > 4) return Misuse("temp takes PREFIX, EXT and SUBDIR at most");
    std::u16string prefix = FromUtf8(args.size() > 1 ? args[1] : "zel");
    std::u16string ext = FromUtf8(args.size() > 2 ? args[2] : "tmp");
    std::u16string sub = args.size() > 3 ? FromUtf8(args[3]) : u"";
    UINT number = ZelPathMakeTempEx(sub.empty() ? nullptr : sub.c_str(), prefix.c_str(), 0, ext.c_str(), name);
    if (!number) return Fail("no free temporary name");
    printf("%s\n", ToUtf8(name).c_str());
    return 0;
}

}  // namespace

int RunPath(const Args& all) {
    Args args;
    for (size_t i = 0; i < all.size(); ++i) {
        if (all[i] != "-D") {
            args.push_back(all[i]);
            continue;
        }
        const size_t equals = i + 1 < all.size() ? all[i + 1].find('=') : std::string::npos;
        if (equals == std::string::npos) return Misuse("-D takes NAME=VALUE");
        const std::string name = all[i + 1].substr(0, equals), value = all[i + 1].substr(equals + 1);
        if (!PathFits("the value of " + name, value)) return 1;
        ZelUnregisterPath(FromUtf8(name).c_str());
        if (!Register(name, value)) return Fail(all[i + 1] + " was not registered (a name holds 1 to 15 characters)");
        ++i;
    }
    if (args.empty()) return Misuse("no action given");
    const std::string& action = args[0];
    if (action == "list" && args.size() == 1) return List(), 0;
    if (action == "temp") return Temp(args);
    if (action == "register" && args.size() == 3) {
        const bool registered = PathFits("the value", args[2]) && Register(args[1], args[2]);
        printf("%d\n", registered ? 1 : 0);
        List();
        return registered ? 0 : Fail(args[1] + " was not registered (taken, or a name of more than 15 characters)");
    }
    if (action == "abbrev" && (args.size() == 3 || (args.size() == 4 && args[3] == "keep"))) {
        long long maximum = 0;
        std::string problem;
        if (!PathFits("the path", args[1])) return 1;
        if (!ParseNumber("MAX", args[2], 1, static_cast<long long>(kPathUnits), NumberBase::kDecimal, maximum, problem))
            return Misuse(problem);
        WCHAR path[MAX_PATH] = {};
        const std::u16string text = FromUtf8(args[1]);
        text.copy(path, text.size());
        ZelAbbreviateName(path, static_cast<int>(maximum), args.size() == 4);
        printf("%s\n", ToUtf8(path).c_str());
        return 0;
    }
    const bool known = action == "abs" || action == "rel" || action == "create" || action == "title";
    if (!known || args.size() != 2) return ActionMisuse(args, {"list", "register", "abbrev", "abs", "rel", "create", "title"});
    if (!PathFits("the path", args[1])) return 1;
    const std::u16string path = FromUtf8(args[1]);
    if (action == "abs") {
        printf("%s\n", Abs(args[1]).c_str());
    } else if (action == "rel") {
        WCHAR out[MAX_PATH];
        ZelPathToRelative(path.c_str(), out);
        printf("%s\n", ToUtf8(out).c_str());
    } else if (action == "create") {
        if (!ZelPathCreate(path.c_str())) return Fail("could not create " + Abs(args[1]) + ": " + LastErrorText());
        printf("%s\n", Abs(args[1]).c_str());
    } else {
        WCHAR title[MAX_PATH];
        ZelGetFileTitle(path.c_str(), title, MAX_PATH);
        printf("%s\n", ToUtf8(title).c_str());
    }
    return 0;
}
