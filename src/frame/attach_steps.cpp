// The default paths and the code tables have nothing to set up or release yet: these steps run in
// their place in attach and detach, and the services that own them will give them their bodies.
#include "frame/attach_steps.h"

void ZelRegisterDefaultPaths() {}

void UnloadUnicodeTbl() {}
