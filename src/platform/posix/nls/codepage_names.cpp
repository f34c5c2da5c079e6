// Code page numbers and the iconv names that convert them.
#include "platform/posix/nls/codepage_names.h"

#include <algorithm>
#include <iterator>

namespace {
using K = ZelCodePageKind;

// Sorted by number.
constexpr ZelCodePage kCodePages[] = {
    {437, "CP437", K::Iconv, false},
    {737, "CP737", K::Iconv, false},
    {775, "CP775", K::Iconv, false},
    {850, "CP850", K::Iconv, false},
    {852, "CP852", K::Iconv, false},
    {855, "CP855", K::Iconv, false},
    {857, "CP857", K::Iconv, false},
    {858, "CP858", K::Iconv, false},
    {860, "CP860", K::Iconv, false},
    {861, "CP861", K::Iconv, false},
    {862, "CP862", K::Iconv, false},
    {863, "CP863", K::Iconv, false},
    {864, "CP864", K::Iconv, false},
    {865, "CP865", K::Iconv, false},
    {866, "CP866", K::Iconv, false},
    {869, "CP869", K::Iconv, false},
    {874, "CP874", K::Iconv, false},
    {932, "CP932", K::Iconv, true},
    {936, "CP936", K::Iconv, true},
    {949, "CP949", K::Iconv, true},
    {950, "CP950", K::Iconv, true},
    {1250, "CP1250", K::Iconv, false},
    {1251, "CP1251", K::Iconv, false},
    {1252, "CP1252", K::Iconv, false},
    {1253, "CP1253", K::Iconv, false},
    {1254, "CP1254", K::Iconv, false},
    {1255, "CP1255", K::Iconv, false},
    {1256, "CP1256", K::Iconv, false},
    {1257, "CP1257", K::Iconv, false},
    {1258, "CP1258", K::Iconv, false},
    {1361, "JOHAB", K::Iconv, true},
    {10000, "MACINTOSH", K::Iconv, false},
    {20127, "ASCII", K::Iconv, false},
    {20866, "KOI8-R", K::Iconv, false},
    {20932, "EUC-JP", K::Iconv, true},
    {20936, "GB2312", K::Iconv, true},
    {21866, "KOI8-U", K::Iconv, false},
    {28591, "ISO-8859-1", K::Iconv, false},
    {28592, "ISO-8859-2", K::Iconv, false},
    {28593, "ISO-8859-3", K::Iconv, false},
    {28594, "ISO-8859-4", K::Iconv, false},
    {28595, "ISO-8859-5", K::Iconv, false},
    {28596, "ISO-8859-6", K::Iconv, false},
    {28597, "ISO-8859-7", K::Iconv, false},
    {28598, "ISO-8859-8", K::Iconv, false},
    {28599, "ISO-8859-9", K::Iconv, false},
    {28600, "ISO-8859-10", K::Iconv, false},
    {28601, "ISO-8859-11", K::Iconv, false},
    {28603, "ISO-8859-13", K::Iconv, false},
    {28604, "ISO-8859-14", K::Iconv, false},
    {28605, "ISO-8859-15", K::Iconv, false},
    {28606, "ISO-8859-16", K::Iconv, false},
    {51932, "EUC-JP", K::Iconv, true},
    {51936, "EUC-CN", K::Iconv, true},
    {51949, "EUC-KR", K::Iconv, true},
    {54936, "GB18030", K::Iconv, true},
    {65000, "UTF-7", K::Utf7, false},
    {65001, nullptr, K::Utf8, false},
};
}  // namespace

const ZelCodePage* ZelFindCodePage(UINT codePage) {
    auto it = std::lower_bound(std::begin(kCodePages), std::end(kCodePages), codePage,
                               [](const ZelCodePage& entry, UINT value) { return entry.codePage < value; });
    if (it == std::end(kCodePages) || it->codePage != codePage) return nullptr;
    return it;
}
