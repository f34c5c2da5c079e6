// The optional pair tables of the main group: language variants, merged into the "cjk" table,
// and further pairs of Unicode and KChar in both directions.
#include <cstdlib>

#include "codetables/code_table_file.h"
#include "codetables/code_tables.h"

ZelCodePair* ChsVariantTbl = nullptr;
ZelCodePair* JpnVariantTbl = nullptr;
ZelCodePair* ChtVariantTbl = nullptr;
ZelCodePair* KorVariantTbl = nullptr;
ZelCodePair* Uni2KCharExtraTbl = nullptr;
ZelCodePair* KChar2UniExtraTbl = nullptr;
DWORD ChsVariantCount = 0, JpnVariantCount = 0, ChtVariantCount = 0, KorVariantCount = 0;
DWORD Uni2KCharExtraCount = 0, KChar2UniExtraCount = 0;

namespace {

struct PairTable {
    int kind;
    ZelCodePair** table;
    DWORD* count;
};

const PairTable kPairTables[] = {
    {kZelKindChs, &ChsVariantTbl, &ChsVariantCount},         {kZelKindJpn, &JpnVariantTbl, &JpnVariantCount},
    {kZelKindCht, &ChtVariantTbl, &ChtVariantCount},         {kZelKindKor, &KorVariantTbl, &KorVariantCount},
    {kZelKindU2k, &Uni2KCharExtraTbl, &Uni2KCharExtraCount}, {kZelKindK2u, &KChar2UniExtraTbl, &KChar2UniExtraCount},
};

// Index of a code point in the "cjk" table, or -1 outside its three ranges.
long CjkIndexOf(WORD codePoint) {
    if (codePoint >= 0x3400 && codePoint <= 0x9FFF) return codePoint - 0x3400;
    if (codePoint >= 0xA700 && codePoint <= 0xA7FF) return codePoint - 0x3B00;
    if (codePoint >= 0xF900 && codePoint <= 0xFAFF) return codePoint - 0x8C00;
    return -1;
}

// A target without a KChar takes its source's; one that has a KChar keeps it.
void MergeVariants(const ZelCodePair* pairs, DWORD count) {
    if (!Uni2KCharCjkTbl) return;
    for (DWORD i = 0; i < count; ++i) {
        long source = CjkIndexOf(pairs[i].first);
        long target = CjkIndexOf(pairs[i].second);
        if (source < 0 || target < 0) continue;
        if (Uni2KCharCjkTbl[source] != kZelNoKChar && Uni2KCharCjkTbl[target] == kZelNoKChar)
            Uni2KCharCjkTbl[target] = Uni2KCharCjkTbl[source];
    }
}

// Reads the pairs of one kind; false when the file can't be opened, its header is bad or the
// memory is short. Pairs that the file doesn't hold whole are left out of the count.
bool ReadPairs(int kind, int number, ZelCodePair** pairs, DWORD* count) {
    WCHAR path[MAX_PATH];
    if (!FindCodeTableFile(kind, &number, path)) return false;
    int descriptor = ZelOpenTableFileWide(path);
    if (descriptor < 0) return false;
    CZelIOFileDesc file(1234);
    file.Attach(descriptor);
    ZelTableHeader header;
    bool good = ZelReadTableHeader(file, number, &header);
    DWORD held = good ? ZelTableElementsInFile(file, header.payloadOffset, 4) : 0;
    DWORD kept = header.count < held ? header.count : held;
    WORD* units = good ? static_cast<WORD*>(std::malloc((kept ? kept : 1) * sizeof(ZelCodePair))) : nullptr;
    if (units) kept = ZelReadTableWords(file, header.payloadOffset, units, kept * 2) / 2;
    ZelCloseTableFile(descriptor);
    if (!units) return false;
    // ZelCodePair is two WORDs in file order, so the units are the pairs.
    static_assert(sizeof(ZelCodePair) == 2 * sizeof(WORD));
    *pairs = reinterpret_cast<ZelCodePair*>(units);
    *count = kept;
    return true;
}

}  // namespace

void LoadVariantTbls(int number) {
    for (const PairTable& entry : kPairTables) {
        ZelCodePair* pairs = nullptr;
        DWORD count = 0;
        if (!ReadPairs(entry.kind, number, &pairs, &count)) continue;
        std::free(*entry.table);
        *entry.table = pairs;
        *entry.count = count;
        if (entry.kind <= kZelKindKor) MergeVariants(pairs, count);
    }
}
