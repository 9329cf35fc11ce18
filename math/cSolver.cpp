#include "math/cSolver.h"

#include "math/cBounds.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace trellis {

namespace {

/// The two real roots for a discriminant above 0, by the larger of them first computed.
void RootsByQ(float a, float b, float c, float discriminant, float* roots) {
    const float root = std::sqrt(discriminant);
    const float q = -0.5f * (b >= 0 ? b + root : b - root);
    roots[0] = q / a;
    roots[1] = c / q;
}

/// One rotation of the cyclic Jacobi method (Golub and Van Loan, "Matrix Computations", 8.5): makes s[p][q] zero and
/// turns the columns of `v` along.
void Rotate(double s[3][3], double v[3][3], int p, int q) {
    if (s[p][q] == 0) {
        return;
    }
    const double tau = (s[q][q] - s[p][p]) / (2 * s[p][q]);
    const double t = (tau >= 0 ? 1 : -1) / (std::fabs(tau) + std::sqrt(1 + tau * tau));
    const double cosine = 1 / std::sqrt(1 + t * t);
    const double sine = t * cosine;
    const auto turn = [=](double& a, double& b) {
        const double olda = a;
        a = cosine * olda - sine * b;
        b = sine * olda + cosine * b;
    };
    for (int k = 0; k < 3; k++) {
        turn(s[k][p], s[k][q]);
    }
    for (int k = 0; k < 3; k++) {
        turn(s[p][k], s[q][k]);
        turn(v[k][p], v[k][q]);
    }
}

/// The axis of least spread of a scatter matrix.
cVec3 LeastAxis(double s[3][3]) {
    double v[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int sweep = 0; sweep < 16; sweep++) { // converges quadratically; a handful is enough
        Rotate(s, v, 0, 1);
        Rotate(s, v, 0, 2);
        Rotate(s, v, 1, 2);
    }
    int least = s[1][1] < s[0][0] ? 1 : 0;
    least = s[2][2] < s[least][least] ? 2 : least;
    return cVec3::Normalize(cVec3(float(v[0][least]), float(v[1][least]), float(v[2][least])));
}

} // namespace

int cSolver::GetRoots2(float a, float b, float c, float* roots) {
    if (a == 0) {
        if (b == 0) {
            return c == 0 ? -3 : -2;
        }
        roots[0] = -c / b;
        return -1;
    }
    const float d = b * b - 4 * a * c;
    if (d == 0) {
        roots[0] = -b / (2 * a);
        return 1;
    }
    if (d < 0) {
        const float half = 0.5f / a;
        roots[0] = -b * half;
        roots[1] = std::sqrt(-d) * half;
        return 0;
    }
    RootsByQ(a, b, c, d, roots);
    return 2;
}

bool cSolver::GetLowestPositiveRoot2(float a, float b, float c, float maxValue, float* root) {
    const float d = b * b - 4 * a * c;
    if (a == 0 || !(d >= 0)) {
        return false;
    }
    float roots[2];
    if (d == 0) {
        roots[0] = roots[1] = -b / (2 * a);
    } else {
        RootsByQ(a, b, c, d, roots);
        if (roots[0] > roots[1]) {
            std::swap(roots[0], roots[1]);
        }
    }
    for (const float r : roots) {
        if (r > 0 && r < maxValue) {
            *root = r;
            return true;
        }
    }
    return false;
}

