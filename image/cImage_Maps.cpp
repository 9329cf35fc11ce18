#include "image/cImage.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <emmintrin.h>
#include <vector>

#include "foundation/cLog.h"
#include "image/Levels.h"

namespace trellis {

namespace {

// Mip maps

struct Extent {
    int Width, Height, Depth, Channels;

    int HalfWidth() const { return LevelSide(Width, 1); }
    int HalfHeight() const { return LevelSide(Height, 1); }
    int HalfDepth() const { return LevelSide(Depth, 1); }
};

/// Sums of eight samples: integers drop the fraction.
inline unsigned char Eighth(int sum, unsigned char) {
    return static_cast<unsigned char>(sum >> 3);
}
inline uint16_t Eighth(int sum, uint16_t) {
    return uint16_t(sum >> 3);
}
inline float Eighth(float sum, float) {
    return sum * 0.125f;
}

/// Elements of a level whose bytes all lie in the block.
template <class T> class Elements {
public:
    explicit Elements(unsigned char* begin) : m_Begin(begin) {}
    T Get(int i) const {
        T v;
        std::memcpy(&v, m_Begin + size_t(i) * sizeof(T), sizeof(T));
        return v;
    }
    void Set(int i, T v) const { std::memcpy(m_Begin + size_t(i) * sizeof(T), &v, sizeof(T)); }

private:
    unsigned char* m_Begin;
};

/// The words of four bytes from a place in the block on. Half floats are walked as if they were floats, which
/// scrambles them and runs past the end: there, words read as 0 and are dropped. Baked half-float images hold just
/// this, so it stays until their owners decide otherwise.
class BoundedWords {
public:
    BoundedWords(unsigned char* begin, const unsigned char* end) : m_Words(begin), m_Count(int((end - begin) / 4)) {}
    float Get(int i) const { return i < m_Count ? m_Words.Get(i) : 0; }
    void Set(int i, float v) const {
        if (i < m_Count) {
            m_Words.Set(i, v);
        }
    }

private:
    Elements<float> m_Words;
    int m_Count;
};

/// Averages two by two by two; where a side is 1, its sample is used twice.
///
/// @param first, end  rows of the result, counted over its slices
template <class Source> void HalveRows(const Source& from, const Source& to, const Extent& e, int first, int end) {
    const int c = e.Channels;
    const int dx = e.Width > 1 ? c : 0, dy = e.Height > 1 ? c * e.Width : 0,
              dz = e.Depth > 1 ? c * e.Width * e.Height : 0;
    int out = first * e.HalfWidth() * c;
    for (int row = first; row < end; row++) {
        const int y = row % e.HalfHeight() * 2, z = row / e.HalfHeight() * 2;
        for (int x = 0; x < e.HalfWidth(); x++) {
            int in = ((z * e.Height + y) * e.Width + x * 2) * c;
            for (int i = 0; i < c; i++, in++, out++) {
                const auto sum = from.Get(in) + from.Get(in + dx) + from.Get(in + dy) + from.Get(in + dx + dy) +
                                 from.Get(in + dz) + from.Get(in + dx + dz) + from.Get(in + dy + dz) +
                                 from.Get(in + dx + dy + dz);
                to.Set(out, Eighth(sum, from.Get(in)));
            }
        }
    }
}

template <class Source> void Halve(const Source& from, const Source& to, const Extent& e) {
    HalveRows(from, to, e, 0, e.HalfHeight() * e.HalfDepth());
}

__m128i Load128(const unsigned char* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

void Store32(unsigned char* to, __m128i v) {
    const int word = _mm_cvtsi128_si32(v);
    std::memcpy(to, &word, sizeof(word));
}

/// 16 sums of two rows, in 16 bits.
struct RowSums {
    __m128i Low, High;

    RowSums(const unsigned char* row0, const unsigned char* row1) {
        const __m128i zero = _mm_setzero_si128(), a = Load128(row0), b = Load128(row1);
        Low = _mm_add_epi16(_mm_unpacklo_epi8(a, zero), _mm_unpacklo_epi8(b, zero));
        High = _mm_add_epi16(_mm_unpackhi_epi8(a, zero), _mm_unpackhi_epi8(b, zero));
    }
};

/// Means of 16 bytes of two rows, that is of 16 / Channels pixels (5 of three channels), to half as many.
template <int Channels> void HalveGroup(const unsigned char* row0, const unsigned char* row1, unsigned char* to) {
    RowSums s(row0, row1);
    if constexpr (Channels == 3) { // two pixels out of twelve bytes; the last stored byte is written again by the next
        const __m128i second = _mm_or_si128(_mm_srli_si128(s.Low, 12), _mm_slli_si128(s.High, 4));
        const __m128i first = _mm_add_epi16(s.Low, _mm_srli_si128(s.Low, 6));
        const __m128i next = _mm_add_epi16(second, _mm_srli_si128(second, 6));
        const __m128i pixels = _mm_packus_epi16(_mm_srli_epi16(first, 2), _mm_srli_epi16(next, 2));
        Store32(to, pixels);
        Store32(to + 3, _mm_srli_si128(pixels, 8));
    } else {
        __m128i mean;
        if constexpr (Channels == 1) {
            const __m128i one = _mm_set1_epi16(1);
            mean = _mm_packs_epi32(_mm_madd_epi16(s.Low, one), _mm_madd_epi16(s.High, one));
        } else if constexpr (Channels == 2) { // a pixel is 32 bits: the even ones, and the odd ones
            const __m128 low = _mm_castsi128_ps(s.Low), high = _mm_castsi128_ps(s.High);
            mean = _mm_add_epi16(_mm_castps_si128(_mm_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0))),
                                 _mm_castps_si128(_mm_shuffle_ps(low, high, _MM_SHUFFLE(3, 1, 3, 1))));
        } else {
            mean = _mm_add_epi16(_mm_unpacklo_epi64(s.Low, s.High), _mm_unpackhi_epi64(s.Low, s.High));
        }
        mean = _mm_srli_epi16(mean, 2);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(mean, mean));
    }
}

