// Resources of data modules: a resource file loaded with LoadLibraryEx(LOAD_LIBRARY_AS_DATAFILE),
// or with LoadLibrary since it is no object file. Modules that the dynamic loader holds have no
// resources here. A resource handle is the address of its directory entry inside the module's
// bytes, and the loaded resource is the address of its data there; both stay valid as long as the
// module is loaded.
#include <string>

#include "platform/common/modules/resource_file.h"
#include "platform/win32.h"

namespace {

using zelres::Entry;
using zelres::Lookup;

// An integer resource, or a name "#123", as a number; anything else gives false.
bool ResourceNumber(LPCWSTR name, uint32_t* number) {
    if (IS_INTRESOURCE(name)) {
        *number = static_cast<uint32_t>(reinterpret_cast<ULONG_PTR>(name));
        return true;
    }
    if (name[0] != u'#' || name[1] == 0) return false;
    uint32_t value = 0;
    for (LPCWSTR p = name + 1; *p; ++p) {
        if (*p < u'0' || *p > u'9') return false;
        value = value * 10 + static_cast<uint32_t>(*p - u'0');
        if (value > zelres::kMaxId) return false;
    }
    *number = value;
    return true;
}

HRSRC Fail(DWORD error) {
    SetLastError(error);
    return nullptr;
}

// The entry behind a resource handle of module, or null with the last error set.
const ZelDataModule* ResolveHandle(HMODULE module, HRSRC resource, Entry* entry) {
    const ZelDataModule* data = ZelPlatformDataModule(module);
    // Addresses compared as numbers: the handle may point anywhere, or nowhere.
    const auto at = reinterpret_cast<uintptr_t>(resource);
    const auto start = reinterpret_cast<uintptr_t>(data ? data->bytes : nullptr);
    if (!data || !resource || at < start || at - start >= data->size ||
        !zelres::EntryAt(data->bytes, data->size, static_cast<size_t>(at - start), entry)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return data;
}

uint16_t Unit(const uint8_t* p) { return static_cast<uint16_t>(p[0] | p[1] << 8); }

// The most of text that takes at most limit bytes in the ANSI code page, never parting a surrogate
// pair, converted. Byte counts grow with the number of units taken, so the cut is searched.
std::string AnsiPrefix(const std::u16string& text, size_t limit) {
    auto boundary = [&text](size_t units) {
        if (units > 0 && units < text.size() && text[units - 1] >= 0xD800 && text[units - 1] <= 0xDBFF &&
            text[units] >= 0xDC00 && text[units] <= 0xDFFF)
            return units - 1;
        return units;
    };
    auto bytes = [&text](size_t units) -> size_t {
        if (units == 0) return 0;
        int n = WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(units), nullptr, 0, nullptr, nullptr);
        return n > 0 ? static_cast<size_t>(n) : 0;
    };
    size_t units = text.size();
    if (bytes(units) > limit) {
        size_t low = 0, high = text.size();  // bytes(boundary(low)) fits, bytes(high) does not
        while (high - low > 1) {
            size_t middle = low + (high - low) / 2;
            (bytes(boundary(middle)) <= limit ? low : high) = middle;
        }
        units = boundary(low);
    }
    std::string out(bytes(units), '\0');
    if (!out.empty())
        WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(units), out.data(), static_cast<int>(out.size()),
                            nullptr, nullptr);
    return out;
}

}  // namespace

HRSRC FindResourceW(HMODULE module, LPCWSTR name, LPCWSTR type) {
    if (!name || !type) return Fail(ERROR_INVALID_PARAMETER);
    const ZelDataModule* data = ZelPlatformDataModule(module);
    if (!data) return Fail(ERROR_RESOURCE_DATA_NOT_FOUND);
    uint32_t typeNumber = 0, id = 0;
    if (!ResourceNumber(type, &typeNumber)) return Fail(ERROR_RESOURCE_TYPE_NOT_FOUND);
    if (!ResourceNumber(name, &id)) return Fail(ERROR_RESOURCE_NAME_NOT_FOUND);
    Entry entry;
    switch (zelres::FindEntry(data->bytes, data->size, typeNumber, id, &entry)) {
    case Lookup::Found:
        return reinterpret_cast<HRSRC>(const_cast<BYTE*>(data->bytes + entry.place));
    case Lookup::NotAResourceFile:
        return Fail(ERROR_RESOURCE_DATA_NOT_FOUND);
    case Lookup::Damaged:
        return Fail(ERROR_BAD_FORMAT);
    case Lookup::TypeNotFound:
        return Fail(ERROR_RESOURCE_TYPE_NOT_FOUND);
    case Lookup::NameNotFound:
        break;
    }
    return Fail(ERROR_RESOURCE_NAME_NOT_FOUND);
}

HRSRC FindResourceA(HMODULE module, LPCSTR name, LPCSTR type) {
    // Integer resources pass as they are; names go through the ANSI code page.
    auto wide = [](LPCSTR text, ZelAnsiArg& holder) -> LPCWSTR {
        if (IS_INTRESOURCE(text)) return reinterpret_cast<LPCWSTR>(text);
        holder = ZelPlatformAnsiToWide(text);
        return holder.get();
    };
    ZelAnsiArg nameText, typeText;
    return FindResourceW(module, wide(name, nameText), wide(type, typeText));
}

HGLOBAL LoadResource(HMODULE module, HRSRC resource) {
    Entry entry;
    const ZelDataModule* data = ResolveHandle(module, resource, &entry);
    if (!data) return nullptr;
    return const_cast<BYTE*>(data->bytes + entry.offset);
}

LPVOID LockResource(HGLOBAL resource) { return resource; }

DWORD SizeofResource(HMODULE module, HRSRC resource) {
    Entry entry;
    return ResolveHandle(module, resource, &entry) ? entry.size : 0;
}

int LoadStringA(HMODULE module, UINT id, LPSTR buffer, int size) {
    if (!buffer || size <= 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    buffer[0] = 0;
    const uint32_t block = zelres::StringBlockId(id);
    if (block > zelres::kMaxId) {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return 0;
    }
    HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(block), MAKEINTRESOURCEW(zelres::kTypeString));
    auto* bytes = resource ? static_cast<const uint8_t*>(LockResource(LoadResource(module, resource))) : nullptr;
    if (!bytes) return 0;
    const uint8_t* units = nullptr;
    size_t length = 0;
    zelres::StringInBlock(bytes, zelres::StringIndexInBlock(id), &units, &length);
    if (length == 0) {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return 0;
    }
    std::u16string text(length, u'\0');
    for (size_t i = 0; i < length; ++i) text[i] = Unit(units + 2 * i);
    std::string ansi = AnsiPrefix(text, static_cast<size_t>(size) - 1);
    ansi.copy(buffer, ansi.size());
    buffer[ansi.size()] = 0;
    return static_cast<int>(ansi.size());
}
