#include <gtest/gtest.h>

#include <cstring>

#include "foundation/cLog.h"
#include "image/cImage.h"

namespace trellis {
namespace {

int BlockSize(const cImage& image) {
    return std::max(image.GetMipMappedSize(0, image.GetMipMapCount()), 0); // depth formats have none
}

/// Bytes 0 to 255 in disorder; as elements of floats, whole numbers instead.
cImage Scrambled(cFormat::Enum format, int width, int height, int depth, int levels) {
    cImage image(format, width, height, depth, levels);
    const bool floats = format >= cFormat::R32f && format <= cFormat::Rgba32f;
    uint32_t v = 7;
    for (int i = 0; i < BlockSize(image); i += floats ? 4 : 1) {
        v = v * 1664525 + 1013904223;
        const float f = float(v >> 20);
        floats ? std::memcpy(image.GetPixels() + i, &f, 4)
               : &(image.GetPixels()[i] = static_cast<unsigned char>(v >> 24));
    }
    return image;
}

bool SameBytes(const cImage& a, const cImage& b) {
    return a.GetFormat() == b.GetFormat() && BlockSize(a) == BlockSize(b) &&
           std::memcmp(a.GetPixels(), b.GetPixels(), size_t(BlockSize(a))) == 0;
}

double Sample(const cImage& image, int level, int slice, int y, int x, int c) {
    const int channels = cFormat::ChannelCount[image.GetFormat()];
    const int element = cFormat::BytesPerPixel[image.GetFormat()] / channels;
    const unsigned char* p = image.GetPixels(level) + slice * image.GetSliceSize(level) + y * image.GetRowSize(level) +
                             (x * channels + c) * element;
    uint16_t word;
    float f;
    std::memcpy(&word, p, element == 1 ? 1 : 2);
    std::memcpy(&f, p, element == 4 ? 4 : 1);
    return element == 1 ? *p : element == 2 ? word : f;
}

double Mean(const cImage& image, int level, int slice, int y, int x,
            int c) { // of a sample of `level`, in the one above
    const int w = std::max(image.GetWidth() >> (level - 1), 1) - 1,
              h = std::max(image.GetHeight() >> (level - 1), 1) - 1;
    const int d = std::max(image.GetDepth() >> (level - 1), 1) - 1;
    double sum = 0;
    for (int i = 0; i < 8; i++) {
        const int z = image.IsCube() ? slice : std::min(slice * 2 + i / 4, d);
        sum += Sample(image, level - 1, z, std::min(y * 2 + i / 2 % 2, h), std::min(x * 2 + i % 2, w), c);
    }
    return image.GetFormat() <= cFormat::Rgba16 ? double(int(sum) / 8) : sum / 8;
}

void ExpectMeans(const cImage& image) {
    for (int level = 1; level < image.GetMipMapCount(); level++) {
        const int slices = image.IsCube() ? 6 : std::max(image.GetDepth() >> level, 1);
        const int rows = std::max(image.GetHeight() >> level, 1), columns = std::max(image.GetWidth() >> level, 1);
        for (int i = 0; i < slices * rows * columns * cFormat::ChannelCount[image.GetFormat()]; i++) {
            const int pixel = i / cFormat::ChannelCount[image.GetFormat()];
            const int at[] = {pixel / columns / rows, pixel / columns % rows, pixel % columns};
            const int c = i % cFormat::ChannelCount[image.GetFormat()];
            ASSERT_EQ(Sample(image, level, at[0], at[1], at[2], c), Mean(image, level, at[0], at[1], at[2], c))
                << level;
        }
    }
}

TEST(Maps, LevelsAreTruncatedMeans) {
    constexpr cFormat::Enum formats[] = {cFormat::R8,   cFormat::Rg8,    cFormat::Rgb8, cFormat::Rgba8,
                                         cFormat::Rg16, cFormat::Rgba16, cFormat::R32f, cFormat::Rgb32f};
    constexpr int shapes[][3] = {{64, 32, 1}, {2, 64, 1}, {1, 8, 1}, {16, 0, 1}, {16, 16, 0}, {8, 4, 8}, {4, 1, 2}};
    for (const auto format : formats) {
        for (const auto& s : shapes) {
            SCOPED_TRACE(testing::Message() << format << ": " << s[0] << " x " << s[1] << " x " << s[2]);
            cImage image = Scrambled(format, s[0], s[1], s[2], 1);
            const cImage before = image;
            ASSERT_TRUE(image.CreateMipMaps(100));
            ASSERT_EQ(image.GetMipMapCount(), image.GetMipMapCountFromDimensions());
            ASSERT_NO_FATAL_FAILURE(ExpectMeans(image));
            image.RemoveMipMaps();
            EXPECT_TRUE(SameBytes(image, before)) << "level 0 with all faces and slices";
        }
    }
    for (int width = 3; width < 40; width += 2) { // odd sides have no defined means, and stay inside the block
        EXPECT_TRUE(Scrambled(cFormat::Rgb8, width, 5, 1, 1).CreateMipMaps(100));
    }
}

TEST(Maps, CountOfLevels) {
    cImage image = Scrambled(cFormat::R8, 64, 32, 1, 1);
    EXPECT_TRUE(image.CreateMipMaps(100));
    EXPECT_EQ(image.GetMipMapCount(), 7);
    EXPECT_EQ(image.GetMipMappedSize(6, 1), 1);
    *image.GetPixels(6) = static_cast<unsigned char>(*image.GetPixels(6) + 1);
    EXPECT_TRUE(image.CreateMipMaps(7));
    ExpectMeans(image); // made anew, though their number stays
    EXPECT_TRUE(image.CreateMipMaps(0));
    EXPECT_EQ(image.GetMipMapCount(), 1);
    EXPECT_FALSE(cImage(cFormat::Dxt1, 8, 8, 1, 1).CreateMipMaps(2));
    EXPECT_TRUE(cImage().CreateMipMaps(3));
    EXPECT_TRUE(cImage(cFormat::Depth16, 8, 8, 1, 1).CreateMipMaps(4));
}

/// Baked half-float images rely on the walk in words of floats.
TEST(Maps, HalfFloatsAreWalkedAsFloats) {
    unsigned char block[22] = {}; // 4 x 2, 2 x 1, 1 x 1 halves; five whole words
    const float words[] = {1, 2, 8, 16};
    std::memcpy(block, words, sizeof(words));
    cImage image(cImage::CopyCtor, block, cFormat::R16f, 4, 2, 1, 3);
    ASSERT_TRUE(image.CreateMipMaps(3));
    const float mean = 0.75f; // of 1, 2, the word that it replaces, 0, and one past the end, read as 0
    std::memcpy(block + 16, &mean, 4);
    EXPECT_EQ(std::memcmp(image.GetPixels(), block, sizeof(block)), 0);
}

/// A step from 0 to 255 at the middle of 8 by 8: the kernel's sum there is -3 x 16 x 255, which scales to -1.
cImage Step(bool alongX, int depth) {
    cImage image(cFormat::R8, 8, 8, depth, 1);
    for (int i = 0; i < 64 * depth; i++) {
        image.GetPixels()[i] = ((alongX ? i : i / 8) & 4) != 0 ? 255 : 0;
    }
    return image;
}

TEST(Maps, NormalOfAStep) { // 1 / sqrt(2): 37.3 and 217.7; below 16 / sqrt(257): 119.5 and 254.7
    cImage x = Step(true, 1), y = Step(false, 1), two = Step(true, 1), volume = Step(true, 2), rgb = Step(true, 2);
    ASSERT_TRUE(x.ToNormalMap(cFormat::Rgba8, 1 / 16.0f, false));
    EXPECT_EQ(std::memcmp(x.GetPixels() + (3 * 8 + 4) * 4, "\45\177\331\377", 4), 0); // 37 127 217 255
    ASSERT_TRUE(y.ToNormalMap(cFormat::Rgba8, 1 / 16.0f, false));
    EXPECT_EQ(std::memcmp(y.GetPixels() + (4 * 8 + 3) * 4, "\177\45\331\377", 4), 0);
    EXPECT_EQ(y.GetPixels()[1], 255 - 38) << "wraps: row 0 falls toward row 7";
    ASSERT_TRUE(two.ToNormalMap(cFormat::Rg8, 1 / 16.0f, false));
    EXPECT_EQ(std::memcmp(two.GetPixels() + (3 * 8 + 4) * 2, "\177\45", 2), 0) << "y first";
    ASSERT_TRUE(volume.ToNormalMap(cFormat::Rgba8, 1 / 16.0f, false));
    EXPECT_EQ(std::memcmp(volume.GetPixels() + (64 + 3 * 8 + 4) * 4, "\167\177\376\377", 4), 0) << "scale 1 in volumes";
    ASSERT_TRUE(rgb.ToNormalMap(cFormat::Rgb8, 1 / 16.0f, false));
    EXPECT_EQ(std::memcmp(rgb.GetPixels() + (64 + 3 * 8 + 4) * 3, "\167\177\376", 3), 0);
}

TEST(Maps, NormalOfAFlatImage) {
    const unsigned char grey[] = {100, 100, 100, 7, 100, 100, 100, 7};
    for (const bool keepAlpha : {false, true}) {
        cImage image(cImage::CopyCtor, grey, cFormat::Rgba8, 2, 1, 1, 1);
        ASSERT_TRUE(image.ToNormalMap(cFormat::Rgba8, 1, keepAlpha));
        EXPECT_EQ(std::memcmp(image.GetPixels(), keepAlpha ? "\177\177\377\7" : "\177\177\377\144", 4), 0);
    }
    cImage still(cImage::CopyCtor, grey, cFormat::R8, 2, 2, 1, 1);
    EXPECT_TRUE(still.ToNormalMap(cFormat::Rgba8, 0, false)) << "no height, no length";
    cImage blocks(cFormat::Dxt1, 16, 8, 1, 5);
    std::memset(blocks.GetPixels(), 0, size_t(BlockSize(blocks)));
    EXPECT_TRUE(blocks.ToNormalMap(cFormat::Rg8, 1, false));
    EXPECT_EQ(BlockSize(blocks), 16 * 8 * 2);
}

TEST(Maps, NormalTakesOtherSidesAndKeepsDecodedAlpha) {
    constexpr int sides[][4] = {{6, 4, 8, 4}, {5, 4, 4, 4}}; // 3 * 8 is not above 4 * 6, but above 4 * 5
    for (const auto& c : sides) {
        cImage image = Scrambled(cFormat::R8, c[0], c[1], 1, 1);
        ASSERT_TRUE(image.ToNormalMap(cFormat::Rgba8, 1, false));
        EXPECT_EQ(image.GetWidth(), c[2]);
        EXPECT_EQ(image.GetHeight(), c[3]);
    }
    EXPECT_FALSE(Scrambled(cFormat::R8, 6, 6, 0, 1).ToNormalMap(cFormat::Rgba8, 1, false)) << "a cube is not resized";
    cImage blocks = Scrambled(cFormat::Dxt5, 4, 4, 1, 1), decoded = blocks;
    decoded.Uncompress();
    ASSERT_TRUE(blocks.ToNormalMap(cFormat::Rgba8, 1, true));
    for (int i = 3; i < 64; i += 4) {
        EXPECT_EQ(blocks.GetPixels()[i], decoded.GetPixels()[i]);
    }
}

TEST(Maps, NormalRefusals) {
    constexpr struct {
        cFormat::Enum From, To;
        int Depth;
    } cases[] = {{cFormat::R8, cFormat::Rgb8, 1},       {cFormat::R8, cFormat::Rg8, 2},
                 {cFormat::Rgb16, cFormat::Rgba8, 1},   {cFormat::Rg8, cFormat::Rgba8, 1},
                 {cFormat::Pvr4Rgb, cFormat::Rgba8, 1}, {cFormat::Dxt1, cFormat::R8, 1}};
    for (const auto& c : cases) {
        cImage image = Scrambled(c.From, 8, 8, c.Depth, 2);
        const cImage before = image;
        EXPECT_FALSE(image.ToNormalMap(c.To, 1, true)) << c.From << " to " << c.To;
        EXPECT_TRUE(SameBytes(image, before));
    }
}

TEST(Maps, FlipMirrorsEveryLevelAndBack) {
    constexpr int shapes[][4] = {{8, 8, 1, 4}, {4, 16, 1, 5}, {8, 4, 0, 4}, {4, 8, 4, 3}};
    for (const auto format : {cFormat::Rgb8, cFormat::Rg16, cFormat::Rgba16f, cFormat::Rgb32f}) {
        for (const auto& s : shapes) {
            const cImage before = Scrambled(format, s[0], s[1], s[2], s[3]);
            cImage image = before;
            ASSERT_TRUE(image.Flip());
            for (int level = 0; level < s[3]; level++) {
                const int rows = std::max(s[1] >> level, 1), size = image.GetRowSize(level);
                const int all = image.GetMipMappedSize(level, 1) / size;
                for (int i = 0; i < all; i++) {
                    const int mirrored = i / rows * rows + rows - 1 - i % rows;
                    ASSERT_EQ(std::memcmp(image.GetPixels(level) + i * size, before.GetPixels(level) + mirrored * size,
                                          size_t(size)),
                              0)
                        << format << " level " << level << " row " << i;
                }
            }
            EXPECT_TRUE(image.Flip() && SameBytes(image, before)) << format;
        }
    }
    for (const auto format : {cFormat::Dxt1, cFormat::Dxt3, cFormat::Dxt5}) {
        for (const auto& s : shapes) { // whichever comes first, decoding or flipping
            const cImage blocks = Scrambled(format, s[0], s[1], s[2], s[3]);
            cImage flipped = blocks, decoded = blocks, twice = Scrambled(format, s[0], s[1], s[2], 1);
            EXPECT_TRUE(flipped.Flip());
            flipped.Uncompress();
            decoded.Uncompress();
            EXPECT_TRUE(decoded.Flip() && SameBytes(flipped, decoded)) << format;
            EXPECT_TRUE(twice.Flip() && twice.Flip() && SameBytes(twice, Scrambled(format, s[0], s[1], s[2], 1)));
        }
    }
}

TEST(Maps, FlipOfLowBlocks) {
    const cImage before = Scrambled(cFormat::Dxt5, 12, 12, 1, 4); // 12, 6, 3, 1 rows
    cImage image = before;
    ASSERT_TRUE(image.Flip());
    const unsigned char *six = image.GetPixels(1), *was6 = before.GetPixels(1);
    EXPECT_EQ(six[12], was6[15]) << "6 rows: the part row of blocks stays below, each block is mirrored";
    const unsigned char *three = image.GetPixels(2), *was3 = before.GetPixels(2);
    EXPECT_TRUE(three[12] == was3[13] && three[13] == was3[12] && three[14] == was3[14]) << "3 rows count as 2";
    EXPECT_TRUE(three[2] == (was3[3] >> 4 | (was3[4] & 15) << 4) && three[5] == 0 && three[6] == 0 && three[7] == 0);
    EXPECT_EQ(std::memcmp(image.GetPixels(3), before.GetPixels(3), 16), 0) << "one row";
}

TEST(Maps, FlipRefusals) {
    constexpr struct {
        cFormat::Enum Format;
        int Width, Height;
        bool Ok, Warned;
    } cases[] = {{cFormat::Dxt1, 6, 8, false, true},
                 {cFormat::Dxt5, 8, 6, false, true},
                 {cFormat::Pvr4Rgb, 8, 8, false, false},
                 {cFormat::Depth24, 8, 8, false, false},
                 {cFormat::Rgb8, 6, 0, true, false}};
    for (const auto& c : cases) {
        cLog::GetLogMutable() = "";
        cImage image = Scrambled(c.Format, c.Width, c.Height, 1, 1);
        const cImage before = image;
        EXPECT_EQ(image.Flip(), c.Ok) << c.Format;
        EXPECT_TRUE(SameBytes(image, before));
        EXPECT_STREQ(cLog::GetLog().Text(),
                     c.Warned ? "Compressed images must have dimensions that are multiples of 4\r\n" : "");
    }
}

} // namespace
} // namespace trellis
