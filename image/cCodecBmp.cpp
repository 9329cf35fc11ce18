#include "image/cCodecBmp.h"

#include <climits>
#include <cstring>

#include "files/cFile.h"
#include "image/CodecBytes.h"

namespace trellis {

namespace {

constexpr int s_FileHeaderSize = 14, s_InfoHeaderSize = 40;
constexpr int s_Magic = 19778; // "BM"
constexpr int s_Plain = 0, s_BitFields = 3;
constexpr int s_GrayColors = 256;

constexpr long long RoundUpTo4(long long size) {
    return (size + 3) / 4 * 4;
}

/// Rows of an image and of its file, in the order of the file.
struct Rows {
    unsigned char* Target;
    long long TargetStep; // negative for a file whose first row is the top one
    const unsigned char* Source;
    long long SourceStep;
    int Width;
    int Height;

    unsigned char* TargetAt(int y) const { return Target + ptrdiff_t(y * TargetStep); }
    const unsigned char* SourceAt(int y) const { return Source + ptrdiff_t(y * SourceStep); }
};

/// Bytes of a row in the file, its padding included.
long long FileRowBytes(int bits, int width) {
    return RoundUpTo4(((long long)width * bits + 7) / 8);
}

/// @param palette  `colors` entries of blue, green, red and a byte that does not count
/// @return false at an index past the palette's end
template <int Bits> bool LoadPaletted(const Rows& rows, const unsigned char* palette, long long colors) {
    unsigned char rgb[1 << Bits][4] = {};
    const int count = colors < 1 << Bits ? int(colors) : 1 << Bits;
    CopySwapped(rgb[0], palette, count, 4);
    for (int y = 0; y < rows.Height; y++) {
        const unsigned char* source = rows.SourceAt(y);
        unsigned char* target = rows.TargetAt(y);
        for (int x = 0; x < rows.Width; x++) {
            // The leftmost pixel is in the highest bits.
            constexpr int PerByte = 8 / Bits;
            const int index = source[x / PerByte] >> (PerByte - 1 - x % PerByte) * Bits & ((1 << Bits) - 1);
            if (index >= count) {
                return false;
            }
            if (x < rows.Width - 1) {
                std::memcpy(target, rgb[index], 4); // the fourth byte is the next pixel's, who writes it again
            } else {
                std::memcpy(target, rgb[index], 3);
            }
            target += 3;
        }
    }
    return true;
}

bool LoadPaletted1(const Rows& rows, const unsigned char* palette, long long colors) {
    return LoadPaletted<1>(rows, palette, colors);
}
bool LoadPaletted4(const Rows& rows, const unsigned char* palette, long long colors) {
    return LoadPaletted<4>(rows, palette, colors);
}
bool LoadPaletted8(const Rows& rows, const unsigned char* palette, long long colors) {
    return LoadPaletted<8>(rows, palette, colors);
}

void LoadTrueColor24(const Rows& rows) {
    for (int y = 0; y < rows.Height; y++) {
        CopySwapped(rows.TargetAt(y), rows.SourceAt(y), rows.Width, 3);
    }
}

void LoadTrueColor32(const Rows& rows) {
    for (int y = 0; y < rows.Height; y++) {
        CopySwapped(rows.TargetAt(y), rows.SourceAt(y), rows.Width, 4);
    }
}

bool LoadPixels(int bits, const Rows& rows, const unsigned char* palette, long long colors) {
    switch (bits) {
    case 1:
        return LoadPaletted1(rows, palette, colors);
    case 4:
        return LoadPaletted4(rows, palette, colors);
    case 8:
        return LoadPaletted8(rows, palette, colors);
    case 24:
        LoadTrueColor24(rows);
        return true;
    default:
        LoadTrueColor32(rows);
        return true;
    }
}

void WriteHeaders(cFile* file, const cImage& image, int bits, int dataOffset, int colors, int imageSize) {
    file->WriteWord(s_Magic);
    file->WriteInt(dataOffset + imageSize);
    file->WriteInt(0);
    file->WriteInt(dataOffset);
    file->WriteInt(s_InfoHeaderSize);
    file->WriteInt(image.GetWidth());
    file->WriteInt(image.GetHeight());
    file->WriteWord(1); // planes
    file->WriteWord((unsigned short)bits);
    file->WriteInt(s_Plain);
    file->WriteInt(imageSize);
    file->WriteInt(0); // resolution
    file->WriteInt(0);
    file->WriteInt(colors);
    file->WriteInt(0);
}

} // namespace

bool cCodecBmp::Decode(const cFile& file, cImage* out) {
    out->Free();
    const unsigned char* header = TakeBytes(file, s_FileHeaderSize);
    if (!header || WordAt(header) != s_Magic) {
        return false;
    }
    const unsigned char* info = TakeBytes(file, s_InfoHeaderSize);
    if (!info || IntAt(info) != s_InfoHeaderSize || WordAt(info + 12) != 1) {
        return false;
    }
    const int width = IntAt(info + 4), height = IntAt(info + 8), bits = WordAt(info + 14);
    // The masks of bit fields are not honoured: who writes 32 bits with them means blue, green, red and alpha anyway.
    const int compression = IntAt(info + 16);
    if ((bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32) ||
        (compression != s_Plain && compression != s_BitFields) || width < 1 || height == 0 || height == INT_MIN) {
        return false;
    }
    long long colors = 0;
    const unsigned char* palette = nullptr;
    if (bits <= 8) {
        const int used = IntAt(info + 32);
        colors = used == 0 ? 1 << bits : used;
        if (colors < 0 || !(palette = TakeBytes(file, colors * 4))) {
            return false;
        }
    }
    // Pixels are taken to follow here, whatever their offset in the header says: files in use have it wrong.
    const bool topDown = height < 0;
    const int rows = topDown ? -height : height;
    const long long rowBytes = FileRowBytes(bits, width);
    const unsigned char* source = rows <= BytesLeft(file) / rowBytes ? TakeBytes(file, rowBytes * rows) : nullptr;
    unsigned char* target =
        source ? CreatePixels(out, bits == 32 ? cFormat::Rgba8 : cFormat::Rgb8, width, rows) : nullptr;
    if (!target) {
        return false;
    }
    const long long step = out->GetRowSize();
    const Rows all = {topDown ? target + ptrdiff_t((rows - 1) * step) : target,
                      topDown ? -step : step,
                      source,
                      rowBytes,
                      width,
                      rows};
    if (!LoadPixels(bits, all, palette, colors)) {
        out->Free();
        return false;
    }
    return true;
}

bool cCodecBmp::Encode(const cImage& image, cFile* out) {
    const cFormat::Enum format = image.GetFormat();
    const int width = image.GetWidth(), height = image.GetHeight();
    if ((format != cFormat::R8 && format != cFormat::Rgb8 && format != cFormat::Rgba8) || !image.GetPixels()) {
        return false;
    }
    const int channels = cFormat::ChannelCount[format];
    const int colors = format == cFormat::R8 ? s_GrayColors : 0;
    const int dataOffset = s_FileHeaderSize + s_InfoHeaderSize + colors * 4;
    // Gray rows are not padded, against the format: files of the kind are around, and their readers expect it.
    const long long rowBytes = format == cFormat::R8 ? width : RoundUpTo4((long long)width * channels);
    if (width < 0 || height < 0 || (height > 0 && rowBytes > (INT_MAX - dataOffset) / height)) {
        return false;
    }
    WriteHeaders(out, image, channels * 8, dataOffset, colors, int(rowBytes * height));
    const unsigned char* pixels = image.GetPixels();
    if (format == cFormat::R8) {
        for (int i = 0; i < colors; i++) {
            const unsigned char entry[] = {(unsigned char)i, (unsigned char)i, (unsigned char)i, 0};
            out->WriteBytes(entry, 4);
        }
        out->WriteBytes(pixels, width * height);
        return true;
    }
    const unsigned char padding[4] = {};
    for (int y = 0; y < height; y++) {
        WriteSwapped(out, pixels + size_t(y) * size_t(width) * size_t(channels), width, channels);
        out->WriteBytes(padding, int(rowBytes - (long long)width * channels));
    }
    return true;
}

} // namespace trellis
