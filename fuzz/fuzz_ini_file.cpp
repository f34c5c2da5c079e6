// Arbitrary bytes as a UTF-16 INI file: loaded, saved, and the saved file loaded again. No load
// may read past its buffer. A file that loads whole saves to a file that loads back to the same
// model, when the model holds nothing that the file form can't carry: a line the writer makes
// from an entry of fewer than three units, or one that starts like a comment or a section, reads
// back otherwise; so do ids with "=" or trailing spaces, values with leading spaces, line breaks,
// zero units, names that aren't bracketed or hold a "]" inside.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <zel/settings.h>

#include "fuzz_check.h"
#include "platform/win32.h"

namespace {

struct TempFile {
    explicit TempFile(const char* pattern) {
        std::string name = pattern;
        const int fd = mkstemp(name.data());
        Check(fd >= 0);
        close(fd);
        onDisk = name;
        path = ZelPlatformPathFromSystem(name.c_str());
    }
    ~TempFile() { std::remove(onDisk.c_str()); }
    std::string onDisk;
    std::u16string path;
};

bool Breaks(const std::u16string& text) { return text.find_first_of(u"\r\n") != std::u16string::npos; }

bool StartsLikeMarkup(const std::u16string& text) {
    const size_t first = text.find_first_not_of(u' ');
    return !text.empty() && (text[0] == u';' || (first != std::u16string::npos && text[first] == u'['));
}

// Whether a save writes this model so that a load gives it back unchanged.
bool Carried(CZelIniManager& ini) {
    for (int s = 0; s < ini.GetSecCount(); ++s) {
        const std::u16string name = ini.GetSectionName(s);
        if (name.size() < 2 || name.front() != u'[' || name.find(u']') != name.size() - 1 || Breaks(name)) return false;
        for (int i = 0; i < ini.GetIdCount(s); ++i) {
            const std::u16string id = ini.GetIdStr(s, i);
            const std::u16string value = ini.GetValueStr(s, i);
            const std::u16string line = id.empty() ? value : id + u"=" + value;
            if (line.size() < 3 || Breaks(line) || StartsLikeMarkup(line)) return false;
            if (!id.empty() && (id.find(u'=') != std::u16string::npos || id.back() == u' ')) return false;
            if (id.empty() && value.find(u'=') != std::u16string::npos) return false;
            if (!value.empty() && value[0] == u' ') return false;
        }
    }
    return true;
}

bool Same(CZelIniManager& a, CZelIniManager& b) {
    if (a.GetSecCount() != b.GetSecCount()) return false;
    for (int s = 0; s < a.GetSecCount(); ++s) {
        if (std::u16string(a.GetSectionName(s)) != b.GetSectionName(s) || a.GetIdCount(s) != b.GetIdCount(s))
            return false;
        for (int i = 0; i < a.GetIdCount(s); ++i)
            if (std::u16string(a.GetIdStr(s, i)) != b.GetIdStr(s, i) ||
                std::u16string(a.GetValueStr(s, i)) != b.GetValueStr(s, i))
                return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static TempFile input("/tmp/fuzz_ini_in_XXXXXX");
    static TempFile saved("/tmp/fuzz_ini_out_XXXXXX");
    FILE* stream = std::fopen(input.onDisk.c_str(), "wb");
    Check(stream != nullptr);
    Check(std::fwrite(data, 1, size, stream) == size);
    std::fclose(stream);

    CZelIniManager first;
    const LONG result = first.LoadCfgFromFile(input.path.c_str());
    Check(result == 0 || result == 2 || result == 5);
    if (first.GetSecCount() == 0) return 0;
    Check(first.SaveCfgToFile(saved.path.c_str()) == 1);

    CZelIniManager second;
    const LONG again = second.LoadCfgFromFile(saved.path.c_str());
    Check(again == 0 || again == 2);
    if (result == 0 && Carried(first)) {
        Check(again == 0);
        Check(Same(first, second));
    }
    return 0;
}
