// Four floats that are worked on at once: a pixel, or a texture coordinate.
#pragma once

#include "math/cVec4.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace trellis {

/// The plain form. The other one gives the same bits.
struct Float4Plain {
    static constexpr float s_Far = 1 << 22;

    float v[4];

    static Float4Plain Load(const cVec4& p) { return {{p.x, p.y, p.z, p.w}}; }
    static Float4Plain Load(const float* p) { return {{p[0], p[1], p[2], p[3]}}; }
    static Float4Plain All(float f) { return {{f, f, f, f}}; }
    /// Levels from 0 to 255; the low byte comes first.
    static Float4Plain FromBytes(unsigned pixel) {
        return {{float(pixel & 255), float(pixel >> 8 & 255), float(pixel >> 16 & 255), float(pixel >> 24)}};
    }

    void Store(cVec4* out) const { *out = {v[0], v[1], v[2], v[3]}; }
    void Store(float* out) const { std::copy_n(v, 4, out); }
    /// The reverse of `FromBytes` for values from 0 to 1: clamped, rounded half up, 0 for what is no number.
    unsigned ToBytes() const { return Level(v[0]) | Level(v[1]) << 8 | Level(v[2]) << 16 | Level(v[3]) << 24; }

    /// Whole parts, rounded down, of the first two; the fractions of all. What is no number counts as `-s_Far`, and so
    /// far out, where a float has no fraction left, everything stands still.
    Float4Plain Split(int* first, int* second) const {
        Float4Plain rest;
        int whole[4];
        for (int i = 0; i < 4; i++) {
            const float near = v[i] > -s_Far ? v[i] < s_Far ? v[i] : s_Far : -s_Far;
            whole[i] = int(near) - (near < float(int(near)));
            rest.v[i] = near - float(whole[i]);
        }
        *first = whole[0];
        *second = whole[1];
        return rest;
    }
    template <int I> Float4Plain Spread() const { return All(v[I]); }
    /// The first components of four vectors, and the second ones.
    static void Columns(const cVec4* rows, Float4Plain* x, Float4Plain* y) {
        *x = {{rows[0].x, rows[1].x, rows[2].x, rows[3].x}};
        *y = {{rows[0].y, rows[1].y, rows[2].y, rows[3].y}};
    }

    /// The same for four at once.
    static void ToBytes(Float4Plain a, Float4Plain b, Float4Plain c, Float4Plain d, unsigned* out) {
        out[0] = a.ToBytes();
        out[1] = b.ToBytes();
        out[2] = c.ToBytes();
        out[3] = d.ToBytes();
    }

    // A bit for each component
    static int Less(Float4Plain a, Float4Plain b) {
        return Bits([&](int i) { return a.v[i] < b.v[i]; });
    }
    static int LessEqual(Float4Plain a, Float4Plain b) {
        return Bits([&](int i) { return a.v[i] <= b.v[i]; });
    }
    static int Equal(Float4Plain a, Float4Plain b) {
        return Bits([&](int i) { return a.v[i] == b.v[i]; });
    }

    static Float4Plain Min(Float4Plain a, Float4Plain b) {
        return Each([&](int i) { return a.v[i] < b.v[i] ? a.v[i] : b.v[i]; });
    }
    static Float4Plain Max(Float4Plain a, Float4Plain b) {
        return Each([&](int i) { return a.v[i] > b.v[i] ? a.v[i] : b.v[i]; });
    }
    /// From 0 to 1; 0 for what is no number.
    Float4Plain Clamped() const {
        return Each([this](int i) { return v[i] > 0 ? v[i] < 1 ? v[i] : 1.0f : 0.0f; });
    }
    static Float4Plain Sqrt(Float4Plain a) {
        return Each([&](int i) { return std::sqrt(a.v[i]); });
    }
    static Float4Plain Length(Float4Plain x, Float4Plain y) {
        return Each([&](int i) {
            const double a = x.v[i], b = y.v[i];
            return float(std::sqrt(a * a + b * b));
        });
    }
    /// Powers of what is from 0 to 1. @param power  above 0, up to `s_MaxPower`
    static Float4Plain Pow(Float4Plain base, float power) {
        return Each([&](int i) { return base.v[i] > 0 ? float(PowOf(base.v[i], power)) : 0.0f; });
    }
    static constexpr float s_MaxPower = 64;