int cSolver::GetRoots3(float a, float b, float c, float* roots) {
    const float third = a / 3;
    const float q = (a * a - 3 * b) / 9;
    const float r = ((2 * a * a - 9 * b) * a + 27 * c) / 54;
    const float q3 = q * q * q;
    if (q3 >= r * r) {
        const float t = r / std::sqrt(q3);
        const float theta = t <= -1 ? cMath::Pi : t >= 1 ? 0 : std::acos(t);
        const float g = -2 * std::sqrt(q);
        roots[0] = g * std::cos(theta / 3) - third;
        roots[1] = g * std::cos((theta + cMath::TwoPi) / 3) - third;
        roots[2] = g * std::cos((theta - cMath::TwoPi) / 3) - third;
        return 3;
    }
    // Negative whatever the sign of r, which makes this branch wrong for r < 0; see the header.
    const float p = -std::pow(std::fabs(r) + std::sqrt(r * r - q3), 0.33333334f);
    const float s = p == 0 ? 0 : q / p;
    roots[0] = p + s - third;
    roots[1] = -0.5f * (p + s) - third;
    const float imaginary = std::fabs(p - s) * 0.8660254f;
    if (imaginary == 0) {
        return 2;
    }
    roots[2] = imaginary;
    return 1;
}

bool cSolver::EigenSolve(const cMat3& m, float* values, cVec3* vectors) {
    const float trace = m(0, 0) + m(1, 1) + m(2, 2);
    const float minors = m(0, 0) * m(1, 1) - m(0, 1) * m(1, 0) + m(0, 0) * m(2, 2) - m(0, 2) * m(2, 0) +
                         m(1, 1) * m(2, 2) - m(1, 2) * m(2, 1);
    float roots[3];
    if (GetRoots3(-trace, minors, -m.Determinant(), roots) != 3) {
        return false;
    }
    if (values) {
        std::copy(roots, roots + 3, values);
    }
    if (vectors) {
        // The third row of the adjugate of m - value, by u adj(m - L) = u (m m + (L - trace) m + L (L - trace) +
        // minors).
        const cVec3 u = cVec3::AxisZ;
        const cVec3 p = u * m;
        const cVec3 q = p * m;
        for (int i = 0; i < 3; i++) {
            const float t = roots[i] - trace;
            vectors[i] = cVec3::Normalize(q + p * t + u * (roots[i] * t + minors));
        }
    }
    return true;
}

bool cSolver::ApproximatePoints(const cVec3* points, int count, cVec3* center, cVec3* normal, float tolerance) {
    *center = cVec3::Zero;
    *normal = cVec3::Zero;
    if (count < 3) {
        return false;
    }
    double mean[3] = {};
    for (int i = 0; i < count; i++) {
        for (int k = 0; k < 3; k++) {
            mean[k] += points[i][k];
        }
    }
    for (double& m : mean) {
        m /= count;
    }
    if (!std::isfinite(mean[0] + mean[1] + mean[2])) {
        return false;
    }
    *center = {float(mean[0]), float(mean[1]), float(mean[2])};

    const cVec3 extent = cBounds::FromPoints(points, count).Size();
    const cVec3 axes[] = {cVec3::AxisX, cVec3::AxisY, cVec3::AxisZ};
    for (int k = 0; k < 3; k++) {
        if (extent[k] <= tolerance) {
            *normal = axes[k];
            return true;
        }
    }
    // Not by EigenSolve: it is single precision and loses the vector where two spreads are nearly equal.
    double scatter[3][3] = {};
    for (int i = 0; i < count; i++) {
        const double offset[] = {points[i].x - mean[0], points[i].y - mean[1], points[i].z - mean[2]};
        for (int j = 0; j < 9; j++) {
            scatter[j / 3][j % 3] += offset[j / 3] * offset[j % 3];
        }
    }
    *normal = LeastAxis(scatter);
    return true;
}

bool cSolver::PointInPolygon(const cList<cVec2>& polygon, const cVec2& point) {
    const int count = polygon.Count();
    if (count < 2) {
        return false;
    }
    bool inside = false;
    cVec2 p = polygon[count - 1];
    for (const cVec2& c : polygon) {
        const float d = (c.x - p.x) * (point.y - p.y) - (c.y - p.y) * (point.x - p.x);
        if (point.y > p.y && point.y <= c.y) {
            inside ^= d > 0;
        } else if (point.y <= p.y && point.y > c.y) {
            inside ^= d < 0;
        }
        p = c;
    }
    return inside;
}

} // namespace trellis