/// One row of bytes out of two. Twice the four samples by eight is the four by four, so this is the plain walk's
/// result.
template <int Channels> void HalveByteRow(const unsigned char* row, int rowSize, int width, unsigned char* to) {
    constexpr int In = Channels == 3 ? 12 : 16; // bytes of a group
    int in = 0;
    for (; in + 16 <= rowSize; in += In, to += In / 2) {
        HalveGroup<Channels>(row + in, row + rowSize + in, to);
    }
    for (const int end = width / 2 * 2 * Channels; in < end; in += Channels) {
        for (int i = 0; i < Channels; i++, in++) {
            const unsigned char *a = row + in, *b = a + rowSize;
            *to++ = static_cast<unsigned char>((a[0] + a[Channels] + b[0] + b[Channels]) >> 2);
        }
    }
}

template <int Channels> void HalveByteRows(const unsigned char* from, unsigned char* to, const Extent& e) {
    const int rowSize = e.Width * Channels;
    for (int y = 0; y < e.HalfHeight(); y++) {
        HalveByteRow<Channels>(from + size_t(y) * 2 * size_t(rowSize), rowSize, e.Width,
                               to + size_t(y) * size_t(e.HalfWidth() * Channels));
    }
}

void HalveBytes(unsigned char* from, unsigned char* to, const Extent& e) {
    if (e.Depth > 1 || e.Width == 1 || e.Height == 1) {
        Halve(Elements<unsigned char>(from), Elements<unsigned char>(to), e);
    } else if (e.Channels == 1) {
        HalveByteRows<1>(from, to, e);
    } else if (e.Channels == 2) {
        HalveByteRows<2>(from, to, e);
    } else if (e.Channels == 3) {
        HalveByteRows<3>(from, to, e);
    } else {
        HalveByteRows<4>(from, to, e);
    }
}

/// @param end  behind the whole block
void HalveSlices(cFormat::Enum format, unsigned char* from, unsigned char* to, const Extent& e,
                 const unsigned char* end) {
    if (format <= cFormat::Rgba8) {
        HalveBytes(from, to, e);
    } else if (format <= cFormat::Rgba16) {
        Halve(Elements<uint16_t>(from), Elements<uint16_t>(to), e);
    } else if (format <= cFormat::Rgba16f) {
        Halve(BoundedWords(from, end), BoundedWords(to, end), e);
    } else {
        Halve(Elements<float>(from), Elements<float>(to), e);
    }
}

