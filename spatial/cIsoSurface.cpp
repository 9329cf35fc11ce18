#include "spatial/cIsoSurface.h"

#include "spatial/MCTris.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace trellis {

const cList<cIsoSurface::Metaball>* cIsoSurface_MetaballsFPU = nullptr;

namespace {

constexpr int s_EdgeCorners[12][2] = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                                      {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};

/// An edge that a cell shares with its neighbour before it along an axis, and that one's number for it.
struct Shared {
    int Own, Theirs;
};
constexpr Shared s_Shared[3][4] = {
    {{3, 1}, {7, 5}, {8, 9}, {11, 10}},
    {{0, 2}, {4, 6}, {8, 11}, {9, 10}},
    {{0, 4}, {1, 5}, {2, 6}, {3, 7}},
};

float FieldOf(const cList<cIsoSurface::Metaball>& balls, const cVec3& p) {
    float sum = -1;
    for (const cIsoSurface::Metaball& ball : balls) {
        const float x = p.x - ball.Position.x, y = p.y - ball.Position.y, z = p.z - ball.Position.z;
        sum += ball.Radius * ball.Radius / (x * x + y * y + z * z);
    }
    return sum;
}

void EvaluatePlain(const cList<cIsoSurface::Metaball>& balls, cIsoSurface::Point* points, int count) {
    for (int i = 0; i < count; i++) {
        points[i].Value = FieldOf(balls, points[i].Position);
    }
}

#ifdef __SSE2__
/// Four points at a time, each by the operations of the plain form in their order.
void Evaluate(const cList<cIsoSurface::Metaball>& balls, cIsoSurface::Point* points, int count) {
    static_assert(sizeof(cIsoSurface::Point) == 16);
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        float* p = points[i].Position.ToPtr();
        __m128 x = _mm_loadu_ps(p), y = _mm_loadu_ps(p + 4), z = _mm_loadu_ps(p + 8), w = _mm_loadu_ps(p + 12);
        _MM_TRANSPOSE4_PS(x, y, z, w);
        __m128 sum = _mm_set1_ps(-1);
        for (const cIsoSurface::Metaball& ball : balls) {
            const __m128 dx = _mm_sub_ps(x, _mm_set1_ps(ball.Position.x));
            const __m128 dy = _mm_sub_ps(y, _mm_set1_ps(ball.Position.y));
            const __m128 dz = _mm_sub_ps(z, _mm_set1_ps(ball.Position.z));
            const __m128 d2 = _mm_add_ps(_mm_add_ps(_mm_mul_ps(dx, dx), _mm_mul_ps(dy, dy)), _mm_mul_ps(dz, dz));
            sum = _mm_add_ps(sum, _mm_div_ps(_mm_set1_ps(ball.Radius * ball.Radius), d2));
        }
        _MM_TRANSPOSE4_PS(x, y, z, sum);
        _mm_storeu_ps(p, x);
        _mm_storeu_ps(p + 4, y);
        _mm_storeu_ps(p + 8, z);
        _mm_storeu_ps(p + 12, sum);
    }
    EvaluatePlain(balls, points + i, count - i);
}
#else
void Evaluate(const cList<cIsoSurface::Metaball>& balls, cIsoSurface::Point* points, int count) {
    EvaluatePlain(balls, points, count);
}
#endif

} // namespace

float cIsoSurface_FieldFPU(const cVec3& p) {
    return cIsoSurface_MetaballsFPU ? FieldOf(*cIsoSurface_MetaballsFPU, p) : -1;
}

bool cIsoSurface::Init(const cVec3& min, const cVec3& max, int x, int y, int z) {
    constexpr long long Most = 1 << 27; // the edges are three times as many, and are counted in an int
    constexpr long long MostCells = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(Cell);
    if (x < 1 || y < 1 || z < 1 || x > Most || y > Most || z > Most || (long long)x * y > Most ||
        (long long)(x + 1) * (y + 1) * (z + 1) > Most || (long long)x * y * z > MostCells) {
        return false;
    }
    Points.Clear(); // a surface without a grid does nothing, should memory run out below
    Cells.Clear();
    m_Mixed.Clear();
    m_Crossed.Clear();
    Min = min;
    Max = max;
    CellCount[0] = x;
    CellCount[1] = y;
    CellCount[2] = z;
    DeltaX = {(max.x - min.x) / float(x * 8LL), 0, 0};
    DeltaY = {0, (max.y - min.y) / float(y * 8LL), 0};
    DeltaZ = {0, 0, (max.z - min.z) / float(z * 8LL)};
    Model.Free();
    Model.Meshes.SetCount(1);
    MakePoints();
    MakeCells();
    return true;
}

