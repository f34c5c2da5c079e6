// Large pages on Windows need a privilege that a program seldom holds: the hint is dropped.
#include "platform/win32.h"

void ZelPlatformPreferLargePages(void*, size_t) {}
