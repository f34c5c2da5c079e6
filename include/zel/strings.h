// Strings and text codecs: bounded string helpers, UTF converters, Base64 and hexadecimal forms.
#ifndef ZEL_STRINGS_H
#define ZEL_STRINGS_H

#include <zel/wintypes.h>

// ---------------------------------------------------------------------------------------------
// Bounded string helpers

// ---------------------------------------------------------------------------------------------
// UTF converters

// ---------------------------------------------------------------------------------------------
// Base64 and hexadecimal forms

#endif  // ZEL_STRINGS_H
