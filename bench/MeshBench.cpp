// Meshes of 199,712 triangles: welding, tangents, rays.
#include "Bench.h"

#include "mesh/cModel.h"
#include "mesh/cRawMesh.h"

#include <assimp/Importer.hpp>
#include <assimp/mesh.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <meshoptimizer.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

using namespace trellis;
using Bump = cVertex::Bump;

namespace {

constexpr int s_Side = 316; // quads
constexpr int s_Chart = 16; // quads between two seams of the texture
constexpr int s_Triangles = s_Side * s_Side * 2;

/// A hilly field, as a file holds it: points and normals are shared, the texture coordinates are cut along the seams,
/// so that the points there have two vertices or four.
const cRawMesh& Field() {
    static const cRawMesh& field = *[] {
        auto* mesh = new cRawMesh;
        for (int y = 0; y <= s_Side; y++) {
            for (int x = 0; x <= s_Side; x++) {
                mesh->Points.Add({float(x), 3 * std::sin(float(x) * 0.1f) * std::cos(float(y) * 0.13f), -float(y)});
            }
        }
        constexpr int charts = (s_Side + s_Chart - 1) / s_Chart;
        constexpr int row = s_Chart + 1, chartSize = row * row;
        for (int i = 0; i < charts * charts * chartSize; i++) {
            const int chart = i / chartSize, inside = i % chartSize;
            mesh->TexCoords.Add({float(chart) + float(inside % row) / 64, float(inside / row) / 64});
        }
        for (int quad = 0; quad < s_Side * s_Side; quad++) {
            const int x = quad % s_Side, y = quad / s_Side;
            const auto corner = [&](int dx, int dy) {
                const int point = (y + dy) * (s_Side + 1) + x + dx;
                const int chart = y / s_Chart * charts + x / s_Chart;
                return cVec<int, 3>(point, chart * chartSize + (y % s_Chart + dy) * row + x % s_Chart + dx, point);
            };
            const cVec<int, 3> header(3, 0, 0);
            const cVec<int, 3> two[] = {header, corner(0, 0), corner(1, 0), corner(1, 1),
                                        header, corner(0, 0), corner(1, 1), corner(0, 1)};
            mesh->Polys.AddRange(two, 8);
        }
        mesh->CalcNormals(false);
        mesh->CalcTangents();
        return mesh;
    }();
    return field;
}

/// What the peers' welding starts from: every corner's vertex, spelt out. Ours gathers them within its time.
const std::vector<Bump>& Corners() {
    static const auto& corners = *[] {
        auto* list = new std::vector<Bump>;
        const cRawMesh& mesh = Field();
        for (int i = 0; i < mesh.Polys.Count(); i++) {
            if (i % 4 != 0) {
                const cVec<int, 3>& c = mesh.Polys[i];
                const cRawMesh::TangentBasis& basis = mesh.TangentBases[c[2]];
                list->push_back(
                    {mesh.Points[c[0]], mesh.Normals[c[2]], mesh.TexCoords[c[1]], basis.Tangent, basis.BiTangent});
            }
        }
        return list;
    }();
    return corners;
}

struct SplitOurs {
    SplitOurs() { Field().Split(&Splits); }
    ~SplitOurs() { delete Splits[0]; }
    const Bump* VertexData() const { return Splits[0]->Vertices.Data(); }
    size_t VertexCount() const { return size_t(Splits[0]->Vertices.Count()); }
    const void* IndexData() const { return Splits[0]->Indices.Data(); }

    cList<cRawSplit<Bump>*> Splits;
};

struct SplitPeer {
    const Bump* VertexData() const { return Vertices.data(); }
    size_t VertexCount() const { return Vertices.size(); }
    const void* IndexData() const { return Indices.data(); }

    std::vector<Bump> Vertices;
    std::vector<unsigned> Indices;
};

struct SplitMap : SplitPeer {
    struct Hash {
        size_t operator()(const Bump& v) const {
            return std::hash<std::string_view>()({reinterpret_cast<const char*>(&v), sizeof(v)});
        }
    };
    struct Equal {
        bool operator()(const Bump& a, const Bump& b) const { return std::memcmp(&a, &b, sizeof(a)) == 0; }
    };

