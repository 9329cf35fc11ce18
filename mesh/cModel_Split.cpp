// Models made of nothing, and of other models.
#include "mesh/cModel.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace trellis {

namespace {

/// One triangle and the cell that it goes to.
struct Piece {
    friend bool operator<(const Piece& a, const Piece& b) {
        return a.Cell != b.Cell ? a.Cell < b.Cell : a.Mesh != b.Mesh ? a.Mesh < b.Mesh : a.Index < b.Index;
    }

    long long Cell;
    int Mesh;
    int Index; // of the first index
};

/// A box cut into cells of the same size.
class Grid {
public:
    Grid(const cBounds& box, const cVec3& cellSize) : m_Min(box.min) {
        constexpr float most = 1 << 20; // so that the cells can be numbered in 64 bits
        const cVec3 size = box.Size();
        for (int i = 0; i < 3; i++) {
            const float count = std::floor(size[i] / cellSize[i] + 0.5f);
            m_Count[i] = count > 1 ? int(std::min(count, most)) : 1; // not a number for 0 / 0: a single cell, too
            m_Cell[i] = size[i] / float(m_Count[i]);
        }
    }

    /// In the order of x, then y, then z.
    long long CellOf(const cVec3& p) const {
        long long cell = 0;
        for (int i = 0; i < 3; i++) {
            const int index = cMath::TruncateToInt((p[i] - m_Min[i]) / m_Cell[i]);
            cell = cell * m_Count[i] + std::clamp(index, 0, m_Count[i] - 1);
        }
        return cell;
    }

private:
    cVec3 m_Min;
    cVec3 m_Cell;
    int m_Count[3];
};

cList<Piece> SortIntoCells(const cModel& model, const Grid& grid) {
    cList<Piece> pieces;
    pieces.EnsureCapacity(model.GetTriangleCount(), false);
    for (int mesh = 0; mesh < model.Meshes.Count(); mesh++) {
        const cList<int>& indices = model.Meshes[mesh].Indices;
        const cVertex::Bump* v = model.Meshes[mesh].BumpVertices.Data();
        for (int i = 0; i + 2 < indices.Count(); i += 3) {
            const cVec3 sum = v[indices[i]].Pos + v[indices[i + 1]].Pos + v[indices[i + 2]].Pos;
            pieces.Add({grid.CellOf(sum * 0.33333334f), mesh, i});
        }
    }
    std::sort(pieces.begin(), pieces.end());
    return pieces;
}

/// Copies the triangles of one mesh that share a cell.
///
/// @param table  -1 for each vertex of `from`, and again so afterwards
void CopyPieces(const Piece* piece, const Piece* end, const cModel::Mesh& from, cModel::Mesh* to, int* table) {
    const auto forEachCorner = [&](auto f) {
        for (const Piece* p = piece; p < end; p++) {
            for (int i = p->Index; i < p->Index + 3; i++) {
                f(from.Indices[i]);
            }
        }
    };
    forEachCorner([&](int vertex) {
        if (table[vertex] < 0) {
            table[vertex] = to->BumpVertices.Add(from.BumpVertices[vertex]);
        }
        to->Indices.Add(table[vertex]);
    });
    forEachCorner([table](int vertex) { table[vertex] = -1; });
}

void CopyNames(const cModel& from, cModel* to) {
    to->Meshes.SetCount(from.Meshes.Count());
    for (int i = 0; i < from.Meshes.Count(); i++) {
        to->Meshes[i].Name = from.Meshes[i].Name;
        to->Meshes[i].MaterialName = from.Meshes[i].MaterialName;
        to->Meshes[i].MaterialID = from.Meshes[i].MaterialID;
    }
}

} // namespace

