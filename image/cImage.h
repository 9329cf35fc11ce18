// The framework's one in-memory picture: all mip levels of a 1D, 2D, 3D or cube image in one block of pixels.
//
//     level 0                                   level 1          ...
//     slice or face 0 | slice or face 1 | ...   slice 0 | ...
//     row 0 (the BOTTOM one) | row 1 | ...
//     pixel 0 (the left one) | pixel 1 | ...    channels interleaved, nothing padded
//
// Level n has max(width >> n, 1) by max(height >> n, 1) by max(depth >> n, 1) pixels; a cube has six faces at every
// level. A slice of a compressed format is rows of 4 by 4 blocks, (w + 3) / 4 by (h + 3) / 4 of them.
#pragma once

#include "image/cDimension.h"
#include "image/cFormat.h"

namespace trellis {

class cRect;

/// A plain value: copying copies the pixels. Sizes are pixels; sums of bytes are ints, so an image is below 2 GiB.
class cImage {
public:
    enum ESetCtor { SetCtor };
    enum ECopyCtor { CopyCtor };

    static constexpr int CubeFaces = 6;

    cImage() = default; ///< Empty: every field is zero.
    cImage(cFormat::Enum format, int width, int height, int depth, int mipMapCount) {
        Create(format, width, height, depth, mipMapCount);
    }
    cImage(ESetCtor, unsigned char* pixels, cFormat::Enum format, int width, int height, int depth, int mipMapCount) {
        Set(pixels, format, width, height, depth, mipMapCount);
    }
    cImage(ECopyCtor, const unsigned char* pixels, cFormat::Enum format, int width, int height, int depth,
           int mipMapCount) {
        Copy(pixels, format, width, height, depth, mipMapCount);
    }
    cImage(const cImage& other) { Copy(other); }
    cImage(cImage&& other) noexcept { Swap(other); }
    cImage(const cImage& other, const cRect& rect) { Copy(other, rect); }
    ~cImage() { Free(); }

    cImage& operator=(const cImage& other) {
        Copy(other);
        return *this;
    }
    cImage& operator=(cImage&& other) noexcept {
        Swap(other);
        return *this;
    }
    void Swap(cImage& other) noexcept;

    /// Makes the image anew, its pixels unset. Dimensions as in the fields. @return the block
    unsigned char* Create(cFormat::Enum format, int width, int height, int depth, int mipMapCount);

    /// Takes over a block from `new unsigned char[]`, of the size that `Create` would make.
    void Set(unsigned char* pixels, cFormat::Enum format, int width, int height, int depth, int mipMapCount);

    /// Copies such a block.
    void Copy(const unsigned char* pixels, cFormat::Enum format, int width, int height, int depth, int mipMapCount);
    void Copy(const cImage& other);

    /// Cuts a rectangle out of level 0: its lower left corner and its sizes are truncated to pixels. Empty for a format
    /// above `Rgba32f`, and for a rectangle that is not inside `other`.
    void Copy(const cImage& other, const cRect& rect);
    void Free(); ///< Back to the empty image.

    // Fields

    int GetWidth() const { return m_Width; }
    int GetHeight() const { return m_Height; } ///< 0 for a 1D image.
    int GetDepth() const { return m_Depth; }   ///< 1 for 1D and 2D, 0 for a cube.
    cFormat::Enum GetFormat() const { return m_Format; }
    int GetMipMapCount() const { return m_MipMapCount; }
    bool IsEmpty() const { return !m_Pixels; }
    cDimension::Enum GetDimension() const; ///< `None` for an empty image.
    bool IsCube() const { return m_Depth == 0; }
    bool IsCompressed() const { return m_Format >= cFormat::Dxt1; }

    /// Address of a level; null when `level` is not below the number of levels.
    unsigned char* GetPixels(int level = 0) {
        return const_cast<unsigned char*>(static_cast<const cImage*>(this)->GetPixels(level));
    }
    const unsigned char* GetPixels(int level = 0) const;

    // Measures

    /// Bytes of the first `levels` levels; the sum stops behind the level of one pixel.
    ///
    /// @param width, height  of level 0, at least 1
    /// @param depth          0 means a cube
    /// @return saturated at INT_MAX; 0 for `levels` below 1
    static int CalcImageSize(cFormat::Enum format, int width, int height, int depth, int levels);

    /// The same in 64 bits, for sizes that come from a file.
    static long long CalcImageSize64(cFormat::Enum format, int width, int height, int depth, int levels);

