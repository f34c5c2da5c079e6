// Reads from a C stream that only the calling thread uses, without taking the stream's lock where
// the run-time offers that (POSIX); elsewhere the plain, locked reads.
#ifndef ZEL_PLATFORM_STREAM_READS_H
#define ZEL_PLATFORM_STREAM_READS_H

#include <cstdio>

inline size_t ZelReadOwnStream(void* bytes, size_t count, FILE* stream) {
#if defined(_WIN32)
    return std::fread(bytes, 1, count, stream);
#else
    return fread_unlocked(bytes, 1, count, stream);
#endif
}

inline int ZelGetcOwnStream(FILE* stream) {
#if defined(_WIN32)
    return std::getc(stream);
#else
    return getc_unlocked(stream);
#endif
}

#endif  // ZEL_PLATFORM_STREAM_READS_H
