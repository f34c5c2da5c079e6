// The run-time's wide-string operations on 16-bit units. The platform's wchar_t is 32 bits here,
// so the library never uses it: these overloads take WCHAR (char16_t) and live once, in this file's
// source, for every part of the library.
#ifndef ZEL_STRINGS_WSTR_H
#define ZEL_STRINGS_WSTR_H

#include <zel/wintypes.h>

#include <cstdarg>
#include <cstddef>

size_t wcslen(const WCHAR* s);
int wcscmp(const WCHAR* a, const WCHAR* b);
int wcsncmp(const WCHAR* a, const WCHAR* b, size_t count);
WCHAR* wcschr(const WCHAR* s, WCHAR c);
WCHAR* wcsrchr(const WCHAR* s, WCHAR c);
WCHAR* wcsstr(const WCHAR* haystack, const WCHAR* needle);
WCHAR* wcscpy(WCHAR* dest, const WCHAR* src);
// Copies at most count units and pads with zeros; like the run-time's, no terminator is added when
// the source has count units or more.
WCHAR* wcsncpy(WCHAR* dest, const WCHAR* src, size_t count);
// Splits at any unit of delimiters; a null string continues from the position kept per thread.
WCHAR* wcstok(WCHAR* s, const WCHAR* delimiters);
// Upper-cases a to z in place.
WCHAR* _wcsupr(WCHAR* s);

// Path buffers of the run-time's split and make: drive 3, directory and name and extension 256
// units each, terminators included.
#define _MAX_PATH 260
#define _MAX_DRIVE 3
#define _MAX_DIR 256
#define _MAX_FNAME 256
#define _MAX_EXT 256
void _wsplitpath(const WCHAR* path, WCHAR* drive, WCHAR* dir, WCHAR* fname, WCHAR* ext);
void _wmakepath(WCHAR* path, const WCHAR* drive, const WCHAR* dir, const WCHAR* fname, const WCHAR* ext);

// The environment variable as 16-bit text, or null when it is not set. The pointer stays valid
// until the same variable is asked for again on this thread.
WCHAR* _wgetenv(const WCHAR* name);

// A small formatter for the library's own formats: %s (16-bit text), %S (8-bit text), %c, %d, %i,
// %u, %x, %X with an optional 0 flag and width, and %%. Writes at most count units; returns the
// number written without the terminator, or -1 when the text did not fit, in which case count
// units are written and no terminator is added.
int _snwprintf(WCHAR* buffer, size_t count, const WCHAR* format, ...);
int _vsnwprintf(WCHAR* buffer, size_t count, const WCHAR* format, va_list args);

#endif  // ZEL_STRINGS_WSTR_H
