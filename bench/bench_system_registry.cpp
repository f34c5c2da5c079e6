// The system registry on its databases, through the ZelReg adapters on the system's side: value
// writes and reads in one process, what a hive of 100,000 keys adds to a start (the first calls of
// a process: opening the hive, making the volatile key of the user's language and writing its
// value, reading one value), 8 processes writing 500 values each at once, and writers killed at
// random instants. No peer: the figures are printed at the end, then each as a goal line.
#include <benchmark/benchmark.h>
#include <signal.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <zel/settings.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "platform/win32.h"
#include "ratio_reporter.h"

namespace {

constexpr int kSystem = 0;
constexpr int kNames = 1000;
constexpr int kLargeHiveKeys = 100000;

std::u16string Number(const char16_t* prefix, int n) {
    std::u16string text = prefix;
    for (char c : std::to_string(n)) text += char16_t(c);
    return text;
}

// A directory of the benchmark's own, removed at the end of main.
struct BenchDirectory {
    BenchDirectory() {
        char name[] = "/tmp/zel_bench_registry_XXXXXX";
        if (!mkdtemp(name)) std::abort();
        path = name;
    }
    std::string path;
};

BenchDirectory& Root() {
    static auto& root = *new BenchDirectory;
    return root;
}

// Points the registry at a directory below the root, runtime directory included.
void UseRegistry(const std::string& name) {
    std::filesystem::create_directories(Root().path + "/run");
    std::filesystem::permissions(Root().path + "/run", std::filesystem::perms::owner_all);
    setenv("ZEL_REGISTRY_DIR", (Root().path + "/" + name).c_str(), 1);
    setenv("XDG_RUNTIME_DIR", (Root().path + "/run").c_str(), 1);
}

HKEY CreateKey(const std::u16string& path, DWORD options = REG_OPTION_NON_VOLATILE) {
    HKEY key = nullptr;
    if (ZelRegCreateKeyEx(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, options, KEY_ALL_ACCESS, nullptr, &key, nullptr,
                          kSystem) != ERROR_SUCCESS)
        std::abort();
    return key;
}

LONG SetDword(HKEY key, const std::u16string& name, DWORD value) {
    return ZelRegSetValueEx(key, name.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value,
                            kSystem);
}

bool GetDword(HKEY key, const std::u16string& name, DWORD& value) {
    DWORD size = sizeof value;
    return ZelRegQueryValueEx(key, name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &size, kSystem) ==
           ERROR_SUCCESS;
}

DWORD ValueCount(HKEY key) {
    DWORD values = 0;
    RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &values, nullptr, nullptr, nullptr,
                     nullptr);
    return values;
}

const std::vector<std::u16string>& Names() {
    static auto& names = *[] {
        auto* made = new std::vector<std::u16string>;
        for (int i = 0; i < kNames; ++i) made->push_back(Number(u"Value", i));
        return made;
    }();
    return names;
}

void BM_WriteValue(benchmark::State& state) {
    UseRegistry("one");
    HKEY key = CreateKey(u"Software\\Bench\\Writes");
    size_t i = 0;
    for (auto _ : state) {
        if (SetDword(key, Names()[i % kNames], static_cast<DWORD>(i)) != ERROR_SUCCESS) state.SkipWithError("write");
        ++i;
    }
    ZelRegCloseKey(key, kSystem);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WriteValue)->MinTime(2.0);

void BM_ReadValue(benchmark::State& state) {
    UseRegistry("one");
    HKEY key = CreateKey(u"Software\\Bench\\Reads");
    for (int i = 0; i < kNames; ++i) SetDword(key, Names()[i], static_cast<DWORD>(i));
    size_t i = 0;
    DWORD value = 0;
    for (auto _ : state) {
        if (!GetDword(key, Names()[i % kNames], value)) state.SkipWithError("read");
        ++i;
    }
    ZelRegCloseKey(key, kSystem);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ReadValue)->MinTime(2.0);

