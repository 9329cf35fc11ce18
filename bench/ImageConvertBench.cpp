// Pixel formats beside pixman, where it has the pair, and beside a copy of the source's bytes. Pixman names the
// channels of a word from its high end, so that our Rgba8 is its a8b8g8r8.
#include "Bench.h"

#include "image/PixelConvert.h"
#include "image/cImage.h"

#include <pixman.h>

#include <cstring>
#include <random>

using namespace trellis;

namespace {

struct Pair {
    cFormat::Enum From, To;
    pixman_format_code_t PeerFrom, PeerTo;
};
constexpr Pair s_Widen = {cFormat::Rgb8, cFormat::Rgba8, PIXMAN_b8g8r8, PIXMAN_a8b8g8r8};
constexpr Pair s_Narrow = {cFormat::Rgba8, cFormat::Rgb8, PIXMAN_a8b8g8r8, PIXMAN_b8g8r8};
constexpr Pair s_FromFloat = {cFormat::Rgba32f, cFormat::Rgba8, PIXMAN_rgba_float, PIXMAN_a8b8g8r8};
constexpr Pair s_ToFloat = {cFormat::Rgba8, cFormat::Rgba32f, PIXMAN_a8b8g8r8, PIXMAN_rgba_float};
constexpr Pair s_Gray = {cFormat::Rgba8, cFormat::R8, PIXMAN_a8b8g8r8, PIXMAN_a8}; // the peer does not weigh channels
constexpr Pair s_Swap = {cFormat::Rgba8, cFormat::Rgba8, PIXMAN_a8b8g8r8, PIXMAN_a8r8g8b8};
constexpr Pair s_Alpha = {cFormat::Rgba8, cFormat::R8, PIXMAN_a8b8g8r8, PIXMAN_a8};
constexpr Pair s_Words = {cFormat::Rgba16, cFormat::Rgba8, PIXMAN_a8b8g8r8, PIXMAN_a8b8g8r8}; // no peer
constexpr Pair s_General = {cFormat::Rgb8, cFormat::Rgba16, PIXMAN_b8g8r8, PIXMAN_a8b8g8r8};  // no peer

cImage Source(cFormat::Enum format, int side) {
    std::mt19937 engine(3);
    cImage image(cFormat::Rgba8, side, side, 1, 1);
    for (int i = 0; i < image.GetMipMappedSize(); i++) {
        image.GetPixels()[i] = (unsigned char)engine();
    }
    image.ToFormat(format);
    return image;
}

pixman_image_t* Wrap(pixman_format_code_t format, int side, unsigned char* pixels) {
    return pixman_image_create_bits(format, side, side, reinterpret_cast<uint32_t*>(pixels),
                                    side * PIXMAN_FORMAT_BPP(format) / 8);
}

/// The peer's answer from a wrapped source, in `target`.
void Compose(pixman_image_t* source, pixman_image_t* target, int side) {
    pixman_image_composite32(PIXMAN_OP_SRC, source, nullptr, target, 0, 0, 0, 0, 0, 0, side, side);
}

bool SameBytes() {
    constexpr int side = 64;
    for (const Pair& pair : {s_Widen, s_Narrow, s_FromFloat, s_Swap, s_Alpha}) {
        cImage source = Source(pair.From, side), ours = source, peers(pair.To, side, side, 1, 1);
        pixman_image_t *from = Wrap(pair.PeerFrom, side, source.GetPixels()),
                       *to = Wrap(pair.PeerTo, side, peers.GetPixels());
        Compose(from, to, side);
        pixman_image_unref(from);
        pixman_image_unref(to);
        const bool done = pair.PeerTo == PIXMAN_a8         ? ours.RemoveChannels(false, false, false, true)
                          : pair.PeerTo == PIXMAN_a8r8g8b8 ? ours.SwapChannels(0, 2)
                                                           : ours.ToFormat(pair.To);
        if (!done || std::memcmp(ours.GetPixels(), peers.GetPixels(), size_t(peers.GetMipMappedSize())) != 0) {
            return false;
        }
    }
    return true;
}
const cBenchCheck s_SameBytes("Pixel formats", SameBytes);

void Count(benchmark::State& state, int side) {
    state.SetItemsProcessed(state.iterations() * side * side);
}

void BM_Ours(benchmark::State& state, const Pair& pair) {
    const int side = int(state.range(0));
    const cImage source = Source(pair.From, side);
    cImage target(pair.To, side, side, 1, 1);
    std::memset(target.GetPixels(), 1, size_t(target.GetMipMappedSize()));
    for (auto _ : state) {
        ConvertPixels(pair.To, target.GetPixels(), pair.From, source.GetPixels(), size_t(side) * size_t(side));
        benchmark::ClobberMemory();
    }
    Count(state, side);
}

void BM_Pixman(benchmark::State& state, const Pair& pair) {
    const int side = int(state.range(0));
    cImage source = Source(pair.From, side), target(pair.To, side, side, 1, 1);
    std::memset(target.GetPixels(), 1, size_t(target.GetMipMappedSize()));
    pixman_image_t *from = Wrap(pair.PeerFrom, side, source.GetPixels()),
                   *to = Wrap(pair.PeerTo, side, target.GetPixels());
    for (auto _ : state) {
        Compose(from, to, side);
        benchmark::ClobberMemory();
    }
    pixman_image_unref(from);
    pixman_image_unref(to);
    Count(state, side);
}

void BM_Copy(benchmark::State& state, const Pair& pair) {
    const int side = int(state.range(0));
    const cImage source = Source(pair.From, side);
    cImage target = source;
    for (auto _ : state) {
        std::memcpy(target.GetPixels(), source.GetPixels(), size_t(source.GetMipMappedSize()));
        benchmark::ClobberMemory();
    }
    Count(state, side);
}

/// With the new block that each way makes.
void BM_OursThereAndBack(benchmark::State& state, const Pair& pair) {
    const int side = int(state.range(0));
    cImage image = Source(pair.From, side);
    for (auto _ : state) {
        image.ToFormat(pair.To);
        image.ToFormat(pair.From);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * 2 * side * side);
}

void BM_OursSwap(benchmark::State& state) {
    const int side = int(state.range(0));
    cImage image = Source(cFormat::Rgba8, side);
    for (auto _ : state) {
        image.SwapChannels(0, 2);
        benchmark::ClobberMemory();
    }
    Count(state, side);
}

/// With the copy that it works on, which it shrinks.
void BM_OursAlpha(benchmark::State& state) {
    const int side = int(state.range(0));
    const cImage source = Source(cFormat::Rgba8, side);
    for (auto _ : state) {
        cImage image = source;
        image.RemoveChannels(false, false, false, true);
        benchmark::DoNotOptimize(image.GetPixels());
    }
    Count(state, side);
}

void Sides(benchmark::internal::Benchmark* row) {
    row->Arg(256)->Arg(2048);
}

// clang-format off
BENCHMARK_CAPTURE(BM_Ours, Widen, s_Widen)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Pixman, Widen, s_Widen)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Ours, Narrow, s_Narrow)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Pixman, Narrow, s_Narrow)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Ours, FromFloat, s_FromFloat)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Pixman, FromFloat, s_FromFloat)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Ours, ToFloat, s_ToFloat)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Pixman, ToFloat, s_ToFloat)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Ours, Gray, s_Gray)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Pixman, Gray, s_Gray)->Apply(Sides);
BENCHMARK(BM_OursSwap)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Pixman, Swap, s_Swap)->Apply(Sides);
BENCHMARK(BM_OursAlpha)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Pixman, Alpha, s_Alpha)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Ours, ByFloats, s_General)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Ours, WordsToBytes, s_Words)->Apply(Sides);
BENCHMARK_CAPTURE(BM_OursThereAndBack, Narrow, s_Narrow)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Copy, Rgb8, s_Widen)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Copy, Rgba8, s_Narrow)->Apply(Sides);
BENCHMARK_CAPTURE(BM_Copy, Rgba32f, s_FromFloat)->Apply(Sides);
// clang-format on

} // namespace
