// ${Name} macros: expanding them from the path table, and collapsing a path back to the first row
// whose value begins it. Both results are cut at 259 characters and a terminator.
#include <zel/strings.h>

#include "paths/path_table.h"
#include "strings/wstr.h"

namespace {

// Writes into a destination of MAX_PATH characters, dropping what does not fit.
class PathOut {
public:
    explicit PathOut(WCHAR* out) : out_(out) { out_[0] = 0; }
    ~PathOut() { out_[length_] = 0; }
    PathOut(const PathOut&) = delete;
    PathOut& operator=(const PathOut&) = delete;

    void Put(WCHAR c) {
        if (length_ < MAX_PATH - 1)
            out_[length_++] = c;
        else
            cut_ = true;
    }
    void Put(const WCHAR* s) {
        for (; *s; ++s) Put(*s);
    }
    bool cut() const { return cut_; }

private:
    WCHAR* out_;
    size_t length_ = 0;
    bool cut_ = false;
};

}  // namespace

bool ZelExpandPathMacros(const WCHAR* source, WCHAR* destination) {
    if (!destination) return false;
    PathOut out(destination);
    if (!source) return true;
    const bool haveTable = ZelPathTableRows() != nullptr;
    for (const WCHAR* p = source; *p;) {
        if (!haveTable || p[0] != u'$' || p[1] != u'{') {
            out.Put(*p++);
            continue;
        }
        const WCHAR* name = p + 2;
        const WCHAR* close = wcschr(name, u'}');
        // An unclosed macro ends the text.
        if (!close) break;
        // An unknown name vanishes; a value is not scanned again, so macros do not nest.
        if (const ZelPathEntry* row = ZelFindPathRow(name, static_cast<size_t>(close - name))) out.Put(row->path);
        p = close + 1;
    }
    return !out.cut();
}

void ZelPathToAbsolute(const WCHAR* source, WCHAR* destination) { ZelExpandPathMacros(source, destination); }

void ZelPathToRelative(const WCHAR* source, WCHAR* destination) {
    if (!destination) return;
    PathOut out(destination);
    const ZelPathEntry* rows = ZelPathTableRows();
    if (!source || !rows) return;
    // The first row in table order decides, not the longest value; a row with an empty value
    // would begin every path, so it matches nothing.
    for (const ZelPathEntry* row = rows; row->name[0]; ++row) {
        size_t length = wcslen(row->path);
        if (length == 0 || _ustrnicmp(row->path, source, static_cast<unsigned>(length)) != 0) continue;
        out.Put(u"${");
        out.Put(row->name);
        out.Put(u'}');
        out.Put(source + length);
        return;
    }
}
