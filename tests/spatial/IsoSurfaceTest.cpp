#include "spatial/cIsoSurface.h"

#include <climits>
#include <cstring>
#include <limits>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "../render/Allocations.h"
#include "Soups.h"
#include "spatial/MCTris.h"

namespace trellis {

namespace {

using Balls = cList<cIsoSurface::Metaball>;

const cModel::Mesh& MeshOf(const cIsoSurface& surface) {
    return surface.Model.Meshes[0];
}

/// Every edge belongs to two triangles, one each way.
void ExpectClosed(const cIsoSurface& surface) {
    const cModel::Mesh& mesh = MeshOf(surface);
    std::set<std::pair<int, int>> edges;
    for (int i = 0; i < mesh.Indices.Count(); i++) {
        const int a = mesh.Indices[i], b = mesh.Indices[i % 3 == 2 ? i - 2 : i + 1];
        ASSERT_TRUE(edges.insert({a, b}).second) << a << ' ' << b;
    }
    for (const auto& [a, b] : edges) {
        ASSERT_TRUE(edges.contains({b, a})) << a << ' ' << b;
    }
}

unsigned s_Seed;
float Noise(const cVec3& p) {
    const bool isBorder = std::min({p.x, p.y, p.z}) < 0.5f || std::max({p.x, p.y, p.z}) > 7.5f;
    const long x = std::lround(p.x), y = std::lround(p.y), z = std::lround(p.z);
    unsigned hash = unsigned(x * 73856093) ^ unsigned(y * 19349663) ^ unsigned(z * 83492791) ^ s_Seed;
    hash = (hash ^ (hash >> 15)) * 2246822519u;
    hash = (hash ^ (hash >> 13)) * 3266489917u;
    return isBorder ? -1 : float(int(hash >> 8) - (1 << 23)) / float(1 << 23);
}

TEST(IsoSurface, RandomFieldsGiveClosedSurfaces) {
    cIsoSurface surface;
    ASSERT_TRUE(surface.Init(cVec3::Zero, {8, 8, 8}, 8, 8, 8));
    for (s_Seed = 0; s_Seed < 200; s_Seed++) {
        surface.Update(Noise);
        ASSERT_GT(MeshOf(surface).Indices.Count(), 1000);
        ExpectClosed(surface);
    }
}

constexpr int s_Ends[12][2] = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                               {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};

TEST(IsoSurface, Table) {
    for (int row = 0; row < 256; row++) {
        // Each edge whose corners are on different sides is used, and no other.
        int crossed = 0, used = 0;
        for (int edge = 0; edge < 12; edge++) {
            crossed |= (((row >> s_Ends[edge][0]) ^ (row >> s_Ends[edge][1])) & 1) << edge;
        }
        ASSERT_EQ(MCTris[row][0] % 3, 0);
        for (int i = 1; i <= MCTris[row][0]; i++) {
            used |= 1 << MCTris[row][i];
        }
        EXPECT_EQ(used, crossed) << row;
        for (int i = MCTris[row][0] + 1; i < 16; i++) {
            EXPECT_EQ(MCTris[row][i], 0) << row;
        }
    }
}

/// The plain way: all edges in their order, then all cells in theirs.
TEST(IsoSurface, ListsAreWalkedInOrder) {
    cIsoSurface surface;
    for (s_Seed = 0; s_Seed < 60; s_Seed++) {
        const int x = 1 + int(s_Seed) % 17, y = 1 + int(s_Seed) % 4, z = 1 + int(s_Seed) % 3;
        ASSERT_TRUE(surface.Init({-1, 0, 1}, {-1 + float(x), 3 * float(y), 1 + 2 * float(z)}, x, y, z));
        ASSERT_TRUE(MeshOf(surface).Indices.IsEmpty());
        static int s_Calls;
        s_Calls = 0;
        surface.Update([](const cVec3& p) {
            s_Calls++;
            const float noise = Noise(p * 0.7f + cVec3(3, 1, 0));
            return s_Seed % 2 ? noise : noise < 0.9f ? -1.0f : 1.0f; // few cells that the surface crosses
        });
        std::vector<int> indices;
        int vertices = 0;
        for (const cIsoSurface::Edge& edge : surface.Edges) {
            const float a = edge.A->Value, b = edge.B->Value;
            ASSERT_EQ(edge.Vertex, std::signbit(a) == std::signbit(b) ? -1 : vertices);
            if (edge.Vertex != -1) {
                const cVec3 at = edge.A->Position + (edge.B->Position - edge.A->Position) * (a / (a - b));
                ASSERT_EQ(MeshOf(surface).BumpVertices[vertices++].Pos, at);
            }
        }
        EXPECT_EQ(s_Calls, surface.Points.Count() + 4 * vertices);
        for (const cIsoSurface::Cell& cell : surface.Cells) {
            const auto place = [&](const cIsoSurface::Point* p) { return int(p - surface.Points.Data()); };
            int below = 0;
            for (int i = 0; i < 8; i++) {
                constexpr int Steps[8][3] = {{}, {1}, {1, 1}, {0, 1}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
                const int step = (Steps[i][2] * (y + 1) + Steps[i][1]) * (x + 1) + Steps[i][0];
                const cIsoSurface::Point* point = cell.Points[i];
                ASSERT_EQ(place(point), place(cell.Points[0]) + step);
                below += point->Value < 0 ? 1 << i : 0;
            }
            for (int i = 0; i < 12; i++) {
                ASSERT_EQ(std::minmax(cell.Edges[i]->A, cell.Edges[i]->B),
                          std::minmax(cell.Points[s_Ends[i][0]], cell.Points[s_Ends[i][1]]));
            }
            for (int i = 1; i <= MCTris[below][0]; i++) {
                indices.push_back(cell.Edges[MCTris[below][i]]->Vertex);
            }
        }
        const cList<int>& made = MeshOf(surface).Indices;
        EXPECT_EQ(std::vector<int>(made.begin(), made.end()), indices);
    }
}

TEST(IsoSurface, PointsAndEdges) {
    for (const auto& [x, y, z, edges] : {std::array{1, 1, 1, 12}, {2, 1, 1, 20}, {2, 3, 4, 133}}) {
        cIsoSurface surface;
        ASSERT_TRUE(surface.Init({-1, -1, -1}, {1, 2, 3}, x, y, z));
        EXPECT_EQ(surface.Points.Count(), (x + 1) * (y + 1) * (z + 1));
        EXPECT_EQ(surface.Cells.Count(), x * y * z);
        EXPECT_EQ(surface.Points[surface.Points.Count() - 1].Position, cVec3(1, 2, 3));
        EXPECT_EQ(surface.DeltaX, cVec3(2.0f / float(8 * x), 0, 0));
        // Each pair of neighbouring points has one edge, and every one is made.
        std::map<std::pair<const void*, const void*>, int> known;
        for (const cIsoSurface::Edge& edge : surface.Edges) {
            ASSERT_TRUE(edge.A && edge.B);
            EXPECT_EQ(known[std::minmax<const void*>(edge.A, edge.B)]++, 0);
        }
        EXPECT_EQ(surface.Edges.Count(), edges);
    }
}

TEST(IsoSurface, InitRefusesAndKeeps) {
    cIsoSurface surface;
    surface.Update(Noise); // before the first one nothing happens
    ASSERT_TRUE(surface.Init(cVec3::Zero, cVec3::One, 3, 2, 1));
    for (const auto& [x, y, z] : {std::array{0, 1, 1}, {1, 0, 1}, {1, 1, -1}, {INT_MAX, 1, 1}, {1024, 1024, 1024}}) {
        EXPECT_FALSE(surface.Init(cVec3::Zero, cVec3::Zero, x, y, z));
        EXPECT_EQ(surface.Points.Count(), 24);
        EXPECT_EQ(surface.Max, cVec3::One);
    }
    ASSERT_TRUE(surface.Init(cVec3::Zero, cVec3::One, 1, 1, 1));
    EXPECT_EQ(surface.Edges.Count(), 12);
}

TEST(IsoSurface, MetaballsAreTheSameAsTheirField) {
    cIsoSurface a, b;
    for (const int size : {1, 7, 20}) { // 8 points, and others that are no multiple of 4
        ASSERT_TRUE(a.Init({-4, -4, -4}, {4, 4, 4}, size, size, size + 1));
        ASSERT_TRUE(b.Init({-4, -4, -4}, {4, 4, 4}, size, size, size + 1));
        Random random{unsigned(size)};
        Balls balls;
        for (int count = 0; count < 6; count++) {
            a.UpdateMetaballs(balls, count % 2 == 0);
            cIsoSurface_MetaballsFPU = &balls;
            b.Update(cIsoSurface_FieldFPU);
            const cModel::Mesh &m = MeshOf(a), &n = MeshOf(b);
            ASSERT_EQ(m.BumpVertices.Count(), n.BumpVertices.Count());
            ASSERT_EQ(m.Indices.Count(), n.Indices.Count());
            EXPECT_TRUE(count > 0 || m.Indices.IsEmpty());
            for (int i = 0; i < a.Points.Count(); i++) {
                ASSERT_EQ(std::memcmp(&a.Points[i].Value, &b.Points[i].Value, 4), 0);
            }
            for (int i = 0; i < m.BumpVertices.Count(); i++) {
                ASSERT_EQ(std::memcmp(&m.BumpVertices[i], &n.BumpVertices[i], sizeof(cVertex::Bump)), 0);
            }
            EXPECT_TRUE(m.Indices.IsEmpty() ||
                        std::memcmp(m.Indices.Data(), n.Indices.Data(), size_t(m.Indices.Count()) * 4) == 0);
            balls.Add({random.Point(3), random.In(0.5f, 1.5f)});
        }
    }
    cIsoSurface_MetaballsFPU = nullptr;
    EXPECT_EQ(cIsoSurface_FieldFPU(cVec3::Zero), -1); // no call is running
}

TEST(IsoSurface, ABallIsASphereThatLooksOutward) {
    cIsoSurface surface;
    ASSERT_TRUE(surface.Init({-2, -2, -2}, {2, 2, 2}, 40, 40, 40));
    Balls balls;
    balls.Add({{0.03f, -0.02f, 0.01f}, 1.5f});
    surface.UpdateMetaballs(balls, true);
    const cModel::Mesh& mesh = MeshOf(surface);
    ASSERT_GT(mesh.BumpVertices.Count(), 1000);
    ExpectClosed(surface);
    for (const cVertex::Bump& v : mesh.BumpVertices) {
        const cVec3 way = v.Pos - balls[0].Position;
        EXPECT_NEAR(way.Length(), 1.5f, 0.003f);
        EXPECT_GT(cVec3::Dot(v.Normal, way) / way.Length(), 0.99f);
        EXPECT_EQ(v.Tangent, cVec3::Zero);
    }
    int outward = 0;
    double volume = 0;
    for (int i = 0; i < mesh.Indices.Count(); i += 3) {
        const Exact a = mesh.BumpVertices[mesh.Indices[i]].Pos, b = mesh.BumpVertices[mesh.Indices[i + 1]].Pos,
                    c = mesh.BumpVertices[mesh.Indices[i + 2]].Pos;
        volume += Dot(a, Cross(b, c)) / 6;
        outward += Dot(Cross(b - a, c - a), a) > 0;
    }
    EXPECT_NEAR(volume, 4.0 / 3 * 3.14159265 * 3.375, 0.1);
    EXPECT_EQ(outward, mesh.Indices.Count() / 3);
}

long s_Apart;
float Points(const cVec3& p) { // of every second, or of every fourth place alone
    const long x = std::lround(p.x), y = std::lround(p.y), z = std::lround(p.z);
    const bool isWithin = std::max({x, y, z}) < (s_Apart == 2 ? 13 : 36);
    return isWithin && (s_Apart == 4 ? (x | y | z) % s_Apart == 0 : (x + y + z) % 2 == 0) ? 1.0f : -1.0f;
}

TEST(IsoSurface, GrownListsAllocateNothing) {
    cIsoSurface surface;
    ASSERT_TRUE(surface.Init(cVec3::Zero, {40, 40, 40}, 40, 40, 40));
    s_Apart = 2;
    surface.Update(Points);
    const int before = AllocationCount(), vertices = MeshOf(surface).BumpVertices.Count();
    s_Apart = 4; // fewer vertices in more cells
    surface.Update(Points);
    EXPECT_LT(MeshOf(surface).BumpVertices.Count(), vertices);
    surface.UpdateMetaballs({}, true);
    EXPECT_EQ(AllocationCount(), before);
}

float s_Value;
TEST(IsoSurface, WholeFieldsAndOddValues) {
    cIsoSurface surface;
    ASSERT_TRUE(surface.Init(cVec3::Zero, {4, 4, 4}, 4, 4, 4));
    for (const float value : {-1.0f, 1.0f, std::numeric_limits<float>::infinity(), -0.0f}) {
        s_Value = value;
        surface.Update([](const cVec3&) { return s_Value; });
        EXPECT_TRUE(MeshOf(surface).BumpVertices.IsEmpty());
        EXPECT_TRUE(MeshOf(surface).Indices.IsEmpty());
    }
    surface.Update([](const cVec3& p) { return p.x < 2 ? -0.0f : 0.0f; }); // differ in sign, not below 0
    EXPECT_EQ(MeshOf(surface).BumpVertices.Count(), 25);
    EXPECT_TRUE(MeshOf(surface).Indices.IsEmpty());

    Balls balls; // on a point of the grid, which is inside, and smaller than a cell
    balls.Add({{2, 2, 2}, 0.5f});
    surface.UpdateMetaballs(balls, true);
    const cModel::Mesh& mesh = MeshOf(surface);
    EXPECT_EQ(mesh.BumpVertices.Count(), 6);
    EXPECT_EQ(mesh.Indices.Count(), 24);
    ExpectClosed(surface);
    for (const cVertex::Bump& v : mesh.BumpVertices) {
        EXPECT_NEAR((v.Pos - cVec3(2, 2, 2)).Length(), 1, 1e-5f);
        EXPECT_NEAR(v.Normal.Length(), 1, 1e-5f);
    }
    balls[0].Radius = 0; // 0 / 0
    surface.UpdateMetaballs(balls, true);
    EXPECT_TRUE(mesh.Indices.IsEmpty());
}

} // namespace

} // namespace trellis
