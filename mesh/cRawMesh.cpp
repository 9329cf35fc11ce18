#include "mesh/cRawMesh.h"

#include "mesh/cRawMesh_Tangents.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace trellis {

namespace {

using Element = cVec<int, 3>;

enum Header { CornerCount, Material };
enum Corner { Point, TexCoord, Normal };

/// Calls `f(corners, count)` for each polygon, in order.
template <class Polys, class F> void ForEachPoly(Polys& polys, F f) {
    for (int i = 0; i < polys.Count(); i += polys[i][CornerCount] + 1) {
        f(&polys[i] + 1, polys[i][CornerCount]);
    }
}

/// Sum of normals that count by the cube of their areas: of a floor of 2000 by 2000 its square is beyond float.
struct NormalSum {
    void Add(const cVec3& n) {
        const double weight = double(n.x) * double(n.x) + double(n.y) * double(n.y) + double(n.z) * double(n.z);
        x += double(n.x) * weight;
        y += double(n.y) * weight;
        z += double(n.z) * weight;
    }
    cVec3 Finish() const {
        const double largest = std::max({std::fabs(x), std::fabs(y), std::fabs(z)});
        if (!std::isfinite(x + y + z) || largest == 0) {
            return cVec3::AxisZ;
        }
        return cVec3::Normalize(cVec3(float(x / largest), float(y / largest), float(z / largest)));
    }

    double x, y, z;
};

bool IsIndex(int index, int count) {
    return unsigned(index) < unsigned(count);
}

} // namespace

void cRawMesh::Clear() {
    Points.Clear();
    TexCoords.Clear();
    Normals.Clear();
    TangentBases.Clear();
    Polys.Clear();
    Materials.Clear();
    BlendIndices.Clear();
    BlendWeights.Clear();
}

int cRawMesh::GetPolyCount() const {
    int count = 0;
    ForEachPoly(Polys, [&count](const Element*, int) { count++; });
    return count;
}

bool cRawMesh::IsTriangulated() const {
    for (int i = 0; i < Polys.Count(); i += 4) {
        if (Polys[i][CornerCount] != 3) {
            return false;
        }
    }
    return true;
}

void cRawMesh::ClearMaterials() {
    ForEachPoly(Polys, [](Element* corners, int) { corners[-1][Material] = 0; });
    Materials.Clear();
}

void cRawMesh::InvertRaw() {
    ForEachPoly(Polys, [](Element* corners, int count) { std::reverse(corners, corners + count); });
}

void cRawMesh::CalcNormals(bool flat) {
    const int count = flat ? GetPolyCount() : Points.Count();
    if (count < 1) {
        return;
    }
    cList<NormalSum> sums; // by point
    if (!flat) {
        sums.SetCount(count);
    }
    Normals.SetCount(count);
    std::fill(Normals.begin(), Normals.end(), cVec3::Zero);
    int poly = 0;
    ForEachPoly(Polys, [&](Element* corners, int n) {
        for (int i = 0; i < n; i++) {
            corners[i][Normal] = flat ? poly : corners[i][Point];
        }
        if (n > 2) {
            const cVec3 p0 = Points[corners[0][Point]];
            const cVec3 normal = cVec3::Cross(Points[corners[1][Point]] - p0, Points[corners[2][Point]] - p0);
            if (flat) {
                Normals[poly] = normal;
            } else {
                for (int i = 0; i < n; i++) {
                    sums[corners[i][Normal]].Add(normal);
                }
            }
        }
        poly++;
    });
    for (int i = 0; i < count; i++) {
        if (flat) {
            cRawMesh_FinishVector(&Normals[i]);
        } else {
            Normals[i] = sums[i].Finish();
        }
    }
}

void cRawMesh::CalcTangents() {
    TangentBases.Clear();
    if (Normals.IsEmpty() || TexCoords.IsEmpty()) {
        return;
    }
    TangentBases.SetCount(Normals.Count());
    std::fill(TangentBases.begin(), TangentBases.end(), TangentBasis());
    TangentBasis* const bases = TangentBases.Data();
    const int baseCount = TangentBases.Count();
    const auto usable = [this](const Element& c) {
        return IsIndex(c[Point], Points.Count()) && IsIndex(c[TexCoord], TexCoords.Count());
    };
    ForEachPoly(std::as_const(Polys), [&](const Element* c, int n) {
        const auto hasBasis = [baseCount](const Element& corner) { return IsIndex(corner[Normal], baseCount); };
        if (n < 3 || !usable(c[0]) || !usable(c[1]) || !usable(c[2]) || !std::all_of(c, c + n, hasBasis)) {
            return;
        }
        TangentBasis weighted;
        if (!cRawMesh_WeighTangents(Points[c[0][Point]], Points[c[1][Point]], Points[c[2][Point]],
                                    TexCoords[c[0][TexCoord]], TexCoords[c[1][TexCoord]], TexCoords[c[2][TexCoord]],
                                    &weighted)) {
            return;
        }
        for (int i = 0; i < n; i++) {
            TangentBasis& basis = bases[c[i][Normal]];
            basis.Tangent += weighted.Tangent;
            basis.BiTangent += weighted.BiTangent;
        }
    });
    for (TangentBasis& basis : TangentBases) {
        cRawMesh_FinishVector(&basis.Tangent);
        cRawMesh_FinishVector(&basis.BiTangent);
    }
}

void cRawMesh::Triangulate() {
    if (IsTriangulated()) {
        return;
    }
    cList<Element> triangles;
    Triangulate(&triangles);
    Polys = std::move(triangles);
}

void cRawMesh::Triangulate(cList<Element>* out) const {
    out->Clear();
    ForEachPoly(Polys, [out](const Element* corners, int n) {
        for (int i = 2; i < n; i++) {
            const Element triangle[4] = {{3, corners[-1][Material], 0}, corners[0], corners[i - 1], corners[i]};
            out->AddRange(triangle, 4);
        }
    });
}

} // namespace trellis
