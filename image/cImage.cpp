#include "image/cImage.h"

#include "image/Levels.h"
#include "image/PixelConvert.h"
#include "math/cMath.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

namespace trellis {

namespace {

constexpr int s_MinPvrBytes = 32; // of a level; the decoder of the hardware reads whole groups of blocks

bool IsPvr(int format) {
    return format == cFormat::Pvr4Rgb || format == cFormat::Pvr4Rgba;
}

bool IsColor(int format) {
    return format >= cFormat::None && format <= cFormat::Rgba32f;
}

int BlockBytes(int format) {
    return format == cFormat::Dxt3 || format == cFormat::Dxt5 ? 16 : 8;
}

int SaturateToInt(long long v) {
    return int(std::clamp<long long>(v, INT_MIN, INT_MAX));
}

/// a * b and a + b for a and b of one sign; beyond 64 bits the end of the range on that side.
long long Times(long long a, long long b) {
    long long r;
    return !__builtin_mul_overflow(a, b, &r) ? r : (a < 0) == (b < 0) ? LLONG_MAX : LLONG_MIN;
}
long long Plus(long long a, long long b) {
    long long r;
    return !__builtin_add_overflow(a, b, &r) ? r : a < 0 ? LLONG_MIN : LLONG_MAX;
}

/// A row of pixels or of blocks, without the minimum of the Pvr formats. Negative for the depth formats, whose table
/// entry is -1.
long long RowBytes(int format, int width) {
    if (format < cFormat::None || format >= cFormat::Count) {
        return 0;
    }
    return format < cFormat::Dxt1 ? (long long)cFormat::BytesPerPixel[format] * width
                                  : ((long long)width + 3) / 4 * BlockBytes(format);
}

long long SliceBytes(int format, int width, int height) {
    return Times(RowBytes(format, width), format < cFormat::Dxt1 ? height : ((long long)height + 3) / 4);
}

/// What `Create` would allocate.
/// @throw std::bad_array_new_length  for a size beyond an int
size_t BlockSize(cFormat::Enum format, int width, int height, int depth, int levels) {
    const long long size = cImage::CalcImageSize64(format, width, height, depth, levels);
    if (size > INT_MAX) {
        throw std::bad_array_new_length();
    }
    return size_t(std::max(size, 0LL));
}

/// Calls op(T()) with the type of the format's channels; halves go as words.
template <class Op> void WithElement(int format, Op op) {
    if (format <= cFormat::Rgba8) {
        op((unsigned char)0);
    } else if (format <= cFormat::Rgba16f) {
        op((unsigned short)0);
    } else {
        op(0.0f);
    }
}

/// Exchanges two bytes, a < b, of every group of four.
void SwapBytesOfFour(unsigned char* p, size_t count, int a, int b) {
    const int up = 8 * a, apart = 8 * (b - a);
#if defined(__SSE2__)
    const __m128i mask = _mm_set1_epi32(255 << up), shift = _mm_cvtsi32_si128(apart);
    for (; count >= 4; count -= 4, p += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i differ = _mm_and_si128(_mm_xor_si128(v, _mm_srl_epi32(v, shift)), mask);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p),
                         _mm_xor_si128(v, _mm_xor_si128(differ, _mm_sll_epi32(differ, shift))));
    }
#endif
    for (; count > 0; count--, p += 4) {
        uint32_t v;
        std::memcpy(&v, p, 4);
        const uint32_t differ = (v ^ v >> apart) & 255u << up;
        v ^= differ ^ differ << apart;
        std::memcpy(p, &v, 4);
    }
}

template <int Kept, class T>
void PackChannels(const T* source, T* target, size_t count, int channels, const int* order) {
    for (; count > 0; count--, source += channels) {
        for (int i = 0; i < Kept; i++) {
            *target++ = source[order[i]];
        }
    }
}

template <class T> void GrayRun(const unsigned char* pixels, unsigned char* out, size_t count, int channels) {
    const T* source = reinterpret_cast<const T*>(pixels);
    T* target = reinterpret_cast<T*>(out);
    for (; count > 0; count--, source += channels) {
        *target++ = T((77 * source[0] + 151 * source[1] + 28 * source[2] + 128) >> 8);
    }
}

} // namespace

void cImage::Swap(cImage& other) noexcept {
    std::swap(m_Width, other.m_Width);
    std::swap(m_Height, other.m_Height);
    std::swap(m_Depth, other.m_Depth);
    std::swap(m_Format, other.m_Format);
    std::swap(m_MipMapCount, other.m_MipMapCount);
    std::swap(m_Pixels, other.m_Pixels);
}

unsigned char* cImage::Create(cFormat::Enum format, int width, int height, int depth, int mipMapCount) {
    const size_t size = BlockSize(format, width, height, depth, mipMapCount);
    Free(); // before the new block, so that a large image is not held twice
    Set(new unsigned char[size], format, width, height, depth, mipMapCount);
    return m_Pixels;
}

