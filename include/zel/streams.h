// Binary streams: typed reading and writing of integers in a chosen byte order, of strings and of
// blocks, over memory, stdio streams, file descriptors and IStream objects.
//
// Each back end supplies two primitives, _Read and _Write; every other operation is built on them.
// byteOrder 1234 keeps the bytes of a value in little-endian order; any other value reverses them.
// No back end owns what it works on: the file classes leave the file open until Close.
#ifndef ZEL_STREAMS_H
#define ZEL_STREAMS_H

#include <zel/wintypes.h>

#include <cstdio>

class ZEL_API CZelIOBase {
public:
    explicit CZelIOBase(int byteOrder = 1234);
    CZelIOBase(const CZelIOBase& other);
    CZelIOBase& operator=(const CZelIOBase& other);
    virtual ~CZelIOBase();

    void SetByteOrder(int byteOrder);

    // Forward to _Read and _Write; no byte order applies. A back end's -1 comes out as 0xFFFFFFFF.
    DWORD ReadBlock(void* buffer, DWORD size);
    DWORD WriteBlock(const void* buffer, DWORD size);

    // True when the value's full width moved; a failed read leaves the variable as it was.
    bool GetInt8(signed char& value);
    bool GetUInt8(unsigned char& value);
    bool GetInt16(short& value);
    bool GetUInt16(unsigned short& value);
    bool GetInt32(int& value);
    bool GetInt32(long& value);  // 4 bytes on the stream, sign-extended into long
    bool GetUInt32(unsigned int& value);
    bool GetUInt32(unsigned long& value);  // 4 bytes on the stream, zero-extended into unsigned long
    bool GetInt64(long long& value);
    bool GetUInt64(unsigned long long& value);

    bool PutInt8(signed char value);
    bool PutUInt8(unsigned char value);
    bool PutInt16(short value);
    bool PutUInt16(unsigned short value);
    bool PutInt32(int value);
    bool PutUInt32(unsigned int value);
    bool PutInt64(long long value);
    bool PutUInt64(unsigned long long value);

    // length < 0: up to and including a zero unit (reads store a terminator; the caller's buffer
    // must hold the whole string). length 0: nothing. length > 0: exactly that many units.
    // The count leaves out the terminator. A null buffer gives 0. W forms apply the byte order.
    DWORD ReadStringA(char* buffer, int length);
    DWORD ReadStringW(WCHAR* buffer, int length);
    DWORD WriteStringA(const char* buffer, int length);
    DWORD WriteStringW(const WCHAR* buffer, int length);

    int byteOrder;

private:
    virtual DWORD _Read(void* buffer, DWORD size) = 0;
    virtual DWORD _Write(const void* buffer, DWORD size) = 0;
};

// Over a caller's memory block, which it neither owns nor measures: the caller keeps within it.
class ZEL_API CZelIOMemory : public CZelIOBase {
public:
    explicit CZelIOMemory(int byteOrder = 1234);
    CZelIOMemory(const void* block, int byteOrder = 1234);  // read-only
    CZelIOMemory(void* block, int byteOrder = 1234);        // read and write
    CZelIOMemory(CZelIOMemory& other);                      // shares the block, own cursor
    CZelIOMemory& operator=(const CZelIOMemory& other);
    ~CZelIOMemory() override;

    void Attach(const void* block);
    void Attach(void* block);
    void Detach();
    BYTE* GetPtr();

    // The value at the cursor in byteOrder; the cursor stays. 0 when no block is attached.
    signed char PeekInt8();
    short PeekInt16();
    int PeekInt32();
    long long PeekInt64();
    unsigned char PeekUInt8();
    unsigned short PeekUInt16();
    unsigned int PeekUInt32();
    unsigned long long PeekUInt64();

    bool SeekFromBegin(LONG offset);
    bool SeekFromCurrent(LONG offset);

    BYTE* base;
    BYTE* cursor;
    int readOnly;

private:
    DWORD _Read(void* buffer, DWORD size) override;
    DWORD _Write(const void* buffer, DWORD size) override;
};

// Over a stdio stream. The stream must be open for reads, writes and seeks.
class ZEL_API CZelIOFilePtr : public CZelIOBase {
public:
    explicit CZelIOFilePtr(int byteOrder = 1234);
    CZelIOFilePtr(const CZelIOFilePtr& other);  // shares the stream
    CZelIOFilePtr& operator=(const CZelIOFilePtr& other);
    ~CZelIOFilePtr() override;  // leaves the stream open

    // Overwrite stream in any case: close an open one first.
    bool Open(const char* path, const char* mode);
    bool Open(const WCHAR* path, const WCHAR* mode);
    bool Create(const char* path, const char* mode);
    bool Create(const WCHAR* path, const WCHAR* mode);
    void Attach(FILE* stream);
    void Detach(bool close);
    void Close();
    bool IsOpened();

    bool SeekFromBegin(LONG offset);
    bool SeekFromCurrent(LONG offset);
    bool SeekFromEnd(LONG offset);
    LONG Tell();
    LONG GetFileSize();

    FILE* stream;

private:
    DWORD _Read(void* buffer, DWORD size) override;
    DWORD _Write(const void* buffer, DWORD size) override;
};

// Over a run-time file descriptor (_open's flags, _O_RDONLY | _O_BINARY ...). -1 means closed;
// descriptor 0 is never taken for an open file either.
class ZEL_API CZelIOFileDesc : public CZelIOBase {
public:
    explicit CZelIOFileDesc(int byteOrder = 1234);
    CZelIOFileDesc(const CZelIOFileDesc& other);  // shares the descriptor
    CZelIOFileDesc& operator=(const CZelIOFileDesc& other);
    ~CZelIOFileDesc() override;  // leaves the descriptor open

    bool ReadOpen(const char* path, int flags);
    bool ReadOpen(const WCHAR* path, int flags);
    bool WriteOpen(const char* path, int flags, int permission);
    bool WriteOpen(const WCHAR* path, int flags, int permission);
    bool Create(const char* path, int flags, int permission);
    bool Create(const WCHAR* path, int flags, int permission);
    void Attach(int descriptor);
    void Detach(bool close);
    void Close();
    bool IsOpened();

    bool SeekFromBegin(LONG offset);
    bool SeekFromCurrent(LONG offset);
    bool SeekFromEnd(LONG offset);
    LONG Tell();
    LONG GetFileSize();

    int descriptor;

private:
    DWORD _Read(void* buffer, DWORD size) override;
    DWORD _Write(const void* buffer, DWORD size) override;
};

// Over an IStream, holding one reference. Seeks go through the IStream itself.
class ZEL_API CZelIOIStream : public CZelIOBase {
public:
    explicit CZelIOIStream(int byteOrder = 1234);
    CZelIOIStream(IStream* stream, int byteOrder = 1234);
    CZelIOIStream(const CZelIOIStream& other);
    CZelIOIStream& operator=(const CZelIOIStream& other);
    ~CZelIOIStream() override;

    // Releases nothing: Detach before attaching another stream.
    void Attach(IStream* stream);
    void Detach();
    IStream* GetIStream();

    IStream* comStream;

private:
    DWORD _Read(void* buffer, DWORD size) override;
    DWORD _Write(const void* buffer, DWORD size) override;
};

#endif  // ZEL_STREAMS_H
