// The process-wide objects of the subsystems, released at unload. They are built at first use and
// never destroyed, so their memory and the libraries they hold go here, at a point of the library's
// own choosing, rather than in destructors whose order against the unload no build fixes.
#include <zel/paths.h>

#include "component/library_cache.h"
#include "frame/attach_steps.h"
#include "settings/virtual_registry.h"

void ZelReleaseProcessObjects() {
    ZelVirtualRegistry().Release();
    ZelComLibraries().Release();
    GetWMSWindowMap().clear();
}
