// Numeric constants, and small operations that belong to no geometric type. Knows no geometry.
#pragma once

#include <cfloat>
#include <climits>
#include <cmath>

namespace trellis {

class cMath {
public:
    static constexpr float Pi = 3.1415927f;
    static constexpr float TwoPi = 6.2831855f;
    static constexpr float HalfPi = 1.5707964f;
    static constexpr float QuarterPi = 0.7853982f;
    static constexpr float RadsPerDeg = 0.017453292f;
    static constexpr float DegsPerRad =
        57.295776f; ///< One step below the nearest float; stored angles were made with it.
    static constexpr float SecsPerMs = 0.001f;
    static constexpr float MsPerSec = 1000.0f;
    static constexpr float Epsilon = 0.001f;
    static constexpr float EpsilonSq = 0.000001f;
    static constexpr float SpaceEpsilon = 0.1f; ///< In units of space.
    static constexpr float MatrixEpsilon = 0.000001f;
    static constexpr float MatrixInvertEpsilon = 1e-14f; ///< Determinants up to this are singular.
    static constexpr double dEpsilon = 0.000001;
    static constexpr float Sqrt1Over2 = 0.70710677f;
    static constexpr float Sqrt1Over3 = 0.57735026f;
    static constexpr int IntMaxValue = INT_MAX;
    static constexpr int IntMinValue = INT_MIN;
    static constexpr float FloatMaxValue = FLT_MAX;
    static constexpr float FloatMinValue = FLT_MIN; ///< The smallest normal one.
    static constexpr double DoubleMaxValue = DBL_MAX;
    static constexpr double DoubleMinValue = DBL_MIN;

    /// Sine and cosine of an angle in degrees.
    static void SinCos(float degrees, float* sine, float* cosine) { ::sincosf(degrees * RadsPerDeg, sine, cosine); }

    /// The int that the target's conversion gives: truncated, and INT_MIN for whatever an int cannot hold.
    static int TruncateToInt(float v) { return v >= -2147483648.0f && v < 2147483648.0f ? int(v) : INT_MIN; }

    /// An angle in degrees brought into [0, 360).
    static float Normalize360(float degrees);

    /// An angle in degrees brought into (-180, 180].
    static float Normalize180(float degrees);

    /// Arc functions in degrees, exact at the ends of their range and beyond it.
    static float ArcSin(float v);           ///< In [-90, 90].
    static float ArcTan2(float y, float x); ///< In [-180, 180].

    static void Randomize(unsigned int seed); ///< Seeds the generator that all callers share.
    static float Rand01();     ///< In [0, 1), 23 bits. Not locked: threads disturb each other's sequence.
    static float RandRange1(); ///< In [-1, 1).

    /// Reflected cyclic redundancy check with the polynomial word 0xDEBB20E3, which stored checksums depend on.
    ///
    /// @param size  in bytes; 0 gives 0
    static unsigned int Checksum(const void* data, unsigned int size);

    /// IEEE 754 binary16, rounded half up. Below the normal range the shift count is taken modulo 32, so that very
    /// small floats do not all become zero: stored data holds such values.
    static unsigned short Float2Half(float f);
    static float Half2Float(unsigned short h);

    /// Swap the bytes of `count` items in place. @return the address behind the last one
    static void* EndianSwap2(void* data, int count);
    static void* EndianSwap4(void* data, int count);
    static void* EndianSwap8(void* data, int count);

    /// Swaps `count` records in place.
    ///
    /// @param pattern  letters b, w, d, q for items of 1, 2, 4, 8 bytes, each with an optional number of times: "2wd".
    ///                 Other letters do nothing; null does nothing at all
    /// @return the address behind the last record
    static void* EndianSwap(void* data, const char* pattern, int count);

    /// `value` wrapped into the period from `min` to `max`.
    ///
    /// @param cycles  receives the whole periods taken off; may be null. With a period of 0 it becomes 0 and the result
    ///                is `min`; without it the division by zero runs its course
    static float Periodic(float value, float min, float max, int* cycles = nullptr);
};

} // namespace trellis
