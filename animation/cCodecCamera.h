// Files of camera paths. Little-endian; a range value is a 16-bit integer, from -256 to 256 (files/cNativeFile.h).
//
//     "cc" | version 0 (1) | frame rate (4) | camera count (4) | cameras
//     camera:  name | near (4) | far (4) | start frame (4) | frame count (4) | frames
//     frame:   position (12) | x, y, z of the orientation (12), w from them | field of view, a range value (2)
#pragma once

#include "files/cIO.h"

namespace trellis {

class cCodecCamera : public cIO::CameraCodec {
public:
    bool Encodes() const override { return true; }
    /// @return false, and `*out` is as after `Free`, for a file that is cut short or contradicts itself
    bool Decode(const cFile& file, cCamera* out) override;
    /// @return false for what `Decode` would refuse: negative numbers, zero bytes in a name, names beyond 32767 bytes
    bool Encode(const cCamera& camera, cFile* out) override;
};

} // namespace trellis
