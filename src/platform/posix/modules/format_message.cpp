// FormatMessageA over the system's message table, and the local heap that its allocated results
// come from.
//
// A message definition is copied with its insert sequences (%1 to %99, each with an optional
// printf form between exclamation marks, %s by default) and escapes (%0 ends the message without a
// line break, %n is a hard line break, %r, %t, and %x for any other x gives x). Ignoring inserts
// keeps every sequence as it stands but %n, which still breaks the line. The low byte of the
// flags decides the line breaks: 0 keeps the definition's own, FORMAT_MESSAGE_MAX_WIDTH_MASK turns
// each into a blank, and a width of 1 to 254 also turns each into a blank and breaks lines at blanks
// so that no line is wider than that, where a word allows it.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "platform/posix/modules/system_message_texts.h"
#include "platform/win32.h"

namespace {

constexpr DWORD kWidthMask = FORMAT_MESSAGE_MAX_WIDTH_MASK;
constexpr DWORD kWin32Facility = 0x80070000;
// Allocated messages are refused above this many bytes, as the system refuses them.
constexpr size_t kMaxMessageBytes = 128 * 1024;
// Widths and precisions of an insert's form: any more digits than this cannot fit a message.
constexpr size_t kMaxFormDigits = 5;

// Why formatting stopped: each maps to the last error of a failed call.
struct FormatFailure {
    DWORD error;
};

// The values of the inserts: an array of pointer-sized values, or a va_list read in order of the
// insert numbers as far as the highest one asked for.
class InsertValues {
public:
    InsertValues(DWORD flags, va_list* arguments)
        : array_((flags & FORMAT_MESSAGE_ARGUMENT_ARRAY) ? reinterpret_cast<const DWORD_PTR*>(arguments) : nullptr),
          list_((flags & FORMAT_MESSAGE_ARGUMENT_ARRAY) ? nullptr : arguments) {}

    DWORD_PTR Get(unsigned number) {
        if (array_) return array_[number - 1];
        if (!list_) throw FormatFailure{ERROR_INVALID_PARAMETER};
        while (taken_.size() < number) taken_.push_back(va_arg(*list_, DWORD_PTR));
        return taken_[number - 1];
    }

private:
    const DWORD_PTR* array_;
    va_list* list_;
    std::vector<DWORD_PTR> taken_;
};

std::string AnsiFromWide(const WCHAR* text) { return text ? ZelPlatformWideToAnsi(text) : std::string("(null)"); }

// snprintf with a form made here, never a caller's format string.
template <typename Value>
std::string Printf(const std::string& form, Value value) {
    int length = std::snprintf(nullptr, 0, form.c_str(), value);
    if (length < 0) throw FormatFailure{ERROR_INVALID_PARAMETER};
    std::string text(static_cast<size_t>(length) + 1, '\0');
    std::snprintf(text.data(), text.size(), form.c_str(), value);
    text.resize(static_cast<size_t>(length));
    return text;
}

// One insert's printf form, such as "-8.3s" or "08lx", applied to its value.
std::string FormatInsert(const std::string& form, DWORD_PTR value) {
    const char conversion = form.back();
    const std::string body = form.substr(0, form.size() - 1);
    size_t at = body.find_first_not_of("-+ #0");
    if (at == std::string::npos) at = body.size();
    std::string head = "%" + body.substr(0, at);
    auto takeDigits = [&] {
        size_t end = body.find_first_not_of("0123456789", at);
        if (end == std::string::npos) end = body.size();
        if (end - at > kMaxFormDigits) throw FormatFailure{ERROR_INVALID_PARAMETER};
        head += body.substr(at, end - at);
        at = end;
    };
    takeDigits();  // width
    if (at < body.size() && body[at] == '.') {
        head += body[at++];
        takeDigits();  // precision
    }
    const std::string size = body.substr(at);
    const bool wide64 = size == "I64" || size == "ll";
    const bool wide = size == "w" || size == "l";
    if (!wide64 && !wide && !size.empty() && size != "h" && size != "I32" && size != "I")
        throw FormatFailure{ERROR_INVALID_PARAMETER};

    switch (conversion) {
        case 's':
        case 'S':
            if (wide || conversion == 'S')
                return Printf(head + "s", AnsiFromWide(reinterpret_cast<const WCHAR*>(value)).c_str());
            return Printf(head + "s", value ? reinterpret_cast<const char*>(value) : "(null)");
        case 'c':
        case 'C': {
            WCHAR unit[2] = {static_cast<WCHAR>(value), 0};
            if (wide || conversion == 'C') return Printf(head + "s", AnsiFromWide(unit).c_str());
            return Printf(head + "c", static_cast<int>(static_cast<unsigned char>(value)));
        }
        case 'd':
        case 'i': {
            // Without a 64-bit size an argument is a 32-bit value in its pointer-sized slot.
            long long number = wide64 ? static_cast<long long>(value) : static_cast<int32_t>(value);
            return Printf(head + "lld", number);
        }
        case 'u':
        case 'x':
        case 'X':
        case 'o': {
            unsigned long long number = wide64 ? value : static_cast<uint32_t>(value);
            return Printf(head + "ll" + conversion, number);
        }
        default: throw FormatFailure{ERROR_INVALID_PARAMETER};
    }
}

// Lines no wider than width, broken at the last blank that keeps them so.
void WrapLines(std::string& text, size_t width) {
    size_t lineStart = 0, lastBlank = std::string::npos;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n') {
            lineStart = i + 1;
            lastBlank = std::string::npos;
            continue;
        }
        if (text[i] == ' ') lastBlank = i;
        if (i - lineStart >= width && lastBlank != std::string::npos && lastBlank > lineStart) {
            text.replace(lastBlank, 1, "\r\n");
            lineStart = lastBlank + 2;
            i = lastBlank + 1;
            lastBlank = std::string::npos;
        }
    }
}