    // Of powers: log2 m = c0 s + c1 s^3 + ... with s = (m - 1) / (m + 1), and 2^f by Taylor. What is left out is far
    // below a float's last digit.
    static constexpr double s_Log[] = {2.8853900817779268,  0.96179669392597556, 0.57707801635558536,
                                       0.41219858311113238, 0.32059889797532522, 0.26230818925253881,
                                       0.22195308321368667, 0.1923593387851951};
    static constexpr double s_Exp[] = {1.0,
                                       0.69314718055994531,
                                       0.24022650695910072,
                                       0.055504108664821579,
                                       0.0096181291076284772,
                                       0.0013333558146428443,
                                       0.00015403530393381608,
                                       1.5252733804059841e-05,
                                       1.3215486790144309e-06,
                                       1.0178086009239696e-07,
                                       7.0549116208011233e-09};
    static constexpr double s_Sqrt2 = 1.4142135623730951, s_LeastExponent = -1000;

    friend Float4Plain operator+(Float4Plain a, Float4Plain b) {
        return {{a.v[0] + b.v[0], a.v[1] + b.v[1], a.v[2] + b.v[2], a.v[3] + b.v[3]}};
    }
    friend Float4Plain operator-(Float4Plain a, Float4Plain b) {
        return {{a.v[0] - b.v[0], a.v[1] - b.v[1], a.v[2] - b.v[2], a.v[3] - b.v[3]}};
    }
    friend Float4Plain operator*(Float4Plain a, Float4Plain b) {
        return {{a.v[0] * b.v[0], a.v[1] * b.v[1], a.v[2] * b.v[2], a.v[3] * b.v[3]}};
    }

    friend Float4Plain operator/(Float4Plain a, Float4Plain b) {
        return {{a.v[0] / b.v[0], a.v[1] / b.v[1], a.v[2] / b.v[2], a.v[3] / b.v[3]}};
    }

private:
    static unsigned Level(float f) { return f > 0.0f ? f > 1.0f ? 255u : unsigned(f * 255.0f + 0.5f) : 0u; }
    template <class F> static Float4Plain Each(F f) { return {{f(0), f(1), f(2), f(3)}}; }
    template <class F> static int Bits(F f) { return f(0) | f(1) << 1 | f(2) << 2 | f(3) << 3; }

    template <size_t I = 0, size_t N> static double Polynomial(const double (&c)[N], double x) {
        if constexpr (I + 1 == N) {
            return c[I];
        } else {
            return Polynomial<I + 1>(c, x) * x + c[I];
        }
    }
    static double PowOf(double base, double power) {
        const auto bits = std::bit_cast<uint64_t>(base);
        double m = std::bit_cast<double>((bits & 0xFFFFFFFFFFFFF) | 0x3FF0000000000000);
        double exponent = double(int(bits >> 52) - 1023);
        if (m > s_Sqrt2) {
            m = m * 0.5;
            exponent = exponent + 1;
        }
        const double s = (m - 1) / (m + 1);
        double log = (exponent + Polynomial(s_Log, s * s) * s) * power;
        log = log > s_LeastExponent ? log : s_LeastExponent;
        const int whole = int(log - 0.5); // to the nearest one, as it is never above 0
        return Polynomial(s_Exp, log - double(whole)) * std::bit_cast<double>(uint64_t(whole + 1023) << 52);
    }
};

#if defined(__SSE2__)

struct Float4 {
    __m128 v;

