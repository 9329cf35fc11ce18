// Targa files, plain and run-length. One level, 2D.
#pragma once

#include "files/cIO.h"

namespace trellis {

class cCodecTga : public cIO::ImageCodec {
public:
    /// Files with an ID field or the mark of a colour map are refused; so is what `Encode` makes of `R8`.
    ///
    /// @return true, with an empty image, for a pixel depth other than 8, 16, 24 and 32; on false the image is empty
    /// too
    bool Decode(const cFile& file, cImage* out) override;

    /// Level 0 of `R8`, `Rgb8` and `Rgba8`.
    ///
    /// @return false, nothing written, for other formats and for sides above 65535
    bool Encode(const cImage& image, cFile* out) override;
};

} // namespace trellis
