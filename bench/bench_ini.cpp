// The INI store on a file of 100,000 entries (1,000 sections of 100 ids): a load, a save, and
// the look-up of every entry by name, where each look-up scans the sections and then the ids one
// by one, so its cost grows with the position. No peer: entries per second.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <zel/settings.h>

#include "bench_temp_file.h"
#include "platform/win32.h"

namespace {

constexpr int kSections = 1000;
constexpr int kIds = 100;
constexpr int kEntries = kSections * kIds;

std::u16string Number(const char16_t* prefix, int n, const char16_t* suffix = u"") {
    std::u16string text = prefix;
    for (char c : std::to_string(n)) text += char16_t(c);
    return text + suffix;
}

const std::vector<std::u16string>& SectionNames() {
    static const std::vector<std::u16string> names = [] {
        std::vector<std::u16string> made;
        for (int s = 0; s < kSections; ++s) made.push_back(Number(u"[Section", s, u"]"));
        return made;
    }();
    return names;
}

const std::vector<std::u16string>& Ids() {
    static const std::vector<std::u16string> ids = [] {
        std::vector<std::u16string> made;
        for (int i = 0; i < kIds; ++i) made.push_back(Number(u"Key", i));
        return made;
    }();
    return ids;
}

void Fill(CZelIniManager& ini) {
    for (int s = 0; s < kSections; ++s) {
        const int section = ini.AddSection(SectionNames()[s].c_str());
        for (int i = 0; i < kIds; ++i)
            ini.AddIdValueStr(section, Ids()[i].c_str(), u"c:\\program files\\suite\\data \uD55C\uAE00");
    }
}

const BenchFile& SavedFile() {
    static const BenchFile file;
    static const bool saved = [] {
        CZelIniManager ini;
        Fill(ini);
        return ini.SaveCfgToFile(file.path.c_str()) == 1;
    }();
    if (!saved) std::abort();
    return file;
}

void Report(benchmark::State& state, int entries) {
    state.counters["entries"] = entries;
    state.counters["entries_per_s"] = benchmark::Counter(entries, benchmark::Counter::kIsIterationInvariantRate);
}

void BM_Load(benchmark::State& state) {
    const BenchFile& file = SavedFile();
    for (auto _ : state) {
        CZelIniManager ini;
        benchmark::DoNotOptimize(ini.LoadCfgFromFile(file.path.c_str()));
    }
    Report(state, kEntries);
}
BENCHMARK(BM_Load)->Unit(benchmark::kMillisecond);

void BM_Save(benchmark::State& state) {
    BenchFile file;
    CZelIniManager ini;
    Fill(ini);
    for (auto _ : state) benchmark::DoNotOptimize(ini.SaveCfgToFile(file.path.c_str()));
    Report(state, kEntries);
}
BENCHMARK(BM_Save)->Unit(benchmark::kMillisecond);

// Every entry by section name and id: about kSections / 2 + kIds / 2 comparisons each.
void BM_LookUpEveryEntryByName(benchmark::State& state) {
    CZelIniManager ini;
    Fill(ini);
    for (auto _ : state) {
        for (int s = 0; s < kSections; ++s)
            for (int i = 0; i < kIds; ++i)
                benchmark::DoNotOptimize(ini.GetValueStr(SectionNames()[s].c_str(), Ids()[i].c_str()));
    }
    Report(state, kEntries);
}
BENCHMARK(BM_LookUpEveryEntryByName)->Unit(benchmark::kMillisecond);

// The same entries by position: no scan at all.
void BM_LookUpEveryEntryByIndex(benchmark::State& state) {
    CZelIniManager ini;
    Fill(ini);
    for (auto _ : state) {
        for (int s = 0; s < kSections; ++s)
            for (int i = 0; i < kIds; ++i) benchmark::DoNotOptimize(ini.GetValueStr(s, i));
    }
    Report(state, kEntries);
}
BENCHMARK(BM_LookUpEveryEntryByIndex)->Unit(benchmark::kMillisecond);

}  // namespace
