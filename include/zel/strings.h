// Strings and text codecs: bounded string helpers, UTF converters, Base64 and hexadecimal forms.
#ifndef ZEL_STRINGS_H
#define ZEL_STRINGS_H

#include <zel/wintypes.h>

// ---------------------------------------------------------------------------------------------
// Bounded string helpers
//
// Three families: ustr on 16-bit units, sstr on bytes, mstr on characters of the process's
// multi-byte code page (a lead byte and its trail byte form one character, never split; a lead
// byte right before the terminator counts as a character of one byte). size is the capacity of
// the whole buffer, terminator included, in units (ustr) or bytes. A copy, append, cut or trim
// given a null string gives 0 and writes nothing.

// Copies while more than the next character's width of room is left, then terminates the copy
// unless size is 0 (a negative size acts as 1). Gives 1 when the source's terminator itself was
// copied, so a source of exactly size - 1 units is copied whole and gives 0. mstrlcpy leaves the
// last byte of the buffer unwritten when a double-byte character no longer fits.
ZEL_API int ustrlcpy(WCHAR* dest, const WCHAR* src, int size);
ZEL_API int mstrlcpy(char* dest, const char* src, int size);
ZEL_API int sstrlcpy(char* dest, const char* src, int size);

// Appends src behind the string in dest, a buffer of size units in all. Gives 0 and leaves dest
// alone when it has no room for one more character and a terminator; else the result of the
// family's lcpy on the free rest.
ZEL_API int ustrlcat(WCHAR* dest, const WCHAR* src, int size);
ZEL_API int mstrlcat(char* dest, const char* src, int size);
ZEL_API int sstrlcat(char* dest, const char* src, int size);

// Cuts the string in place to fit in size units with its terminator. Gives 1 when it already
// fitted; mstrcut gives 0 also for a string of exactly size - 1 bytes, which stays unchanged, and
// never leaves a lead byte without its trail byte. A size of 0 leaves the string alone and a
// negative size empties it, both giving 0.
ZEL_API int ustrcut(WCHAR* s, int size);
ZEL_API int mstrcut(char* s, int size);
ZEL_API int sstrcut(char* s, int size);

// Remove white space from the front (triml) or the end (trimr) in place; 1 when some was removed.
// White space: the Unicode white-space units (ustr); a byte below 0x80 that isspace accepts
// (sstr, where any byte of 0x80 or above ends the trim); that or the code page's double-byte
// ideographic space (mstr).
ZEL_API int ustrtriml(WCHAR* s);
ZEL_API int mstrtriml(char* s);
ZEL_API int sstrtriml(char* s);
ZEL_API int ustrtrimr(WCHAR* s);
ZEL_API int mstrtrimr(char* s);
ZEL_API int sstrtrimr(char* s);

// Case-blind comparison where only a to z fold, to A to Z: the difference of the first folded
// units that differ, or 0. _ustrnicmp looks at no more than count units and gives 0 for a count
// of 0. A null string compares as an empty one.
ZEL_API int _ustricmp(const WCHAR* a, const WCHAR* b);
ZEL_API int _ustrnicmp(const WCHAR* a, const WCHAR* b, unsigned int count);

// ---------------------------------------------------------------------------------------------
// UTF converters

// UTF-8 text is a run of bytes, UTF-16 text a run of 16-bit units, UTF-32 text a run of 32-bit
// values, all in the byte order of the machine. Texts are given by a start and an end, never by a
// terminator: a zero unit is a character like any other.
typedef BYTE ZelUTF8;
typedef WCHAR ZelUTF16;
typedef DWORD ZelUTF32;

// Result of every converter.
enum ZelConvResult : int {
    ZelConvOk = 0,               // the source was consumed to its end
    ZelConvSourceExhausted = 1,  // the source ends inside a UTF-8 sequence (converters from UTF-8)
    ZelConvTargetExhausted = 2,  // the target has no room for the next character
    ZelConvSourceIllegal = 3,    // the source holds what may not stand there
};

// The last argument of the converters: 0 is strict, any other value lenient.
enum ZelConvFlags : DWORD { ZelConvStrict = 0, ZelConvLenient = 1 };

#define ZEL_SURROGATE_HIGH_FIRST 0xD800u
#define ZEL_SURROGATE_HIGH_LAST 0xDBFFu
#define ZEL_SURROGATE_LOW_FIRST 0xDC00u
#define ZEL_SURROGATE_LOW_LAST 0xDFFFu
#define ZEL_SURROGATE_SHIFT 10
#define ZEL_SURROGATE_MASK 0x3FFu
#define ZEL_PLANE_BASE 0x10000u          // first value beyond the basic plane
#define ZEL_BASIC_PLANE_LAST 0xFFFFu
#define ZEL_UNICODE_LAST 0x10FFFFu
#define ZEL_REPLACEMENT_CHAR 0xFFFDu

