// What raw meshes and models share in making normals and tangents.
#pragma once

#include "math/cMat3.h"
#include "mesh/cRawMesh.h"

#include <algorithm>
#include <cmath>

namespace trellis {

/// Tangent and bitangent of one triangle: rows 0 and 1 of the inverse of the matrix with the columns e1, e2, e1 x e2,
/// by the differences of u, and of v. Each vector T comes as T / |T|^2, and one of no length as zero.
///
/// @return false for a triangle with hardly any area: the determinant, which is |e1 x e2|^2, is too small to invert
inline bool cRawMesh_WeighTangents(const cVec3& p0, const cVec3& p1, const cVec3& p2, const cVec2& t0, const cVec2& t1,
                                   const cVec2& t2, cRawMesh::TangentBasis* out) {
    const cVec3 e1 = p1 - p0;
    const cVec3 e2 = p2 - p0;
    const cVec3 n = cVec3::Cross(e1, e2);
    cMat3 inverse;
    if (!cMat3::Invert(cMat3(e1.x, e2.x, n.x, e1.y, e2.y, n.y, e1.z, e2.z, n.z), &inverse)) {
        return false;
    }
    const cVec2 d1 = t1 - t0;
    const cVec2 d2 = t2 - t0;
    const auto weigh = [](const cVec3& v) {
        const float lengthSq = v.LengthSq();
        return lengthSq >= cMath::FloatMinValue ? v * (1.0f / lengthSq) : cVec3::Zero; // else 1 / lengthSq overflows
    };
    out->Tangent = weigh(inverse.GetRow(0) * d1.x + inverse.GetRow(1) * d2.x);
    out->BiTangent = weigh(inverse.GetRow(0) * d1.y + inverse.GetRow(1) * d2.y);
    return true;
}

/// To unit length; without a length, or with one beyond float, it becomes the Z axis. Sums of weighted vectors may be
/// far from 1 either way, and their squares beyond float: those are brought near it first.
inline void cRawMesh_FinishVector(cVec3* v) {
    const float largest = std::max({std::fabs(v->x), std::fabs(v->y), std::fabs(v->z)});
    if (largest > 1e15f || largest < 1e-15f) {
        *v = {v->x / largest, v->y / largest, v->z / largest};
    }
    if (!(v->Normalize() > 0)) { // also for what is no number
        *v = cVec3::AxisZ;
    }
}

} // namespace trellis
