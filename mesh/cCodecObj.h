// Wavefront OBJ, text: points, texture coordinates, normals, faces of any size, materials by name.
#pragma once

#include "files/cIO.h"

namespace trellis {

/// Decoding keeps its line in buffers of the module, so two threads cannot decode at once. On false the model holds
/// what was built so far.
class cCodecObj : public cIO::ModelCodec {
public:
    bool Encodes() const override { return true; }
    /// Faces become triangles; a file without normals gets smooth ones; each material becomes a mesh. A point index
    /// of 0 or outside the list, and a line with too few numbers, refuse the file.
    bool Decode(const cFile& file, cModel* out) override;
    /// All meshes over one list of vertices; the names of their materials become groups, which do not load again.
    bool Encode(const cModel& model, cFile* out) override;
};

} // namespace trellis
