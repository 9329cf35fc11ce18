#include "host/cSoftwareMerge.h"

#include "host/Float4.h"

#include <algorithm>
#include <cstring>

namespace trellis {

namespace {

/// v / 255 rounded, for v from 0 to 65025.
constexpr unsigned Over255(unsigned v) {
    return (v + 128 + ((v + 128) >> 8)) >> 8;
}

unsigned AlphaBytes(unsigned d, unsigned s) {
    const unsigned a = s >> 24;
    unsigned result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        result |= Over255((s >> shift & 255) * a + (d >> shift & 255) * (255 - a)) << shift;
    }
    return result;
}

void AlphaRunPlain(unsigned* target, const unsigned* source, int step, int count) {
    for (int i = 0; i < count; i++, source += step) {
        target[i] = AlphaBytes(target[i], *source);
    }
}

#if defined(__SSE2__)

/// Source pixels in words: what they add, and what they leave of the target, for two pixels.
struct AlphaPair {
    __m128i Add, Rest;

    explicit AlphaPair(__m128i s) {
        const __m128i a = _mm_shufflehi_epi16(_mm_shufflelo_epi16(s, 0xFF), 0xFF);
        Add = _mm_add_epi16(_mm_mullo_epi16(s, a), _mm_set1_epi16(128));
        Rest = _mm_sub_epi16(_mm_set1_epi16(255), a);
    }
    __m128i Over(__m128i d) const {
        const __m128i sum = _mm_add_epi16(Add, _mm_mullo_epi16(d, Rest));
        return _mm_srli_epi16(_mm_add_epi16(sum, _mm_srli_epi16(sum, 8)), 8);
    }
};

struct AlphaQuad {
    AlphaPair Low, High;

    explicit AlphaQuad(__m128i s)
        : Low(_mm_unpacklo_epi8(s, _mm_setzero_si128())), High(_mm_unpackhi_epi8(s, _mm_setzero_si128())) {}
    void Over(unsigned* target) const {
        const __m128i zero = _mm_setzero_si128(), d = _mm_loadu_si128(reinterpret_cast<__m128i*>(target));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target),
                         _mm_packus_epi16(Low.Over(_mm_unpacklo_epi8(d, zero)), High.Over(_mm_unpackhi_epi8(d, zero))));
    }
};

void AlphaRun(unsigned* target, const unsigned* source, int step, int count) {
    int i = 0;
    if (step == 0) {
        const AlphaQuad same(_mm_set1_epi32(int(*source)));
        for (; i + 4 <= count; i += 4) {
            same.Over(target + i);
        }
    } else {
        for (; i + 4 <= count; i += 4, source += 4) {
            AlphaQuad(_mm_loadu_si128(reinterpret_cast<const __m128i*>(source))).Over(target + i);
        }
    }
    for (; i < count; i++, source += step) {
        const __m128i zero = _mm_setzero_si128(), s = _mm_unpacklo_epi8(_mm_cvtsi32_si128(int(*source)), zero);
        const __m128i d = _mm_unpacklo_epi8(_mm_cvtsi32_si128(int(target[i])), zero), sum = AlphaPair(s).Over(d);
        target[i] = unsigned(_mm_cvtsi128_si32(_mm_packus_epi16(sum, sum)));
    }
}

#else

constexpr auto AlphaRun = AlphaRunPlain;

#endif

void FillRun(unsigned* target, unsigned v, int count) {
#if defined(__SSE2__)
    const __m128i four = _mm_set1_epi32(int(v));
    for (; count >= 8; count -= 8, target += 8) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target), four);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + 4), four);
    }
#endif
    std::fill_n(target, count, v);
}

void ToBytes(const cVec4* from, int count, unsigned* out) {
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        Float4::ToBytes(Float4::Load(from[i]), Float4::Load(from[i + 1]), Float4::Load(from[i + 2]),
                        Float4::Load(from[i + 3]), out + i);
    }
    for (; i < count; i++) {
        out[i] = Float4::Load(from[i]).ToBytes();
    }
}

/// Factor of one channel; `one` is 255 or 1.
template <class T> T FactorOf(cBlendFactor::Enum factor, T s, T d, T sourceAlpha, T targetAlpha, T one) {
    switch (factor) {
    case cBlendFactor::Zero:
        return 0;
    case cBlendFactor::One:
        return one;
    case cBlendFactor::SrcColor:
        return s;
    case cBlendFactor::OneMinusSrcColor:
        return one - s;
    case cBlendFactor::SrcAlpha:
        return sourceAlpha;
    case cBlendFactor::OneMinusSrcAlpha:
        return one - sourceAlpha;
    case cBlendFactor::DstColor:
        return d;
    case cBlendFactor::OneMinusDstColor:
        return one - d;
    case cBlendFactor::DstAlpha:
        return targetAlpha;
    case cBlendFactor::OneMinusDstAlpha:
        return one - targetAlpha;
    case cBlendFactor::Count:
        break;
    }
    return one;
}

