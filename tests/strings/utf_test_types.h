// What the UTF converter suites share: text types, the converters' shape and a run's outcome.
#ifndef ZEL_TESTS_STRINGS_UTF_TEST_TYPES_H
#define ZEL_TESTS_STRINGS_UTF_TEST_TYPES_H

#include <gtest/gtest.h>

#include <zel/strings.h>

#include <ostream>
#include <vector>

namespace utf_test {

using Bytes = std::vector<ZelUTF8>;
using Units16 = std::vector<ZelUTF16>;
using Units32 = std::vector<ZelUTF32>;

template <typename From, typename To>
using Converter = ZelConvResult (*)(const From**, const From*, To**, To*, DWORD);

template <typename To>
struct Outcome {
    ZelConvResult status;
    size_t consumed;  // source units behind the source pointer
    std::vector<To> out;
    bool operator==(const Outcome&) const = default;
};

template <typename To>
void PrintTo(const Outcome<To>& o, std::ostream* os) {
    *os << "status " << o.status << ", " << o.consumed << " consumed, wrote " << testing::PrintToString(o.out);
}

}  // namespace utf_test

#endif  // ZEL_TESTS_STRINGS_UTF_TEST_TYPES_H