bool cModel::Split(cList<cModel>* out, const cVec3& cellSize) const {
    const cVec3 size = Bounds.Size();
    if (!Static || (cellSize.x > size.x && cellSize.y > size.y && cellSize.z > size.z)) {
        return false;
    }
    out->Free();
    const cList<Piece> pieces = SortIntoCells(*this, Grid(Bounds, cellSize));
    int cells = 0;
    for (int i = 0; i < pieces.Count(); i++) {
        cells += i == 0 || pieces[i].Cell != pieces[i - 1].Cell;
    }
    int vertices = 0;
    for (const Mesh& mesh : Meshes) {
        vertices = std::max(vertices, mesh.BumpVertices.Count());
    }
    cList<int> table;
    table.Add(-1, vertices);

    // Only the cells that hold something are made: a grid may have far more of them than the model has triangles.
    out->SetCount(cells);
    int cell = -1;
    for (const Piece *begin = pieces.begin(), *p = begin; p < pieces.end();) {
        const Piece* end = std::find_if(
            p, pieces.end(), [p](const Piece& other) { return other.Cell != p->Cell || other.Mesh != p->Mesh; });
        if (p == begin || p->Cell != p[-1].Cell) {
            CopyNames(*this, &(*out)[++cell]);
        }
        CopyPieces(p, end, Meshes[p->Mesh], &(*out)[cell].Meshes[p->Mesh], table.Data());
        p = end;
    }
    for (cModel& model : *out) {
        model.UpdateBounds();
    }
    return true;
}

//      u ->                    slices + 1 vertices in each ring, the last at the place of the first;
//    v   \ / \ / \ / \ /       a pole's vertex of each slice has u in the middle of its triangle
//    |   |\ |\ |\ |\ |
//    V   | \| \| \| \|
//        / \ / \ / \ / \       .
void cModel::GenSphere(const cVec3& center, float radius, int slices, int stacks) {
    Free();
    if (slices < 1 || stacks < 2 || slices > std::numeric_limits<int>::max() / 6 / stacks) {
        return;
    }
    Meshes.SetCount(1);
    Mesh& mesh = Meshes[0];
    const int rings = stacks - 1;
    mesh.BumpVertices.EnsureCapacity((slices + 1) * rings + 2 * slices, false);
    mesh.Indices.EnsureCapacity(slices * rings * 6, false);

    const auto addVertex = [&](int stack, float slice) {
        float sinDown, cosDown, sinAround, cosAround;
        cMath::SinCos(float(stack) * 180.0f / float(stacks), &sinDown, &cosDown);
        if (stack == stacks) {
            sinDown = 0; // half a turn's sine is not quite 0 in radians
        }
        cMath::SinCos(slice * 360.0f / float(slices), &sinAround, &cosAround);
        cVertex::Bump v;
        v.Normal = {sinDown * sinAround, cosDown, sinDown * cosAround};
        v.Pos = center + v.Normal * radius;
        v.TexCoord = {slice / float(slices), float(stack) / float(stacks)};
        v.Tangent = {cosAround, 0, -sinAround};
        v.BiTangent = {cosDown * sinAround, -sinDown, cosDown * cosAround};
        return mesh.BumpVertices.Add(v);
    };
    const auto addTriangle = [&mesh](int a, int b, int c) {
        const int indices[] = {a, b, c};
        mesh.Indices.AddRange(indices, 3);
    };
    for (int slice = 0; slice < slices; slice++) {
        addVertex(0, float(slice) + 0.5f);
    }
    for (int stack = 1; stack <= rings; stack++) {
        const int first = mesh.BumpVertices.Count();
        for (int slice = 0; slice < slices; slice++) {
            addVertex(stack, float(slice));
        }
        cVertex::Bump seam = mesh.BumpVertices[first]; // to the bit at the same place
        seam.TexCoord.x = 1;
        mesh.BumpVertices.Add(seam);
    }
    for (int slice = 0; slice < slices; slice++) {
        addVertex(stacks, float(slice) + 0.5f);
    }

    for (int slice = 0; slice < slices; slice++) {
        addTriangle(slice, slices + slice, slices + slice + 1);
    }
    for (int ring = 0; ring < rings - 1; ring++) {
        for (int slice = 0; slice < slices; slice++) {
            const int above = slices + ring * (slices + 1) + slice;
            const int below = above + slices + 1;
            addTriangle(above, below, below + 1);
            addTriangle(above, below + 1, above + 1);
        }
    }
    const int last = slices + (rings - 1) * (slices + 1);
    for (int slice = 0; slice < slices; slice++) {
        addTriangle(last + slice, last + slices + 1 + slice, last + slice + 1);
    }
    UpdateBounds();
}

} // namespace trellis
