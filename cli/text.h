// Text between the library's 16-bit strings and the terminal's UTF-8.
#ifndef ZEL_CLI_TEXT_H
#define ZEL_CLI_TEXT_H

#include <zel/wintypes.h>

#include <string>

std::string ToUtf8(const WCHAR* text);
std::u16string FromUtf8(const std::string& text);
std::string Hex(unsigned long value);

#endif  // ZEL_CLI_TEXT_H
