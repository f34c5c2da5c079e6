// zel ini: sections and values of UTF-16 INI files, and INI text to and from UTF-8.
#include <zel/settings.h>

#include <cstdio>
#include <optional>
#include <string>

#include "commands.h"
#include "input.h"
#include "text.h"

namespace {

int Usage(int status) {
    printf("Usage: zel ini ACTION [ARGUMENTS]\n\n"
           "list FILE [SECTION]          the sections with their entries, or the entries of SECTION\n"
           "get FILE SECTION ID          the value of one entry\n"
           "set FILE SECTION ID VALUE    replace the value of an existing entry\n"
           "add FILE SECTION [ID VALUE]  add a section, or an entry to a section (made when missing)\n"
           "remove FILE SECTION [ID]     remove an entry, or a section with all its entries\n"
           "import TEXTFILE INIFILE      a UTF-8 INI text into a UTF-16 INI file\n"
           "export INIFILE TEXTFILE      a UTF-16 INI file into UTF-8 text\n\n"
           "INI files are UTF-16 little-endian with a byte order mark. SECTION may be given with or\n"
           "without its brackets. add makes FILE when it doesn't exist. Comments and blank lines of a\n"
           "file that is changed or imported are not kept.\n");
    return status;
}

int Fail(const std::string& message) {
    fprintf(stderr, "zel ini: %s\n", message.c_str());
    return 1;
}

std::u16string SectionName(const std::string& text) {
    std::u16string name = FromUtf8(text);
    if (name.empty() || name.front() != u'[') name = u"[" + name + u"]";
    return name;
}

// Loads file into ini; a message on standard error and false when that fails.
bool Load(CZelIniManager& ini, const std::string& file, bool missingIsEmpty = false) {
    const LONG result = ini.LoadCfgFromFile(FromUtf8(file).c_str());
    switch (result) {
    case 0: return true;
    case 3:
        if (missingIsEmpty) return true;
        Fail("can't open " + file);
        return false;
    case 4: Fail(file + ": the header doesn't match"); return false;
    case 5: Fail(file + ": not a UTF-16 INI file (no byte order mark)"); return false;
    default: Fail(file + ": could not read"); return false;
    }
}

int Save(CZelIniManager& ini, const std::string& file) {
    if (ini.GetSecCount() == 0) return Fail(file + ": nothing left to write, the file is emptied");
    return ini.SaveCfgToFile(FromUtf8(file).c_str()) ? 0 : Fail("could not write " + file);
}

void ListSection(CZelIniManager& ini, int section) {
    for (int index = 0; index < ini.GetIdCount(section); ++index) {
        const std::string id = ToUtf8(ini.GetIdStr(section, index));
        const std::string value = ToUtf8(ini.GetValueStr(section, index));
        printf("  %s%s%s\n", id.c_str(), id.empty() ? "" : "=", value.c_str());
    }
}

int List(const Args& args) {
    CZelIniManager ini;
    if (!Load(ini, args[1])) return 1;
    if (args.size() == 3) {
        const int section = ini.GetSecIndex(SectionName(args[2]).c_str());
        if (section < 0) return Fail("no section " + args[2] + " in " + args[1]);
        ListSection(ini, section);
        return 0;
    }
    for (int section = 0; section < ini.GetSecCount(); ++section) {
        printf("%s\n", ToUtf8(ini.GetSectionName(section)).c_str());
        ListSection(ini, section);
    }
    return 0;
}

int Get(const Args& args) {
    CZelIniManager ini;
    if (!Load(ini, args[1])) return 1;
    const WCHAR* value = ini.GetValueStr(SectionName(args[2]).c_str(), FromUtf8(args[3]).c_str());
    if (!value) return Fail("no entry '" + args[3] + "' in section " + args[2]);
    printf("%s\n", ToUtf8(value).c_str());
    return 0;
}

int Set(const Args& args) {
    CZelIniManager ini;
    if (!Load(ini, args[1])) return 1;
    if (!ini.SetValue(SectionName(args[2]).c_str(), FromUtf8(args[3]).c_str(), FromUtf8(args[4]).c_str()))
        return Fail("no entry '" + args[3] + "' in section " + args[2] + " (add makes one)");
    return Save(ini, args[1]);
}

int Add(const Args& args) {
    CZelIniManager ini;
    if (!Load(ini, args[1], true)) return 1;
    const std::u16string section = SectionName(args[2]);
    const bool existed = ini.GetSecIndex(section.c_str()) >= 0;
    if (!existed) ini.AddSection(section.c_str());
    if (args.size() == 5) {
        if (!ini.AddIdValueStr(section.c_str(), FromUtf8(args[3]).c_str(), FromUtf8(args[4]).c_str()))
            return Fail("section " + args[2] + " has an entry '" + args[3] + "' already");
    } else if (existed) {
        return Fail("section " + args[2] + " exists already");
    }
    return Save(ini, args[1]);
}

int Remove(const Args& args) {
    CZelIniManager ini;
    if (!Load(ini, args[1])) return 1;
    const std::u16string section = SectionName(args[2]);
    if (ini.GetSecIndex(section.c_str()) < 0) return Fail("no section " + args[2] + " in " + args[1]);
    if (args.size() == 4) {
        if (!ini.RemoveId(section.c_str(), FromUtf8(args[3]).c_str()))
            return Fail("no entry '" + args[3] + "' in section " + args[2]);
    } else {
        ini.RemoveSection(section.c_str());
    }
    return Save(ini, args[1]);
}

bool WriteBytes(const std::string& file, const std::string& bytes) {
    FILE* out = fopen(file.c_str(), "wb");
    if (!out) return false;
    const bool written = fwrite(bytes.data(), 1, bytes.size(), out) == bytes.size();
    return fclose(out) == 0 && written;
}

// The text goes through the model by way of a UTF-16 file beside the target.
int Import(const Args& args) {
    std::optional<std::string> text = ReadInput(args[1]);
    if (!text) return 1;
    if (text->rfind("\xEF\xBB\xBF", 0) == 0) text->erase(0, 3);
    std::string bytes = "\xFF\xFE";
    for (char16_t unit : FromUtf8(*text)) {
        bytes.push_back(static_cast<char>(unit & 0xFF));
        bytes.push_back(static_cast<char>(unit >> 8));
    }
    const std::string work = args[2] + ".import";
    if (!WriteBytes(work, bytes)) return Fail("could not write " + work);
    CZelIniManager ini;
    const bool loaded = Load(ini, work);
    std::remove(work.c_str());
    if (!loaded) return 1;
    if (ini.GetSecCount() == 0) return Fail(args[1] + ": no sections");
    return Save(ini, args[2]);
}

int Export(const Args& args) {
    CZelIniManager ini;
    if (!Load(ini, args[1])) return 1;
    if (ini.GetSecCount() == 0) return Fail(args[1] + ": no sections");
    const std::string work = args[2] + ".export";
    const int saved = ini.SaveCfgToFile(FromUtf8(work).c_str());
    std::optional<std::string> bytes = saved ? ReadInput(work) : std::nullopt;
    std::remove(work.c_str());
    if (!bytes) return Fail("could not write " + work);
    std::u16string units;
    for (size_t at = 2; at + 1 < bytes->size(); at += 2)
        units.push_back(static_cast<char16_t>(static_cast<unsigned char>((*bytes)[at]) |
                                              static_cast<unsigned char>((*bytes)[at + 1]) << 8));
    if (!WriteBytes(args[2], ToUtf8(units.c_str()))) return Fail("could not write " + args[2]);
    return 0;
}

}  // namespace

int RunIni(const Args& args) {
    if (WantsHelp(args)) return Usage(0);
    if (args.empty()) return Usage(2);
    const std::string& action = args[0];
    const size_t count = args.size();
    if (action == "list" && (count == 2 || count == 3)) return List(args);
    if (action == "get" && count == 4) return Get(args);
    if (action == "set" && count == 5) return Set(args);
    if (action == "add" && (count == 3 || count == 5)) return Add(args);
    if (action == "remove" && (count == 3 || count == 4)) return Remove(args);
    if (action == "import" && count == 3) return Import(args);
    if (action == "export" && count == 3) return Export(args);
    return Usage(2);
}
