// zel reg: keys and values of the system registry, and registry files.
#include <zel/codetables.h>
#include <zel/settings.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "commands.h"
#include "input.h"
#include "limits.h"
#include "numbers.h"
#include "report.h"
#include "safe_write.h"
#include "registry_text.h"
#include "text.h"

const char kRegUsage[] =
    "Usage: zel reg ACTION [ARGUMENTS]\n\n"
    "list KEY                  the sub-keys and values of KEY\n"
    "get KEY NAME              one value of KEY\n"
    "set [--volatile] KEY NAME TYPE VALUE\n"
    "                          write a value; TYPE is sz, dword (0 to 0xFFFFFFFF, decimal or 0x hex)\n"
    "                          or binary (VALUE in hex digits); --volatile makes a missing KEY\n"
    "                          volatile: it lasts until the login session ends, and a key below a\n"
    "                          volatile key must be volatile too\n"
    "delete KEY [NAME]         the value NAME of KEY, or KEY with everything below it\n"
    "save KEY FILE             KEY with everything below it to a registry file\n"
    "load FILE                 a registry file back into the registry, where it was saved from\n"
    "dump FILE                 the header and sections of a registry file\n"
    "export KEY FILE           KEY with everything below it (HKCU: the whole hive) as UTF-8 text\n"
    "                          that diff can compare; FILE - is standard output\n"
    "import FILE               such a text back into the registry\n\n"
    "KEY begins with HKCU or HKLM (or HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKCR) and a\n"
    "backslash; below the hive it holds 519 characters at most, 255 a name. An empty NAME is the\n"
    "key's unnamed value; a NAME holds 259 bytes at most in the ANSI code page. Registry files hold\n"
    "keys below HKCU whose paths and names fit in 259 bytes; save writes a new copy beside FILE,\n"
    "reads it back and only then puts it in the old one's place.\n"
    "ZEL_REGISTRY_DIR names the directory of the registry's files.\n";

// export and import (reg_hive_text.cpp): -1 when the arguments are not theirs.
int RunRegHiveText(const Args& args);

