// Cubic Bezier segment.
#pragma once

#include "math/cVec3.h"

namespace trellis {

/// Starts at the first of its points and ends at the last; the two between pull it towards them. The functions exist
/// for `cVec3`.
template <class V> class cSegBezier {
public:
    /// What the points weigh at `t` (Bernstein's polynomials).
    struct Weights {
        constexpr explicit Weights(float t) {
            const float s = 1 - t;
            W[0] = s * s * s;
            W[1] = 3 * t * s * s;
            W[2] = 3 * t * t * s;
            W[3] = t * t * t;
        }
        float W[4];
    };

    V GetValue(float t) const;
    V GetDerivative(float t) const; ///< With respect to `t`.

    void Split(cSegBezier* first, cSegBezier* second) const; ///< At 0.5, by de Casteljau. Neither may be this one.

    /// Whether the controls stand at the thirds of the chord, within that squared error. The curve is then no farther
    /// from the chord, and runs along it at an even pace. True as well where that distance is beyond float.
    bool IsFlat(float maxErrSq) const;

    /// @param maxErrSq  squared error, see `IsFlat`
    /// @param distSq    receives the squared distance; may be null
    /// @return parameter of the closest point
    float CalcClosestPointParameterAccurate(const V& point, float maxErrSq, float* distSq) const;

    /// Shortest piece that is halved again. Halves of a large curve may not get any flatter: there is no float between.
    static constexpr float MinPiece = 0.000001f;

    V Points[4]; ///< Start, control, control, end.
};

} // namespace trellis
