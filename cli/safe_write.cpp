#include "safe_write.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "input.h"
#include "limits.h"
#include "report.h"
#include "system.h"

namespace {

// The copy an interrupt removes: one at a time, in a buffer that a signal handler may read.
char pendingCopy[4096];
std::atomic<bool> pending{false};

extern "C" void RemovePendingCopy(int signal) {
    if (pending.load()) unlink(pendingCopy);
    ::signal(signal, SIG_DFL);
    raise(signal);
}

void WatchCopy(const std::string& path) {
    if (path.size() >= sizeof pendingCopy) return;
    memcpy(pendingCopy, path.c_str(), path.size() + 1);
    pending.store(true);
    int count = 0;
    const int* signals = EndingSignals(count);
    for (int i = 0; i < count; ++i) ::signal(signals[i], RemovePendingCopy);
}

std::string Reason(const std::string& what) { return what + ": " + strerror(errno); }

std::string DirectoryOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Flushes the file or directory at path.
bool Flush(const std::string& path, int flags, std::string& problem) {
    const int fd = OpenByName(path, flags | kOpenPlain);
    if (fd < 0) return problem = Reason("cannot open " + path), false;
    const bool flushed = FlushDescriptor(fd);
    if (!flushed) problem = Reason("cannot flush " + path);
    close(fd);
    return flushed;
}

}  // namespace

CopyBeside::CopyBeside(const std::string& target) {
    std::string pattern = target + ".XXXXXX";
    const int fd = mkstemp(pattern.data());
    if (fd < 0) {
        problem_ = Reason("cannot make a new file beside " + target);
        return;
    }
    close(fd);
    path_ = pattern;
    WatchCopy(path_);
}

CopyBeside::~CopyBeside() {
    pending.store(false);
    if (!path_.empty()) unlink(path_.c_str());
}

bool WriteBytes(const std::string& path, const std::string& bytes, std::string& problem) {
    const int fd = OpenByName(path, O_WRONLY | O_TRUNC | kOpenPlain);
    if (fd < 0) return problem = Reason("cannot open " + path), false;
    for (size_t done = 0; done < bytes.size();) {
        const ssize_t wrote = write(fd, bytes.data() + done, bytes.size() - done);
        if (wrote < 0 && errno == EINTR) continue;
        if (wrote <= 0) {
            problem = Reason("cannot write " + path);
            close(fd);
            return false;
        }
        done += static_cast<size_t>(wrote);
    }
    const bool flushed = FlushDescriptor(fd);
    if (!flushed) problem = Reason("cannot flush " + path);
    return close(fd) == 0 && flushed;
}

int WriteBeside(const std::string& target, const FileStep& write, const FileStep& check) {
    struct stat old {};
    const bool exists = stat(target.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode))
        return Fail("cannot write " + target + ": " + (S_ISDIR(old.st_mode) ? strerror(EISDIR) : "not a regular file"));
    CopyBeside copy(target);
    if (!copy.made()) return Fail(copy.problem());
    std::string problem;
    if (!write(copy.path(), problem)) return Fail("could not write " + target + ": " + problem);
    if (!check(copy.path(), problem))
        return Fail("the new " + target + " does not read back as written (" + problem + "); the old file is kept");
    if (!Flush(copy.path(), O_RDONLY, problem)) return Fail(problem);
    // A new file gets what the user's mask allows; an old one's permissions carry over.
    mode_t mode = old.st_mode & 07777;
    if (!exists) {
        const mode_t mask = umask(0);
        umask(mask);
        mode = 0666 & ~mask;
    }
    if (chmod(copy.path().c_str(), mode) != 0) return Fail(Reason("cannot set the permissions of " + copy.path()));
    if (!ReplaceFileWith(copy.path(), target)) return Fail(Reason("cannot replace " + target));
    copy.Keep();
    // The rename is done; a directory that can't be flushed doesn't undo it.
    FlushDirectory(DirectoryOf(target));
    return kExitDone;
}

bool WritableFile(const std::string& file) {
    if (file.find('\\') != std::string::npos || file.find("${") != std::string::npos) {
        Fail("a file that zel writes is named in the system's form, without backslashes or ${Name}: " + file);
        return false;
    }
    return NotADirectory(file) && PathFits("file", file, kCopySuffixUnits);
}
