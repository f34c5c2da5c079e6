// The two file back ends on real files: values written and read back, seeks, sizes, and the states
// between open and closed.
#include <gtest/gtest.h>
#include <zel/streams.h>

#include <string>

#include "support/support.h"
#include "support/system.h"

namespace {

std::u16string Wide(const std::string& ascii) { return std::u16string(ascii.begin(), ascii.end()); }

TEST(IOFileDesc, WritesReadsAndSeeksARealFile) {
    zeltest::TempDir dir;
    std::string path = dir.file("values.bin");
    CZelIOFileDesc out(4321);
    ASSERT_TRUE(out.Create(path.c_str(), _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY, _S_IREAD | _S_IWRITE));
    EXPECT_TRUE(out.PutUInt32(0x01020304) && out.WriteStringA("ab", -1) == 2 && out.PutUInt16(0x0506));
    out.Close();
    EXPECT_EQ(out.descriptor, -1);
    out.Close();  // closed already: nothing happens
    EXPECT_EQ(zeltest::ReadFile(path), std::string("\x01\x02\x03\x04" "ab\0\x05\x06", 9));

    CZelIOFileDesc in;
    ASSERT_TRUE(in.ReadOpen(Wide(path).c_str(), _O_RDONLY | _O_BINARY));
    EXPECT_EQ(in.GetFileSize(), 9);
    unsigned long value = 0;
    EXPECT_TRUE(in.GetUInt32(value));
    EXPECT_EQ(value, 0x04030201ul);
    EXPECT_EQ(in.Tell(), 4);
    EXPECT_TRUE(in.SeekFromEnd(-2));
    unsigned short last = 0;
    EXPECT_TRUE(in.GetUInt16(last));
    EXPECT_FALSE(in.GetUInt16(last));  // at the end: the variable stays
    EXPECT_EQ(last, 0x0605);
    EXPECT_TRUE(in.SeekFromBegin(4) && in.SeekFromCurrent(1));
    EXPECT_FALSE(in.SeekFromBegin(-1));
    EXPECT_EQ(in.Tell(), 5);
    in.Close();
}

TEST(IOFileDesc, ClosedAndSharedDescriptors) {
    zeltest::TempDir dir;
    CZelIOFileDesc io;
    EXPECT_FALSE(io.ReadOpen(dir.file("missing").c_str(), _O_RDONLY));
    EXPECT_EQ(io.descriptor, -1);
    BYTE block[2];
    EXPECT_EQ(io.ReadBlock(block, 2), 0xFFFFFFFFu);  // the run-time's -1 comes out
    EXPECT_FALSE(io.SeekFromBegin(0));

    // Descriptor 0 counts as closed, and Close leaves it alone.
    bool inputOpen = zeltest::DescriptorIsOpen(0);
    io.Attach(0);
    EXPECT_FALSE(io.IsOpened());
    io.Close();
    EXPECT_EQ(zeltest::DescriptorIsOpen(0), inputOpen);

    // Copies share the descriptor and its position; destruction closes nothing.
    std::string path = dir.file("shared.bin");
    zeltest::WriteFile(path, "abcd");
    CZelIOFileDesc first;
    ASSERT_TRUE(first.ReadOpen(path.c_str(), _O_RDONLY));
    {
        CZelIOFileDesc second(first);
        second.SeekFromBegin(2);
        second.Detach(false);
        EXPECT_TRUE(second.IsOpened());
    }
    EXPECT_EQ(first.Tell(), 2);
    CZelIOFileDesc copy;
    copy = first;
    copy.Close();
    EXPECT_EQ(first.ReadBlock(block, 1), 0xFFFFFFFFu);  // the handle is dead
}

TEST(IOFilePtr, WritesReadsAndSeeksARealFile) {
    zeltest::TempDir dir;
    std::string path = dir.file("values.bin");
    CZelIOFilePtr io;
    ASSERT_TRUE(io.Create(path.c_str(), "wb"));
    EXPECT_TRUE(io.PutUInt32(0x01020304) && io.WriteStringW(u"ab", -1) == 2);
    io.Close();
    EXPECT_FALSE(io.IsOpened());
    EXPECT_EQ(zeltest::ReadFile(path), std::string("\x04\x03\x02\x01" "a\0b\0\0\0", 10));

    io.SetByteOrder(4321);
    ASSERT_TRUE(io.Open(Wide(path).c_str(), u"rb"));
    EXPECT_EQ(io.GetFileSize(), 10);
    unsigned int value = 0;
    EXPECT_TRUE(io.GetUInt32(value));
    EXPECT_EQ(value, 0x04030201u);
    EXPECT_EQ(io.Tell(), 4);
    EXPECT_TRUE(io.SeekFromEnd(-1));
    BYTE block[4];
    EXPECT_EQ(io.ReadBlock(block, 4), 1u);  // short, then nothing at the end
    EXPECT_EQ(io.ReadBlock(block, 4), 0u);
    EXPECT_TRUE(io.SeekFromBegin(1) && io.SeekFromCurrent(1));
    EXPECT_FALSE(io.SeekFromBegin(-1));
    io.Detach(false);
    EXPECT_TRUE(io.IsOpened());
    io.Close();

    // An open that fails clears the stream; an unopened object fails without touching anything.
    FILE* attached = std::fopen(path.c_str(), "rb");
    io.Attach(attached);
    EXPECT_FALSE(io.Open(Wide(dir.file("missing")).c_str(), u"rb") || io.Open(dir.file("x").c_str(), "rb"));
    EXPECT_EQ(io.stream, nullptr);
    std::fclose(attached);
    EXPECT_FALSE(io.GetUInt32(value) || io.SeekFromBegin(0));
    EXPECT_EQ(io.Tell(), -1);
}

}  // namespace
