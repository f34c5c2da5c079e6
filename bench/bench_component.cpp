// The reference count of CZelComObject under contention: an AddRef and Release pair on one object
// shared by one or two threads, called directly and through the object's IUnknown face, against
// the same pair on a plain std::atomic counter. Times are per pair.
#include <benchmark/benchmark.h>

#include <atomic>

#include <zel/component.h>

namespace {

// Never reaches 0: every pair starts above the creator's count of 1.
CZelComObject& SharedObject() {
    static CZelComObject object;
    return object;
}

std::atomic<LONG>& SharedCounter() {
    static std::atomic<LONG> counter{1};
    return counter;
}

void ComObjectMembers(benchmark::State& state) {
    CZelComObject& object = SharedObject();
    for (auto _ : state) {
        benchmark::DoNotOptimize(object.AddRef());
        benchmark::DoNotOptimize(object.Release());
    }
}

void ComObjectIUnknown(benchmark::State& state) {
    IUnknown* unknown = static_cast<IUnknown*>(SharedObject());
    benchmark::DoNotOptimize(unknown);
    for (auto _ : state) {
        benchmark::DoNotOptimize(unknown->AddRef());
        benchmark::DoNotOptimize(unknown->Release());
    }
}

// The peer: the least a thread-safe count does, with the same test for 0 ahead of the decrement.
void PlainAtomic(benchmark::State& state) {
    std::atomic<LONG>& counter = SharedCounter();
    for (auto _ : state) {
        benchmark::DoNotOptimize(counter.fetch_add(1) + 1);
        if (counter.load(std::memory_order_relaxed) != 0) benchmark::DoNotOptimize(counter.fetch_sub(1) - 1);
    }
}

}  // namespace

BENCHMARK(ComObjectMembers)->Threads(1)->Threads(2)->UseRealTime();
BENCHMARK(ComObjectIUnknown)->Threads(1)->Threads(2)->UseRealTime();
BENCHMARK(PlainAtomic)->Threads(1)->Threads(2)->UseRealTime();
