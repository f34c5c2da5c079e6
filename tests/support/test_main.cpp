// The main of every suite. The suites link the library's objects rather than load the shared
// library, so the process attach runs here, after the environment points the registry and the
// runtime directory at a private place: no test touches the user's own settings.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "platform/win32.h"
#include "support/support.h"
#include "support/system.h"

namespace zeltest {
namespace {
std::unique_ptr<TempDir> root;
}
const std::string& TestRoot() { return root->path(); }
}  // namespace zeltest

int main(int argc, char** argv) {
    zeltest::root = std::make_unique<zeltest::TempDir>();
    if (!getenv(zeltest::kTestTemp)) zeltest::SetEnvironment(zeltest::kTestTemp, zeltest::root->path());
    zeltest::SetEnvironment("ZEL_REGISTRY_DIR", zeltest::root->path() + "/registry");
    zeltest::SetEnvironment("XDG_RUNTIME_DIR", zeltest::root->path() + "/run");
    zeltest::SetEnvironment("XDG_CONFIG_HOME", zeltest::root->path() + "/config");
    zeltest::EndOnCrash();
    zeltest::UsePrivateRegistry();
    ::testing::InitGoogleTest(&argc, argv);
    ZelPlatformProcessAttach();
    int result = RUN_ALL_TESTS();
    ZelPlatformProcessDetach();
    zeltest::RemovePrivateRegistry();
    zeltest::root.reset();
    return result;
}
