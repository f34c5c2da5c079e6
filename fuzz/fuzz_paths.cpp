// Random text through the path macros, the abbreviation and the mask walk, with a few rows in the
// path table. Every output goes to a buffer of exactly 260 units followed by a canary region that
// must stay untouched, and must be terminated within the 260.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <zel/paths.h>

#include "fuzz_check.h"
#include "strings/wstr.h"

namespace {

constexpr size_t kPath = 260;
constexpr size_t kCanary = 64;
constexpr WCHAR kCanaryUnit = 0xA5A5;

// A path buffer with its canary behind it, on the heap so that the sanitizer sees its end too.
class GuardedPath {
public:
    GuardedPath() : units_(new WCHAR[kPath + kCanary]) { std::fill(units_.get(), units_.get() + kPath + kCanary, kCanaryUnit); }
    WCHAR* get() { return units_.get(); }
    void Verify() const {
        const WCHAR* units = units_.get();
        Check(std::find(units, units + kPath, WCHAR{0}) != units + kPath);
        Check(std::all_of(units + kPath, units + kPath + kCanary, [](WCHAR c) { return c == kCanaryUnit; }));
    }

private:
    std::unique_ptr<WCHAR[]> units_;
};

void RegisterRows() {
    static bool done = false;
    if (done) return;
    done = true;
    ZelRegisterPath(u"Temp", u"c:\\temp");
    ZelRegisterPath(u"A", u"c:\\a");
    ZelRegisterPath(u"Empty", u"");
    static WCHAR longest[kPath];
    for (size_t i = 0; i < kPath - 1; ++i) longest[i] = u'L';
    longest[kPath - 1] = 0;
    ZelRegisterPath(u"Long", longest);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    RegisterRows();
    if (size < 2) return 0;
    // The first byte picks the maximum of the abbreviation; the rest is 16-bit text.
    const int maximum = static_cast<int8_t>(data[0]) * 3;
    const BOOL keepTitle = data[1] & 1;
    const size_t count = (size - 2) / 2;
    auto text = std::make_unique<WCHAR[]>(count + 1);
    std::memcpy(text.get(), data + 2, count * 2);
    text[count] = 0;

    GuardedPath absolute, relative, mask;
    ZelPathToAbsolute(text.get(), absolute.get());
    absolute.Verify();
    ZelPathToRelative(text.get(), relative.get());
    relative.Verify();

    // The abbreviation works in place and never lengthens the text.
    const size_t length = wcslen(text.get());
    auto shortened = std::make_unique<WCHAR[]>(length + 1);
    std::memcpy(shortened.get(), text.get(), (length + 1) * sizeof(WCHAR));
    ZelAbbreviateName(shortened.get(), maximum, keepTitle);
    const size_t shortLength = wcslen(shortened.get());
    Check(shortLength <= length);
    if (length > 0 && maximum >= 0 && shortLength > static_cast<size_t>(maximum))
        Check(keepTitle);  // only a kept title may stay too long

    // The walk stays within the list, however many calls follow its end.
    ZelGetNextMask(text.get(), mask.get());
    for (size_t step = 0; step <= count + 1; ++step) ZelGetNextMask(nullptr, mask.get());
    mask.Verify();
    return 0;
}
