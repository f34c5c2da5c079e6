// What the subcommands read: their text from arguments or standard input, and their options.
#ifndef ZEL_CLI_INPUT_H
#define ZEL_CLI_INPUT_H

#include <optional>
#include <string>

#include "commands.h"

// The bytes of a file, or of standard input for "-". nullopt (with a message on standard error)
// when the file cannot be read.
std::optional<std::string> ReadInput(const std::string& path);

// The text a command works on: its arguments from index first on, joined by blanks, or standard
// input when there are none (or the one argument is "-").
std::optional<std::string> TextArgument(const Args& args, size_t first);

// The same, as one line: the line end that standard input or a file brings is taken off.
std::optional<std::string> LineArgument(const Args& args, size_t first);

// True when the arguments ask for help.
bool WantsHelp(const Args& args);

#endif  // ZEL_CLI_INPUT_H
