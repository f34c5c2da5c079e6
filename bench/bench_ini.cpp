// The INI store at 10 and at 3,000 sections of 100 ids: a load, a save, the look-up of every
// entry by section name and id in file order and in a random order, the last entry looked up again
// and again, and every entry by position. Costs are reported per entry,
// with the cost at 3,000 sections over the cost at 10 at the end: near 1 where a look-up does not
// grow with the store. Then the profile calls on an 8-bit INI file of 10,000 keys, one read of a
// key against one read of the whole file. No peer.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <zel/settings.h>

#include "bench_temp_file.h"
#include "platform/win32.h"
#include "ratio_reporter.h"

namespace {

const int kSectionCounts[] = {10, 3000};
constexpr int kIds = 100;
constexpr int kProfileSections = 100;  // of kIds keys each

std::u16string Number(const char16_t* prefix, int n, const char16_t* suffix = u"") {
    std::u16string text = prefix;
    for (char c : std::to_string(n)) text += char16_t(c);
    return text + suffix;
}

struct Names {
    std::vector<std::u16string> sections;
    std::vector<std::u16string> ids;
    explicit Names(int sectionCount) {
        for (int s = 0; s < sectionCount; ++s) sections.push_back(Number(u"[Section", s, u"]"));
        for (int i = 0; i < kIds; ++i) ids.push_back(Number(u"Key", i));
    }
};

void Fill(CZelIniManager& ini, const Names& names) {
    for (const std::u16string& name : names.sections) {
        const int section = ini.AddSection(name.c_str());
        for (const std::u16string& id : names.ids)
            ini.AddIdValueStr(section, id.c_str(), u"c:\\program files\\suite\\data \uD55C\uAE00");
    }
}

// A store of each size, filled once, and its file.
struct Store {
    Names names;
    CZelIniManager ini;
    BenchFile file;
    explicit Store(int sections) : names(sections) {
        Fill(ini, names);
        if (ini.SaveCfgToFile(file.path.c_str()) != 1) std::abort();
    }
    size_t Entries() const { return names.sections.size() * names.ids.size(); }
};

Store& StoreOf(int sections) {
    static std::map<int, Store> stores;
    auto found = stores.find(sections);
    if (found == stores.end()) found = stores.try_emplace(sections, sections).first;
    return found->second;
}

void PerEntry(benchmark::State& state, size_t entries) {
    state.counters["entries"] = static_cast<double>(entries);
    state.counters["per_entry"] = benchmark::Counter(static_cast<double>(entries), benchmark::Counter::kIsIterationInvariantRate |
                                                                                       benchmark::Counter::kInvert);
}

void Load(benchmark::State& state, int sections) {
    Store& store = StoreOf(sections);
    for (auto _ : state) {
        CZelIniManager ini;
        benchmark::DoNotOptimize(ini.LoadCfgFromFile(store.file.path.c_str()));
    }
    PerEntry(state, store.Entries());
}

void Save(benchmark::State& state, int sections) {
    Store& store = StoreOf(sections);
    BenchFile file;
    for (auto _ : state) benchmark::DoNotOptimize(store.ini.SaveCfgToFile(file.path.c_str()));
    PerEntry(state, store.Entries());
}

// Every entry by section name and id, in file order or in a random order.
void ByName(benchmark::State& state, int sections, bool shuffled) {
    Store& store = StoreOf(sections);
    std::vector<std::pair<const WCHAR*, const WCHAR*>> order;
    for (const std::u16string& section : store.names.sections)
        for (const std::u16string& id : store.names.ids) order.emplace_back(section.c_str(), id.c_str());
    if (shuffled) std::shuffle(order.begin(), order.end(), std::mt19937(7));
    for (auto _ : state)
        for (const auto& [section, id] : order) benchmark::DoNotOptimize(store.ini.GetValueStr(section, id));
    PerEntry(state, store.Entries());
}

void ByNameInOrder(benchmark::State& state, int sections) { ByName(state, sections, false); }
void ByNameAtRandom(benchmark::State& state, int sections) { ByName(state, sections, true); }

// The last id of the last section, once for each entry: the look-up whose cost grew with the
// sections when they were searched in a list. Its memory stays in the cache, so what this measures
// is the search alone.
void ByNameLast(benchmark::State& state, int sections) {
    Store& store = StoreOf(sections);
    const WCHAR* section = store.names.sections.back().c_str();
    const WCHAR* id = store.names.ids.back().c_str();
    for (auto _ : state)
        for (size_t n = 0; n < store.Entries(); ++n) benchmark::DoNotOptimize(store.ini.GetValueStr(section, id));
    PerEntry(state, store.Entries());
}

// The same entries by position: no search at all.
void ByIndex(benchmark::State& state, int sections) {
    Store& store = StoreOf(sections);
    for (auto _ : state)
        for (int s = 0; s < sections; ++s)
            for (int i = 0; i < kIds; ++i) benchmark::DoNotOptimize(store.ini.GetValueStr(s, i));
    PerEntry(state, store.Entries());
}

// An 8-bit INI file of kProfileSections sections of kIds keys.
const BenchFile& ProfileFile() {
    static const BenchFile file;
    static const bool written = [] {
        std::string text;
        for (int s = 0; s < kProfileSections; ++s) {
            text += "[Section" + std::to_string(s) + "]\r\n";
            for (int i = 0; i < kIds; ++i) text += "Key" + std::to_string(i) + "=c:\\program files\\suite\\data\r\n";
            text += "\r\n";
        }
        FILE* stream = std::fopen(file.onDisk.c_str(), "wb");
        return stream && std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fclose(stream) == 0;
    }();
    if (!written) std::abort();
    return file;
}

// What a profile read can't do without: the file's bytes, read once into a string of its size.
void ReadWholeFile(benchmark::State& state) {
    const BenchFile& file = ProfileFile();
    for (auto _ : state) {
        const int fd = open(file.onDisk.c_str(), O_RDONLY | O_CLOEXEC);
        struct stat status;
        fstat(fd, &status);
        std::string bytes(static_cast<size_t>(status.st_size), '\0');
        benchmark::DoNotOptimize(read(fd, bytes.data(), bytes.size()));
        close(fd);
        benchmark::DoNotOptimize(bytes.data());
    }
}

// One key a call, taken in turn from all over the file.
void ProfileString(benchmark::State& state) {
    const BenchFile& file = ProfileFile();
    WCHAR value[MAX_PATH];
    int n = 0;
    for (auto _ : state) {
        const std::u16string section = Number(u"Section", n % kProfileSections), key = Number(u"Key", n / 7 % kIds);
        benchmark::DoNotOptimize(
            ZelGetPrivateProfileString(section.c_str(), key.c_str(), u"", value, MAX_PATH, file.path.c_str()));
        n += 13;
    }
}

void ProfileInt(benchmark::State& state) {
    const BenchFile& file = ProfileFile();
    int n = 0;
    for (auto _ : state) {
        const std::u16string section = Number(u"Section", n % kProfileSections), key = Number(u"Key", n / 7 % kIds);
        benchmark::DoNotOptimize(ZelGetPrivateProfileInt(section.c_str(), key.c_str(), 5, file.path.c_str()));
        n += 13;
    }
}

using Operation = void (*)(benchmark::State&, int);
const std::pair<const char*, Operation> kOperations[] = {
    {"by name in order", ByNameInOrder}, {"by name at random", ByNameAtRandom}, {"by name, the last", ByNameLast},
    {"by index", ByIndex}, {"load", Load}, {"save", Save}};

// The cost of an entry at 3,000 sections over that at 10, or 0 when either did not run.
double Growth(const RatioReporter& reporter, const char* operation) {
    double perEntry[2] = {};
    for (int i = 0; i < 2; ++i)
        perEntry[i] = reporter.Cpu(std::string(operation) + "/" + std::to_string(kSectionCounts[i])) /
                      (double(kSectionCounts[i]) * kIds);
    return perEntry[0] > 0 && perEntry[1] > 0 ? perEntry[1] / perEntry[0] : 0;
}

void PrintPerEntry(const RatioReporter& reporter) {
    std::printf("\nCPU time an entry, ns (ratio: 3,000 sections over 10)\n%-18s", "");
    for (int sections : kSectionCounts) std::printf(" %10d", sections);
    std::printf(" %10s\n", "ratio");
    for (const auto& [operation, run] : kOperations) {
        (void)run;
        std::printf("%-18s", operation);
        double perEntry[2] = {};
        for (int i = 0; i < 2; ++i) {
            const double ms = reporter.Cpu(std::string(operation) + "/" + std::to_string(kSectionCounts[i]));
            perEntry[i] = ms * 1e6 / (double(kSectionCounts[i]) * kIds);
            if (ms == 0) std::printf(" %10s", "-");
            else std::printf(" %10.1f", perEntry[i]);
        }
        const double growth = Growth(reporter, operation);
        if (growth == 0) std::printf(" %10s\n", "-");
        else std::printf(" %10.3f\n", growth);
    }
    const double file = reporter.Cpu("read the whole file");
    std::printf("\nProfile file of %d keys, CPU µs a call (ratio: over one read of the whole file)\n",
                kProfileSections * kIds);
    for (const char* call : {"read the whole file", "ZelGetPrivateProfileString", "ZelGetPrivateProfileInt"}) {
        const double ns = reporter.Cpu(call);
        if (ns == 0 || file == 0) continue;
        std::printf("%-28s %10.2f %10.3f\n", call, ns / 1e3, ns / file);
    }
}

// Look-ups by name flat (within 1.5 times) from 10 sections to 3,000, load and save linear, and a
// profile read at most twice one read of the whole file.
void PrintGoals(const RatioReporter& reporter) {
    for (const char* operation : {"by name in order", "by name at random", "by name, the last", "load", "save"})
        if (const double growth = Growth(reporter, operation); growth > 0)
            PrintGoalLine(std::string(operation) + ", 3,000 sections over 10, an entry", growth, 1.5);
    const double file = reporter.Cpu("read the whole file");
    for (const char* call : {"ZelGetPrivateProfileString", "ZelGetPrivateProfileInt"})
        if (const double ns = reporter.Cpu(call); ns > 0 && file > 0)
            PrintGoalLine(std::string(call) + ", 10,000 keys, over one read of the file", ns / file, 2.0);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    for (const auto& [operation, run] : kOperations)
        for (int sections : kSectionCounts)
            benchmark::RegisterBenchmark((std::string(operation) + "/" + std::to_string(sections)).c_str(), run, sections)
                ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("read the whole file", ReadWholeFile);
    benchmark::RegisterBenchmark("ZelGetPrivateProfileString", ProfileString);
    benchmark::RegisterBenchmark("ZelGetPrivateProfileInt", ProfileInt);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    PrintPerEntry(reporter);
    PrintGoals(reporter);
    benchmark::Shutdown();
    return 0;
}