// What the start of a process asks of the registry. A change of directory makes the next call
// open the hive afresh, as a new process does.
void StartOn(const std::string& registry) {
    UseRegistry(registry);
    HKEY locales = nullptr;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\Morvalis\\Global Settings\\User Locales", 0, nullptr,
                        REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &locales, nullptr) != ERROR_SUCCESS)
        std::abort();
    const DWORD lcid = 0x412;
    RegSetValueExA(locales, "LCID", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&lcid), sizeof lcid);
    RegCloseKey(locales);
    HKEY key = nullptr;
    DWORD value = 0;
    if (ZelRegOpenKeyEx(HKEY_CURRENT_USER, u"Software\\Bench\\Large\\Group7\\Key7", 0, KEY_READ, &key, kSystem) ==
        ERROR_SUCCESS) {
        GetDword(key, u"n", value);
        ZelRegCloseKey(key, kSystem);
    }
}

void BuildLargeHive() {
    static const bool built = [] {
        UseRegistry("large");
        HKEY top = CreateKey(u"Software\\Bench\\Large");
        for (int g = 0; g < kLargeHiveKeys / 1000; ++g) {
            HKEY group = nullptr;
            ZelRegCreateKeyEx(top, Number(u"Group", g).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &group, nullptr,
                              kSystem);
            for (int k = 0; k < 999; ++k) {
                HKEY key = nullptr;
                ZelRegCreateKeyEx(group, Number(u"Key", k).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                                  nullptr, kSystem);
                SetDword(key, u"n", static_cast<DWORD>(k));
                ZelRegCloseKey(key, kSystem);
            }
            ZelRegCloseKey(group, kSystem);
        }
        ZelRegCloseKey(top, kSystem);
        return true;
    }();
    (void)built;
}

// state.range(0): 1 for the hive of 100,000 keys, 0 for a hive of a few keys.
void BM_StartWithHive(benchmark::State& state) {
    const bool large = state.range(0) != 0;
    if (large) BuildLargeHive();
    UseRegistry("small");
    CreateKey(u"Software\\Bench\\Small");
    for (auto _ : state) {
        state.PauseTiming();
        UseRegistry("elsewhere");
        DWORD value = 0;
        HKEY key = CreateKey(u"Software");
        GetDword(key, u"x", value);
        state.ResumeTiming();
        StartOn(large ? "large" : "small");
    }
    state.counters["keys"] = large ? kLargeHiveKeys : 3;
}
BENCHMARK(BM_StartWithHive)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->MinTime(1.0);

// A key with state.range(0) values and as many sub-keys, walked by rising index in one process:
// the cost of an item stays flat from 1,000 to 10,000 when each call goes on from the last.
HKEY EnumerationKey(int count) {
    UseRegistry("enumeration");
    const std::u16string path = Number(u"Software\\Bench\\Enumerate", count);
    HKEY key = nullptr;
    if (ZelRegOpenKeyEx(HKEY_CURRENT_USER, path.c_str(), 0, KEY_ALL_ACCESS, &key, kSystem) == ERROR_SUCCESS) return key;
    key = CreateKey(path);
    for (int i = 0; i < count; ++i) {
        SetDword(key, Number(u"Value", i), static_cast<DWORD>(i));
        HKEY sub = nullptr;
        ZelRegCreateKeyEx(key, Number(u"Key", i).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &sub, nullptr,
                          kSystem);
        ZelRegCloseKey(sub, kSystem);
    }
    return key;
}

void BM_EnumValues(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    HKEY key = EnumerationKey(count);
    WCHAR name[64];
    BYTE data[16];
    for (auto _ : state) {
        int seen = 0;
        for (DWORD index = 0;; ++index) {
            DWORD capacity = 64, size = sizeof data, type = 0;
            if (ZelRegEnumValue(key, index, name, &capacity, nullptr, &type, data, &size, kSystem) != ERROR_SUCCESS)
                break;
            ++seen;
        }
        if (seen != count) state.SkipWithError("values missed");
    }
    ZelRegCloseKey(key, kSystem);
    state.counters["per_item"] =
        benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_EnumValues)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_EnumKeys(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    HKEY key = EnumerationKey(count);
    WCHAR name[64];
    for (auto _ : state) {
        int seen = 0;
        while (ZelRegEnumKey(key, static_cast<DWORD>(seen), name, 64, kSystem) == ERROR_SUCCESS) ++seen;
        if (seen != count) state.SkipWithError("keys missed");
    }
    ZelRegCloseKey(key, kSystem);
    state.counters["per_item"] =
        benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_EnumKeys)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

