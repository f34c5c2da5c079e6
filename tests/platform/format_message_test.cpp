// The system's message texts through FormatMessageA: look-up, line breaks, inserts and buffers.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdarg>
#include <string>

#include "platform/win32.h"
#include "support/system.h"

namespace {

using zeltest::RunningUnderWine;

constexpr DWORD kSystem = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
constexpr DWORD kFromString = FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ARGUMENT_ARRAY;

// The text for flags and a code, or the last error as "error N".
std::string Format(DWORD flags, DWORD code, DWORD language = 0x400, const void* source = nullptr,
                   const DWORD_PTR* arguments = nullptr) {
    char buffer[512];
    SetLastError(0);
    DWORD length = FormatMessageA(flags, source, code, language, buffer, sizeof buffer,
                                  reinterpret_cast<va_list*>(const_cast<DWORD_PTR*>(arguments)));
    if (!length) return "error " + std::to_string(GetLastError());
    EXPECT_EQ(length, std::string(buffer).size());
    return buffer;
}

std::string FormatString(const char* definition, std::initializer_list<DWORD_PTR> arguments, DWORD width = 0) {
    return Format(kFromString | width, 0, 0, definition, arguments.begin());
}

std::string FormatList(const char* definition, ...) {
    va_list arguments;
    va_start(arguments, definition);
    char buffer[128];
    DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_STRING, definition, 0, 0, buffer, sizeof buffer, &arguments);
    va_end(arguments);
    return length ? std::string(buffer) : "error " + std::to_string(GetLastError());
}

TEST(FormatMessage, SystemCodesInEveryFormAndLanguage) {
    const std::string notFound = Format(kSystem, ERROR_FILE_NOT_FOUND, 0x409);
    if (!RunningUnderWine()) {  // Wine words its messages in its own way
        EXPECT_EQ(notFound, "The system cannot find the file specified.\r\n");
        EXPECT_EQ(Format(kSystem, ERROR_RESOURCE_NAME_NOT_FOUND, 0x409),
                  "The specified resource name cannot be found in the image file.\r\n");
    }
    EXPECT_EQ(notFound.substr(notFound.size() - 3), ".\r\n");
    EXPECT_EQ(Format(kSystem, 0x80070002, 0x409), notFound);  // the HRESULT of the code
    // The default language is the user's where the system has its texts.
    const std::string inUsersLanguage = Format(kSystem, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Format(kSystem, ERROR_FILE_NOT_FOUND, 0), inUsersLanguage);
    EXPECT_EQ(Format(kSystem, 0x80070002), inUsersLanguage);
#ifndef _WIN32  // the POSIX layer's table is English, for any English; a system has the languages it installed
    EXPECT_EQ(inUsersLanguage, notFound);
    EXPECT_EQ(Format(kSystem, ERROR_FILE_NOT_FOUND, 0x809), notFound);
    EXPECT_EQ(Format(kSystem, ERROR_FILE_NOT_FOUND, 0x412), "error 1815");
#endif
    // Unknown codes, and codes of other facilities.
    for (DWORD code : {0x12345u, 0x80040002u, 0x82000001u, 0x80080002u})
        EXPECT_EQ(Format(kSystem, code), "error 317") << std::hex << code;
    // A module without a message table: none at all, or no resources at all.
    const std::string fromModule = Format(FORMAT_MESSAGE_FROM_HMODULE, ERROR_FILE_NOT_FOUND);
    EXPECT_TRUE(fromModule == "error 1813" || fromModule == "error 1812") << fromModule;
    EXPECT_EQ(Format(0, ERROR_FILE_NOT_FOUND), "error 87");  // one source must be named
}

TEST(FormatMessage, EveryCodeThePlatformReportsHasAText) {
    std::vector<DWORD> codes = {ERROR_INSUFFICIENT_BUFFER, ERROR_INVALID_NAME, ERROR_MOD_NOT_FOUND,
                                ERROR_PROC_NOT_FOUND, ERROR_MORE_DATA, ERROR_NO_MORE_ITEMS, ERROR_NO_MORE_FILES,
                                ERROR_FILE_EXISTS, ERROR_HANDLE_EOF, ERROR_KEY_DELETED, ERROR_BADKEY,
                                ERROR_BADDB, ERROR_CANTOPEN, ERROR_CANTREAD, ERROR_CANTWRITE,
                                ERROR_REGISTRY_CORRUPT, ERROR_REGISTRY_IO_FAILED, ERROR_CHILD_MUST_BE_VOLATILE,
                                ERROR_RESOURCE_DATA_NOT_FOUND, ERROR_RESOURCE_TYPE_NOT_FOUND, ERROR_ENVVAR_NOT_FOUND,
                                ERROR_NO_UNICODE_TRANSLATION, ERROR_DIRECTORY, ERROR_BAD_PATHNAME,
                                ERROR_INVALID_FLAGS, ERROR_NOT_FOUND, ERROR_NOACCESS, ERROR_BUFFER_OVERFLOW,
                                1155 /* no association */};
    for (int error : {ENOENT, ENOTDIR, EMFILE, EACCES, EBADF, ENOMEM, EROFS, EXDEV, EBUSY, EAGAIN, EEXIST,
                      EINVAL, EPIPE, ENOSPC, ENOSYS, ENAMETOOLONG, ENOTEMPTY, ELOOP, ENOEXEC, ESPIPE, EIO,
                      ETIMEDOUT, ECANCELED, ERANGE, ENOTSUP, EPROTO})
        codes.push_back(ZelPlatformErrorFromErrno(error));
    for (DWORD code : codes) {
        std::string text = Format(kSystem, code, 0x409);  // in English, whose texts end in a full stop
        ASSERT_GT(text.size(), 3u) << code;
        EXPECT_EQ(text.substr(text.size() - 3), ".\r\n") << code << ": " << text;
    }
}

