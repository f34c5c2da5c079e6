// Placeholder bodies, replaced one by one by the real ones; this file goes when it is empty.
#pragma GCC diagnostic ignored "-Wunused-parameter"

#include <zel/paths.h>

BOOL ZelRegisterPath(const WCHAR* name, const WCHAR* value) { return {}; }
BOOL ZelUnregisterPath(const WCHAR* name) { return {}; }
BOOL ZelIsRegisterPath(const WCHAR* name) { return {}; }
void ZelPathToAbsolute(const WCHAR* source, WCHAR* destination) {}
void ZelPathToRelative(const WCHAR* source, WCHAR* destination) {}
BOOL ZelRegisterModulePath(const WCHAR* name, HMODULE module) { return {}; }
HMODULE ZelLoadLibraryModulePath(const WCHAR* fileName) { return {}; }
void ZelAppendBackSlash(WCHAR* path) {}
void ZelRemoveBackSlash(WCHAR* path) {}
int ZelGetFileTitle(const WCHAR* path, WCHAR* buffer, int size) { return {}; }
void ZelAbbreviateName(WCHAR* path, int maximum, BOOL keepTitle) {}
BOOL ZelGetNextMask(const WCHAR* list, WCHAR* destination) { return {}; }
BOOL ZelPathCreate(const WCHAR* path) { return {}; }
BOOL ZelPathIsValidDirName(const WCHAR* name) { return {}; }
BOOL ZelPathIsReservedFileName(const WCHAR* name) { return {}; }
BOOL ZelPathToLongPath(const WCHAR* path, WCHAR* destination) { return {}; }
UINT ZelPathMakeTemp(const WCHAR* prefix, UINT number, WCHAR* destination) { return {}; }
UINT ZelPathMakeTempEx(const WCHAR* subdirectory, const WCHAR* prefix, UINT number, const WCHAR* extension, WCHAR* destination) { return {}; }
BOOL ZelPathMakeImageTemp(const WCHAR* sourceFileName, WCHAR* destination) { return {}; }
CZelPathName::CZelPathName() {}
CZelPathName::CZelPathName(const WCHAR* path) {}
CZelPathName::~CZelPathName() {}
void CZelPathName::SetPath(const WCHAR* path) {}
void CZelPathName::SetParts(const WCHAR* drive, const WCHAR* dir, const WCHAR* fname, const WCHAR* ext) {}
void CZelPathName::GetDirectory(WCHAR* buffer, int size) const {}
void CZelPathName::Clear() {}
