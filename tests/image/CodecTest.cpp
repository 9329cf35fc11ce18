#include "image/CodecBytes.h"
#include "image/cCodecBmp.h"
#include "image/cCodecDds.h"
#include "image/cCodecPvr.h"
#include "image/cCodecTga.h"

#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

#include "files/cFile.h"

namespace trellis {
namespace {

using enum cFormat::Enum;
using Bytes = std::vector<unsigned char>;

cCodecBmp s_Bmp;
cCodecTga s_Tga;
cCodecDds s_Dds;
cCodecPvr s_Pvr;

/// A file over a heap block without slack, so that a read past its end shows.
cFile FileOf(const Bytes& content) {
    cList<unsigned char> bytes;
    bytes.Resize(int(content.size()), false);
    bytes.AddRange(content.data(), int(content.size()));
    cFile file;
    file.Set(&bytes, "test");
    return file;
}

Bytes BytesOf(const cFile& file) {
    const unsigned char* p = file.GetBytes().Data();
    return p ? Bytes(p, p + file.GetSize()) : Bytes();
}

/// The whole block of an image; empty, whatever the codec answers, for a refused file.
Bytes Decode(cIO::ImageCodec& codec, const Bytes& content, cImage* image) {
    image->Create(cFormat::Rg8, 3, 3, 1, 1); // what was there before must not show through
    const cFile file = FileOf(content);
    if (!codec.Decode(file, image)) {
        EXPECT_TRUE(image->IsEmpty());
        EXPECT_EQ(image->GetWidth(), 0);
        return {};
    }
    const unsigned char* p = image->GetPixels();
    return p ? Bytes(p, p + image->GetMipMappedSize(0, image->GetMipMapCount())) : Bytes();
}
Bytes Decode(cIO::ImageCodec& codec, const Bytes& content) {
    cImage image;
    return Decode(codec, content, &image);
}

/// As "01 FF".
Bytes Hex(const char* text) {
    Bytes bytes;
    for (char* end; *text; text = end) {
        bytes.push_back((unsigned char)std::strtol(text, &end, 16));
    }
    return bytes;
}
Bytes operator+(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Bytes Set16(Bytes b, size_t at, unsigned int v) {
    b[at] = (unsigned char)v;
    b[at + 1] = (unsigned char)(v >> 8);
    return b;
}
Bytes Set32(const Bytes& b, size_t at, unsigned int v) {
    return Set16(Set16(b, at, v), at + 2, v >> 16);
}
unsigned int Get32(const Bytes& b, size_t at) {
    return b[at] | b[at + 1] << 8 | b[at + 2] << 16 | unsigned(b[at + 3]) << 24;
}

Bytes Bmp(int bits, int width, int height) {
    // The data offset is wrong, as it does not count.
    const Bytes b = Hex("42 4D 00 00 00 00 00 00 00 00 63 00 00 00 28 00 00 00") + Bytes(36);
    return Set16(Set16(Set32(Set32(b, 18, unsigned(width)), 22, unsigned(height)), 26, 1), 28, unsigned(bits));
}
Bytes Tga(int type, int bits, int width, int height, int descriptor = 0) {
    Bytes b = Set16(Set16(Bytes(18), 12, unsigned(width)), 14, unsigned(height));
    b[2] = (unsigned char)type, b[16] = (unsigned char)bits, b[17] = (unsigned char)descriptor;
    return b;
}
Bytes Dds(unsigned int code, int bits, int width, int height) {
    const Bytes b = Set32(Set32(Hex("44 44 53 20") + Bytes(124), 12, unsigned(height)), 16, unsigned(width));
    return Set32(Set32(b, 84, code), 88, unsigned(bits));
}
Bytes Pvr(int width, int height, int levels, unsigned char kind) {
    const Bytes b = Hex("50 56 52 20") + Bytes(12) + Bytes{kind};
    return Set32(Set32(Set32(b, 4, unsigned(width)), 8, unsigned(height)), 12, unsigned(levels));
}
const Bytes s_TwoColors = Hex("01 02 03 00 04 05 06 00"); // as blue, green, red
const Bytes s_Ramp = Hex("00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F");

TEST(CodecBytes, VectorsSwapAsPlainCodeDoes) {
    for (const int channels : {3, 4}) {
        for (int count = 0; count < 70; count++) {
            SCOPED_TRACE(count * 10 + channels);
            Bytes source(size_t(count * channels)), fast(source.size()), plain(source.size());
            for (size_t i = 0; i < source.size(); i++) {
                source[i] = (unsigned char)(i * 37 + 11);
            }
            CopySwapped(fast.data(), source.data(), count, channels);
            CopySwappedPlain(plain.data(), source.data(), count, channels);
            ASSERT_EQ(fast, plain);
            ASSERT_TRUE(count == 0 || (fast[0] == source[2] && fast[2] == source[0] && fast[1] == source[1]));
        }
    }
}

const struct {
    const char* Name;
    cIO::ImageCodec& Codec;
    Bytes File;
    cFormat::Enum Format;
    int Width, Height;
    Bytes Pixels; // from the bottom
} s_Files[] = {
    // clang-format off
    // Two rows of one byte and three of padding; 1010 0000 and 0100 0000, high bit first.
    {"bmp 1", s_Bmp, Set32(Bmp(1, 3, 2), 46, 2) + s_TwoColors + Hex("A0 00 00 00 40 00 00 00"), Rgb8, 3, 2,
     Hex("06 05 04 03 02 01 06 05 04 03 02 01 06 05 04 03 02 01")},
    {"bmp 4, high nibble first", s_Bmp, Set32(Bmp(4, 3, 1), 46, 2) + s_TwoColors + Hex("10 1F 00 00"), Rgb8, 3, 1,
     Hex("06 05 04 03 02 01 06 05 04")},
    {"bmp 8, top down", s_Bmp, Set32(Bmp(8, 1, -2), 46, 2) + s_TwoColors + Hex("00 09 09 09 01 09 09 09"), Rgb8, 1, 2,
     Hex("06 05 04 03 02 01")},
    {"bmp 8, a whole palette for 0 colours", s_Bmp, Bmp(8, 1, 1) + Bytes(1020) + Hex("01 02 03 00 FF 00 00 00"),
     Rgb8, 1, 1, Hex("03 02 01")},
    {"bmp 24, padded", s_Bmp, Bmp(24, 1, 2) + Hex("01 02 03 63 04 05 06 63"), Rgb8, 1, 2, Hex("03 02 01 06 05 04")},
    {"bmp 32, bit fields as plain", s_Bmp, Set32(Bmp(32, 1, 1), 30, 3) + Hex("01 02 03 04"), Rgba8, 1, 1,
     Hex("03 02 01 04")},
    {"tga 8", s_Tga, Tga(3, 8, 2, 1) + Hex("07 08"), R8, 2, 1, Hex("07 08")},
    {"tga 8 with a map", s_Tga, Set32(Tga(1, 8, 2, 1), 5, 2 | 24 << 16) + Hex("01 02 03 04 05 06 01 00"), Rgb8, 2, 1,
     Hex("06 05 04 03 02 01")},
    // 1 11111 00000 10000 and 0 00000 11111 00001
    {"tga 16", s_Tga, Tga(2, 16, 1, 2) + Hex("10 FC E1 03"), Rgba8, 1, 2, Hex("F8 00 80 FF 00 F8 08 00")},
    {"tga 24, top down", s_Tga, Tga(2, 24, 1, 2, 0x20) + Hex("01 02 03 04 05 06"), Rgb8, 1, 2,
     Hex("06 05 04 03 02 01")},
    {"tga 32", s_Tga, Tga(2, 32, 1, 1) + Hex("01 02 03 04"), Rgba8, 1, 1, Hex("03 02 01 04")},
    {"tga run over rows", s_Tga, Tga(10, 24, 2, 2) + Hex("82 01 02 03 00 04 05 06"), Rgb8, 2, 2,
     Hex("03 02 01 03 02 01 03 02 01 06 05 04")},
    {"tga runs top down, the last cut", s_Tga, Tga(11, 8, 2, 2, 0x20) + Hex("82 01 FF 02"), R8, 2, 2,
     Hex("01 02 01 01")},
    {"dds 8, flipped", s_Dds, Dds(0, 8, 1, 2) + Hex("01 02"), R8, 1, 2, Hex("02 01")},
    {"dds 16 with alpha", s_Dds, Set32(Dds(0, 16, 1, 1), 104, 0xFF00) + Hex("01 02"), Rg8, 1, 1, Hex("01 02")},
    {"dds 24 in order", s_Dds, Dds(0, 24, 1, 1) + Hex("01 02 03"), Rgb8, 1, 1, Hex("01 02 03")},
    {"dds 24 blue first", s_Dds, Set32(Dds(0, 24, 1, 1), 100, 255) + Hex("01 02 03"), Rgb8, 1, 1, Hex("03 02 01")},
    {"dds 32, 1D", s_Dds, Set32(Dds(0, 32, 1, 0), 100, 255) + Hex("01 02 03 04"), Rgba8, 1, 0, Hex("03 02 01 04")},
    {"dds code ahead of bits", s_Dds, Dds(34, 8, 1, 1) + Hex("01 02 03 04"), Rg16, 1, 1, Hex("01 02 03 04")},
    // Three levels are all that 4 by 1 has; 60 are claimed.
    {"dds levels cut", s_Dds, Set32(Dds(0, 8, 4, 1), 28, 60) + Hex("01 02 03 04 05 06 07"), R8, 4, 1,
     Hex("01 02 03 04 05 06 07")},
    {"dxt of 2 by 2 stays as it is", s_Dds, Dds(0x31545844, 0, 2, 2) + Hex("01 02 03 04 05 06 07 08"), Dxt1, 2, 2,
     Hex("01 02 03 04 05 06 07 08")},
    {"pvr, rows as they stand", s_Pvr, Pvr(8, 8, 1, 0) + s_Ramp + s_Ramp, Pvr4Rgb, 8, 8, s_Ramp + s_Ramp},
    {"pvr alpha, 32 bytes a level, cut", s_Pvr, Pvr(2, 1, 9, 7) + s_Ramp + s_Ramp + s_Ramp + s_Ramp,
     Pvr4Rgba, 2, 1, s_Ramp + s_Ramp + s_Ramp + s_Ramp},
    // clang-format on
};

TEST(ImageCodec, DecodesAndRefusesEveryPrefix) {
    for (const auto& c : s_Files) {
        SCOPED_TRACE(c.Name);
        cImage image;
        EXPECT_EQ(Decode(c.Codec, c.File, &image), c.Pixels);
        EXPECT_EQ(image.GetFormat(), c.Format);
        EXPECT_EQ(image.GetWidth(), c.Width);
        EXPECT_EQ(image.GetHeight(), c.Height);
        EXPECT_EQ(Decode(c.Codec, c.File + Hex("00")), c.Pixels) << "a byte behind the end";
        for (size_t n = 0; n < c.File.size(); n++) {
            ASSERT_EQ(Decode(c.Codec, Bytes(c.File.begin(), c.File.begin() + ptrdiff_t(n))), Bytes()) << n;
        }
    }
}

TEST(Tga, RunsOfEveryLength) { // each followed by one pixel, where a run that is too long would show
    for (int n = 1; n <= 128; n++) {
        for (const int channels : {3, 4}) {
            SCOPED_TRACE(n * 10 + channels);
            const Bytes color = channels == 3 ? Hex("01 02 03") : Hex("01 02 03 04"), last(size_t(channels), 9);
            Bytes pixels;
            for (int i = 0; i < n; i++) {
                pixels = pixels + (channels == 3 ? Hex("03 02 01") : Hex("03 02 01 04"));
            }
            const Bytes run = Bytes(1, (unsigned char)(127 + n)) + color + Bytes(1) + last;
            EXPECT_EQ(Decode(s_Tga, Tga(10, channels * 8, n + 1, 1) + run), pixels + last);
        }
    }
}

TEST(ImageCodec, SurvivesDamage) { // for the sanitizers: whatever is made lies inside its blocks
    for (const auto& c : s_Files) {
        for (size_t at = 0; at < c.File.size() && at < 140; at++) {
            for (const int v : {0, 1, 0x7F, 0x80, 0xFF}) {
                Bytes damaged = c.File;
                damaged[at] = (unsigned char)v;
                const Bytes pixels = Decode(c.Codec, damaged);
                ASSERT_LT(pixels.size(), size_t(1) << 20) << c.Name << " " << at; // nothing small becomes large
            }
        }
    }
}

TEST(ImageCodec, RefusesHeaders) {
    const Bytes room(64), bmp = Bmp(24, 1, 1) + room, mapped = Set32(Bmp(8, 1, 1), 46, 2) + s_TwoColors;
    const Bytes tga = Tga(2, 24, 1, 1) + room, dds = Dds(0, 8, 1, 1) + room;
    const Bytes map = Set32(Tga(1, 8, 1, 1), 5, 2 | 24 << 16) + Hex("01 02 03 04 05 06");
    const Bytes runs = Hex("FF 01 FF 01");
    const unsigned int big = 0x7FFFFFFF, negative = 0x80000000;
    const struct {
        const char* Name;
        cIO::ImageCodec& Codec;
        Bytes Accepted, Refused;
    } cases[] = {
        // clang-format off
        {"bmp magic", s_Bmp, bmp, Set16(bmp, 0, 'B' | 'A' << 8)},
        {"bmp header size", s_Bmp, bmp, Set32(bmp, 14, 108)},
        {"bmp planes", s_Bmp, bmp, Set16(bmp, 26, 0)},
        {"bmp bits", s_Bmp, bmp, Set16(bmp, 28, 16)},
        {"bmp run-length", s_Bmp, Set32(bmp, 30, 3), Set32(bmp, 30, 1)},
        {"bmp width 0", s_Bmp, bmp, Set32(bmp, 18, 0)},
        {"bmp height 0", s_Bmp, Set32(bmp, 22, ~0u), Set32(bmp, 22, 0)},
        {"bmp height without a negative", s_Bmp, bmp, Set32(bmp, 22, negative)},
        {"bmp rows left", s_Bmp, Set32(bmp, 22, 16), Set32(bmp, 22, 17)},
        {"bmp both sides large", s_Bmp, bmp, Set32(Set32(bmp, 18, big), 22, big)},
        {"bmp index past the palette", s_Bmp, mapped + Hex("01 00 00 00"), mapped + Hex("02 00 00 00")},
        {"bmp colours below 0", s_Bmp, mapped + room, Set32(mapped, 46, ~0u) + room},
        {"bmp colours past the file", s_Bmp, mapped + room, Set32(mapped, 46, 0x40000001) + room},
        {"tga ID field", s_Tga, tga, Set16(tga, 0, 1)},
        {"tga mark of a map", s_Tga, map + Hex("00"), Set16(map, 0, 256) + Hex("00")},
        {"tga index past the map", s_Tga, map + Hex("01"), map + Hex("02")},
        {"tga map past the file", s_Tga, map + room, Set16(map, 5, 24) + room},
        {"tga width 0", s_Tga, tga, Set16(tga, 12, 0)},
        {"tga both sides large", s_Tga, tga, Set16(Set16(tga, 12, 65535), 14, 65535)},
        {"tga more than runs can make", s_Tga, Tga(11, 8, 256, 1) + runs, Tga(11, 8, 257, 1) + runs},
        {"dds magic", s_Dds, dds, Set16(dds, 0, 0)},
        {"dds bits", s_Dds, dds, Set32(dds, 88, 12)},
        {"dds code unknown, no bits", s_Dds, Set32(dds, 84, 37), Dds(37, 0, 1, 1) + room},
        {"dds width 0", s_Dds, dds, Set32(dds, 16, 0)},
        {"dds height below 0", s_Dds, dds, Set32(dds, 12, negative)},
        {"dds height 0 with depth", s_Dds, Set32(dds, 12, 0), Set32(Set32(dds, 12, 0), 24, 2)},
        {"dds depth below 0", s_Dds, Set32(dds, 24, 64), Set32(dds, 24, negative)},
        {"dds depth left", s_Dds, Set32(dds, 24, 64), Set32(dds, 24, 65)},
        {"dds levels below 0", s_Dds, Set32(dds, 28, big), Set32(dds, 28, ~0u)},
        {"dds faces left", s_Dds, Set32(Dds(0, 8, 1, 1), 112, 0x200) + Bytes(6), Set32(Dds(0, 8, 1, 1), 112, 0x200) +
         Bytes(5)},
        {"dds all sides large", s_Dds, dds, Set32(Set32(Set32(dds, 12, big), 16, big), 24, big)},
        {"pvr width 0", s_Pvr, Pvr(1, 1, 1, 0) + room, Pvr(0, 1, 1, 0) + room},
        {"pvr height below 0", s_Pvr, Pvr(1, 1, 1, 0) + room, Pvr(1, -1, 1, 0) + room},
        {"pvr no level", s_Pvr, Pvr(1, 1, 1, 0) + room, Pvr(1, 1, 0, 0) + room},
        {"pvr both sides large", s_Pvr, Pvr(1, 1, 1, 0) + room, Pvr(0x7FFFFFFF, 0x7FFFFFFF, 1, 0) + room},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        EXPECT_NE(Decode(c.Codec, c.Accepted), Bytes());
        cImage image;
        EXPECT_EQ(Decode(c.Codec, c.Refused, &image), Bytes());
        EXPECT_TRUE(image.IsEmpty());
    }
    cImage image; // other depths are no failure, and no image
    EXPECT_TRUE(s_Tga.Decode(FileOf(Tga(2, 15, 1, 1) + room), &image) && image.IsEmpty());
}

cImage Pattern(cFormat::Enum format, int width, int height, int depth, int levels) {
    cImage image(format, width, height, depth, levels);
    unsigned char* p = image.GetPixels();
    for (int i = 0; i < image.GetMipMappedSize(0, levels); i++) {
        p[i] = (unsigned char)(i * 29 + i / 256);
    }
    return image;
}

/// Whether the image is written, and then whether it reads back the same.
void RoundTrip(cIO::ImageCodec& codec, const cImage& image, bool written, bool same) {
    cFile file;
    ASSERT_EQ(codec.Encode(image, &file), written);
    ASSERT_TRUE(written || file.GetSize() == 0);
    if (written) {
        cImage back;
        const unsigned char* p = image.GetPixels();
        const Bytes pixels(p, p + image.GetMipMappedSize(0, image.GetMipMapCount()));
        EXPECT_EQ(Decode(codec, BytesOf(file), &back) == pixels && back.GetWidth() == image.GetWidth() &&
                      back.GetHeight() == image.GetHeight() && back.GetDepth() == image.GetDepth() &&
                      back.GetMipMapCount() == image.GetMipMapCount() && back.GetFormat() == image.GetFormat(),
                  same);
    }
}

TEST(ImageCodec, RoundTrips) {
    for (int f = R8; f < cFormat::Count; f++) {
        SCOPED_TRACE(f);
        const auto format = cFormat::Enum(f);
        if (f < cFormat::Depth16 || f > cFormat::Depth24Stencil8) {
            const bool dds = f != Rgb16 && f != Rgb16f && f != Rgb32f && f < cFormat::Pvr4Rgb;
            RoundTrip(s_Dds, Pattern(format, 5, 0, 1, 3), dds, dds);  // 1D
            RoundTrip(s_Dds, Pattern(format, 16, 8, 1, 2), dds, dds); // 2D; blocks of lower levels lose rows in a flip
            RoundTrip(s_Dds, Pattern(format, 6, 10, 1, 1), dds, dds); // blocks that cannot be flipped
            RoundTrip(s_Dds, Pattern(format, 8, 4, 16, 5), dds, dds); // 3D
            RoundTrip(s_Dds, Pattern(format, 8, 8, 0, 4), dds, dds);  // cube
            RoundTrip(s_Pvr, Pattern(format, 8, 8, 1, 1), false, false);
        }
        const bool bytes = f == R8 || f == Rgb8 || f == Rgba8;
        RoundTrip(s_Bmp, Pattern(format, 7, 3, 1, 1), bytes, bytes && f != R8);
        RoundTrip(s_Tga, Pattern(format, 7, 3, 1, 1), bytes, bytes && f != R8);
    }
    RoundTrip(s_Tga, Pattern(Rgb8, 65535, 1, 1, 1), true, true);
    RoundTrip(s_Tga, Pattern(Rgb8, 65536, 1, 1, 1), false, false);
    RoundTrip(s_Tga, Pattern(R8, 1, 65536, 1, 1), false, false);
    RoundTrip(s_Dds, cImage(), false, false);
    RoundTrip(s_Dds, Pattern(R8, 2, 2, 0, 9), true, false); // two levels of nine: no read past the block
}

TEST(ImageCodec, GrayFilesGoOneWay) { // old readers count on rows without padding, and on the map
    cFile bmp, tga;
    ASSERT_TRUE(s_Bmp.Encode(Pattern(R8, 3, 2, 1, 1), &bmp));
    const Bytes b = BytesOf(bmp);
    ASSERT_EQ(b.size(), 1078u + 6);
    EXPECT_EQ(Bytes(b.begin() + 1074, b.end()), Hex("FF FF FF 00 00 1D 3A 57 74 91"));
    EXPECT_EQ(Get32(b, 2), 1084u);
    EXPECT_EQ(Get32(b, 10), 1078u);
    EXPECT_EQ(Get32(b, 34), 6u);
    EXPECT_EQ(Get32(b, 46), 256u);
    ASSERT_TRUE(s_Tga.Encode(Pattern(R8, 3, 2, 1, 1), &tga));
    const Bytes t = BytesOf(tga);
    ASSERT_EQ(t.size(), 18u + 768 + 6);
    EXPECT_EQ(Bytes(t.begin(), t.begin() + 21), Hex("00 01 01 00 00 00 01 18 00 00 00 00 03 00 02 00 08 00 00 00 00"));
    EXPECT_EQ(Decode(s_Tga, t), Bytes());
}

TEST(Dds, Headers) {
    const struct {
        const char* Name;
        cFormat::Enum Format;
        int Depth, Levels;
        unsigned int Flags, WrittenDepth, WrittenLevels, PixelFlags, Code, Bits, Red, Green, Blue, Alpha, Caps, Caps2;
    } cases[] = {
        // clang-format off
        {"R8", R8, 1, 1, 0x1007, 0, 0, 0x20000, 0, 8, 255, 0, 0, 0, 0x1000, 0},
        {"Rg8, levels", Rg8, 1, 2, 0x21007, 0, 2, 0x20001, 0, 16, 255, 0xFF00, 255, 0xFF00, 0x401008, 0},
        {"Rgb8, volume", Rgb8, 2, 1, 0x801007, 2, 0, 0x40, 0, 24, 0xFF0000, 0xFF00, 255, 0, 0x1008, 0x200000},
        // The volume's bit, and one face short: what these files have always had.
        {"Rgba8, cube", Rgba8, 0, 1, 0x1007, 0, 0, 0x41, 0, 32, 0xFF0000, 0xFF00, 255, 0xFF000000, 0x1008, 0x20BE00},
        {"R16", R16, 1, 1, 0x1007, 0, 0, 0x20000, 0, 16, 0xFFFF, 0, 0, 0, 0x1000, 0},
        {"Dxt5", Dxt5, 1, 1, 0x1007, 0, 0, 4, 0x35545844, 0, 0, 0, 0, 0, 0x1000, 0},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        cFile file;
        ASSERT_TRUE(s_Dds.Encode(Pattern(c.Format, 4, 4, c.Depth, c.Levels), &file));
        Bytes expected(128);
        const unsigned int fields[][2] = {
            // clang-format off
            {0, 0x20534444}, {4, 124}, {8, c.Flags}, {12, 4}, {16, 4}, {24, c.WrittenDepth}, {28, c.WrittenLevels},
             {76, 32}, {80, c.PixelFlags}, {84, c.Code}, {88, c.Bits}, {92, c.Red}, {96, c.Green}, {100, c.Blue},
             {104, c.Alpha}, {108, c.Caps}, {112, c.Caps2},
            // clang-format on
        };
        for (const auto& field : fields) {
            expected = Set32(expected, field[0], field[1]);
        }
        Bytes header = BytesOf(file);
        header.resize(128);
        EXPECT_EQ(header, expected);
    }
    constexpr struct {
        cFormat::Enum Format;
        unsigned int Code; // D3DFORMAT's numbers
    } codes[] = {{Rg16, 34},  {Rgba16, 36}, {R16f, 111},    {Rg16f, 112},       {Rgba16f, 113},
                 {R32f, 114}, {Rg32f, 115}, {Rgba32f, 116}, {Dxt1, 0x31545844}, {Dxt3, 0x33545844}};
    for (const auto& c : codes) {
        cFile file;
        ASSERT_TRUE(s_Dds.Encode(Pattern(c.Format, 4, 4, 1, 1), &file));
        EXPECT_EQ(Get32(BytesOf(file), 84), c.Code);
    }
}

TEST(Dds, CubesAreStoredFaceByFace) { // in the file 2 by 2 and 1 by 1 of each face, in memory level by level
    const Bytes cube = Set32(Set32(Dds(0, 8, 2, 2), 28, 2), 112, 0x200);
    Bytes stored, expected;
    for (unsigned char face = 0; face < 6; face++) {
        stored = stored + Bytes{face, face, face, face, (unsigned char)(face + 10)};
        expected = expected + Bytes{face, face, face, face};
    }
    EXPECT_EQ(Decode(s_Dds, cube + stored), expected + Hex("0A 0B 0C 0D 0E 0F"));
}

TEST(ImageCodec, NothingWritesAnImageWithoutLevels) {
    cImage image(cFormat::Rgb8, 4, 4, 1, 0);
    cFile file;
    EXPECT_FALSE(cCodecBmp().Encode(image, &file));
    EXPECT_FALSE(cCodecTga().Encode(image, &file));
    EXPECT_FALSE(cCodecDds().Encode(image, &file));
    EXPECT_EQ(file.GetSize(), 0);
}

} // namespace
} // namespace trellis
