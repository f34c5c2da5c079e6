// The memory back end: bindings, peeks, seeks and copies.
#include <gtest/gtest.h>
#include <zel/streams.h>

namespace {

TEST(IOMemory, BindingsDecideWhetherWritesWork) {
    const BYTE constant[2] = {1, 2};
    CZelIOMemory io(static_cast<const void*>(constant), 4321);
    EXPECT_FALSE(io.PutUInt8(9));
    unsigned short value = 0;
    EXPECT_TRUE(io.GetUInt16(value));
    EXPECT_EQ(value, 0x0102);
    EXPECT_EQ(io.GetPtr(), constant + 2);

    BYTE block[4] = {};
    io.Attach(static_cast<void*>(block));
    EXPECT_TRUE(io.PutUInt16(0x0102));
    EXPECT_EQ(block[0], 1);
    io.Detach();
    EXPECT_EQ(io.readOnly, 1);
    EXPECT_EQ(io.GetPtr(), nullptr);
    EXPECT_EQ(io.byteOrder, 4321);
    EXPECT_FALSE(io.GetUInt16(value));  // unbound: nothing is touched
    EXPECT_EQ(io.PeekUInt32(), 0u);
    EXPECT_FALSE(io.SeekFromBegin(2));
    io.Attach(static_cast<void*>(block + 2));
    EXPECT_EQ(io.readOnly, 0);

    CZelIOMemory array[2];
    EXPECT_EQ(array[1].byteOrder, 1234);
    EXPECT_EQ(array[1].readOnly, 1);
}

TEST(IOMemory, PeeksFollowTheByteOrderAndStayPut) {
    const BYTE block[8] = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0};
    CZelIOMemory io(static_cast<const void*>(block), 4321);
    EXPECT_EQ(io.PeekUInt16(), 0x1234);
    EXPECT_EQ(io.PeekUInt64(), 0x123456789ABCDEF0ull);
    EXPECT_EQ(io.GetPtr(), block);
    io.SetByteOrder(1234);
    EXPECT_EQ(io.PeekUInt32(), 0x78563412u);
    EXPECT_TRUE(io.SeekFromBegin(4));
    EXPECT_EQ(io.PeekInt8(), static_cast<signed char>(0x9A));
    EXPECT_EQ(io.PeekInt16(), static_cast<short>(0xBC9A));
    EXPECT_EQ(io.PeekInt32(), static_cast<int>(0xF0DEBC9A));
}

TEST(IOMemory, SeeksStayAtOrBehindTheBase) {
    BYTE block[8] = {};
    CZelIOMemory io(static_cast<void*>(block));
    EXPECT_FALSE(io.SeekFromBegin(-1));
    EXPECT_FALSE(io.SeekFromCurrent(-1));
    EXPECT_TRUE(io.SeekFromBegin(5) && io.SeekFromCurrent(-5));
    EXPECT_EQ(io.GetPtr(), block);
    EXPECT_TRUE(io.SeekFromCurrent(3));
    EXPECT_FALSE(io.SeekFromCurrent(-4));
    EXPECT_EQ(io.GetPtr(), block + 3);
}

TEST(IOMemory, CopiesShareTheBlockWithTheirOwnCursor) {
    BYTE block[4] = {};
    CZelIOMemory first(static_cast<void*>(block), 4321);
    first.PutUInt8(1);
    CZelIOMemory second(first);
    second.PutUInt8(2);
    first.PutUInt8(3);
    EXPECT_EQ(block[1], 3);
    CZelIOMemory third;
    third = second;
    EXPECT_EQ(third.GetPtr(), block + 2);
    EXPECT_EQ(third.readOnly, 0);
    EXPECT_EQ(third.byteOrder, 4321);
}

}  // namespace
