// Settings stores: the registry adapters over two registries, and CZelRegistry with its file form.
//
// Every ZelReg adapter has the parameters of the Win32 call of the like name, with 16-bit strings,
// and one last argument useVirtual. 0 sends the call to the system registry through the ANSI call
// (names and texts pass the ANSI code page; value data passes as bytes, unconverted), and the
// result is the system's status. Non-zero sends it to the process's in-memory registry tree, and
// the result is 0 for success and -1 for any failure. A handle must go back to the side that gave
// it: nothing records which side that was. HKEY_CLASSES_ROOT, HKEY_CURRENT_USER and
// HKEY_LOCAL_MACHINE mean the same hive on both sides. A null handle is refused by the tree (-1).
//
// The tree is one per process, has no lock and is used by one thread at a time; it is empty at
// load and gone at unload, and reaches a disk only through CZelRegistry::SaveToFile.
#ifndef ZEL_SETTINGS_H
#define ZEL_SETTINGS_H

#include <zel/wintypes.h>

#include <cstdio>
#include <string>

// ---------------------------------------------------------------------------------------------
// Registry adapters

ZEL_API LONG ZelRegOpenKey(HKEY key, const WCHAR* subKey, PHKEY result, int useVirtual = 0);
ZEL_API LONG ZelRegOpenKeyEx(HKEY key, const WCHAR* subKey, DWORD options, REGSAM access, PHKEY result,
                             int useVirtual = 0);
ZEL_API LONG ZelRegCreateKey(HKEY key, const WCHAR* subKey, PHKEY result, int useVirtual = 0);
// On the tree the disposition place is not written.
ZEL_API LONG ZelRegCreateKeyEx(HKEY key, const WCHAR* subKey, DWORD reserved, WCHAR* keyClass, DWORD options,
                               REGSAM access, const SECURITY_ATTRIBUTES* security, PHKEY result,
                               LPDWORD disposition, int useVirtual = 0);
// nameLength bounds the copy on the system's side only; the tree copies the whole name.
ZEL_API LONG ZelRegEnumKey(HKEY key, DWORD index, WCHAR* name, DWORD nameLength, int useVirtual = 0);
// System: nameLength comes back as the characters copied. Tree: it is the buffer's capacity,
// terminator included, and is left unchanged; a name that does not fit fails.
ZEL_API LONG ZelRegEnumValue(HKEY key, DWORD index, WCHAR* name, LPDWORD nameLength, LPDWORD reserved,
                             LPDWORD type, LPBYTE data, LPDWORD dataSize, int useVirtual = 0);
// The unnamed value of subKey as 16-bit text; valueSize comes back in characters, but for the
// system registry in wide mode, where it is the system call's count in bytes.
ZEL_API LONG ZelRegQueryValue(HKEY key, const WCHAR* subKey, WCHAR* value, PLONG valueSize, int useVirtual = 0);
ZEL_API LONG ZelRegQueryValueEx(HKEY key, const WCHAR* valueName, LPDWORD reserved, LPDWORD type, LPBYTE data,
                                LPDWORD dataSize, int useVirtual = 0);
// A string value stored as ANSI text, given back as 16-bit text. textLength counts the terminator;
// a text buffer shorter than the text gets the text cut and terminated within textLength.
ZEL_API LONG ZelRegQueryString(HKEY key, const WCHAR* valueName, LPDWORD reserved, LPDWORD ignored, WCHAR* text,
                               LPDWORD textLength, int useVirtual = 0);
ZEL_API LONG ZelRegSetValue(HKEY key, const WCHAR* subKey, DWORD type, const WCHAR* text, DWORD size,
                            int useVirtual = 0);
// On the tree a null valueName sets the key's unnamed value from data as 16-bit text, and a value
// keeps its first type: a write of another type fails until the value is deleted.
ZEL_API LONG ZelRegSetValueEx(HKEY key, const WCHAR* valueName, DWORD reserved, DWORD type, const BYTE* data,
                              DWORD dataSize, int useVirtual = 0);
// On the tree only a key without sub-keys can be deleted.
ZEL_API LONG ZelRegDeleteKey(HKEY key, const WCHAR* subKey, int useVirtual = 0);
ZEL_API LONG ZelRegDeleteValue(HKEY key, const WCHAR* valueName, int useVirtual = 0);
// On the tree: 0, and nothing happens.
ZEL_API LONG ZelRegCloseKey(HKEY key, int useVirtual = 0);
// Always the system registry, whatever the last argument holds.
ZEL_API LONG ZelRegSaveKey(HKEY key, const WCHAR* fileName, const SECURITY_ATTRIBUTES* security, int ignored = 0);

// ---------------------------------------------------------------------------------------------
// CZelRegistry

