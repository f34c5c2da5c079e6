// Base64 of byte data and the two hexadecimal forms of 16-bit strings.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <zel/strings.h>

namespace {

std::string Encode(const std::string& bytes) {
    char* out = nullptr;
    const int n = ZelAsciiToBase64(bytes.data(), static_cast<int>(bytes.size()), &out);
    std::string text(out, static_cast<size_t>(n));
    EXPECT_EQ(std::strlen(out), text.size());
    std::free(out);
    return text;
}

// The decoded bytes, or "<none>" when nothing was allocated.
std::string Decode(const char* text) {
    char* out = nullptr;
    const int n = ZelBase64ToAscii(text, &out);
    std::string bytes = out ? std::string(out, static_cast<size_t>(n)) : "<none>";
    EXPECT_TRUE(out || n == 0) << text;
    std::free(out);
    return bytes;
}

std::string Bytes(size_t n) {
    std::string s(n, '\0');
    for (size_t i = 0; i < n; ++i) s[i] = static_cast<char>(i * 131 + n);
    return s;
}

TEST(Base64, EncodesGroupsPaddingAndLines) {
    const std::pair<std::string, std::string> cases[] = {
        {"Man", "TWFu"}, {"M", "TQ=="}, {"Ma", "TWE="}, {"", ""}, {std::string("\xFF\x00\xFB", 3), "/wD7"}};
    for (const auto& [bytes, text] : cases) EXPECT_EQ(Encode(bytes), text);
    // 54 bytes fill a line and end in a line feed; the last, shorter line has none.
    EXPECT_EQ(Encode(Bytes(54)).substr(72), "\n");
    const std::string text = Encode(Bytes(200));
    ASSERT_EQ(text.size(), 72u * 3 + 3 + 52);
    for (size_t i = 0; i < text.size(); ++i) EXPECT_EQ(text[i] == '\n', i % 73 == 72) << i;
}

TEST(Base64, CallersBuffersAreFilledExactly) {
    const std::string bytes = Bytes(55);
    std::vector<char> buffer(82, '#');
    char* out = buffer.data();
    EXPECT_EQ(ZelAsciiToBase64(bytes.data(), 55, &out), 77);
    EXPECT_EQ(std::string(buffer.data()), Encode(bytes));
    EXPECT_EQ(std::string(buffer.begin() + 78, buffer.end()), "####");

    char decoded[4] = {'#', '#', '#', '#'};
    out = decoded;
    EXPECT_EQ(ZelBase64ToAscii("TWE=", &out), 2);
    EXPECT_EQ(std::string(decoded, 4), "Ma##");  // no terminator
}

TEST(Base64, DecodesAcrossWhiteSpaceAndPadding) {
    // What follows the padding is not looked at; an unpadded, unfinished group gives nothing.
    const std::pair<const char*, std::string> cases[] = {{"TWFu", "Man"}, {" T W\n\tF u\r\n", "Man"}, {"TQ==", "M"},
                                                         {"TQ=", "M"},    {"TWE=", "Ma"},  {"TQ== \n*", "M"},
                                                         {"TWFuTQ", "Man"}};
    for (const auto& [text, bytes] : cases) EXPECT_EQ(Decode(text), bytes) << text;
    for (size_t size : {1u, 2u, 3u, 53u, 54u, 55u, 1000u}) EXPECT_EQ(Decode(Encode(Bytes(size)).c_str()), Bytes(size));
}

TEST(Base64, RefusesBadTextWithoutTouchingTheOutput) {
    for (const char* bad : {"T===", "TWFuT=", "TWFu=", "TW*u", "TQ", "TWF\x80", "TQ==TQ==", "   \n", "", "="}) {
        EXPECT_EQ(Decode(bad), "<none>") << bad;
        char buffer[4] = {'#', '#', '#', '#'};
        char* out = buffer;
        EXPECT_EQ(ZelBase64ToAscii(bad, &out), 0) << bad;
        EXPECT_EQ(std::string(buffer, 4), "####") << bad;
    }
    char* out = nullptr;
    EXPECT_EQ(ZelBase64ToAscii(nullptr, &out), 0);
}

TEST(HexString, WritesFourLowerCaseDigitsAUnit) {
    // One byte short gives an empty string.
    const struct { const WCHAR* units; int size, result; const char* text; } cases[] = {
        {u"A\xAC00", 11, 10, "U+0041ac00"}, {u"A\xAC00", 10, 0, ""}, {u"", 3, 2, "U+"}};
    char out[16];
    for (const auto& c : cases) {
        EXPECT_EQ(ZelUniStrToHexStr(c.units, out, c.size), c.result) << c.size;
        EXPECT_STREQ(out, c.text);
    }
    out[0] = '#';
    EXPECT_EQ(ZelUniStrToHexStr(u"A", out, 0), 0);  // no room even for the empty string
    EXPECT_EQ(out[0], '#');
}

TEST(HexString, ReadsGroupsOfDigits) {
    // The prefix counts toward the length: 2 trailing digits make a unit, 1 does not. Letters go on
    // past f; anything else is 0.
    const struct { const char* text; std::u16string units; } cases[] = {
        {"U+0041", u"A"}, {"U+AbCdffff", u"\xABCD\xFFFF"}, {"U+004142", u"A\x42"}, {"U+0041ABC", u"A\xABC"},
        {"U+00411", u"A"}, {"U+00g0", u"\x0100"}, {"U+0-4!", u"\x0040"},
        {"U+zzzz", std::u16string(1, static_cast<WCHAR>(((35 * 16 + 35) * 16 + 35) * 16 + 35))},
        {"u+0041", u""}, {"U-0041", u""}, {"U+004", u""}, {"", u""},
    };
    for (const auto& c : cases) {
        WCHAR out[4] = {u'#', u'#', u'#', u'#'};
        EXPECT_EQ(ZelHexStrToUniStr(c.text, out), static_cast<int>(c.units.size())) << c.text;
        if (!c.units.empty()) {
            EXPECT_EQ(std::u16string(out), c.units) << c.text;
        }
    }
}

std::u16string Unescape(const std::u16string& text, int expected) {
    std::vector<WCHAR> out(text.size() + 1, u'#');
    EXPECT_EQ(ZelHexChrToUniStr(text.c_str(), out.data()), expected) << std::string(text.begin(), text.end());
    return std::u16string(out.data());
}

TEST(HexEscapes, DecodesOnlyWhenTheSmallFormOccurs) {
    // A decoded escape is not read again; text with no complete small escape comes back as it is.
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"a/u0041b", u"aAb"}, {u"/U0041/u0042", u"AB"}, {u"/uac00/uFFff", u"\xAC00\xFFFF"}, {u"//u002f/u0075", u"//u"},
        {u"/u/u0041", u"/uA"}, {u"/U0041", u"/U0041"}, {u"/u00 1", u"/u00 1"}, {u"/u004", u"/u004"}, {u"/u", u"/u"},
        {u"/u00g1", u"/u00g1"}, {u"\\u0041", u"\\u0041"}, {u"", u""}};
    for (const auto& [text, result] : cases) EXPECT_EQ(Unescape(text, static_cast<int>(result.size())), result);
    // An escape of zero leaves a zero unit inside the result, which still counts it.
    WCHAR out[9];
    EXPECT_EQ(ZelHexChrToUniStr(u"a/u0000b", out), 3);
    EXPECT_EQ(std::u16string(out, 4), std::u16string(u"a\0b\0", 4));
}

TEST(HexEscapes, WorksInPlace) {
    WCHAR text[] = u"/u0041x/u00e9/u3042/u004";
    EXPECT_EQ(ZelHexChrToUniStr(text, text), 9);
    EXPECT_EQ(std::u16string(text), u"Ax\xE9\x3042/u004");
}

}  // namespace
