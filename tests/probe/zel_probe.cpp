// A host of the shared library for the tests of process start and end. The loader attaches the
// library before main and detaches it after; what the probe prints in between is what a client
// of a freshly loaded library sees.
//   zel_probe modules        the module table, one "id name" line a record
//   zel_probe threads N      N threads that each work their own error and warning state
//   zel_probe args FILE ...  the arguments after FILE, each followed by "|", written to FILE in
//                            the current directory (through FILE.tmp, so it appears whole)
#include <zel/frame.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

std::string Narrow(const WCHAR* text) {
    std::string out;
    for (; text && *text; ++text) out += *text < 0x80 ? static_cast<char>(*text) : '?';
    return out;
}

int Modules() {
    for (int position = ZelGetFirstModule(); position != 0;) {
        ZelModuleDef* module = ZelGetNextModule(&position);
        printf("%d %s\n", module->moduleId, Narrow(module->name).c_str());
    }
    return 0;
}

// Each thread sets errors and warnings of its own and checks that no other thread's show through.
int Threads(int count) {
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < count; ++t) {
        threads.emplace_back([t, &failures] {
            for (int round = 0; round < 200; ++round) {
                const DWORD code = static_cast<DWORD>(1000 + t * 1000 + round);
                ZelSetError(code);
                ZelSetWarning(code);
                std::this_thread::yield();
                if (ZelGetError() != code || ZelGetWarning(1) != code || ZelGetWarning(0) != 0) ++failures;
            }
            ZelSetWarning(1);  // left for the thread's end to free
        });
    }
    for (auto& thread : threads) thread.join();
    printf("failures %d\n", failures.load());
    return failures.load() == 0 ? 0 : 1;
}

int Arguments(int count, char** arguments) {
    const std::string file = arguments[0], partial = file + ".tmp";
    FILE* out = fopen(partial.c_str(), "wb");
    if (!out) return 1;
    for (int i = 1; i < count; ++i) fprintf(out, "%s|", arguments[i]);
    fclose(out);
    return rename(partial.c_str(), file.c_str()) == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc >= 2 && !strcmp(argv[1], "modules")) return Modules();
    if (argc >= 3 && !strcmp(argv[1], "threads")) return Threads(atoi(argv[2]));
    if (argc >= 3 && !strcmp(argv[1], "args")) return Arguments(argc - 2, argv + 2);
    fprintf(stderr, "usage: zel_probe modules | threads N | args FILE ARGUMENT...\n");
    return 2;
}
