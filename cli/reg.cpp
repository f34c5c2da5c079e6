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
#include "registry_text.h"
#include "text.h"

// export and import (reg_hive_text.cpp): -1 when the arguments are not theirs.
int RunRegHiveText(const Args& args);

namespace {

int Usage(int status) {
    printf("Usage: zel reg ACTION [ARGUMENTS]\n\n"
           "list KEY                  the sub-keys and values of KEY\n"
           "get KEY NAME              one value of KEY\n"
           "set [--volatile] KEY NAME TYPE VALUE\n"
           "                          write a value; TYPE is sz, dword or binary (VALUE in hex digits);\n"
           "                          --volatile makes a missing KEY volatile: it lasts until the login\n"
           "                          session ends, and a key below a volatile key must be volatile too\n"
           "delete KEY [NAME]         the value NAME of KEY, or KEY with everything below it\n"
           "save KEY FILE             KEY with everything below it to a registry file\n"
           "load FILE                 a registry file back into the registry, where it was saved from\n"
           "dump FILE                 the header and sections of a registry file\n"
           "export KEY FILE           KEY with everything below it (HKCU: the whole hive) as UTF-8 text\n"
           "                          that diff can compare; FILE - is standard output\n"
           "import FILE               such a text back into the registry\n\n"
           "KEY begins with HKCU or HKLM (or HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKCR) and a\n"
           "backslash; registry files hold keys below HKCU. An empty NAME is the key's unnamed value.\n"
           "ZEL_REGISTRY_DIR names the directory of the registry's files.\n");
    return status;
}

int Fail(const std::string& message) {
    fprintf(stderr, "zel reg: %s\n", message.c_str());
    return 1;
}

HKEY OpenForReading(const RegistryPath& path) {
    HKEY key = nullptr;
    if (ZelRegOpenKeyEx(path.root, path.path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return nullptr;
    return key;
}

int List(const RegistryPath& path) {
    HKEY key = OpenForReading(path);
    if (!key) return Fail("no key " + path.text);
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
    HKEY key = OpenForReading(path);
    if (!key) return Fail("no key " + path.text);
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
        std::u16string wide = FromUtf8(value);
        std::vector<char> narrow(wide.size() * 4 + 4);
        ZelUnicodeToAnsi(0, 0, wide.c_str(), -1, narrow.data(), static_cast<int>(narrow.size()));
        regType = REG_SZ;
        bytes.assign(narrow.begin(), narrow.begin() + static_cast<long>(strlen(narrow.data()) + 1));
        return true;
    }
    if (type == "dword") {
        char* end = nullptr;
        unsigned long number = strtoul(value.c_str(), &end, 0);
        if (value.empty() || *end || number > 0xFFFFFFFFul || value[0] == '-') {
            problem = "not a 32-bit number: " + value;
            return false;
        }
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
    if (!ValueBytes(type, value, regType, bytes, problem)) return Fail(problem);
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
        HKEY key = nullptr;
        if (ZelRegOpenKeyEx(path.root, path.path.c_str(), 0, KEY_READ | KEY_WRITE, &key) != ERROR_SUCCESS)
            return Fail("no key " + path.text);
        LONG status = ZelRegDeleteValue(key, FromUtf8(args[2]).c_str());
        ZelRegCloseKey(key);
        return status == ERROR_SUCCESS ? 0 : Fail("no value '" + args[2] + "' in " + path.text);
    }
    size_t cut = path.path.rfind(u'\\');
    if (path.path.empty()) return Fail("a hive itself can't be deleted");
    std::u16string parent = cut == std::u16string::npos ? u"" : path.path.substr(0, cut);
    std::u16string own = cut == std::u16string::npos ? path.path : path.path.substr(cut + 1);
    HKEY probe = OpenForReading(path);
    if (!probe) return Fail("no key " + path.text);
    ZelRegCloseKey(probe);
    CZelRegistry registry(parent.c_str(), path.root);
    return registry.DeleteSubKey(own.c_str()) ? 0 : Fail("could not delete " + path.text);
}

int Save(const RegistryPath& path, const std::string& file) {
    if (path.root != HKEY_CURRENT_USER) return Fail("a registry file holds a key below HKCU");
    if (path.path.find(u'\\') == std::u16string::npos)
        return Fail("a key directly below the hive can't be saved: name a key below " + path.text);
    HKEY probe = OpenForReading(path);
    if (!probe) return Fail("no key " + path.text);
    ZelRegCloseKey(probe);
    CZelRegistry registry;
    if (!registry.SaveToFile(path.path.c_str(), FromUtf8(file).c_str())) return Fail("could not write " + file);
    return 0;
}

int Load(const std::string& file) {
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
    if (args.empty()) return Usage(2);
    if (WantsHelp(args)) return Usage(0);
    const std::string& action = args[0];
    if (action == "export" || action == "import") {
        int status = RunRegHiveText(args);
        return status >= 0 ? status : Usage(2);
    }
    if (action == "dump" && args.size() == 2) return Dump(args[1]);
    if (action == "load" && args.size() == 2) return Load(args[1]);
    if (action == "set" && args.size() == 6 && args[1] == "--volatile") {
        RegistryPath path;
        if (!ParseRegistryPath(args[2], path)) return Fail("a key begins with HKCU\\ or HKLM\\: " + args[2]);
        return Set(path, args[3], args[4], args[5], true);
    }
    if (args.size() < 2) return Usage(2);
    RegistryPath path;
    if (!ParseRegistryPath(args[1], path)) return Fail("a key begins with HKCU\\ or HKLM\\: " + args[1]);
    if (action == "list" && args.size() == 2) return List(path);
    if (action == "get" && args.size() == 3) return Get(path, args[2]);
    if (action == "set" && args.size() == 5) return Set(path, args[2], args[3], args[4], false);
    if (action == "delete" && (args.size() == 2 || args.size() == 3)) return Delete(path, args);
    if (action == "save" && args.size() == 3) return Save(path, args[2]);
    return Usage(2);
}
