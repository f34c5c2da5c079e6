// Searches of the KS X 1001 syllable and Jamo lists.
#include "codetables/hangul.h"

const WORD* ZelGetKSTblPtr() { return KsTbl; }

// A miss gives the last position looked at, so the result always indexes KsTbl; only a comparison
// with the entry tells a hit.
int KsSearch(WORD code) {
    int low = 0;
    int high = kZelKsCount - 1;
    int mid = 0;
    while (low <= high) {
        mid = (low + high) / 2;
        if (KsTbl[mid] == code) break;
        if (code < KsTbl[mid]) {
            high = mid - 1;
        } else {
            low = mid + 1;
        }
    }
    return mid;
}

int JasoSearch(WORD code) {
    int low = 0;
    int high = kZelJasoCount - 1;
    while (low <= high) {
        int mid = (low + high) / 2;
        if (JasoTbl[mid] == code) return mid;
        if (code < JasoTbl[mid]) {
            high = mid - 1;
        } else {
            low = mid + 1;
        }
    }
    return -1;
}

// 0xD3C5, the last Jamo code, counts as KS too.
int IsInKs(WORD code) {
    if (code == JasoTbl[kZelJasoCount - 1]) return 1;
    return KsTbl[KsSearch(code)] == code ? 1 : 0;
}
