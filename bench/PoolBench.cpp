// Small blocks: cPool beside malloc, each thread for itself.
#include "Bench.h"

#include "foundation/cPool.h"

#include <cstdlib>
#include <set>

using trellis::cPool;

namespace {

struct Pool {
    static unsigned char* Alloc(int size) { return cPool::Alloc(size); }
    static void Free(unsigned char* p, int size) { cPool::Free(p, size); }
};

struct Malloc {
    static unsigned char* Alloc(int size) { return static_cast<unsigned char*>(std::malloc(size_t(size))); }
    static void Free(unsigned char* p, int) { std::free(p); }
};

template <class Allocator> void BM_PoolPair(benchmark::State& state) {
    int size = int(state.range(0));
    benchmark::DoNotOptimize(size); // a size that the compiler knows would favour the buckets
    for (auto _ : state) {
        unsigned char* p = Allocator::Alloc(size);
        *p = 1;
        benchmark::DoNotOptimize(p);
        Allocator::Free(p, size);
    }
    state.SetItemsProcessed(state.iterations());
}

template <class Allocator> void BM_PoolBatch(benchmark::State& state) { // range: size, blocks held at a time
    int size = int(state.range(0));
    benchmark::DoNotOptimize(size);
    const int held = int(state.range(1));
    unsigned char* blocks[1024];
    for (auto _ : state) {
        for (int i = 0; i < held; i++) {
            blocks[i] = Allocator::Alloc(size);
            *blocks[i] = 1;
        }
        benchmark::DoNotOptimize(blocks);
        benchmark::ClobberMemory();
        for (int i = 0; i < held; i++) {
            Allocator::Free(blocks[i], size);
        }
    }
    state.SetItemsProcessed(state.iterations() * held);
}

void Sizes(benchmark::internal::Benchmark* b) {
    for (const int size : {8, 16, 32, 64, 128}) {
        b->Arg(size);
    }
    b->Threads(1)->Threads(2)->UseRealTime();
}

void Batches(benchmark::internal::Benchmark* b) {
    for (const int size : {8, 32, 128}) {
        b->Args({size, 64});
    }
    b->Args({32, 1024});
    b->Threads(1)->Threads(2)->UseRealTime();
}

BENCHMARK_TEMPLATE(BM_PoolPair, Pool)->Apply(Sizes);
BENCHMARK_TEMPLATE(BM_PoolPair, Malloc)->Apply(Sizes);
BENCHMARK_TEMPLATE(BM_PoolBatch, Pool)->Apply(Batches);
BENCHMARK_TEMPLATE(BM_PoolBatch, Malloc)->Apply(Batches);

const cBenchCheck s_Check("blocks", [] {
    std::set<unsigned char*> blocks;
    for (int i = 0; i < 1000; i++) {
        blocks.insert(Pool::Alloc(32));
    }
    const bool distinct = blocks.size() == 1000;
    for (unsigned char* p : blocks) {
        Pool::Free(p, 32);
    }
    return distinct;
});

} // namespace
