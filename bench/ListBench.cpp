// Growing arrays: cList beside std::vector.
#include "Bench.h"

#include "foundation/cList.h"
#include "foundation/cStr.h"

#include <memory>
#include <random>
#include <string>
#include <vector>

using trellis::cList;
using trellis::cStr;

namespace {

template <class T> void AddTo(cList<T>& list, const T& v) {
    list.Add(v);
}
template <class T> void AddTo(std::vector<T>& list, const T& v) {
    list.push_back(v);
}
template <class T> int CountOf(const cList<T>& list) {
    return list.Count();
}
template <class T> int CountOf(const std::vector<T>& list) {
    return int(list.size());
}

const char* TextOf(const cStr& s) {
    return s.Text();
}
const char* TextOf(const std::string& s) {
    return s.c_str();
}

template <class List> void BM_ListAppend(benchmark::State& state) { // growth from empty, as the loaders do it
    const int count = int(state.range(0));
    for (auto _ : state) {
        List list;
        for (int i = 0; i < count; i++) {
            AddTo(list, i);
        }
        benchmark::DoNotOptimize(list);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * count);
}

template <class Str> std::vector<Str> Words(int count, int length) {
    std::mt19937 random(1);
    std::vector<Str> words;
    for (int i = 0; i < count; i++) {
        words.emplace_back(std::string(size_t(length), char('a' + random() % 26)).c_str());
    }
    return words;
}

template <class List, class Str> void AppendWords(List& list, const std::vector<Str>& words) {
    for (const Str& word : words) {
        AddTo(list, word);
    }
}

template <class List, class Str> void BM_ListAppendText(benchmark::State& state) { // range: count, length of a text
    const auto words = Words<Str>(int(state.range(0)), int(state.range(1)));
    for (auto _ : state) {
        List list;
        AppendWords(list, words);
        benchmark::DoNotOptimize(list);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// Many lists of 0 to `most` elements each: made, filled, asked for their counts, destroyed.
template <class List> int TinyLists(const std::vector<int>& counts) {
    const std::unique_ptr<List[]> lists(new List[counts.size()]);
    for (size_t i = 0; i < counts.size(); i++) {
        for (int j = 0; j < counts[i]; j++) {
            AddTo(lists[i], j);
        }
    }
    int sum = 0;
    for (size_t i = 0; i < counts.size(); i++) {
        sum += CountOf(lists[i]);
    }
    benchmark::ClobberMemory();
    return sum;
}

std::vector<int> TinyCounts(int most) {
    std::mt19937 random(1);
    std::vector<int> counts;
    for (int i = 0; i < 100000; i++) {
        counts.push_back(int(random() % unsigned(most + 1)));
    }
    return counts;
}

template <class List> void BM_ListTiny(benchmark::State& state) {
    const auto counts = TinyCounts(int(state.range(0)));
    for (auto _ : state) {
        int sum = TinyLists<List>(counts);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * int(counts.size()));
}

void TextSizes(benchmark::internal::Benchmark* b) {
    for (const int length : {8, 24}) {
        for (const int count : {16, 1024, 65536}) {
            b->Args({count, length});
        }
    }
}

BENCHMARK_TEMPLATE(BM_ListAppend, cList<int>)->RangeMultiplier(16)->Range(16, 1 << 20);
BENCHMARK_TEMPLATE(BM_ListAppend, std::vector<int>)->RangeMultiplier(16)->Range(16, 1 << 20);
BENCHMARK_TEMPLATE(BM_ListAppendText, cList<cStr>, cStr)->Apply(TextSizes);
BENCHMARK_TEMPLATE(BM_ListAppendText, std::vector<std::string>, std::string)->Apply(TextSizes);
BENCHMARK_TEMPLATE(BM_ListTiny, cList<int>)->Arg(0)->Arg(1)->Arg(2);
BENCHMARK_TEMPLATE(BM_ListTiny, std::vector<int>)->Arg(0)->Arg(1)->Arg(2);

const cBenchCheck s_Check("lists", [] {
    const auto ours = Words<cStr>(1000, 24);
    const auto theirs = Words<std::string>(1000, 24);
    cList<cStr> a;
    std::vector<std::string> b;
    AppendWords(a, ours);
    AppendWords(b, theirs);
    bool same = CountOf(a) == CountOf(b);
    for (int i = 0; same && i < CountOf(a); i++) {
        same = std::string(TextOf(a[i])) == TextOf(b[size_t(i)]);
    }
    return same && TinyLists<cList<int>>(TinyCounts(2)) == TinyLists<std::vector<int>>(TinyCounts(2));
});

} // namespace
