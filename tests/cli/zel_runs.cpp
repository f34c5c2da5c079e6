#include "cli/zel_runs.h"

namespace zelcli {

zeltest::ProgramResult Zel(const std::vector<std::string>& args, const std::string& input, int seconds) {
#ifdef _WIN32
    (void)seconds;  // the test run's own time limit ends a zel that hangs
    return zeltest::RunProgram(ZEL_TEST_ZEL_PATH, args, {}, input);
#else
    std::vector<std::string> all = {"-s", "KILL", std::to_string(seconds), ZEL_TEST_ZEL_PATH};
    all.insert(all.end(), args.begin(), args.end());
    return zeltest::RunProgram("/usr/bin/timeout", all, {}, input);
#endif
}

}  // namespace zelcli