void cImage::Set(unsigned char* pixels, cFormat::Enum format, int width, int height, int depth, int mipMapCount) {
    if (pixels != m_Pixels) {
        Free();
    }
    if (!pixels) {
        return; // an image without pixels has no sizes either: everything else here relies on that
    }
    m_Width = width;
    m_Height = height;
    m_Depth = depth;
    m_Format = format;
    m_MipMapCount = mipMapCount;
    m_Pixels = pixels;
}

void cImage::Copy(const unsigned char* pixels, cFormat::Enum format, int width, int height, int depth,
                  int mipMapCount) {
    unsigned char* block = nullptr;
    if (pixels) {
        const size_t size = BlockSize(format, width, height, depth, mipMapCount);
        block = new unsigned char[size];
        std::memcpy(block, pixels, size); // ahead of Set, as the pixels may be this image's own
    }
    Set(block, format, width, height, depth, mipMapCount);
}

void cImage::Copy(const cImage& other) {
    if (this != &other) {
        Copy(other.m_Pixels, other.m_Format, other.m_Width, other.m_Height, other.m_Depth, other.m_MipMapCount);
    }
}

void cImage::Free() {
    delete[] m_Pixels;
    m_Pixels = nullptr;
    m_Width = m_Height = m_Depth = m_MipMapCount = 0;
    m_Format = cFormat::None;
}

cDimension::Enum cImage::GetDimension() const {
    if (IsEmpty()) {
        return cDimension::None;
    }
    if (m_Depth == 0) {
        return cDimension::Cube;
    }
    return m_Depth > 1 ? cDimension::_3D : m_Height > 0 ? cDimension::_2D : cDimension::_1D;
}

const unsigned char* cImage::GetPixels(int level) const {
    if (level >= m_MipMapCount) {
        return nullptr;
    }
    return m_Pixels + std::max(CalcImageSize(m_Format, std::max(m_Width, 1), std::max(m_Height, 1),
                                             m_Depth < 0 ? 1 : m_Depth, level),
                               0);
}

int cImage::CalcImageSize(cFormat::Enum format, int width, int height, int depth, int levels) {
    return SaturateToInt(CalcImageSize64(format, width, height, depth, levels));
}

long long cImage::CalcImageSize64(cFormat::Enum format, int width, int height, int depth, int levels) {
    const int w = std::max(width, 1), h = std::max(height, 1), d = std::max(depth, 1);
    long long size = 0;
    for (int level = 0; level < std::min(levels, 31) && (w >> level || h >> level || d >> level); level++) {
        const long long slice = SliceBytes(format, LevelSide(w, level), LevelSide(h, level));
        const long long bytes = Times(slice, LevelSide(d, level));
        size = Plus(size, IsPvr(format) ? std::max<long long>(bytes, s_MinPvrBytes) : bytes);
    }
    return depth == 0 ? Times(size, CubeFaces) : size;
}

int cImage::GetMipMapCountFromDimensions() const {
    int levels = 0;
    for (int side = std::max(m_Width, m_Height); side > 0; side >>= 1) {
        levels++;
    }
    return levels;
}

int cImage::GetMipMappedSize(int firstLevel, int levels, cFormat::Enum format) const {
    return CalcImageSize(format == cFormat::None ? m_Format : format, LevelSide(m_Width, firstLevel),
                         LevelSide(m_Height, firstLevel), m_Depth == 0 ? 0 : LevelSide(m_Depth, firstLevel), levels);
}

int cImage::GetSliceSize(int level, cFormat::Enum format) const {
    const cFormat::Enum f = format == cFormat::None ? m_Format : format;
    const int size = SaturateToInt(SliceBytes(f, LevelSide(m_Width, level), LevelSide(m_Height, level)));
    return IsPvr(f) ? std::max(size, s_MinPvrBytes) : size;
}

int cImage::GetRowSize(int level, cFormat::Enum format) const {
    const cFormat::Enum f = format == cFormat::None ? m_Format : format;
    const int size = SaturateToInt(RowBytes(f, LevelSide(m_Width, level)));
    return IsPvr(f) ? std::max(size, s_MinPvrBytes) : size;
}

int cImage::GetPixelCount(int firstLevel, int levels) const {
    return GetMipMappedSize(firstLevel, levels, cFormat::R8); // a byte is a pixel
}

bool cImage::SwapChannels(int a, int b) {
    if (!IsColor(m_Format)) {
        return false;
    }
    if (IsEmpty() || a == b || m_Format == cFormat::None) {
        return true;
    }
    const size_t count = size_t(GetPixelCount(0, m_MipMapCount));
    if (m_Format == cFormat::Rgba8) {
        SwapBytesOfFour(m_Pixels, count, std::min(a, b), std::max(a, b));
        return true;
    }
    const int channels = cFormat::ChannelCount[m_Format];
    WithElement(m_Format, [=, this](auto zero) {
        auto* p = reinterpret_cast<decltype(zero)*>(m_Pixels);
        for (size_t i = 0; i < count; i++, p += channels) {
            std::swap(p[a], p[b]);
        }
    });
    return true;
}