/// Level 0 in room for `levels` levels.
cImage WithLevels(const cImage& image, int levels) {
    cImage result(image.GetFormat(), image.GetWidth(), image.GetHeight(), image.GetDepth(), levels);
    const int size = image.GetMipMappedSize();
    if (image.GetFormat() >= cFormat::R16f && image.GetFormat() <= cFormat::Rgba16f) {
        // Their walk reads ahead of what it has written; the same input is to give the same bytes.
        std::memset(result.GetPixels(), 0, size_t(result.GetMipMappedSize(0, levels)));
    }
    if (size > 0) { // a depth format has no size
        std::memcpy(result.GetPixels(), image.GetPixels(), size_t(size));
    }
    return result;
}

// Normal map

constexpr int s_Reach = 2; // of the kernels to each side

/// The two kernels are products of a smoothing and a differentiating row of five, so a column's sums serve all pixels
/// near it.
struct ColumnSums {
    int Smooth, Slope; // for the x and for the y kernel
};

int Smooth(int a, int b, int c, int d, int e) {
    return a + 4 * b + 6 * c + 4 * d + e;
}

int Slope(int a, int b, int d, int e) {
    return a + 2 * b - 2 * d - e;
}

unsigned char ToByte(float v) {
    const float scaled = (v + 1) * 127.5f;
    return scaled > 0 ? static_cast<unsigned char>(std::min(scaled, 255.0f)) : 0; // 0 for no number as well
}

struct Normal {
    unsigned char X, Y, Z;
};

Normal MakeNormal(int xSum, int ySum, float z) {
    const float x = float(xSum) * 8.169935e-5f, y = float(ySum) * 8.169935e-5f; // 1 / (255 * 48)
    const float inv = 1 / std::sqrt(x * x + y * y + z * z);
    return {ToByte(x * inv), ToByte(y * inv), ToByte(z * inv)};
}

int Wrap(int i, int size) {
    return (i % size + size) % size;
}

/// Sums of the columns for the row `y`, wrapped around by `s_Reach` at both ends.
void SumColumns(const unsigned char* heights, int width, int height, int y, std::vector<ColumnSums>& sums) {
    const unsigned char* rows[2 * s_Reach + 1];
    for (int i = 0; i < 2 * s_Reach + 1; i++) { // the kernels' first row is y - 2
        rows[i] = heights + size_t(Wrap(y + i - s_Reach, height)) * size_t(width);
    }
    for (int i = 0; i < width + 2 * s_Reach; i++) {
        const int x = Wrap(i - s_Reach, width);
        sums[size_t(i)] = {Smooth(rows[0][x], rows[1][x], rows[2][x], rows[3][x], rows[4][x]),
                           Slope(rows[0][x], rows[1][x], rows[3][x], rows[4][x])};
    }
}

/// @param format  `Rg8` (y, x) or `Rgba8` (x, y, z, height)
void NormalSlice(const unsigned char* heights, int width, int height, float z, cFormat::Enum format,
                 unsigned char* out) {
    std::vector<ColumnSums> sums(size_t(width) + 2 * s_Reach);
    for (int y = 0; y < height; y++) {
        SumColumns(heights, width, height, y, sums);
        for (int x = 0; x < width; x++) {
            const ColumnSums* s = &sums[size_t(x)];
            const Normal n = MakeNormal(Slope(s[0].Smooth, s[1].Smooth, s[3].Smooth, s[4].Smooth),
                                        Smooth(s[0].Slope, s[1].Slope, s[2].Slope, s[3].Slope, s[4].Slope), z);
            if (format == cFormat::Rg8) { // y first: shaders read it as luminance and alpha
                *out++ = n.Y;
                *out++ = n.X;
            } else {
                *out++ = n.X;
                *out++ = n.Y;
                *out++ = n.Z;
                *out++ = heights[size_t(y) * size_t(width) + size_t(x)];
            }
        }
    }
}

