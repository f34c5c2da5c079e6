// The registry file on the in-memory tree: a settings tree of 10,000 keys and 50,000 values saved
// and loaded back, and one parent with more and more children, where the cost per key grows with
// the number of siblings (children are looked up along their chain). No peer: times per key only.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <zel/settings.h>

#include "bench_temp_file.h"
#include "platform/win32.h"

namespace {

constexpr int kTreeVirtual = 1;
constexpr int kValuesPerKey = 5;

std::u16string Number(const char16_t* prefix, int n) {
    std::u16string text = prefix;
    for (char c : std::to_string(n)) text += char16_t(c);
    return text;
}

void WriteValues(CZelRegistry& reg, const std::u16string& section, int n) {
    static const BYTE block[24] = {1, 2, 3, 4, 5, 6, 7, 8};
    reg.WriteDwordValue(section.c_str(), u"Count", n);
    reg.WriteStringValue(section.c_str(), u"Name", u"a settings value");
    reg.WriteStringValue(section.c_str(), u"Path", u"c:\\program files\\suite\\data");
    reg.WriteBinaryValue(section.c_str(), u"Block", block, sizeof block);
    reg.WriteDwordValue(section.c_str(), u"Flags", 0x10);
}

// Below Bench\<top>: groups keys with children each below them, every key with five values of
// mixed types; with one group the children stand right below top. Gives the number of keys.
int BuildTree(const std::u16string& top, int groups, int children) {
    CZelRegistry reg((u"Bench\\" + top).c_str(), HKEY_CURRENT_USER, kTreeVirtual);
    for (int g = 0; g < groups; ++g) {
        const std::u16string group = groups > 1 ? Number(u"Group", g) + u"\\" : u"";
        if (groups > 1) WriteValues(reg, Number(u"Group", g), g);
        for (int c = 0; c < children; ++c) WriteValues(reg, group + Number(u"Key", c), c);
    }
    return groups * children + (groups > 1 ? groups : 0);
}

// 100 groups of 99 children: 10,000 keys and 50,000 values.
int BigTree() {
    static const int keys = BuildTree(u"Big", 100, 99);
    return keys;
}

void Report(benchmark::State& state, int keys) {
    state.counters["keys"] = keys;
    state.counters["per_key"] = benchmark::Counter(keys, benchmark::Counter::kIsIterationInvariantRate |
                                                             benchmark::Counter::kInvert);
}

void BM_SaveTree(benchmark::State& state) {
    const int keys = BigTree();
    BenchFile file;
    CZelRegistry reg(kTreeVirtual);
    for (auto _ : state) benchmark::DoNotOptimize(reg.SaveToFile(u"Bench\\Big", file.path.c_str()));
    Report(state, keys);
    state.counters["values"] = keys * kValuesPerKey;
}
BENCHMARK(BM_SaveTree)->Unit(benchmark::kMillisecond);

void BM_LoadTree(benchmark::State& state) {
    const int keys = BigTree();
    BenchFile file;
    CZelRegistry reg(kTreeVirtual);
    reg.SaveToFile(u"Bench\\Big", file.path.c_str());
    for (auto _ : state) benchmark::DoNotOptimize(reg.LoadFromFile(file.path.c_str()));
    Report(state, keys);
}
BENCHMARK(BM_LoadTree)->Unit(benchmark::kMillisecond);

// One parent with state.range(0) children.
void BM_SaveSiblings(benchmark::State& state) {
    const int children = static_cast<int>(state.range(0));
    const std::u16string top = Number(u"Siblings", children);
    BuildTree(top, 1, children);
    BenchFile file;
    CZelRegistry reg(kTreeVirtual);
    for (auto _ : state) benchmark::DoNotOptimize(reg.SaveToFile((u"Bench\\" + top).c_str(), file.path.c_str()));
    Report(state, children);
}
BENCHMARK(BM_SaveSiblings)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

// A load clears the parent's children first, so each pass deletes and makes them all again.
void BM_LoadSiblings(benchmark::State& state) {
    const int children = static_cast<int>(state.range(0));
    const std::u16string top = Number(u"Siblings", children);
    BuildTree(top, 1, children);
    BenchFile file;
    CZelRegistry reg(kTreeVirtual);
    reg.SaveToFile((u"Bench\\" + top).c_str(), file.path.c_str());
    for (auto _ : state) benchmark::DoNotOptimize(reg.LoadFromFile(file.path.c_str()));
    Report(state, children);
}
BENCHMARK(BM_LoadSiblings)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
