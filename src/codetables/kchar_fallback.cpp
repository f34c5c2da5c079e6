// KChar without tables: the double-byte half of the code space is the text of code page 1361,
// one unit a character, and ASCII stays ASCII. Hanja and the auxiliary area are lost here.
#include <cstdint>
#include <cstdlib>

#include "codetables/codepage_front.h"
#include "codetables/kchar_internal.h"
#include "platform/win32.h"

namespace {

constexpr UINT kJohabCodePage = 1361;

// Scratch bytes of (size x factor), on the stack for the sizes of everyday text.
class ScratchBytes {
public:
    ScratchBytes(int size, int factor) {
        long long bytes = static_cast<long long>(size) * factor;
        if (bytes > INT32_MAX) bytes = INT32_MAX;
        size_ = static_cast<int>(bytes);
        data_ = size_ <= static_cast<int>(sizeof(local_)) ? local_ : static_cast<char*>(std::malloc(size_));
        if (!data_) size_ = 0;
    }
    ~ScratchBytes() {
        if (data_ != local_) std::free(data_);
    }
    ScratchBytes(const ScratchBytes&) = delete;
    ScratchBytes& operator=(const ScratchBytes&) = delete;
    char* data() { return data_; }
    int size() const { return size_; }

private:
    char local_[4096];
    char* data_ = nullptr;
    int size_ = 0;
};

// Whether unit i of a text with this length is still to be read: a length of -1 reads up to the
// zero unit, any other negative one reads nothing.
bool InText(int i, int length) { return length == -1 || i < length; }

// KChar text as code page 1361 bytes, terminated: a unit with bit 15 is two bytes, one below 0x80
// one byte, and the rest is dropped. Stops at a zero unit, the length, a character without room in
// the bytes, or after maxChars characters: each becomes one UTF-16 unit, so the system is never
// handed more than the output holds (it would convert nothing at all then).
int KCharToBytes(const KChar* text, int length, char* bytes, int room, int maxChars) {
    int n = 0;
    int chars = 0;
    if (text && room > 0) {
        for (int i = 0; InText(i, length) && text[i] && chars < maxChars; ++i) {
            const KChar h = text[i];
            if (h & 0x8000) {
                if (n + 2 > room - 1) break;
                bytes[n++] = static_cast<char>(h >> 8);
                bytes[n++] = static_cast<char>(h & 0xFF);
                ++chars;
            } else if (h < 0x80) {
                if (n + 1 > room - 1) break;
                bytes[n++] = static_cast<char>(h);
                ++chars;
            }
        }
    }
    if (room > 0) bytes[n] = 0;
    return n;
}

// Code page 1361 bytes to KChar, at most size - 1 units and a terminator: a lead byte and the byte
// after it are one unit, high byte first; a zero byte ends the walk wherever it stands.
int BytesToKChar(const char* bytes, int count, KChar* buffer, int size) {
    int written = 0;
    for (int i = 0; i < count && written < size - 1;) {
        const auto lead = static_cast<unsigned char>(bytes[i]);
        if (lead == 0) break;
        if (lead & 0x80) {
            if (i + 1 >= count) break;
            const auto trail = static_cast<unsigned char>(bytes[i + 1]);
            if (trail == 0) break;
            buffer[written++] = static_cast<KChar>(lead << 8 | trail);
            i += 2;
        } else {
            buffer[written++] = lead;
            ++i;
        }
    }
    buffer[written] = 0;
    return written;
}

int BoundedLength(const WCHAR* text, int size) {
    int n = 0;
    while (n < size && text[n]) ++n;
    return n;
}

}  // namespace

int ZelKCharFallbackToUnicode(const KChar* text, int length, WCHAR* buffer, int size, bool systemOnly) {
    if (!buffer || size < 1) return 0;
    buffer[0] = 0;
    if (size < 2) return 0;
    ScratchBytes bytes(size, 3);
    if (bytes.size() < 1) return 0;
    // The byte count rather than -1: the system counts a terminator into the room it needs, and a
    // text that fills the output exactly would then convert to nothing.
    const int count = KCharToBytes(text, length, bytes.data(), bytes.size(), size - 1);
    if (count == 0) return 0;
    if (systemOnly) {
        const int written = MultiByteToWideChar(kJohabCodePage, 0, bytes.data(), count, buffer, size - 1);
        buffer[written > 0 && written < size ? written : 0] = 0;
    } else {
        CodePageToUnicode(kJohabCodePage, 1, bytes.data(), count, buffer, size);
    }
    // Counted from the text itself, whichever way the conversion counts.
    buffer[size - 1] = 0;
    const int units = BoundedLength(buffer, size - 1);
    buffer[units] = 0;
    return units;
}

int ZelUnicodeFallbackToKChar(const WCHAR* text, int length, KChar* buffer, int size, bool systemOnly) {
    if (!buffer || size < 1) return 0;
    buffer[0] = 0;
    if (!text || size < 2) return 0;
    ScratchBytes bytes(size, systemOnly ? 3 : 2);
    if (bytes.size() < 2) return 0;
    // Each UTF-16 unit gives one KChar at most: the rest of a long text can't reach the output.
    int units = 0;
    while (InText(units, length) && units < size - 1 && text[units]) ++units;
    if (InText(units, length) && units == size - 1 && units > 0 && (text[units - 1] & 0xFC00) == 0xD800)
        --units;  // keep a surrogate pair whole
    length = units;
    int count = 0;
    if (systemOnly) {
        count = WideCharToMultiByte(kJohabCodePage, 0, text, length, bytes.data(), bytes.size() - 1, nullptr, nullptr);
        if (count < 0) count = 0;
    } else {
        count = UnicodeToCodePage(kJohabCodePage, 0, text, length, bytes.data(), bytes.size(), nullptr, nullptr);
        if (count < 0) count = 0;
    }
    if (count > bytes.size() - 1) count = bytes.size() - 1;
    bytes.data()[count] = 0;
    return BytesToKChar(bytes.data(), count + 1, buffer, size);
}

int ZelKCharToUnicode(DWORD, const KChar* text, int length, WCHAR* buffer, int size) {
    return ZelKCharFallbackToUnicode(text, length, buffer, size, true);
}

int ZelUnicodeToKChar(DWORD, const WCHAR* text, int length, KChar* buffer, int size) {
    return ZelUnicodeFallbackToKChar(text, length, buffer, size, true);
}
