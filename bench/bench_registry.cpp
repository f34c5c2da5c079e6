// The in-memory registry tree through the ZelReg adapters, in two shapes: one parent with 100,
// 1,000, 10,000 and 100,000 children of one value each, and a balanced tree of 99,498 keys (46
// children a key, three levels) with five values each. Every operation is timed over all keys of
// a shape and reported per key, with the cost at 100,000 children over the cost at 100 at the end:
// near 1 where the cost of a key does not grow with its siblings. No peer.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <zel/settings.h>

#include "bench_temp_file.h"
#include "platform/win32.h"
#include "ratio_reporter.h"

namespace {

constexpr int kTreeVirtual = 1;
const int kSiblingCounts[] = {100, 1000, 10000, 100000};
constexpr int kFanOut = 46;
constexpr int kLevels = 3;
const char16_t* const kValueNames[] = {u"v0", u"v1", u"v2", u"v3", u"v4"};

std::u16string Number(const char16_t* prefix, int n) {
    std::u16string text = prefix;
    for (char c : std::to_string(n)) text += char16_t(c);
    return text;
}

struct Node {
    int parent;  // -1: the shape's top key
    std::u16string name;
    std::u16string path;  // from the top key
    bool hasChildren;
};

// The keys of a shape in order of creation, each parent before its children.
struct Shape {
    std::string label;
    std::u16string top;  // below HKEY_CURRENT_USER
    std::vector<Node> nodes;
    int values = 1;

    HKEY Top() const {
        HKEY key = nullptr;
        ZelRegCreateKey(HKEY_CURRENT_USER, top.c_str(), &key, kTreeVirtual);
        return key;
    }
    HKEY ParentOf(const Node& node, HKEY top, const std::vector<HKEY>& keys) const {
        return node.parent < 0 ? top : keys[static_cast<size_t>(node.parent)];
    }
    // Makes every key with its values; gives the handles in node order.
    std::vector<HKEY> Create() const {
        static const BYTE block[24] = {1, 2, 3, 4, 5, 6, 7, 8};
        static const char text[] = "c:\\program files\\suite\\data";
        const HKEY top = Top();
        std::vector<HKEY> keys(nodes.size());
        for (size_t i = 0; i < nodes.size(); ++i) {
            ZelRegCreateKey(ParentOf(nodes[i], top, keys), nodes[i].name.c_str(), &keys[i], kTreeVirtual);
            const DWORD number = static_cast<DWORD>(i);
            ZelRegSetValueEx(keys[i], kValueNames[0], 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), 4,
                             kTreeVirtual);
            for (int v = 1; v < values; ++v)
                ZelRegSetValueEx(keys[i], kValueNames[v], 0, v % 2 ? REG_SZ : REG_BINARY,
                                 v % 2 ? reinterpret_cast<const BYTE*>(text) : block, v % 2 ? sizeof text : sizeof block,
                                 kTreeVirtual);
        }
        return keys;
    }
    // Children before their parents.
    void Delete(const std::vector<HKEY>& keys) const {
        const HKEY top = Top();
        for (size_t i = nodes.size(); i-- > 0;)
            ZelRegDeleteKey(ParentOf(nodes[i], top, keys), nodes[i].name.c_str(), kTreeVirtual);
    }
};

Shape Siblings(int count, const std::u16string& top) {
    Shape shape{std::to_string(count), top, {}, 1};
    for (int i = 0; i < count; ++i) shape.nodes.push_back({-1, Number(u"Key", i), Number(u"Key", i), false});
    return shape;
}

Shape Balanced(const std::u16string& top) {
    Shape shape{"tree", top, {}, 5};
    auto add = [&](auto& self, int parent, const std::u16string& prefix, int level) -> void {
        for (int i = 0; i < kFanOut; ++i) {
            const std::u16string name = Number(u"K", i);
            shape.nodes.push_back({parent, name, prefix + name, level < kLevels});
            if (level < kLevels) self(self, static_cast<int>(shape.nodes.size()) - 1, prefix + name + u"\\", level + 1);
        }
    };
    add(add, -1, u"", 1);
    return shape;
}

// A shape that stays built for the benchmarks that only read it, and for save and load.
struct Built {
    Shape shape;
    std::vector<HKEY> keys;
    HKEY top;
};

Built& Ready(const std::string& label) {
    static std::map<std::string, Built> built;
    auto found = built.find(label);
    if (found != built.end()) return found->second;
    Shape shape = label == "tree" ? Balanced(u"Bench\\ReadyTree") : Siblings(std::stoi(label), u"Bench\\Ready" + Number(u"", std::stoi(label)));
    Built made{shape, shape.Create(), shape.Top()};
    return built.emplace(label, std::move(made)).first->second;
}