    SplitMap() {
        std::unordered_map<Bump, unsigned, Hash, Equal> known;
        Indices.reserve(Corners().size());
        for (const Bump& v : Corners()) {
            const auto [place, added] = known.try_emplace(v, unsigned(Vertices.size()));
            if (added) {
                Vertices.push_back(v);
            }
            Indices.push_back(place->second);
        }
    }
};

struct SplitMeshopt : SplitPeer {
    SplitMeshopt() {
        const std::vector<Bump>& corners = Corners();
        std::vector<unsigned> remap(corners.size());
        const size_t count = meshopt_generateVertexRemap(remap.data(), nullptr, corners.size(), corners.data(),
                                                         corners.size(), sizeof(Bump));
        Indices.resize(corners.size());
        meshopt_remapIndexBuffer(Indices.data(), nullptr, corners.size(), remap.data());
        Vertices.resize(count);
        meshopt_remapVertexBuffer(Vertices.data(), corners.data(), corners.size(), sizeof(Bump), remap.data());
    }
};

/// All number the vertices as they come, so that the lists are the same to the byte.
template <class A, class B> bool Same(const A& a, const B& b) {
    return a.VertexCount() == b.VertexCount() &&
           std::memcmp(a.VertexData(), b.VertexData(), a.VertexCount() * sizeof(Bump)) == 0 &&
           std::memcmp(a.IndexData(), b.IndexData(), Corners().size() * sizeof(int)) == 0;
}
const cBenchCheck s_SplitCheck("Split", [] {
    const SplitOurs ours;
    return Same(ours, SplitMap()) && Same(ours, SplitMeshopt());
});

template <class Split> void BM_Split(benchmark::State& state) {
    benchmark::DoNotOptimize(Corners().data());
    for (auto _ : state) {
        const Split split;
        benchmark::DoNotOptimize(split.VertexData());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * s_Triangles * 3);
}
BENCHMARK_TEMPLATE(BM_Split, SplitOurs)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Split, SplitMap)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Split, SplitMeshopt)->Unit(benchmark::kMillisecond);

// Both sum over the triangles around a vertex and normalise. Ours shares the sum through the normals' indexes; assimp
// has a vertex for each corner, looks for those at the same place, and makes each basis perpendicular to the normal.
struct TangentsOurs {
    TangentsOurs() {
        const cRawMesh& field = Field();
        Mesh.Points = field.Points;
        Mesh.TexCoords = field.TexCoords;
        Mesh.Normals = field.Normals;
        Mesh.Polys = field.Polys;
    }
    void Reset() {} // the list's storage stays, as in a second use
    void Run() { Mesh.CalcTangents(); }
    cVec3 Tangent(int corner) const {
        return Mesh.TangentBases[Mesh.Polys[corner / 3 * 4 + 1 + corner % 3][2]].Tangent;
    }

    cRawMesh Mesh;
};

struct TangentsAssimp {
    TangentsAssimp() {
        std::string text;
        const auto add = [&text](const char* word, const float* v, int count) {
            text += word;
            for (int i = 0; i < count; i++) {
                char number[32];
                std::snprintf(number, sizeof(number), " %.9g", double(v[i]));
                text += number;
            }
            text += '\n';
        };
        for (const Bump& v : Corners()) {
            add("v", v.Pos.ToPtr(), 3);
            add("vt", v.TexCoord.ToPtr(), 2);
            add("vn", v.Normal.ToPtr(), 3);
        }
        for (int i = 0; i < s_Triangles; i++) {
            text += 'f';
            for (int corner = i * 3 + 1; corner <= i * 3 + 3; corner++) {
                const std::string index = std::to_string(corner);
                text += ' ' + index + '/' + index + '/' + index;
            }
            text += '\n';
        }
        Importer.ReadFileFromMemory(text.data(), text.size(), 0, "obj");
    }
    aiMesh& Mesh() const { return *Importer.GetScene()->mMeshes[0]; }
    void Reset() { // a mesh that has tangents is left alone
        delete[] Mesh().mTangents;
        delete[] Mesh().mBitangents;
        Mesh().mTangents = Mesh().mBitangents = nullptr;
    }
    void Run() { Importer.ApplyPostProcessing(aiProcess_CalcTangentSpace); }
    cVec3 Tangent(int corner) const {
        const aiVector3D& t = Mesh().mTangents[corner];
        return {t.x, t.y, t.z};
    }