// A settings object bound to a root handle and a key path below it, on the system registry or on
// the tree (useVirtual). A section is a path below the key path; a null section is the key itself.
// Reads and writes open by creating, so reading a value creates the key path and the section when
// they are missing. Strings are stored as ANSI text of type REG_SZ on both registries.
//
// A copy, by construction or assignment, takes the binding (root, key path, useVirtual) and never
// the other's enumeration or save buffer: a copy starts with no enumeration open, and an assignment
// ends the enumeration that the object had open. The key path holds 519 characters and is cut there.
class ZEL_API CZelRegistry {
public:
    explicit CZelRegistry(int useVirtual = 0);
    CZelRegistry(const WCHAR* path, HKEY root, int useVirtual = 0);
    CZelRegistry(const CZelRegistry& other);
    CZelRegistry& operator=(const CZelRegistry& other);
    virtual ~CZelRegistry();

    void SetRegistryKey(const WCHAR* path, HKEY root);

    // 1 when subKey exists below the key; 0 for a null subKey.
    int ExistKey(const WCHAR* subKey);

    int GetDwordValue(const WCHAR* section, const WCHAR* name, DWORD* value);
    // maximum is in stored (ANSI) bytes; a larger value gives 0 and an empty buffer.
    int GetStringValue(const WCHAR* section, const WCHAR* name, WCHAR* buffer, DWORD maximum);
    int GetStringValue(const WCHAR* section, const WCHAR* name, std::u16string& text);
    // The block comes from new[]; the caller frees it with delete[].
    int GetBinaryValue(const WCHAR* section, const WCHAR* name, BYTE** block, DWORD* size);
    // A buffer smaller than the value gives 0 and the needed size in size.
    int GetBinaryValue(const WCHAR* section, const WCHAR* name, BYTE* buffer, DWORD* size);

    int WriteDwordValue(const WCHAR* section, const WCHAR* name, int value);
    int WriteStringValue(const WCHAR* section, const WCHAR* name, const WCHAR* text);
    int WriteBinaryValue(const WCHAR* section, const WCHAR* name, const BYTE* data, DWORD size);

    // One enumeration walks either the sub-keys or the values of a key; buffers hold 260 characters.
    int InitEnumeration(const WCHAR* section);
    int GetNextSubkeyName(WCHAR* buffer);
    int GetNextValueName(WCHAR* buffer);
    void EndEnumeration();

    // 0 when both hold the same bytes; otherwise the size difference, or -1 / 1 by the first byte
    // that differs. -1 when the own value is missing, 1 when the other's is.
    int CompareValue(const WCHAR* section, const WCHAR* name, CZelRegistry& other);

    int DeleteKey(const WCHAR* subKey);
    // With valueName: deletes that value of subKey. Without: deletes subKey with all below it.
    // A null parent is the key at the key path.
    int DeleteSubKey(const WCHAR* subKey, const WCHAR* valueName = nullptr, HKEY parent = nullptr);
    int DeleteValue(const WCHAR* section, const WCHAR* name);

    // The key at keyPath below HKEY_CURRENT_USER with all below it, to a binary file and back.
    // root has no effect. Both leave the object bound to HKEY_CURRENT_USER and the saved key's
    // parent path. A file's text longer than 259 bytes is refused: the load ends there.
    int SaveToFile(const WCHAR* keyPath, const WCHAR* filePath, HKEY root = HKEY_CURRENT_USER);
    int LoadFromFile(const WCHAR* filePath, HKEY root = HKEY_CURRENT_USER);

protected:
    // Open by creating; the caller closes the handle. Null when the key can't be had.
    HKEY GetRegistryKey();
    HKEY GetRegistryKey(REGSAM access);
    HKEY GetSectionKey(const WCHAR* section);
    HKEY GetSectionKey(const WCHAR* section, REGSAM access);

    HKEY rootKey;
    HKEY enumKey;
    DWORD enumIndex;
    WCHAR keyPath[520];
    int useVirtual;
    WCHAR* savePath;
    DWORD savePathLength;
    DWORD savePathCapacity;

private:
    int __WriteRegValue(HKEY key, const WCHAR* name, DWORD type, const BYTE* data, DWORD size);

    int _SaveKeyName(FILE* stream, const WCHAR* path);
    int _SaveFileFromReg(FILE* stream, const WCHAR* name, HKEY parent);
    int __WriteSectionValue(FILE* stream, HKEY key, const WCHAR* path, DWORD valueCount, DWORD longestValueName,
                            DWORD largestValueData);
    int __WriteSectionName(FILE* stream, const WCHAR* path, DWORD valueCount);
    int __WriteOneValue(FILE* stream, const WCHAR* name, DWORD type, const BYTE* data, DWORD size);

    int _LoadKeyName(FILE* stream, WCHAR* path);
    int __LoadSubKeyAndGetCntValue(FILE* stream, WCHAR* path, DWORD* count);
    int __LoadKeyValue(FILE* stream, DWORD* capacity, WCHAR* name, DWORD* type, BYTE** data, DWORD* size);
    int _WriteRegFromFile(FILE* stream, HKEY parent);
    int _DeleteFullSubKey(const WCHAR* name, HKEY parent);
};

#endif  // ZEL_SETTINGS_H
