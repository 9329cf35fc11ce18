// The framework's own model files. Little-endian; a quantised value is a 16-bit integer, value x 32767 truncated.
//
//     "cm" | version 0 (1) | joint count (2) | joints | mesh count (2) | static flag (1) | meshes | bounds (24)
//     string:  length (2) | bytes
//     joint:   name | parent (2) | position (12) | x, y, z of the orientation (6), w from them
//     mesh:    name | material | index count (4) | indices (2 each) | vertex count (4) | vertices
//     vertex:  position (12) | texcoord (8) | normal, tangent, bitangent (18) [| joint indices (4) | weights (8)]
#pragma once

#include "files/cIO.h"

namespace trellis {

class cCodecModel : public cIO::ModelCodec {
public:
    bool Encodes() const override { return true; }
    /// @return false, and `*out` is as after `Free`, for a file that is cut short or contradicts itself
    bool Decode(const cFile& file, cModel* out) override;
    /// @return false for what `Decode` would refuse, being more than the file can hold or a contradiction: more than
    ///         32767 joints or meshes, longer names, zero bytes in them, indexes above 65535 or outside the vertices,
    ///         joint indexes above 255 or outside the joints, parents outside the list
    bool Encode(const cModel& model, cFile* out) override;
};

} // namespace trellis
