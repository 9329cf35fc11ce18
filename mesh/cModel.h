// The drawable form of a mesh: so far, its skeleton and the names and triangles of its parts.
#pragma once

#include "foundation/cStr.h"
#include "math/cQuat.h"
#include "math/cVec3.h"

namespace trellis {

/// A model is static as a whole, or skinned and has joints.
class cModel {
public:
    /// Position and orientation are in model space.
    struct Joint {
        cStr Name;
        int Parent; ///< -1 for a root.
        cVec3 Position;
        cQuat Orientation;
    };

    struct Mesh {
        cStr Name;
        cStr MaterialName;
        int MaterialID = -1; ///< -1 until resolved.
        cList<int> Indices;  ///< Three a triangle.
    };

    void Free();
    void Copy(const cModel& other) { *this = other; }

    void GetMaterialsID() {}      ///< Resolves the materials by their names. There are none yet.
    void CreateRenderBuffers() {} ///< For drawing. There is no device yet.
    void FreeRenderBuffers() {}

    bool Static = true;
    cList<Joint> Joints;
    cList<Mesh> Meshes;
};

} // namespace trellis
