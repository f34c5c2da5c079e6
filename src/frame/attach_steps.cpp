// The default paths have nothing to register yet: this step runs in its place in attach, and the
// service that owns the defaults will give it its body.
#include "frame/attach_steps.h"

void ZelRegisterDefaultPaths() {}
