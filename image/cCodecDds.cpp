#include "image/cCodecDds.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "files/cFile.h"
#include "image/CodecBytes.h"
#include "image/Levels.h"

namespace trellis {

namespace {

constexpr int s_HeaderSize = 128; // the magic included

constexpr uint32_t Code(const char (&s)[5]) {
    return uint32_t(s[0]) | uint32_t(s[1]) << 8 | uint32_t(s[2]) << 16 | uint32_t(s[3]) << 24;
}
constexpr uint32_t s_Magic = Code("DDS ");

constexpr struct {
    uint32_t Code;
    cFormat::Enum Format;
} s_Codes[] = {
    {34, cFormat::Rg16},           {36, cFormat::Rgba16},         {111, cFormat::R16f},
    {112, cFormat::Rg16f},         {113, cFormat::Rgba16f},       {114, cFormat::R32f},
    {115, cFormat::Rg32f},         {116, cFormat::Rgba32f},       {Code("DXT1"), cFormat::Dxt1},
    {Code("DXT3"), cFormat::Dxt3}, {Code("DXT5"), cFormat::Dxt5},
};

/// Fields of the header, as 32-bit words.
enum Field {
    Magic,
    Size,
    Flags,
    Height,
    Width,
    Pitch,
    Depth,
    Levels, // 11 words not in use
    PixelSize = 19,
    PixelFlags,
    FourCode,
    Bits,
    RedMask,
    GreenMask,
    BlueMask,
    AlphaMask,
    Caps,
    Caps2,
    FieldCount = s_HeaderSize / 4
};

constexpr uint32_t s_CubeCaps = 0x200;
constexpr uint32_t s_VolumeCaps = 0x200000;

// What cubes are written with. It has the volume's bit and lacks one face's; existing files hold it, and new ones are
// to be the same byte for byte.
constexpr uint32_t s_WrittenCubeCaps = 0x20BE00;

/// @return None for what is not supported
cFormat::Enum FormatOf(const uint32_t* header) {
    for (const auto& row : s_Codes) {
        if (row.Code == header[FourCode]) {
            return row.Format;
        }
    }
    switch (header[Bits]) { // the flags are not asked: writers disagree about them
    case 8:
        return cFormat::R8;
    case 16:
        return header[AlphaMask] == 0xFF00 ? cFormat::Rg8 : cFormat::R16;
    case 24:
        return cFormat::Rgb8;
    case 32:
        return cFormat::Rgba8;
    default:
        return cFormat::None;
    }
}

/// @return 0 for what goes by masks instead
uint32_t CodeOf(cFormat::Enum format) {
    for (const auto& row : s_Codes) {
        if (row.Format == format) {
            return row.Code;
        }
    }
    return 0;
}

bool IsFlipped(const cImage& image) {
    return image.GetDimension() == cDimension::_2D && image.GetHeight() >= 2;
}

/// Calls f(offset into the image's block, bytes) in the order of a file: a cube is stored there face by face, each with
/// all its levels, and all else as in memory.
template <class F> void ForEachRun(const cImage& image, int levels, F&& f) {
    if (!image.IsCube()) {
        f(0, image.GetMipMappedSize(0, levels));
        return;
    }
    for (int face = 0; face < cImage::CubeFaces; face++) {
        for (int level = 0; level < levels; level++) {
            const int bytes = image.GetSliceSize(level);
            f(image.GetPixels(level) - image.GetPixels() + ptrdiff_t(face) * bytes, bytes);
        }
    }
}

void FillPixelFormat(cFormat::Enum format, uint32_t* header) {
    header[PixelSize] = 32;
    if (format > cFormat::R16) {
        header[PixelFlags] = 4;
        header[FourCode] = CodeOf(format);
        return;
    }
    const int channels = cFormat::ChannelCount[format];
    header[PixelFlags] = (channels <= 2 ? 0x20000 : 0x40) | (channels % 2 == 0 ? 1 : 0);
    header[Bits] = format == cFormat::R16 ? 16 : uint32_t(channels) * 8;
    header[RedMask] = format == cFormat::R16 ? 0xFFFF : channels <= 2 ? 255 : 0xFF0000;
    if (channels > 1) {
        // Two channels have the masks of four and of luminance at once; readers tell them by the alpha mask.
        header[GreenMask] = 0xFF00;
        header[BlueMask] = 255;
        header[AlphaMask] = channels == 4 ? 0xFF000000 : channels == 2 ? 0xFF00 : 0;
    }
}

} // namespace

bool cCodecDds::Decode(const cFile& file, cImage* out) {
    out->Free();
    const unsigned char* bytes = TakeBytes(file, s_HeaderSize);
    if (!bytes) {
        return false;
    }
    uint32_t header[FieldCount];
    for (int i = 0; i < FieldCount; i++) {
        header[i] = UintAt(bytes + i * 4);
    }
    const int width = int(header[Width]), height = int(header[Height]);
    const int depth = header[Caps2] & s_CubeCaps ? 0 : header[Depth] == 0 ? 1 : int(header[Depth]);
    const int levels = header[Levels] == 0 ? 1 : int(header[Levels]);
    const cFormat::Enum format = FormatOf(header);
    // A height of 0 is how a 1D image is written, and nothing else.
    if (header[Magic] != s_Magic || width < 1 || height < (depth == 1 ? 0 : 1) || depth < 0 || levels < 1 ||
        format == cFormat::None) {
        return false;
    }
    const int stored = CutLevelCount(levels, width, height, depth);
    const unsigned char* source = TakeBytes(file, cImage::CalcImageSize64(format, width, height, depth, stored));
    if (!source) {
        return false;
    }
    unsigned char* target = out->Create(format, width, height, depth, stored);
    const bool swap = (format == cFormat::Rgb8 || format == cFormat::Rgba8) && header[BlueMask] == 255;
    const int channels = cFormat::ChannelCount[format];
    ForEachRun(*out, stored, [&](ptrdiff_t offset, int size) {
        if (swap) {
            CopySwapped(target + offset, source, size / channels, channels);
        } else {
            std::memcpy(target + offset, source, size_t(size));
        }
        source += size;
    });
    if (IsFlipped(*out)) {
        out->Flip(); // may fail for blocks, which then stay as they are
    }
    return true;
}

bool cCodecDds::Encode(const cImage& image, cFile* out) {
    const cFormat::Enum format = image.GetFormat();
    if (!image.GetPixels() || image.GetWidth() < 1 || format < cFormat::R8 || format >= cFormat::Count ||
        (format > cFormat::R16 && CodeOf(format) == 0)) {
        return false;
    }
    // An image may claim more levels than its block holds.
    const int depth = image.GetDepth();
    const int levels = CutLevelCount(image.GetMipMapCount(), image.GetWidth(), image.GetHeight(), depth);
    uint32_t header[FieldCount] = {};
    header[Magic] = s_Magic;
    header[Size] = s_HeaderSize - 4;
    header[Flags] = 0x1007 | (levels > 1 ? 0x20000 : 0) | (depth > 1 ? 0x800000 : 0);
    header[Height] = uint32_t(image.GetHeight());
    header[Width] = uint32_t(image.GetWidth());
    header[Depth] = depth > 1 ? uint32_t(depth) : 0;
    header[Levels] = levels > 1 ? uint32_t(levels) : 0;
    FillPixelFormat(format, header);
    header[Caps] = levels > 1 ? 0x401008 : depth == 1 ? 0x1000 : 0x1008;
    header[Caps2] = depth == 0 ? s_WrittenCubeCaps : depth > 1 ? s_VolumeCaps : 0;
    out->WriteBytes(header, s_HeaderSize);

    cImage flipped;
    const bool flip = IsFlipped(image);
    if (flip) {
        flipped = image;
        flipped.Flip();
    }
    const cImage& source = flip ? flipped : image;
    const int channels = cFormat::ChannelCount[format];
    ForEachRun(source, levels, [&](ptrdiff_t offset, int size) {
        if (format == cFormat::Rgb8 || format == cFormat::Rgba8) {
            WriteSwapped(out, source.GetPixels() + offset, size / channels, channels);
        } else {
            out->WriteBytes(source.GetPixels() + offset, size);
        }
    });
    return true;
}

} // namespace trellis
