#include "image/PixelConvert.h"

#include "math/cMath.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <array>
#include <cstring>
#include <tuple>
#include <type_traits>
#include <utility>

namespace trellis {

namespace {

using Run = void (*)(const unsigned char* source, unsigned char* target, size_t count);

constexpr float s_ByteScale = 0.003921569f, s_WordScale = 1.5259022e-5f;
constexpr float s_Luminance[] = {0.2125f, 0.7154f, 0.0721f};

// Elements of the four classes of formats.

/// Clamps to [0, 1] and rounds to [0, top]; what is no number becomes 0.
template <int Top> int ToInteger(float v) {
    return v > 0.0f ? v > 1.0f ? Top : int(v * float(Top) + 0.5f) : 0;
}

struct Byte {
    unsigned char Bits;
    float Load() const { return float(Bits) * s_ByteScale; }
    static Byte Store(float v) { return {(unsigned char)ToInteger<255>(v)}; }
};
struct Word {
    unsigned short Bits;
    float Load() const { return float(Bits) * s_WordScale; }
    static Word Store(float v) { return {(unsigned short)ToInteger<65535>(v)}; }
};
struct Half {
    unsigned short Bits;
    float Load() const { return cMath::Half2Float(Bits); }
    static Half Store(float v) { return {cMath::Float2Half(v)}; }
};
struct Float {
    float Bits;
    float Load() const { return Bits; }
    static Float Store(float v) { return {v}; }
};
using Elements = std::tuple<Byte, Word, Half, Float>; // by class of format, four formats each

template <class T> constexpr bool s_IsHalf = std::is_same_v<T, Half>;

// The plain path

template <class S, int SourceChannels, class T, int TargetChannels>
void PlainRun(const unsigned char* from, unsigned char* to, size_t count) {
    const S* source = reinterpret_cast<const S*>(from);
    T* target = reinterpret_cast<T*>(to);
    for (; count > 0; count--, source += SourceChannels, target += TargetChannels) {
        float pixel[4] = {0, 0, 0, 1}; // of two channels blue is 0
        for (int i = 0; i < SourceChannels; i++) {
            pixel[i] = source[i].Load();
        }
        if constexpr (SourceChannels == 1) {
            pixel[1] = pixel[2] = pixel[0];
        }
        if constexpr (TargetChannels == 1) {
            pixel[0] = s_Luminance[0] * pixel[0] + s_Luminance[1] * pixel[1] + s_Luminance[2] * pixel[2];
        }
        for (int i = 0; i < TargetChannels; i++) {
            target[i] = T::Store(pixel[i]);
        }
    }
}

// Short cuts. Bytes and words come back from the floats as they were, and 257 times a byte or the nearest byte to a
// word when the class changes, for every value there is: so integers do.

template <class T> constexpr T s_One = T{65535};
template <> constexpr Byte s_One<Byte> = Byte{255};
template <> constexpr Float s_One<Float> = Float{1};

/// Within a class, to more than one channel.
template <class T, int SourceChannels, int TargetChannels>
void ShuffleRun(const unsigned char* from, unsigned char* to, size_t count) {
    const T* source = reinterpret_cast<const T*>(from);
    T* target = reinterpret_cast<T*>(to);
    for (; count > 0; count--, source += SourceChannels, target += TargetChannels) {
        for (int i = 0; i < TargetChannels; i++) {
            target[i] = i < SourceChannels ? source[i] : i == 3 ? s_One<T> : SourceChannels == 1 ? source[0] : T{};
        }
    }
}

template <class S, class T> T Recast(S v) {
    if constexpr (std::is_same_v<S, Byte> && std::is_same_v<T, Word>) {
        return {(unsigned short)(v.Bits * 257)};
    } else if constexpr (std::is_same_v<S, Word> && std::is_same_v<T, Byte>) {
        return {(unsigned char)((v.Bits * 255u + 32895u) >> 16)};
    } else {
        return T::Store(v.Load());
    }
}

#if defined(__SSE2__)

__m128i Load16(const void* p) {
    return _mm_loadu_si128(static_cast<const __m128i*>(p));
}
void Store16(void* p, __m128i v) {
    _mm_storeu_si128(static_cast<__m128i*>(p), v);
}

/// Four bytes-in-ints from four floats.
__m128i ToBytes(__m128 v) {
    v = _mm_min_ps(_mm_max_ps(v, _mm_setzero_ps()), _mm_set1_ps(1)); // in this order a NaN becomes 0
    return _mm_cvttps_epi32(_mm_add_ps(_mm_mul_ps(v, _mm_set1_ps(255)), _mm_set1_ps(0.5f)));
}
__m128i PackBytes(__m128i a, __m128i b, __m128i c, __m128i d) {
    return _mm_packus_epi16(_mm_packs_epi32(a, b), _mm_packs_epi32(c, d));
}

/// Whole sixteens of `count` elements. @return how many were done
template <class S, class T> size_t RecastSixteens(const S*, T*, size_t) {
    return 0;
}

size_t RecastSixteens(const Byte* source, Float* target, size_t count) {
    const __m128i zero = _mm_setzero_si128();
    const __m128 scale = _mm_set1_ps(s_ByteScale);
    size_t done = 0;
    for (; done + 16 <= count; done += 16) {
        const __m128i v = Load16(source + done);
        const __m128i low = _mm_unpacklo_epi8(v, zero), high = _mm_unpackhi_epi8(v, zero);
        const __m128i quads[] = {_mm_unpacklo_epi16(low, zero), _mm_unpackhi_epi16(low, zero),
                                 _mm_unpacklo_epi16(high, zero), _mm_unpackhi_epi16(high, zero)};
        for (int i = 0; i < 4; i++) {
            _mm_storeu_ps(&target[done + size_t(i) * 4].Bits, _mm_mul_ps(_mm_cvtepi32_ps(quads[i]), scale));
        }
    }
    return done;
}

size_t RecastSixteens(const Float* source, Byte* target, size_t count) {
    size_t done = 0;
    for (; done + 16 <= count; done += 16) {
        const float* p = &source[done].Bits;
        Store16(target + done, PackBytes(ToBytes(_mm_loadu_ps(p)), ToBytes(_mm_loadu_ps(p + 4)),
                                         ToBytes(_mm_loadu_ps(p + 8)), ToBytes(_mm_loadu_ps(p + 12))));
    }
    return done;
}

/// Four pixels of three bytes, in the lower twelve, to four of four, the last byte 0; and back.
__m128i Widen(__m128i v) {
    v = _mm_unpacklo_epi64(v, _mm_srli_si128(v, 6)); // two pixels in each half
    return _mm_or_si128(_mm_and_si128(v, _mm_set_epi32(0, 0xFFFFFF, 0, 0xFFFFFF)),
                        _mm_and_si128(_mm_slli_epi64(v, 8), _mm_set_epi32(0xFFFFFF, 0, 0xFFFFFF, 0)));
}
__m128i Narrow(__m128i v) {
    v = _mm_or_si128(_mm_and_si128(v, _mm_set_epi32(0, 0xFFFFFF, 0, 0xFFFFFF)),
                     _mm_srli_epi64(_mm_and_si128(v, _mm_set_epi32(0xFFFFFF, 0, 0xFFFFFF, 0)), 8));
    return _mm_or_si128(_mm_move_epi64(v), _mm_slli_si128(_mm_srli_si128(v, 8), 6));
}

struct Sixteen {
    __m128i Quads[4]; // sixteen pixels of four bytes
};

template <int Channels> Sixteen LoadSixteen(const unsigned char* p) {
    const __m128i a = Load16(p), b = Load16(p + 16), c = Load16(p + 32);
    if constexpr (Channels == 4) {
        return {{a, b, c, Load16(p + 48)}};
    } else {
        return {{Widen(a), Widen(_mm_or_si128(_mm_srli_si128(a, 12), _mm_slli_si128(b, 4))),
                 Widen(_mm_or_si128(_mm_srli_si128(b, 8), _mm_slli_si128(c, 8))), Widen(_mm_srli_si128(c, 4))}};
    }
}

void RgbToRgba(const unsigned char* source, unsigned char* target, size_t count) {
    const __m128i alpha = _mm_set1_epi32(int(0xFF000000u));
    for (; count >= 16; count -= 16, source += 48, target += 64) {
        const Sixteen v = LoadSixteen<3>(source);
        for (int i = 0; i < 4; i++) {
            Store16(target + i * 16, _mm_or_si128(v.Quads[i], alpha));
        }
    }
    ShuffleRun<Byte, 3, 4>(source, target, count);
}

void RgbaToRgb(const unsigned char* source, unsigned char* target, size_t count) {
    for (; count >= 16; count -= 16, source += 64, target += 48) {
        const __m128i a = Narrow(Load16(source)), b = Narrow(Load16(source + 16));
        const __m128i c = Narrow(Load16(source + 32)), d = Narrow(Load16(source + 48));
        Store16(target, _mm_or_si128(a, _mm_slli_si128(b, 12)));
        Store16(target + 16, _mm_or_si128(_mm_srli_si128(b, 4), _mm_slli_si128(c, 8)));
        Store16(target + 32, _mm_or_si128(_mm_srli_si128(c, 8), _mm_slli_si128(d, 4)));
    }
    ShuffleRun<Byte, 4, 3>(source, target, count);
}

void GrayToRgba(const unsigned char* source, unsigned char* target, size_t count) {
    const __m128i ones = _mm_set1_epi32(-1);
    for (; count >= 16; count -= 16, source += 16, target += 64) {
        const __m128i v = Load16(source);
        const __m128i rg = _mm_unpacklo_epi8(v, v), ba = _mm_unpacklo_epi8(v, ones);
        const __m128i rgHigh = _mm_unpackhi_epi8(v, v), baHigh = _mm_unpackhi_epi8(v, ones);
        Store16(target, _mm_unpacklo_epi16(rg, ba));
        Store16(target + 16, _mm_unpackhi_epi16(rg, ba));
        Store16(target + 32, _mm_unpacklo_epi16(rgHigh, baHigh));
        Store16(target + 48, _mm_unpackhi_epi16(rgHigh, baHigh));
    }
    ShuffleRun<Byte, 1, 4>(source, target, count);
}

/// Luminances of four pixels, by the same steps as `PlainRun`.
__m128i Luminances(__m128i v) {
    const __m128i mask = _mm_set1_epi32(255);
    const auto channel = [&](int shift, float weight) {
        const __m128 level = _mm_cvtepi32_ps(_mm_and_si128(_mm_srli_epi32(v, shift), mask));
        return _mm_mul_ps(_mm_set1_ps(weight), _mm_mul_ps(level, _mm_set1_ps(s_ByteScale)));
    };
    const __m128 redGreen = _mm_add_ps(channel(0, s_Luminance[0]), channel(8, s_Luminance[1]));
    return ToBytes(_mm_add_ps(redGreen, channel(16, s_Luminance[2])));
}

template <int Channels> void ColorToGray(const unsigned char* source, unsigned char* target, size_t count) {
    for (; count >= 16; count -= 16, source += 16 * Channels, target += 16) {
        const Sixteen v = LoadSixteen<Channels>(source);
        Store16(target, PackBytes(Luminances(v.Quads[0]), Luminances(v.Quads[1]), Luminances(v.Quads[2]),
                                  Luminances(v.Quads[3])));
    }
    PlainRun<Byte, Channels, Byte, 1>(source, target, count);
}

#else

template <class S, class T> size_t RecastSixteens(const S*, T*, size_t) {
    return 0;
}

#endif

/// From class to class with the same channels, two and more: element by element.
template <class S, class T, int Channels> void RecastRun(const unsigned char* from, unsigned char* to, size_t count) {
    const S* source = reinterpret_cast<const S*>(from);
    T* target = reinterpret_cast<T*>(to);
    const size_t elements = count * Channels;
    for (size_t i = RecastSixteens(source, target, elements); i < elements; i++) {
        target[i] = Recast<S, T>(source[i]);
    }
}

template <class S, int SourceChannels, class T, int TargetChannels> constexpr Run FastRun() {
    constexpr bool isBytes = std::is_same_v<S, Byte> && std::is_same_v<T, Byte>;
    (void)isBytes;
#if defined(__SSE2__)
    if constexpr (isBytes && SourceChannels == 3 && TargetChannels == 4) {
        return RgbToRgba;
    } else if constexpr (isBytes && SourceChannels == 4 && TargetChannels == 3) {
        return RgbaToRgb;
    } else if constexpr (isBytes && SourceChannels == 1 && TargetChannels == 4) {
        return GrayToRgba;
    } else if constexpr (isBytes && SourceChannels >= 3 && TargetChannels == 1) {
        return ColorToGray<SourceChannels>;
    } else
#endif
        if constexpr (TargetChannels > 1 && std::is_same_v<S, T> && !s_IsHalf<T>) {
        return ShuffleRun<T, SourceChannels, TargetChannels>;
    } else if constexpr (TargetChannels > 1 && TargetChannels == SourceChannels) {
        return RecastRun<S, T, TargetChannels>;
    } else {
        return PlainRun<S, SourceChannels, T, TargetChannels>;
    }
}

// Both paths by source * 16 + target, counted from `R8`.

constexpr int s_Colors = cFormat::Rgba32f - cFormat::R8 + 1;
template <int Color> using ElementOf = std::tuple_element_t<Color / 4, Elements>;

template <int... Pairs> constexpr std::array<Run, sizeof...(Pairs)> PlainRuns(std::integer_sequence<int, Pairs...>) {
    return {
        PlainRun<ElementOf<Pairs / s_Colors>, Pairs / s_Colors % 4 + 1, ElementOf<Pairs % s_Colors>, Pairs % 4 + 1>...};
}
template <int... Pairs> constexpr std::array<Run, sizeof...(Pairs)> FastRuns(std::integer_sequence<int, Pairs...>) {
    return {FastRun<ElementOf<Pairs / s_Colors>, Pairs / s_Colors % 4 + 1, ElementOf<Pairs % s_Colors>,
                    Pairs % 4 + 1>()...};
}
constexpr auto s_PlainRuns = PlainRuns(std::make_integer_sequence<int, s_Colors * s_Colors>());
constexpr auto s_FastRuns = FastRuns(std::make_integer_sequence<int, s_Colors * s_Colors>());

} // namespace

void ConvertPixels(cFormat::Enum to, unsigned char* target, cFormat::Enum from, const unsigned char* source,
                   size_t count, PixelPath path) {
    if (from == cFormat::None) {
        static constexpr unsigned char s_Black[3] = {};
        for (; count > 0; count--, target += cFormat::BytesPerPixel[to]) {
            ConvertPixels(to, target, cFormat::Rgb8, s_Black, 1, path);
        }
        return;
    }
    const auto pair = size_t((from - cFormat::R8) * s_Colors + (to - cFormat::R8));
    (path == PixelPath::Fast ? s_FastRuns : s_PlainRuns)[pair](source, target, count);
}

} // namespace trellis
