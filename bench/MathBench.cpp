// Matrices, quaternions and vectors beside GLM, the checksum beside zlib's crc32. Our row-major row-vector matrices and
// GLM's column-major column-vector ones hold the same sixteen floats, so A x B here is B * A there.
#include "Bench.h"

#include "math/cMat4.h"
#include "math/cQuat.h"

#include <glm/glm.hpp>
#include <glm/gtc/quaternion.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <zlib.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

using namespace trellis;

namespace {

constexpr int s_Operands = 64; // in turn, so that nothing can be worked out ahead

float Next(float low, float high) {
    static std::mt19937 s_Engine(5);
    return std::uniform_real_distribution<float>(low, high)(s_Engine);
}

struct Operands {
    std::vector<cMat4> Ours;
    std::vector<glm::mat4> Peers;
    std::vector<cQuat> OurQuats;
    std::vector<glm::quat> PeerQuats;
    std::vector<cVec3> OurPoints;
    std::vector<glm::vec3> PeerPoints;

    Operands() {
        for (int i = 0; i < s_Operands; i++) {
            cMat4 m;
            for (float& v : m.m) {
                v = Next(-2, 2);
            }
            Ours.push_back(m);
            Peers.push_back(glm::make_mat4(m.m));
            const cQuat q = cQuat::Normalize(cQuat(Next(-1, 1), Next(-1, 1), Next(-1, 1), Next(-1, 1)));
            OurQuats.push_back(q);
            PeerQuats.emplace_back(q.w, q.x, q.y, q.z);
            OurPoints.emplace_back(Next(-9, 9), Next(-9, 9), Next(-9, 9));
            PeerPoints.emplace_back(OurPoints.back().x, OurPoints.back().y, OurPoints.back().z);
        }
    }
};
const Operands s_All;

bool Close(const float* a, const float* b, int n) {
    for (int i = 0; i < n; i++) {
        if (!(std::fabs(a[i] - b[i]) <= 2e-3f * (1 + std::fabs(a[i])))) {
            return false;
        }
    }
    return true;
}

// One operation in two overloads each: ours, and GLM's.
cMat4 Product(const cMat4& a, const cMat4& b) {
    return a * b;
}
glm::mat4 Product(const glm::mat4& a, const glm::mat4& b) {
    return b * a;
}
cMat4 Inverse(const cMat4& a) {
    cMat4 r = a;
    cMat4::Invert(a, &r);
    return r;
}
glm::mat4 Inverse(const glm::mat4& a) {
    return glm::inverse(a);
}
cQuat Slerp(const cQuat& a, const cQuat& b, float t) {
    return cQuat::Slerp(a, b, t);
}
glm::quat Slerp(const glm::quat& a, const glm::quat& b, float t) {
    return glm::slerp(a, b, t);
}
cMat3 ToMatrix(const cQuat& q) {
    return q.ToMat3();
}
glm::mat3 ToMatrix(const glm::quat& q) {
    return glm::mat3_cast(q);
}
cVec3 Unit(const cVec3& v) {
    return cVec3::Normalize(v);
}
glm::vec3 Unit(const glm::vec3& v) {
    return glm::normalize(v);
}
void TransformAll(std::vector<cVec3>& points, const cMat4& m) {
    cVec3::TransformCoordinate(points.data(), int(points.size()), m);
}
void TransformAll(std::vector<glm::vec3>& points, const glm::mat4& m) {
    for (glm::vec3& p : points) {
        p = glm::vec3(m * glm::vec4(p, 1.0f));
    }
}

template <class M> const std::vector<M>& Matrices();
template <> const std::vector<cMat4>& Matrices() {
    return s_All.Ours;
}
template <> const std::vector<glm::mat4>& Matrices() {
    return s_All.Peers;
}
template <class Q> const std::vector<Q>& Quats();
template <> const std::vector<cQuat>& Quats() {
    return s_All.OurQuats;
}
template <> const std::vector<glm::quat>& Quats() {
    return s_All.PeerQuats;
}
template <class V> const std::vector<V>& Points();
template <> const std::vector<cVec3>& Points() {
    return s_All.OurPoints;
}
template <> const std::vector<glm::vec3>& Points() {
    return s_All.PeerPoints;
}

const cBenchCheck s_Check("math", [] {
    for (int i = 0; i < s_Operands; i++) {
        const int j = (i + 1) % s_Operands;
        const cMat4 product = Product(s_All.Ours[i], s_All.Ours[j]);
        const glm::mat4 peerProduct = Product(s_All.Peers[i], s_All.Peers[j]);
        const cMat4 inverse = Inverse(s_All.Ours[i]);
        const glm::mat4 peerInverse = Inverse(s_All.Peers[i]);
        const cQuat slerp = Slerp(s_All.OurQuats[i], s_All.OurQuats[j], 0.3f);
        const glm::quat s = Slerp(s_All.PeerQuats[i], s_All.PeerQuats[j], 0.3f);
        const float peerSlerp[] = {s.x, s.y, s.z, s.w};
        const glm::mat3 peerMatrix = ToMatrix(s_All.PeerQuats[i]);
        const glm::vec3 peerUnit = Unit(s_All.PeerPoints[i]);
        if (!Close(product.m, glm::value_ptr(peerProduct), 16) || !Close(inverse.m, glm::value_ptr(peerInverse), 16) ||
            !Close(slerp.ToPtr(), peerSlerp, 4) ||
            !Close(ToMatrix(s_All.OurQuats[i]).m, glm::value_ptr(peerMatrix), 9) ||
            !Close(Unit(s_All.OurPoints[i]).ToPtr(), glm::value_ptr(peerUnit), 3)) {
            return false;
        }
    }
    auto ours = s_All.OurPoints;
    auto peers = s_All.PeerPoints;
    TransformAll(ours, s_All.Ours[0]);
    TransformAll(peers, s_All.Peers[0]);
    return Close(ours[0].ToPtr(), &peers[0].x, s_Operands * 3);
});

template <class M> void BM_Product(benchmark::State& state) {
    const auto& m = Matrices<M>();
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Product(m[i], m[i ^ 1]));
        i = (i + 1) % s_Operands;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK_TEMPLATE(BM_Product, cMat4);
BENCHMARK_TEMPLATE(BM_Product, glm::mat4);

template <class M> void BM_Invert(benchmark::State& state) {
    const auto& m = Matrices<M>();
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Inverse(m[i]));
        i = (i + 1) % s_Operands;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK_TEMPLATE(BM_Invert, cMat4);
BENCHMARK_TEMPLATE(BM_Invert, glm::mat4);

template <class Q> void BM_Slerp(benchmark::State& state) {
    const auto& q = Quats<Q>();
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Slerp(q[i], q[i ^ 1], 0.3f));
        i = (i + 1) % s_Operands;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK_TEMPLATE(BM_Slerp, cQuat);
BENCHMARK_TEMPLATE(BM_Slerp, glm::quat);

template <class Q> void BM_QuatToMatrix(benchmark::State& state) {
    const auto& q = Quats<Q>();
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ToMatrix(q[i]));
        i = (i + 1) % s_Operands;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK_TEMPLATE(BM_QuatToMatrix, cQuat);
BENCHMARK_TEMPLATE(BM_QuatToMatrix, glm::quat);

template <class V> void BM_Normalize(benchmark::State& state) {
    const auto& v = Points<V>();
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Unit(v[i]));
        i = (i + 1) % s_Operands;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK_TEMPLATE(BM_Normalize, cVec3);
BENCHMARK_TEMPLATE(BM_Normalize, glm::vec3);

template <class M> M UnitMatrix();
template <> cMat4 UnitMatrix() {
    return cMat4::Identity;
}
template <> glm::mat4 UnitMatrix() {
    return glm::mat4(1.0f);
}

template <class V, class M> void BM_TransformPoints(benchmark::State& state) {
    std::vector<V> points(size_t(state.range(0)), V(1, 2, 3));
    const M m = UnitMatrix<M>(); // so that the points stay finite
    for (auto _ : state) {
        TransformAll(points, m);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK_TEMPLATE(BM_TransformPoints, cVec3, cMat4)->Arg(1000)->Arg(1000000);
BENCHMARK_TEMPLATE(BM_TransformPoints, glm::vec3, glm::mat4)->Arg(1000)->Arg(1000000);

std::vector<unsigned char> Bytes(size_t size) {
    std::mt19937 random(9);
    std::vector<unsigned char> bytes(size);
    for (auto& b : bytes) {
        b = (unsigned char)random();
    }
    return bytes;
}

// The polynomials differ, and with them the answers: there is nothing to compare ahead of these two.
void BM_Checksum(benchmark::State& state) {
    const auto bytes = Bytes(size_t(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(cMath::Checksum(bytes.data(), unsigned(bytes.size())));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Checksum)->Arg(4096)->Arg(1 << 20);

void BM_ChecksumZlib(benchmark::State& state) {
    const auto bytes = Bytes(size_t(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(crc32(0, bytes.data(), unsigned(bytes.size())));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ChecksumZlib)->Arg(4096)->Arg(1 << 20);

void BM_Float2Half(benchmark::State& state) {
    std::vector<float> floats(4096);
    for (float& f : floats) {
        f = Next(-1000, 1000);
    }
    std::vector<unsigned short> halves(floats.size());
    for (auto _ : state) {
        for (size_t i = 0; i < floats.size(); i++) {
            halves[i] = cMath::Float2Half(floats[i]);
        }
        benchmark::DoNotOptimize(halves.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * 4096);
}
BENCHMARK(BM_Float2Half);

} // namespace
