#include "image/PixelConvert.h"
#include "image/cImage.h"
#include "math/cMath.h"
#include "math/cRect.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <new>
#include <random>
#include <string>
#include <vector>

namespace trellis {
namespace {

using Bytes = std::vector<unsigned char>;

template <class T>
cImage Make(cFormat::Enum format, int width, int height, int depth, const std::vector<T>& values, int levels = 1) {
    cImage image(format, width, height, depth, levels);
    EXPECT_EQ(size_t(cImage::CalcImageSize(format, width, height, depth, levels)), values.size() * sizeof(T));
    std::memcpy(image.GetPixels(), values.data(), values.size() * sizeof(T));
    return image;
}

template <class T = unsigned char> std::vector<T> All(const cImage& image) {
    std::vector<T> v(size_t(image.GetMipMappedSize(0, image.GetMipMapCount())) / sizeof(T));
    std::memcpy(v.data(), image.GetPixels(), v.size() * sizeof(T));
    return v;
}

TEST(Format, Texts) {
    EXPECT_STREQ(cFormat::ToString(cFormat::Dxt5), "Dxt5");
    EXPECT_EQ(cFormat::ToString(cFormat::Pvr4Rgb), nullptr);
    EXPECT_EQ(cFormat::ToString(-1), nullptr);
    EXPECT_EQ(cFormat::ToFormat("DEPTH24stencil8"), 19);
    EXPECT_EQ(cFormat::ToFormat("Rgb"), cFormat::None);
    for (int i = 0; i <= cFormat::Dxt5; i++) {
        EXPECT_EQ(cFormat::ToFormat(cFormat::ToString(i)), i);
    }
    EXPECT_STREQ(cDimension::ToString(cDimension::Cube), "Cube");
    EXPECT_EQ(cDimension::ToString(5), nullptr);
}

TEST(Image, Sizes) {
    // clang-format off
    constexpr struct { const char* Name; cFormat::Enum Format; int W, H, D, Levels, Size; } s_Cases[] = {
        {"three levels", cFormat::Rgb8, 4, 4, 1, 3, 63}, {"ends at one pixel", cFormat::Rgb8, 4, 4, 1, 10, 63},
        {"no level", cFormat::Rgb8, 4, 4, 1, 0, 0}, {"cube", cFormat::Rgb8, 4, 4, 0, 10, 6 * 63},
        {"the depth counts on", cFormat::R16, 2, 1, 4, 9, 2 * (8 + 2 + 1)}, {"Dxt1 pixel", cFormat::Dxt1, 1, 1, 1, 1, 8},
        {"Dxt5 5 by 4", cFormat::Dxt5, 5, 4, 1, 2, 32 + 16}, {"Pvr pixel", cFormat::Pvr4Rgb, 1, 1, 1, 1, 32},
        {"Pvr above it", cFormat::Pvr4Rgba, 12, 8, 1, 2, 48 + 32}, {"nearly int", cFormat::R8, INT_MAX, 1, 1, 1, INT_MAX},
        {"saturated", cFormat::Rgba32f, INT_MAX, INT_MAX, INT_MAX, 31, INT_MAX}, {"sevens", cFormat::Rgb8, 64, 64, 1, 7, 16383},
    };
    // clang-format on
    for (const auto& c : s_Cases) {
        EXPECT_EQ(cImage::CalcImageSize(c.Format, c.W, c.H, c.D, c.Levels), c.Size) << c.Name;
    }
    cImage cube(cFormat::Rg8, 8, 4, 0, 3);
    EXPECT_EQ(cube.GetPixels(2) - cube.GetPixels(), 6 * 2 * (32 + 8));
    EXPECT_EQ(cube.GetPixels(3), nullptr);
    EXPECT_EQ(cube.GetPixelCount(1, 2), 6 * (8 + 2));
    EXPECT_EQ(cube.GetMipMappedSize(1, 2, cFormat::Rgb8), 6 * 3 * (8 + 2));
    EXPECT_EQ(cube.GetSliceSize(1), 16);
    EXPECT_EQ(cube.GetRowSize(0, cFormat::Pvr4Rgb), 32);
    EXPECT_EQ(cube.GetMipMapCountFromDimensions(), 4);
    EXPECT_THROW(cube.Create(cFormat::Rgba8, 32768, 16384, 1, 1), std::bad_array_new_length);
    EXPECT_EQ(cube.GetMipMapCount(), 3) << "refused before anything was touched";
    EXPECT_EQ(cImage().GetPixels(), nullptr);
    EXPECT_EQ(cImage().GetMipMapCountFromDimensions(), 0);
    EXPECT_EQ(cImage(cFormat::R8, 4, 0, 1, 1).GetDimension(), cDimension::_1D);
}

TEST(Image, Copies) {
    cImage a = Make<unsigned char>(cFormat::R8, 3, 3, 1, {0, 1, 2, 3, 4, 5, 6, 7, 8});
    a.Copy(a.GetPixels() + 1, cFormat::Rg8, 2, 2, 1, 1);
    EXPECT_EQ(All(a), (Bytes{1, 2, 3, 4, 5, 6, 7, 8})) << "out of its own block";
    const cImage cut(a, cRect(1.9f, 0, 2.9f, 2.5f));
    EXPECT_EQ(All(cut), (Bytes{3, 4, 7, 8}));
    EXPECT_TRUE(cImage(a, cRect(1, 0, 3, 1)).IsEmpty()) << "a column past the image";
    EXPECT_TRUE(cImage(cImage(cFormat::Dxt1, 4, 4, 1, 1), cRect(0, 0, 4, 4)).IsEmpty());
    a.Set(nullptr, cFormat::R8, 4, 4, 1, 1);
    EXPECT_TRUE(a.IsEmpty() && a.GetWidth() == 0 && a.ToFormat(cFormat::Rgb8));
}

// Conversion of one pixel by the definition.
template <class T> T At(const unsigned char* p, int i) {
    T v;
    std::memcpy(&v, p + size_t(i) * sizeof(T), sizeof(T));
    return v;
}
float Load(int format, const unsigned char* p, int i) {
    return format <= 4    ? float(p[i]) * 0.003921569f
           : format <= 8  ? float(At<unsigned short>(p, i)) * 1.5259022e-5f
           : format <= 12 ? cMath::Half2Float(At<unsigned short>(p, i))
                          : At<float>(p, i);
}
void Store(int format, unsigned char* p, int i, float v) {
    const float top = format <= 4 ? 255.0f : 65535.0f;
    const int n = v < 0.0f ? 0 : v > 1.0f ? int(top) : int(v * top + 0.5f);
    const auto word = (unsigned short)(format <= 8 ? n : cMath::Float2Half(v));
    const size_t size = format <= 4 ? 1 : format <= 12 ? 2 : 4;
    std::memcpy(p + size_t(i) * size, size == 4 ? (const void*)&v : &word, size); // a byte is the low one
}
void Reference(int to, unsigned char* target, int from, const unsigned char* source) {
    float v[4] = {0, 0, 0, 1};
    const int channels = cFormat::ChannelCount[from];
    for (int i = 0; i < channels; i++) {
        v[i] = Load(from, source, i);
    }
    if (channels == 1) {
        v[1] = v[2] = v[0];
    }
    if (cFormat::ChannelCount[to] == 1) {
        v[0] = 0.2125f * v[0] + 0.7154f * v[1] + 0.0721f * v[2];
    }
    for (int i = 0; i < cFormat::ChannelCount[to]; i++) {
        Store(to, target, i, v[i]);
    }
}

TEST(Image, EveryFormatToEveryOther) {
    std::mt19937 engine(11);
    constexpr int width = 65536 + 7; // every word in every channel, and a rest behind the sixteens
    for (int from = 1; from <= cFormat::Rgba32f; from++) {
        cImage source(cFormat::Enum(from), width, 0, 1, 1);
        const int channels = cFormat::ChannelCount[from];
        for (int i = 0; i < width * channels; i++) {
            const auto word = (unsigned short)(i / channels * (i % channels * 2 + 1));
            const auto half = (unsigned short)((word & 0x7C00) == 0x7C00 ? 0x3C00 : word);
            const float real = float(engine() % 4096) / 2048.0f - 0.5f;
            const size_t size = from <= 4 ? 1 : from <= 12 ? 2 : 4;
            const void* value = size == 4 ? (const void*)&real : from > 8 ? &half : &word;
            std::memcpy(source.GetPixels() + size_t(i) * size, value, size);
        }
        for (int to = 1; to <= cFormat::Rgba32f; to++) {
            SCOPED_TRACE(std::string(cFormat::ToString(from)) + " to " + cFormat::ToString(to));
            cImage image = source;
            ASSERT_TRUE(image.ToFormat(cFormat::Enum(to)) && image.GetFormat() == to);
            Bytes plain = All(image), expected = plain;
            const unsigned char* in = source.GetPixels();
            ConvertPixels(cFormat::Enum(to), plain.data(), cFormat::Enum(from), in, width, PixelPath::Plain);
            for (size_t i = 0; i < width && from != to; i++, in += cFormat::BytesPerPixel[from]) {
                Reference(to, &expected[i * size_t(cFormat::BytesPerPixel[to])], from, in);
            }
            EXPECT_TRUE(from == to || plain == expected);
            EXPECT_TRUE(All(image) == (from == to ? All(source) : expected));
        }
    }
}

TEST(Image, ConversionsAtTheEdges) {
    std::vector<float> odd(4 * 5, NAN);
    odd[1] = INFINITY, odd[2] = -INFINITY, odd[3] = 1.0000001f;
    cImage image = Make(cFormat::Rgba32f, 5, 1, 1, odd);
    EXPECT_TRUE(image.ToFormat(cFormat::Rgba8));
    EXPECT_EQ(All(image)[0], 0) << "what is no number is black, by sixteens";
    EXPECT_EQ(All(image)[19], 0) << "and behind them";
    EXPECT_EQ(All(image)[1], 255);
    EXPECT_EQ(All(image)[2], 0);
    const Bytes before = All(image);
    EXPECT_FALSE(image.ToFormat(cFormat::Depth16) || image.ToFormat(cFormat::Dxt1));
    EXPECT_EQ(All(image), before);
    EXPECT_TRUE(image.ToFormat(cFormat::None) && image.ToFormat(cFormat::Rgba8));
    EXPECT_EQ(All(image), (Bytes{0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255}));
    EXPECT_FALSE(cImage(cFormat::Dxt1, 4, 4, 1, 1).ToFormat(cFormat::Rgb8));
}

template <class T> void CheckChannels(cFormat::Enum format, const std::vector<T>& rgba) {
    std::vector<T> v;
    for (size_t i = 0; i < 4 * 13; i++) { // 5 by 2 pixels, 2 by 1 and 1 by 1
        v.push_back(i < 48 ? T(i) : rgba[i - 48]);
    }
    const cImage source = Make(format, 5, 2, 1, v, 3);
    cImage swapped = source, copied = source, inverted = source, kept = source, one = source;
    EXPECT_TRUE(swapped.SwapChannels(2, 0) && copied.CopyChannel(3, 1) && inverted.InvertChannel(1));
    EXPECT_TRUE(kept.RemoveChannels(true, false, true, true) && one.RemoveChannels(false, true, false, false));
    EXPECT_EQ(kept.GetFormat(), format - 1);
    EXPECT_EQ(one.GetFormat(), format - 3);
    const auto s = All<T>(swapped), c = All<T>(copied), k = All<T>(kept), o = All<T>(one), n = All<T>(inverted);
    for (size_t i = 0; i < v.size(); i += 4) {
        EXPECT_TRUE(s[i] == v[i + 2] && s[i + 1] == v[i + 1] && s[i + 2] == v[i] && s[i + 3] == v[i + 3]) << i;
        EXPECT_TRUE(c[i] == v[i] && c[i + 1] == v[i + 3] && c[i + 2] == v[i + 2] && c[i + 3] == v[i + 3]) << i;
        EXPECT_TRUE(k[i / 4 * 3] == v[i] && k[i / 4 * 3 + 1] == v[i + 2] && k[i / 4 * 3 + 2] == v[i + 3]) << i;
        EXPECT_TRUE(o[i / 4] == v[i + 1] && n[i] == v[i] && n[i + 2] == v[i + 2]) << i;
    }
    EXPECT_EQ(n[49], rgba[4]) << "the inverse of the last pixel's green";
    EXPECT_FALSE(inverted.InvertChannel(4) || inverted.CopyChannel(4, 0) || inverted.CopyChannel(0, 4));
    EXPECT_FALSE(inverted.RemoveChannels(false, false, false, false));
    EXPECT_FALSE(kept.RemoveChannels(false, false, false, true)) << "it has no alpha any more";
    const unsigned char* block = kept.GetPixels();
    EXPECT_TRUE(kept.RemoveChannels(true, true, true, true) && kept.GetPixels() == block);
}

TEST(Image, Channels) { // the last pixel, and the inverse of its green
    CheckChannels<unsigned char>(cFormat::Rgba8, {250, 2, 3, 4, 253});
    CheckChannels<unsigned short>(cFormat::Rgba16, {65000, 2, 3, 4, 65533});
    CheckChannels<unsigned short>(cFormat::Rgba16f, {0x3C00, 0x3400, 3, 4, 0x3A00}); // 1 - 0.25 = 0.75
    CheckChannels<float>(cFormat::Rgba32f, {9, 0.25f, 3, 4, 0.75f});
    cImage block(cFormat::Dxt5, 4, 4, 1, 1);
    EXPECT_FALSE(block.SwapChannels(0, 1) || block.CopyChannel(0, 1) || block.InvertChannel(0) ||
                 block.RemoveChannels(true, false, false, false) || block.ToGrayScale());
}

TEST(Image, GrayScale) {
    cImage bytes = Make<unsigned char>(cFormat::Rgba8, 3, 1, 1, {255, 255, 255, 0, 1, 2, 3, 9, 200, 100, 50, 0});
    EXPECT_TRUE(bytes.ToGrayScale());
    EXPECT_EQ(bytes.GetFormat(), cFormat::R8);
    EXPECT_EQ(All(bytes), (Bytes{255, 2, 125})); // (77 + 302 + 84 + 128) / 256, (15400 + 15100 + 1400 + 128) / 256
    EXPECT_FALSE(bytes.ToGrayScale());
    cImage words = Make<unsigned short>(cFormat::Rgb16, 2, 1, 1, {65535, 65535, 65535, 256, 0, 0});
    EXPECT_TRUE(words.ToGrayScale());
    EXPECT_EQ(All<unsigned short>(words), (std::vector<unsigned short>{65535, 77}));
    EXPECT_FALSE(cImage(cFormat::Rg8, 1, 1, 1, 1).ToGrayScale() || cImage(cFormat::Rgb32f, 1, 1, 1, 1).ToGrayScale());
}

TEST(Image, ResizeTakesExtremesAndCompressedImages) {
    cImage wide(cFormat::R32f, 2, 1, 1, 1);
    reinterpret_cast<float*>(wide.GetPixels())[0] = -3e38f;
    reinterpret_cast<float*>(wide.GetPixels())[1] = 3e38f;
    ASSERT_TRUE(wide.Resize(3, 1));
    EXPECT_EQ(reinterpret_cast<float*>(wide.GetPixels())[1], 0);
    cImage lods;
    lods.CreateSevenLods(nullptr);
    ASSERT_TRUE(lods.Resize(3, 3));
    EXPECT_EQ(lods.GetFormat(), cFormat::Rgb8);
    EXPECT_EQ(lods.GetMipMapCount(), 1);
    EXPECT_EQ(lods.GetPixels()[0], 248) << "red as the blocks hold it";
}

TEST(Image, MergingAnImageIntoItself) {
    const unsigned char rows[] = {1, 1, 1, 2, 2, 2, 3, 3, 3};
    cImage image(cImage::CopyCtor, rows, cFormat::Rgb8, 1, 3, 1, 1);
    image.MergeRgb8(image, 0, 1);
    EXPECT_EQ(image.GetPixels()[3], 1);
    EXPECT_EQ(image.GetPixels()[6], 2);
}

TEST(Image, Resize) {
    cImage bytes = Make<unsigned char>(cFormat::R8, 2, 2, 1, {10, 21, 20, 31});
    EXPECT_TRUE(bytes.Resize(3, 3));
    EXPECT_EQ(All(bytes), (Bytes{10, 15, 21, 15, 20, 26, 20, 25, 31})) << "truncated, not rounded";
    cImage line = Make<unsigned short>(cFormat::Rg16, 2, 0, 1, {65535, 0, 0, 65535});
    EXPECT_TRUE(line.Resize(42, 0));
    EXPECT_EQ(line.GetHeight(), 0);
    EXPECT_EQ(All<unsigned short>(line)[83], 65535) << "a corner on its corner, though 41 times 1/41 falls short of 1";
    EXPECT_EQ(All<unsigned short>(line)[0], 65535);
    cImage floats = Make<float>(cFormat::R32f, 3, 1, 2, {1, 2, INFINITY, 4, 5, 6});
    EXPECT_TRUE(floats.Resize(5, 1));
    EXPECT_EQ(All<float>(floats), (std::vector<float>{1, 1.5f, 2, INFINITY, INFINITY, 4, 4.5f, 5, 5.5f, 6}));
    cImage halves = Make<unsigned short>(cFormat::R16f, 3, 1, 2, {1, 2, 3, 4, 5, 6});
    EXPECT_TRUE(halves.Resize(4, 1)); // x * 2 / 4, and z * 1 / 2: the last sample and slice are never reached
    EXPECT_EQ(All<unsigned short>(halves), (std::vector<unsigned short>{1, 1, 2, 2, 1, 1, 2, 2}));
    cImage cube(cFormat::R8, 4, 4, 0, 1), depth(cFormat::Depth16, 4, 4, 1, 1), empty;
    EXPECT_FALSE(cube.Resize(2, 2) || depth.Resize(2, 2) || empty.Resize(2, 2) || bytes.Resize(0, 1) ||
                 bytes.Resize(1, -1));
}

TEST(Image, PowersOfTwo) {
    constexpr int s_Cases[][4] = {{96, 95, 128, 64}, {64, 1, 64, 1}, {3, 5, 4, 4}, {6, 0, 8, 0}, {7, 129, 8, 128}};
    for (const auto& c : s_Cases) {
        cImage image(cFormat::R8, c[0], c[1], 1, 1);
        std::memset(image.GetPixels(), 9, size_t(image.GetMipMappedSize()));
        EXPECT_TRUE(image.MakePowerOfTwo());
        EXPECT_EQ(image.GetWidth(), c[2]) << c[0];
        EXPECT_EQ(image.GetHeight(), c[3]) << c[1];
        EXPECT_EQ(All(image), Bytes(All(image).size(), 9));
    }
    EXPECT_FALSE(cImage(cFormat::R8, 3, 3, 0, 1).MakePowerOfTwo());
}

TEST(Image, SlicesSideBySide) {
    // clang-format off
    const struct { const char* Name; int Depth; bool Square; int Step; Bytes Slices; int Columns; } cases[] = {
        {"row", 3, false, 1, {0, 1, 2}, 3}, {"every second", 5, false, 2, {0, 2}, 2},
        {"each twice", 2, false, -2, {0, 0, 1, 1}, 4}, {"square", 9, true, 2, {0, 2, 4, 6}, 2},
        {"square of repeats", 2, true, -2, {0, 0, 1, 1}, 2}, {"no square", 3, true, 1, {}, 0}, {"above a square", 2, true, 1, {}, 0},
        {"no step", 4, true, 0, {}, 0}, {"no slice", 3, true, 4, {}, 0}, {"too wide", 2, false, INT_MIN, {}, 0},
        {"no volume", 1, false, 1, {}, 0},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        Bytes texels, blocks;
        for (int i = 0; i < c.Depth * 2; i++) {
            texels.push_back((unsigned char)i);               // 1 by 2 pixels a slice
            blocks.insert(blocks.end(), 8, (unsigned char)i); // 1 by 2 blocks
        }
        cImage image = Make(cFormat::R8, 1, 2, c.Depth, texels), packed = Make(cFormat::Dxt1, 4, 8, c.Depth, blocks);
        EXPECT_EQ(image.Make2D(c.Square, c.Step), c.Columns > 0);
        EXPECT_EQ(packed.Make2D(c.Square, c.Step), c.Columns > 0);
        EXPECT_EQ(image.GetDepth(), c.Columns > 0 ? 1 : c.Depth);
        for (size_t i = 0; i < c.Slices.size(); i++) {
            const size_t columns = size_t(c.Columns), at = i / columns * 2 * columns + i % columns;
            for (size_t row = 0; row < 2; row++) {
                EXPECT_EQ(All(image)[at + row * columns], c.Slices[i] * 2 + int(row));
                EXPECT_EQ(All(packed)[(at + row * columns) * 8], c.Slices[i] * 2 + int(row));
            }
        }
    }
    cImage narrow(cFormat::Dxt1, 2, 4, 2, 1);
    EXPECT_FALSE(narrow.Make2D(false, 1)) << "tiles that end inside a block";
}

TEST(Image, MergeClipsOnAllSides) {
    Bytes tile(2 * 3 * 3);
    for (size_t i = 0; i < tile.size(); i++) {
        tile[i] = (unsigned char)(i + 1);
    }
    const cImage source = Make(cFormat::Rgb8, 2, 3, 1, tile);
    const int far[] = {INT_MIN, -3, -2, -1, 0, 1, 2, 3, 4, INT_MAX};
    for (const int x : far) {
        for (const int y : far) {
            cImage image = Make(cFormat::Rgb8, 4, 4, 1, Bytes(48));
            image.MergeRgb8(source, x, y);
            for (int i = 0; i < 48; i++) {
                const long long column = i / 3 % 4 - (long long)x, row = i / 12 - (long long)y;
                const bool in = column >= 0 && column < 2 && row >= 0 && row < 3;
                EXPECT_EQ(All(image)[size_t(i)], in ? tile[size_t((row * 2 + column) * 3 + i % 3)] : 0)
                    << x << " " << y;
            }
        }
    }
}

TEST(Image, SevenLodsHaveAColorEach) {
    const int colors[][3] = {{255, 0, 0}, {255, 127, 0}, {255, 255, 0}, {0, 255, 0},
                             {0, 0, 255}, {75, 0, 130},  {127, 0, 255}};
    cImage image;
    image.CreateSevenLods(nullptr);
    EXPECT_EQ(image.GetFormat(), cFormat::Dxt1);
    image.Uncompress();
    EXPECT_EQ(image.GetMipMappedSize(0, 7), 16383);
    for (int level = 0; level < 7; level++) {
        for (int i = 0; i < image.GetPixelCount(level) * 3; i++) {
            ASSERT_NEAR(image.GetPixels(level)[i], colors[level][i % 3], 7) << level; // five or six bits are left
        }
    }
    EXPECT_EQ(image.GetPixels(7), nullptr);
}

} // namespace
} // namespace trellis
