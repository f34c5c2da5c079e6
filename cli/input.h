// What the subcommands read: their text from arguments, files or standard input.
#ifndef ZEL_CLI_INPUT_H
#define ZEL_CLI_INPUT_H

#include <cstddef>
#include <optional>
#include <string>

#include "commands.h"

// The most that zel reads from one file or standard input: every count that the library takes
// as an int stays in range for the widest conversion (four bytes a unit).
constexpr size_t kMaxInputBytes = size_t{256} << 20;

// The bytes of a file, or of standard input for "-". nullopt, with a message, when it can't be
// read: missing, a directory, unreadable, or larger than kMaxInputBytes.
std::optional<std::string> ReadInput(const std::string& path);

// False, with the message ReadInput would give, when path names something that exists but is no
// file to read (a directory): for files that the library opens itself.
bool NotADirectory(const std::string& path);

// The text a command works on: its arguments from index first on, joined by blanks, or standard
// input when there are none (or the one argument is "-").
std::optional<std::string> TextArgument(const Args& args, size_t first);

// The same, as one line: the line end that standard input or a file brings is taken off.
std::optional<std::string> LineArgument(const Args& args, size_t first);

#endif  // ZEL_CLI_INPUT_H
