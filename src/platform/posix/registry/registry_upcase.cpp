// Case-blind comparison of registry names: one unit at a time, by the simple upper-case mappings of
// the scripts that have case (Latin, Greek, Coptic, Cyrillic, Armenian, Glagolitic, the enclosed and
// full-width Latin letters, Roman numerals). Letters that would upper-case into another script's or
// into plain ASCII (dotless i, long s, the Greek symbol variants) stay as they are, so that a name
// of plain ASCII letters matches only its ASCII case variants.
#include "platform/posix/registry/registry_tree.h"

#include <iterator>

namespace zelreg {
namespace {

struct CaseRange {
    char16_t first;
    char16_t last;
    int16_t delta;
    uint8_t stride;  // 1: every unit of the range; 2: every other unit, from first
};

// Sorted by first, not overlapping.
constexpr CaseRange kRanges[] = {
    {0x0061, 0x007A, -32, 1},   {0x00E0, 0x00F6, -32, 1},   {0x00F8, 0x00FE, -32, 1},
    {0x00FF, 0x00FF, 121, 1},   {0x0101, 0x012F, -1, 2},    {0x0133, 0x0137, -1, 2},
    {0x013A, 0x0148, -1, 2},    {0x014B, 0x0177, -1, 2},    {0x017A, 0x017E, -1, 2},
    {0x0180, 0x0180, 195, 1},   {0x0183, 0x0185, -1, 2},    {0x0188, 0x0188, -1, 1},
    {0x018C, 0x018C, -1, 1},    {0x0192, 0x0192, -1, 1},    {0x0195, 0x0195, 97, 1},
    {0x0199, 0x0199, -1, 1},    {0x019A, 0x019A, 163, 1},   {0x019E, 0x019E, 130, 1},
    {0x01A1, 0x01A5, -1, 2},    {0x01A8, 0x01A8, -1, 1},    {0x01AD, 0x01AD, -1, 1},
    {0x01B0, 0x01B0, -1, 1},    {0x01B4, 0x01B6, -1, 2},    {0x01B9, 0x01B9, -1, 1},
    {0x01BD, 0x01BD, -1, 1},    {0x01BF, 0x01BF, 56, 1},    {0x01C5, 0x01C5, -1, 1},
    {0x01C6, 0x01C6, -2, 1},    {0x01C8, 0x01C8, -1, 1},    {0x01C9, 0x01C9, -2, 1},
    {0x01CB, 0x01CB, -1, 1},    {0x01CC, 0x01CC, -2, 1},    {0x01CE, 0x01DC, -1, 2},
    {0x01DD, 0x01DD, -79, 1},   {0x01DF, 0x01EF, -1, 2},    {0x01F2, 0x01F2, -1, 1},
    {0x01F3, 0x01F3, -2, 1},    {0x01F5, 0x01F5, -1, 1},    {0x01F9, 0x021F, -1, 2},
    {0x0223, 0x0233, -1, 2},    {0x023C, 0x023C, -1, 1},    {0x0242, 0x0242, -1, 1},
    {0x0247, 0x024F, -1, 2},    {0x0253, 0x0253, -210, 1},  {0x0254, 0x0254, -206, 1},
    {0x0256, 0x0257, -205, 1},  {0x0259, 0x0259, -202, 1},  {0x025B, 0x025B, -203, 1},
    {0x0260, 0x0260, -205, 1},  {0x0263, 0x0263, -207, 1},  {0x0268, 0x0268, -209, 1},
    {0x0269, 0x0269, -211, 1},  {0x026F, 0x026F, -211, 1},  {0x0272, 0x0272, -213, 1},
    {0x0275, 0x0275, -214, 1},  {0x0280, 0x0280, -218, 1},  {0x0283, 0x0283, -218, 1},
    {0x0288, 0x0288, -218, 1},  {0x0289, 0x0289, -69, 1},   {0x028A, 0x028B, -217, 1},
    {0x028C, 0x028C, -71, 1},   {0x0292, 0x0292, -219, 1},  {0x0371, 0x0373, -1, 2},
    {0x0377, 0x0377, -1, 1},    {0x037B, 0x037D, 130, 1},   {0x03AC, 0x03AC, -38, 1},
    {0x03AD, 0x03AF, -37, 1},   {0x03B1, 0x03C1, -32, 1},   {0x03C2, 0x03C2, -31, 1},
    {0x03C3, 0x03CB, -32, 1},   {0x03CC, 0x03CC, -64, 1},   {0x03CD, 0x03CE, -63, 1},
    {0x03D9, 0x03EF, -1, 2},    {0x03F8, 0x03F8, -1, 1},    {0x03FB, 0x03FB, -1, 1},
    {0x0430, 0x044F, -32, 1},   {0x0450, 0x045F, -80, 1},   {0x0461, 0x0481, -1, 2},
    {0x048B, 0x04BF, -1, 2},    {0x04C2, 0x04CE, -1, 2},    {0x04CF, 0x04CF, -15, 1},
    {0x04D1, 0x052F, -1, 2},    {0x0561, 0x0586, -48, 1},   {0x1E01, 0x1E95, -1, 2},
    {0x1EA1, 0x1EFF, -1, 2},    {0x1F00, 0x1F07, 8, 1},     {0x1F10, 0x1F15, 8, 1},
    {0x1F20, 0x1F27, 8, 1},     {0x1F30, 0x1F37, 8, 1},     {0x1F40, 0x1F45, 8, 1},
    {0x1F51, 0x1F57, 8, 2},     {0x1F60, 0x1F67, 8, 1},     {0x1F70, 0x1F71, 74, 1},
    {0x1F72, 0x1F75, 86, 1},    {0x1F76, 0x1F77, 100, 1},   {0x1F78, 0x1F79, 128, 1},
    {0x1F7A, 0x1F7B, 112, 1},   {0x1F7C, 0x1F7D, 126, 1},   {0x1FB0, 0x1FB1, 8, 1},
    {0x1FD0, 0x1FD1, 8, 1},     {0x1FE0, 0x1FE1, 8, 1},     {0x1FE5, 0x1FE5, 7, 1},
    {0x214E, 0x214E, -28, 1},   {0x2170, 0x217F, -16, 1},   {0x2184, 0x2184, -1, 1},
    {0x24D0, 0x24E9, -26, 1},   {0x2C30, 0x2C5F, -48, 1},   {0x2C61, 0x2C61, -1, 1},
    {0x2C68, 0x2C6C, -1, 2},    {0x2C73, 0x2C73, -1, 1},    {0x2C76, 0x2C76, -1, 1},
    {0x2C81, 0x2CE3, -1, 2},    {0x2CEC, 0x2CEE, -1, 2},    {0x2CF3, 0x2CF3, -1, 1},
    {0xA641, 0xA66D, -1, 2},    {0xA681, 0xA69B, -1, 2},    {0xA723, 0xA72F, -1, 2},
    {0xA733, 0xA76F, -1, 2},    {0xA77A, 0xA77C, -1, 2},    {0xA77F, 0xA787, -1, 2},
    {0xA78C, 0xA78C, -1, 1},    {0xA791, 0xA793, -1, 2},    {0xA797, 0xA7A9, -1, 2},
    {0xFF41, 0xFF5A, -32, 1},
};

}  // namespace

char16_t UpcaseUnit(char16_t unit) {
    if (unit < 0x61) return unit;
    if (unit <= 0x7A) return static_cast<char16_t>(unit - 32);
    size_t low = 0, high = std::size(kRanges);
    while (low < high) {
        size_t mid = (low + high) / 2;
        if (kRanges[mid].last < unit)
            low = mid + 1;
        else
            high = mid;
    }
    if (low == std::size(kRanges)) return unit;
    const CaseRange& range = kRanges[low];
    if (unit < range.first || (unit - range.first) % range.stride != 0) return unit;
    return static_cast<char16_t>(unit + range.delta);
}

std::u16string Fold(std::u16string_view name) {
    std::u16string folded(name);
    for (char16_t& unit : folded) unit = UpcaseUnit(unit);
    return folded;
}

}  // namespace zelreg