    static Float4 Load(const cVec4& p) { return {_mm_loadu_ps(&p.x)}; }
    static Float4 Load(const float* p) { return {_mm_loadu_ps(p)}; }
    static Float4 All(float f) { return {_mm_set1_ps(f)}; }
    static Float4 FromBytes(unsigned pixel) {
        const __m128i zero = _mm_setzero_si128();
        const __m128i words = _mm_unpacklo_epi8(_mm_cvtsi32_si128(int(pixel)), zero);
        return {_mm_cvtepi32_ps(_mm_unpacklo_epi16(words, zero))};
    }

    void Store(cVec4* out) const { _mm_storeu_ps(&out->x, v); }
    void Store(float* out) const { _mm_storeu_ps(out, v); }
    unsigned ToBytes() const {
        const __m128i words = _mm_packs_epi32(Levels(), Levels());
        return unsigned(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
    }
    static void ToBytes(Float4 a, Float4 b, Float4 c, Float4 d, unsigned* out) {
        const __m128i low = _mm_packs_epi32(a.Levels(), b.Levels()), high = _mm_packs_epi32(c.Levels(), d.Levels());
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(low, high));
    }

    Float4 Split(int* first, int* second) const {
        const __m128 limit = _mm_set1_ps(Float4Plain::s_Far);
        // in this order a NaN becomes the lower limit
        const __m128 near = _mm_min_ps(_mm_max_ps(v, _mm_sub_ps(_mm_setzero_ps(), limit)), limit);
        __m128i whole = _mm_cvttps_epi32(near);
        whole = _mm_add_epi32(whole, _mm_castps_si128(_mm_cmplt_ps(near, _mm_cvtepi32_ps(whole))));
        *first = _mm_cvtsi128_si32(whole);
        *second = _mm_cvtsi128_si32(_mm_shuffle_epi32(whole, 1));
        return {_mm_sub_ps(near, _mm_cvtepi32_ps(whole))};
    }
    template <int I> Float4 Spread() const { return {_mm_shuffle_ps(v, v, I * 0x55)}; }
    static void Columns(const cVec4* rows, Float4* x, Float4* y) {
        const __m128 low = _mm_unpacklo_ps(Load(rows[0]).v, Load(rows[1]).v);
        const __m128 high = _mm_unpacklo_ps(Load(rows[2]).v, Load(rows[3]).v);
        x->v = _mm_movelh_ps(low, high);
        y->v = _mm_movehl_ps(high, low);
    }

    static int Less(Float4 a, Float4 b) { return _mm_movemask_ps(_mm_cmplt_ps(a.v, b.v)); }
    static int LessEqual(Float4 a, Float4 b) { return _mm_movemask_ps(_mm_cmple_ps(a.v, b.v)); }
    static int Equal(Float4 a, Float4 b) { return _mm_movemask_ps(_mm_cmpeq_ps(a.v, b.v)); }

    static Float4 Min(Float4 a, Float4 b) { return {_mm_min_ps(a.v, b.v)}; }
    static Float4 Max(Float4 a, Float4 b) { return {_mm_max_ps(a.v, b.v)}; }
    Float4 Clamped() const { return {_mm_min_ps(_mm_max_ps(v, _mm_setzero_ps()), _mm_set1_ps(1))}; }
    static Float4 Sqrt(Float4 a) { return {_mm_sqrt_ps(a.v)}; }
    static Float4 Length(Float4 x, Float4 y) {
        const auto half = [](__m128 a, __m128 b) {
            const __m128d c = _mm_cvtps_pd(a), d = _mm_cvtps_pd(b);
            return _mm_cvtpd_ps(_mm_sqrt_pd(_mm_add_pd(_mm_mul_pd(c, c), _mm_mul_pd(d, d))));
        };
        return {_mm_movelh_ps(half(x.v, y.v), half(_mm_movehl_ps(x.v, x.v), _mm_movehl_ps(y.v, y.v)))};
    }
    static Float4 Pow(Float4 base, float power) {
        const __m128d p = _mm_set1_pd(power);
        const __m128 low = _mm_cvtpd_ps(PowOf(_mm_cvtps_pd(base.v), p));
        const __m128 high = _mm_cvtpd_ps(PowOf(_mm_cvtps_pd(_mm_movehl_ps(base.v, base.v)), p));
        return {_mm_and_ps(_mm_movelh_ps(low, high), _mm_cmpgt_ps(base.v, _mm_setzero_ps()))};
    }

