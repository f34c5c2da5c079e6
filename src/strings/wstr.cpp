// The run-time's wide-string operations on 16-bit units.
#include "strings/wstr.h"

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "platform/posix/process/thread_object.h"
#include "platform/win32.h"

size_t wcslen(const WCHAR* s) {
    const WCHAR* p = s;
    while (*p) ++p;
    return static_cast<size_t>(p - s);
}

int wcscmp(const WCHAR* a, const WCHAR* b) {
    while (*a && *a == *b) {
        ++a;
        ++b;
    }
    return static_cast<int>(*a) - static_cast<int>(*b);
}

int wcsncmp(const WCHAR* a, const WCHAR* b, size_t count) {
    for (; count; --count, ++a, ++b) {
        if (*a != *b) return static_cast<int>(*a) - static_cast<int>(*b);
        if (!*a) break;
    }
    return 0;
}

WCHAR* wcschr(const WCHAR* s, WCHAR c) {
    for (;; ++s) {
        if (*s == c) return const_cast<WCHAR*>(s);
        if (!*s) return nullptr;
    }
}

WCHAR* wcsrchr(const WCHAR* s, WCHAR c) {
    const WCHAR* found = nullptr;
    for (;; ++s) {
        if (*s == c) found = s;
        if (!*s) return const_cast<WCHAR*>(found);
    }
}

WCHAR* wcsstr(const WCHAR* haystack, const WCHAR* needle) {
    if (!*needle) return const_cast<WCHAR*>(haystack);
    for (; *haystack; ++haystack) {
        if (*haystack != *needle) continue;
        const WCHAR* h = haystack;
        const WCHAR* n = needle;
        while (*n && *h == *n) {
            ++h;
            ++n;
        }
        if (!*n) return const_cast<WCHAR*>(haystack);
        if (!*h) break;  // the rest of the haystack is shorter than the needle
    }
    return nullptr;
}

WCHAR* wcscpy(WCHAR* dest, const WCHAR* src) {
    WCHAR* d = dest;
    while ((*d++ = *src++) != 0) {
    }
    return dest;
}

WCHAR* wcsncpy(WCHAR* dest, const WCHAR* src, size_t count) {
    size_t i = 0;
    for (; i < count && src[i]; ++i) dest[i] = src[i];
    for (; i < count; ++i) dest[i] = 0;
    return dest;
}

namespace {
thread_local WCHAR* tokenNext = nullptr;

bool IsDelimiter(WCHAR c, const WCHAR* delimiters) {
    for (const WCHAR* d = delimiters; *d; ++d)
        if (*d == c) return true;
    return false;
}
}  // namespace

WCHAR* wcstok(WCHAR* s, const WCHAR* delimiters) {
    WCHAR* p = s ? s : tokenNext;
    if (!p) return nullptr;
    while (*p && IsDelimiter(*p, delimiters)) ++p;
    if (!*p) {
        tokenNext = nullptr;
        return nullptr;
    }
    WCHAR* token = p;
    while (*p && !IsDelimiter(*p, delimiters)) ++p;
    if (*p) {
        *p = 0;
        tokenNext = p + 1;
    } else {
        tokenNext = p;
    }
    return token;
}

WCHAR* _wcsupr(WCHAR* s) {
    for (WCHAR* p = s; *p; ++p)
        if (*p >= u'a' && *p <= u'z') *p = static_cast<WCHAR>(*p - (u'a' - u'A'));
    return s;
}

namespace {
// Copies [begin, end) into an output of size units, cut to fit, always terminated.
void CopyBounded(WCHAR* out, size_t size, const WCHAR* begin, const WCHAR* end) {
    if (!out) return;
    size_t n = static_cast<size_t>(end - begin);
    if (n > size - 1) n = size - 1;
    std::memcpy(out, begin, n * sizeof(WCHAR));
    out[n] = 0;
}
}  // namespace

void _wsplitpath(const WCHAR* path, WCHAR* drive, WCHAR* dir, WCHAR* fname, WCHAR* ext) {
    if (!path) path = u"";
    if (path[0] && path[1] == u':') {
        CopyBounded(drive, _MAX_DRIVE, path, path + 2);
        path += 2;
    } else if (drive) {
        *drive = 0;
    }

    const WCHAR* fileStart = path;
    const WCHAR* dot = nullptr;
    const WCHAR* p = path;
    for (; *p; ++p) {
        if (*p == u'\\' || *p == u'/') {
            fileStart = p + 1;
            dot = nullptr;
        } else if (*p == u'.') {
            dot = p;
        }
    }
    const WCHAR* end = p;

    CopyBounded(dir, _MAX_DIR, path, fileStart);
    if (!dot) dot = end;
    CopyBounded(fname, _MAX_FNAME, fileStart, dot);
    CopyBounded(ext, _MAX_EXT, dot, end);
}

