// The DXT encoder and decoder, block by block. Private to cImage; the tests and benchmarks call it too.
//
// The blocks are the ones that S3TC (EXT_texture_compression_s3tc) defines. Which of the possible blocks comes out is
// fixed to the bit, as baked textures are compared with stored checksums: all arithmetic is in 32-bit integers, and
// where a product wraps, the wrapped value is what counts.
#pragma once

#include <cstdint>

#include "image/cFormat.h"

namespace trellis::dxt {

// A block has `blockWidth` by `blockHeight` pixels, each in [1, 4], `pixelStride` bytes apart, its rows `rowStride`
// bytes apart, the bottom row first. Nothing outside is read. The eight bytes of the result are in little-endian order.

uint64_t EncodeDXTColorBlock(int blockWidth, int blockHeight, int pixelStride, int rowStride,
                             const unsigned char* pixels); ///< Of channels 0, 1 and 2, 3 or 4 bytes apart.
uint64_t EncodeGrayDXTColorBlock(int blockWidth, int blockHeight, int rowStride, const unsigned char* pixels);
uint64_t EncodeDXT5AlphaBlock(int blockWidth, int blockHeight, int rowStride,
                              const unsigned char* pixels); ///< Of channel 3 of `Rgba8`.

/// Of a whole block, row by row: red in the lowest byte, alpha in the highest. `Dxt1` leaves alpha 0.
struct Pixels {
    alignas(16) uint32_t Words[16];
};
void DecodeBlock(cFormat::Enum format, const unsigned char* block, Pixels& out); ///< `Dxt1`, `Dxt3` or `Dxt5`.

/// The same in plain C++, for blocks of any extent. The ones above take it for blocks below 4 by 4, `DecodeBlock` for
/// `Dxt3` and for six alphas.
namespace plain {
void DecodeBlock(cFormat::Enum format, const unsigned char* block, Pixels& out);
uint64_t EncodeDXTColorBlock(int blockWidth, int blockHeight, int pixelStride, int rowStride,
                             const unsigned char* pixels);
uint64_t EncodeGrayDXTColorBlock(int blockWidth, int blockHeight, int rowStride, const unsigned char* pixels);
uint64_t EncodeDXT5AlphaBlock(int blockWidth, int blockHeight, int rowStride, const unsigned char* pixels);
} // namespace plain

} // namespace trellis::dxt
