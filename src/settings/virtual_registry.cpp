// The process's tree and the resolution of handles to keys.
#include <iterator>

#include "platform/process_object.h"
#include "settings/virtual_registry.h"

namespace {

constinit ZelProcessObject<VirtualRegistry> virtualRegistry;

struct HiveRow {
    HKEY handle;
    const char16_t* rootName;
};

}  // namespace

VirtualRegistry& ZelVirtualRegistry() { return *virtualRegistry; }

VirtualRegKey* VirtualRegistry::ResolveHandle(HKEY handle) {
    const HiveRow rows[] = {
        {HKEY_CLASSES_ROOT, u"HKEY_CLASSES_ROOT"},
        {HKEY_CURRENT_USER, u"HKEY_CURRENT_USER"},
        {HKEY_LOCAL_MACHINE, u"HKEY_LOCAL_MACHINE"},
    };
    KeyList* lists[] = {&classesRoot, &currentUser, &localMachine};
    for (size_t i = 0; i < std::size(rows); ++i) {
        if (handle != rows[i].handle) continue;
        currentHive = lists[i];
        if (currentHive->empty()) {
            auto root = std::make_unique<VirtualRegKey>();
            root->name = rows[i].rootName;
            root->depth = 1;
            currentHive->push_back(std::move(root));
        }
        return currentHive->front().get();
    }
    return reinterpret_cast<VirtualRegKey*>(handle);
}
