// Skeletal animations of MD5 text (version 10): a base frame, and for each frame what differs from it.
#pragma once

#include "files/cIO.h"

namespace trellis {

/// Units are halved, and Z upward becomes Y upward, as by `cCodecMd5Model`. Reads only; frames times joints beyond
/// 4,194,304 refuse the file. On false there is no animation.
class cCodecMd5Anim : public cIO::AnimCodec {
public:
    bool Encodes() const override { return false; }
    bool Decode(const cFile& file, cAnim* out) override;
    bool Encode(const cAnim&, cFile*) override { return false; }

    static constexpr const char* FileExtension = "Md5Anim";
};

} // namespace trellis
