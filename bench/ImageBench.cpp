// DXT blocks beside stb_dxt and libsquish, mip chains beside FreeImage and a copy of the same bytes. OMP_NUM_THREADS=1.
#include "Bench.h"

#include "image/cImage.h"

#include <FreeImage.h>
#include <cmath>
#include <cstring>
#include <squish.h>
#include <vector>

#define STB_DXT_IMPLEMENTATION
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb/stb_dxt.h>
#pragma GCC diagnostic pop

using trellis::cFormat;
using trellis::cImage;

namespace {

using Bytes = std::vector<unsigned char>;

constexpr int s_Side = 1024;

/// Soft waves with edges and some noise, as textures are; alpha is one more wave.
Bytes MakePixels(int side, int channels) {
    Bytes pixels;
    uint32_t noise = 1;
    for (int y = 0; y < side; y++) {
        for (int x = 0; x < side; x++) {
            for (int c = 0; c < channels; c++) {
                noise = noise * 1664525 + 1013904223;
                const double wave = std::sin(x * 0.031 + c) + std::cos(y * 0.023 - c * 0.5) + ((x ^ y) & 32) / 32.0;
                pixels.push_back(static_cast<unsigned char>(100 + 40 * wave + (noise >> 28)));
            }
        }
    }
    return pixels;
}

struct Ours {
    static Bytes Encode(const Bytes& pixels, int side, cFormat::Enum format) {
        cImage image(cImage::CopyCtor, pixels.data(), format == cFormat::Dxt1 ? cFormat::Rgb8 : cFormat::Rgba8, side,
                     side, 1, 1);
        image.Compress();
        return Bytes(image.GetPixels(), image.GetPixels() + image.GetMipMappedSize());
    }
    static int Channels(cFormat::Enum format) { return cFormat::ChannelCount[format]; }
};

struct Stb {
    static Bytes Encode(const Bytes& pixels, int side, cFormat::Enum format) {
        const bool alpha = format == cFormat::Dxt5;
        Bytes out(size_t(side) * size_t(side) / (alpha ? 1 : 2));
        unsigned char* to = out.data();
        for (int y = 0; y < side; y += 4) {
            for (int x = 0; x < side; x += 4, to += alpha ? 16 : 8) {
                unsigned char block[64];
                for (int i = 0; i < 4; i++) {
                    std::memcpy(block + i * 16, &pixels[size_t(((y + i) * side + x) * 4)], 16);
                }
                stb_compress_dxt_block(to, block, alpha, STB_DXT_NORMAL);
            }
        }
        return out;
    }
    static int Channels(cFormat::Enum) { return 4; }
};

int SquishFormat(cFormat::Enum format) {
    return format == cFormat::Dxt1 ? squish::kDxt1 : format == cFormat::Dxt3 ? squish::kDxt3 : squish::kDxt5;
}

struct SquishRange {
    static Bytes Encode(const Bytes& pixels, int side, cFormat::Enum format) {
        const int flags = SquishFormat(format) | squish::kColourRangeFit;
        Bytes out(size_t(squish::GetStorageRequirements(side, side, flags)));
        squish::CompressImage(pixels.data(), side, side, out.data(), flags);
        return out;
    }
    static int Channels(cFormat::Enum) { return 4; }
};

/// Of the colours, decoded by libsquish: a device's view, bits replicated.
double RootMeanSquareError(const Bytes& blocks, const Bytes& rgba, int side, cFormat::Enum format) {
    Bytes decoded(rgba.size());
    squish::DecompressImage(decoded.data(), side, side, blocks.data(), SquishFormat(format));
    double sum = 0;
    for (size_t i = 0; i < rgba.size(); i++) {
        sum += i % 4 == 3 ? 0 : (decoded[i] - rgba[i]) * (decoded[i] - rgba[i]);
    }
    return std::sqrt(sum / (double(side) * side * 3));
}

Bytes PixelsOf(const Bytes& rgba, int channels) {
    if (channels == 4) {
        return rgba;
    }
    Bytes rgb;
    for (size_t i = 0; i < rgba.size(); i += 4) {
        rgb.insert(rgb.end(), {rgba[i], rgba[i + 1], rgba[i + 2]});
    }
    return rgb;
}

template <class Encoder, cFormat::Enum Format> void BM_Encode(benchmark::State& state) {
    Bytes rgba = MakePixels(s_Side, 4);
    for (size_t i = 3; Format == cFormat::Dxt1 && i < rgba.size(); i += 4) {
        rgba[i] = 255; // libsquish would make holes of the rest
    }
    const Bytes pixels = PixelsOf(rgba, Encoder::Channels(Format));
    for (auto _ : state) {
        benchmark::DoNotOptimize(Encoder::Encode(pixels, s_Side, Format));
    }
    state.SetItemsProcessed(state.iterations() * s_Side * s_Side);
    state.counters["rmse"] = RootMeanSquareError(Encoder::Encode(pixels, s_Side, Format), rgba, s_Side, Format);
}
BENCHMARK_TEMPLATE(BM_Encode, Ours, cFormat::Dxt1);
BENCHMARK_TEMPLATE(BM_Encode, Stb, cFormat::Dxt1);
BENCHMARK_TEMPLATE(BM_Encode, SquishRange, cFormat::Dxt1);
BENCHMARK_TEMPLATE(BM_Encode, Ours, cFormat::Dxt5);
BENCHMARK_TEMPLATE(BM_Encode, Stb, cFormat::Dxt5);
BENCHMARK_TEMPLATE(BM_Encode, SquishRange, cFormat::Dxt5);

template <cFormat::Enum Format> void BM_DecodeOurs(benchmark::State& state) {
    const Bytes blocks = Ours::Encode(MakePixels(s_Side, Ours::Channels(Format)), s_Side, Format);
    for (auto _ : state) {
        cImage image(cImage::CopyCtor, blocks.data(), Format, s_Side, s_Side, 1, 1);
        image.Uncompress();
        benchmark::DoNotOptimize(image.GetPixels());
    }
    state.SetItemsProcessed(state.iterations() * s_Side * s_Side);
}
BENCHMARK_TEMPLATE(BM_DecodeOurs, cFormat::Dxt1);
BENCHMARK_TEMPLATE(BM_DecodeOurs, cFormat::Dxt5);

template <cFormat::Enum Format> void BM_DecodeSquish(benchmark::State& state) {
    const Bytes blocks = Ours::Encode(MakePixels(s_Side, Ours::Channels(Format)), s_Side, Format);
    Bytes out(size_t(s_Side) * s_Side * 4);
    for (auto _ : state) {
        squish::DecompressImage(out.data(), s_Side, s_Side, blocks.data(), SquishFormat(Format));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * s_Side * s_Side);
}
BENCHMARK_TEMPLATE(BM_DecodeSquish, cFormat::Dxt1);
BENCHMARK_TEMPLATE(BM_DecodeSquish, cFormat::Dxt5);

/// Every level below the first, in place. The argument is the number of channels.
void BM_MipsOurs(benchmark::State& state) {
    const int channels = int(state.range(0));
    cImage image(cImage::CopyCtor, MakePixels(s_Side, channels).data(), cFormat::Enum(channels), s_Side, s_Side, 1, 1);
    image.CreateMipMaps(100);
    for (auto _ : state) {
        image.CreateMipMaps(100);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * s_Side * s_Side);
}
BENCHMARK(BM_MipsOurs)->Arg(1)->Arg(3)->Arg(4);

void BM_MipsFreeImage(benchmark::State& state) {
    const int channels = int(state.range(0));
    FIBITMAP* top = FreeImage_ConvertFromRawBits(MakePixels(s_Side, channels).data(), s_Side, s_Side, s_Side * channels,
                                                 unsigned(channels) * 8, 0, 0, 0, 0);
    for (auto _ : state) {
        FIBITMAP* above = top;
        for (int side = s_Side / 2; side > 0; side /= 2) {
            FIBITMAP* level = FreeImage_Rescale(above, side, side, FILTER_BOX);
            if (above != top) {
                FreeImage_Unload(above);
            }
            above = level;
        }
        FreeImage_Unload(above);
    }
    FreeImage_Unload(top);
    state.SetItemsProcessed(state.iterations() * s_Side * s_Side);
}
BENCHMARK(BM_MipsFreeImage)->Arg(1)->Arg(3)->Arg(4);

void BM_MipsCopy(benchmark::State& state) { // the bytes that a chain reads and writes: the image and a third of it
    const Bytes from = MakePixels(s_Side, int(state.range(0)));
    Bytes to(from.size() * 4 / 3);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), from.size());
        std::memcpy(to.data() + from.size(), from.data(), to.size() - from.size());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * s_Side * s_Side);
}
BENCHMARK(BM_MipsCopy)->Arg(1)->Arg(3)->Arg(4);

