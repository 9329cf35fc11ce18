// The drawable form of a mesh: parts with flat vertex and index lists, and the joints of a skinned one.
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"
#include "math/cBounds.h"
#include "math/cMat4.h"
#include "math/cQuat.h"
#include "mesh/cVertex.h"

namespace trellis {

struct cAnim_Joint;

/// A model is static as a whole, with `Bump` vertices, or skinned, with `Anim` vertices and joints. It is data, and
/// outlives a renderer; only its render buffers are tied to one. Indexes of vertices and joints are trusted.
class cModel {
public:
    /// Position and orientation are in model space, not relative to the parent.
    struct Joint {
        cStr Name;
        int Parent = -1; ///< -1 for a root.
        cVec3 Position{};
        cQuat Orientation{};
    };

    struct Mesh {
        void Copy(const Mesh& other); ///< Frees the own buffers, and copies all but the other's.
        void FreeRenderBuffers();

        cStr Name;
        cStr MaterialName;
        int MaterialID = -1; ///< -1 until resolved.
        cList<int> Indices;  ///< Three a triangle.
        cList<cVertex::Bump> BumpVertices;
        cList<cVertex::Anim> AnimVertices;
        int VertexBufferID = -1; ///< -1 when there is none.
        int IndexBufferID = -1;
    };

    cModel() = default;
    cModel(const cModel& other) { Copy(other); }
    cModel& operator=(const cModel& other) {
        Copy(other);
        return *this;
    }
    ~cModel() { Free(); }

    void Free(); ///< Back to a static model of nothing, with an empty box.
    void Copy(const cModel& other);

    int GetVertexCount() const;
    int GetTriangleCount() const;
    void UpdateBounds();
    void GetMaterialsID(); ///< Resolves the materials by their names, which creates their textures.

    void CalcNormals();  ///< Smooth over shared vertices, weighted by area.
    void CalcTangents(); ///< As `cRawMesh::CalcTangents`, over shared vertices.

    void CreateRenderBuffers(); ///< For every mesh with indexes. Needs a device.
    void FreeRenderBuffers();
    /// Draws with the current shader. @param meshIndex  -1 for all; what is no mesh draws nothing
    void Draw(int meshIndex = -1) const;

    /// Points by the matrix, normals by its normal matrix, joints' orientations by its rotation. The cache of the
    /// inverse bind pose is not touched: see `GetBindPoseInv`.
    void Transform(const cMat4& m);

    /// @param distance  receives the least distance in lengths of `direction`, or the largest float
    /// @return false for a skinned model, too, at once
    bool RayIntersection(const cVec3& origin, const cVec3& direction, float* distance) const;

    /// For each joint the translation by its negative position, then the rotation by its conjugate orientation. Kept
    /// from the first call on: whoever changes the joints empties `BindPoseInv`.
    const cList<cMat4>& GetBindPoseInv() const;

    /// Fills the bump vertices of `out` with the bind pose, its indexes stay. Nothing happens for a static model.
    void GoToBindPose(cModel* out) const;

    /// Fills the bump vertices of `out` with a pose of a skinned model; nothing happens for a static one. `out` may be
    /// this model, another one gets its indexes as well. Joint indexes outside the list do not count; a vertex that
    /// none is left for stays in the bind pose. Weights need not add up to 1, and vectors keep what length they get.
    ///
    /// @param joints  as `cAnim` makes them
    void SetAnim(const cList<cAnim_Joint>& joints, cModel* out) const;
    void SetAnimPlain(const cList<cAnim_Joint>& joints, cModel* out) const; ///< The same without SSE2, to the bit.

    /// Becomes a sphere: rings of `slices` + 1 vertices with a doubled seam, and a vertex per slice at each pole.
    ///
    /// @param slices  around the Y axis, at least 1
    /// @param stacks  from the pole at the top to the other, at least 2; less of either, or more than an int counts,
    ///                gives an empty model
    void GenSphere(const cVec3& center, float radius, int slices, int stacks);

    /// Cuts a static model into a regular grid: each triangle goes whole to the cell of its centroid.
    ///
    /// @param out  receives a model for each cell that is not empty, by x, then y, then z; must not hold this
    ///             model. At most 2^20 cells along an axis count
    /// @return false for a skinned model, and where a cell is larger than the model in all axes
    bool Split(cList<cModel>* out, const cVec3& cellSize) const;

    /// Lines from the joints to their parents. @param names  also writes the joints' names
    void DrawJoints(bool names) const;

    /// Lines from each vertex: tangent red, bitangent green, normal blue, each `length` long.
    void DrawTangentSpace(bool normals, bool tangents, float length) const;

    bool Static = true;
    cList<Joint> Joints;
    mutable cList<cMat4> BindPoseInv;
    cList<Mesh> Meshes;
    cBounds Bounds = cBounds::Empty;
};

} // namespace trellis
