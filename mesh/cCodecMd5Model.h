// Skeletal meshes of MD5 text (version 10): joints, and vertices as weights in the joints' spaces.
#pragma once

#include "files/cIO.h"

namespace trellis {

/// Units are halved, and Z upward becomes Y upward. Reads only; a vertex with more than 256 weights refuses the file.
/// On false the model holds what was built so far.
class cCodecMd5Model : public cIO::ModelCodec {
public:
    bool Encodes() const override { return false; }
    bool Decode(const cFile& file, cModel* out) override;
    bool Encode(const cModel&, cFile*) override { return false; }

    static constexpr const char* FileExtension = "Md5Mesh";
};

} // namespace trellis
