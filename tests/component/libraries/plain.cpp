// A shared library that is no component library: it has no DllGetClassObject.
#include "test_component.h"

ZEL_TEST_EXPORT int TestClassObjectCalls() { return 0; }