void cIsoSurface::MakePoints() {
    const int *n = CellCount, count = (n[0] + 1) * (n[1] + 1) * (n[2] + 1);
    const cVec3 size = Max - Min;
    Points.SetCount(count);
    Point* point = Points.Data();
    for (int k = 0; k <= n[2]; k++) {
        for (int j = 0; j <= n[1]; j++) {
            for (int i = 0; i <= n[0]; i++) {
                const cVec3 share(float(i) / float(n[0]), float(j) / float(n[1]), float(k) / float(n[2]));
                *point++ = {{Min.x + size.x * share.x, Min.y + size.y * share.y, Min.z + size.z * share.z}, 0};
            }
        }
    }
}

/// Each cell takes the edges that its neighbours before it have made, and makes those that are missing.
void cIsoSurface::MakeCells() {
    const int x = CellCount[0], y = CellCount[1], z = CellCount[2];
    Edges.SetCount(3 * x * y * z + 2 * ((y + z) * x + y * z) + x + y + z);
    Cells.SetCount(x * y * z);
    m_FirstEdges.SetCount(Cells.Count() + 1);
    m_Mixed.EnsureCapacity(Cells.Count(), false);
    const int steps[3] = {1, x, x * y}; // to the neighbour's place in the list
    Edge* free = Edges.Data();
    Cell* cell = Cells.Data();
    for (int k = 0; k < z; k++) {
        for (int j = 0; j < y; j++) {
            for (int i = 0; i < x; i++, cell++) {
                const Point* corner = &Points[(k * (y + 1) + j) * (x + 1) + i];
                const int row = x + 1, layer = row * (y + 1);
                *cell = {{corner, corner + 1, corner + row + 1, corner + row, corner + layer, corner + layer + 1,
                          corner + layer + row + 1, corner + layer + row},
                         {}};
                const int place[3] = {i, j, k};
                for (int axis = 0; axis < 3; axis++) {
                    for (const Shared& shared : s_Shared[axis]) {
                        if (place[axis] > 0) {
                            cell->Edges[shared.Own] = cell[-steps[axis]].Edges[shared.Theirs];
                        }
                    }
                }
                m_FirstEdges[int(cell - Cells.Data())] = int(free - Edges.Data());
                for (int edge = 0; edge < 12; edge++) {
                    if (!cell->Edges[edge]) {
                        *free = {cell->Points[s_EdgeCorners[edge][0]], cell->Points[s_EdgeCorners[edge][1]], -1};
                        cell->Edges[edge] = free++;
                    }
                }
            }
        }
    }
    m_FirstEdges[Cells.Count()] = Edges.Count();
}

/// Of most cells nothing but a byte for each point is read: 0 to 3 by being below 0, and by the sign as it is stored.
void cIsoSurface::FindMixed() {
    m_Signs.SetCount(Points.Count());
    for (int i = 0; i < Points.Count(); i++) {
        const float value = Points[i].Value;
        m_Signs[i] = static_cast<unsigned char>((value < 0.0f) | (std::bit_cast<unsigned int>(value) >> 31 << 1));
    }
    m_Mixed.Clear();
    const int x = CellCount[0], y = CellCount[1], z = CellCount[2], row = x + 1, layer = row * (y + 1);
    for (int k = 0; k < z; k++) {
        for (int j = 0; j < y; j++) {
            const unsigned char* first = &m_Signs[k * layer + j * row];
            const int cell = (k * y + j) * x;
            int i = 0;
            while (i < x) {
                const unsigned char *p = first + i, *rows[4] = {p, p + row, p + layer, p + layer + row};
                if (i + 7 <= x) { // seven cells between eight columns of points
                    unsigned long long any = 0, all = ~0ULL;
                    for (const unsigned char* r : rows) {
                        unsigned long long eight;
                        std::memcpy(&eight, r, 8);
                        any |= eight;
                        all &= eight;
                    }
                    if (any == all && any == *p * 0x0101010101010101ULL) {
                        i += 7;
                        continue;
                    }
                }
                for (const int end = std::min(i + 7, x); i < end; i++, p++) {
                    const unsigned char own = *p;
                    if (((p[1] ^ own) | (p[row] ^ own) | (p[row + 1] ^ own) | (p[layer] ^ own) | (p[layer + 1] ^ own) |
                         (p[layer + row] ^ own) | (p[layer + row + 1] ^ own)) != 0) {
                        m_Mixed.Add(cell + i);
                    }
                }
            }
        }
    }
}

