// The 8-bit road of the adapters. On a system of the 95 family the adapters hand the system its
// ANSI code page: a 16-bit argument becomes 8-bit text (four bytes per character plus four), and
// 8-bit results come back as 16-bit text (three bytes per byte plus four). Both conversions go
// through the library's own code page front end with code page 0, and neither result is looked
// at: what the conversion leaves in the buffer is what the call gets.
#ifndef ZEL_PATHS_OS_ANSI_TEXT_H
#define ZEL_PATHS_OS_ANSI_TEXT_H

#include <zel/wintypes.h>

#include <cstddef>

// True on a system of the 95 family (ZelGetWinVersion gives 1, 2 or 3): the 8-bit calls.
bool ZelAnsiMode();

// The size of the local 8-bit output buffers of ANSI mode, and a caller's size cut to it.
constexpr DWORD kZelAnsiResultBytes = MAX_PATH;
inline DWORD ZelAnsiResultSize(DWORD size) { return size < kZelAnsiResultBytes ? size : kZelAnsiResultBytes; }

// A 16-bit argument as 8-bit text; null stays null. Text of a few path lengths stays in the object,
// longer text goes to the heap. When the heap has no room the text is cut to what the object holds.
class ZelNarrowArg {
public:
    explicit ZelNarrowArg(const WCHAR* text);
    ~ZelNarrowArg();
    ZelNarrowArg(const ZelNarrowArg&) = delete;
    ZelNarrowArg& operator=(const ZelNarrowArg&) = delete;

    const char* get() const { return text_; }

private:
    static constexpr size_t kLocalBytes = 4 * MAX_PATH + 4;
    char local_[kLocalBytes];
    char* heap_ = nullptr;
    const char* text_ = nullptr;
};

// 8-bit text from a call as 16-bit text. At most maxBytes bytes are read, so a record field that
// the call left without a terminator stays within its bounds.
class ZelWideResult {
public:
    ZelWideResult(const char* text, size_t maxBytes);
    ~ZelWideResult();
    ZelWideResult(const ZelWideResult&) = delete;
    ZelWideResult& operator=(const ZelWideResult&) = delete;

    const WCHAR* get() const { return text_; }
    // Copies the text with its terminator into buffer, cut to size units; size 0 writes nothing.
    void CopyTo(WCHAR* buffer, size_t size) const;

private:
    static constexpr size_t kLocalUnits = (3 * MAX_PATH + 4) / 2 + 1;
    WCHAR local_[kLocalUnits];
    WCHAR* heap_ = nullptr;
    WCHAR* text_ = local_;
};

#endif  // ZEL_PATHS_OS_ANSI_TEXT_H
