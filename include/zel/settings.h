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
#include <memory>
#include <string>
#include <vector>

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

// ---------------------------------------------------------------------------------------------
// INI store

// One entry of a section. Either text may be empty.
struct tagZELINIVALUE {
    std::u16string id;
    std::u16string value;
};

// A section: its name as "[" name "]", exactly as the file or the caller gave it, and its entries
// in order. values is never null for a section made by AddSection or by the reader.
struct tagZELINISECTION {
    std::u16string name;
    std::vector<tagZELINIVALUE*>* values;
};

struct ZelIniNameIndex;

// An INI-style configuration in memory: an ordered list of sections, each an ordered list of id and
// value pairs, with its file form in UTF-16 little-endian text behind a required byte order mark.
//
// Section names (with their brackets) and ids compare exactly, case and spaces included; look-ups
// by name find the first match, through an index once there are more than a few names to look at. Positions are zero-based and move down by one behind a
// removal. Texts that the Get operations return point into the object and stay valid until that
// record changes or goes. Name, id and value arguments must not be null (SetHeaderInfo takes null).
//
// The file form: the header text when one is set, then an empty line; each section line, its
// entry lines "id=value" (an empty id writes the value alone), and an empty line behind a section
// that has entries. Lines end in CR LF. The reader passes over everything in front of the first
// "[", skips lines beginning with ";" behind a section line and between entries, drops spaces
// around "=", and lets an entry of one or two units take the next line into its value. A line
// without an id loads with an empty id. A section name, brackets included, may hold 257 units: a
// file with a longer one is refused (result 2), and the sections read before it stay. A load
// appends to the sections there are; comments and blank lines don't survive a load and a save.
//
// One object belongs to one thread at a time. Copies, by construction or assignment, are deep
// copies of the sections, header and path; they never share the other's file or read buffer.
class ZEL_API CZelIniManager {
public:
    CZelIniManager();
    CZelIniManager(const CZelIniManager& other);
    CZelIniManager& operator=(const CZelIniManager& other);
    ~CZelIniManager();

    // The new position; -1 when a section of that name exists (a name without brackets is never
    // found, so it is always added). 0, with the error 2, when memory runs out.
    int AddSection(const WCHAR* secName);
    // 0 when the section is missing or already has that id, or when memory runs out (error 2).
    int AddIdValueStr(const WCHAR* secName, const WCHAR* id, const WCHAR* value);
    int AddIdValueStr(int secIndex, const WCHAR* id, const WCHAR* value);
    // Replace the value of an existing entry; never create one.
    int SetValue(const WCHAR* secName, const WCHAR* id, const WCHAR* value);
    int SetValue(int secIndex, const WCHAR* id, const WCHAR* value);
    int SetValue(int secIndex, int idIndex, const WCHAR* value);
    // Rename an existing entry. The new id is not compared with the others, so two entries may
    // end up with one id.
    int SetIDStr(const WCHAR* secName, const WCHAR* id, const WCHAR* newId);
    int SetIDStr(int secIndex, const WCHAR* id, const WCHAR* newId);
    int SetIDStr(int secIndex, int idIndex, const WCHAR* newId);
    // Null on failure.
    const WCHAR* GetValueStr(const WCHAR* secName, const WCHAR* id);
    const WCHAR* GetValueStr(const WCHAR* secName, int idIndex);
    const WCHAR* GetValueStr(int secIndex, int idIndex);
    const WCHAR* GetIdStr(const WCHAR* secName, int idIndex);
    const WCHAR* GetIdStr(int secIndex, int idIndex);
    // -1 on failure.
    int GetIdIndex(const WCHAR* secName, const WCHAR* id);
    int GetIdIndex(int secIndex, const WCHAR* id);
    // 0 for an empty section, -1 for a missing one.
    int GetIdCount(const WCHAR* secName);
    int GetIdCount(int secIndex);
    int GetSecCount();
    const WCHAR* GetSectionName(int secIndex);
    int GetSecIndex(const WCHAR* secName);
    int RemoveId(const WCHAR* secName, const WCHAR* id);
    int RemoveId(int secIndex, const WCHAR* id);
    int RemoveId(int secIndex, int idIndex);
    // By name: always 1, and the object counts as modified even when no section had that name.
    int RemoveSection(const WCHAR* secName);
    int RemoveSection(int secIndex);
    // Empties the section, which stays.
    int RemoveAllId(const WCHAR* secName);
    int RemoveAllId(int secIndex);
    void RemoveAllSecList();
    int IsModified();
    void _SetModified(int flag);