    friend Float4 operator+(Float4 a, Float4 b) { return {_mm_add_ps(a.v, b.v)}; }
    friend Float4 operator-(Float4 a, Float4 b) { return {_mm_sub_ps(a.v, b.v)}; }
    friend Float4 operator*(Float4 a, Float4 b) { return {_mm_mul_ps(a.v, b.v)}; }
    friend Float4 operator/(Float4 a, Float4 b) { return {_mm_div_ps(a.v, b.v)}; }

private:
    template <size_t I = 0, size_t N> static __m128d Polynomial(const double (&c)[N], __m128d x) {
        const __m128d first = _mm_set1_pd(c[I]);
        if constexpr (I + 1 == N) {
            return first;
        } else {
            return _mm_add_pd(_mm_mul_pd(Polynomial<I + 1>(c, x), x), first);
        }
    }
    static __m128d PowOf(__m128d base, __m128d power) {
        const __m128d one = _mm_set1_pd(1);
        const __m128i bits = _mm_castpd_si128(base);
        const __m128d fraction = _mm_castsi128_pd(_mm_srli_epi64(_mm_slli_epi64(bits, 12), 12));
        __m128d m = _mm_or_pd(fraction, one);
        const __m128i biased = _mm_shuffle_epi32(_mm_srli_epi64(bits, 52), 0x08);
        __m128d exponent = _mm_cvtepi32_pd(_mm_sub_epi32(biased, _mm_set1_epi32(1023)));
        const __m128d isUpper = _mm_cmpgt_pd(m, _mm_set1_pd(Float4Plain::s_Sqrt2));
        m = _mm_sub_pd(m, _mm_and_pd(isUpper, _mm_mul_pd(m, _mm_set1_pd(0.5)))); // exact
        exponent = _mm_add_pd(exponent, _mm_and_pd(isUpper, one));
        const __m128d s = _mm_div_pd(_mm_sub_pd(m, one), _mm_add_pd(m, one));
        const __m128d series = _mm_mul_pd(Polynomial(Float4Plain::s_Log, _mm_mul_pd(s, s)), s);
        __m128d log = _mm_mul_pd(_mm_add_pd(exponent, series), power);
        log = _mm_max_pd(log, _mm_set1_pd(Float4Plain::s_LeastExponent));
        const __m128i whole = _mm_cvttpd_epi32(_mm_sub_pd(log, _mm_set1_pd(0.5)));
        const __m128i raised = _mm_unpacklo_epi32(_mm_add_epi32(whole, _mm_set1_epi32(1023)), _mm_setzero_si128());
        return _mm_mul_pd(Polynomial(Float4Plain::s_Exp, _mm_sub_pd(log, _mm_cvtepi32_pd(whole))),
                          _mm_castsi128_pd(_mm_slli_epi64(raised, 52)));
    }
    __m128i Levels() const {
        // in this order a NaN becomes 0
        const __m128 clamped = _mm_min_ps(_mm_max_ps(v, _mm_setzero_ps()), _mm_set1_ps(1));
        return _mm_cvttps_epi32(_mm_add_ps(_mm_mul_ps(clamped, _mm_set1_ps(255)), _mm_set1_ps(0.5f)));
    }
};

#else

using Float4 = Float4Plain;

#endif

} // namespace trellis
