// Loading models: Wavefront OBJ beside tinyobjloader, and native files beside a copy of what they become.
#include "Bench.h"

#include "files/cFile.h"
#include "mesh/cCodecModel.h"
#include "mesh/cCodecObj.h"
#include "mesh/cModel.h"

#include <cmath>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <unordered_map>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wunused-function"
#define TINYOBJLOADER_IMPLEMENTATION
#include <tiny_obj_loader.h>
#pragma GCC diagnostic pop

using namespace trellis;

namespace {

/// Hills over a square of `side` by `side` points, two triangles to a cell, as exporters write them.
std::string Hills(int side) {
    std::mt19937 random(7);
    const auto noise = [&random] { return double(random() % 1000000) * 1e-6; };
    std::string text = "# hills\n";
    for (int i = 0; i < side * side; i++) {
        text += cStr::Format("v %f %f %f\n", i % side + noise(), noise() * 10 - 5, i / side + noise());
    }
    for (int i = 0; i < side * side; i++) {
        text += cStr::Format("vt %f %f\n", double(i % side) / side, double(i / side) / side);
    }
    for (int i = 0; i < side * side; i++) {
        const double x = noise() - 0.5, z = noise() - 0.5;
        text += cStr::Format("vn %f %f %f\n", x, std::sqrt(1 - x * x - z * z), z);
    }
    text += "usemtl grass\n";
    for (int y = 1; y < side; y++) {
        for (int x = 1; x < side; x++) {
            const int d = y * side + x + 1, c = d - 1, b = d - side, a = b - 1;
            text += cStr::Format("f %d/%d/%d %d/%d/%d %d/%d/%d\n", a, a, a, c, c, c, d, d, d);
            text += cStr::Format("f %d/%d/%d %d/%d/%d %d/%d/%d\n", a, a, a, d, d, d, b, b, b);
        }
    }
    return text;
}

constexpr int s_ObjSide = 317;    // 199712 triangles
constexpr int s_NativeSide = 255; // 65025 vertices, all but the most that a native mesh has

cFile FileOf(const std::string& text) {
    cFile file;
    file.Copy(text.data(), int(text.size()), "hills.obj");
    return file;
}

bool Load(const cFile& file, cModel* out) {
    file.SetPos(0);
    return cCodecObj().Decode(file, out);
}

/// The peer gives an index triple for each corner; they are welded into the vertices that we make, but for tangents.
struct PeerMesh {
    std::vector<cVertex::Bump> Vertices;
    std::vector<int> Indices;
};
struct Triple {
    tinyobj::index_t I;
    bool operator==(const Triple& o) const {
        return I.vertex_index == o.I.vertex_index && I.normal_index == o.I.normal_index &&
               I.texcoord_index == o.I.texcoord_index;
    }
};
struct TripleHash {
    size_t operator()(const Triple& t) const {
        return size_t(t.I.vertex_index) * 73856093u ^ size_t(t.I.normal_index) * 19349663u ^
               size_t(t.I.texcoord_index) * 83492791u;
    }
};
bool LoadByPeer(const std::string& text, PeerMesh* out) {
    tinyobj::attrib_t attrib;
    std::vector<tinyobj::shape_t> shapes;
    std::vector<tinyobj::material_t> materials;
    std::string warning, error;
    std::istringstream stream(text);
    if (!tinyobj::LoadObj(&attrib, &shapes, &materials, &warning, &error, &stream)) {
        return false;
    }
    std::unordered_map<Triple, int, TripleHash> known;
    known.reserve(attrib.vertices.size() / 3);
    for (const tinyobj::shape_t& shape : shapes) {
        for (const tinyobj::index_t& i : shape.mesh.indices) {
            const auto [at, fresh] = known.try_emplace({i}, int(out->Vertices.size()));
            if (fresh) {
                cVertex::Bump v{};
                std::memcpy(&v.Pos, &attrib.vertices[size_t(i.vertex_index) * 3], 12);
                std::memcpy(&v.TexCoord, &attrib.texcoords[size_t(i.texcoord_index) * 2], 8);
                std::memcpy(&v.Normal, &attrib.normals[size_t(i.normal_index) * 3], 12);
                out->Vertices.push_back(v);
            }
            out->Indices.push_back(at->second);
        }
    }
    return true;
}

void BM_ObjLoad_Trellis(benchmark::State& state) {
    const cFile file = FileOf(Hills(s_ObjSide));
    for (auto _ : state) {
        cModel model;
        benchmark::DoNotOptimize(Load(file, &model));
    }
    state.SetBytesProcessed(state.iterations() * file.GetSize());
}
BENCHMARK(BM_ObjLoad_Trellis)->Unit(benchmark::kMillisecond);

void BM_ObjLoad_Tinyobj(benchmark::State& state) {
    const std::string text = Hills(s_ObjSide);
    for (auto _ : state) {
        PeerMesh mesh;
        benchmark::DoNotOptimize(LoadByPeer(text, &mesh));
    }
    state.SetBytesProcessed(state.iterations() * int64_t(text.size()));
}
BENCHMARK(BM_ObjLoad_Tinyobj)->Unit(benchmark::kMillisecond);

cFile NativeFile() {
    cModel model;
    cFile file;
    Load(FileOf(Hills(s_NativeSide)), &model);
    cCodecModel().Encode(model, &file);
    return file;
}

void BM_NativeLoad_Trellis(benchmark::State& state) {
    const cFile file = NativeFile();
    for (auto _ : state) {
        cModel model;
        file.SetPos(0);
        benchmark::DoNotOptimize(cCodecModel().Decode(file, &model));
    }
    state.SetBytesProcessed(state.iterations() * file.GetSize());
}
BENCHMARK(BM_NativeLoad_Trellis)->Unit(benchmark::kMillisecond);

/// The least that any loader does: storage for the lists, and every byte of them written once.
void BM_NativeLoad_Copy(benchmark::State& state) {
    const cFile file = NativeFile();
    cModel model;
    file.SetPos(0);
    cCodecModel().Decode(file, &model);
    for (auto _ : state) {
        cModel copy;
        copy.Copy(model);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * file.GetSize());
}
BENCHMARK(BM_NativeLoad_Copy)->Unit(benchmark::kMillisecond);

const cBenchCheck s_Check("obj", [] {
    const std::string text = Hills(40);
    cModel model;
    PeerMesh peer;
    if (!Load(FileOf(text), &model) || !LoadByPeer(text, &peer) || peer.Vertices.size() != 1600 ||
        model.GetVertexCount() != 1600 || model.Meshes[0].Indices.Count() != int(peer.Indices.size())) {
        return false;
    }
    for (size_t i = 0; i < peer.Indices.size(); i++) {
        const cVertex::Bump &a = model.Meshes[0].BumpVertices[model.Meshes[0].Indices[int(i)]],
                            &b = peer.Vertices[size_t(peer.Indices[i])];
        // A last bit may differ: the peer sums its digits in doubles.
        if ((a.Pos - b.Pos).Length() > 1e-4f || (a.Normal - b.Normal).Length() > 1e-5f ||
            (a.TexCoord - b.TexCoord).Length() > 1e-5f) {
            return false;
        }
    }
    return true;
});

} // namespace