namespace {

// Each text of a registry file, and each value name, holds this many ANSI bytes.
constexpr size_t kFileTextBytes = 259;
// One name in a key path.
constexpr size_t kKeyNameUnits = 255;

// The key of an argument, refused when it is no key or longer than the registry class holds.
bool KeyOf(const std::string& text, RegistryPath& path) {
    if (!ParseRegistryPath(text, path)) return Fail("a key begins with HKCU\\ or HKLM\\: " + text), false;
    if (!Fits("the key path " + text, path.path, kKeyPathUnits, "below its hive, a key path holds")) return false;
    for (size_t start = 0; start <= path.path.size();) {
        size_t end = path.path.find(u'\\', start);
        if (end == std::u16string::npos) end = path.path.size();
        if (!Fits("a name in " + text, path.path.substr(start, end - start), kKeyNameUnits, "a key's name holds"))
            return false;
        start = end + 1;
    }
    return true;
}

bool NameFits(const std::string& what, const std::u16string& name) {
    const size_t bytes = AnsiBytes(name);
    if (bytes <= kFileTextBytes) return true;
    Fail(what + " is " + std::to_string(bytes) + " bytes long in the ANSI code page; the registry's names and " +
         "the texts of a registry file hold at most 259");
    return false;
}

// The key opened with access; null, with the reason in opened, when it can't be.
HKEY Open(const RegistryPath& path, std::string& opened, REGSAM access = KEY_READ) {
    HKEY key = nullptr;
    const LONG status = ZelRegOpenKeyEx(path.root, path.path.c_str(), 0, access, &key);
    if (status == ERROR_SUCCESS) return key;
    opened = status == ERROR_FILE_NOT_FOUND ? "no key " + path.text
                                            : "cannot open " + path.text + ": " + SystemErrorText(status);
    return nullptr;
}

int List(const RegistryPath& path) {
    std::string opened;
    HKEY key = Open(path, opened);
    if (!key) return Fail(opened);
    WCHAR name[MAX_PATH];
    for (DWORD index = 0; ZelRegEnumKey(key, index, name, MAX_PATH) == ERROR_SUCCESS; ++index)
        printf("%s\\\n", ToUtf8(name).c_str());
    for (DWORD index = 0;; ++index) {
        DWORD length = MAX_PATH, type = 0, size = 0;
        if (ZelRegEnumValue(key, index, name, &length, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) break;
        std::vector<BYTE> data(size);
        DWORD got = size;
        if (ZelRegQueryValueEx(key, name, nullptr, &type, data.data(), &got) != ERROR_SUCCESS) continue;
        data.resize(got);
        printf("%s = %s\n", ToUtf8(name).c_str(), DescribeValue(type, data).c_str());
    }
    ZelRegCloseKey(key);
    return 0;
}

int Get(const RegistryPath& path, const std::string& name) {
    std::string opened;
    HKEY key = Open(path, opened);
    if (!key) return Fail(opened);
    std::u16string wideName = FromUtf8(name);
    DWORD type = 0, size = 0;
    LONG status = ZelRegQueryValueEx(key, wideName.c_str(), nullptr, &type, nullptr, &size);
    std::vector<BYTE> data(size);
    if (status == ERROR_SUCCESS) status = ZelRegQueryValueEx(key, wideName.c_str(), nullptr, &type, data.data(), &size);
    ZelRegCloseKey(key);
    if (status != ERROR_SUCCESS) return Fail("no value '" + name + "' in " + path.text);
    data.resize(size);
    printf("%s\n", DescribeValue(type, data).c_str());
    return 0;
}

// The value's bytes as the registry's ANSI calls take them; false with a message for bad text.
bool ValueBytes(const std::string& type, const std::string& value, DWORD& regType, std::vector<BYTE>& bytes,
                std::string& problem) {
    if (type == "sz") {
        regType = REG_SZ;
        bytes = AnsiSzData(value);
        return true;
    }
    if (type == "dword") {
        long long number = 0;
        if (!ParseNumber("the dword", value, 0, 0xFFFFFFFF, NumberBase::kDecimalOrHex, number, problem)) return false;
        const DWORD dword = static_cast<DWORD>(number);
        regType = REG_DWORD;
        bytes.resize(sizeof dword);
        memcpy(bytes.data(), &dword, sizeof dword);
        return true;
    }
    if (type == "binary") {
        regType = REG_BINARY;
        if (ParseHexBytes(value, bytes)) return true;
        problem = "not pairs of hex digits: " + value;
        return false;
    }
    problem = "unknown type '" + type + "' (sz, dword or binary)";
    return false;
}

// A key made volatile lives until the login session ends, and only volatile keys may stand below one.
int Set(const RegistryPath& path, const std::string& name, const std::string& type, const std::string& value,
        bool isVolatile) {
    DWORD regType = 0;
    std::vector<BYTE> bytes;
    std::string problem;
    if (!NameFits("the value name '" + name + "'", FromUtf8(name))) return 1;
    if (!ValueBytes(type, value, regType, bytes, problem)) return Misuse(problem);
    HKEY key = nullptr;
    DWORD disposition = 0;
    LONG status = ZelRegCreateKeyEx(path.root, path.path.c_str(), 0, nullptr,
                                    isVolatile ? REG_OPTION_VOLATILE : REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr,
                                    &key, &disposition);
    if (status != ERROR_SUCCESS) return Fail("could not create " + path.text + ": " + SystemErrorText(status));
    status = ZelRegSetValueEx(key, FromUtf8(name).c_str(), 0, regType, bytes.data(), static_cast<DWORD>(bytes.size()));
    ZelRegCloseKey(key);
    if (status != ERROR_SUCCESS)
        return Fail("could not write '" + name + "' in " + path.text + ": " + SystemErrorText(status));
    return 0;
}

int Delete(const RegistryPath& path, const Args& args) {
    if (args.size() == 3) {
        std::string opened;
        HKEY key = Open(path, opened, KEY_READ | KEY_WRITE);
        if (!key) return Fail(opened);
        const LONG status = ZelRegDeleteValue(key, FromUtf8(args[2]).c_str());
        ZelRegCloseKey(key);
        if (status == ERROR_FILE_NOT_FOUND) return Fail("no value '" + args[2] + "' in " + path.text);
        return status == ERROR_SUCCESS ? 0 : Fail("could not delete '" + args[2] + "': " + SystemErrorText(status));
    }
    size_t cut = path.path.rfind(u'\\');
    if (path.path.empty()) return Fail("a hive itself can't be deleted");
    std::u16string parent = cut == std::u16string::npos ? u"" : path.path.substr(0, cut);
    std::u16string own = cut == std::u16string::npos ? path.path : path.path.substr(cut + 1);
    std::string opened;
    HKEY probe = Open(path, opened);
    if (!probe) return Fail(opened);
    ZelRegCloseKey(probe);
    CZelRegistry registry(parent.c_str(), path.root);
    return registry.DeleteSubKey(own.c_str()) ? 0 : Fail("could not delete " + path.text + ": " + LastErrorText());
}

// What a save of a key should write: one section for each key with values, and the values.
struct TreeShape {
    size_t sections = 0;
    size_t values = 0;
};

// Walks the key named name below parent, whose section path is relative, as a save does; false
// with a problem when a text of the file would pass what a load reads back.
bool Walk(HKEY parent, const std::u16string& name, const std::u16string& relative, TreeShape& shape,
          std::string& problem) {
    if (AnsiBytes(relative) > kFileTextBytes)
        return problem = "the path " + ToUtf8(relative.c_str()) + " is longer than the 259 bytes of a file's text", false;
    HKEY key = nullptr;
    if (ZelRegOpenKeyEx(parent, name.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return problem = "cannot open " + ToUtf8(relative.c_str()), false;
    WCHAR child[MAX_PATH];
    bool fits = true;
    for (DWORD index = 0; fits && ZelRegEnumKey(key, index, child, MAX_PATH) == ERROR_SUCCESS; ++index)
        fits = Walk(key, child, relative + u"\\" + child, shape, problem);
    size_t values = 0;
    for (DWORD index = 0; fits; ++index, ++values) {
        DWORD length = MAX_PATH;
        if (ZelRegEnumValue(key, index, child, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        if (AnsiBytes(child) > kFileTextBytes)
            fits = (problem = "a value name in " + ToUtf8(relative.c_str()) + " passes 259 bytes", false);
    }
    ZelRegCloseKey(key);
    shape.sections += values ? 1 : 0;
    shape.values += values;
    return fits;
}

// Whether the file at path reads back whole and holds the shape of the tree.
bool ReadsBackAs(const TreeShape& shape, const std::string& path, std::string& problem) {
    auto bytes = ReadInput(path);
    RegistryFile parsed;
    if (!bytes || !ParseRegistryFile(*bytes, parsed, problem)) return false;
    size_t values = 0;
    for (const RegistryFileSection& section : parsed.sections) values += section.values.size();
    if (parsed.sections.size() == shape.sections && values == shape.values) return true;
    problem = std::to_string(parsed.sections.size()) + " sections of " + std::to_string(values) + " values where " +
              std::to_string(shape.sections) + " of " + std::to_string(shape.values) + " were saved";
    return false;
}

int Save(const RegistryPath& path, const std::string& file) {
    if (path.root != HKEY_CURRENT_USER) return Fail("a registry file holds a key below HKCU");
    const size_t cut = path.path.rfind(u'\\');
    if (cut == std::u16string::npos)
        return Fail("a key directly below the hive can't be saved: name a key below " + path.text);
    if (!WritableFile(file) || !NameFits("the key path " + path.text, path.path)) return 1;
    std::string opened;
    HKEY probe = Open(path, opened);
    if (!probe) return Fail(opened);
    ZelRegCloseKey(probe);
    HKEY parent = Open({path.root, path.path.substr(0, cut), path.text}, opened);
    TreeShape shape;
    std::string problem;
    const bool fits = parent && Walk(parent, path.path.substr(cut + 1), path.path.substr(cut + 1), shape, problem);
    if (parent) ZelRegCloseKey(parent);
    if (!fits) return Fail(problem.empty() ? "cannot read " + path.text : problem);
    return WriteBeside(
        file,
        [&](const std::string& copy, std::string& failure) {
            CZelRegistry registry;
            return registry.SaveToFile(path.path.c_str(), FromUtf8(copy).c_str()) ? true
                                                                                   : (failure = LastErrorText(), false);
        },
        [&](const std::string& copy, std::string& failure) { return ReadsBackAs(shape, copy, failure); });
}

int Load(const std::string& file) {
    if (!PathFits("file", file)) return 1;
    std::optional<std::string> bytes = ReadInput(file);
    if (!bytes) return 1;
    RegistryFile parsed;
    std::string problem;
    if (!ParseRegistryFile(*bytes, parsed, problem)) return Fail(file + ": " + problem);
    CZelRegistry registry;
    if (!registry.LoadFromFile(FromUtf8(file).c_str())) return Fail("could not load " + file);
    printf("loaded HKCU\\%s\n", ToUtf8(AnsiToWide(parsed.keyPath).c_str()).c_str());
    return 0;
}

int Dump(const std::string& file) {
    std::optional<std::string> bytes = ReadInput(file);
    if (!bytes) return 1;
    RegistryFile parsed;
    std::string problem;
    if (!ParseRegistryFile(*bytes, parsed, problem)) return Fail(file + ": " + problem);
    printf("key: %s\n", ToUtf8(AnsiToWide(parsed.keyPath).c_str()).c_str());
    for (const RegistryFileSection& section : parsed.sections) {
        printf("[%s] %zu value%s\n", ToUtf8(AnsiToWide(section.path).c_str()).c_str(), section.values.size(),
               section.values.size() == 1 ? "" : "s");
        for (const RegistryFileValue& value : section.values)
            printf("  %s = %s\n", ToUtf8(AnsiToWide(value.name).c_str()).c_str(),
                   DescribeValue(value.type, value.data).c_str());
    }
    return 0;
}

}  // namespace

int RunReg(const Args& args) {
    if (args.empty()) return Misuse("no action given");
    const std::string& action = args[0];
    if (action == "export" || action == "import") {
        int status = RunRegHiveText(args);
        return status >= 0 ? status : Misuse("export takes KEY and FILE, import takes FILE");
    }
    if (action == "dump" && args.size() == 2) return Dump(args[1]);
    if (action == "load" && args.size() == 2) return Load(args[1]);
    const bool isVolatile = action == "set" && args.size() == 6 && args[1] == "--volatile";
    const size_t key = isVolatile ? 2 : 1;
    const size_t count = args.size() - (isVolatile ? 1 : 0);
    const bool known = (action == "list" && count == 2) || (action == "get" && count == 3) ||
                       (action == "set" && count == 5) || (action == "delete" && (count == 2 || count == 3)) ||
                       (action == "save" && count == 3);
    if (!known) return ActionMisuse(args, {"list", "get", "set", "delete", "save", "load", "dump"});
    RegistryPath path;
    if (!KeyOf(args[key], path)) return 1;
    if (action == "list") return List(path);
    if (action == "get") return NameFits("the value name '" + args[2] + "'", FromUtf8(args[2])) ? Get(path, args[2]) : 1;
    if (action == "set") return Set(path, args[key + 1], args[key + 2], args[key + 3], isVolatile);
    if (action == "delete") return Delete(path, args);
    return Save(path, args[2]);
}