// Runs body in each of n processes, which start together, and gives the seconds they took and
// whether every one ended with status 0.
template <typename Body>
double InProcesses(int n, Body body, bool& allOk) {
    int gate[2];
    if (pipe(gate) != 0) std::abort();
    fflush(nullptr);
    std::vector<pid_t> children;
    for (int w = 0; w < n; ++w) {
        pid_t child = fork();
        if (child == 0) {
            close(gate[1]);
            char byte;
            (void)!read(gate[0], &byte, 1);
            _exit(body(w));
        }
        children.push_back(child);
    }
    close(gate[0]);
    auto start = std::chrono::steady_clock::now();
    close(gate[1]);
    allOk = true;
    for (pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        allOk = allOk && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

constexpr int kWriters = 8;
constexpr int kPerWriter = 500;

// 8 processes write 500 values each below one key at once; each round on a key of its own.
void BM_EightWriters(benchmark::State& state) {
    UseRegistry("shared");
    int round = 0;
    size_t kept = 0;
    for (auto _ : state) {
        const std::u16string path = Number(u"Software\\Bench\\Shared", round++);
        ZelRegCloseKey(CreateKey(path), kSystem);
        bool ok = false;
        double seconds = InProcesses(
            kWriters,
            [&](int w) {
                HKEY key = CreateKey(path);
                int failures = 0;
                for (int i = 0; i < kPerWriter; ++i)
                    failures += SetDword(key, Number(Number(u"w", w).c_str(), i * 1000 + w), i) != ERROR_SUCCESS;
                return failures ? 1 : 0;
            },
            ok);
        state.SetIterationTime(seconds);
        HKEY key = CreateKey(path);
        kept = ValueCount(key);
        ZelRegCloseKey(key, kSystem);
        if (!ok || kept != kWriters * kPerWriter) state.SkipWithError("a value was lost");
    }
    state.counters["kept"] = static_cast<double>(kept);
}
BENCHMARK(BM_EightWriters)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

struct KillTrials {
    int trials = 0, opened = 0, lost = 0, leftovers = 0, acknowledged = 0;
};

KillTrials& Kills() {
    static auto& kills = *new KillTrials;
    return kills;
}

// A writer reports each value the registry acknowledged on a pipe and is killed at a random
// instant; then the hive must open and hold every value reported, and the directories hold only
// the databases and their logs.
void BM_KillWriters(benchmark::State& state) {
    UseRegistry("killed");
    ZelRegCloseKey(CreateKey(u"Software\\Bench\\Killed"), kSystem);
    std::mt19937 random(42);
    KillTrials& kills = Kills();
    for (auto _ : state) {
        int acks[2];
        if (pipe(acks) != 0) std::abort();
        fflush(nullptr);
        const int trial = kills.trials++;
        pid_t child = fork();
        if (child == 0) {
            close(acks[0]);
            HKEY key = CreateKey(u"Software\\Bench\\Killed");
            for (int i = 0;; ++i)
                if (SetDword(key, Number(Number(u"t", trial).c_str(), i), i) == ERROR_SUCCESS)
                    (void)!write(acks[1], &i, sizeof i);
        }
        close(acks[1]);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 30000));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        std::vector<int> reported;
        int i = 0;
        while (read(acks[0], &i, sizeof i) == sizeof i) reported.push_back(i);
        close(acks[0]);
        kills.acknowledged += static_cast<int>(reported.size());

        HKEY key = nullptr;
        bool opened =
            ZelRegOpenKeyEx(HKEY_CURRENT_USER, u"Software\\Bench\\Killed", 0, KEY_READ, &key, kSystem) == ERROR_SUCCESS;
        kills.opened += opened;
        DWORD value = 0;
        for (int n : reported) kills.lost += !(opened && GetDword(key, Number(Number(u"t", trial).c_str(), n), value));
        if (opened) ZelRegCloseKey(key, kSystem);
        const std::set<std::string> expected = {"current_user.db",  "current_user.db-wal",  "current_user.db-shm",
                                                "local_machine.db", "local_machine.db-wal", "local_machine.db-shm"};
        for (const auto& entry : std::filesystem::directory_iterator(Root().path + "/killed"))
            kills.leftovers += !expected.count(entry.path().filename());
    }
    state.counters["lost"] = kills.lost;
    state.counters["leftovers"] = kills.leftovers;
}
BENCHMARK(BM_KillWriters)->Iterations(100)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    auto perSecond = [&](const char* name) {
        double ns = reporter.Time(name);
        return ns > 0 ? 1e9 / ns : 0;
    };
    const double startSmall = reporter.Time("BM_StartWithHive/0/min_time:1.000");
    const double startLarge = reporter.Time("BM_StartWithHive/1/min_time:1.000");
    const KillTrials& kills = Kills();
    std::printf("\nThe system registry through the adapters\n");
    std::printf("  value writes a second, one process        %10.0f\n", perSecond("BM_WriteValue/min_time:2.000"));
    std::printf("  value reads a second, one process         %10.0f\n", perSecond("BM_ReadValue/min_time:2.000"));
    std::printf("  start on a hive of a few keys, ms          %10.2f\n", startSmall);
    std::printf("  start on a hive of %d keys, ms         %10.2f (adds %.2f)\n", kLargeHiveKeys, startLarge,
                startLarge - startSmall);
    std::printf("  %d processes x %d values at once, s       %10.3f\n", kWriters, kPerWriter,
                reporter.Time("BM_EightWriters/iterations:3/manual_time") / 1000);
    std::printf("  writers killed: %d trials, %d opened, %d of %d acknowledged values lost, %d files left\n",
                kills.trials, kills.opened, kills.lost, kills.acknowledged, kills.leftovers);
    // CPU time: the walks run in this process alone.
    std::vector<std::pair<std::string, double>> growth;
    for (const char* walk : {"BM_EnumValues", "BM_EnumKeys"}) {
        const double small = reporter.Cpu(std::string(walk) + "/1000"), large = reporter.Cpu(std::string(walk) + "/10000");
        std::printf("  %s by index, CPU µs an item at 1,000 / 10,000: %.2f / %.2f (ratio %.3f)\n",
                    walk + 3, small, large / 10, small > 0 ? large / 10 / small : 0.0);
        if (small > 0 && large > 0) growth.emplace_back(walk + 3, large / 10 / small);
    }
    for (const auto& [walk, ratio] : growth) PrintGoalLine(walk + " by index, 10,000 over 1,000, an item", ratio, 1.5);
    // The figures with a floor or a ceiling of their own, each as a number that must stay at or
    // below its goal.
    const double writes = perSecond("BM_WriteValue/min_time:2.000"), reads = perSecond("BM_ReadValue/min_time:2.000");
    if (writes > 0) PrintGoalLine("value writes, one process: 20,000 a second over ours", 20000 / writes, 1.0);
    if (reads > 0) PrintGoalLine("value reads, one process: 200,000 a second over ours", 200000 / reads, 1.0);
    PrintGoalValue("start on a hive of 100,000 keys, ms added", std::max(0.0, startLarge - startSmall), 20,
                   startSmall > 0 && startLarge > 0);
    const double eight = reporter.Time("BM_EightWriters/iterations:3/manual_time") / 1000;
    PrintGoalValue("8 processes x 500 values at once, s", eight, 5, eight > 0);
    PrintGoalValue("writers killed: failed opens, lost values, files left", kills.trials - kills.opened + kills.lost + kills.leftovers,
                   0, kills.trials > 0);
    benchmark::Shutdown();
    std::filesystem::remove_all(Root().path);
    return 0;
}
