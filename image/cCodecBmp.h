// Windows bitmaps: 1, 4 and 8 bits with a palette, 24 and 32 bits, never run-length. One level, 2D.
#pragma once

#include "files/cIO.h"

namespace trellis {

class cCodecBmp : public cIO::ImageCodec {
public:
    /// `Rgba8` for 32 bits, `Rgb8` for all else. The image is empty on false.
    bool Decode(const cFile& file, cImage* out) override;

    /// Level 0 of `R8`, `Rgb8` and `Rgba8`. Rows of `R8` are not padded: only widths that are multiples of 4 read back.
    ///
    /// @return false, nothing written, for other formats and for a file past the range of int
    bool Encode(const cImage& image, cFile* out) override;
};

} // namespace trellis