TEST(FormatMessage, WidthMaskTurnsLineBreaksIntoBlanks) {
    std::string denied = Format(kSystem, ERROR_ACCESS_DENIED);
    denied.replace(denied.size() - 2, 2, " ");
    EXPECT_EQ(Format(kSystem | FORMAT_MESSAGE_MAX_WIDTH_MASK, ERROR_ACCESS_DENIED), denied);
    EXPECT_EQ(FormatString("one\r\ntwo\nthree%nfour", {}, FORMAT_MESSAGE_MAX_WIDTH_MASK), "one two three\r\nfour");
    EXPECT_EQ(FormatString("one\r\ntwo%0three\r\n", {}), "one\r\ntwo");
    // A width breaks lines at blanks.
    EXPECT_EQ(FormatString("aaa bbb ccc\r\nddd eee f", {}, 8), "aaa bbb\r\nccc ddd\r\neee f");
    // A word longer than the width stays whole, as documented; Wine cuts it at the width.
    if (!RunningUnderWine()) {
        EXPECT_EQ(FormatString("ab eeeeeeeeeeee f", {}, 8), "ab\r\neeeeeeeeeeee\r\nf");
    }
}

TEST(FormatMessage, InsertsFromAnArrayOrAList) {
    const char* name = "c:\\data\\x.exe";
    std::string definition = Format(kSystem, ERROR_BAD_EXE_FORMAT);
    if (!RunningUnderWine()) {
        EXPECT_EQ(definition, "%1 is not a valid Win32 application.\r\n");
    }
    ASSERT_NE(definition.find("%1"), std::string::npos);
    definition.replace(definition.find("%1"), 2, name);
    definition.replace(definition.size() - 2, 2, " ");
    EXPECT_EQ(Format(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_ARGUMENT_ARRAY | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                     ERROR_BAD_EXE_FORMAT, 0x400, nullptr, std::initializer_list<DWORD_PTR>{
                                                              reinterpret_cast<DWORD_PTR>(name), 0}.begin()),
              definition);

    const WCHAR* wide = u"wide";
    EXPECT_EQ(FormatString("%2 %1!d! %3!04X! %4!-6s!| %5!ls! %6!c! %% %. %! %1!u!",
                           {static_cast<DWORD_PTR>(-5), reinterpret_cast<DWORD_PTR>("two"), 0xBEEF,
                            reinterpret_cast<DWORD_PTR>("ab"), reinterpret_cast<DWORD_PTR>(wide), 'z'}),
              "two -5 BEEF ab    | wide z % . ! 4294967291");
    EXPECT_EQ(FormatString("%10 %11", {1, 2, 3, 4, 5, 6, 7, 8, 9, reinterpret_cast<DWORD_PTR>("ten"),
                                       reinterpret_cast<DWORD_PTR>("eleven")}),
              "ten eleven");
    EXPECT_EQ(FormatString("%1!I64x!", {0x123456789ABCull}), "123456789abc");
    EXPECT_EQ(FormatList("%1 has %2!d! items", "list", 3), "list has 3 items");
    // Ignored inserts stay for a later formatting; a hard line break still breaks.
    EXPECT_EQ(Format(FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_IGNORE_INSERTS, 0, 0, "%1!d! and %% %n"),
              "%1!d! and %% \r\n");
#ifndef _WIN32  // what Windows makes of broken forms is not documented
    // Broken forms fail rather than read what isn't there.
    for (const char* broken : {"%1!d", "%1!!", "%1!q!", "%1!123456d!", "%1!zd!"})
        EXPECT_EQ(FormatString(broken, {1}), "error 87") << broken;
#endif
    EXPECT_EQ(Format(FORMAT_MESSAGE_FROM_STRING, 0, 0, "%1"), "error 87");  // no arguments at all
}

TEST(FormatMessage, BuffersKeepTheirBounds) {
    const char* definition = "0123456789";
    char buffer[16];
    memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(FormatMessageA(FORMAT_MESSAGE_FROM_STRING, definition, 0, 0, buffer, 10, nullptr), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(buffer[0], '#');
    EXPECT_EQ(FormatMessageA(FORMAT_MESSAGE_FROM_STRING, definition, 0, 0, buffer, 11, nullptr), 10u);
    EXPECT_STREQ(buffer, definition);
    EXPECT_EQ(buffer[11], '#');
    // Without a buffer to allocate only the size counts.
    EXPECT_EQ(FormatMessageA(FORMAT_MESSAGE_FROM_STRING, definition, 0, 0, nullptr, 0, nullptr), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));

    // An allocated buffer holds at least the size asked for, and LocalFree releases it.
    const std::string denied = Format(kSystem, ERROR_ACCESS_DENIED);
    LPSTR allocated = reinterpret_cast<LPSTR>(1);
    EXPECT_EQ(FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | kSystem, nullptr, 0x80070005, 0,
                             reinterpret_cast<LPSTR>(&allocated), 300, nullptr),
              denied.size());
    ASSERT_NE(allocated, nullptr);
    EXPECT_EQ(allocated, denied);
    memset(allocated, 'x', 300);
    EXPECT_EQ(LocalFree(allocated), nullptr);
    // A failure leaves the pointer null.
    allocated = reinterpret_cast<LPSTR>(1);
    EXPECT_EQ(FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | kSystem, nullptr, 0x7777, 0,
                             reinterpret_cast<LPSTR>(&allocated), 0, nullptr),
              0u);
    EXPECT_EQ(allocated, nullptr);
}

}  // namespace
