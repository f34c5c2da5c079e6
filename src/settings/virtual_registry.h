// The in-memory registry tree: hives, keys reached by back-slash paths, a default text per key and
// named typed values, with the call shapes of the system registry. Nothing here touches the system.
//
// A key handle is the address of a VirtualRegKey; the three predefined handles HKEY_CLASSES_ROOT,
// HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE select a hive, whose root comes into being at first use.
// Handles are not tracked: a handle lives until its key is deleted or the library unloads, and a
// handle that is neither predefined nor a living key cannot be told from a good one. A null handle
// is refused by every operation (0).
//
// Key names compare under _ustricmp (only a to z fold), value names by exact 16-bit equality.
// Every operation gives 1 for success and 0 for failure; out of memory raises std::bad_alloc.
// The tree has no lock: one thread at a time.
#ifndef ZEL_SETTINGS_VIRTUAL_REGISTRY_H
#define ZEL_SETTINGS_VIRTUAL_REGISTRY_H

#include <zel/wintypes.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "settings/virtual_registry_memory.h"
#include "settings/virtual_registry_small.h"

struct VirtualRegValue {
    std::u16string name;  // empty: a blank record, which the next write fills whatever its type
    DWORD type = 0;
    VirtualRegBytes data;  // as the caller gave it, no terminator added
};

struct VirtualRegKey;
class VirtualRegKeyList;

// Whether two key names are one: equal once a to z are folded to A to Z, as _ustricmp folds.
bool VirtualRegSameName(std::u16string_view a, std::u16string_view b);

// The children of one key by name, folded as _ustricmp folds (a to z to A to Z, every other unit
// as it is), so that two names equal there are one name here. Open addressing with linear probing
// over a power of two of slots, each with the name's hash and the child.
class VirtualRegChildIndex {
public:
    VirtualRegKey* Find(std::u16string_view name) const;
    // The child's name must not be there yet.
    void Insert(VirtualRegKey* child);
    void Erase(const VirtualRegKey* child);

private:
    struct Slot {
        uint32_t hash;
        VirtualRegKey* key;  // null: free
    };
    size_t Home(uint32_t hash) const { return hash & (slots_.size() - 1); }
    void Place(uint32_t hash, VirtualRegKey* child);

    std::vector<Slot, VirtualRegAllocator<Slot>> slots_;
    size_t used_ = 0;
};

// What a look-up reads (the name, the values) comes first.
struct VirtualRegKey {
    VirtualRegName name;                  // the form of its first creation
    std::vector<VirtualRegValue, VirtualRegAllocator<VirtualRegValue>> values;  // in order of first creation
    DWORD depth = 0;                      // 1 for a hive root
    DWORD subKeyCount = 0;
    std::u16string defaultValue;
    DWORD maxSubKeyNameLength = 0;  // characters; never falls
    DWORD valueCount = 0;
    DWORD maxValueNameLength = 0;  // characters; never falls
    DWORD maxValueDataLength = 0;  // bytes; never falls
    VirtualRegKey* parent = nullptr;
    VirtualRegKey* firstChild = nullptr;
    VirtualRegKey* nextSibling = nullptr;
    VirtualRegKey* prevSibling = nullptr;

    // The end of the chain, where a new child goes.
    VirtualRegKey* lastChild = nullptr;
    // Built once the key has more than a handful of children, and kept up to date from then on.
    std::unique_ptr<VirtualRegChildIndex> childIndex;
    // The child that EnumKey gave last and its position, so that a walk in order takes one step a
    // call. Null when unknown.
    VirtualRegKey* enumChild = nullptr;
    DWORD enumChildIndex = 0;
    // The hive list that holds the key, and its place there.
    VirtualRegKeyList* list = nullptr;
    size_t slot = 0;
};

// The keys of a hive in order of creation, owned. Element 0 is the hive's root; the others follow
// flat, whatever their depth. A key leaves in constant time: its place stays empty until the
// empty places are half the list, when the list closes up.
class VirtualRegKeyList {
public:
    constexpr VirtualRegKeyList() = default;
    VirtualRegKeyList(const VirtualRegKeyList&) = delete;
    VirtualRegKeyList& operator=(const VirtualRegKeyList&) = delete;
    ~VirtualRegKeyList() { clear(); }

    bool empty() const { return live_ == 0; }
    // The first key of the list; the list must not be empty.
    VirtualRegKey* front();
    // A new, empty key at the end of the list. Out of memory throws, leaving the list as it was.
    VirtualRegKey* Make();
    bool Holds(const VirtualRegKey* key) const;
    // Destroys a key that the list holds.
    void Erase(VirtualRegKey* key);
    void clear();

private:
    static void Destroy(VirtualRegKey* key);

    std::vector<VirtualRegKey*> keys_;
    size_t live_ = 0;
    size_t head_ = 0;  // no key stands in front of this place
};

