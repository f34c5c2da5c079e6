// CZelIniManager::SaveCfgToFile: the whole file rewritten from the model, in UTF-16 little-endian
// units behind the byte order mark. Nothing is quoted or escaped.
#include <zel/frame.h>
#include <zel/paths.h>
#include <zel/settings.h>

#include <string>

#include "settings/ini_internal.h"

namespace {

// Collects units and writes them out in file order, a line at a time.
class UnitWriter {
public:
    explicit UnitWriter(FILE* stream) : stream_(stream) {}

    void Put(const std::u16string& text) {
        for (WCHAR unit : text) Put(unit);
    }
    void Put(WCHAR unit) {
        bytes_.push_back(static_cast<char>(unit & 0xFF));
        bytes_.push_back(static_cast<char>(unit >> 8));
    }
    void EndLine() {
        Put(u'\r');
        Put(u'\n');
        // The results of the writes are not looked at: a short write shows only in the file.
        (void)std::fwrite(bytes_.data(), 1, bytes_.size(), stream_);
        bytes_.clear();
    }

private:
    FILE* stream_;
    std::string bytes_;
};

}  // namespace

int CZelIniManager::SaveCfgToFile(const WCHAR* path) {
    if (path)
        ZelPathToAbsolute(path, filePath);
    else if (!filePath[0])
        return 0;
    stream = u__wfopen(filePath, u"wb");
    if (!stream) {
        ZelClearError();
        return 0;
    }
    streamOpen = 1;
    if (secList.empty()) {
        _ReleaseRead();
        return 0;
    }

    UnitWriter out(stream);
    out.Put(kZelIniByteOrderMark);
    if (!headerInfo.empty()) {
        out.Put(headerInfo);
        out.EndLine();
        out.EndLine();
    }
    for (const tagZELINISECTION* section : secList) {
        out.Put(section->name);
        out.EndLine();
        for (const tagZELINIVALUE* entry : *section->values) {
            if (entry->id.empty() && entry->value.empty()) continue;
            if (!entry->id.empty()) {
                out.Put(entry->id);
                out.Put(u'=');
            }
            out.Put(entry->value);
            out.EndLine();
        }
        if (!section->values->empty()) out.EndLine();
    }

    _ReleaseRead();
    modified = 0;
    return 1;
}
