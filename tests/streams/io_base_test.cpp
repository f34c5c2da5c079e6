// Typed values and strings over a back end of the test's own that records each primitive call.
#include <gtest/gtest.h>
#include <zel/streams.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

using Bytes = std::vector<BYTE>;
using Calls = std::vector<DWORD>;

class RecordingIO : public CZelIOBase {
public:
    using CZelIOBase::CZelIOBase;
    Bytes input, output;
    size_t position = 0, writeRoom = SIZE_MAX;  // writes beyond writeRoom bytes fail
    Calls calls;                                // the size of every _Read and _Write, in order
    bool readError = false;                     // _Read gives -1, as the descriptor back end does

private:
    DWORD _Read(void* buffer, DWORD size) override {
        calls.push_back(size);
        if (readError) return 0xFFFFFFFF;
        DWORD n = static_cast<DWORD>(std::min<size_t>(size, input.size() - position));
        std::memcpy(buffer, input.data() + position, n);
        position += n;
        return n;
    }
    DWORD _Write(const void* buffer, DWORD size) override {
        calls.push_back(size);
        if (output.size() + size > writeRoom) return 0;
        output.insert(output.end(), static_cast<const BYTE*>(buffer), static_cast<const BYTE*>(buffer) + size);
        return size;
    }
};

TEST(IOBase, IntegersInBothByteOrdersMoveWholeValues) {
    for (int order : {1234, 4321, 0}) {
        RecordingIO io(order);
        EXPECT_TRUE(io.PutUInt32(0x01020304));
        EXPECT_EQ(io.output, order == 1234 ? (Bytes{4, 3, 2, 1}) : (Bytes{1, 2, 3, 4})) << order;
        io.output.clear();
        io.calls.clear();
        EXPECT_TRUE(io.PutInt8(-2) && io.PutUInt16(0xBEEF) && io.PutInt32(-70000) && io.PutInt64(-5000000000LL) &&
                    io.PutUInt64(0x0102030405060708ULL));
        io.input = io.output;
        signed char i8 = 0; unsigned short u16 = 0; int i32 = 0; long long i64 = 0; unsigned long long u64 = 0;
        EXPECT_TRUE(io.GetInt8(i8) && io.GetUInt16(u16) && io.GetInt32(i32) && io.GetInt64(i64) && io.GetUInt64(u64));
        EXPECT_EQ(io.calls, (Calls{1, 2, 4, 8, 8, 1, 2, 4, 8, 8}));
        EXPECT_EQ(i8, -2); EXPECT_EQ(u16, 0xBEEF); EXPECT_EQ(i32, -70000);
        EXPECT_EQ(i64, -5000000000LL); EXPECT_EQ(u64, 0x0102030405060708ULL);
    }
    RecordingIO io;  // the order may change between two values
    io.PutUInt16(0x0102);
    io.SetByteOrder(4321);
    io.PutUInt16(0x0102);
    EXPECT_EQ(io.output, (Bytes{2, 1, 1, 2}));
}

TEST(IOBase, LongOverloadsTakeFourBytesAndExtendThem) {
    RecordingIO io;
    io.input = {0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    // Ones in every nibble, as wide as the system's long.
    long value = static_cast<long>(~0UL / 15);
    unsigned long uvalue = ~0UL / 15;
    EXPECT_TRUE(io.GetInt32(value) && io.GetUInt32(uvalue));
    EXPECT_EQ(value, -2);
    EXPECT_EQ(uvalue, 0xFFFFFFFFul);
    EXPECT_EQ(io.calls, (Calls{4, 4}));
}

TEST(IOBase, FailedMovesLeaveTheVariable) {
    RecordingIO io;
    io.input = {1, 2};
    unsigned int value = 77;
    EXPECT_FALSE(io.GetUInt32(value));
    EXPECT_EQ(io.position, 2u);  // the two bytes are gone
    EXPECT_FALSE(io.GetUInt32(value));
    EXPECT_EQ(value, 77u);

    // A back end's -1 is a wrong count to typed reads; ReadBlock passes it on.
    io.readError = true;
    EXPECT_FALSE(io.GetUInt32(value));
    BYTE block[4];
    EXPECT_EQ(io.ReadBlock(block, 4), 0xFFFFFFFFu);
    char text[4] = "xyz";
    EXPECT_EQ(io.ReadStringA(text, -1), 0u);
    EXPECT_EQ(text[0], 0);
}

TEST(IOBase, ReadStringsStopBehindTheTerminatorOrAtTheCount) {
    RecordingIO io;
    io.input = {'a', 'b', 0, 'c', 'd'};
    char text[8] = "xxxxxxx";
    EXPECT_EQ(io.ReadStringA(text, -1), 2u);
    EXPECT_STREQ(text, "ab");
    EXPECT_EQ(io.position, 3u);
    EXPECT_EQ(io.ReadStringA(text, -1), 2u);  // the end of the stream ends it too
    EXPECT_STREQ(text, "cd");
    EXPECT_EQ(io.ReadStringA(text, -1), 0u);
    EXPECT_STREQ(text, "");

    io.input = {0x61, 0x00, 0x62, 0x63, 0x64};
    io.position = 0;
    std::memset(text, 'x', sizeof text);
    EXPECT_EQ(io.ReadStringA(text, 4), 4u);
    EXPECT_EQ(std::memcmp(text, "a\0bcx", 5), 0);  // zero kept, no terminator added
    EXPECT_EQ(io.ReadStringA(text, 6), 1u);
    size_t calls = io.calls.size();
    EXPECT_EQ(io.ReadStringA(text, 0) + io.ReadStringA(nullptr, -1), 0u);
    EXPECT_EQ(io.calls.size(), calls);

    // Units in the byte order; an odd last byte is lost and the string still ends.
    RecordingIO wide(4321);
    wide.input = {0x00, 0x61, 0x04, 0x30, 0x62};
    WCHAR units[4] = {9, 9, 9, 9};
    EXPECT_EQ(wide.ReadStringW(units, -1), 2u);
    EXPECT_EQ(std::u16string(units, 3), std::u16string(u"a\u0430\0", 3));
}

TEST(IOBase, WriteStrings) {
    RecordingIO io;
    EXPECT_EQ(io.WriteStringW(u"abc", -1), 3u);
    EXPECT_EQ(io.output, (Bytes{'a', 0, 'b', 0, 'c', 0, 0, 0}));
    io.output.clear();
    EXPECT_EQ(io.WriteStringA("abc", 0) + io.WriteStringA(nullptr, -1) + io.WriteStringA("a\0b", 3), 3u);
    io.SetByteOrder(4321);
    EXPECT_EQ(io.WriteStringW(u"\u0430", 1), 1u);
    EXPECT_EQ(io.output, (Bytes{'a', 0, 'b', 0x04, 0x30}));

    RecordingIO full;
    full.writeRoom = 2;
    EXPECT_FALSE(full.PutUInt32(1));
    EXPECT_EQ(full.WriteStringA("abcd", -1), 2u);
    EXPECT_EQ(full.calls.size(), 4u);  // the failed unit ends it
}

}  // namespace
