#include "image/cImage.h"

#include <cstring>
#include <emmintrin.h>

#include "image/Dxt.h"
#include "image/Levels.h"

namespace trellis {

namespace {

constexpr int s_BlockSide = 4;

/// Calls f(x, y, blockWidth, blockHeight) for every block of a slice. Blocks at the far edges are clipped to it.
template <class F> void ForEachBlock(int width, int height, F&& f) {
    for (int y = 0; y < height; y += s_BlockSide) {
        for (int x = 0; x < width; x += s_BlockSide) {
            f(x, y, std::min(s_BlockSide, width - x), std::min(s_BlockSide, height - y));
        }
    }
}

unsigned char* Put64(unsigned char* to, uint64_t v) {
    std::memcpy(to, &v, sizeof(v));
    return to + sizeof(v);
}

/// @return behind the last block
unsigned char* CompressSlice(cFormat::Enum format, int width, int height, const unsigned char* pixels,
                             unsigned char* out) {
    const int channels = cFormat::ChannelCount[format], rowStride = width * channels;
    ForEachBlock(width, height, [&](int x, int y, int bw, int bh) {
        const unsigned char* block = pixels + y * rowStride + x * channels;
        if (format == cFormat::R8) {
            out = Put64(out, dxt::EncodeGrayDXTColorBlock(bw, bh, rowStride, block));
            return;
        }
        if (format == cFormat::Rgba8) {
            out = Put64(out, dxt::EncodeDXT5AlphaBlock(bw, bh, rowStride, block));
        }
        out = Put64(out, dxt::EncodeDXTColorBlock(bw, bh, channels, rowStride, block));
    });
    return out;
}

/// Four pixels, alpha 0, as 12 bytes.
void StoreRgbRow(const uint32_t* pixels, unsigned char* to) {
    const __m128i v = _mm_load_si128(reinterpret_cast<const __m128i*>(pixels));
    const __m128i even = _mm_set_epi32(0, -1, 0, -1);
    const __m128i pairs = _mm_or_si128(_mm_and_si128(v, even), _mm_srli_epi64(_mm_andnot_si128(even, v), 8));
    const __m128i first = _mm_or_si128(pairs, _mm_slli_epi64(_mm_srli_si128(pairs, 8), 48)); // six bytes and two
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), first);
    const int last = _mm_cvtsi128_si32(_mm_srli_si128(pairs, 10));
    std::memcpy(to + 8, &last, sizeof(last));
}
template <int Channels> void StoreBlock(const dxt::Pixels& pixels, int bw, int bh, int rowStride, unsigned char* to) {
    for (int y = 0; y < bh; y++, to += rowStride) {
        const uint32_t* row = &pixels.Words[y * s_BlockSide];
        if (bw < s_BlockSide) {
            for (int x = 0; x < bw; x++) {
                std::memcpy(to + x * Channels, row + x, Channels);
            }
        } else if constexpr (Channels == 3) {
            StoreRgbRow(row, to);
        } else {
            std::memcpy(to, row, s_BlockSide * sizeof(*row));
        }
    }
}

template <cFormat::Enum Format> void DecodeImage(const cImage& image, unsigned char* out) {
    constexpr int Channels = Format == cFormat::Dxt1 ? 3 : 4;
    const unsigned char* block = image.GetPixels();
    ForEachSlice(image, [&](int, int width, int height) {
        const int rowStride = width * Channels;
        ForEachBlock(width, height, [&](int x, int y, int bw, int bh) {
            dxt::Pixels pixels;
            dxt::DecodeBlock(Format, block, pixels);
            block += Format == cFormat::Dxt1 ? 8 : 16;
            StoreBlock<Channels>(pixels, bw, bh, rowStride, out + y * rowStride + x * Channels);
        });
        out += height * rowStride;
    });
}

bool HasPowerOfTwoSides(int width, int height) {
    return (width & (width - 1)) == 0 && (height & (height - 1)) == 0;
}

} // namespace

void cImage::Compress() {
    if (!m_Pixels || (m_Format != cFormat::R8 && m_Format != cFormat::Rgb8 && m_Format != cFormat::Rgba8)) {
        return;
    }
    cImage result(m_Format == cFormat::Rgba8 ? cFormat::Dxt5 : cFormat::Dxt1, m_Width, m_Height, m_Depth,
                  m_MipMapCount);
    const unsigned char* pixels = m_Pixels;
    unsigned char* out = result.m_Pixels;
    ForEachSlice(*this, [&](int, int width, int height) {
        out = CompressSlice(m_Format, width, height, pixels, out);
        pixels += width * height * cFormat::ChannelCount[m_Format];
    });
    Swap(result);
}

void cImage::Uncompress() {
    if (!m_Pixels || m_Format < cFormat::Dxt1 || m_Format > cFormat::Dxt5) {
        return;
    }
    if (m_MipMapCount > 1 && !HasPowerOfTwoSides(m_Width, m_Height)) {
        RemoveMipMaps();
    }
    cImage result(m_Format == cFormat::Dxt1 ? cFormat::Rgb8 : cFormat::Rgba8, m_Width, m_Height, m_Depth,
                  m_MipMapCount);
    if (m_Format == cFormat::Dxt1) {
        DecodeImage<cFormat::Dxt1>(*this, result.m_Pixels);
    } else if (m_Format == cFormat::Dxt3) {
        DecodeImage<cFormat::Dxt3>(*this, result.m_Pixels);
    } else {
        DecodeImage<cFormat::Dxt5>(*this, result.m_Pixels);
    }
    Swap(result);
}

} // namespace trellis
