// Textures in the formats `Pvr4Rgb` and `Pvr4Rgba`, in a container of this system's own: not the one that the tools of
// the chip write.
//
//     0   "PVR "
//     4   width, height, number of levels   32 bits each
//     16  0 for `Pvr4Rgb`, anything else for `Pvr4Rgba`
//     17  the levels, level 0 first
#pragma once

#include "files/cIO.h"

namespace trellis {

class cCodecPvr : public cIO::ImageCodec {
public:
    static constexpr const char* FileExtension = "cPvr";

    bool Decode(const cFile& file, cImage* out) override;  ///< The image is empty on false.
    bool Encode(const cImage& image, cFile* out) override; ///< Always false.
};

} // namespace trellis
