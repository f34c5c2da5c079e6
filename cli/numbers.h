// The one reader of numeric arguments: the whole text, in one base, within a range.
#ifndef ZEL_CLI_NUMBERS_H
#define ZEL_CLI_NUMBERS_H

#include <string>

enum class NumberBase {
    kDecimal,      // 0-9 only
    kHex,          // hexadecimal digits, "0x" optional
    kDecimalOrHex  // decimal, or hexadecimal after "0x"
};

// True when text is a number of base from min to max: digits only, a '-' only where min is below
// zero, no '+', no blanks, nothing after. Otherwise false, with a sentence that names the
// argument (what), the text and the range in problem.
bool ParseNumber(const std::string& what, const std::string& text, long long min, long long max, NumberBase base,
                 long long& value, std::string& problem);

#endif  // ZEL_CLI_NUMBERS_H
