// Polynomials of degree two and three, the eigen system of a 3 by 3 matrix, plane fitting, point in polygon.
#pragma once

#include "foundation/cList.h"
#include "math/cMat3.h"

namespace trellis {

class cSolver {
public:
    /// Solves a x^2 + b x + c = 0, without the cancellation between b and the root ("Numerical Recipes", 5.6).
    ///
    ///     -3  every x solves it              roots untouched
    ///     -2  no x does                      roots untouched
    ///     -1  linear                         [0]
    ///      0  a complex pair                 [0] real part, [1] imaginary part
    ///      1  a double root                  [0]
    ///      2  two                            [0] and [1], in no order
    static int GetRoots2(float a, float b, float c, float* roots);

    /// The lowest root r of a x^2 + b x + c with 0 < r < `maxValue`.
    ///
    /// @return false without one, or when `a` is 0; `*root` is then untouched
    static bool GetLowestPositiveRoot2(float a, float b, float c, float maxValue, float* root);

    /// Solves x^3 + a x^2 + b x + c = 0 ("Numerical Recipes", 5.6).
    ///
    ///     3  three real roots                [0], [1], [2], in no order
    ///     2  a real root and a double one    [0], [1]
    ///     1  one real root                   [0]; [1] and [2] real and imaginary part of the pair
    ///
    /// The last two are right only where R = ((2 a^2 - 9 b) a + 27 c) / 54 is 0 or more: its sign is dropped. No caller
    /// meets another R there, and it stays exactly so. Three equal roots give 3 and no numbers (0 / 0).
    static int GetRoots3(float a, float b, float c, float* roots);

    /// Eigenvalues of `m` and unit row vectors v with v m = value v, in the order of `GetRoots3`, unsorted. A value
    /// whose vector has no z, or that occurs twice, gets a zero vector; with little z it is inaccurate.
    ///
    /// @param values   three floats, or null
    /// @param vectors  three vectors, or null
    /// @return false unless there are three real values; nothing is written then
    static bool EigenSolve(const cMat3& m, float* values, cVec3* vectors);

    /// The plane of least squares through points.
    ///
    /// @param center     receives the mean of the points
    /// @param normal     receives the unit normal
    /// @param tolerance  an extent of the points up to this counts as flat, in the order X, Y, Z
    /// @return false for fewer than 3 points, and for what are no numbers; both outputs are then zero
    static bool ApproximatePoints(const cVec3* points, int count, cVec3* center, cVec3* normal, float tolerance);

    /// Even-odd test. An edge that the point lies on is not counted.
    static bool PointInPolygon(const cList<cVec2>& polygon, const cVec2& point);
};

} // namespace trellis
