// The text fields of the registry file: ANSI in the code page of the writer. The code page is
// resolved once for a whole save or load, which is what each conversion with code page 0 would
// do again; names are remembered for the rest of the call.
#include <zel/codetables.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#include "codetables/codepage_table_path.h"
#include "settings/registry_file_format.h"
#include "strings/wstr.h"

ZelRegFileTexts::ZelRegFileTexts() : codePage_(ZelResolveCodePage(0)) {}

std::string ZelRegFileTexts::Narrow(const WCHAR* text) const {
    // Four bytes a character and four more, as ZelNarrowArg allows.
    std::string ansi(wcslen(text) * 4 + 4, '\0');
    ZelUnicodeToAnsi(0, codePage_, text, -1, ansi.data(), static_cast<int>(ansi.size()), nullptr);
    ansi.resize(std::strlen(ansi.c_str()));
    return ansi;
}

std::string ZelRegFileTexts::NarrowName(const WCHAR* name) {
    std::u16string_view key(name);
    if (key.size() > kRememberedUnits) return Narrow(name);
    auto found = narrowNames_.find(std::u16string(key));
    if (found == narrowNames_.end()) found = narrowNames_.emplace(key, Narrow(name)).first;
    return found->second;
}

void ZelRegFileTexts::Widen(const char* ansi, WCHAR* text, size_t count) const {
    // The conversion wants room for one unit more than the text and its terminator.
    std::vector<WCHAR> wide(count + 1);
    ZelAnsiToUnicode(0, codePage_, ansi, -1, wide.data(), static_cast<int>(wide.size()), 0);
    wide[count - 1] = 0;
    std::memcpy(text, wide.data(), count * sizeof(WCHAR));
}

void ZelRegFileTexts::WidenName(const char* ansi, WCHAR* text, size_t count) {
    if (std::strlen(ansi) > kRememberedUnits) return Widen(ansi, text, count);
    auto found = wideNames_.find(ansi);
    if (found == wideNames_.end()) {
        std::vector<WCHAR> wide(count);
        Widen(ansi, wide.data(), count);
        found = wideNames_.emplace(ansi, std::u16string(wide.data())).first;
    }
    // The text, and zeros to the end as the conversion leaves them.
    const std::u16string& known = found->second;
    std::memcpy(text, known.c_str(), (known.size() + 1) * sizeof(WCHAR));
    std::fill(text + known.size() + 1, text + count, WCHAR{0});
}
