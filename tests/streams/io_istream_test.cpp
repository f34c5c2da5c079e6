// The IStream back end: references held and given back, reads and writes through the interface.
#include <gtest/gtest.h>
#include <zel/streams.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

// A memory stream that counts its references; only the sequential calls do anything.
class FakeStream final : public IStream {
public:
    ULONG references = 1;
    std::vector<BYTE> data;
    size_t position = 0;
    bool failing = false;

    ULONG AddRef() override { return ++references; }
    ULONG Release() override { return --references; }
    HRESULT Read(void* buffer, ULONG size, ULONG* done) override {
        if (failing) return E_FAIL;
        *done = static_cast<ULONG>(std::min<size_t>(size, data.size() - position));
        std::memcpy(buffer, data.data() + position, *done);
        position += *done;
        return *done == size ? S_OK : S_FALSE;
    }
    HRESULT Write(const void* buffer, ULONG size, ULONG* done) override {
        if (failing) return E_FAIL;
        data.insert(data.end(), static_cast<const BYTE*>(buffer), static_cast<const BYTE*>(buffer) + size);
        *done = size;
        return S_OK;
    }
    HRESULT QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    HRESULT Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return E_NOTIMPL; }
    HRESULT SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override { return E_NOTIMPL; }
    HRESULT Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT Revert() override { return E_NOTIMPL; }
    HRESULT LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
    HRESULT Clone(IStream**) override { return E_NOTIMPL; }
};

TEST(IOIStream, HoldsExactlyOneReferencePerObject) {
    FakeStream a, b;
    {
        CZelIOIStream io(&a);
        EXPECT_EQ(io.GetIStream(), &a);
        EXPECT_EQ(a.references, 2u);
        CZelIOIStream copy(io);
        CZelIOIStream other(&b);
        other = io;  // gives b back, takes a
        EXPECT_EQ(b.references, 1u);
        EXPECT_EQ(a.references, 4u);
        CZelIOIStream& same = other;
        other = same;
        EXPECT_EQ(a.references, 4u);
    }
    EXPECT_EQ(a.references, 1u);

    CZelIOIStream io;
    io.Detach();  // nothing attached: nothing released
    io.Attach(&b);
    EXPECT_EQ(b.references, 2u);
    io.Detach();
    EXPECT_EQ(b.references, 1u);
    EXPECT_EQ(io.GetIStream(), nullptr);
}

TEST(IOIStream, ReadsAndWritesThroughTheStream) {
    FakeStream stream;
    CZelIOIStream io(&stream, 4321);
    EXPECT_TRUE(io.PutUInt32(0x01020304));
    EXPECT_EQ(stream.data, (std::vector<BYTE>{1, 2, 3, 4}));
    unsigned int value = 0;
    EXPECT_TRUE(io.GetUInt32(value));
    EXPECT_EQ(value, 0x01020304u);
    stream.position = 2;
    BYTE block[4];
    EXPECT_EQ(io.ReadBlock(block, 4), 2u);  // short at the end
    stream.failing = true;
    stream.position = 0;
    EXPECT_EQ(io.ReadBlock(block, 4), 0u);
    EXPECT_FALSE(io.PutUInt8(1));
    EXPECT_EQ(CZelIOIStream().ReadBlock(block, 4), 0u);
}

}  // namespace
