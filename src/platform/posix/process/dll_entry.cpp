// The shared library's entry: the loader runs these as it maps and unmaps the library, as it would
// run the entry point of a Windows library.
#include "platform/win32.h"

namespace {

__attribute__((constructor)) void OnLoad() { ZelPlatformProcessAttach(); }

__attribute__((destructor)) void OnUnload() { ZelPlatformProcessDetach(); }

}  // namespace
