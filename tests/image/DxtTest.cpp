#include "image/Dxt.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "image/cImage.h"

namespace trellis {
namespace {

struct Random { // of Numerical Recipes
    uint32_t State = 1;
    int Below(int n) { return int((State = State * 1664525 + 1013904223) >> 8) % n; }
};

struct Block {
    int Width = 4, Height = 4, Stride = 4;
    std::vector<unsigned char> Bytes;

    int At(int i, int c) const { return Bytes[size_t(i * Stride + c)]; } // i counts the rows through
    int Count() const { return Width * Height; }
    int Place(int i) const { return i / Width * 4 + i % Width; }
};

// The encoder once more, in 64 bits: what decides is cut to 32 bits just ahead of each division.
namespace reference {

void MinMax(const Block& b, int c, int* min, int* max) {
    *min = 255, *max = 0;
    for (int i = 0; i < b.Count(); i++) {
        *min = std::min(*min, b.At(i, c));
        *max = std::max(*max, b.At(i, c));
    }
}

uint64_t Color(const Block& b) {
    int min[3], max[3], main = 0, ends[2][3];
    for (int c = 0; c < 3; c++) {
        MinMax(b, c, &min[c], &max[c]);
        main = max[c] - min[c] > max[main] - min[main] ? c : main;
    }
    const int64_t n = b.Count();
    for (int c = 0; c < 3; c++) {
        int64_t sx = 0, sxx = 0, sy = 0, sxy = 0;
        for (int i = 0; i < n; i++) {
            const int64_t x = b.At(i, main), y = b.At(i, c);
            sx += x, sxx += x * x, sy += y, sxy += x * y;
        }
        for (int e = 0; e < 2; e++) {
            const int64_t x = e == 0 ? max[main] : min[main];
            ends[e][c] = int(x);
            if (c != main && min[c] == max[c]) {
                ends[e][c] = min[c];
            } else if (c != main) {
                const int64_t v = x * (sxy * n - sy * sx) + (sxx * sy - sx * sxy);
                ends[e][c] = int(std::clamp<int64_t>(int32_t(uint32_t(v)) / int32_t(sxx * n - sx * sx), 0, 255));
            }
        }
    }
    uint64_t codes = 0, word[2];
    for (int i = 0; i < n; i++) {
        int64_t d[4] = {};
        for (int c = 0; c < 3; c++) {
            const int p[] = {ends[0][c], ends[1][c], (2 * ends[0][c] + ends[1][c]) / 3,
                             (ends[0][c] + 2 * ends[1][c]) / 3};
            for (int k = 0; k < 4; k++) {
                d[k] += (b.At(i, c) - p[k]) * (b.At(i, c) - p[k]);
            }
        }
        const uint64_t code = std::min({d[0], d[1], d[2]}) > d[3] ? 3 : std::min(d[0], d[1]) > d[2] ? 2 : d[1] < d[0];
        codes |= code << (2 * b.Place(i));
    }
    for (int e = 0; e < 2; e++) {
        word[e] = uint64_t(ends[e][0] / 8 * 2048 + ends[e][1] / 4 * 32 + ends[e][2] / 8);
    }
    if (word[0] < word[1]) {
        return word[1] | word[0] << 16 | (codes ^ 0x55555555) << 32;
    }
    const uint64_t bit = word[0] == word[1] ? 32 : 0;
    return (word[0] | bit) | (word[1] & ~bit) << 16 | codes << 32;
}

uint64_t Gray(const Block& b) {
    int min, max;
    MinMax(b, 0, &min, &max);
    int high = (max * 62 + 31) / 510, low = (min * 62 + 31) / 510;
    if (high == low && high == 31) {
        min -= 1, low = 30;
    } else if (high == low) {
        max += 1, high += 1;
    }
    uint64_t block = uint64_t(high * 0x841 | low * 0x841 << 16) & 0xFFFFFFFF;
    for (int i = 0; i < b.Count(); i++) {
        const int t = ((b.At(i, 0) - min) * 3 + (max - min) / 2) / (max - min);
        block |= uint64_t("\1\3\2\0"[t]) << (32 + 2 * b.Place(i));
    }
    return block;
}

uint64_t Alpha(const Block& b) {
    int min, max;
    MinMax(b, 3, &min, &max);
    min -= min == 255;
    max += min == max;
    uint64_t block = uint64_t(max | min << 8);
    for (int i = 0; i < b.Count(); i++) {
        const int t = ((b.At(i, 3) - min) * 7 + (max - min) / 2) / (max - min);
        block |= uint64_t("\1\7\6\5\4\3\2\0"[t]) << (16 + 3 * b.Place(i));
    }
    return block;
}

} // namespace reference

constexpr const char* s_Kinds[] = {"flat", "ramp", "noise", "narrow noise", "two colours", "grey", "falling"};

Block MakeBlock(Random& random, int kind, int width, int height, int stride) {
    Block b = {width, height, stride, std::vector<unsigned char>(size_t(width * height * stride))};
    int base[4], step[4], other[4];
    for (int c = 0; c < 4; c++) {
        base[c] = random.Below(256), step[c] = random.Below(40), other[c] = random.Below(256);
    }
    for (int i = 0; i < b.Count(); i++) {
        const int pick = random.Below(2), grey = random.Below(256);
        for (int c = 0; c < stride; c++) {
            const int values[] = {base[c],
                                  base[c] / 4 + step[c] * i / 4,
                                  random.Below(256),
                                  base[c] / 2 + random.Below(9),
                                  pick ? base[c] : other[c],
                                  grey,
                                  c == i % 3 ? base[0] : 255 - step[c] * i / 4};
            b.Bytes[size_t(i * stride + c)] = static_cast<unsigned char>(values[kind]);
        }
    }
    return b;
}

void ExpectReference(const Block& b) {
    const int row = b.Width * b.Stride;
    const unsigned char* p = b.Bytes.data();
    if (b.Stride == 1) {
        ASSERT_EQ(dxt::EncodeGrayDXTColorBlock(b.Width, b.Height, row, p), reference::Gray(b));
        ASSERT_EQ(dxt::plain::EncodeGrayDXTColorBlock(b.Width, b.Height, row, p), reference::Gray(b));
        return;
    }
    ASSERT_EQ(dxt::EncodeDXTColorBlock(b.Width, b.Height, b.Stride, row, p), reference::Color(b));
    ASSERT_EQ(dxt::plain::EncodeDXTColorBlock(b.Width, b.Height, b.Stride, row, p), reference::Color(b));
    if (b.Stride == 4) {
        ASSERT_EQ(dxt::EncodeDXT5AlphaBlock(b.Width, b.Height, row, p), reference::Alpha(b));
        ASSERT_EQ(dxt::plain::EncodeDXT5AlphaBlock(b.Width, b.Height, row, p), reference::Alpha(b));
    }
}

TEST(Dxt, BothPathsMatchTheReference) {
    Random random;
    for (int kind = 0; kind < int(std::size(s_Kinds)); kind++) {
        SCOPED_TRACE(s_Kinds[kind]);
        for (int i = 0; i < 16 * 3 * 80; i++) { // every extent with every stride
            const int extent = i % 16, stride = i / 16 % 3;
            ExpectReference(MakeBlock(random, kind, extent % 4 + 1, extent / 4 + 1, stride == 0 ? 1 : stride + 2));
            ExpectReference(MakeBlock(random, kind, 4, 4, stride == 0 ? 1 : stride + 2));
            ASSERT_FALSE(HasFatalFailure());
        }
    }
}

TEST(Dxt, ChecksumOfNoise) { // worked out by a script in unbounded integers; FNV-1a, a block at a time
    Random random;
    uint64_t sum = 14695981039346656037u;
    for (int i = 0; i < 20000; i++) {
        unsigned char block[48];
        const int contrast = random.Below(5);
        std::generate_n(block, 48, [&] { return static_cast<unsigned char>(random.Below(256) >> contrast); });
        sum = (sum ^ dxt::EncodeDXTColorBlock(4, 4, 3, 12, block)) * 1099511628211u;
    }
    EXPECT_EQ(sum, 0xE956'4E91'7F24'7FE6u);
}

TEST(Dxt, StepsOfEveryRangeDivideExactly) {
    for (int min = 0; min < 256; min++) {
        for (int max = min; max < 256; max++) {
            for (int v = min; v <= max; v += 14) {
                Block alpha, gray;
                alpha.Bytes.assign(64, 0);
                gray.Bytes.assign(16, 0);
                gray.Stride = 1;
                for (int i = 0; i < 16; i++) {
                    const int value = i == 0 ? min : i == 1 ? max : std::min(v + i - 2, max);
                    gray.Bytes[size_t(i)] = alpha.Bytes[size_t(i * 4 + 3)] = static_cast<unsigned char>(value);
                }
                ASSERT_EQ(dxt::EncodeDXT5AlphaBlock(4, 4, 16, alpha.Bytes.data()), reference::Alpha(alpha));
                ASSERT_EQ(dxt::EncodeGrayDXTColorBlock(4, 4, 4, gray.Bytes.data()), reference::Gray(gray));
            }
        }
    }
}

TEST(Dxt, BlocksByHand) {
    const struct {
        const char* Name;
        Block In;
        uint64_t Out;
    } cases[] = {
        {"flat: equal words part by a step of green", {1, 1, 3, {10, 20, 30}}, 0x00000000'0883'08A3},
        {"axis: a tie goes to red", {2, 1, 3, {0, 255, 0, 255, 0, 0}}, 0x00000001'07E0'F800},
        {"order: words swapped, codes too, also those unused", {2, 1, 3, {100, 0, 0, 0, 0, 200}}, 0x55555554'0019'6000},
        {"grey in three channels: thirds of 255",
         {4, 1, 3, {0, 0, 0, 42, 42, 42, 43, 43, 43, 255, 255, 255}},
         0x00000035'0000'FFFF},
        {"white: the lower shade moves", {1, 1, 1, {255}}, 0x00000000'F79E'FFDF},
        {"black: the upper shade moves", {1, 1, 1, {0}}, 0x00000001'0000'0841},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        const int row = c.In.Width * c.In.Stride;
        EXPECT_EQ(c.In.Stride == 1 ? dxt::EncodeGrayDXTColorBlock(c.In.Width, c.In.Height, row, c.In.Bytes.data())
                                   : dxt::EncodeDXTColorBlock(c.In.Width, c.In.Height, 3, row, c.In.Bytes.data()),
                  c.Out);
    }
    const unsigned char opaque[64] = {0, 0, 0, 255}, flat[] = {0, 0, 0, 255}, low[] = {0, 0, 0, 7};
    EXPECT_EQ(dxt::EncodeDXT5AlphaBlock(1, 1, 4, flat), 0xFEFFu) << "255 and 254, code 0";
    EXPECT_EQ(dxt::EncodeDXT5AlphaBlock(1, 1, 4, low), 0x10708u) << "8 and 7, code 1";
    EXPECT_EQ(dxt::EncodeDXT5AlphaBlock(4, 4, 16, opaque), 01111'1111'1111'1110ull << 16 | 0xFF) << "others have 0";
}

TEST(Dxt, DecodedPixels) {
    const struct {
        const char* Name;
        cFormat::Enum Format;
        std::vector<unsigned char> Block; // codes 0, 1, 2, 3 in the first row
        std::vector<unsigned char> Row;
    } cases[] = {
        {"four colours, no bits replicated",
         cFormat::Dxt1,
         {255, 255, 0, 0, 0xE4, 0, 0, 0},
         {248, 252, 248, 0, 0, 0, 165, 168, 165, 83, 84, 83}},
        {"three colours and black",
         cFormat::Dxt1,
         {0, 0, 255, 255, 0xE4, 0, 0, 0},
         {0, 0, 0, 248, 252, 248, 124, 126, 124, 0, 0, 0}},
        {"equal words are three colours",
         cFormat::Dxt1,
         {255, 255, 255, 255, 0xE4, 0, 0, 0},
         {248, 252, 248, 248, 252, 248, 248, 252, 248, 0, 0, 0}},
        {"the third format has them too",
         cFormat::Dxt3,
         {0x10, 0xF2, 0, 0, 0, 0, 0, 0, 0, 0, 255, 255, 0xE4, 0, 0, 0},
         {0, 0, 0, 0, 248, 252, 248, 17, 124, 126, 124, 34, 0, 0, 0, 255}},
        {"the fifth never; eight alphas",
         cFormat::Dxt5,
         {70, 0, 0x88, 0xE, 0, 0, 0, 0, 0, 0, 255, 255, 0xE4, 0, 0, 0},
         {0, 0, 0, 70, 248, 252, 248, 0, 83, 84, 83, 60, 165, 168, 165, 10}},
        {"six alphas, 0 and 255",
         cFormat::Dxt5,
         {0, 50, 0x91, 0xF, 0, 0, 0, 0, 255, 255, 0, 0, 0xE4, 0, 0, 0},
         {248, 252, 248, 50, 0, 0, 0, 10, 165, 168, 165, 0, 83, 84, 83, 255}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        cImage image(cImage::CopyCtor, c.Block.data(), c.Format, 4, 4, 1, 1);
        image.Uncompress();
        ASSERT_EQ(image.GetFormat(), c.Format == cFormat::Dxt1 ? cFormat::Rgb8 : cFormat::Rgba8);
        EXPECT_EQ(std::vector<unsigned char>(image.GetPixels(), image.GetPixels() + c.Row.size()), c.Row);
    }
}

TEST(Dxt, BothDecodersAgree) {
    Random random;
    for (int i = 0; i < 30000; i++) {
        const cFormat::Enum format = cFormat::Enum(cFormat::Dxt1 + i % 3);
        unsigned char block[16];
        std::generate_n(block, 16, [&] { return static_cast<unsigned char>(random.Below(256)); });
        dxt::Pixels fast, plain;
        dxt::DecodeBlock(format, block, fast);
        dxt::plain::DecodeBlock(format, block, plain);
        ASSERT_EQ(std::memcmp(fast.Words, plain.Words, sizeof(fast.Words)), 0) << i;
    }
}

/// Colours that have an exact code in any block survive, so each pixel of each level must come back to its place.
TEST(Dxt, ExactColoursSurviveAnyShape) {
    constexpr struct {
        int Width, Height, Depth, Levels;
        bool LevelsStay;
    } shapes[] = {{1, 1, 1, 1, true}, {2, 2, 1, 2, true},  {3, 2, 1, 1, true},  {7, 0, 1, 1, true},
                  {8, 0, 1, 4, true}, {6, 5, 1, 3, false}, {9, 16, 1, 1, true}, {16, 8, 1, 10, true},
                  {8, 8, 0, 4, true}, {8, 4, 4, 4, true}};
    Random random;
    for (const auto& s : shapes) {
        for (const auto format : {cFormat::Rgb8, cFormat::Rgba8}) {
            SCOPED_TRACE(testing::Message() << s.Width << " x " << s.Height << " x " << s.Depth << ", " << format);
            cImage image(format, s.Width, s.Height, s.Depth, s.Levels);
            const int channels = cFormat::ChannelCount[format], count = image.GetMipMappedSize(0, s.Levels) / channels;
            for (int i = 0; i < count; i++) {
                constexpr unsigned char colours[][3] = {{0, 4, 0}, {248, 252, 248}}; // 4: bit 5 of a flat block's word
                std::copy_n(colours[random.Below(2)], 3, image.GetPixels() + i * channels);
                if (channels == 4) {
                    image.GetPixels()[i * 4 + 3] = static_cast<unsigned char>(random.Below(2) * 255);
                }
            }
            const cImage before = image;
            image.Compress();
            EXPECT_EQ(image.GetFormat(), channels == 3 ? cFormat::Dxt1 : cFormat::Dxt5);
            image.Uncompress();
            ASSERT_EQ(image.GetFormat(), format);
            ASSERT_EQ(image.GetMipMapCount(), s.LevelsStay ? s.Levels : 1);
            const int size = image.GetMipMappedSize(0, image.GetMipMapCount());
            EXPECT_EQ(std::memcmp(image.GetPixels(), before.GetPixels(), size_t(size)), 0);
        }
    }
}

TEST(Dxt, OtherFormatsStay) {
    for (const auto format : {cFormat::Rg8, cFormat::Rgb16, cFormat::Pvr4Rgb, cFormat::Pvr4Rgba}) {
        cImage image(format, 8, 8, 1, 1);
        const unsigned char* pixels = image.GetPixels();
        image.Compress();
        image.Uncompress();
        EXPECT_EQ(image.GetFormat(), format);
        EXPECT_EQ(image.GetPixels(), pixels);
    }
}

} // namespace
} // namespace trellis