    Assimp::Importer Importer;
};

const cBenchCheck s_TangentsCheck("CalcTangents", [] {
    TangentsOurs ours;
    TangentsAssimp assimp;
    ours.Run();
    assimp.Run();
    int near = 0;
    for (int i = 0; i < s_Triangles * 3; i++) {
        near += cVec3::Dot(ours.Tangent(i), assimp.Tangent(i)) > 0.95f;
    }
    return near > s_Triangles * 3 / 100 * 99; // where the seams meet, the weights differ
});

template <class Tangents> void BM_CalcTangents(benchmark::State& state) {
    Tangents tangents;
    for (auto _ : state) {
        state.PauseTiming();
        tangents.Reset();
        state.ResumeTiming();
        tangents.Run();
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * s_Triangles);
}
BENCHMARK_TEMPLATE(BM_CalcTangents, TangentsOurs)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_CalcTangents, TangentsAssimp)->Unit(benchmark::kMillisecond);

struct RayOurs {
    static bool Trace(const cModel& model, const cVec3& origin, const cVec3& direction, float* distance) {
        return model.RayIntersection(origin, direction, distance);
    }
};

struct RayPlain { // the loop that one would write
    static bool Trace(const cModel& model, const cVec3& origin, const cVec3& direction, float* distance) {
        *distance = cMath::FloatMaxValue;
        bool hit = false;
        for (const cModel::Mesh& mesh : model.Meshes) {
            for (int i = 0; i + 2 < mesh.Indices.Count(); i += 3) {
                const int* index = &mesh.Indices[i];
                const Bump* v = mesh.BumpVertices.Data();
                float t;
                if (cVec3::RayTri(origin, direction, v[index[0]].Pos, v[index[1]].Pos, v[index[2]].Pos, &t) && t >= 0) {
                    hit = true;
                    *distance = std::min(*distance, t);
                }
            }
        }
        return hit;
    }
};

const cModel& Sphere() {
    static const cModel& sphere = *[] {
        auto* model = new cModel;
        model->GenSphere(cVec3::Zero, 10, s_Side, s_Side + 1);
        return model;
    }();
    return sphere;
}

cVec3 Direction(int i) {
    return cVec3::Normalize({std::sin(float(i)) * 0.4f, std::cos(float(i) * 1.7f) * 0.4f, -1});
}

const cBenchCheck s_RayCheck("RayIntersection", [] {
    for (int i = 0; i < 50; i++) {
        float ours, plain;
        const bool hit = RayOurs::Trace(Sphere(), {0, 0, 30}, Direction(i), &ours);
        if (hit != RayPlain::Trace(Sphere(), {0, 0, 30}, Direction(i), &plain) || ours != plain) {
            return false;
        }
    }
    return true;
});

template <class Ray> void BM_RayIntersection(benchmark::State& state) {
    int i = 0;
    for (auto _ : state) {
        float distance;
        benchmark::DoNotOptimize(Ray::Trace(Sphere(), {0, 0, 30}, Direction(i++), &distance));
        benchmark::DoNotOptimize(distance);
    }
    state.SetItemsProcessed(state.iterations() * Sphere().GetTriangleCount());
}
BENCHMARK_TEMPLATE(BM_RayIntersection, RayOurs)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_RayIntersection, RayPlain)->Unit(benchmark::kMillisecond);

} // namespace
