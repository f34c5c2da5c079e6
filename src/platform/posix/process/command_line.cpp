// The process's arguments, and the Win32 command line made of them. The system hands a process
// its arguments already split; the line is built by quoting each one so that CommandLineToArgvW
// splits it back into the same arguments.
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string>
#include <vector>

#include "platform/win32.h"

namespace {

struct Arguments {
    std::vector<std::u16string> wide;
    std::vector<std::string> ansi;
    std::u16string line;
    std::string ansiLine;
};

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t'; }

// The program name takes no backslash rules: quotes only when it needs them.
void AppendProgramName(std::u16string& line, const std::u16string& name) {
    bool plain = !name.empty();
    for (char16_t c : name) plain = plain && !IsBlank(c);
    if (plain) {
        line += name;
    } else {
        line += u'"';
        line += name;
        line += u'"';
    }
}

// The other arguments: backslashes before a quote are doubled and the quote escaped; inside a
// quoted argument the trailing backslashes are doubled so that they don't escape the closing quote.
void AppendArgument(std::u16string& line, const std::u16string& argument) {
    bool plain = !argument.empty();
    for (char16_t c : argument) plain = plain && !IsBlank(c) && c != u'"' && c != u'\n' && c != u'\v';
    if (plain) {
        line += argument;
        return;
    }
    line += u'"';
    size_t backslashes = 0;
    for (char16_t c : argument) {
        if (c == u'\\') {
            ++backslashes;
            continue;
        }
        if (c == u'"') backslashes = backslashes * 2 + 1;
        line.append(backslashes, u'\\');
        backslashes = 0;
        line += c;
    }
    line.append(backslashes * 2, u'\\');
    line += u'"';
}

const Arguments& ProcessArguments() {
    static Arguments* arguments = [] {
        auto* result = new Arguments;
        std::ifstream in("/proc/self/cmdline", std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        for (size_t start = 0; start < bytes.size();) {
            size_t end = bytes.find('\0', start);
            if (end == std::string::npos) end = bytes.size();
            result->wide.push_back(ZelPlatformUtf8ToWide(bytes.substr(start, end - start)));
            start = end + 1;
        }
        for (size_t i = 0; i < result->wide.size(); ++i) {
            result->ansi.push_back(ZelPlatformWideToAnsi(result->wide[i].c_str()));
            if (i == 0) {
                AppendProgramName(result->line, result->wide[i]);
            } else {
                result->line += u' ';
                AppendArgument(result->line, result->wide[i]);
            }
        }
        result->ansiLine = ZelPlatformWideToAnsi(result->line.c_str());
        return result;
    }();
    return *arguments;
}

// Splits a line by the Win32 rules into arguments.
std::vector<std::u16string> SplitCommandLine(const char16_t* p) {
    std::vector<std::u16string> result;
    // The program name: up to the closing quote, or up to a blank.
    std::u16string name;
    if (*p == u'"') {
        for (++p; *p && *p != u'"'; ++p) name += *p;
        if (*p) ++p;
    } else {
        for (; *p && !IsBlank(*p); ++p) name += *p;
    }
    result.push_back(name);

    for (;;) {
        while (IsBlank(*p)) ++p;
        if (!*p) break;
        std::u16string argument;
        bool quoted = false;
        while (*p && (quoted || !IsBlank(*p))) {
            if (*p == u'\\') {
                size_t backslashes = 0;
                for (; *p == u'\\'; ++p) ++backslashes;
                if (*p == u'"') {
                    argument.append(backslashes / 2, u'\\');
                    if (backslashes % 2) {
                        argument += u'"';
                        ++p;
                    }
                } else {
                    argument.append(backslashes, u'\\');
                }
            } else if (*p == u'"') {
                // Inside quotes "" stands for one quote, and the quotes end there.
                if (quoted && p[1] == u'"') {
                    argument += u'"';
                    quoted = false;
                    p += 2;
                } else {
                    quoted = !quoted;
                    ++p;
                }
            } else {
                argument += *p++;
            }
        }
        result.push_back(argument);
    }
    return result;
}

}  // namespace

namespace crt {

int ArgumentCount() { return static_cast<int>(ProcessArguments().ansi.size()); }

const char* Argument(int index) {
    const Arguments& arguments = ProcessArguments();
    if (index < 0 || static_cast<size_t>(index) >= arguments.ansi.size()) return nullptr;
    return arguments.ansi[static_cast<size_t>(index)].c_str();
}

}  // namespace crt

LPWSTR GetCommandLineW() { return const_cast<LPWSTR>(ProcessArguments().line.c_str()); }

LPSTR GetCommandLineA() { return const_cast<LPSTR>(ProcessArguments().ansiLine.c_str()); }

LPWSTR* CommandLineToArgvW(LPCWSTR commandLine, int* count) {
    if (!count) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    std::vector<std::u16string> arguments;
    if (!commandLine || !*commandLine) {
        // An empty line stands for the executable alone.
        WCHAR path[MAX_PATH + 1] = {};
        const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH + 1);
        if (length == 0 || length > MAX_PATH) return nullptr;
        arguments.emplace_back(path, length);
    } else {
        arguments = SplitCommandLine(commandLine);
    }
    // One block: the pointers, a null one after them, then the strings.
    size_t bytes = (arguments.size() + 1) * sizeof(LPWSTR);
    for (const auto& argument : arguments) bytes += (argument.size() + 1) * sizeof(WCHAR);
    auto* block = static_cast<LPWSTR*>(malloc(bytes));
    if (!block) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    auto* text = reinterpret_cast<WCHAR*>(block + arguments.size() + 1);
    for (size_t i = 0; i < arguments.size(); ++i) {
        block[i] = text;
        memcpy(text, arguments[i].c_str(), (arguments[i].size() + 1) * sizeof(WCHAR));
        text += arguments[i].size() + 1;
    }
    block[arguments.size()] = nullptr;
    *count = static_cast<int>(arguments.size());
    return block;
}
