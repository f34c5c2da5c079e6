#include "input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "report.h"
#include "system.h"

namespace {

std::optional<std::string> CannotRead(const std::string& path, int error) {
    Fail("cannot read " + (path == "-" ? std::string("standard input") : path) + ": " + strerror(error));
    return std::nullopt;
}

std::optional<std::string> TooLarge(const std::string& path) {
    Fail((path == "-" ? std::string("standard input") : path) + " is larger than " +
         std::to_string(kMaxInputBytes >> 20) + " MiB, the most zel reads");
    return std::nullopt;
}

}  // namespace

std::optional<std::string> ReadInput(const std::string& path) {
    const bool standardInput = path == "-";
    const int fd = standardInput ? STDIN_FILENO : OpenByName(path, O_RDONLY | kOpenPlain);
    if (fd < 0) return CannotRead(path, errno);
    struct stat st {};
    std::optional<std::string> bytes;
    if (fstat(fd, &st) != 0) {
        bytes = CannotRead(path, errno);
    } else if (S_ISDIR(st.st_mode)) {
        bytes = CannotRead(path, EISDIR);
    } else if (S_ISREG(st.st_mode) && static_cast<unsigned long long>(st.st_size) > kMaxInputBytes) {
        bytes = TooLarge(path);
    } else {
        bytes.emplace();
        char buffer[1 << 16];
        for (;;) {
            const ssize_t got = read(fd, buffer, sizeof buffer);
            if (got < 0 && errno == EINTR) continue;
            if (got < 0) {
                bytes = CannotRead(path, errno);
                break;
            }
            if (got == 0) break;
            if (bytes->size() + static_cast<size_t>(got) > kMaxInputBytes) {
                bytes = TooLarge(path);
                break;
            }
            bytes->append(buffer, static_cast<size_t>(got));
        }
    }
    if (!standardInput) close(fd);
    return bytes;
}

bool NotADirectory(const std::string& path) {
    struct stat st {};
    if (stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) return CannotRead(path, EISDIR), false;
    return true;
}

std::optional<std::string> TextArgument(const Args& args, size_t first) {
    if (args.size() <= first || (args.size() == first + 1 && args[first] == "-")) return ReadInput("-");
    std::string text = args[first];
    for (size_t i = first + 1; i < args.size(); ++i) text += " " + args[i];
    return text;
}

std::optional<std::string> LineArgument(const Args& args, size_t first) {
    auto text = TextArgument(args, first);
    if (text)
        while (!text->empty() && (text->back() == '\n' || text->back() == '\r')) text->pop_back();
    return text;
}
