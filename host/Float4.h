// Four floats that are worked on at once: a pixel, or a texture coordinate.
#pragma once

#include "math/cVec4.h"

#include <algorithm>

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

    static void ToBytes(const cVec4* from, int count, unsigned* out) {
        for (int i = 0; i < count; i++) {
            out[i] = Load(from[i]).ToBytes();
        }
    }

    friend Float4Plain operator+(Float4Plain a, Float4Plain b) {
        return {{a.v[0] + b.v[0], a.v[1] + b.v[1], a.v[2] + b.v[2], a.v[3] + b.v[3]}};
    }
    friend Float4Plain operator-(Float4Plain a, Float4Plain b) {
        return {{a.v[0] - b.v[0], a.v[1] - b.v[1], a.v[2] - b.v[2], a.v[3] - b.v[3]}};
    }
    friend Float4Plain operator*(Float4Plain a, Float4Plain b) {
        return {{a.v[0] * b.v[0], a.v[1] * b.v[1], a.v[2] * b.v[2], a.v[3] * b.v[3]}};
    }

private:
    static unsigned Level(float f) { return f > 0.0f ? f > 1.0f ? 255u : unsigned(f * 255.0f + 0.5f) : 0u; }
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
    static void ToBytes(const cVec4* from, int count, unsigned* out) {
        int i = 0;
        for (; i + 4 <= count; i += 4) {
            const __m128i low = _mm_packs_epi32(Load(from[i]).Levels(), Load(from[i + 1]).Levels());
            const __m128i high = _mm_packs_epi32(Load(from[i + 2]).Levels(), Load(from[i + 3]).Levels());
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_packus_epi16(low, high));
        }
        for (; i < count; i++) {
            out[i] = Load(from[i]).ToBytes();
        }
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

    friend Float4 operator+(Float4 a, Float4 b) { return {_mm_add_ps(a.v, b.v)}; }
    friend Float4 operator-(Float4 a, Float4 b) { return {_mm_sub_ps(a.v, b.v)}; }
    friend Float4 operator*(Float4 a, Float4 b) { return {_mm_mul_ps(a.v, b.v)}; }

private:
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