std::string FormatDefinition(const char* definition, DWORD flags, va_list* arguments) {
    const DWORD width = flags & kWidthMask;
    const bool ignoreInserts = flags & FORMAT_MESSAGE_IGNORE_INSERTS;
    InsertValues inserts(flags, arguments);
    std::string out;
    for (const char* p = definition; *p;) {
        if (out.size() > kMaxMessageBytes) throw FormatFailure{ERROR_MORE_DATA};
        if (*p == '\r' || *p == '\n') {  // a regular line break
            p += (p[0] == '\r' && p[1] == '\n') ? 2 : 1;
            out += width ? " " : "\r\n";
            continue;
        }
        if (*p != '%' || !p[1]) {
            out += *p++;
            continue;
        }
        if (ignoreInserts && p[1] != 'n') {  // sequences stay for a later formatting; %n still breaks
            out += *p++;
            out += *p++;
            continue;
        }
        const char code = p[1];
        if (code >= '1' && code <= '9') {
            unsigned number = static_cast<unsigned>(code - '0');
            p += 2;
            if (*p >= '0' && *p <= '9') number = number * 10 + static_cast<unsigned>(*p++ - '0');
            std::string form = "s";
            if (*p == '!') {
                const char* close = std::strchr(p + 1, '!');
                if (!close || close == p + 1) throw FormatFailure{ERROR_INVALID_PARAMETER};
                form.assign(p + 1, close);
                p = close + 1;
            }
            out += FormatInsert(form, inserts.Get(number));
            continue;
        }
        p += 2;
        switch (code) {
            case '0': return out;  // the end, with no line break after it
            case 'n': out += "\r\n"; break;
            case 'r': out += '\r'; break;
            case 't': out += '\t'; break;
            default: out += code; break;
        }
    }
    if (width && width != kWidthMask) WrapLines(out, width);
    return out;
}

// The message definition that the flags name.
const char* FindDefinition(DWORD flags, LPCVOID source, DWORD messageId, DWORD languageId) {
    if (flags & FORMAT_MESSAGE_FROM_STRING) {
        if ((flags & (FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_FROM_HMODULE)) || !source)
            throw FormatFailure{ERROR_INVALID_PARAMETER};
        return static_cast<const char*>(source);
    }
    if (!(flags & FORMAT_MESSAGE_FROM_SYSTEM)) {
        // No module here carries a message table.
        const bool fromModule = flags & FORMAT_MESSAGE_FROM_HMODULE;
        throw FormatFailure{fromModule ? DWORD{ERROR_RESOURCE_TYPE_NOT_FOUND} : DWORD{ERROR_INVALID_PARAMETER}};
    }
    // The table is in English: a neutral or default language, or any English one, finds it.
    const WORD primary = PRIMARYLANGID(languageId);
    if (languageId > 0xFFFF || (primary != LANG_NEUTRAL && primary != LANG_ENGLISH))
        throw FormatFailure{ERROR_RESOURCE_LANG_NOT_FOUND};
    if ((messageId & 0xFFFF0000u) == kWin32Facility) messageId &= 0xFFFF;
    const char* definition = ZelPlatformSystemMessageText(messageId);
    if (!definition) throw FormatFailure{ERROR_MR_MID_NOT_FOUND};
    return definition;
}

}  // namespace

HLOCAL LocalAlloc(UINT flags, SIZE_T size) {
    // LocalFree releases with free(), like the other allocators of the platform.
    void* block = (flags & LMEM_ZEROINIT) ? std::calloc(size ? size : 1, 1) : std::malloc(size ? size : 1);
    if (!block) SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return block;
}

DWORD FormatMessageA(DWORD flags, LPCVOID source, DWORD messageId, DWORD languageId, LPSTR buffer, DWORD size,
                     va_list* arguments) {
    const bool allocate = flags & FORMAT_MESSAGE_ALLOCATE_BUFFER;
    if (allocate && buffer) *reinterpret_cast<LPSTR*>(buffer) = nullptr;
    if (!buffer && allocate) {  // nowhere to leave the block
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    std::string text;
    try {
        text = FormatDefinition(FindDefinition(flags, source, messageId, languageId), flags, arguments);
        if (allocate && text.size() >= kMaxMessageBytes) throw FormatFailure{ERROR_MORE_DATA};
    } catch (const FormatFailure& failure) {
        SetLastError(failure.error);
        return 0;
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    const size_t needed = text.size() + 1;
    char* target = buffer;
    if (allocate) {
        target = static_cast<char*>(LocalAlloc(LMEM_FIXED, needed > size ? needed : size));
        if (!target) return 0;
        *reinterpret_cast<LPSTR*>(buffer) = target;
    } else if (size < needed || !buffer) {
        // Only the size is weighed against the text: a missing buffer that claims room is refused.
        SetLastError(size < needed ? ERROR_INSUFFICIENT_BUFFER : ERROR_INVALID_PARAMETER);
        return 0;
    }
    std::memcpy(target, text.c_str(), needed);
    return static_cast<DWORD>(text.size());
}
