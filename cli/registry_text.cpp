// What zel reg reads and shows: key paths with their hive, values as text, and registry files.
#include "registry_text.h"

#include <zel/codetables.h>
#include <zel/strings.h>

#include <cctype>
#include <cstdio>
#include <cstring>
#include <strings.h>

#include "text.h"

namespace {

// A load reads each text of a registry file into 260 bytes with its terminator.
constexpr DWORD kLongestFileText = 259;

struct Reader {
    const std::string& bytes;
    size_t at = 0;
    std::string& problem;

    bool Number(DWORD& value, const char* what) {
        if (bytes.size() - at < 4) return Cut(what);
        value = 0;
        for (int i = 3; i >= 0; --i) value = (value << 8) | static_cast<unsigned char>(bytes[at + i]);
        at += 4;
        return true;
    }
    bool Block(DWORD size, std::string& out, const char* what) {
        if (bytes.size() - at < size) return Cut(what);
        out.assign(bytes, at, size);
        at += size;
        return true;
    }
    bool Text(std::string& out, const char* what) {
        size_t start = at;
        DWORD length = 0;
        if (!Number(length, what)) return false;
        if (length > kLongestFileText) {
            problem = std::string("the ") + what + " at byte " + std::to_string(start) + " is " +
                      std::to_string(length) + " bytes long; a registry file's texts hold at most 259";
            return false;
        }
        return Block(length, out, what);
    }
    bool Cut(const char* what) {
        problem = std::string("cut short in the ") + what + " at byte " + std::to_string(at) + " of " +
                  std::to_string(bytes.size());
        return false;
    }
};

}  // namespace

bool ParseRegistryPath(const std::string& text, RegistryPath& path) {
    static const struct {
        const char* name;
        HKEY root;
    } hives[] = {{"HKCU", HKEY_CURRENT_USER},  {"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
                 {"HKLM", HKEY_LOCAL_MACHINE}, {"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
                 {"HKCR", HKEY_CLASSES_ROOT},  {"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT}};
    size_t cut = text.find('\\');
    std::string hive = text.substr(0, cut);
    for (const auto& known : hives) {
        if (strcasecmp(hive.c_str(), known.name) != 0) continue;
        path.root = known.root;
        path.path = cut == std::string::npos ? u"" : FromUtf8(text.substr(cut + 1));
        while (!path.path.empty() && path.path.back() == u'\\') path.path.pop_back();
        path.text = text;
        return true;
    }
    return false;
}

std::u16string AnsiToWide(const std::string& text) {
    if (text.empty()) return u"";
    std::u16string wide(text.size() + 1, u'\0');
    int count = ZelAnsiToUnicode(0, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                                 static_cast<int>(wide.size()), 0);
    wide.resize(count > 0 ? static_cast<size_t>(count) : 0);
    return wide;
}

size_t AnsiBytes(const std::u16string& text) {
    if (text.empty()) return 0;
    std::vector<char> narrow(text.size() * 4 + 4);
    const int count = ZelUnicodeToAnsi(0, 0, text.data(), static_cast<int>(text.size()), narrow.data(),
                                       static_cast<int>(narrow.size()), nullptr);
    return count > 0 ? static_cast<size_t>(count) : 0;
}

std::vector<BYTE> AnsiSzData(const std::string& utf8) {
    std::u16string wide = FromUtf8(utf8);
    std::vector<char> narrow(wide.size() * 4 + 4);
    ZelUnicodeToAnsi(0, 0, wide.c_str(), -1, narrow.data(), static_cast<int>(narrow.size()));
    return std::vector<BYTE>(narrow.begin(), narrow.begin() + static_cast<long>(strlen(narrow.data()) + 1));
}

std::string DescribeValue(DWORD type, const std::vector<BYTE>& data) {
    std::string bytes;
    for (BYTE byte : data) {
        char pair[4];
        snprintf(pair, sizeof pair, bytes.empty() ? "%02x" : " %02x", byte);
        bytes += pair;
    }
    if (type == REG_SZ) {
        std::string text(data.begin(), data.end());
        text = text.substr(0, text.find('\0'));
        return "sz \"" + ToUtf8(AnsiToWide(text).c_str()) + "\"";
    }
    if (type == REG_DWORD && data.size() == 4) {
        DWORD value = data[0] | data[1] << 8 | data[2] << 16 | static_cast<DWORD>(data[3]) << 24;
        return "dword " + std::to_string(value) + " (" + Hex(value) + ")";
    }
    if (type == REG_BINARY) return "binary " + bytes;
    return "type " + std::to_string(type) + (bytes.empty() ? "" : " " + bytes);
}

bool ParseHexBytes(const std::string& text, std::vector<BYTE>& bytes) {
    bytes.clear();
    for (size_t i = 0; i < text.size();) {
        if (text[i] == ' ') {
            ++i;
            continue;
        }
        if (i + 1 >= text.size() || !isxdigit(static_cast<unsigned char>(text[i])) ||
            !isxdigit(static_cast<unsigned char>(text[i + 1])))
            return false;
        bytes.push_back(static_cast<BYTE>(std::stoul(text.substr(i, 2), nullptr, 16)));
        i += 2;
    }
    return true;
}

bool ParseRegistryFile(const std::string& bytes, RegistryFile& file, std::string& problem) {
    Reader reader{bytes, 0, problem};
    if (bytes.empty()) return problem = "an empty file has no key path", false;
    if (!reader.Text(file.keyPath, "key path of the header")) return false;
    while (reader.at < bytes.size()) {
        RegistryFileSection section;
        DWORD count = 0;
        if (!reader.Text(section.path, "path of a section") || !reader.Number(count, "value count of a section"))
            return false;
        for (DWORD i = 0; i < count; ++i) {
            RegistryFileValue value;
            DWORD size = 0;
            std::string data;
            if (!reader.Text(value.name, "name of a value") || !reader.Number(value.type, "type of a value") ||
                !reader.Number(size, "data size of a value") || !reader.Block(size, data, "data of a value"))
                return false;
            value.data.assign(data.begin(), data.end());
            section.values.push_back(std::move(value));
        }
        file.sections.push_back(std::move(section));
    }
    return true;
}
