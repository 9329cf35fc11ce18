// Segments and swept spheres against a terrain beside Bullet, metaballs beside GTS.
#include "Bench.h"

#include "math/cMat4.h"
#include "mesh/cModel.h"
#include "spatial/cCollisionMesh.h"
#include "spatial/cIsoSurface.h"

#include <cmath>
#include <memory>
#include <random>
#include <vector>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Woverloaded-virtual"
#pragma GCC diagnostic ignored "-Wundef"
#include <btBulletCollisionCommon.h>
#pragma GCC diagnostic pop
#include <gts.h>

using namespace trellis;

namespace {

float In(std::mt19937& random, float low, float high) {
    return low + (high - low) * float(random() >> 8) / 16777216.0f;
}

/// Rolling hills with rough ground, `side` by `side` cells of one unit, two triangles each.
std::vector<cVec3> Terrain(int side) {
    std::mt19937 random(7);
    std::vector<cVec3> points, corners;
    for (int i = 0; i < (side + 1) * (side + 1); i++) {
        const float x = float(i % (side + 1)), z = float(i / (side + 1));
        points.push_back({x, 2 * std::sin(x * 0.31f) * std::cos(z * 0.23f) + In(random, 0, 0.6f), z});
    }
    for (int i = 0; i < side * side; i++) {
        const size_t a = size_t(i / side * (side + 1) + i % side), c = a + size_t(side) + 1;
        for (const size_t at : {a, c + 1, a + 1, a, c, c + 1}) {
            corners.push_back(points[at]);
        }
    }
    return corners;
}

struct Way {
    cVec3 From, To;
};
std::vector<Way> Ways(int side, float reach) {
    std::mt19937 random(8);
    std::vector<Way> out;
    for (int i = 0; i < 4096; i++) {
        const cVec3 from(In(random, 5, float(side - 5)), In(random, 4, 7), In(random, 5, float(side - 5)));
        const float x = In(random, -reach, reach), z = In(random, -reach, reach);
        out.push_back({from, from + cVec3(x, In(random, -reach, 1), z)});
    }
    return out;
}

constexpr int s_Side = 100; // 20,000 triangles
constexpr float s_Radius = 0.5f;

void Fill(int side, cCollisionMesh* mesh) {
    cModel model;
    model.Meshes.SetCount(1);
    for (const cVec3& corner : Terrain(side)) {
        model.Meshes[0].Indices.Add(model.Meshes[0].BumpVertices.Add({corner, {}, {}, {}, {}}));
    }
    mesh->Radii = {s_Radius, s_Radius, s_Radius};
    mesh->AddModel(model, cMat4::Identity, 0);
}

const cCollisionMesh& Ours() {
    static cCollisionMesh* s_Mesh = [] {
        auto* mesh = new cCollisionMesh;
        Fill(s_Side, mesh);
        mesh->BuildBsp();
        return mesh;
    }();
    return *s_Mesh;
}

/// The peer's world, in our units.
struct Theirs {
    Theirs() {
        const std::vector<cVec3> corners = Terrain(s_Side);
        for (size_t i = 0; i < corners.size(); i += 3) {
            Mesh.addTriangle(Point(corners[i]), Point(corners[i + 1]), Point(corners[i + 2]));
        }
        Shape = std::make_unique<btBvhTriangleMeshShape>(&Mesh, true);
        Object.setCollisionShape(Shape.get());
        World.addCollisionObject(&Object);
        World.updateAabbs();
    }
    ~Theirs() { World.removeCollisionObject(&Object); }
    static btVector3 Point(const cVec3& p) { return {p.x, p.y, p.z}; }
    float Ray(const Way& way) const {
        const btVector3 from = Point(way.From), to = Point(way.To);
        btCollisionWorld::ClosestRayResultCallback result(from, to);
        World.rayTest(from, to, result);
        return float(result.m_closestHitFraction);
    }
    float Sweep(const Way& way) const {
        const btTransform from(btQuaternion::getIdentity(), Point(way.From));
        const btTransform to(btQuaternion::getIdentity(), Point(way.To));
        btCollisionWorld::ClosestConvexResultCallback result(from.getOrigin(), to.getOrigin());
        World.convexSweepTest(&Sphere, from, to, result);
        return float(result.m_closestHitFraction);
    }
    btTriangleMesh Mesh;
    std::unique_ptr<btBvhTriangleMeshShape> Shape;
    btSphereShape Sphere{s_Radius};
    btCollisionObject Object;
    btDefaultCollisionConfiguration Configuration;
    btCollisionDispatcher Dispatcher{&Configuration};
    btDbvtBroadphase Broadphase;
    btCollisionWorld World{&Dispatcher, &Broadphase, &Configuration};
};

/// The tree is in the mesh's space, in which the sphere's radius is 1. @return share of the way, 1 without a hit
float Ray(const Way& way) {
    const cVec3 from = way.From / s_Radius, to = way.To / s_Radius;
    cVec3 point;
    return Ours().Bsp.Intersects(from, to, &point, nullptr) ? (point - from).Length() / (to - from).Length() : 1;
}
float Sweep(const Way& way) {
    cVec3 to = way.To;
    Ours().Collide(way.From, &to, nullptr, 0, 0, nullptr, nullptr, nullptr);
    return (to - way.From).Length() / (way.To - way.From).Length();
}

/// All but one in two hundred, which pass an edge closely, agree to 0.02 units.
bool Agree(const std::vector<Way>& ways, float (*ours)(const Way&), float (Theirs::*theirs)(const Way&) const) {
    const Theirs peer;
    int hits = 0, others = 0;
    for (const Way& way : ways) {
        const float share = (peer.*theirs)(way);
        hits += share < 1;
        others += std::fabs(ours(way) - share) * (way.To - way.From).Length() > 0.02f;
    }
    return hits > 500 && others <= int(ways.size()) / 200;
}
cBenchCheck s_Segments("segments", [] { return Agree(Ways(s_Side, 20), Ray, &Theirs::Ray); });
cBenchCheck s_Sweeps("sweeps", [] { return Agree(Ways(s_Side, 6), Sweep, &Theirs::Sweep); });

template <class Query> void Run(benchmark::State& state, const std::vector<Way>& ways, Query query) {
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(query(ways[i++ % ways.size()]));
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_Segment_Trellis(benchmark::State& state) {
    Run(state, Ways(s_Side, float(state.range(0))), Ray);
}
BENCHMARK(BM_Segment_Trellis)->Arg(5)->Arg(20)->Arg(80);

void BM_Segment_Bullet(benchmark::State& state) {
    const Theirs peer;
    Run(state, Ways(s_Side, float(state.range(0))), [&peer](const Way& way) { return peer.Ray(way); });
}
BENCHMARK(BM_Segment_Bullet)->Arg(5)->Arg(20)->Arg(80);

void BM_Sweep_Trellis(benchmark::State& state) {
    Run(state, Ways(s_Side, float(state.range(0))), Sweep);
}
BENCHMARK(BM_Sweep_Trellis)->Arg(1)->Arg(6);

void BM_Sweep_Bullet(benchmark::State& state) {
    const Theirs peer;
    Run(state, Ways(s_Side, float(state.range(0))), [&peer](const Way& way) { return peer.Sweep(way); });
}
BENCHMARK(BM_Sweep_Bullet)->Arg(1)->Arg(6);

void BM_Build_Trellis(benchmark::State& state) { // of about that many triangles
    const int side = int(std::sqrt(double(state.range(0)) / 2));
    cCollisionMesh mesh;
    Fill(side, &mesh);
    for (auto _ : state) {
        mesh.BuildBsp();
    }
    state.SetItemsProcessed(state.iterations() * side * side * 2);
}
BENCHMARK(BM_Build_Trellis)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Build_Trellis)->Arg(20000)->Iterations(1)->Unit(benchmark::kMillisecond);

// ---- Surfaces

constexpr int s_Cells = 64;

cList<cIsoSurface::Metaball> Balls() {
    std::mt19937 random(9);
    cList<cIsoSurface::Metaball> out;
    for (int i = 0; i < 8; i++) {
        const float x = In(random, -0.6f, 0.6f), y = In(random, -0.6f, 0.6f);
        out.Add({{x, y, In(random, -0.6f, 0.6f)}, 0.12f});
    }
    return out;
}

double FieldAt(const cList<cIsoSurface::Metaball>& balls, double x, double y, double z) {
    double sum = -1;
    for (const cIsoSurface::Metaball& ball : balls) {
        const double dx = x - ball.Position.x, dy = y - ball.Position.y, dz = z - ball.Position.z;
        sum += ball.Radius * ball.Radius / (dx * dx + dy * dy + dz * dz);
    }
    return sum;
}

void FillSlice(gdouble** values, GtsCartesianGrid grid, guint, gpointer data) {
    const auto& balls = *static_cast<const cList<cIsoSurface::Metaball>*>(data);
    for (guint x = 0; x < grid.nx; x++) {
        for (guint y = 0; y < grid.ny; y++) {
            values[x][y] = FieldAt(balls, grid.x + x * grid.dx, grid.y + y * grid.dy, grid.z);
        }
    }
}

/// @return the surface's area
double ByPeer(cList<cIsoSurface::Metaball>& balls) {
    GtsSurface* surface = gts_surface_new(gts_surface_class(), gts_face_class(), gts_edge_class(), gts_vertex_class());
    const double step = 2.0 / s_Cells;
    const GtsCartesianGrid grid = {s_Cells + 1, s_Cells + 1, s_Cells + 1, -1, step, -1, step, -1, step};
    gts_isosurface_cartesian(surface, grid, FillSlice, &balls, 0);
    const double area = gts_surface_area(surface);
    gts_object_destroy(GTS_OBJECT(surface));
    return area;
}

cBenchCheck s_Surfaces("surfaces", [] {
    cList<cIsoSurface::Metaball> balls = Balls();
    cIsoSurface surface;
    surface.Init({-1, -1, -1}, {1, 1, 1}, s_Cells, s_Cells, s_Cells);
    surface.UpdateMetaballs(balls, true);
    const cModel::Mesh& mesh = surface.Model.Meshes[0];
    double area = 0;
    for (int i = 0; i < mesh.Indices.Count(); i += 3) {
        const cVec3 &a = mesh.BumpVertices[mesh.Indices[i]].Pos, &b = mesh.BumpVertices[mesh.Indices[i + 1]].Pos,
                    &c = mesh.BumpVertices[mesh.Indices[i + 2]].Pos;
        area += cVec3::Cross(b - a, c - a).Length() / 2;
    }
    const double peer = ByPeer(balls);
    return area > 0.5 && std::fabs(area - peer) < 0.02 * area;
});

void BM_Metaballs_Trellis(benchmark::State& state) {
    const cList<cIsoSurface::Metaball> balls = Balls();
    cIsoSurface surface;
    surface.Init({-1, -1, -1}, {1, 1, 1}, s_Cells, s_Cells, s_Cells);
    for (auto _ : state) {
        surface.UpdateMetaballs(balls, true);
    }
    state.SetItemsProcessed(state.iterations() * s_Cells * s_Cells * s_Cells);
}
BENCHMARK(BM_Metaballs_Trellis)->Unit(benchmark::kMillisecond);

/// Of the above, what the field at the points takes: balls too small to show.
void BM_Metaballs_TrellisFieldOnly(benchmark::State& state) {
    cList<cIsoSurface::Metaball> balls = Balls();
    cIsoSurface surface;
    surface.Init({-1, -1, -1}, {1, 1, 1}, s_Cells, s_Cells, s_Cells);
    for (cIsoSurface::Metaball& ball : balls) {
        ball.Radius = 1e-9f;
    }
    for (auto _ : state) {
        surface.UpdateMetaballs(balls, true);
    }
    state.SetItemsProcessed(state.iterations() * s_Cells * s_Cells * s_Cells);
}
BENCHMARK(BM_Metaballs_TrellisFieldOnly)->Unit(benchmark::kMillisecond);

void BM_Metaballs_Gts(benchmark::State& state) {
    cList<cIsoSurface::Metaball> balls = Balls();
    for (auto _ : state) {
        benchmark::DoNotOptimize(ByPeer(balls));
    }
    state.SetItemsProcessed(state.iterations() * s_Cells * s_Cells * s_Cells);
}
BENCHMARK(BM_Metaballs_Gts)->Unit(benchmark::kMillisecond);

} // namespace