cImage NormalMap(const cImage& heights, cFormat::Enum format, float scale) {
    cImage result(format, heights.GetWidth(), heights.GetHeight(), heights.GetDepth(), 1);
    const int width = LevelSide(heights.GetWidth(), 0), height = LevelSide(heights.GetHeight(), 0);
    const float z = scale * 128 / float(std::max(width, height));
    for (int slice = 0; slice < LevelSlices(heights, 0); slice++) {
        NormalSlice(heights.GetPixels() + slice * heights.GetSliceSize(), width, height, z, format,
                    result.GetPixels() + slice * result.GetSliceSize());
    }
    return result;
}

/// Volumes ignore the caller's scale: materials are tuned to slices of scale 1.
cImage NormalVolume(const cImage& heights) {
    cImage result(cFormat::Rgba8, heights.GetWidth(), heights.GetHeight(), heights.GetDepth(), 1);
    const int sliceSize = heights.GetSliceSize();
    for (int z = 0; z < heights.GetDepth(); z++) {
        cImage slice(cImage::CopyCtor, heights.GetPixels() + z * sliceSize, cFormat::R8, heights.GetWidth(),
                     heights.GetHeight(), 1, 1);
        slice.ToNormalMap(cFormat::Rgba8, 1, false);
        std::memcpy(result.GetPixels() + z * result.GetSliceSize(), slice.GetPixels(), size_t(result.GetSliceSize()));
    }
    return result;
}

void CopyAlpha(const cImage& from, cImage& to) {
    for (int i = 0, count = to.GetPixelCount(); i < count; i++) {
        to.GetPixels()[i * 4 + 3] = from.GetPixels()[i * 4 + 3];
    }
}

/// What `ToNormalMap` can make of what, so that a refusal comes before anything is changed.
bool CanBeNormalMap(const cImage& image, cFormat::Enum format) {
    const cFormat::Enum from = image.GetFormat();
    const bool isHeight = from == cFormat::R8 || from == cFormat::Rgb8 || from == cFormat::Rgba8 ||
                          (from >= cFormat::Dxt1 && from <= cFormat::Dxt5);
    const cFormat::Enum small = image.GetDepth() < 2 ? cFormat::Rg8 : cFormat::Rgb8;
    return image.GetMipMapCount() > 0 && isHeight && (format == small || format == cFormat::Rgba8);
}

// Flipping

void FlipUncompressedImage(unsigned char* destination, const unsigned char* source, int width, int height,
                           cFormat::Enum format) {
    const size_t rowSize = size_t(width) * size_t(cFormat::BytesPerPixel[format]);
    for (int y = 0; y < height; y++) {
        std::memcpy(destination + size_t(height - 1 - y) * rowSize, source + size_t(y) * rowSize, rowSize);
    }
}

/// Colour codes are a byte a row. Levels of 3 rows count as of 2.
void FlipColorCodes(unsigned char* codes, int height) {
    std::swap(codes[0], codes[height >= 4 ? 3 : 1]);
    if (height >= 4) {
        std::swap(codes[1], codes[2]);
    }
}

void FlipAlphas4Bit(unsigned char* block, int height) {
    uint16_t rows[4];
    std::memcpy(rows, block, sizeof(rows));
    std::swap(rows[0], rows[height >= 4 ? 3 : 1]);
    if (height >= 4) {
        std::swap(rows[1], rows[2]);
    }
    std::memcpy(block, rows, sizeof(rows));
}

/// 12 bits a row from bit 16 on. Below 4 rows the two upper ones become 0, which nothing shows.
void FlipAlphasInterpolated(unsigned char* block, int height) {
    uint64_t v;
    std::memcpy(&v, block, sizeof(v));
    const auto row = [&](int i) { return v >> (16 + 12 * i) & 0xFFF; };
    const uint64_t rows = height >= 4 ? row(3) | row(2) << 12 | row(1) << 24 | row(0) << 36 : row(1) | row(0) << 12;
    v = (v & 0xFFFF) | rows << 16;
    std::memcpy(block, &v, sizeof(v));
}

