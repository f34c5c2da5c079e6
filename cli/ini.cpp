// zel ini: sections and values of UTF-16 INI files, and INI text to and from UTF-8.
#include <zel/settings.h>

#include <cstdio>
#include <optional>
#include <string>

#include "commands.h"
#include "input.h"
#include "limits.h"
#include "report.h"
#include "safe_write.h"
#include "text.h"

const char kIniUsage[] =
    "Usage: zel ini ACTION [ARGUMENTS]\n\n"
    "list FILE [SECTION]          the sections with their entries, or the entries of SECTION\n"
    "get FILE SECTION ID          the value of one entry\n"
    "set FILE SECTION ID VALUE    replace the value of an existing entry\n"
    "add FILE SECTION [ID VALUE]  add a section, or an entry to a section (made when missing)\n"
    "remove FILE SECTION [ID]     remove an entry, or a section with all its entries\n"
    "import TEXTFILE INIFILE      INI text into a UTF-16 INI file\n"
    "export INIFILE TEXTFILE      a UTF-16 INI file into UTF-8 text\n\n"
    "INI files are UTF-16 little-endian with a byte order mark. SECTION may be given with or\n"
    "without its brackets (257 characters at most with them); FILE names hold 252 characters at\n"
    "most. add makes FILE when it doesn't exist. import reads UTF-8 or UTF-16 text, with or without\n"
    "a byte order mark, with LF, CR LF or CR line ends. Comments and blank lines of a file that is\n"
    "changed or imported are not kept. A file is written as a new copy beside it, read back, and\n"
    "only then put in the old one's place: a failure leaves the old file as it was.\n";

