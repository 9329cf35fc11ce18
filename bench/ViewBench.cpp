// Viewers: an update, and culling beside the same with GLM; shapes in the world on a device that does nothing.
#include "math/cBounds.h"
#include "math/cFrustum.h"
#include "tests/render/Allocations.h"
#include "tests/render/RecordingDevice.h"
#include "view/cFreeViewer.h"

#include <benchmark/benchmark.h>
#include <glm/glm.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/quaternion.hpp>

#include <random>
#include <vector>

using namespace trellis;

namespace {

constexpr int Count = 100'000;

struct Scene {
    std::vector<cVec3> Points;
    std::vector<cBounds> Boxes;
    cFreeViewer Viewer;

    Scene() {
        std::mt19937 random(1);
        std::uniform_real_distribution<float> unit(-60, 60);
        for (int i = 0; i < Count; i++) {
            Points.push_back({unit(random), unit(random), unit(random)});
            Boxes.push_back({Points.back(), Points.back() + cVec3(2, 3, 1)});
        }
    }
};
Scene& TheScene() {
    static Scene s_Scene;
    return s_Scene;
}

/// The peer's camera at the same place, with its planes in one order with ours.
struct Peer {
    glm::vec3 Position{0, 4, 20};
    glm::quat Orient{1, 0, 0, 0};
    glm::mat4 View, ViewInverse, Projection, ViewProjection, ViewProjectionInverse;
    glm::vec4 Planes[6];

    void Update() {
        ViewInverse = glm::translate(glm::mat4(1.0f), Position) * glm::mat4_cast(Orient);
        View = glm::inverse(ViewInverse);
        Projection = glm::perspective(glm::radians(67.5f), 640.0f / 480, 0.1f, 2000.0f);
        ViewProjection = Projection * View;
        ViewProjectionInverse = glm::inverse(ViewProjection);
        const glm::mat4 rows = glm::transpose(ViewProjection);
        for (int i = 0; i < 6; i++) {
            const glm::vec4 v = rows[3] + (i % 2 == 0 ? rows[i / 2] : -rows[i / 2]);
            Planes[i] = v / glm::length(glm::vec3(v));
        }
    }
};

void BM_ViewerUpdate(benchmark::State& state) {
    cFreeViewer viewer;
    const int before = AllocationCount();
    for (auto _ : state) {
        viewer.Tumble({0.1f, 0.05f});
        benchmark::DoNotOptimize(viewer.ViewProjectionInverse);
    }
    state.counters["allocations"] = AllocationCount() - before;
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ViewerUpdate);

void BM_ViewerUpdate_Glm(benchmark::State& state) {
    Peer peer;
    for (auto _ : state) {
        peer.Orient = peer.Orient * glm::angleAxis(0.001f, glm::vec3(1, 0, 0));
        peer.Orient = glm::angleAxis(-0.002f, glm::vec3(0, 1, 0)) * peer.Orient;
        peer.Update();
        benchmark::DoNotOptimize(peer.ViewProjectionInverse);
        benchmark::DoNotOptimize(peer.Planes);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ViewerUpdate_Glm);

void BM_CullPoints(benchmark::State& state) {
    const Scene& scene = TheScene();
    for (auto _ : state) {
        int seen = 0;
        for (const cVec3& p : scene.Points) {
            seen += !scene.Viewer.CullPoint(p);
        }
        benchmark::DoNotOptimize(seen);
    }
    state.SetItemsProcessed(state.iterations() * Count);
}
BENCHMARK(BM_CullPoints);

void BM_CullPoints_Glm(benchmark::State& state) {
    std::vector<glm::vec3> points;
    for (const cVec3& p : TheScene().Points) {
        points.emplace_back(p.x, p.y, p.z);
    }
    Peer peer;
    peer.Update();
    for (auto _ : state) {
        int seen = 0;
        for (const glm::vec3& p : points) {
            bool out = false;
            for (int i = 0; i < 6 && !out; i++) {
                out = glm::dot(glm::vec3(peer.Planes[i]), p) + peer.Planes[i].w < 0;
            }
            seen += !out;
        }
        benchmark::DoNotOptimize(seen);
    }
    state.SetItemsProcessed(state.iterations() * Count);
}
BENCHMARK(BM_CullPoints_Glm);

/// Boxes by their eight corners, under a world matrix each.
void BM_CullBoxes(benchmark::State& state) {
    const Scene& scene = TheScene();
    cFrustum frustum;
    scene.Viewer.CalcFrustum(&frustum, 2000);
    const cMat4 world = cMat4::RotationY(30);
    for (auto _ : state) {
        int seen = 0;
        for (const cBounds& box : scene.Boxes) {
            seen += !frustum.CullBounds(box, world);
        }
        benchmark::DoNotOptimize(seen);
    }
    state.SetItemsProcessed(state.iterations() * Count);
}
BENCHMARK(BM_CullBoxes);

void BM_CullBoxes_Glm(benchmark::State& state) {
    Peer peer;
    peer.Update();
    const glm::mat4 world = glm::rotate(glm::mat4(1.0f), glm::radians(30.0f), glm::vec3(0, 1, 0));
    for (auto _ : state) {
        int seen = 0;
        for (const cBounds& box : TheScene().Boxes) {
            glm::vec3 corners[8];
            for (int i = 0; i < 8; i++) {
                const glm::vec4 p(i & 1 ? box.max[0] : box.min[0], i & 2 ? box.max[1] : box.min[1],
                                  i & 4 ? box.max[2] : box.min[2], 1);
                corners[i] = glm::vec3(world * p);
            }
            bool out = false;
            for (int k = 0; k < 6 && !out; k++) {
                out = true;
                for (int i = 0; i < 8 && out; i++) {
                    out = glm::dot(glm::vec3(peer.Planes[k]), corners[i]) + peer.Planes[k].w < 0;
                }
            }
            seen += !out;
        }
        benchmark::DoNotOptimize(seen);
    }
    state.SetItemsProcessed(state.iterations() * Count);
}
BENCHMARK(BM_CullBoxes_Glm);

class QuietDevice : public RecordingDevice {
public:
    QuietDevice() { Quiet = true; }
};

void EnsureDevice() {
    if (!cRender::GetInstance()) {
        cRender::SetFactory([](int) -> cRender::Stub* { return new QuietDevice; });
        cRender::Init(3);
    }
}

template <class Call> void Shapes(benchmark::State& state, int count, Call call) {
    EnsureDevice();
    call();
    const int before = AllocationCount();
    for (auto _ : state) {
        for (int i = 0; i < count; i++) {
            call();
        }
    }
    state.counters["allocations"] = AllocationCount() - before;
    state.SetItemsProcessed(state.iterations() * count);
}

void BM_DrawGrid(benchmark::State& state) {
    Shapes(state, 1, [] { cRender::DrawGrid(cRender::GridArgs()); });
}
BENCHMARK(BM_DrawGrid);

void BM_DrawThousandSpheres(benchmark::State& state) {
    Shapes(state, 1000, [] { cRender::DrawSphereWire({1, 2, 3}, 4, cColor::Red); });
}
BENCHMARK(BM_DrawThousandSpheres);

} // namespace