namespace {
struct PathWriter {
    WCHAR* out;
    size_t length = 0;
    void Put(WCHAR c) {
        if (length < _MAX_PATH - 1) out[length++] = c;
    }
    void Put(const WCHAR* s) {
        for (; *s; ++s) Put(*s);
    }
};
}  // namespace

void _wmakepath(WCHAR* path, const WCHAR* drive, const WCHAR* dir, const WCHAR* fname, const WCHAR* ext) {
    if (!path) return;
    PathWriter w{path};
    if (drive && *drive) {
        w.Put(drive);
        if (!drive[1]) w.Put(u':');
    }
    if (dir && *dir) {
        w.Put(dir);
        WCHAR last = dir[wcslen(dir) - 1];
        if (last != u'\\' && last != u'/') w.Put(u'\\');
    }
    if (fname) w.Put(fname);
    if (ext && *ext) {
        if (*ext != u'.') w.Put(u'.');
        w.Put(ext);
    }
    path[w.length] = 0;
}

namespace {
// The values handed out by _wgetenv, per thread and name.
struct EnvValues : std::map<std::u16string, std::u16string> {};

}  // namespace

WCHAR* _wgetenv(const WCHAR* name) {
    if (!name || !*name) return nullptr;
    EnvValues& values = ZelThreadObject<EnvValues>();
    const DWORD lastError = GetLastError();  // a look-up leaves the caller's error as it was
    std::u16string value(32, u'\0');
    DWORD length;
    for (;;) {
        SetLastError(0);  // an empty value gives 0 too, and sets no error
        length = GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size()));
        if (length < value.size()) break;
        value.resize(length);  // the size needed; asked again, as another thread may change it
    }
    const bool found = length > 0 || GetLastError() != ERROR_ENVVAR_NOT_FOUND;
    SetLastError(lastError);
    if (!found) {
        values.erase(name);
        return nullptr;
    }
    std::u16string& slot = values[name];
    slot.assign(value.data(), length);
    return slot.data();
}

// ---------------------------------------------------------------------------------------------
// _snwprintf

namespace {
struct FormatWriter {
    WCHAR* buffer;
    size_t count;
    size_t length = 0;
    void Put(WCHAR c) {
        if (buffer && length < count) buffer[length] = c;
        ++length;
    }
    void Repeat(WCHAR c, size_t n) {
        for (; n; --n) Put(c);
    }
};

struct Directive {
    bool left = false;
    bool zero = false;
    size_t width = 0;
    bool hasPrecision = false;
    size_t precision = 0;
    enum { Int, Long64, Size } size = Int;
};

void PutPadded(FormatWriter& w, const Directive& directive, const WCHAR* text, size_t length) {
    size_t pad = directive.width > length ? directive.width - length : 0;
    if (!directive.left) w.Repeat(u' ', pad);
    for (size_t i = 0; i < length; ++i) w.Put(text[i]);
    if (directive.left) w.Repeat(u' ', pad);
}

void PutNumber(FormatWriter& w, const Directive& directive, uint64_t magnitude, bool negative, unsigned base, bool upper) {
    WCHAR digits[24];
    size_t n = 0;
    const char* set = upper ? "0123456789ABCDEF" : "0123456789abcdef";
    do {
        digits[n++] = static_cast<WCHAR>(set[magnitude % base]);
        magnitude /= base;
    } while (magnitude);
    if (directive.hasPrecision && directive.precision == 0 && n == 1 && digits[0] == u'0') n = 0;

    size_t precisionZeros = directive.hasPrecision && directive.precision > n ? directive.precision - n : 0;
    size_t body = n + precisionZeros + (negative ? 1 : 0);
    size_t pad = directive.width > body ? directive.width - body : 0;
    bool zeroPad = directive.zero && !directive.left && !directive.hasPrecision;

    if (!directive.left && !zeroPad) w.Repeat(u' ', pad);
    if (negative) w.Put(u'-');
    if (zeroPad) w.Repeat(u'0', pad);
    w.Repeat(u'0', precisionZeros);
    while (n) w.Put(digits[--n]);
    if (directive.left) w.Repeat(u' ', pad);
}

size_t ReadCount(const WCHAR*& f, va_list& args, bool& leftFromStar) {
    if (*f == u'*') {
        ++f;
        int value = va_arg(args, int);
        if (value < 0) {
            leftFromStar = true;
            return static_cast<size_t>(-static_cast<int64_t>(value));
        }
        return static_cast<size_t>(value);
    }
    size_t value = 0;
    while (*f >= u'0' && *f <= u'9') {
        if (value < 100000) value = value * 10 + static_cast<size_t>(*f - u'0');
        ++f;
    }
    return value;
}
}  // namespace