Shape Scratch(const std::string& label) {
    return label == "tree" ? Balanced(u"Bench\\Scratch") : Siblings(std::stoi(label), u"Bench\\Scratch");
}

void PerKey(benchmark::State& state, size_t keys) {
    state.counters["keys"] = static_cast<double>(keys);
    state.counters["per_key"] = benchmark::Counter(static_cast<double>(keys), benchmark::Counter::kIsIterationInvariantRate |
                                                                                  benchmark::Counter::kInvert);
}

void Create(benchmark::State& state, const std::string& label) {
    const Shape shape = Scratch(label);
    for (auto _ : state) {
        const std::vector<HKEY> keys = shape.Create();
        state.PauseTiming();
        shape.Delete(keys);
        state.ResumeTiming();
    }
    PerKey(state, shape.nodes.size());
}

void Delete(benchmark::State& state, const std::string& label) {
    const Shape shape = Scratch(label);
    for (auto _ : state) {
        state.PauseTiming();
        const std::vector<HKEY> keys = shape.Create();
        state.ResumeTiming();
        shape.Delete(keys);
    }
    PerKey(state, shape.nodes.size());
}

// Every key by its path from the top, in order of creation.
void Open(benchmark::State& state, const std::string& label) {
    const Built& ready = Ready(label);
    for (auto _ : state) {
        for (const Node& node : ready.shape.nodes) {
            HKEY key = nullptr;
            benchmark::DoNotOptimize(ZelRegOpenKey(ready.top, node.path.c_str(), &key, kTreeVirtual));
        }
    }
    PerKey(state, ready.shape.nodes.size());
}

// Every key by its path in a random order, and its first value read. The paths lie one after
// the other in that order, so that reading them adds no misses of its own to the tree's.
void LookUp(benchmark::State& state, const std::string& label) {
    const Built& ready = Ready(label);
    std::vector<const Node*> order;
    for (const Node& node : ready.shape.nodes) order.push_back(&node);
    std::shuffle(order.begin(), order.end(), std::mt19937(7));
    std::u16string paths;
    std::vector<size_t> starts;
    for (const Node* node : order) {
        starts.push_back(paths.size());
        paths += node->path;
        paths += u'\0';
    }
    for (auto _ : state) {
        for (size_t start : starts) {
            HKEY key = nullptr;
            DWORD value = 0, size = sizeof value, type = 0;
            ZelRegOpenKey(ready.top, paths.c_str() + start, &key, kTreeVirtual);
            benchmark::DoNotOptimize(
                ZelRegQueryValueEx(key, kValueNames[0], nullptr, &type, reinterpret_cast<BYTE*>(&value), &size, kTreeVirtual));
        }
    }
    PerKey(state, ready.shape.nodes.size());
}

// The last key made, by its path, as many times as the shape has keys, and its first value read:
// the look-up whose cost grew with the siblings when they were searched in a chain. Its memory
// stays in the cache, so what this measures is the search alone.
void LookUpLast(benchmark::State& state, const std::string& label) {
    const Built& ready = Ready(label);
    const std::u16string& path = ready.shape.nodes.back().path;
    for (auto _ : state) {
        for (size_t n = 0; n < ready.shape.nodes.size(); ++n) {
            HKEY key = nullptr;
            DWORD value = 0, size = sizeof value, type = 0;
            ZelRegOpenKey(ready.top, path.c_str(), &key, kTreeVirtual);
            benchmark::DoNotOptimize(
                ZelRegQueryValueEx(key, kValueNames[0], nullptr, &type, reinterpret_cast<BYTE*>(&value), &size, kTreeVirtual));
        }
    }
    PerKey(state, ready.shape.nodes.size());
}

// The sub-keys of every key by rising index: one call a key.
void EnumKeys(benchmark::State& state, const std::string& label) {
    const Built& ready = Ready(label);
    std::vector<int> children(ready.shape.nodes.size() + 1);  // the top's count last
    for (const Node& node : ready.shape.nodes) ++children[node.parent < 0 ? children.size() - 1 : size_t(node.parent)];
    std::vector<std::pair<HKEY, int>> parents{{ready.top, children.back()}};
    for (size_t i = 0; i < ready.shape.nodes.size(); ++i)
        if (children[i] > 0) parents.push_back({ready.keys[i], children[i]});
    WCHAR name[MAX_PATH];
    for (auto _ : state) {
        for (const auto& [key, count] : parents)
            for (int index = 0; index < count; ++index)
                benchmark::DoNotOptimize(ZelRegEnumKey(key, static_cast<DWORD>(index), name, MAX_PATH, kTreeVirtual));
    }
    PerKey(state, ready.shape.nodes.size());
}