namespace {

// The longest section name, brackets included, that the reader takes back.
constexpr size_t kSectionUnits = 257;

std::optional<std::u16string> SectionName(const std::string& text) {
    std::u16string name = FromUtf8(text);
    if (name.empty() || name.front() != u'[') name = u"[" + name + u"]";
    if (!Fits("section " + text, name, kSectionUnits, "with its brackets, a section name the INI reader takes holds"))
        return std::nullopt;
    return name;
}

// A file that the library reads: refused up front when it is a directory or too long a name.
bool Readable(const std::string& file) { return NotADirectory(file) && PathFits("file", file); }

// Loads file into ini; a message on standard error and false when that fails.
bool Load(CZelIniManager& ini, const std::string& file, bool missingIsEmpty = false) {
    if (!Readable(file)) return false;
    switch (ini.LoadCfgFromFile(FromUtf8(file).c_str())) {
        case 0: return true;
        case 3:
            if (missingIsEmpty) return true;
            Fail("can't open " + file);
            return false;
        case 4: Fail(file + ": the header doesn't match"); return false;
        case 5: Fail(file + ": not a UTF-16 INI file (no byte order mark)"); return false;
        default:
            Fail(file + ": could not read it (too large, damaged, or a section name of more than 257 characters)");
            return false;
    }
}

// Whether the file at path holds what ini holds, read by the library's own reader.
bool ReadsBackAs(CZelIniManager& ini, const std::string& path, std::string& problem) {
    CZelIniManager back;
    if (back.LoadCfgFromFile(FromUtf8(path).c_str()) != 0) return problem = "it does not load", false;
    if (back.GetSecCount() != ini.GetSecCount()) return problem = "sections are missing", false;
    for (int section = 0; section < ini.GetSecCount(); ++section) {
        const std::u16string name = ini.GetSectionName(section);
        if (name != back.GetSectionName(section) || back.GetIdCount(section) != ini.GetIdCount(section))
            return problem = "section " + ToUtf8(name.c_str()) + " differs", false;
        for (int index = 0; index < ini.GetIdCount(section); ++index) {
            const std::u16string id = ini.GetIdStr(section, index), value = ini.GetValueStr(section, index);
            if (id != back.GetIdStr(section, index) || value != back.GetValueStr(section, index))
                return problem = "the entry '" + ToUtf8(id.c_str()) + "' of " + ToUtf8(name.c_str()) +
                                 " does not survive the file form (a line end, or '=' in an id?)",
                       false;
        }
    }
    return true;
}

int Save(CZelIniManager& ini, const std::string& file) {
    if (ini.GetSecCount() == 0) return Fail(file + ": nothing left to write, the file is emptied");
    if (!WritableFile(file)) return 1;
    return WriteBeside(
        file,
        [&](const std::string& copy, std::string& problem) {
            return ini.SaveCfgToFile(FromUtf8(copy).c_str()) ? true : (problem = LastErrorText(), false);
        },
        [&](const std::string& copy, std::string& problem) { return ReadsBackAs(ini, copy, problem); });
}

void ListSection(CZelIniManager& ini, int section) {
    for (int index = 0; index < ini.GetIdCount(section); ++index) {
        const std::string id = ToUtf8(ini.GetIdStr(section, index));
        const std::string value = ToUtf8(ini.GetValueStr(section, index));
        printf("  %s%s%s\n", id.c_str(), id.empty() ? "" : "=", value.c_str());
    }
}

int List(const Args& args) {
    std::optional<std::u16string> name;
    if (args.size() == 3 && !(name = SectionName(args[2]))) return 1;
    CZelIniManager ini;
    if (!Load(ini, args[1])) return 1;
    if (name) {
        const int section = ini.GetSecIndex(name->c_str());
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
    const auto section = SectionName(args[2]);
    CZelIniManager ini;
    if (!section || !Load(ini, args[1])) return 1;
    const WCHAR* value = ini.GetValueStr(section->c_str(), FromUtf8(args[3]).c_str());
    if (!value) return Fail("no entry '" + args[3] + "' in section " + args[2]);
    printf("%s\n", ToUtf8(value).c_str());
    return 0;
}

int Set(const Args& args) {
    const auto section = SectionName(args[2]);
    CZelIniManager ini;
    if (!section || !WritableFile(args[1]) || !Load(ini, args[1])) return 1;
    if (!ini.SetValue(section->c_str(), FromUtf8(args[3]).c_str(), FromUtf8(args[4]).c_str()))
        return Fail("no entry '" + args[3] + "' in section " + args[2] + " (add makes one)");
    return Save(ini, args[1]);
}

int Add(const Args& args) {
    const auto section = SectionName(args[2]);
    CZelIniManager ini;
    if (!section || !WritableFile(args[1]) || !Load(ini, args[1], true)) return 1;
    const bool existed = ini.GetSecIndex(section->c_str()) >= 0;
    if (!existed) ini.AddSection(section->c_str());
    if (args.size() == 5) {
        if (!ini.AddIdValueStr(section->c_str(), FromUtf8(args[3]).c_str(), FromUtf8(args[4]).c_str()))
            return Fail("section " + args[2] + " has an entry '" + args[3] + "' already");
    } else if (existed) {
        return Fail("section " + args[2] + " exists already");
    }
    return Save(ini, args[1]);
}

int Remove(const Args& args) {
    const auto section = SectionName(args[2]);
    CZelIniManager ini;
    if (!section || !WritableFile(args[1]) || !Load(ini, args[1])) return 1;
    if (ini.GetSecIndex(section->c_str()) < 0) return Fail("no section " + args[2] + " in " + args[1]);
    if (args.size() == 4) {
        if (!ini.RemoveId(section->c_str(), FromUtf8(args[3]).c_str()))
            return Fail("no entry '" + args[3] + "' in section " + args[2]);
    } else {
        ini.RemoveSection(section->c_str());
    }
    return Save(ini, args[1]);
}

void PutUnit(std::string& bytes, char16_t unit) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
}

// INI text as 16-bit units: UTF-16 by its byte order mark, or without one by where its zero bytes
// fall; UTF-8 otherwise, with or without its mark.
std::u16string DecodeText(const std::string& bytes) {
    auto unitsOf = [&](size_t from, bool little) {
        std::u16string units;
        for (size_t at = from; at + 1 < bytes.size(); at += 2) {
            const auto a = static_cast<unsigned char>(bytes[at]), b = static_cast<unsigned char>(bytes[at + 1]);
            units.push_back(static_cast<char16_t>(little ? a | b << 8 : a << 8 | b));
        }
        return units;
    };
    if (bytes.rfind("\xFF\xFE", 0) == 0) return unitsOf(2, true);
    if (bytes.rfind("\xFE\xFF", 0) == 0) return unitsOf(2, false);
    if (bytes.rfind("\xEF\xBB\xBF", 0) == 0) return FromUtf8(bytes.substr(3));
    size_t evenZeros = 0, oddZeros = 0;
    for (size_t at = 0; at < bytes.size(); ++at)
        if (bytes[at] == '\0') ++(at % 2 ? oddZeros : evenZeros);
    if (bytes.size() % 2 == 0 && evenZeros + oddZeros > 0) return unitsOf(0, oddZeros >= evenZeros);
    return FromUtf8(bytes);
}

// The file form of INI text for the library's reader: the byte order mark, every line end CR LF.
std::string FileForm(const std::u16string& text) {
    std::string bytes = "\xFF\xFE";
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == u'\r' || text[at] == u'\n') {
            if (text[at] == u'\r' && at + 1 < text.size() && text[at + 1] == u'\n') ++at;
            PutUnit(bytes, u'\r');
            PutUnit(bytes, u'\n');
        } else {
            PutUnit(bytes, text[at]);
        }
    }
    return bytes;
}