int _vsnwprintf(WCHAR* buffer, size_t count, const WCHAR* format, va_list args) {
    if (!format || (!buffer && count)) return -1;
    va_list ap;
    va_copy(ap, args);
    FormatWriter w{buffer, count};

    for (const WCHAR* f = format; *f;) {
        if (*f != u'%') {
            w.Put(*f++);
            continue;
        }
        const WCHAR* start = f++;
        Directive directive;
        for (;; ++f) {
            if (*f == u'-')
                directive.left = true;
            else if (*f == u'0')
                directive.zero = true;
            else if (*f != u'+' && *f != u' ' && *f != u'#')
                break;
        }
        directive.width = ReadCount(f, ap, directive.left);
        if (*f == u'.') {
            ++f;
            bool ignored = false;
            directive.hasPrecision = true;
            directive.precision = ReadCount(f, ap, ignored);
            if (ignored) directive.hasPrecision = false;  // a negative precision counts as none
        }
        // Length modifiers. LONG and DWORD are 32 bits, so 'l' names a 32-bit value as on the
        // system this format comes from; 'll' and 'I64' name 64 bits, 'z' and 'I' a size.
        if (*f == u'h') {
            ++f;
            if (*f == u'h') ++f;
        } else if (*f == u'l') {
            ++f;
            if (*f == u'l') {
                ++f;
                directive.size = Directive::Long64;
            }
        } else if (f[0] == u'I' && f[1] == u'6' && f[2] == u'4') {
            f += 3;
            directive.size = Directive::Long64;
        } else if (f[0] == u'I' && f[1] == u'3' && f[2] == u'2') {
            f += 3;
        } else if (*f == u'I' || *f == u'z') {
            ++f;
            directive.size = Directive::Size;
        }

        WCHAR conversion = *f;
        if (conversion) ++f;
        switch (conversion) {
        case u'%':
            w.Put(u'%');
            break;
        case u'c':
        case u'C': {
            WCHAR c = static_cast<WCHAR>(va_arg(ap, int));
            if (conversion == u'C') c = static_cast<WCHAR>(static_cast<unsigned char>(c));
            PutPadded(w, directive, &c, 1);
            break;
        }
        case u's': {
            const WCHAR* s = va_arg(ap, const WCHAR*);
            if (!s) s = u"(null)";
            size_t n = 0;
            while ((!directive.hasPrecision || n < directive.precision) && s[n]) ++n;
            PutPadded(w, directive, s, n);
            break;
        }
        case u'S': {
            // 8-bit text is in the ANSI code page, as everywhere in the library.
            const char* s = va_arg(ap, const char*);
            ZelAnsiArg wide = ZelPlatformAnsiToWide(s ? s : "(null)");
            size_t n = wide.text.size();
            if (directive.hasPrecision && directive.precision < n) n = directive.precision;
            PutPadded(w, directive, wide.text.data(), n);
            break;
        }
        case u'd':
        case u'i': {
            int64_t value;
            if (directive.size == Directive::Long64)
                value = va_arg(ap, long long);
            else if (directive.size == Directive::Size)
                value = static_cast<int64_t>(va_arg(ap, ptrdiff_t));
            else
                value = va_arg(ap, int);
            bool negative = value < 0;
            uint64_t magnitude = negative ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
            PutNumber(w, directive, magnitude, negative, 10, false);
            break;
        }
        case u'u':
        case u'x':
        case u'X': {
            uint64_t value;
            if (directive.size == Directive::Long64)
                value = va_arg(ap, unsigned long long);
            else if (directive.size == Directive::Size)
                value = va_arg(ap, size_t);
            else
                value = va_arg(ap, unsigned int);
            PutNumber(w, directive, value, false, conversion == u'u' ? 10 : 16, conversion == u'X');
            break;
        }
        default:
            // Not a conversion of this formatter: the text stands as written.
            for (const WCHAR* p = start; p < f; ++p) w.Put(*p);
            break;
        }
    }
    va_end(ap);

    if (w.length > static_cast<size_t>(INT_MAX)) return -1;
    if (!buffer) return static_cast<int>(w.length);  // a size query
    if (w.length > count) return -1;
    if (w.length < count) buffer[w.length] = 0;
    return static_cast<int>(w.length);
}

int _snwprintf(WCHAR* buffer, size_t count, const WCHAR* format, ...) {
    va_list args;
    va_start(args, format);
    int result = _vsnwprintf(buffer, count, format, args);
    va_end(args);
    return result;
}
