// The run-time's arguments of the process, as the run-time split them at start.
#include <stdlib.h>

#include "platform/win32.h"

namespace crt {

int ArgumentCount() { return __argc; }

const char* Argument(int index) { return index >= 0 && index < __argc ? __argv[index] : nullptr; }

}  // namespace crt
