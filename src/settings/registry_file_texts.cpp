// The text fields of the registry file: ANSI in the code page of the writer. The code page is
// resolved once for a whole save or load, which is what each conversion with code page 0 would
// do again; names are remembered for the rest of the call.
#include <zel/codetables.h>

#include <algorithm>
#include <cstring>
#include <string_view>

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
    const std::u16string_view key(name);
    if (key.size() > kRememberedUnits) return Narrow(name);
    if (const std::string* known = narrowNames_.Find(key)) return *known;
    return narrowNames_.Put(key, Narrow(name));
}

void ZelRegFileTexts::Widen(const char* ansi, WCHAR* text) const {
    // The conversion wants room for one unit more than the text and its terminator. The buffer
    // starts as zeros, so that a conversion that fails gives the units it wrote.
    WCHAR wide[kZelRegNameUnits + 1] = {};
    ZelAnsiToUnicode(0, codePage_, ansi, -1, wide, static_cast<int>(kZelRegNameUnits + 1), 0);
    wide[kZelRegNameUnits - 1] = 0;
    std::copy(wide, wide + std::char_traits<char16_t>::length(wide) + 1, text);
}

void ZelRegFileTexts::WidenName(const char* ansi, WCHAR* text) {
    const std::string_view key(ansi);
    if (key.size() > kRememberedUnits) return Widen(ansi, text);
    if (const std::u16string* known = wideNames_.Find(key)) {
        std::copy(known->c_str(), known->c_str() + known->size() + 1, text);
        return;
    }
    Widen(ansi, text);
    wideNames_.Put(key, std::u16string(text));
}