bool cImage::CopyChannel(int from, int to) {
    if (!IsColor(m_Format)) {
        return false;
    }
    const int channels = cFormat::ChannelCount[m_Format];
    if (from < 0 || to < 0 || from >= channels || to >= channels) {
        return false;
    }
    const size_t count = size_t(GetPixelCount(0, m_MipMapCount));
    WithElement(m_Format, [=, this](auto zero) {
        auto* p = reinterpret_cast<decltype(zero)*>(m_Pixels);
        for (size_t i = 0; i < count; i++, p += channels) {
            p[to] = p[from];
        }
    });
    return true;
}

bool cImage::InvertChannel(int channel) {
    if (!IsColor(m_Format) || channel < 0 || channel >= cFormat::ChannelCount[m_Format]) {
        return false;
    }
    const int channels = cFormat::ChannelCount[m_Format];
    const size_t count = size_t(GetPixelCount(0, m_MipMapCount));
    const bool half = m_Format >= cFormat::R16f && m_Format <= cFormat::Rgba16f;
    WithElement(m_Format, [=, this](auto zero) {
        using T = decltype(zero);
        T* p = reinterpret_cast<T*>(m_Pixels) + channel;
        for (size_t i = 0; i < count; i++, p += channels) {
            if constexpr (std::is_same_v<T, float>) {
                *p = 1.0f - *p;
            } else {
                *p = half ? T(cMath::Float2Half(1.0f - cMath::Half2Float(*p))) : T(~*p);
            }
        }
    });
    return true;
}

bool cImage::RemoveChannels(bool keepRed, bool keepGreen, bool keepBlue, bool keepAlpha) {
    if (!IsColor(m_Format)) {
        return false;
    }
    const bool keep[] = {keepRed, keepGreen, keepBlue, keepAlpha};
    const int channels = cFormat::ChannelCount[m_Format];
    int order[4] = {}, kept = 0;
    for (int i = 0; i < channels; i++) {
        if (keep[i]) {
            order[kept++] = i;
        }
    }
    if (kept == 0 || kept == channels) {
        return kept > 0;
    }
    const size_t count = size_t(GetPixelCount(0, m_MipMapCount));
    const auto format = cFormat::Enum(m_Format + kept - channels);
    auto* block = new unsigned char[BlockSize(format, m_Width, m_Height, m_Depth, m_MipMapCount)];
    if (m_Format == cFormat::Rgba8 && format == cFormat::Rgb8 && !keepAlpha) {
        ConvertPixels(format, block, m_Format, m_Pixels, count);
    } else {
        WithElement(m_Format, [&](auto zero) {
            using T = decltype(zero);
            const T* source = reinterpret_cast<const T*>(m_Pixels);
            T* target = reinterpret_cast<T*>(block);
            const auto pack = kept == 1 ? PackChannels<1, T> : kept == 2 ? PackChannels<2, T> : PackChannels<3, T>;
            pack(source, target, count, channels, order);
        });
    }
    Set(block, format, m_Width, m_Height, m_Depth, m_MipMapCount);
    return true;
}

bool cImage::ToGrayScale() {
    if (!IsColor(m_Format) || m_Format > cFormat::Rgba16 || cFormat::ChannelCount[m_Format] < 3) {
        return false;
    }
    const bool bytes = m_Format <= cFormat::Rgba8;
    const auto format = bytes ? cFormat::R8 : cFormat::R16;
    auto* block = new unsigned char[BlockSize(format, m_Width, m_Height, m_Depth, m_MipMapCount)];
    const auto run = bytes ? GrayRun<unsigned char> : GrayRun<unsigned short>;
    run(m_Pixels, block, size_t(GetPixelCount(0, m_MipMapCount)), cFormat::ChannelCount[m_Format]);
    Set(block, format, m_Width, m_Height, m_Depth, m_MipMapCount);
    return true;
}

bool cImage::ToFormat(cFormat::Enum format) {
    if (!IsColor(format) || !IsColor(m_Format)) {
        return false;
    }
    if (format == m_Format || IsEmpty()) {
        return true;
    }
    if (format == cFormat::None) { // keeps the room and loses the pixels
        const int size = CalcImageSize(m_Format, m_Width, m_Height, m_Depth, m_MipMapCount);
        Set(new unsigned char[size_t(size)](), format, m_Width, m_Height, m_Depth, m_MipMapCount);
        return true;
    }
    auto* block = new unsigned char[BlockSize(format, m_Width, m_Height, m_Depth, m_MipMapCount)];
    ConvertPixels(format, block, m_Format, m_Pixels, size_t(GetPixelCount(0, m_MipMapCount)));
    Set(block, format, m_Width, m_Height, m_Depth, m_MipMapCount);
    return true;
}

} // namespace trellis
