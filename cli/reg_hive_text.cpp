// zel reg export and import: a key of the system registry with everything below it, as a text file
// that a person can read and compare with diff, and back.
//
// The file is UTF-8, one line per key and per value, keys depth first in the registry's order and
// values in their order:
//
//   ; zel registry export 1
//   [HKCU\Software\Suite]
//   "Name"=sz:"Report \"one\""        text types: sz, expand_sz; \\, \" and \xHH escape
//   @=sz:"the key's unnamed value"
//   "Count"=dword:0x00000010
//   "Blob"=hex(3):01 ff 20             any other type and data, the type in hex
//
// A program sees the registry through the ANSI calls, so text passes the ANSI code page both ways.
// Volatile keys are written like any other (a program cannot tell them) and an import makes a key
// volatile only where its parent is.
#include <zel/codetables.h>
#include <zel/settings.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "commands.h"
#include "input.h"
#include "registry_text.h"
#include "report.h"
#include "text.h"
#include "system.h"

namespace {

constexpr char kHeader[] = "; zel registry export 1";

// Text with quotes and backslashes escaped, and control characters as \xHH.
std::string Quote(const std::string& text) {
    std::string out = "\"";
    for (unsigned char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20 || c == 0x7F) {
            char escaped[8];
            snprintf(escaped, sizeof escaped, "\\x%02x", c);
            out += escaped;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

// The quoted text at the start of line (after pos), unescaped; pos moves past it.
bool Unquote(const std::string& line, size_t& pos, std::string& text) {
    if (pos >= line.size() || line[pos] != '"') return false;
    text.clear();
    for (++pos; pos < line.size(); ++pos) {
        char c = line[pos];
        if (c == '"') {
            ++pos;
            return true;
        }
        if (c != '\\') {
            text += c;
            continue;
        }
        if (++pos >= line.size()) return false;
        if (line[pos] == 'x') {
            if (pos + 2 >= line.size()) return false;
            text += static_cast<char>(strtoul(line.substr(pos + 1, 2).c_str(), nullptr, 16));
            pos += 2;
        } else {
            text += line[pos];
        }
    }
    return false;
}

std::string HexBytes(const std::vector<BYTE>& data) {
    std::string out;
    for (size_t i = 0; i < data.size(); ++i) {
        char pair[4];
        snprintf(pair, sizeof pair, i ? " %02x" : "%02x", data[i]);
        out += pair;
    }
    return out;
}

// ANSI text with its terminator as the registry's calls give it, as UTF-8; false when the data is
// not one terminated text.
bool TextOf(const std::vector<BYTE>& data, std::string& text) {
    if (data.empty() || data.back() != 0) return false;
    std::string ansi(data.begin(), data.end() - 1);
    if (ansi.find('\0') != std::string::npos) return false;
    text = ToUtf8(AnsiToWide(ansi).c_str());
    return true;
}

std::string ValueLine(const std::u16string& name, DWORD type, const std::vector<BYTE>& data) {
    std::string line = name.empty() ? "@=" : Quote(ToUtf8(name.c_str())) + "=";
    std::string text;
    if ((type == REG_SZ || type == REG_EXPAND_SZ) && TextOf(data, text))
        return line + (type == REG_SZ ? "sz:" : "expand_sz:") + Quote(text);
    if (type == REG_DWORD && data.size() == 4) {
        DWORD value = 0;
        memcpy(&value, data.data(), sizeof value);
        char number[16];
        snprintf(number, sizeof number, "0x%08x", value);
        return line + "dword:" + number;
    }
    char prefix[24];
    snprintf(prefix, sizeof prefix, "hex(%x):", type);
    return line + prefix + HexBytes(data);
}

// Writes the key at path (below root, named rootName) and everything below it.
bool ExportKey(HKEY root, const std::string& rootName, const std::u16string& path, FILE* out) {
    HKEY key = nullptr;
    if (ZelRegOpenKeyEx(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    fprintf(out, "[%s%s%s]\n", rootName.c_str(), path.empty() ? "" : "\\", ToUtf8(path.c_str()).c_str());
    WCHAR name[16384];
    for (DWORD index = 0;; ++index) {
        DWORD length = 16384, type = 0, size = 0;
        if (ZelRegEnumValue(key, index, name, &length, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) break;
        std::vector<BYTE> data(size);
        DWORD got = size;
        if (ZelRegQueryValueEx(key, name, nullptr, &type, data.data(), &got) != ERROR_SUCCESS) continue;
        data.resize(got);
        fprintf(out, "%s\n", ValueLine(name, type, data).c_str());
    }
    std::vector<std::u16string> subKeys;
    for (DWORD index = 0; ZelRegEnumKey(key, index, name, 256) == ERROR_SUCCESS; ++index) subKeys.push_back(name);
    ZelRegCloseKey(key);
    bool ok = true;
    for (const std::u16string& sub : subKeys)
        ok = ExportKey(root, rootName, path.empty() ? sub : path + u"\\" + sub, out) && ok;
    return ok;
}

int Export(const std::string& keyText, const std::string& file) {
    RegistryPath path;
    if (!ParseRegistryPath(keyText, path)) return Fail("a key begins with HKCU, HKLM or HKCR: " + keyText);
    const std::string rootName = keyText.substr(0, keyText.find('\\'));
    FILE* out = file == "-" ? stdout : OpenStreamByName(file, "wb");
    if (!out) return Fail("could not write " + file);
    fprintf(out, "%s\n", kHeader);
    bool ok = ExportKey(path.root, rootName, path.path, out);
    bool written = fflush(out) == 0 && !ferror(out);
    if (out != stdout) written = fclose(out) == 0 && written;
    if (!ok) return Fail("no key " + keyText);
    return written ? 0 : Fail("could not write " + file);
}

// Makes the key, volatile where its parent is.
HKEY MakeKey(const RegistryPath& path, LONG& status) {
    HKEY key = nullptr;
    status = ZelRegCreateKeyEx(path.root, path.path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                               nullptr, &key, nullptr);
    if (status == ERROR_CHILD_MUST_BE_VOLATILE)
        status = ZelRegCreateKeyEx(path.root, path.path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                                   nullptr, &key, nullptr);
    return status == ERROR_SUCCESS ? key : nullptr;
}

// One value line: its name and bytes as the ANSI calls take them.
bool ParseValue(const std::string& line, std::u16string& name, DWORD& type, std::vector<BYTE>& data) {
    size_t pos = 0;
    std::string text;
    if (line.compare(0, 2, "@=") == 0) {
        name.clear();
        pos = 2;
    } else {
        if (!Unquote(line, pos, text) || pos >= line.size() || line[pos] != '=') return false;
        name = FromUtf8(text);
        ++pos;
    }
    std::string rest = line.substr(pos);
    size_t colon = rest.find(':');
    if (colon == std::string::npos) return false;
    std::string kind = rest.substr(0, colon);
    size_t at = colon + 1;
    if (kind == "sz" || kind == "expand_sz") {
        if (!Unquote(rest, at, text) || at != rest.size()) return false;
        type = kind == "sz" ? REG_SZ : REG_EXPAND_SZ;
        data = AnsiSzData(text);
        return true;
    }
    if (kind == "dword") {
        char* end = nullptr;
        unsigned long value = strtoul(rest.c_str() + at, &end, 16);
        if (*end || at == rest.size() || value > 0xFFFFFFFFul) return false;
        type = REG_DWORD;
        const DWORD dword = static_cast<DWORD>(value);
        data.assign(reinterpret_cast<const BYTE*>(&dword), reinterpret_cast<const BYTE*>(&dword) + 4);
        return true;
    }
    if (kind.size() > 5 && kind.compare(0, 4, "hex(") == 0 && kind.back() == ')') {
        char* end = nullptr;
        unsigned long value = strtoul(kind.c_str() + 4, &end, 16);
        if (end != kind.c_str() + kind.size() - 1 || value > 0xFFFFFFFFul) return false;
        type = static_cast<DWORD>(value);
        return ParseHexBytes(rest.substr(at), data);
    }
    return false;
}

int Import(const std::string& file) {
    std::optional<std::string> bytes = ReadInput(file);
    if (!bytes) return 1;
    HKEY key = nullptr;
    std::string keyText;
    int lineNumber = 0, failures = 0;
    auto problem = [&](const std::string& what) {
        ++failures;
        fprintf(stderr, "zel reg: %s:%d: %s\n", file.c_str(), lineNumber, what.c_str());
    };
    for (size_t start = 0; start < bytes->size();) {
        size_t end = bytes->find('\n', start);
        if (end == std::string::npos) end = bytes->size();
        std::string line = bytes->substr(start, end - start);
        start = end + 1;
        ++lineNumber;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (lineNumber == 1 && line != kHeader) return Fail(file + ": not a registry export of zel");
        if (line.empty() || line[0] == ';') continue;
        if (line[0] == '[' && line.back() == ']') {
            if (key) ZelRegCloseKey(key);
            key = nullptr;
            keyText = line.substr(1, line.size() - 2);
            RegistryPath path;
            LONG status = ERROR_SUCCESS;
            if (!ParseRegistryPath(keyText, path))
                problem("a key begins with HKCU, HKLM or HKCR: " + keyText);
            else if (!(key = MakeKey(path, status)))
                problem("could not create " + keyText + ": " + SystemErrorText(status));
            continue;
        }
        std::u16string name;
        DWORD type = 0;
        std::vector<BYTE> data;
        if (!ParseValue(line, name, type, data)) {
            problem("not a value: " + line);
            continue;
        }
        if (!key) continue;  // its key could not be made, which was said
        LONG status = ZelRegSetValueEx(key, name.c_str(), 0, type, data.data(), static_cast<DWORD>(data.size()));
        if (status != ERROR_SUCCESS) problem("could not write a value of " + keyText + ": " + SystemErrorText(status));
    }
    if (key) ZelRegCloseKey(key);
    return failures ? 1 : 0;
}

}  // namespace

int RunRegHiveText(const Args& args) {
    if (args[0] == "export" && args.size() == 3) return Export(args[1], args[2]);
    if (args[0] == "import" && args.size() == 2) return Import(args[1]);
    return -1;
}
