// Text between the library's 16-bit strings and the terminal's UTF-8.
#ifndef ZEL_CLI_TEXT_H
#define ZEL_CLI_TEXT_H

#include <zel/wintypes.h>

#include <string>

std::string ToUtf8(const WCHAR* text);
std::u16string FromUtf8(const std::string& text);
std::string Hex(unsigned long value);
// The system's text of a Win32 error code, in the user's language, as the library gives it.
std::string SystemErrorText(LONG code);
// The text of the last error of the library's platform calls on this thread (a profile write that
// failed, say): the one place that asks for it.
std::string LastErrorText();

#endif  // ZEL_CLI_TEXT_H
