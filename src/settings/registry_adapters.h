// The adapter that the library keeps to itself: key information on either registry, for the
// registry class and its file form.
#ifndef ZEL_SETTINGS_REGISTRY_ADAPTERS_H
#define ZEL_SETTINGS_REGISTRY_ADAPTERS_H

#include <zel/settings.h>

// System: the class text comes back through a local buffer of 260 bytes as for the other names.
// Tree: a null class buffer is allowed; the class is always empty, and the counts come from the key.
LONG ZelRegQueryInfoKey(HKEY key, WCHAR* keyClass, LPDWORD classLength, LPDWORD reserved, LPDWORD subKeys,
                        LPDWORD longestSubKeyName, LPDWORD longestClass, LPDWORD values, LPDWORD longestValueName,
                        LPDWORD largestValueData, LPDWORD securityDescriptorSize, PFILETIME lastWriteTime,
                        int useVirtual = 0);

#endif  // ZEL_SETTINGS_REGISTRY_ADAPTERS_H
