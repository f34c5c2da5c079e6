// CZelIOIStream: an IStream with one reference held. HRESULTs are dropped: a failing call reads or
// writes nothing.
#include <zel/streams.h>

CZelIOIStream::CZelIOIStream(int order) : CZelIOBase(order), comStream(nullptr) {}

CZelIOIStream::CZelIOIStream(IStream* stream, int order) : CZelIOBase(order), comStream(nullptr) {
    Attach(stream);
}

CZelIOIStream::CZelIOIStream(const CZelIOIStream& other) : CZelIOBase(other), comStream(nullptr) {
    Attach(other.comStream);
}

// The new reference is taken before the old one goes, so assigning a copy of itself is safe.
CZelIOIStream& CZelIOIStream::operator=(const CZelIOIStream& other) {
    CZelIOBase::operator=(other);
    IStream* previous = comStream;
    comStream = other.comStream;
    if (comStream) comStream->AddRef();
    if (previous) previous->Release();
    return *this;
}

CZelIOIStream::~CZelIOIStream() { Detach(); }

void CZelIOIStream::Attach(IStream* stream) {
    comStream = stream;
    if (comStream) comStream->AddRef();
}

void CZelIOIStream::Detach() {
    if (!comStream) return;
    comStream->Release();
    comStream = nullptr;
}

IStream* CZelIOIStream::GetIStream() { return comStream; }

// A count beyond what was asked is not believed: the caller's buffer holds only size bytes.
DWORD CZelIOIStream::_Read(void* buffer, DWORD size) {
    if (!comStream || !buffer) return 0;
    ULONG count = 0;
    if (comStream->Read(buffer, size, &count) < 0) return 0;
    return count > size ? size : count;
}

DWORD CZelIOIStream::_Write(const void* buffer, DWORD size) {
    if (!comStream || !buffer) return 0;
    ULONG count = 0;
    if (comStream->Write(buffer, size, &count) < 0) return 0;
    return count > size ? size : count;
}