// The text goes through the library's reader by way of a scratch file beside the target.
int Import(const Args& args) {
    const std::string& target = args[2];
    if (!WritableFile(target)) return 1;
    std::optional<std::string> text = ReadInput(args[1]);
    if (!text) return 1;
    CopyBeside scratch(target);
    if (!scratch.made()) return Fail(scratch.problem());
    std::string problem;
    if (!WriteBytes(scratch.path(), FileForm(DecodeText(*text)), problem)) return Fail(problem);
    CZelIniManager ini;
    const LONG loaded = ini.LoadCfgFromFile(FromUtf8(scratch.path()).c_str());
    if (loaded != 0) return Fail(args[1] + ": not INI text the reader takes (a section name of more than 257 characters?)");
    if (ini.GetSecCount() == 0) return Fail(args[1] + ": no sections");
    return Save(ini, target);
}

int Export(const Args& args) {
    const std::string& target = args[2];
    CZelIniManager ini;
    if (!WritableFile(target) || !Load(ini, args[1])) return 1;
    if (ini.GetSecCount() == 0) return Fail(args[1] + ": no sections");
    CopyBeside scratch(target);
    if (!scratch.made()) return Fail(scratch.problem());
    std::string problem;
    if (!ini.SaveCfgToFile(FromUtf8(scratch.path()).c_str()) || !ReadsBackAs(ini, scratch.path(), problem))
        return Fail("could not write the file form of " + args[1] + " beside " + target + ": " +
                    (problem.empty() ? LastErrorText() : problem));
    std::optional<std::string> bytes = ReadInput(scratch.path());
    if (!bytes) return 1;
    std::u16string units;
    for (size_t at = 2; at + 1 < bytes->size(); at += 2)
        units.push_back(static_cast<char16_t>(static_cast<unsigned char>((*bytes)[at]) |
                                              static_cast<unsigned char>((*bytes)[at + 1]) << 8));
    const std::string utf8 = ToUtf8(units.c_str());
    return WriteBeside(
        target, [&](const std::string& copy, std::string& problem) { return WriteBytes(copy, utf8, problem); },
        [&](const std::string& copy, std::string& problem) {
            auto back = ReadInput(copy);
            return back && *back == utf8 ? true : (problem = "the bytes differ", false);
        });
}

}  // namespace

int RunIni(const Args& args) {
    if (args.empty()) return Misuse("no action given");
    const std::string& action = args[0];
    const size_t count = args.size();
    if (action == "list" && (count == 2 || count == 3)) return List(args);
    if (action == "get" && count == 4) return Get(args);
    if (action == "set" && count == 5) return Set(args);
    if (action == "add" && (count == 3 || count == 5)) return Add(args);
    if (action == "remove" && (count == 3 || count == 4)) return Remove(args);
    if (action == "import" && count == 3) return Import(args);
    if (action == "export" && count == 3) return Export(args);
    return ActionMisuse(args, {"list", "get", "set", "add", "remove", "import", "export"});
}
