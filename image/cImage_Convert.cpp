// Operations of `cImage` that change its shape.
#include "files/cIO.h"
#include "image/cImage.h"
#include "math/cMath.h"
#include "math/cRect.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <iterator>
#include <type_traits>
#include <utility>
#include <vector>

namespace trellis {

namespace {

/// The pair of source samples that a target sample lies between.
struct Tap {
    int First, Second;
    float Fraction; // the weight of the second
};

std::vector<Tap> MakeTaps(int size, int newSize) {
    std::vector<Tap> taps(static_cast<size_t>(newSize));
    const float ratio = float(size - 1) / float(std::max(newSize - 1, 1));
    for (int i = 0; i < newSize; i++) {
        const float at = float(i) * ratio;
        const int first = std::min(cMath::TruncateToInt(at), size - 1);
        taps[size_t(i)] = {first, std::min(first + 1, size - 1), at - float(first)};
    }
    if (newSize > 1) { // the rounded ratio may fall short of the corner, and bytes would be truncated one below it
        taps.back() = {size - 1, size - 1, 0};
    }
    return taps;
}

/// Infinite and undefined neighbours without weight must not count.
float Mix(float a, float b, float fraction) {
    // Not a + (b - a) * fraction: the difference of two large floats is infinite. Equal ones stay exactly what they
    // are.
    return fraction == 0 || a == b ? a : a * (1 - fraction) + b * fraction;
}

/// Position of pixel rows in a block.
struct Grid {
    size_t Width, Height, Channels;
    size_t Row(int y, int z) const { return (size_t(z) * Height + size_t(y)) * Width * Channels; }
};

/// One row from the two that it lies between. The depth stays, so slices are never mixed.
template <class T>
void Interpolate(const T* lower, const T* upper, float fraction, size_t channels, const std::vector<Tap>& xs, T* out) {
    for (const Tap& x : xs) {
        const size_t first = size_t(x.First) * channels, second = size_t(x.Second) * channels;
        for (size_t c = 0; c < channels; c++) {
            const float low = Mix(float(lower[first + c]), float(lower[second + c]), x.Fraction);
            const float high = Mix(float(upper[first + c]), float(upper[second + c]), x.Fraction);
            *out++ = T(Mix(low, high, fraction)); // truncates, on purpose
        }
    }
}

template <class T>
void TakeNearest(const T* source, const Grid& grid, T* out, size_t width, size_t height, size_t depth) {
    // Integer arithmetic that never reaches the last sample: stored images were made so.
    const auto near = [](size_t i, size_t size, size_t newSize) {
        return size_t((unsigned long long)i * (size - 1) / newSize);
    };
    for (size_t z = 0; z < depth; z++) {
        for (size_t y = 0; y < height; y++) {
            const T* row = source + grid.Row(int(near(y, grid.Height, height)), int(near(z, depth, depth)));
            for (size_t x = 0; x < width; x++, out += grid.Channels) {
                std::copy_n(row + near(x, grid.Width, width) * grid.Channels, grid.Channels, out);
            }
        }
    }
}

/// The next power of two at or above the side, or the one below when that is nearer by the rule.
int NearPowerOfTwo(int side) {
    long long p = 1;
    while (p < side) {
        p *= 2;
    }
    return side < 2 ? side : int(3 * p > 4LL * side || p > INT_MAX ? p / 2 : p);
}

} // namespace

void cImage::Copy(const cImage& other, const cRect& rect) {
    cImage cut;
    const int x = cMath::TruncateToInt(rect.x0), y = cMath::TruncateToInt(rect.y0);
    const int width = cMath::TruncateToInt(rect.x1 - rect.x0), height = cMath::TruncateToInt(rect.y1 - rect.y0);
    const bool inside = x >= 0 && y >= 0 && width > 0 && height > 0 && width <= other.m_Width - x &&
                        height <= std::max(other.m_Height, 1) - y;
    if (other.GetPixels() && other.m_Format >= cFormat::None && other.m_Format <= cFormat::Rgba32f && inside) {
        unsigned char* out = cut.Create(other.m_Format, width, height, 1, 1);
        const auto rowSize = size_t(cut.GetRowSize()), sourceSize = size_t(other.GetRowSize());
        const unsigned char* in =
            other.m_Pixels + size_t(y) * sourceSize + size_t(x) * size_t(cFormat::BytesPerPixel[other.m_Format]);
        for (int row = 0; row < height; row++, in += sourceSize, out += rowSize) {
            std::memcpy(out, in, rowSize);
        }
    }
    Swap(cut);
}

template <class T> unsigned char* cImage::Rescale(int width, int height) const {
    const int oldHeight = std::max(m_Height, 1), depth = std::max(m_Depth, 1);
    const auto channels = size_t(cFormat::ChannelCount[m_Format]);
    cImage made(m_Format, width, height, depth, 1);
    const Grid grid = {size_t(m_Width), size_t(oldHeight), channels};
    const T* source = reinterpret_cast<const T*>(m_Pixels);
    T* out = reinterpret_cast<T*>(made.m_Pixels);
    // Half floats pass here as words and cannot be weighed as such.
    if (std::is_same_v<T, unsigned short> && m_Format >= cFormat::R16f) {
        TakeNearest(source, grid, out, size_t(width), size_t(height), size_t(depth));
    } else {
        const std::vector<Tap> xs = MakeTaps(m_Width, width), ys = MakeTaps(oldHeight, height);
        for (int z = 0; z < depth; z++) {
            for (const Tap& y : ys) {
                Interpolate(source + grid.Row(y.First, z), source + grid.Row(y.Second, z), y.Fraction, channels, xs,
                            out);
                out += size_t(width) * channels;
            }
        }
    }
    return std::exchange(made.m_Pixels, nullptr);
}

bool cImage::Resize(int width, int height) {
    if (IsCompressed()) {
        Uncompress();
    }
    RemoveMipMaps();
    if (!GetPixels() || m_Format > cFormat::Rgba32f || IsCube() || m_Width < 1 || width < 1 || height < 0) {
        return false;
    }
    const int rows = std::max(height, 1); // a 1D image stays one
    unsigned char* block = m_Format <= cFormat::Rgba8     ? Rescale<unsigned char>(width, rows)
                           : m_Format <= cFormat::Rgba16f ? Rescale<unsigned short>(width, rows)
                                                          : Rescale<float>(width, rows);
    Set(block, m_Format, width, height, m_Depth, m_MipMapCount);
    return true;
}

bool cImage::MakePowerOfTwo() {
    const int width = NearPowerOfTwo(m_Width), height = NearPowerOfTwo(m_Height);
    return (width == m_Width && height == m_Height) || Resize(width, height);
}

bool cImage::Make2D(bool square, int step) {
    if (!GetPixels() || m_Depth < 2 || step == 0 || m_Format <= cFormat::None || m_Format >= cFormat::Count ||
        (m_Format >= cFormat::Depth16 && m_Format <= cFormat::Depth24Stencil8)) {
        return false;
    }
    const int width = std::max(m_Width, 1), height = std::max(m_Height, 1);
    const long long tiles = step > 0 ? m_Depth / step : m_Depth * -(long long)step;
    const auto rows = square ? (long long)std::floor(std::sqrt(double(tiles)) + 0.5) : 1;
    if (tiles < 1 || (square && rows * rows != tiles)) {
        return false;
    }
    const long long columns = tiles / rows, newWidth = width * columns, newHeight = height * rows;
    // Blocks that a tile does not fill would push its neighbours out of line.
    if (IsCompressed() && ((columns > 1 && width % 4 != 0) || (rows > 1 && height % 4 != 0))) {
        return false;
    }
    if (newWidth > INT_MAX || newHeight > INT_MAX) {
        return false;
    }
    cImage made(m_Format, int(newWidth), int(newHeight), 1, m_MipMapCount);
    const int blockRows = IsCompressed() ? (height + 3) / 4 : height;
    const size_t rowSize =
        IsCompressed() ? size_t((width + 3) / 4) * (m_Format == cFormat::Dxt3 || m_Format == cFormat::Dxt5 ? 16 : 8)
                       : size_t(width) * size_t(cFormat::BytesPerPixel[m_Format]);
    const auto total = size_t(CalcImageSize(m_Format, int(newWidth), int(newHeight), 1, m_MipMapCount));
    const size_t written = rowSize * size_t(blockRows) * size_t(tiles);
    std::memset(made.m_Pixels + written, 0, total - written); // levels that the caller is to make anew
    for (long long tile = 0; tile < tiles; tile++) {
        const long long slice = step > 0 ? tile * step : tile / -(long long)step;
        const unsigned char* in = m_Pixels + size_t(slice) * size_t(blockRows) * rowSize;
        unsigned char* out =
            made.m_Pixels +
            (size_t(tile / columns) * size_t(blockRows) * size_t(columns) + size_t(tile % columns)) * rowSize;
        for (int row = 0; row < blockRows; row++, in += rowSize, out += rowSize * size_t(columns)) {
            std::memcpy(out, in, rowSize);
        }
    }
    Swap(made);
    return true;
}

void cImage::MergeRgb8(const cImage& source, int x, int y) {
    if (m_Format != cFormat::Rgb8 || source.m_Format != cFormat::Rgb8 || !GetPixels() || !source.GetPixels()) {
        return;
    }
    if (&source == this) {
        MergeRgb8(cImage(source), x, y); // rows that are pasted over would be read again
        return;
    }
    constexpr int pixelSize = 3;
    const auto firstX = std::max(0LL, -(long long)x), firstY = std::max(0LL, -(long long)y); // in the source
    const auto lastX = std::min<long long>(source.m_Width, (long long)m_Width - x);
    const auto lastY = std::min<long long>(std::max(source.m_Height, 1), (long long)std::max(m_Height, 1) - y);
    if (firstX >= lastX) {
        return;
    }
    for (long long row = firstY; row < lastY; row++) {
        unsigned char* out = m_Pixels + (size_t(row + y) * size_t(m_Width) + size_t(firstX + x)) * pixelSize;
        const unsigned char* in = source.m_Pixels + (size_t(row) * size_t(source.m_Width) + size_t(firstX)) * pixelSize;
        std::memcpy(out, in, size_t(lastX - firstX) * pixelSize);
    }
}

void cImage::CreateSevenLods(const char* fileName) {
    static constexpr unsigned char s_Colors[][3] = {{255, 0, 0}, {255, 127, 0}, {255, 255, 0}, {0, 255, 0},
                                                    {0, 0, 255}, {75, 0, 130},  {127, 0, 255}};
    constexpr int side = 64, levels = int(std::size(s_Colors));
    static_assert(side >> (levels - 1) == 1, "a level for each colour, down to one pixel");
    unsigned char* p = Create(cFormat::Rgb8, side, side, 1, levels);
    for (int level = 0; level < levels; level++) {
        for (int i = GetPixelCount(level); i > 0; i--, p += 3) {
            std::copy_n(s_Colors[level], 3, p);
        }
    }
    Compress();
    if (fileName) {
        cIO::SaveImage(fileName, *this);
    }
}

} // namespace trellis
