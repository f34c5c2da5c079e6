// One 8-bit INI file in memory: its lines as they were read, each with what it means, so that an
// edit changes only the lines it must and every comment and blank line comes back as it was.
#ifndef ZEL_PLATFORM_POSIX_PROFILE_FILE_H
#define ZEL_PLATFORM_POSIX_PROFILE_FILE_H

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <zel/wintypes.h>

namespace zelprofile {

// Every byte of a profile file goes out through this function, which has the shape of write(2).
// Tests replace it to make writes fail.
using WriteFunction = ssize_t (*)(int fd, const void* data, size_t size);
extern WriteFunction g_writeFile;

struct ProfileLine {
    enum class Kind { Other, Section, Entry };
    std::string raw;  // the bytes of the line, without its line break
    Kind kind = Kind::Other;
    std::u16string name;   // a section's or a key's name, blanks cut
    std::u16string value;  // an entry's text after "=", blanks cut, quotes kept
};

class ProfileFile {
public:
    // Parses the bytes of a file in the ANSI code page.
    explicit ProfileFile(const std::string& bytes = {});

    // The bytes to write back, every line ended by the file's own line break.
    std::string Bytes() const;

    // The names of the section headers in file order; a section that appears twice is named twice.
    std::vector<std::u16string> SectionNames() const;
    // The keys of the first section of that name; nullopt when there is none.
    std::optional<std::vector<std::u16string>> KeyNames(const std::u16string& section) const;
    // The value of the key, as the file holds it; nullopt when section or key is missing.
    std::optional<std::u16string> Value(const std::u16string& section, const std::u16string& key) const;

    // Edits of the first section of that name; each gives whether anything changed. Texts are the
    // caller's, converted on writing.
    bool Set(const std::u16string& section, const std::u16string& key, const std::u16string& value);
    bool DeleteKey(const std::u16string& section, const std::u16string& key);
    bool DeleteSection(const std::u16string& section);

    const std::vector<ProfileLine>& Lines() const { return lines_; }

    // What Value gives on a file of these bytes, found without parsing all of it: the lines in
    // front of the section are passed by their first bytes, and lines of ASCII bytes are read as
    // themselves. 1 found, 0 missing, -1 when the code page does not read ASCII as itself, and
    // the file must be parsed.
    static int QuickValue(const std::string& bytes, const std::u16string& section, const std::u16string& key,
                          std::u16string& value);

private:
    // The index of the first header of that section, or npos.
    size_t FindSection(const std::u16string& section) const;
    // The index after the last line of the section whose header is at index.
    size_t SectionEnd(size_t header) const;
    size_t FindEntry(size_t header, const std::u16string& key) const;

    std::vector<ProfileLine> lines_;
    std::string lineBreak_ = "\r\n";
};

// The name of a profile file as the system's path. A name without a directory lies in the Windows
// directory (inWindowsDirectory says so); null or empty is win.ini there.
std::string SystemPathOf(LPCWSTR fileName, bool& inWindowsDirectory);

// The file's bytes; ERROR_SUCCESS with found false when it does not exist.
DWORD ReadProfile(const std::string& path, std::string& bytes, bool& found);

// Replaces the file by a new one with these bytes: written beside it, flushed, renamed over it.
// The old file's permissions carry over. On failure the file is untouched.
DWORD ReplaceProfile(const std::string& path, const std::string& bytes);

// Holds an exclusive lock on the file's directory, so that processes editing profiles there lose no
// update; readers need none, as a file is replaced whole.
class DirectoryLock {
public:
    explicit DirectoryLock(const std::string& filePath);
    ~DirectoryLock();
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;
    DWORD status() const { return status_; }

private:
    int fd_ = -1;
    DWORD status_ = ERROR_SUCCESS;
};

}  // namespace zelprofile

#endif  // ZEL_PLATFORM_POSIX_PROFILE_FILE_H
