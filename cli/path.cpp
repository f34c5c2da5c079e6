// zel path: the path table with its ${Name} macros, path transforms and temporary names.
#include <zel/paths.h>
#include <zel/strings.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "commands.h"
#include "input.h"
#include "text.h"

namespace {

int Usage(int status) {
    printf("Usage: zel path [-D NAME=VALUE]... ACTION [ARGUMENTS]\n\n"
           "abs TEXT               expand the ${Name} macros of TEXT\n"
           "rel PATH               PATH told by the first registered value that begins it\n"
           "register NAME VALUE    register a path (1 when added, 0 when refused), then list\n"
           "list                   the registered names and their values\n"
           "create PATH            make every missing directory of PATH (macros expanded)\n"
           "title PATH             the file title of PATH\n"
           "abbrev PATH MAX [keep] PATH shortened for a display of MAX characters\n"
           "temp [PREFIX [EXT [SUBDIR]]]  a free temporary name below ${Temp} (no file is made)\n"
           "temp --file PREFIX     a temporary file made below ${Temp}\n"
           "temp --image SOURCE    a free name for an image copy of SOURCE\n\n"
           "-D registers a path before the action, in place of a default of that name\n"
           "(zel paths lists the defaults). Paths are in the Windows form (backslashes,\n"
           "optional drive x:); ZEL_DRIVE_X names the directory of drive x:.\n");
    return status;
}

// Names that the table may hold, for listing: the defaults a host registers, then the ones given.
std::vector<std::u16string> knownNames = {u"App",      u"Common",      u"Zel",    u"SharedData", u"Temp",
                                          u"UserData", u"AllUserData", u"SysExt", u"ResExt",     u"DsoExt"};

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

int Temp(const Args& args) {
    WCHAR name[MAX_PATH] = {};
    if (args.size() == 3 && args[1] == "--file") {
        UINT number = ZelPathMakeTemp(FromUtf8(args[2]).c_str(), 0, name);
        if (!number) return fprintf(stderr, "zel path: no temporary file could be made\n"), 1;
        printf("%s\n", ToUtf8(name).c_str());
        return 0;
    }
    if (args.size() == 3 && args[1] == "--image") {
        if (!ZelPathMakeImageTemp(FromUtf8(args[2]).c_str(), name))
            return fprintf(stderr, "zel path: no image name could be made\n"), 1;
        printf("%s\n", ToUtf8(name).c_str());
        return 0;
    }
    if (args.size() > 4) return Usage(2);
    std::u16string prefix = FromUtf8(args.size() > 1 ? args[1] : "zel");
    std::u16string ext = FromUtf8(args.size() > 2 ? args[2] : "tmp");
    std::u16string sub = args.size() > 3 ? FromUtf8(args[3]) : u"";
    UINT number = ZelPathMakeTempEx(sub.empty() ? nullptr : sub.c_str(), prefix.c_str(), 0, ext.c_str(), name);
    if (!number) return fprintf(stderr, "zel path: no free temporary name\n"), 1;
    printf("%s\n", ToUtf8(name).c_str());
    return 0;
}

}  // namespace

int RunPath(const Args& all) {
    if (WantsHelp(all)) return Usage(0);
    Args args;
    for (size_t i = 0; i < all.size(); ++i) {
        if (all[i] != "-D") {
            args.push_back(all[i]);
            continue;
        }
        size_t equals = i + 1 < all.size() ? all[i + 1].find('=') : std::string::npos;
        if (equals == std::string::npos) return Usage(2);
        const std::string name = all[i + 1].substr(0, equals);
        ZelUnregisterPath(FromUtf8(name).c_str());
        if (!Register(name, all[i + 1].substr(equals + 1)))
            fprintf(stderr, "zel path: %s was not registered\n", all[i + 1].c_str());
        ++i;
    }
    if (args.empty()) return Usage(2);
    const std::string& action = args[0];
    if (action == "list" && args.size() == 1) return List(), 0;
    if (action == "temp") return Temp(args);
    if (action == "register" && args.size() == 3) {
        printf("%d\n", Register(args[1], args[2]) ? 1 : 0);
        List();
        return 0;
    }
    if (action == "abbrev" && (args.size() == 3 || (args.size() == 4 && args[3] == "keep"))) {
        WCHAR path[MAX_PATH];
        std::u16string text = FromUtf8(args[1]).substr(0, MAX_PATH - 1);
        text.copy(path, text.size());
        path[text.size()] = 0;
        ZelAbbreviateName(path, std::atoi(args[2].c_str()), args.size() == 4);
        printf("%s\n", ToUtf8(path).c_str());
        return 0;
    }
    if (args.size() != 2) return Usage(2);
    const std::u16string path = FromUtf8(args[1]);
    if (action == "abs") {
        printf("%s\n", Abs(args[1]).c_str());
    } else if (action == "rel") {
        WCHAR out[MAX_PATH];
        ZelPathToRelative(path.c_str(), out);
        printf("%s\n", ToUtf8(out).c_str());
    } else if (action == "create") {
        if (!ZelPathCreate(path.c_str())) return fprintf(stderr, "zel path: could not create %s\n", Abs(args[1]).c_str()), 1;
        printf("%s\n", Abs(args[1]).c_str());
    } else if (action == "title") {
        WCHAR title[MAX_PATH];
        ZelGetFileTitle(path.c_str(), title, MAX_PATH);
        printf("%s\n", ToUtf8(title).c_str());
    } else {
        return Usage(2);
    }
    return 0;
}
