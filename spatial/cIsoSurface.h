// Surface of a scalar field in a box, made of triangles by marching cubes (Lorensen and Cline, "Marching Cubes: A High
// Resolution 3D Surface Construction Algorithm").
//
//       7 ---6--- 6          corners of a cell, and its edges: 0 to 3 around the ring at the least z, 4 to 7 around the
//     7 |       5 |          other one, 8 to 11 from corners 0 to 3 upward
//     4 ---4--- 5 |
//     | 3 ---2--|- 2
//     8         9
//     0 ---0--- 1
#pragma once

#include "foundation/cList.h"
#include "math/cVec3.h"
#include "mesh/cModel.h"

namespace trellis {

/// `Init` lays the grid out once; an update evaluates the field and walks prepared lists, searches nothing, and
/// allocates nothing once the model's lists have grown. Vertices are shared by the edges that they lie on. The surface
/// is the field's zero level. One thread at a time.
class cIsoSurface {
public:
    struct Point {
        cVec3 Position;
        float Value;
    };
    /// Of the grid; belongs to up to four cells.
    struct Edge {
        const Point* A;
        const Point* B;
        int Vertex; ///< Of the last update; -1: the surface does not cross.
    };
    struct Cell {
        const Point* Points[8];
        Edge* Edges[12];
    };
    struct Metaball {
        cVec3 Position;
        float Radius;
    };

    cIsoSurface() = default;
    cIsoSurface(const cIsoSurface&) = delete; // cells point into the lists
    cIsoSurface& operator=(const cIsoSurface&) = delete;

    /// @param x, y, z  cells along each axis
    /// @return false, and nothing has changed, below one cell, and above 2^27 points or what an address can reach
    bool Init(const cVec3& min, const cVec3& max, int x, int y, int z);

    /// @param field  is called for each point of the grid and four times for each vertex
    void Update(float (*field)(const cVec3& p));

    /// The field -1 + the sum of squared radius / squared distance: a ball by itself has its surface at its radius.
    ///
    /// @param flag  has no effect
    void UpdateMetaballs(const cList<Metaball>& balls, bool flag);

    cVec3 Min = cVec3::Zero, Max = cVec3::Zero;
    cModel Model; ///< The result: static, one mesh of bump vertices with position and normal, down the field.
    int CellCount[3] = {0, 0, 0};
    cList<Point> Points; ///< x runs fastest; so in the cells.
    cList<Edge> Edges;
    cList<Cell> Cells;
    cVec3 DeltaX = cVec3::Zero, DeltaY = cVec3::Zero, DeltaZ = cVec3::Zero; ///< For normals: eighths of a cell.

private:
    void MakePoints();
    void MakeCells();
    void FindMixed();
    template <class Slope> void AddVertex(Edge& edge, const Slope& slope);
    void AddTriangles(const Cell& cell);
    template <class Slope> void Polygonise(const Slope& slope);

    cList<int> m_FirstEdges;      // that each cell has made; they stand in a row
    cList<unsigned char> m_Signs; // of the points
    cList<int> m_Mixed;           // cells whose points differ in that, in order
    cList<Edge*> m_Crossed;       // edges with a vertex
};

/// The balls of the update that runs.
extern const cList<cIsoSurface::Metaball>* cIsoSurface_MetaballsFPU;

/// Their field as a plain function.
float cIsoSurface_FieldFPU(const cVec3& p);

} // namespace trellis
