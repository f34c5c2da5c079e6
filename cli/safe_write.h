// The one way zel writes a file: a new copy beside it, checked, then renamed over the old one, so
// that a kill, a full disk or a failed check leaves the old file whole.
#ifndef ZEL_CLI_SAFE_WRITE_H
#define ZEL_CLI_SAFE_WRITE_H

#include <cstddef>
#include <functional>
#include <string>

// The new copy of FILE is FILE.XXXXXX: this many units longer than FILE.
constexpr size_t kCopySuffixUnits = 7;

// A step on a file: true when done, else false with a sentence in problem.
using FileStep = std::function<bool(const std::string& path, std::string& problem)>;

// A new, empty file beside target under a unique name, removed at scope end unless Keep is called.
// While it exists an interrupt or termination removes it too.
class CopyBeside {
public:
    explicit CopyBeside(const std::string& target);
    ~CopyBeside();
    CopyBeside(const CopyBeside&) = delete;
    CopyBeside& operator=(const CopyBeside&) = delete;

    bool made() const { return !path_.empty(); }
    const std::string& path() const { return path_; }
    const std::string& problem() const { return problem_; }
    void Keep() { path_.clear(); }

private:
    std::string path_;
    std::string problem_;
};

// Writes target: write fills a new copy beside it, check reads that copy back; then the copy is
// flushed to disk, takes the old file's permissions, is renamed over target, and the directory is
// flushed. Gives 0, or 1 with a message that says which step failed; target is then unchanged.
int WriteBeside(const std::string& target, const FileStep& write, const FileStep& check);

// A file that zel may write beside: named in the system's own form (no backslash, no ${Name}), not
// a directory, and short enough for the library's paths with the copy's suffix. Otherwise a
// message, and false.
bool WritableFile(const std::string& file);

// The bytes into path, flushed; false with the system's reason.
bool WriteBytes(const std::string& path, const std::string& bytes, std::string& problem);

#endif  // ZEL_CLI_SAFE_WRITE_H
