// The run-time's multi-byte character tests, over the ANSI code page.
#include "platform/mbcs.h"

#include <cctype>

#include "platform/win32.h"

namespace {

constexpr BYTE kKoreanLead[][2] = {{0x81, 0xFE}};
constexpr BYTE kJapaneseLead[][2] = {{0x81, 0x9F}, {0xE0, 0xFC}};
constexpr BYTE kSimplifiedChineseLead[][2] = {{0x81, 0xFE}};
constexpr BYTE kTraditionalChineseLead[][2] = {{0x81, 0xFE}};
constexpr BYTE kJohabLead[][2] = {{0x84, 0xD3}, {0xD8, 0xDE}, {0xE0, 0xF9}};

template <size_t N>
constexpr ZelMbcsPage Page(UINT codePage, const BYTE (&ranges)[N][2], unsigned space) {
    return ZelMbcsPage(codePage, ranges, N, space);
}

constexpr ZelMbcsPage kKorean = Page(949, kKoreanLead, 0xA1A1);
constexpr ZelMbcsPage kJapanese = Page(932, kJapaneseLead, 0x8140);
constexpr ZelMbcsPage kSimplifiedChinese = Page(936, kSimplifiedChineseLead, 0xA1A1);
constexpr ZelMbcsPage kTraditionalChinese = Page(950, kTraditionalChineseLead, 0xA140);
constexpr ZelMbcsPage kJohab = Page(1361, kJohabLead, 0xD931);
constexpr ZelMbcsPage kSingleByte(0, nullptr, 0, 0);

static_assert(kJapanese.IsLead(0x9F) && !kJapanese.IsLead(0xA0) && kJapanese.IsLead(0xE0));
static_assert(!kKorean.IsLead(0x80) && kKorean.IsLead(0xFE) && !kKorean.IsLead(0xFF));

}  // namespace

bool ZelMbcsPage::IsSpace(unsigned c) const {
    if (c < 0x80) return std::isspace(static_cast<int>(c)) != 0;
    return space_ && c == space_;
}

const ZelMbcsPage& ZelPlatformMbcsPage() {
    switch (GetACP()) {
    case 949:
        return kKorean;
    case 932:
        return kJapanese;
    case 936:
        return kSimplifiedChinese;
    case 950:
        return kTraditionalChinese;
    case 1361:
        return kJohab;
    default:
        return kSingleByte;
    }
}

int _ismbblead(unsigned int c) { return c <= 0xFF && ZelPlatformMbcsPage().IsLead(static_cast<BYTE>(c)); }

int _ismbcspace(unsigned int c) { return ZelPlatformMbcsPage().IsSpace(c); }

unsigned char* _mbsinc(const unsigned char* current) {
    if (!current) return nullptr;
    return const_cast<unsigned char*>(current + ZelPlatformMbcsPage().CharLength(current));
}

size_t _mbclen(const unsigned char* c) { return ZelPlatformMbcsPage().CharLength(c); }