void FlipCompressedImage(unsigned char* destination, const unsigned char* source, int width, int height,
                         cFormat::Enum format) {
    const int blockSize = format == cFormat::Dxt1 ? 8 : 16;
    const int rows = (height + 3) / 4, columns = (width + 3) / 4, traded = height / 4; // a last part row stays
    for (int i = 0; i < rows; i++) {
        const size_t rowSize = size_t(columns) * size_t(blockSize);
        const int from = i < traded ? traded - 1 - i : i;
        std::memcpy(destination + size_t(i) * rowSize, source + size_t(from) * rowSize, rowSize);
    }
    if (height == 1) {
        return;
    }
    for (int i = 0; i < rows * columns; i++, destination += blockSize) {
        if (format == cFormat::Dxt3) {
            FlipAlphas4Bit(destination, height);
        } else if (format == cFormat::Dxt5) {
            FlipAlphasInterpolated(destination, height);
        }
        FlipColorCodes(destination + blockSize - 4, height);
    }
}

} // namespace

bool cImage::CreateMipMaps(int levels) {
    if (IsCompressed()) {
        return false;
    }
    if (m_MipMapCount < 1) {
        return true; // there is nothing to start from
    }
    levels = std::max(std::min(levels, GetMipMapCountFromDimensions()), 1); // level 0 is not given up
    if (levels != m_MipMapCount) {
        cImage result = WithLevels(*this, levels);
        Swap(result);
    }
    // Depth formats have room for their levels, and no more.
    for (int level = 1; m_Format <= cFormat::Rgba32f && level < levels; level++) {
        const int faces = IsCube() ? CubeFaces : 1;
        const Extent e = {LevelSide(m_Width, level - 1), LevelSide(m_Height, level - 1), LevelSide(m_Depth, level - 1),
                          cFormat::ChannelCount[m_Format]};
        for (int face = 0; face < faces; face++) {
            HalveSlices(m_Format, GetPixels(level - 1) + face * GetSliceSize(level - 1),
                        GetPixels(level) + face * GetSliceSize(level), e, m_Pixels + GetMipMappedSize(0, levels));
        }
    }
    return true;
}

void cImage::RemoveMipMaps() {
    if (m_MipMapCount > 1) {
        cImage result = WithLevels(*this, 1);
        Swap(result);
    }
}

bool cImage::ToNormalMap(cFormat::Enum format, float scale, bool keepAlpha) {
    if (!CanBeNormalMap(*this, format)) {
        return false;
    }
    Uncompress();
    RemoveMipMaps();
    if (!MakePowerOfTwo()) {
        return false;
    }
    cImage own;
    if (format == cFormat::Rgba8 && keepAlpha && m_Format == cFormat::Rgba8) {
        own = *this;
    }
    if (m_Format != cFormat::R8 && !ToGrayScale()) {
        return false;
    }
    cImage result = m_Depth < 2 ? NormalMap(*this, format, scale) : NormalVolume(*this);
    Swap(result);
    if (!own.IsEmpty()) {
        CopyAlpha(own, *this);
    }
    return format != cFormat::Rgb8 || RemoveChannels(true, true, true, false);
}

bool cImage::Flip() {
    if (m_Format >= cFormat::Depth16 && m_Format <= cFormat::Depth24Stencil8) {
        return false;
    }
    if (m_Format == cFormat::Pvr4Rgb || m_Format == cFormat::Pvr4Rgba) {
        return false; // their blocks reach into one another
    }
    if (IsCompressed() && (m_Width % 4 != 0 || m_Height % 4 != 0)) {
        cLog::Warning("Compressed images must have dimensions that are multiples of 4");
        return false;
    }
    if (!m_Pixels || (m_Height <= 1 && m_Depth == 1)) {
        return true;
    }
    cImage result(m_Format, m_Width, m_Height, m_Depth, m_MipMapCount);
    const unsigned char* source = m_Pixels;
    unsigned char* destination = result.m_Pixels;
    ForEachSlice(*this, [&](int level, int width, int height) {
        const auto flip = IsCompressed() ? FlipCompressedImage : FlipUncompressedImage;
        flip(destination, source, width, height, m_Format);
        source += GetSliceSize(level);
        destination += GetSliceSize(level);
    });
    Swap(result);
    return true;
}

} // namespace trellis
