// The system's message table. Every code that the platform sets as a last error or returns as a
// status has its text here, worded as the system words it; each message definition ends with a
// line break, as the system's own do. Sorted by code.
#include "platform/posix/modules/system_message_texts.h"
#include "platform/posix/sorted_table.h"

namespace {

struct SystemMessage {
    DWORD code;
    const char* text;
};

constexpr SystemMessage kMessages[] = {
    {ERROR_SUCCESS, "The operation completed successfully.\r\n"},
    {ERROR_INVALID_FUNCTION, "Incorrect function.\r\n"},
    {ERROR_FILE_NOT_FOUND, "The system cannot find the file specified.\r\n"},
    {ERROR_PATH_NOT_FOUND, "The system cannot find the path specified.\r\n"},
    {ERROR_TOO_MANY_OPEN_FILES, "The system cannot open the file.\r\n"},
    {ERROR_ACCESS_DENIED, "Access is denied.\r\n"},
    {ERROR_INVALID_HANDLE, "The handle is invalid.\r\n"},
    {ERROR_NOT_ENOUGH_MEMORY, "Not enough memory resources are available to process this command.\r\n"},
    {ERROR_BAD_FORMAT, "An attempt was made to load a program with an incorrect format.\r\n"},
    {ERROR_INVALID_DATA, "The data is invalid.\r\n"},
    {ERROR_OUTOFMEMORY, "Not enough memory resources are available to complete this operation.\r\n"},
    {ERROR_NOT_SAME_DEVICE, "The system cannot move the file to a different disk drive.\r\n"},
    {ERROR_NO_MORE_FILES, "There are no more files.\r\n"},
    {ERROR_WRITE_PROTECT, "The media is write protected.\r\n"},
    {ERROR_NOT_READY, "The device is not ready.\r\n"},
    {ERROR_WRITE_FAULT, "The system cannot write to the specified device.\r\n"},
    {ERROR_READ_FAULT, "The system cannot read from the specified device.\r\n"},
    {ERROR_GEN_FAILURE, "A device attached to the system is not functioning.\r\n"},
    {ERROR_SHARING_VIOLATION,
     "The process cannot access the file because it is being used by another process.\r\n"},
    {ERROR_LOCK_VIOLATION,
     "The process cannot access the file because another process has locked a portion of the file.\r\n"},
    {ERROR_HANDLE_EOF, "Reached the end of the file.\r\n"},
    {ERROR_HANDLE_DISK_FULL, "The disk is full.\r\n"},
    {ERROR_NOT_SUPPORTED, "The request is not supported.\r\n"},
    {ERROR_FILE_EXISTS, "The file exists.\r\n"},
    {ERROR_INVALID_PARAMETER, "The parameter is incorrect.\r\n"},
    {ERROR_BROKEN_PIPE, "The pipe has been ended.\r\n"},
    {ERROR_OPEN_FAILED, "The system cannot open the device or file specified.\r\n"},
    {ERROR_BUFFER_OVERFLOW, "The file name is too long.\r\n"},
    {ERROR_DISK_FULL, "There is not enough space on the disk.\r\n"},
    {ERROR_CALL_NOT_IMPLEMENTED, "This function is not supported on this system.\r\n"},
    {ERROR_INSUFFICIENT_BUFFER, "The data area passed to a system call is too small.\r\n"},
    {ERROR_INVALID_NAME, "The filename, directory name, or volume label syntax is incorrect.\r\n"},
    {ERROR_MOD_NOT_FOUND, "The specified module could not be found.\r\n"},
    {ERROR_PROC_NOT_FOUND, "The specified procedure could not be found.\r\n"},
    {ERROR_NEGATIVE_SEEK, "An attempt was made to move the file pointer before the beginning of the file.\r\n"},
    {ERROR_DIR_NOT_EMPTY, "The directory is not empty.\r\n"},
    {ERROR_BAD_PATHNAME, "The specified path is invalid.\r\n"},
    {ERROR_BUSY, "The requested resource is in use.\r\n"},
    {ERROR_ALREADY_EXISTS, "Cannot create a file when that file already exists.\r\n"},
    {ERROR_BAD_EXE_FORMAT, "%1 is not a valid Win32 application.\r\n"},
    {ERROR_ENVVAR_NOT_FOUND, "The system could not find the environment option that was entered.\r\n"},
    {ERROR_FILENAME_EXCED_RANGE, "The filename or extension is too long.\r\n"},
    {ERROR_MORE_DATA, "More data is available.\r\n"},
    {ERROR_NO_MORE_ITEMS, "No more data is available.\r\n"},
    {ERROR_DIRECTORY, "The directory name is invalid.\r\n"},
    {ERROR_NOT_OWNER, "Attempt to release mutex not owned by caller.\r\n"},
    {ERROR_PARTIAL_COPY, "Only part of a ReadProcessMemory or WriteProcessMemory request was completed.\r\n"},
    {ERROR_INVALID_ADDRESS, "Attempt to access invalid address.\r\n"},
    {ERROR_ARITHMETIC_OVERFLOW, "Arithmetic result exceeded 32 bits.\r\n"},
    {ERROR_NOACCESS, "Invalid access to memory location.\r\n"},
    {ERROR_INVALID_FLAGS, "Invalid flags.\r\n"},
    {ERROR_BADDB, "The configuration registry database is corrupt.\r\n"},
    {ERROR_BADKEY, "The configuration registry key is invalid.\r\n"},
    {ERROR_CANTOPEN, "The configuration registry key could not be opened.\r\n"},
    {ERROR_CANTREAD, "The configuration registry key could not be read.\r\n"},
    {ERROR_CANTWRITE, "The configuration registry key could not be written.\r\n"},
    {ERROR_REGISTRY_CORRUPT,
     "The registry is corrupted. The structure of one of the files containing registry data is corrupted, or "
     "the system's memory image of the file is corrupted, or the file could not be recovered because the "
     "alternate copy or log was absent or corrupted.\r\n"},
    {ERROR_REGISTRY_IO_FAILED,
     "An I/O operation initiated by the registry failed unrecoverably. The registry could not read in, or write "
     "out, or flush, one of the files that contain the system's image of the registry.\r\n"},
    {ERROR_KEY_DELETED, "Illegal operation attempted on a registry key that has been marked for deletion.\r\n"},
    {ERROR_CHILD_MUST_BE_VOLATILE, "Cannot create a stable subkey under a volatile parent key.\r\n"},
    {ERROR_NO_UNICODE_TRANSLATION,
     "No mapping for the Unicode character exists in the target multi-byte code page.\r\n"},
    {ERROR_IO_DEVICE, "The request could not be performed because of an I/O device error.\r\n"},
    {1155 /* ERROR_NO_ASSOCIATION */,
     "No application is associated with the specified file for this operation.\r\n"},
    {ERROR_NOT_FOUND, "Element not found.\r\n"},
    {ERROR_CANCELLED, "The operation was canceled by the user.\r\n"},
    {ERROR_PRIVILEGE_NOT_HELD, "A required privilege is not held by the client.\r\n"},
    {ERROR_TIMEOUT, "This operation returned because the timeout period expired.\r\n"},
    {ERROR_RESOURCE_DATA_NOT_FOUND, "The specified image file did not contain a resource section.\r\n"},
    {ERROR_RESOURCE_TYPE_NOT_FOUND, "The specified resource type cannot be found in the image file.\r\n"},
    {ERROR_RESOURCE_NAME_NOT_FOUND, "The specified resource name cannot be found in the image file.\r\n"},
    {ERROR_RESOURCE_LANG_NOT_FOUND, "The specified resource language ID cannot be found in the image file.\r\n"},
    {ERROR_CANT_RESOLVE_FILENAME, "The name of the file cannot be resolved by the system.\r\n"},
};

static_assert(ZelSortedByKey(kMessages, &SystemMessage::code), "the message table is searched by halves");

}  // namespace

const char* ZelPlatformSystemMessageText(DWORD code) {
    const SystemMessage* found = ZelFindByKey(kMessages, code, &SystemMessage::code);
    return found ? found->text : nullptr;
}