class VirtualRegistry {
public:
    // Element 0 is the hive's root; then every other key of the hive in order of creation, flat.
    using KeyList = VirtualRegKeyList;

    VirtualRegistry() { VirtualRegPrepareMemory(); }
    VirtualRegistry(const VirtualRegistry&) = delete;
    VirtualRegistry& operator=(const VirtualRegistry&) = delete;

    // A predefined handle makes its hive current (and its root, if the hive is empty); any other
    // handle is taken to be a key's address and leaves the current hive as it was.
    VirtualRegKey* ResolveHandle(HKEY handle);

    // Paths are cut at back slashes; empty components are skipped, and a path without components
    // (null, empty or only back slashes) names the key itself. The out place must be given.
    // OpenKey never creates. When it fails on a key without sub-keys the out place holds that key,
    // when a component is not found below, null.
    int OpenKey(HKEY handle, const WCHAR* path, HKEY* key);
    // Creates what is missing along the path; existing keys are neither changed nor reported. New
    // keys go into the list of the current hive, so creating through a key handle of another hive
    // files them there (and DeleteKey can then find them only while that hive is current).
    int CreateKey(HKEY handle, const WCHAR* path, HKEY* key);
    // The name of the index-th sub-key in order of creation, copied with its terminator when the
    // buffer is given. capacity counts the terminator; a name that does not fit fails. A walk by
    // rising or falling index costs one step a call.
    int EnumKey(HKEY handle, DWORD index, WCHAR* name, DWORD capacity);
    // The value's name (fails when its length is above capacity, which counts characters without
    // the terminator; capacity is only read), its type when the place is given, and all its bytes
    // when a data buffer is given. A data size place below the data's length fails, and a data
    // buffer needs a data size place.
    int EnumValue(HKEY handle, DWORD index, WCHAR* name, DWORD capacity, DWORD* type, BYTE* data, DWORD* dataSize);
    // Clears the class text to empty and gives the five counters to the places given. The class
    // length, longest class, security descriptor size and last write time are not written.
    int QueryInfoKey(HKEY handle, WCHAR* keyClass, DWORD* classLength, DWORD* reserved, DWORD* subKeys,
                     DWORD* longestSubKeyName, DWORD* longestClass, DWORD* values, DWORD* longestValueName,
                     DWORD* largestValueData, DWORD* securityDescriptorSize, FILETIME* lastWriteTime);
    // The default text of the key at path, with its terminator, into a buffer of capacity units
    // (terminator included); length in characters. An empty default text is a failure.
    int QueryDefault(HKEY handle, const WCHAR* path, WCHAR* buffer, DWORD capacity, LONG* length);
    // A null name reads the default text (type REG_SZ, size in characters). A null data buffer
    // asks for type and size only. With a buffer, the size place is required and its value is the
    // buffer's size in bytes: a copy that does not fit fails, with the size place holding the
    // value's length. REG_DWORD gives the first four bytes, REG_BINARY all, REG_SZ the 16-bit
    // units up to the first zero, zeros for the rest and one zero unit more where the buffer has
    // room; other types copy nothing. The size place ends as the value's length in bytes.
    int QueryValueEx(HKEY handle, const WCHAR* name, DWORD* type, BYTE* data, DWORD* size);
    // The key must exist: nothing is created. A null text empties the default.
    int SetDefault(HKEY handle, const WCHAR* path, const WCHAR* text);
    // A null name sets the default text from data (zero-terminated 16-bit text; type and size are
    // ignored). A named value keeps its first type: a write of another type fails and changes
    // nothing. Null data with a size above 0 fails.
    int SetValueEx(HKEY handle, const WCHAR* name, DWORD type, const BYTE* data, DWORD size);
    // Only a key without sub-keys, and only one that stands in the current hive's list.
    int DeleteKey(HKEY handle, const WCHAR* path);
    int DeleteValue(HKEY handle, const WCHAR* name);

private:
    int FindKey(VirtualRegKey* start, const WCHAR* path, VirtualRegKey** key);
    // The sub-key at index, or null.
    static VirtualRegKey* ChildAt(VirtualRegKey* key, DWORD index);
    static VirtualRegKey* FindChild(VirtualRegKey* parent, std::u16string_view name);
    int CreateKeyPath(VirtualRegKey* start, const WCHAR* path, VirtualRegKey** key);

    // The first field is the hive that the last predefined handle selected.
    KeyList* currentHive = nullptr;
    KeyList classesRoot;
    KeyList currentUser;
    KeyList localMachine;
};

// The process's one tree: built at first use and destroyed, with all its keys, at unload.
VirtualRegistry& ZelVirtualRegistry();

#endif  // ZEL_SETTINGS_VIRTUAL_REGISTRY_H
