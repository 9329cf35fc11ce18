// Editable polygonal mesh, as files present one: shared attributes, polygons of any size, an index per attribute at
// each corner.
//
//     Polys:  | n, material, 0 | point, texcoord, normal | ... n corners | n, material, 0 | ...      all from 0
#pragma once

#include "math/cVec.h"
#include "mesh/cRawSplit.h"
#include "mesh/cVertex.h"

namespace trellis {

/// A codec fills one, computes what the file lacks, and splits it into the flat lists of a model. The polygon stream is
/// trusted to be whole: each header is followed by as many corners as it tells.
class cRawMesh {
public:
    struct TangentBasis {
        cVec3 Tangent;
        cVec3 BiTangent;
    };

    /// A link of a chain of welded vertices.
    struct HashEntry {
        int Index;    ///< Of the vertex in its split.
        int Material; ///< Of the split.
        int Point;
        HashEntry* Next;
    };

    cRawMesh() = default;
    cRawMesh(const cRawMesh&) = delete;
    cRawMesh& operator=(const cRawMesh&) = delete;
    ~cRawMesh() { FreeHashTables(); }

    void Clear(); ///< Counts to 0, storage stays. The hash tables are left alone.
    int GetPolyCount() const;
    /// True when every fourth element from the first on tells three corners; also without any.
    bool IsTriangulated() const;
    void ClearMaterials(); ///< All polygons to material 0, no names.
    void InvertRaw();      ///< Turns every polygon's corners round.

    /// Makes the normals anew from the first three corners of each polygon, and sets the corners' normal indexes.
    ///
    /// @param flat  one normal for each polygon. Otherwise one for each point, where a face counts by the cube of its
    ///              area, so that large faces dominate a smooth vertex. A normal of no length becomes (0, 0, 1).
    void CalcNormals(bool flat);

    /// Makes a tangent basis for each normal, from the first three corners of each polygon: the rows of the inverse of
    /// (e1, e2, e1 x e2), weighted by the differences of the texture coordinates. Each vector T counts as T / |T|^2, so
    /// that a small stretch counts most; there is no orthogonalisation, and what has no length becomes (0, 0, 1).
    /// Polygons whose indexes are outside the lists are left out. Without normals or texture coordinates there are no
    /// bases.
    void CalcTangents();

    /// Turns every polygon into a fan around its first corner; those below three corners go. The forms with a list
    /// leave the mesh as it is.
    void Triangulate();
    void Triangulate(cList<cVec<int, 3>>* out) const;

    /// Welds the corners into vertices, for each material one split; a mesh without materials gives one of the name
    /// "default". Corners share a vertex when they share the point and every byte of the vertex. What a corner cannot
    /// supply keeps the value of the corner before it, and is zero at the start.
    ///
    /// @tparam T    a vertex of `cVertex` with a position. Only float attributes of known usage are filled
    /// @param  out  emptied first; the caller deletes the splits. Point and material indexes are trusted
    template <class T> void Split(cList<cRawSplit<T>*>* out) const;

    void FreeHashTables() const; ///< Const, as the tables are working storage.

    cList<cVec3> Points;
    cList<cVec2> TexCoords;
    cList<cVec3> Normals;
    cList<TangentBasis> TangentBases; ///< One for each normal, or none.
    cList<cVec<int, 3>> Polys;
    cList<cStr> Materials;
    cList<cVec4> BlendIndices; ///< One for each point, or none; so the weights.
    cList<cVec4> BlendWeights;
    /// Alive within `Split` only: the vertices by point, and those of points that have many of them by their bytes.
    /// They are shared by all materials; a table for each would take materials times points.
    mutable cList<cList<HashEntry*>> HashTables;

private:
    template <class T> class Welder;

    HashEntry* AddEntry(int index, int material, int point) const;

    mutable cList<HashEntry*> m_EntryBlocks; // owned; the chains are made of their entries
    mutable int m_EntriesLeft = 0;           // in the last block
};

extern template void cRawMesh::Split(cList<cRawSplit<cVertex::Bump>*>*) const;
extern template void cRawMesh::Split(cList<cRawSplit<cVertex::Anim>*>*) const;
extern template void cRawMesh::Split(cList<cRawSplit<cVertex::PositionRhw>*>*) const;

} // namespace trellis
