// The decoders of bitmaps and Targa files beside stb_image's. Bytes a second are those of decoded pixels.
#include "Bench.h"

#include "files/cFile.h"
#include "image/cCodecBmp.h"
#include "image/cCodecTga.h"
#include "image/cImage.h"

#include <cstring>
#include <random>
#include <vector>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_BMP
#define STBI_ONLY_TGA
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

using namespace trellis;

namespace {

enum Kind { Bmp24, Bmp32, Bmp8, Tga24, Tga32, TgaRuns24, TgaRuns32 };

/// A picture as it is painted: runs of one colour between stretches that have none.
std::vector<unsigned char> Paint(int side, int channels) {
    std::mt19937 random(7);
    std::vector<unsigned char> pixels;
    while (pixels.size() < size_t(side) * side * channels) {
        const bool run = random() & 1;
        unsigned int color = random();
        for (unsigned int i = random() % 60; i > 0; i--, color = run ? color : random()) {
            const unsigned char bytes[] = {(unsigned char)color, (unsigned char)(color >> 8),
                                           (unsigned char)(color >> 16), (unsigned char)(color >> 24 | 1)};
            pixels.insert(pixels.end(), bytes, bytes + channels);
        }
    }
    pixels.resize(size_t(side) * side * channels);
    return pixels;
}

std::vector<unsigned char> Pack(const std::vector<unsigned char>& pixels, int channels) {
    std::vector<unsigned char> out;
    const size_t n = size_t(channels), count = pixels.size() / n;
    const auto same = [&](size_t a) {
        return a + 1 < count && std::memcmp(&pixels[a * n], &pixels[(a + 1) * n], n) == 0;
    };
    for (size_t i = 0, length; i < count; i += length) {
        const bool run = same(i);
        for (length = 1; length < 128 && i + length < count && same(i + length - 1 + !run) == run; length++) {
        }
        out.push_back((unsigned char)(length - 1 + (run ? 128 : 0)));
        out.insert(out.end(), &pixels[i * n], &pixels[i * n] + (run ? 1 : length) * n);
    }
    return out;
}

/// @param side  a multiple of 4
cFile FileOf(Kind kind, int side) {
    cFile file;
    const int channels = kind == Bmp8 ? 1 : kind == Bmp32 || kind == Tga32 || kind == TgaRuns32 ? 4 : 3;
    const std::vector<unsigned char> pixels = Paint(side, channels);
    if (kind == TgaRuns24 || kind == TgaRuns32) {
        const unsigned char header[18] = {0,
                                          0,
                                          10,
                                          0,
                                          0,
                                          0,
                                          0,
                                          0,
                                          0,
                                          0,
                                          0,
                                          0,
                                          (unsigned char)side,
                                          (unsigned char)(side >> 8),
                                          (unsigned char)side,
                                          (unsigned char)(side >> 8),
                                          (unsigned char)(channels * 8),
                                          0};
        const std::vector<unsigned char> packed = Pack(pixels, channels);
        file.WriteBytes(header, sizeof(header));
        file.WriteBytes(packed.data(), int(packed.size()));
    } else {
        const cFormat::Enum format = channels == 1 ? cFormat::R8 : channels == 3 ? cFormat::Rgb8 : cFormat::Rgba8;
        const cImage image(cImage::CopyCtor, pixels.data(), format, side, side, 1, 1);
        kind <= Bmp8 ? cCodecBmp().Encode(image, &file) : cCodecTga().Encode(image, &file);
    }
    file.SetPos(0);
    return file;
}

void Decode(Kind kind, const cFile& file, cImage* image) {
    file.SetPos(0);
    kind <= Bmp8 ? cCodecBmp().Decode(file, image) : cCodecTga().Decode(file, image);
}

template <Kind K> void BM_ImageLoad(benchmark::State& state) { // range: side
    const cFile file = FileOf(K, int(state.range(0)));
    long long bytes = 0;
    for (auto _ : state) {
        cImage image;
        Decode(K, file, &image);
        benchmark::DoNotOptimize(image.GetPixels());
        benchmark::ClobberMemory();
        bytes += image.GetMipMappedSize();
    }
    state.SetBytesProcessed(bytes);
}

template <Kind K> void BM_ImageLoadStb(benchmark::State& state) {
    const cFile file = FileOf(K, int(state.range(0)));
    long long bytes = 0;
    for (auto _ : state) {
        int width, height, channels;
        unsigned char* p = stbi_load_from_memory(file.GetBytes().Data(), file.GetSize(), &width, &height, &channels, 0);
        benchmark::DoNotOptimize(p);
        benchmark::ClobberMemory();
        stbi_image_free(p);
        bytes += (long long)width * height * channels;
    }
    state.SetBytesProcessed(bytes);
}

#define IMAGE_BENCH(kind)                                                                                              \
    BENCHMARK_TEMPLATE(BM_ImageLoad, kind)->Arg(64)->Arg(512)->Arg(2048);                                              \
    BENCHMARK_TEMPLATE(BM_ImageLoadStb, kind)->Arg(64)->Arg(512)->Arg(2048)
IMAGE_BENCH(Bmp24);
IMAGE_BENCH(Bmp32);
IMAGE_BENCH(Bmp8);
IMAGE_BENCH(Tga24);
IMAGE_BENCH(Tga32);
IMAGE_BENCH(TgaRuns24);
IMAGE_BENCH(TgaRuns32);

const cBenchCheck s_Check("image codecs", [] {
    for (const Kind kind : {Bmp24, Bmp32, Bmp8, Tga24, Tga32, TgaRuns24, TgaRuns32}) {
        const cFile file = FileOf(kind, 92);
        cImage ours;
        Decode(kind, file, &ours);
        int width, height, channels;
        unsigned char* theirs =
            stbi_load_from_memory(file.GetBytes().Data(), file.GetSize(), &width, &height, &channels, 0);
        bool same = theirs && !ours.IsEmpty() && width == 92 && height == 92 &&
                    channels == cFormat::ChannelCount[ours.GetFormat()];
        for (int y = 0; y < 92 && same; y++) { // its first row is the top one
            const size_t row = size_t(92 * channels);
            same = std::memcmp(theirs + size_t(y) * row, ours.GetPixels() + size_t(91 - y) * row, row) == 0;
        }
        stbi_image_free(theirs);
        if (!same) {
            return false;
        }
    }
    return true;
});

} // namespace
