// Seeded triangles, and the geometry of the slow references in double precision.
#pragma once

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "math/cVec3.h"

namespace trellis {

class Random {
public:
    explicit Random(unsigned seed) : m_Engine(seed) {}
    float In(float low, float high) { return low + (high - low) * float(m_Engine() >> 8) / 16777216.0f; }
    cVec3 Point(float reach) {
        const float x = In(-reach, reach), y = In(-reach, reach);
        return {x, y, In(-reach, reach)};
    }

private:
    std::mt19937 m_Engine;
};

struct Exact {
    double x, y, z;
    Exact(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}
    Exact(const cVec3& v) : x(v.x), y(v.y), z(v.z) {}
    friend Exact operator+(const Exact& a, const Exact& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
    friend Exact operator-(const Exact& a, const Exact& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
    friend Exact operator*(const Exact& a, double s) { return {a.x * s, a.y * s, a.z * s}; }
};
inline double Dot(const Exact& a, const Exact& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Exact Cross(const Exact& a, const Exact& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double Length(const Exact& a) {
    return std::sqrt(Dot(a, a));
}

/// Least distance of a point to a triangle: to its inside where the point stands over it, and to its edges.
inline double DistanceTo(const cVec3* corners, const Exact& p) {
    const Exact a = corners[0], n = Cross(Exact(corners[1]) - a, Exact(corners[2]) - a);
    bool isOver = Dot(n, n) > 0;
    double least = 1e30;
    for (int i = 0; i < 3; i++) {
        const Exact from = corners[i], edge = Exact(corners[(i + 1) % 3]) - from, way = p - from;
        const double ee = Dot(edge, edge), share = ee > 0 ? std::clamp(Dot(way, edge) / ee, 0.0, 1.0) : 0;
        least = std::min(least, Length(way - edge * share));
        isOver = isOver && Dot(Cross(n, edge), way) >= 0;
    }
    return isOver ? std::fabs(Dot(n, p - a)) / Length(n) : least;
}

} // namespace trellis
