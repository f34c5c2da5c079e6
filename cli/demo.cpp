// zel demo: the library's services on bundled samples.
#include <zel/bidi.h>
#include <zel/codetables.h>
#include <zel/frame.h>
#include <zel/paths.h>
#include <zel/settings.h>
#include <zel/strings.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "commands.h"
#include "report.h"
#include "text.h"

namespace {

// A client module of the demo: two sub-modules, the second of which describes its own errors.
LONG DemoSubModule(ZelModuleDef* module, LONG id, LONG request, ZelErrorDetail* detail, DWORD) {
    switch (request) {
        case 0: printf("  sub-module %d of %s starts\n", id, ToUtf8(module->name).c_str()); return 0;
        case 1: printf("  sub-module %d of %s ends\n", id, ToUtf8(module->name).c_str()); return 0;
        default: break;
    }
    std::u16string text = u"Sample failure number " + FromUtf8(std::to_string(ZEL_ERROR_NUMBER(detail->code)));
    text.copy(detail->text, ZEL_ERROR_TEXT_SIZE - 1);
    detail->text[text.size()] = 0;
    return 0;
}

ZelSubModuleEntry demoRows[] = {{1, DemoSubModule}, {2, DemoSubModule}, {-1, nullptr}};
ZelModuleDef demoModule = {u"Demo.Client", nullptr, nullptr, nullptr, ZEL_MODULE_ID_ASSIGNED, 0, demoRows};

void ShowError(const char* what) {
    ZelErrorDetail detail;
    detail.text[0] = 0;
    ZelGetErrorDetail(&detail);
    printf("  %-28s code %-10s -> \"%s\"\n", what, Hex(ZelGetError()).c_str(), ToUtf8(detail.text).c_str());
}

void ModuleFrame() {
    printf("== Module frame\n");
    for (int position = ZelGetFirstModule(); position != 0;) {
        ZelModuleDef* module = ZelGetNextModule(&position);
        printf("  registered: %s, id %d\n", ToUtf8(module->name).c_str(), module->moduleId);
    }
    printf("  registering Demo.Client, which asks for an id\n");
    if (!ZelInitModule(&demoModule)) {
        printf("  registration failed\n");
        return;
    }
    printf("  Demo.Client has id %d (384 plus its slot)\n", demoModule.moduleId);

    printf("\n== Errors of the calling thread, described by their owners\n");
    ZelSetError(ZEL_MAKE_ERROR(demoModule.moduleId, 2, 7));
    ShowError("Demo.Client, sub-module 2:");
    ZelSetErrorMesg(u"한국어와 日本語 text is carried as it is");
    ShowError("message (code 1, kind 1):");
    const WCHAR fileName[] = u"c:\\suite\\m.dll";
    ZelSetErrorEx(ZEL_ERROR_RESOURCE_MISSING, 1, fileName, sizeof fileName);
    ShowError("resource file missing:");
    ZelErrorInfo saved;
    ZelStoreError(&saved);
    ZelSetError(12345);
    ZelRestoreError(&saved);
    printf("  after store, another error and restore, the code is %s again\n", Hex(ZelGetError()).c_str());

    printf("\n== Warnings: a ring that keeps the newest three\n");
    for (DWORD code = 11; code <= 14; ++code) ZelSetWarning(code);
    printf("  set 11, 12, 13, 14; read back:");
    while (DWORD code = ZelGetWarning(1)) printf(" %u", code);
    printf("\n");

    printf("\n== Unregistering Demo.Client\n");
    ZelExitModule(&demoModule);
}

void Strings() {
    printf("\n== Bounded strings\n");
    WCHAR small[8];
    int whole = ustrlcpy(small, u"ZelBL70KT text", 8);
    printf("  ustrlcpy into 8 units: \"%s\", whole copy %d\n", ToUtf8(small).c_str(), whole);
    WCHAR padded[] = u"  \u3000trimmed  ";
    ustrtriml(padded);
    ustrtrimr(padded);
    printf("  trimmed on both sides: \"%s\"\n", ToUtf8(padded).c_str());
    printf("  _ustricmp(\"Morvalis\", \"MORVALIS\") = %d\n", _ustricmp(u"Morvalis", u"MORVALIS"));

    printf("\n== UTF converters\n");
    const std::string sample = "한국어 日本語 ABC \xF0\x9F\x98\x80";
    std::vector<ZelUTF16> wide(sample.size());
    const auto* source8 = reinterpret_cast<const ZelUTF8*>(sample.data());
    ZelUTF16* target16 = wide.data();
    ZelConvertUTF8toUTF16(&source8, source8 + sample.size(), &target16, wide.data() + wide.size(), ZelConvStrict);
    std::vector<ZelUTF32> values(wide.size());
    const ZelUTF16* source16 = wide.data();
    ZelUTF32* target32 = values.data();
    ZelConvertUTF16toUTF32(&source16, target16, &target32, values.data() + values.size(), ZelConvStrict);
    printf("  \"%s\": %zu bytes of UTF-8, %zu units of UTF-16, %zu values of UTF-32\n", sample.c_str(),
           sample.size(), static_cast<size_t>(target16 - wide.data()), static_cast<size_t>(target32 - values.data()));
    const ZelUTF16 lone[] = {u'a', 0xDC00, u'b'};
    const ZelUTF16* from = lone;
    ZelUTF8 bytes[16];
    ZelUTF8* to = bytes;
    ZelConvResult status = ZelConvertUTF16toUTF8(&from, lone + 3, &to, bytes + sizeof bytes, ZelConvStrict);
    printf("  a lone low surrogate stops a strict run: status %d after %zu unit(s)\n", status,
           static_cast<size_t>(from - lone));

    printf("\n== Base64 and hexadecimal forms\n");
    char* encoded = nullptr;
    ZelAsciiToBase64("ZelBL70KT", 9, &encoded);
    char* decoded = nullptr;
    int length = ZelBase64ToAscii(encoded, &decoded);
    printf("  Base64 of \"ZelBL70KT\": %s, back: \"%.*s\"\n", encoded, length, decoded);
    free(encoded);
    free(decoded);
    char hex[64];
    ZelUniStrToHexStr(u"한글", hex, sizeof hex);
    WCHAR unescaped[32];
    ZelHexChrToUniStr(u"/uD55C/uAE00 escapes", unescaped);
    printf("  \"한글\" as hex: %s; \"/uD55C/uAE00 escapes\" decoded: \"%s\"\n", hex, ToUtf8(unescaped).c_str());

    printf("\n== Kana and width\n");
    const std::u16string half = u"ｶﾞｷﾞｸﾞﾊﾟ ｱｲｳ";
    WCHAR full[32];
    full[ToLargeKanaStr(half.c_str(), static_cast<int>(half.size()), full, 1)] = 0;
    WCHAR hiragana[32];
    hiragana[ToLargeKanaStr(half.c_str(), static_cast<int>(half.size()), hiragana, 0)] = 0;
    WCHAR back[64];
    back[ToSmallKanaStr(u"がぎぐぱ", -1, back)] = 0;
    printf("  %s -> %s, %s; がぎぐぱ -> %s\n", ToUtf8(half.c_str()).c_str(), ToUtf8(full).c_str(),
           ToUtf8(hiragana).c_str(), ToUtf8(back).c_str());
    std::u16string ascii = u"Zel 70";
    for (auto& c : ascii) c = ZelUniHalfFullChange(c, 0);
    printf("  \"Zel 70\" in full width: \"%s\"\n", ToUtf8(ascii.c_str()).c_str());
}

void Bidi() {
    printf("\n== Bidirectional text and Arabic shaping\n");
    const std::u16string logical = u"Morvalis עברית (3.2) مرحبا 2026";
    std::u16string display = logical;
    std::vector<WORD> levels(logical.size());
    BidiString(display.data(), static_cast<DWORD>(display.size()), nullptr, levels.data(), 1, 0);
    std::string levelText;
    for (WORD level : levels) levelText += static_cast<char>('0' + level);
    printf("  logical: %s\n  display: %s\n  levels:  %s\n", ToUtf8(logical.c_str()).c_str(),
           ToUtf8(display.c_str()).c_str(), levelText.c_str());
    std::vector<WCHAR> shaped(logical.size() + 1, 0);
    ShapeString(shaped.data(), logical.data(), static_cast<DWORD>(logical.size()), nullptr, nullptr, 1, 0);
    printf("  shaped:  %s\n", ToUtf8(shaped.data()).c_str());
}

// ${Temp} may name a directory that a fresh installation hasn't made yet.
void EnsureTempDirectory() {
    WCHAR temp[MAX_PATH];
    ZelPathToAbsolute(u"${Temp}\\", temp);
    if (!ZelExistDir(temp)) ZelPathCreate(temp);
}

void DefaultPaths() {
    printf("\n== Default paths and the user's language\n");
    for (const WCHAR* name : {u"App", u"Common", u"Zel", u"SharedData", u"Temp", u"UserData", u"AllUserData",
                              u"SysExt", u"ResExt", u"DsoExt"}) {
        WCHAR value[MAX_PATH];
        ZelPathToAbsolute((std::u16string(u"${") + name + u"}").c_str(), value);
        printf("  %-12s %s\n", ToUtf8(name).c_str(), ToUtf8(value).c_str());
    }
    ZelErrorDetail detail;
    ZelSetError(ZEL_ERROR_OUT_OF_MEMORY);
    detail.text[0] = 0;
    ZelGetErrorDetail(&detail);
    ZelClearError();
    WCHAR extension[MAX_PATH] = {};
    ZelGetResourceExt(0xFFFF, extension);
    printf("  language %s, error 2 reads: %s\n", ToUtf8(extension).c_str(), ToUtf8(detail.text).c_str());
}

void Paths() {
    printf("\n== Paths with ${Name} macros and temporary names\n");
    EnsureTempDirectory();
    ZelRegisterPath(u"Docs", u"c:\\suite\\docs");
    const WCHAR* stored = u"${docs}\\2026\\report.ini";
    WCHAR absolute[MAX_PATH];
    ZelPathToAbsolute(stored, absolute);
    WCHAR relative[MAX_PATH];
    ZelPathToRelative(absolute, relative);
    printf("  Docs is c:\\suite\\docs: %s -> %s -> %s\n", ToUtf8(stored).c_str(), ToUtf8(absolute).c_str(),
           ToUtf8(relative).c_str());
    ZelPathToAbsolute(u"a${Nobody}b and a${Docs", absolute);
    printf("  an unknown macro vanishes, an open one ends the text: \"%s\"\n", ToUtf8(absolute).c_str());
    WCHAR name[MAX_PATH];
    if (ZelPathMakeTempEx(nullptr, u"zel", 0, u"tmp", name))
        printf("  a free temporary name: %s\n", ToUtf8(name).c_str());
    WCHAR title[MAX_PATH];
    ZelGetFileTitle(name, title, MAX_PATH);
    WCHAR shortened[MAX_PATH] = u"c:\\suite\\docs\\2026\\quarterly\\report.ini";
    ZelAbbreviateName(shortened, 28, TRUE);
    printf("  its title: %s; c:\\suite\\docs\\2026\\quarterly\\report.ini in 28 characters: %s\n",
           ToUtf8(title).c_str(), ToUtf8(shortened).c_str());
    ZelUnregisterPath(u"Docs");
}

void CodePages() {
    printf("\n== Code pages through the code table files\n");
    struct Sample {
        const char* language;
        DWORD codePage;
        const WCHAR* text;
    };
    const Sample samples[] = {{"Korean", 949, u"한국어 텍스트"}, {"Japanese", 932, u"日本語のテキスト ｶﾅ"},
                              {"Chinese", 936, u"中文文本 \U00020000"}};
    for (const Sample& sample : samples) {
        char bytes[64];
        int count = ZelUnicodeToAnsi(0, sample.codePage, sample.text, -1, bytes, sizeof bytes, nullptr);
        std::string hex;
        for (int i = 0; i < count; ++i) {
            char pair[4];
            snprintf(pair, sizeof pair, "%02X ", static_cast<unsigned char>(bytes[i]));
            hex += pair;
        }
        WCHAR back[64];
        ZelAnsiToUnicode(0, sample.codePage, bytes, count, back, 64, 0);
        printf("  %-8s %s in %u: %s-> %s\n", sample.language, ToUtf8(sample.text).c_str(), sample.codePage, hex.c_str(),
               ToUtf8(back).c_str());
    }
}

std::string Units(const WCHAR* text, int count) {
    std::string out;
    for (int i = 0; i < count; ++i) out += (i ? " " : "") + Hex(text[i]);
    return out;
}

void OldHangul() {
    printf("\n== Old Hangul, KChar and sort keys\n");
    LoadUnicodeTbl();
    // ㅎ, arae-a and ㄴ: a syllable of old Hangul.
    const WCHAR jamo[3] = {u'\u314E', u'\u318D', u'\u3134'};
    WCHAR syllable[4] = {UniKSJaso2UniHangul(jamo), 0};
    if (syllable[0] == 0xFFFE)
        for (int i = 0; i < 3; ++i) syllable[i] = GetMultiCode()[i];
    int length = 0;
    while (length < 3 && syllable[length]) ++length;
    printf("  %s compose to %s, a private-use syllable of old Hangul\n", ToUtf8(std::u16string(jamo, 3).c_str()).c_str(),
           Units(syllable, length).c_str());
    const DWORD all = KConvSymbol | KConvHanja | KConvHangul | KConvOldHangul;
    const std::u16string text = std::u16string(u"한글 ") + syllable + u" 漢字";
    KChar kchar[32];
    int count = ZelUnicodeToKChar(all, text.c_str(), -1, kchar, 32, nullptr);
    std::string units;
    for (int i = 0; i < count; ++i) units += (i ? " " : "") + Hex(kchar[i]);
    WCHAR back[32];
    ZelKCharToUnicode(all, kchar, count, back, 32, nullptr);
    printf("  \"%s\" (with that syllable) as KChar: %s\n  and back to Unicode: %s\n", ToUtf8(text.c_str()).c_str(),
           units.c_str(), text == back ? "the same text" : ToUtf8(back).c_str());
    std::vector<std::u16string> words = {u"하늘", std::u16string(syllable) + u"낫", u"한글", u"가람", u"흙"};
    std::vector<std::pair<std::vector<DWORD>, std::u16string>> keyed;
    for (const auto& word : words) {
        std::vector<DWORD> keys(word.size() + 1);
        keys.resize(static_cast<size_t>(ZelUnicodeToSortIndex(0, word.c_str(), -1, keys.data(), static_cast<int>(keys.size()))));
        keyed.emplace_back(keys, word);
    }
    std::sort(keyed.begin(), keyed.end());
    std::string sorted;
    for (const auto& entry : keyed) sorted += " " + ToUtf8(entry.second.c_str());
    printf("  sorted by their keys (arae-a after the modern vowels):%s\n", sorted.c_str());
}

// Prints a key of the in-memory registry with everything below it.
void ShowTree(HKEY parent, const std::u16string& name, int depth) {
    HKEY key = nullptr;
    if (ZelRegOpenKey(parent, name.c_str(), &key, 1) != 0) return;
    printf("  %*s%s\n", 2 * depth, "", ToUtf8(name.c_str()).c_str());
    for (DWORD index = 0;; ++index) {
        WCHAR valueName[MAX_PATH];
        DWORD capacity = MAX_PATH, type = 0, size = 0;
        if (ZelRegEnumValue(key, index, valueName, &capacity, nullptr, &type, nullptr, nullptr, 1) != 0) break;
        ZelRegQueryValueEx(key, valueName, nullptr, nullptr, nullptr, &size, 1);
        std::vector<BYTE> data(size);
        ZelRegQueryValueEx(key, valueName, nullptr, nullptr, data.data(), &size, 1);
        std::string shown;
        if (type == REG_SZ) {
            WCHAR text[MAX_PATH];
            ZelAnsiToUnicode(0, 0, reinterpret_cast<const char*>(data.data()), -1, text, MAX_PATH, 0);
            shown = "\"" + ToUtf8(text) + "\"";
        } else if (type == REG_DWORD && size == 4) {
            shown = std::to_string(data[0] | data[1] << 8 | data[2] << 16 | data[3] << 24);
        } else {
            for (BYTE byte : data) {
                char pair[4];
                snprintf(pair, sizeof pair, "%02x ", byte);
                shown += pair;
            }
        }
        printf("  %*s  %s = %s\n", 2 * depth, "", ToUtf8(valueName).c_str(), shown.c_str());
    }
    WCHAR child[MAX_PATH];
    for (DWORD index = 0; ZelRegEnumKey(key, index, child, MAX_PATH, 1) == 0; ++index) ShowTree(key, child, depth + 1);
}

void Settings() {
    printf("\n== Settings in the in-memory registry, through a registry file\n");
    EnsureTempDirectory();
    CZelRegistry editor(u"Software\\Demo\\Editor", HKEY_CURRENT_USER, 1);
    editor.WriteStringValue(nullptr, u"Title", u"Quarterly report");
    editor.WriteDwordValue(u"Window", u"Width", 800);
    editor.WriteDwordValue(u"Window", u"Height", 600);
    const BYTE mask[] = {0x5A, 0x00, 0xFF, 0x01};
    editor.WriteBinaryValue(u"Window\\Toolbar", u"Mask", mask, sizeof mask);
    WCHAR file[MAX_PATH];
    if (!ZelPathMakeTempEx(nullptr, u"zel", 0, u"reg", file)) {
        printf("  no temporary name for the file\n");
        return;
    }
    CZelRegistry mover(1);
    int saved = mover.SaveToFile(u"Software\\Demo\\Editor", file);
    printf("  HKCU\\Software\\Demo\\Editor saved to %s: %s\n", ToUtf8(file).c_str(), saved ? "done" : "failed");
    CZelRegistry demo(u"Software\\Demo", HKEY_CURRENT_USER, 1);
    demo.DeleteSubKey(u"Editor");
    printf("  deleted from the registry; Editor is %s\n", demo.ExistKey(u"Editor") ? "still there" : "gone");
    int loaded = mover.LoadFromFile(file);
    printf("  loaded back from the file: %s\n", loaded ? "done" : "failed");
    HKEY software = nullptr;
    if (ZelRegOpenKey(HKEY_CURRENT_USER, u"Software\\Demo", &software, 1) == 0) ShowTree(software, u"Editor", 0);
    ZelDeleteFile(file);
}

// Prints every section of an INI store with its entries.
void ShowIni(CZelIniManager& ini) {
    for (int section = 0; section < ini.GetSecCount(); ++section) {
        printf("  %s\n", ToUtf8(ini.GetSectionName(section)).c_str());
        for (int index = 0; index < ini.GetIdCount(section); ++index)
            printf("    %s = %s\n", ToUtf8(ini.GetIdStr(section, index)).c_str(),
                   ToUtf8(ini.GetValueStr(section, index)).c_str());
    }
}

void IniFile() {
    printf("\n== A UTF-16 INI file below ${Temp}\n");
    EnsureTempDirectory();
    const WCHAR* file = u"${Temp}\\zel-demo.ini";
    CZelIniManager writer;
    writer.SetHeaderInfo(u"; demo settings");
    writer.AddSection(u"[Document]");
    writer.AddIdValueStr(u"[Document]", u"Title", u"\uBD84\uAE30 \uBCF4\uACE0\uC11C");
    writer.AddIdValueStr(u"[Document]", u"Author", u"\u5C71\u7530");
    writer.AddSection(u"[Window]");
    writer.AddIdValueStr(u"[Window]", u"Size", u"800x600");
    WCHAR absolute[MAX_PATH];
    ZelPathToAbsolute(file, absolute);
    printf("  written to %s: %s\n", ToUtf8(absolute).c_str(), writer.SaveCfgToFile(file) ? "done" : "failed");

    CZelIniManager editor;
    editor.SetHeaderInfo(u"; demo settings");
    const LONG loaded = editor.LoadCfgFromFile(file);
    printf("  read back with its header checked: result %d\n", static_cast<int>(loaded));
    editor.SetValue(u"[Window]", u"Size", u"1024x768");
    editor.AddIdValueStr(u"[Window]", u"Maximized", u"0");
    editor.RemoveId(u"[Document]", u"Author");
    printf("  changed Size, added Maximized, removed Author; modified: %d\n", editor.IsModified());
    editor.SaveCfgToFile(nullptr);

    CZelIniManager reader;
    reader.LoadCfgFromFile(file);
    ShowIni(reader);
    ZelDeleteFile(absolute);
}

}  // namespace

const char kDemoUsage[] =
    "Usage: zel demo\n\n"
    "Runs the bundled samples through the library's services and shows the results.\n";

int RunDemo(const Args& args) {
    if (!args.empty()) return Misuse("no arguments are taken");
    printf("ZelBL70KT demo\n\n");
    ModuleFrame();
    Strings();
    Bidi();
    DefaultPaths();
    Paths();
    CodePages();
    OldHangul();
    Settings();
    IniFile();
    return 0;
}
