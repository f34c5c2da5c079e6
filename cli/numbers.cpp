#include "numbers.h"

#include <cstdio>

namespace {

int DigitValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return 99;
}

std::string Shown(long long value, bool hex) {
    char text[32];
    if (hex && value >= 0) snprintf(text, sizeof text, "0x%llX", value);
    else snprintf(text, sizeof text, "%lld", value);
    return text;
}

}  // namespace

bool ParseNumber(const std::string& what, const std::string& text, long long min, long long max, NumberBase base,
                 long long& value, std::string& problem) {
    size_t at = 0;
    const bool negative = !text.empty() && text[0] == '-' && min < 0;
    if (negative) ++at;
    unsigned radix = base == NumberBase::kHex ? 16 : 10;
    if (base != NumberBase::kDecimal && text.size() > at + 2 && text[at] == '0' && (text[at + 1] | 0x20) == 'x') {
        radix = 16;
        at += 2;
    }
    // The magnitude may reach one past max, for -min of the widest range.
    unsigned long long magnitude = 0;
    const unsigned long long limit = negative ? 0ULL - static_cast<unsigned long long>(min)
                                              : static_cast<unsigned long long>(max < 0 ? 0 : max);
    bool valid = at < text.size();
    for (size_t i = at; valid && i < text.size(); ++i) {
        const int digit = DigitValue(text[i]);
        if (digit >= static_cast<int>(radix)) valid = false;
        else if (static_cast<unsigned>(digit) > limit || magnitude > (limit - static_cast<unsigned>(digit)) / radix)
            valid = false;
        else magnitude = magnitude * radix + static_cast<unsigned>(digit);
    }
    if (valid) {
        value = negative ? static_cast<long long>(0ULL - magnitude) : static_cast<long long>(magnitude);
        valid = value >= min && value <= max;
    }
    if (valid) return true;
    const bool hex = base != NumberBase::kDecimal;
    const char* kind = base == NumberBase::kHex ? "a hexadecimal number" : base == NumberBase::kDecimal
                                                                               ? "a decimal number"
                                                                               : "a number (decimal, or hexadecimal with 0x)";
    problem = what + " '" + text + "' is not " + kind + " from " + Shown(min, hex) + " to " + Shown(max, hex);
    return false;
}