template <class T> T MergeChannel(const cSoftwareBlend& blend, T s, T d, T sourceAlpha, T targetAlpha, T one) {
    const T f = FactorOf(blend.Src, s, d, sourceAlpha, targetAlpha, one);
    const T g = FactorOf(blend.Dst, s, d, sourceAlpha, targetAlpha, one);
    switch (blend.Mode) {
    case cBlendMode::Add:
        return s * f + d * g;
    case cBlendMode::Subtract:
        return s * f - d * g;
    case cBlendMode::ReverseSubtract:
        return d * g - s * f;
    case cBlendMode::Min:
        return std::min(s, d) * one;
    case cBlendMode::Max:
        return std::max(s, d) * one;
    case cBlendMode::Count:
        break;
    }
    return s * one;
}

unsigned GeneralBytes(const cSoftwareBlend& blend, unsigned d, unsigned s) {
    unsigned result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const int v =
            MergeChannel<int>(blend, int(s >> shift & 255), int(d >> shift & 255), int(s >> 24), int(d >> 24), 255);
        result |= Over255(unsigned(std::clamp(v, 0, 255 * 255))) << shift;
    }
    return result;
}

} // namespace

void cSoftwareMerge::Begin(const cSoftwareSurface& surface, const cSoftwareBlend& blend, Path path) {
    m_Surface = surface;
    m_Blend = blend;
    m_Channels = blend.WriteMask & surface.Channels;
    m_Mask = 0;
    for (int i = 0; i < 4; i++) {
        m_Mask |= (m_Channels >> i & 1) * (255u << 8 * i);
    }
    const auto is = [&](cBlendFactor::Enum src, cBlendFactor::Enum dst) {
        return blend.Mode == cBlendMode::Add && blend.Src == src && blend.Dst == dst;
    };
    m_Way = !blend.IsOn || is(cBlendFactor::One, cBlendFactor::Zero)     ? Way::Replace
            : is(cBlendFactor::SrcAlpha, cBlendFactor::OneMinusSrcAlpha) ? Way::Alpha
                                                                         : Way::General;
    m_Path = path;
}

/// @param step  1, or 0 for one source pixel for all
void cSoftwareMerge::MergeBytes(unsigned* target, const unsigned* source, int step, int count) const {
    unsigned old[MaxRun];
    if (m_Mask != ~0u) {
        std::copy_n(target, count, old);
    }
    switch (m_Way) {
    case Way::Replace:
        for (int i = 0; i < count; i++, source += step) {
            target[i] = *source;
        }
        break;
    case Way::Alpha:
        (m_Path == Path::Fast ? AlphaRun : AlphaRunPlain)(target, source, step, count);
        break;
    case Way::General:
        for (int i = 0; i < count; i++, source += step) {
            target[i] = GeneralBytes(m_Blend, target[i], *source);
        }
        break;
    }
    if (m_Mask != ~0u) {
        for (int i = 0; i < count; i++) {
            target[i] = (target[i] & m_Mask) | (old[i] & ~m_Mask);
        }
    }
}

cVec4 cSoftwareMerge::MergeFloats(const cVec4& d, const cVec4& s) const {
    cVec4 result = d;
    for (int i = 0; i < 4; i++) {
        if (m_Channels >> i & 1) {
            result[i] = m_Way == Way::Replace ? s[i] : MergeChannel<float>(m_Blend, s[i], d[i], s.w, d.w, 1);
        }
    }
    return result;
}

void cSoftwareMerge::Write(int x, int y, int count, const cVec4* colors, uint64_t keep) const {
    const size_t offset = size_t(y) * size_t(m_Surface.Width) + size_t(x);
    if (m_Surface.Floats) {
        cVec4* target = m_Surface.Floats + offset;
        for (int i = 0; i < count; i++) {
            if (keep >> i & 1) {
                target[i] = MergeFloats(target[i], colors[i]);
            }
        }
        return;
    }
    unsigned* target = m_Surface.Bytes + offset;
    const bool isWhole = keep == AllOf(count), isPlain = IsPlain();
    if (isWhole && isPlain) {
        ToBytes(colors, count, target);
        return;
    }
    unsigned source[MaxRun], merged[MaxRun];
    ToBytes(colors, count, source);
    if (isWhole) {
        MergeBytes(target, source, 1, count);
        return;
    }
    const unsigned* result = source;
    if (!isPlain) {
        std::copy_n(target, count, merged);
        MergeBytes(merged, source, 1, count);
        result = merged;
    }
    for (int i = 0; i < count; i++) {
        target[i] = keep >> i & 1 ? result[i] : target[i];
    }
}

void cSoftwareMerge::Fill(int x, int y, int count, const cVec4& color) const {
    const size_t offset = size_t(y) * size_t(m_Surface.Width) + size_t(x);
    if (m_Surface.Floats) {
        for (cVec4* target = m_Surface.Floats + offset; count > 0; count--, target++) {
            *target = MergeFloats(*target, color);
        }
        return;
    }
    const unsigned source = Float4::Load(color).ToBytes();
    unsigned* target = m_Surface.Bytes + offset;
    if (IsPlain()) {
        FillRun(target, source, count);
        return;
    }
    if (m_Mask == ~0u) {
        MergeBytes(target, &source, 0, count);
        return;
    }
    for (; count > 0; count -= MaxRun, target += MaxRun) {
        MergeBytes(target, &source, 0, std::min(count, MaxRun));
    }
}

} // namespace trellis
