// DirectDraw surfaces: 1D, 2D, 3D and cubes with their levels, plain and compressed.
#pragma once

#include "files/cIO.h"

namespace trellis {

class cCodecDds : public cIO::ImageCodec {
public:
    /// The image is empty on false. A compressed 2D image with a side that is no multiple of 4 stays upside down, with
    /// a warning.
    bool Decode(const cFile& file, cImage* out) override;

    /// @return false, nothing written, for an image without pixels, for the depth and the Pvr formats, and for `Rgb16`,
    ///         `Rgb16f` and `Rgb32f`, which such files have no form for
    bool Encode(const cImage& image, cFile* out) override;
};

} // namespace trellis