// The values of every key by rising index, names and data.
void EnumValues(benchmark::State& state, const std::string& label) {
    const Built& ready = Ready(label);
    WCHAR name[MAX_PATH];
    BYTE data[64];
    for (auto _ : state) {
        for (HKEY key : ready.keys) {
            for (int v = 0; v < ready.shape.values; ++v) {
                DWORD capacity = MAX_PATH, type = 0, size = sizeof data;
                benchmark::DoNotOptimize(ZelRegEnumValue(key, static_cast<DWORD>(v), name, &capacity, nullptr, &type,
                                                         data, &size, kTreeVirtual));
            }
        }
    }
    PerKey(state, ready.shape.nodes.size());
}

void Save(benchmark::State& state, const std::string& label) {
    const Built& ready = Ready(label);
    BenchFile file;
    CZelRegistry reg(kTreeVirtual);
    for (auto _ : state) benchmark::DoNotOptimize(reg.SaveToFile(ready.shape.top.c_str(), file.path.c_str()));
    PerKey(state, ready.shape.nodes.size());
}

// A load clears the key first, so each pass deletes the keys and makes them again. It leaves the
// shape as it was, but for its handles: loads run last.
void Load(benchmark::State& state, const std::string& label) {
    const Built& ready = Ready(label);
    BenchFile file;
    CZelRegistry reg(kTreeVirtual);
    reg.SaveToFile(ready.shape.top.c_str(), file.path.c_str());
    for (auto _ : state) benchmark::DoNotOptimize(reg.LoadFromFile(file.path.c_str()));
    PerKey(state, ready.shape.nodes.size());
}

using Operation = void (*)(benchmark::State&, const std::string&);
const std::pair<const char*, Operation> kOperations[] = {
    {"create", Create},       {"open", Open},     {"look-up", LookUp},          {"look-up of the last key", LookUpLast},
    {"EnumKey", EnumKeys},    {"EnumValue", EnumValues}, {"delete", Delete}, {"SaveToFile", Save},
    {"LoadFromFile", Load},
};

// CPU µs a key for each operation and shape, and the cost at 100,000 children over that at 100.
void PrintPerKey(const RatioReporter& reporter, const std::vector<std::string>& labels) {
    std::printf("\nCPU time a key, µs (ratio: 100,000 children over 100)\n%-24s", "");
    for (const std::string& label : labels) std::printf(" %10s", label.c_str());
    std::printf(" %10s\n", "ratio");
    for (const auto& [operation, run] : kOperations) {
        (void)run;
        std::printf("%-24s", operation);
        for (const std::string& label : labels) {
            const double ms = reporter.Cpu(std::string(operation) + "/" + label);
            const size_t keys = label == "tree" ? Balanced(u"").nodes.size() : std::stoul(label);
            if (ms == 0) std::printf(" %10s", "-");
            else std::printf(" %10.3f", ms * 1e3 / static_cast<double>(keys));
        }
        const double small = reporter.Cpu(std::string(operation) + "/100"), large = reporter.Cpu(std::string(operation) + "/100000");
        if (small == 0 || large == 0) std::printf(" %10s\n", "-");
        else std::printf(" %10.3f\n", large / 1000 / small);
    }
}

// Each operation at 100,000 children within 1.5 times its cost a key at 100, and at most 1 µs a key
// there and in the balanced tree.
void PrintGoals(const RatioReporter& reporter) {
    const double treeKeys = static_cast<double>(Balanced(u"").nodes.size());
    for (const auto& [operation, run] : kOperations) {
        (void)run;
        const std::string name = operation;
        const double small = reporter.Cpu(name + "/100"), large = reporter.Cpu(name + "/100000"),
                     tree = reporter.Cpu(name + "/tree");
        if (small > 0 && large > 0) PrintGoalLine(name + ", 100,000 children over 100", large / 1000 / small, 1.5);
        if (large > 0) PrintGoalLine(name + ", 100,000 children, µs a key", large * 1e3 / 1e5, 1.0);
        if (tree > 0) PrintGoalLine(name + ", balanced tree, µs a key", tree * 1e3 / treeKeys, 1.0);
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    std::vector<std::string> labels;
    for (int count : kSiblingCounts) labels.push_back(std::to_string(count));
    labels.push_back("tree");
    for (const auto& [operation, run] : kOperations)
        for (const std::string& label : labels)
            benchmark::RegisterBenchmark((std::string(operation) + "/" + label).c_str(), run, label)
                ->Unit(benchmark::kMillisecond);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    PrintPerKey(reporter, labels);
    PrintGoals(reporter);
    benchmark::Shutdown();
    return 0;
}
