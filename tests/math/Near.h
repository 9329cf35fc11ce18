// Comparison of what is made of floats, and a seeded source of cases.
#pragma once

#include "math/cMat4.h"

#include <gtest/gtest.h>

#include <random>

namespace trellis {

/// Success when every one of `n` floats is within `tolerance`.
inline testing::AssertionResult NearFloats(const float* a, const float* b, int n, double tolerance) {
    for (int i = 0; i < n; i++) {
        if (!(std::fabs(double(a[i]) - double(b[i])) <= tolerance)) {
            return testing::AssertionFailure() << "element " << i << ": " << a[i] << " against " << b[i];
        }
    }
    return testing::AssertionSuccess();
}

template <class V> testing::AssertionResult Near(const V& a, const V& b, double tolerance = 1e-5) {
    return NearFloats(a.ToPtr(), b.ToPtr(), int(sizeof(V) / sizeof(float)), tolerance);
}

inline void ExpectNear(const cVec3& a, const cVec3& b, double tolerance = 1e-4) {
    EXPECT_TRUE(Near(a, b, tolerance));
}

class Cases {
public:
    float In(float low, float high) { return std::uniform_real_distribution<float>(low, high)(m_Engine); }
    cVec3 Vec(float size = 10) {
        const float x = In(-size, size), y = In(-size, size);
        return {x, y, In(-size, size)};
    }
    cMat4 Mat(float size = 2) {
        cMat4 m;
        for (float& v : m.m) {
            v = In(-size, size);
        }
        return m;
    }

private:
    std::mt19937 m_Engine{20260105};
};

} // namespace trellis
