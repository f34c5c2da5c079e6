// The run-time's multi-byte character tests. The multi-byte code page of the process follows the
// ANSI code page (GetACP, so ZEL_ACP chooses it); the library never sets it. Double-byte pages
// have lead bytes in fixed ranges and one ideographic space; every other page is single-byte.
//
// A lead byte directly before the terminator has no trail byte: it is a character of one byte
// here, so that no walk over a string ever steps past its terminator.
#ifndef ZEL_PLATFORM_MBCS_H
#define ZEL_PLATFORM_MBCS_H

#include <zel/wintypes.h>

#include <cstddef>
#include <cstdint>

// The character classes of one multi-byte code page. The bounded string helpers take the current
// page once per call and ask it for every character.
class ZelMbcsPage {
public:
    constexpr ZelMbcsPage(UINT codePage, const BYTE (*leadRanges)[2], size_t rangeCount, unsigned ideographicSpace)
        : codePage_(codePage), space_(ideographicSpace) {
        for (size_t r = 0; r < rangeCount; ++r)
            for (unsigned b = leadRanges[r][0]; b <= leadRanges[r][1]; ++b) lead_[b >> 5] |= 1u << (b & 31);
    }

    // The code page, or 0 for a single-byte one.
    constexpr UINT CodePage() const { return codePage_; }

    constexpr bool IsLead(BYTE byte) const { return (lead_[byte >> 5] >> (byte & 31)) & 1u; }

    // Bytes of the character at p: 2 for a lead byte with its trail byte, else 1 (the terminator
    // and a lone lead byte before it included). Reads p[1] only when p[0] is a lead byte.
    constexpr size_t CharLength(const BYTE* p) const { return IsLead(p[0]) && p[1] ? 2 : 1; }

    // The character at p as one number, the lead byte in the high half.
    constexpr unsigned CharAt(const BYTE* p) const {
        return CharLength(p) == 2 ? (unsigned{p[0]} << 8) | p[1] : p[0];
    }

    // White space: a byte below 0x80 that isspace accepts, or the page's ideographic space.
    bool IsSpace(unsigned c) const;

private:
    UINT codePage_;
    unsigned space_;  // lead byte in the high half; 0 on a single-byte page
    uint32_t lead_[8] = {};
};

// The page of the current ANSI code page. Cheap enough to ask once per string operation.
const ZelMbcsPage& ZelPlatformMbcsPage();

// Whether the byte c is a lead byte of the current page; a value above 0xFF is none.
int _ismbblead(unsigned int c);
// Whether the character c, the lead byte in the high half for a double-byte one, is white space.
int _ismbcspace(unsigned int c);
// The character after the one at current; null stays null.
unsigned char* _mbsinc(const unsigned char* current);
// Bytes of the character at c, 1 or 2.
size_t _mbclen(const unsigned char* c);

#endif  // ZEL_PLATFORM_MBCS_H