    // The header is not read from a file: it is written in front of the sections by a save, and a
    // load refuses a file whose text behind the byte order mark doesn't begin with it.
    const WCHAR* GetHeaderInfo();  // null when empty
    void SetHeaderInfo(const WCHAR* text);
    int CheckHeaderInfo();

    // 0 loaded; 2 size, memory, read or parse failure; 3 not opened; 4 header refused; 5 no byte
    // order mark. The path goes through the path macros and is kept, whatever the result.
    LONG LoadCfgFromFile(const WCHAR* path);
    // 1 saved. A null path saves where the last load or save went. 0 when the file can't be
    // opened or when there are no sections, in which case the file is left empty.
    int SaveCfgToFile(const WCHAR* path);

private:
    int _FindSection(const WCHAR* name, tagZELINISECTION** section);
    int _FindValueItem(int secIndex, const WCHAR* id, tagZELINIVALUE** value);
    int _FindValueItem(int secIndex, int idIndex, tagZELINIVALUE** value);
    int _AddItemToSecList(const tagZELINISECTION* section);
    int _AddItemToValueList(std::vector<tagZELINIVALUE*>* array, const tagZELINIVALUE* value);

    BOOL __IsEndPoint(const WCHAR* position);
    BOOL _IsValidSectionName(const WCHAR* text);
    BOOL _IsSecBeginLine(const WCHAR* text);
    // name holds 258 units.
    WCHAR* _ObtainSecName(WCHAR* position, WCHAR* name);
    WCHAR* _SkipCommentLine(WCHAR* position);
    WCHAR* _SkipLine(WCHAR* position);
    WCHAR* _ObtainValue(WCHAR* position, WCHAR** buffer, int* capacity, BOOL* end);
    void __SpiltStringIdAndValue(WCHAR* text, WCHAR** id, WCHAR** value);
    int _LoadCfgInfo();

    // Ends a load: frees the buffer and closes the file.
    void _ReleaseRead();

    std::vector<tagZELINISECTION*> secList;
    std::u16string headerInfo;
    WCHAR filePath[MAX_PATH];
    FILE* stream;
    int streamOpen;
    LONG fileSize;
    int modified;
    WCHAR* readBuffer;
    WCHAR* readCursor;
    // Sections and ids by name; made at the first look-up that needs it.
    std::unique_ptr<ZelIniNameIndex> nameIndex;
};

// ---------------------------------------------------------------------------------------------
// Profile calls
//
// Wide forms of the system's profile calls over its plain 8-bit INI files; they always go to the
// system and have nothing to do with the INI store above. Strings are zero-terminated 16-bit text
// and a null stays null: a null section asks for the list of sections, a null key for the keys of
// the section (each name followed by a zero, the list by a second one); in the writers a null value
// deletes the key and a null key the section. A file name without a directory lies in the Windows
// directory; the calls without a file use win.ini there. Results are the system call's, unchanged,
// and no error state is set.
//
// The integer readers and the writers pass their texts through the ANSI code page. The string
// readers call the wide call, but on the 95 family (ZelGetWinVersion 1 to 3) the ANSI call with a
// local buffer of size bytes, whose strings are then converted one by one into buffer: the result
// counts ANSI bytes, and a result of 0 leaves buffer untouched.

ZEL_API UINT ZelGetProfileInt(const WCHAR* section, const WCHAR* key, int defaultValue);
ZEL_API BOOL ZelWriteProfileString(const WCHAR* section, const WCHAR* key, const WCHAR* value);
ZEL_API UINT ZelGetPrivateProfileInt(const WCHAR* section, const WCHAR* key, int defaultValue,
                                     const WCHAR* fileName);
ZEL_API BOOL ZelWritePrivateProfileString(const WCHAR* section, const WCHAR* key, const WCHAR* value,
                                          const WCHAR* fileName);
ZEL_API DWORD ZelGetProfileString(const WCHAR* section, const WCHAR* key, const WCHAR* defaultValue, WCHAR* buffer,
                                  DWORD size);
ZEL_API DWORD ZelGetPrivateProfileString(const WCHAR* section, const WCHAR* key, const WCHAR* defaultValue,
                                         WCHAR* buffer, DWORD size, const WCHAR* fileName);

#endif  // ZEL_SETTINGS_H