    /// floor(log2(max(width, height))) + 1; 0 when both are below 1.
    int GetMipMapCountFromDimensions() const;

    /// Bytes of `levels` levels from `firstLevel` on. @param format  None: the image's own
    int GetMipMappedSize(int firstLevel = 0, int levels = 1, cFormat::Enum format = cFormat::None) const;
    int GetSliceSize(int level = 0, cFormat::Enum format = cFormat::None) const; ///< Bytes of one slice or face.
    int GetRowSize(int level = 0, cFormat::Enum format = cFormat::None) const;   ///< Of one row of pixels or blocks.
    int GetPixelCount(int firstLevel = 0, int levels = 1) const;                 ///< Depth and faces counted.

    // Channels, over all levels. False leaves the image as it was; all refuse formats above `Rgba32f`.

    bool SwapChannels(int a, int b); ///< The indexes are trusted.
    bool CopyChannel(int from, int to);
    bool InvertChannel(int channel); ///< Integers are complemented, floats become 1 - v.

    /// Keeps the channels that are told and packs them, in their order. @return false when none would be left
    bool RemoveChannels(bool keepRed, bool keepGreen, bool keepBlue, bool keepAlpha);

    /// To `R8` or `R16` by (77 r + 151 g + 28 b + 128) >> 8, for byte and 16-bit integer formats of three channels
    /// and more. Alpha is dropped.
    bool ToGrayScale();

    /// Converts between uncompressed colour formats, through floats in [0, 1] for the integer ones. Missing alpha is
    /// 1, one channel is grey, and a grey target is the luminance. An empty image stays empty, and that is true.
    bool ToFormat(cFormat::Enum format);

    // Shape

    /// Trilinear, corners on corners; bytes and 16-bit integers truncate, half floats take the nearest sample. One
    /// level is left. On false a compressed image is uncompressed and its lower levels are gone.
    bool Resize(int width, int height);

    /// Each side to the next power of two, or to the one below when that is nearer by the rule 3 p > 4 side.
    bool MakePowerOfTwo();

    /// Lays the slices of a one-level 3D image side by side.
    ///
    /// @param square  in a square of tiles instead of a row; their number must be a square
    /// @param step    every step-th slice; negative: each slice -step times
    /// @return false for what is no volume, a step of 0, no slice, depth formats, and compressed slices that end inside
    ///         a block
    bool Make2D(bool square, int step);

    /// Pastes an `Rgb8` image into this `Rgb8` one, its lower left corner at (x, y), clipped to this one.
    void MergeRgb8(const cImage& source, int x, int y);

    /// Becomes 64 by 64 pixels of seven levels, one colour each, compressed: shows which level a renderer picks.
    ///
    /// @param fileName  null, or where to save it
    void CreateSevenLods(const char* fileName);

    // Compression and derived levels

    /// `R8` and `Rgb8` to `Dxt1`, `Rgba8` to `Dxt5`; other formats stay.
    void Compress();

    /// `Dxt1` to `Rgb8`, `Dxt3` and `Dxt5` to `Rgba8`; other formats stay. Lower levels go where a side is no power
    /// of two.
    void Uncompress();

    /// Makes the lower levels anew by averaging, truncated. Sides are powers of two. Depth formats get the room alone.
    ///
    /// @return false for a compressed image
    bool CreateMipMaps(int levels);
    void RemoveMipMaps(); ///< All levels but the first.

    /// Turns a height map into a normal map, wrapping at the edges as a tile does. Lower levels go, sides become powers
    /// of two as by `MakePowerOfTwo`; volumes take a scale of 1.
    ///
    /// @param format     2D: `Rg8` (y, x) or `Rgba8` (x, y, z, height); 3D: `Rgb8` or `Rgba8`
    /// @param keepAlpha  an `Rgba8` image keeps its own alpha instead of the height
    bool ToNormalMap(cFormat::Enum format, float scale, bool keepAlpha);

    /// Mirrors top to bottom, at every level. False for depth and Pvr formats, and, with a warning, for a compressed
    /// image with a side that is no multiple of 4.
    bool Flip();

private:
    template <class T> unsigned char* Rescale(int width, int height) const;

    int m_Width = 0;
    int m_Height = 0;
    int m_Depth = 0;
    cFormat::Enum m_Format = cFormat::None;
    int m_MipMapCount = 0;
    unsigned char* m_Pixels = nullptr; // owned
};

} // namespace trellis