bool DecodersAgree() { // after the bits that ours does not replicate are taken off; the shades between differ by
                       // rounding
    const Bytes blocks = Ours::Encode(MakePixels(64, 4), 64, cFormat::Dxt5);
    cImage image(cImage::CopyCtor, blocks.data(), cFormat::Dxt5, 64, 64, 1, 1);
    image.Uncompress();
    Bytes peer(64 * 64 * 4);
    squish::DecompressImage(peer.data(), 64, 64, blocks.data(), squish::kDxt5);
    for (size_t i = 0; i < peer.size(); i++) {
        if (std::abs(peer[i] - image.GetPixels()[i]) > (i % 4 == 3 ? 0 : 8)) {
            return false;
        }
    }
    return true;
}
const cBenchCheck s_DecodersAgree("DXT5 decoding", DecodersAgree);

bool MipsAgree() { // with FreeImage's half, which rounds
    const Bytes pixels = MakePixels(64, 4);
    cImage image(cImage::CopyCtor, pixels.data(), cFormat::Rgba8, 64, 64, 1, 1);
    image.CreateMipMaps(2);
    Bytes from = pixels;
    FIBITMAP* top = FreeImage_ConvertFromRawBits(from.data(), 64, 64, 256, 32, 0, 0, 0, 0);
    FIBITMAP* half = FreeImage_Rescale(top, 32, 32, FILTER_BOX);
    bool same = true;
    for (int i = 0; i < 32 * 32 * 4; i++) {
        same = same && std::abs(FreeImage_GetBits(half)[i] - image.GetPixels(1)[i]) <= 1;
    }
    FreeImage_Unload(half);
    FreeImage_Unload(top);
    return same;
}
const cBenchCheck s_MipsAgree("mip maps", MipsAgree);

} // namespace
