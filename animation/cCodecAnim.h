// The framework's own animation files. Little-endian; unit and range values are 16-bit integers, from -1 to 1 and from
// -256 to 256 (files/cNativeFile.h).
//
//     "ca" | version 0 (1) | frame rate (2) | joint count (2) | joints | frame count (4) | frames | boxes
//     joint:  name | parent (2)
//     frame:  for each joint: position, a range value each (6) | x, y, z of the orientation, unit values (6), w from
//             them | scale, range values (6)
//     box:    for each frame: min (6) | max (6), range values
#pragma once

#include "files/cIO.h"

namespace trellis {

class cCodecAnim : public cIO::AnimCodec {
public:
    bool Encodes() const override { return true; }
    /// @return false, and `*out` is as after `Free`, for a file that is cut short or contradicts itself
    bool Decode(const cFile& file, cAnim* out) override;
    /// @return false for what `Decode` would refuse, being more than the file can hold or a contradiction: a frame rate
    ///         or joints outside [0, 32767], parents outside the list, zero bytes in names, longer names, frames of
    ///         other joints, boxes that are not one for each frame. Beyond 256 coordinates wrap: that is not refused
    bool Encode(const cAnim& anim, cFile* out) override;
};

} // namespace trellis
