// Code tables and conversion: Kana and width conversion.
#ifndef ZEL_CODETABLES_H
#define ZEL_CODETABLES_H

#include <zel/wintypes.h>

// ---------------------------------------------------------------------------------------------
// Kana and width conversion

#endif  // ZEL_CODETABLES_H
