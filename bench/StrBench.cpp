// Short texts: cStr beside std::string. Up to 15 bytes the peer stores them in the object, beyond that on the heap.
#include "Bench.h"

#include "foundation/cStr.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

using trellis::cStr;

namespace {

constexpr int s_Texts = 64; // sources in turn, so that no single address is the answer

const char* TextOf(const cStr& s) {
    return s.Text();
}
const char* TextOf(const std::string& s) {
    return s.c_str();
}
void AppendTo(cStr& s, const char* text, int count) {
    s.Append(text, 0, count);
}
void AppendTo(std::string& s, const char* text, int count) {
    s.append(text, size_t(count));
}
int Order(const cStr& a, const cStr& b) {
    return cStr::Compare(a, b);
}
int Order(const std::string& a, const std::string& b) {
    return a.compare(b);
}

/// Texts of one length that differ in their last byte at most.
template <class Str> std::vector<Str> Texts(int length) {
    std::mt19937 random(1);
    std::string text(size_t(length), ' ');
    for (char& c : text) {
        c = char('a' + random() % 26);
    }
    std::vector<Str> texts;
    for (int i = 0; i < s_Texts; i++) {
        text.back() = char('a' + random() % 4);
        texts.emplace_back(text.c_str());
    }
    return texts;
}

template <class Str> void AppendPieces(Str& s, const char* text, int length) {
    for (int i = 0; i < length; i += 8) {
        AppendTo(s, text + i, std::min(8, length - i));
    }
}

template <class Str> void BM_StrAppend(benchmark::State& state) { // one append onto a new string
    const int length = int(state.range(0));
    const auto texts = Texts<std::string>(length);
    size_t i = 0;
    for (auto _ : state) {
        Str s;
        AppendTo(s, texts[i++ % s_Texts].c_str(), length);
        benchmark::DoNotOptimize(s);
    }
    state.SetItemsProcessed(state.iterations());
}

template <class Str> void BM_StrAppendPieces(benchmark::State& state) { // grown by 8 bytes at a time
    const int length = int(state.range(0));
    const auto texts = Texts<std::string>(length);
    size_t i = 0;
    for (auto _ : state) {
        Str s;
        AppendPieces(s, texts[i++ % s_Texts].c_str(), length);
        benchmark::DoNotOptimize(s);
    }
    state.SetItemsProcessed(state.iterations());
}

template <class Str> void BM_StrCopyNew(benchmark::State& state) {
    const auto texts = Texts<Str>(int(state.range(0)));
    size_t i = 0;
    for (auto _ : state) {
        Str s(texts[i++ % s_Texts]);
        benchmark::DoNotOptimize(s);
    }
    state.SetItemsProcessed(state.iterations());
}

template <class Str> void BM_StrCopyOver(benchmark::State& state) { // into a buffer that is large enough
    const auto texts = Texts<Str>(int(state.range(0)));
    size_t i = 0;
    Str s(texts[0]);
    for (auto _ : state) {
        s = texts[i++ % s_Texts];
        benchmark::DoNotOptimize(s);
    }
    state.SetItemsProcessed(state.iterations());
}

template <class Str> void BM_StrCompare(benchmark::State& state) { // equal, or different in the last byte
    const auto texts = Texts<Str>(int(state.range(0)));
    size_t i = 0;
    for (auto _ : state) {
        int order = Order(texts[i % s_Texts], texts[(i * 7 + 1) % s_Texts]);
        i++;
        benchmark::DoNotOptimize(order);
    }
    state.SetItemsProcessed(state.iterations());
}

void Lengths(benchmark::internal::Benchmark* b) {
    for (const int length : {8, 15, 16, 32, 64, 120}) {
        b->Arg(length);
    }
}

BENCHMARK_TEMPLATE(BM_StrAppend, cStr)->Apply(Lengths);
BENCHMARK_TEMPLATE(BM_StrAppend, std::string)->Apply(Lengths);
BENCHMARK_TEMPLATE(BM_StrAppendPieces, cStr)->Apply(Lengths);
BENCHMARK_TEMPLATE(BM_StrAppendPieces, std::string)->Apply(Lengths);
BENCHMARK_TEMPLATE(BM_StrCopyNew, cStr)->Apply(Lengths);
BENCHMARK_TEMPLATE(BM_StrCopyNew, std::string)->Apply(Lengths);
BENCHMARK_TEMPLATE(BM_StrCopyOver, cStr)->Apply(Lengths);
BENCHMARK_TEMPLATE(BM_StrCopyOver, std::string)->Apply(Lengths);
BENCHMARK_TEMPLATE(BM_StrCompare, cStr)->Apply(Lengths);
BENCHMARK_TEMPLATE(BM_StrCompare, std::string)->Apply(Lengths);

const cBenchCheck s_Check("strings", [] {
    bool same = true;
    for (const int length : {8, 15, 16, 32, 64, 120}) {
        const auto ours = Texts<cStr>(length);
        const auto theirs = Texts<std::string>(length);
        for (size_t i = 0; i < s_Texts; i++) {
            cStr a;
            std::string b;
            AppendPieces(a, TextOf(theirs[i]), length);
            AppendPieces(b, TextOf(theirs[i]), length);
            const int order = Order(theirs[i], theirs[(i * 7 + 1) % s_Texts]);
            same = same && a == b.c_str() && TextOf(cStr(ours[i])) == theirs[i] &&
                   Order(ours[i], ours[(i * 7 + 1) % s_Texts]) == (order > 0) - (order < 0);
        }
    }
    return same;
});

} // namespace