// The converters work from *source up to sourceEnd into *target up to targetEnd, one character at
// a time, and allocate nothing. On return *source is the first unit not consumed and *target the
// first place not written. Every stop leaves both at a character boundary, so that the caller can
// resume there with more target room or more source text; the exception is a strict run of
// ZelConvertUTF32toUTF16, which passes over values above 0x10FFFF and reports them at the end.
// A source at or behind its end gives ZelConvOk and changes nothing.
//
// From UTF-16, a high surrogate followed by a low one makes one character. Any other surrogate
// stops a strict run with ZelConvSourceIllegal and passes as a value in a lenient run; a high
// surrogate that is the last unit of the source passes in both.
//
// From UTF-8, a sequence that the source cuts off gives ZelConvSourceExhausted, tested before its
// legality; a malformed or overlong sequence, or one beyond U+10FFFF, gives ZelConvSourceIllegal
// in both modes. The three-byte forms of the surrogates decode to their values: to UTF-16 a strict
// run refuses them, a lenient run writes them as single units.
//
// To UTF-8, values from 0x110000 to 0x1FFFFF take four bytes and values from 0x200000 up become
// U+FFFD, with no error in either mode; surrogates from UTF-32 stop a strict run.
//
// To UTF-16 from UTF-32, surrogate values stop a strict run; values above 0x10FFFF are passed
// over in a strict run (the result is then ZelConvSourceIllegal unless a later stop replaces it)
// and become U+FFFD in a lenient run.
ZEL_API ZelConvResult ZelConvertUTF32toUTF16(const ZelUTF32** source, const ZelUTF32* sourceEnd,
                                             ZelUTF16** target, ZelUTF16* targetEnd, DWORD flags);
ZEL_API ZelConvResult ZelConvertUTF16toUTF32(const ZelUTF16** source, const ZelUTF16* sourceEnd,
                                             ZelUTF32** target, ZelUTF32* targetEnd, DWORD flags);
ZEL_API ZelConvResult ZelConvertUTF16toUTF8(const ZelUTF16** source, const ZelUTF16* sourceEnd,
                                            ZelUTF8** target, ZelUTF8* targetEnd, DWORD flags);
ZEL_API ZelConvResult ZelConvertUTF8toUTF16(const ZelUTF8** source, const ZelUTF8* sourceEnd,
                                            ZelUTF16** target, ZelUTF16* targetEnd, DWORD flags);
ZEL_API ZelConvResult ZelConvertUTF32toUTF8(const ZelUTF32** source, const ZelUTF32* sourceEnd,
                                            ZelUTF8** target, ZelUTF8* targetEnd, DWORD flags);
// The flags are not read: every value a legal sequence gives is written.
ZEL_API ZelConvResult ZelConvertUTF8toUTF32(const ZelUTF8** source, const ZelUTF8* sourceEnd,
                                            ZelUTF32** target, ZelUTF32* targetEnd, DWORD flags);

// Surrogate pair arithmetic, unchecked: halves outside their ranges and values above 0x10FFFF
// give whatever the 32-bit arithmetic gives. A packed pair holds the high half in its upper 16
// bits and the low half in its lower 16 bits.
ZEL_API DWORD _MAKE_UCSCHAR(WCHAR high, WCHAR low);
ZEL_API DWORD _SURCHAR_TO_UCSCHAR(DWORD pair);
// 0 for a value below 0x10000, otherwise its packed pair.
ZEL_API DWORD _UCSCHAR_TO_SURCHAR(DWORD value);

// ---------------------------------------------------------------------------------------------
// Base64 and hexadecimal forms

// Base64 of byte data, in lines of 72 characters each ended by a line feed, then a zero byte.
// *output is either null, to have the text allocated with malloc (the caller frees it with free),
// or the caller's own buffer, which must hold 4 characters for every 3 bytes or part of them, a
// line feed for every 54 bytes and the terminator. Gives the number of characters written without
// the terminator; 0 when malloc fails, in which case *output stays null.
ZEL_API int ZelAsciiToBase64(const char* input, int length, char** output);
// Decodes Base64 text; white space is passed over, and = pads a last group of 2 or 3 characters.
// Gives the number of bytes, and 0 for null, empty or bad text (alphabet characters behind the
// padding included) or text that decodes to nothing; *output is then left alone. Otherwise a null
// *output receives a buffer of exactly that many bytes from malloc, for the caller to free (it
// stays null when malloc fails, and the length is given all the same), and a buffer of the
// caller's own must hold them. No terminator is added.
ZEL_API int ZelBase64ToAscii(const char* text, char** output);

// Writes "U+" and four lower-case hexadecimal digits for every unit, and a zero byte: 4n + 3 bytes
// for n units. Gives the length without the terminator, or 0 with an empty string left in the
// buffer when size is too small.
ZEL_API int ZelUniStrToHexStr(const WCHAR* text, char* output, int size);
// Reads "U+" (capital U) and groups of four digits, one unit each; a last group of 2 or 3 digits
// still makes a unit. Letters count on past f (g is 16) and other characters as 0. The output
// receives strlen(text) / 4 units and a zero unit; gives their number, or 0 when the text is shorter
// than 6 bytes or lacks the prefix.
ZEL_API int ZelHexStrToUniStr(const char* text, WCHAR* output);
// Decodes the escapes /uXXXX and /UXXXX (four hexadecimal digits) into one unit each, provided the
// text holds the small form "/u" somewhere; otherwise it is copied as it is. Anything else, broken
// escapes included, is copied. The output may be the same array as the text, and is never longer.
// Gives the length of the output in units.
ZEL_API int ZelHexChrToUniStr(const WCHAR* text, WCHAR* output);

#endif  // ZEL_STRINGS_H
