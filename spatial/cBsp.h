// Binary space partition of a triangle soup: each node is a triangle, and its plane divides the rest.
//
// A file is the nodes in depth-first order, the back child before the front child, little-endian, without a header:
//
//     nine floats of the corners (36) | data (4) | flags (1): bit 0, a back child follows; bit 1, a front child
#pragma once

#include "foundation/cList.h"
#include "math/cPlane.h"
#include "math/cVec3.h"

#include <vector>

namespace trellis {

class cFile;
class cMat4;

/// Queries are const, use local storage only, and run on several threads at once. No depth of the tree is too great:
/// nothing recurses. Nodes come from `cPool`.
class cBsp {
public:
    struct Triangle {
        /// Of the corners: the plane, and the three that stand upright on it along the edges.
        void CalcPlanes();
        bool IsAbove(const cVec3& p) const; ///< Within the three edges, or on them.

        /// Cuts the triangle, which has corners beyond `epsilon` on both sides, into two or three pieces with its data.
        ///
        /// @param out  receives the pieces, those in front first
        void Split(Triangle* out, int& frontCount, int& backCount, const cPlane& plane, float epsilon) const;

        cVec3 Corners[3];
        int Data; ///< The application's.
        cPlane Plane;
        cPlane EdgePlanes[3]; ///< Along corners 0-2, 0-1, 1-2; not of unit length, positive inside.
    };
    struct Node : Triangle {
        Node* Back;
        Node* Front;
    };

    cBsp() = default;
    ~cBsp() { Free(); }
    cBsp(const cBsp&) = delete;
    cBsp& operator=(const cBsp&) = delete;

    void Free(); ///< The tree, and the triangles that wait.
    void AddTriangle(const cVec3& p0, const cVec3& p1, const cVec3& p2, int data);

    /// Makes the tree of the triangles that wait, in place of the former one. Nothing happens when none does. Each node
    /// takes the triangle of the least cost; its choice is quadratic in the number of triangles. Where corners are so
    /// far from the origin that they are rounded by more than epsilon, pieces of triangles that cut each other
    /// multiply.
    ///
    /// @param splitCost    of each triangle that the plane cuts
    /// @param balanceCost  of each triangle that one side has more than the other
    /// @param epsilon      distance up to which a corner counts as on the plane
    void Build(float splitCost, float balanceCost, float epsilon);

    bool IsEmpty() const { return !m_Root; }

    /// The first triangle on the way, from either side. Both results may be null; they are untouched without a hit.
    bool Intersects(const cVec3& from, const cVec3& to, cVec3* point, const Triangle** triangle) const;

    /// All that are nearer than the radius, but for epsilon, and others whose plane is. Goes only where it must.
    void GetTrianglesWithinRadius(const cVec3& center, float radius, cList<Triangle>* out) const;

    /// Those of the above whose box meets a box, in the same order. They are good until the tree changes.
    void GetTrianglesNear(const cVec3& center, float radius, const cVec3& low, const cVec3& high,
                          cList<const Triangle*>* out) const;

    void GetAllTriangles(cList<Triangle>* out) const; ///< Each node before its front, and then its back child.
    void Transform(const cMat4& m); ///< A mirroring matrix turns fronts into backs: then the tree has to be built anew.

    bool Load(const cFile& file); ///< @return false at the first short read; what was read stays for `Free`
    bool Save(cFile* file) const; ///< @return true

private:
    Node* m_Root = nullptr;

public:
    cList<Triangle> Triangles; ///< Added, and waiting for `Build`.

private:
    /// What a query reads of a node, close together, in the order of `GetAllTriangles`.
    struct Step {
        cPlane Plane;
        cVec3 Box[2];    ///< Least and greatest corner around all from this node on, with some room for rounding.
        int Back, Front; ///< -1 without one.
        const Node* Source;
    };
    void MakeSteps();
    bool LoadNodes(const cFile& file);

    std::vector<Step> m_Steps;
};

} // namespace trellis