template <class Slope> void cIsoSurface::AddVertex(Edge& edge, const Slope& slope) {
    cModel::Mesh& mesh = Model.Meshes[0];
    const float a = edge.A->Value, b = edge.B->Value;
    // By the signs as they are stored: 0 and -0 differ, as they do for nobody else.
    if (((std::bit_cast<unsigned int>(a) ^ std::bit_cast<unsigned int>(b)) & 0x80000000u) == 0) {
        return;
    }
    float t = a / (a - b);
    if (std::isnan(t)) { // beside the middle of a ball, where the field is infinite; or between 0 and -0
        t = std::isinf(a) && !std::isinf(b) ? 1.0f : 0.0f;
    }
    const cVec3 p = edge.A->Position + (edge.B->Position - edge.A->Position) * t;
    const cVec3 down = slope(p);
    edge.Vertex = mesh.BumpVertices.Count();
    mesh.BumpVertices.SetCount(edge.Vertex + 1);
    cVertex::Bump& vertex = mesh.BumpVertices[edge.Vertex];
    vertex.Pos = p;
    vertex.Normal = cVec3::Normalize(down); // zero stays zero
    m_Crossed.Add(&edge);
}

void cIsoSurface::AddTriangles(const Cell& cell) {
    cModel::Mesh& mesh = Model.Meshes[0];
    int below = 0;
    for (int i = 0; i < 8; i++) {
        below |= (cell.Points[i]->Value < 0.0f) << i;
    }
    const int* row = MCTris[below];
    for (int i = 1; i <= row[0]; i += 3) {
        const int triangle[3] = {cell.Edges[row[i]]->Vertex, cell.Edges[row[i + 1]]->Vertex,
                                 cell.Edges[row[i + 2]]->Vertex};
        if (triangle[0] != -1 && triangle[1] != -1 && triangle[2] != -1) { // a -0 or NaN makes the two tests differ
            mesh.Indices.AddRange(triangle, 3);
        }
    }
}

/// @param slope  of a place: what the field loses along each step
template <class Slope> void cIsoSurface::Polygonise(const Slope& slope) {
    if (Model.Meshes.IsEmpty()) {
        return;
    }
    cModel::Mesh& mesh = Model.Meshes[0];
    mesh.BumpVertices.SetCount(0);
    mesh.Indices.SetCount(0);
    for (Edge* edge : m_Crossed) {
        edge->Vertex = -1;
    }
    m_Crossed.Clear();
    FindMixed();
    for (const int i : m_Mixed) {
        for (int e = m_FirstEdges[i]; e < m_FirstEdges[i + 1]; e++) {
            AddVertex(Edges[e], slope);
        }
    }
    for (const int i : m_Mixed) {
        AddTriangles(Cells[i]);
    }
}

void cIsoSurface::Update(float (*field)(const cVec3& p)) {
    for (Point& point : Points) {
        point.Value = field(point.Position);
    }
    Polygonise([this, field](const cVec3& p) {
        const float value = field(p);
        return cVec3{value - field(p + DeltaX), value - field(p + DeltaY), value - field(p + DeltaZ)}; // in that order
    });
}

void cIsoSurface::UpdateMetaballs(const cList<Metaball>& balls, bool flag) {
    (void)flag;
    cIsoSurface_MetaballsFPU = &balls;
    Evaluate(balls, Points.Data(), Points.Count());
    Polygonise([this, &balls](const cVec3& p) {
        Point points[4] = {{p, 0}, {p + DeltaX, 0}, {p + DeltaY, 0}, {p + DeltaZ, 0}};
        Evaluate(balls, points, 4);
        const float value = points[0].Value;
        return cVec3(value - points[1].Value, value - points[2].Value, value - points[3].Value);
    });
    cIsoSurface_MetaballsFPU = nullptr;
}

} // namespace trellis
