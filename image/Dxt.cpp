#include "image/Dxt.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <emmintrin.h>
#include <utility>

namespace trellis::dxt {

namespace {

using Color = std::array<int, 3>; // channels in [0, 255]

/// Least and greatest value of each channel over a block.
struct Range {
    Color Min = {255, 255, 255};
    Color Max = {0, 0, 0};

    bool IsFlat() const { return Min == Max; }

    int MainAxis() const { // ties go to the lower channel
        int axis = 0;
        for (int c = 1; c < 3; c++) {
            if (Max[c] - Min[c] > Max[axis] - Min[axis]) {
                axis = c;
            }
        }
        return axis;
    }
};

/// Sums for the lines of the channels against the main axis x. With y = x they are those of x itself.
struct Moments {
    alignas(16) uint32_t Sy[4] = {}; // sum of y, by channel; the fourth is padding
    alignas(16) uint32_t Sxy[4] = {};
};

/// The colours between which a block interpolates, before they are cut to 5:6:5 bits: the codes are chosen by them.
struct Endpoints {
    Color A, B;
};

/// Least squares line of every channel against the main axis, at both ends of the axis.
Endpoints FitEndpoints(const Range& range, int axis, uint32_t n, const Moments& m) {
    Endpoints ends = {range.Max, range.Min};
    const uint32_t sx = m.Sy[axis], sxx = m.Sxy[axis];
    const int32_t det = int32_t(sxx * n - sx * sx); // above 0, as the main axis is not flat
    for (int c = 0; c < 3; c++) {
        if (c == axis || range.Min[c] == range.Max[c]) {
            continue;
        }
        const uint32_t intercept = sxx * m.Sy[c] - sx * m.Sxy[c];
        const uint32_t slope = m.Sxy[c] * n - m.Sy[c] * sx;
        const auto at = [&](int x) { return std::clamp(int32_t(uint32_t(x) * slope + intercept) / det, 0, 255); };
        ends.A[c] = at(range.Max[axis]);
        ends.B[c] = at(range.Min[axis]);
    }
    return ends;
}

/// The two colours between the ends, a third and two thirds along, truncated.
std::array<Color, 4> MakePalette(const Endpoints& ends) {
    std::array<Color, 4> palette = {ends.A, ends.B};
    for (int c = 0; c < 3; c++) {
        palette[2][c] = (2 * ends.A[c] + ends.B[c]) / 3;
        palette[3][c] = (ends.A[c] + 2 * ends.B[c]) / 3;
    }
    return palette;
}

uint32_t Pack565(const Color& c) { // truncated, as every decoder here expands by shifts
    return uint32_t((c[0] & 0xF8) << 8 | (c[1] & 0xFC) << 3 | c[2] >> 3);
}

/// Brings the block into the order that stands for four colours, first above second.
uint64_t FinishColorBlock(const Endpoints& ends, uint32_t codes) {
    uint32_t a = Pack565(ends.A), b = Pack565(ends.B);
    if (a < b) {
        std::swap(a, b);
        codes ^= 0x55555555;
    } else if (a == b) {
        a |= 32; // one step of green apart; the codes stay, so a flat block is the first colour throughout
        b &= ~32u;
    }
    return a | b << 16 | uint64_t(codes) << 32;
}

constexpr uint32_t GrayWord(int q) { // 5 bits; green gets q twice, so that the three shades agree
    return uint32_t(q | q << 6 | q << 11);
}

struct GrayRange {
    int Min, Max;   // as the codes measure, Min < Max
    uint32_t Words; // both colour words
};

GrayRange QuantizeGray(int min, int max) {
    const auto quantize = [](int v) { return (v * 62 + 31) / 510; };
    int qmin = quantize(min), qmax = quantize(max);
    if (qmin == qmax) { // the range that the codes measure moves too, by one 8-bit step
        if (qmin == 31) {
            min--;
            qmin = 30;
        } else {
            max++;
            qmax++;
        }
    }
    return {min, max, GrayWord(qmax) | GrayWord(qmin) << 16};
}

/// Parts two equal alphas, so that the block is always of the kind with eight values.
void PartAlphas(int* min, int* max) {
    if (*min == *max) {
        if (*min == 255) {
            *min = 254;
        } else {
            *max = *min + 1;
        }
    }
}

constexpr int s_Alpha = 24; // its shift in a pixel

/// `Dxt3` keeps the order of its words like `Dxt1`: its writers know the shade of black that may come of it.
bool HasFourColors(cFormat::Enum format, uint32_t first, uint32_t second) {
    return first > second || format == cFormat::Dxt5;
}

} // namespace

namespace plain {

namespace {

template <class F>
void ForEachPixel(int blockWidth, int blockHeight, int pixelStride, int rowStride, const unsigned char* pixels, F&& f) {
    for (int y = 0; y < blockHeight; y++) {
        for (int x = 0; x < blockWidth; x++) {
            f(x, y, pixels + y * rowStride + x * pixelStride);
        }
    }
}

int Distance(const unsigned char* p, const Color& c) {
    const int r = p[0] - c[0], g = p[1] - c[1], b = p[2] - c[2];
    return r * r + g * g + b * b;
}

uint32_t NearestCode(const unsigned char* p, const std::array<Color, 4>& palette) { // ties go to the lower code
    int best = 0;
    for (int i = 1; i < 4; i++) {
        if (Distance(p, palette[i]) < Distance(p, palette[best])) {
            best = i;
        }
    }
    return uint32_t(best);
}

uint32_t Word(const unsigned char* p, int bytes) {
    uint32_t v = 0;
    std::memcpy(&v, p, size_t(bytes));
    return v;
}

uint32_t Expand565(uint32_t c) { // plain shifts without replication: white decodes as 248, 252, 248
    return (c >> 11) << 3 | (c >> 5 & 63) << 10 | (c & 31) << 19;
}

/// f of each pair of channels.
template <class F> uint32_t Mix(uint32_t a, uint32_t b, F f) {
    return f(a & 255, b & 255) | f(a >> 8 & 255, b >> 8 & 255) << 8 | f(a >> 16 & 255, b >> 16 & 255) << 16;
}

std::array<uint32_t, 4> ColorPalette(cFormat::Enum format, const unsigned char* block) {
    const uint32_t first = Word(block, 2), second = Word(block + 2, 2);
    const uint32_t a = Expand565(first), b = Expand565(second);
    if (HasFourColors(format, first, second)) {
        return {a, b, Mix(a, b, [](uint32_t p, uint32_t q) { return (2 * p + q + 1) / 3; }),
                Mix(a, b, [](uint32_t p, uint32_t q) { return (p + 2 * q + 1) / 3; })};
    }
    return {a, b, Mix(a, b, [](uint32_t p, uint32_t q) { return (p + q + 1) >> 1; }), 0};
}

/// The eight alphas, at their place in a pixel.
std::array<uint32_t, 8> AlphaPalette(uint32_t a0, uint32_t a1) {
    std::array<uint32_t, 8> palette = {a0, a1};
    const uint32_t steps = a0 > a1 ? 7 : 5;
    for (uint32_t i = 2; i <= steps; i++) {
        palette[i] = ((steps + 1 - i) * a0 + (i - 1) * a1) / steps;
    }
    if (steps == 5) {
        palette[6] = 0;
        palette[7] = 255;
    }
    for (uint32_t& alpha : palette) {
        alpha <<= s_Alpha;
    }
    return palette;
}

void AddColors(cFormat::Enum format, const unsigned char* block, Pixels& out) {
    const auto palette = ColorPalette(format, block);
    uint32_t codes = Word(block + 4, 4);
    for (uint32_t& pixel : out.Words) {
        pixel |= palette[codes & 3];
        codes >>= 2;
    }
}

void SetAlphas4Bit(const unsigned char* block, Pixels& out) {
    for (int half = 0; half < 2; half++) {
        uint32_t codes = Word(block + half * 4, 4);
        for (int i = 0; i < 8; i++) {
            out.Words[half * 8 + i] = (codes & 15) * 17 << s_Alpha;
            codes >>= 4;
        }
    }
}

void SetAlphasInterpolated(const unsigned char* block, Pixels& out) {
    const auto palette = AlphaPalette(block[0], block[1]);
    for (int half = 0; half < 2; half++) { // two rows are 24 bits
        uint32_t codes = Word(block + 2 + half * 3, 3);
        for (int i = 0; i < 8; i++) {
            out.Words[half * 8 + i] = palette[codes & 7];
            codes >>= 3;
        }
    }
}

} // namespace

void DecodeBlock(cFormat::Enum format, const unsigned char* block, Pixels& out) {
    out = {};
    if (format == cFormat::Dxt3) {
        SetAlphas4Bit(block, out);
    } else if (format == cFormat::Dxt5) {
        SetAlphasInterpolated(block, out);
    }
    AddColors(format, block + (format == cFormat::Dxt1 ? 0 : 8), out);
}

uint64_t EncodeDXTColorBlock(int blockWidth, int blockHeight, int pixelStride, int rowStride,
                             const unsigned char* pixels) {
    const auto forEach = [&](auto&& f) { ForEachPixel(blockWidth, blockHeight, pixelStride, rowStride, pixels, f); };
    Range range;
    forEach([&](int, int, const unsigned char* p) {
        for (int c = 0; c < 3; c++) {
            range.Min[c] = std::min<int>(range.Min[c], p[c]);
            range.Max[c] = std::max<int>(range.Max[c], p[c]);
        }
    });
    if (range.IsFlat()) {
        return FinishColorBlock({range.Max, range.Min}, 0);
    }
    const int axis = range.MainAxis();
    Moments m;
    forEach([&](int, int, const unsigned char* p) {
        for (int c = 0; c < 3; c++) {
            m.Sy[c] += p[c];
            m.Sxy[c] += uint32_t(p[axis]) * p[c];
        }
    });
    const Endpoints ends = FitEndpoints(range, axis, uint32_t(blockWidth * blockHeight), m);
    const auto palette = MakePalette(ends);
    uint32_t codes = 0;
    forEach([&](int x, int y, const unsigned char* p) { codes |= NearestCode(p, palette) << (y * 8 + x * 2); });
    return FinishColorBlock(ends, codes);
}

uint64_t EncodeGrayDXTColorBlock(int blockWidth, int blockHeight, int rowStride, const unsigned char* pixels) {
    static constexpr uint32_t kRemap[] = {1, 3, 2, 0};
    int min = 255, max = 0;
    ForEachPixel(blockWidth, blockHeight, 1, rowStride, pixels, [&](int, int, const unsigned char* p) {
        min = std::min<int>(min, *p);
        max = std::max<int>(max, *p);
    });
    const GrayRange gray = QuantizeGray(min, max);
    const int range = gray.Max - gray.Min;
    uint32_t codes = 0;
    ForEachPixel(blockWidth, blockHeight, 1, rowStride, pixels, [&](int x, int y, const unsigned char* p) {
        codes |= kRemap[((*p - gray.Min) * 3 + (range >> 1)) / range] << (y * 8 + x * 2);
    });
    return gray.Words | uint64_t(codes) << 32;
}

uint64_t EncodeDXT5AlphaBlock(int blockWidth, int blockHeight, int rowStride, const unsigned char* pixels) {
    static constexpr uint64_t kRemap[] = {1, 7, 6, 5, 4, 3, 2, 0};
    int min = 255, max = 0;
    ForEachPixel(blockWidth, blockHeight, 4, rowStride, pixels, [&](int, int, const unsigned char* p) {
        min = std::min<int>(min, p[3]);
        max = std::max<int>(max, p[3]);
    });
    PartAlphas(&min, &max);
    const int range = max - min;
    uint64_t block = uint64_t(max) | uint64_t(min) << 8;
    ForEachPixel(blockWidth, blockHeight, 4, rowStride, pixels, [&](int x, int y, const unsigned char* p) {
        block |= kRemap[((p[3] - min) * 7 + (range >> 1)) / range] << (16 + y * 12 + x * 3);
    });
    return block;
}

} // namespace plain

// SSE2, for whole blocks. A row of four pixels is a register, a pixel a lane of 32 bits with red lowest.
namespace {

constexpr int s_LowRedMask = 0x000000FF, s_RedBlueMask = 0x00FF00FF;

uint32_t Load32(const unsigned char* p) {
    uint32_t v;
    std::memcpy(&v, p, sizeof(v));
    return v;
}

__m128i Select(__m128i mask, __m128i yes, __m128i no) {
    return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
}

/// Four pixels; the fourth byte of a lane is alpha, or a stray one of three-byte pixels.
template <int PixelStride> __m128i LoadRow(const unsigned char* p) {
    if constexpr (PixelStride == 4) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    } else { // 8 and 4 bytes: 16 at once would reach past the last row of the image
        const __m128i v = _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)),
                                             _mm_cvtsi32_si128(int(Load32(p + 8))));
        return _mm_unpacklo_epi64(_mm_unpacklo_epi32(v, _mm_srli_si128(v, 3)),
                                  _mm_unpacklo_epi32(_mm_srli_si128(v, 6), _mm_srli_si128(v, 9)));
    }
}

/// Least (or greatest) byte of the four lanes, for each of their bytes; in all lanes.
template <class F> __m128i FoldLanes(__m128i v, F f) {
    v = f(v, _mm_shuffle_epi32(v, _MM_SHUFFLE(1, 0, 3, 2)));
    return f(v, _mm_shuffle_epi32(v, _MM_SHUFFLE(2, 3, 0, 1)));
}

struct MinMax {
    __m128i Min, Max;
};

MinMax FoldRows(const __m128i (&rows)[4]) {
    const auto fold = [&](auto f) { return FoldLanes(f(f(rows[0], rows[1]), f(rows[2], rows[3])), f); };
    return {fold([](__m128i a, __m128i b) { return _mm_min_epu8(a, b); }),
            fold([](__m128i a, __m128i b) { return _mm_max_epu8(a, b); })};
}

Color FirstColor(__m128i v) {
    const int c = _mm_cvtsi128_si32(v);
    return {c & 255, c >> 8 & 255, c >> 16 & 255};
}

/// The sums of the lanes of four registers, as the lanes of one.
__m128i SumLanes(__m128i a, __m128i b, __m128i c, __m128i d) {
    const __m128i ab = _mm_add_epi32(_mm_unpacklo_epi32(a, b), _mm_unpackhi_epi32(a, b));
    const __m128i cd = _mm_add_epi32(_mm_unpacklo_epi32(c, d), _mm_unpackhi_epi32(c, d));
    return _mm_add_epi32(_mm_unpacklo_epi64(ab, cd), _mm_unpackhi_epi64(ab, cd));
}

/// A colour block in lanes of 16 bits, the form in which products of pairs can be added at once.
struct Lanes {
    __m128i RedBlue[4]; // by row: red low, blue high
    __m128i Green[4];   // by row: green low, 0 high

    explicit Lanes(const __m128i (&rows)[4]) {
        for (int i = 0; i < 4; i++) {
            RedBlue[i] = _mm_and_si128(rows[i], _mm_set1_epi32(s_RedBlueMask));
            Green[i] = _mm_and_si128(_mm_srli_epi32(rows[i], 8), _mm_set1_epi32(s_LowRedMask));
        }
    }
};

Moments SumMoments(const Lanes& lanes, int axis) {
    __m128i planes[3][2]; // by channel: 16 values of 16 bits
    const __m128i low = _mm_set1_epi32(s_LowRedMask);
    for (int i = 0; i < 2; i++) {
        const __m128i a = lanes.RedBlue[2 * i], b = lanes.RedBlue[2 * i + 1];
        planes[0][i] = _mm_packs_epi32(_mm_and_si128(a, low), _mm_and_si128(b, low));
        planes[1][i] = _mm_packs_epi32(lanes.Green[2 * i], lanes.Green[2 * i + 1]);
        planes[2][i] = _mm_packs_epi32(_mm_srli_epi32(a, 16), _mm_srli_epi32(b, 16));
    }
    const __m128i one = _mm_set1_epi16(1), zero = _mm_setzero_si128();
    const auto sum = [&](int c) { return _mm_madd_epi16(_mm_add_epi16(planes[c][0], planes[c][1]), one); };
    const __m128i x0 = planes[axis][0], x1 = planes[axis][1];
    const auto product = [&](int c) {
        return _mm_add_epi32(_mm_madd_epi16(x0, planes[c][0]), _mm_madd_epi16(x1, planes[c][1]));
    };
    Moments m;
    _mm_store_si128(reinterpret_cast<__m128i*>(m.Sy), SumLanes(sum(0), sum(1), sum(2), zero));
    _mm_store_si128(reinterpret_cast<__m128i*>(m.Sxy), SumLanes(product(0), product(1), product(2), zero));
    return m;
}

/// Distance to a colour of the palette less that to its first colour: |c|^2 - |c0|^2 - 2 p (c - c0), exactly.
struct RelativeDistance {
    __m128i RedBlue, Green, Bias;

    RelativeDistance(const Color& c, const Color& first) {
        const int r = -2 * (c[0] - first[0]), g = -2 * (c[1] - first[1]), b = -2 * (c[2] - first[2]);
        RedBlue = _mm_set1_epi32((r & 0xFFFF) | int(unsigned(b) << 16));
        Green = _mm_set1_epi32(g & 0xFFFF);
        const auto square = [](const Color& v) { return v[0] * v[0] + v[1] * v[1] + v[2] * v[2]; };
        Bias = _mm_set1_epi32(square(c) - square(first));
    }

    __m128i To(__m128i redBlue, __m128i green) const {
        return _mm_add_epi32(Bias, _mm_add_epi32(_mm_madd_epi16(redBlue, RedBlue), _mm_madd_epi16(green, Green)));
    }
};

/// 16 codes of two bits, in lanes of 16 bits, to one word, the first lowest.
uint32_t PackCodes(__m128i first8, __m128i last8) {
    const __m128i by4 = _mm_set1_epi32(4 << 16 | 1), by16 = _mm_set1_epi32(16 << 16 | 1);
    const __m128i pairs = _mm_packs_epi32(_mm_madd_epi16(first8, by4), _mm_madd_epi16(last8, by4));
    const __m128i rows = _mm_madd_epi16(pairs, by16);
    const __m128i words = _mm_packs_epi32(rows, rows);
    return uint32_t(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
}

uint32_t ColorCodes(const Lanes& lanes, const std::array<Color, 4>& palette) {
    const RelativeDistance to1(palette[1], palette[0]), to2(palette[2], palette[0]), to3(palette[3], palette[0]);
    __m128i codes[4];
    for (int i = 0; i < 4; i++) {
        const __m128i d1 = to1.To(lanes.RedBlue[i], lanes.Green[i]);
        const __m128i d2 = to2.To(lanes.RedBlue[i], lanes.Green[i]);
        const __m128i d3 = to3.To(lanes.RedBlue[i], lanes.Green[i]);
        const __m128i take1 = _mm_srai_epi32(d1, 31); // below 0, the distance to the first colour
        const __m128i best01 = _mm_and_si128(d1, take1);
        const __m128i take2 = _mm_cmpgt_epi32(best01, d2);
        const __m128i best012 = Select(take2, d2, best01);
        const __m128i take3 = _mm_cmpgt_epi32(best012, d3);
        const __m128i low = _mm_or_si128(take3, _mm_andnot_si128(take2, take1));
        const __m128i high = _mm_or_si128(take3, take2);
        codes[i] = _mm_or_si128(_mm_srli_epi32(low, 31), _mm_slli_epi32(_mm_srli_epi32(high, 31), 1));
    }
    return PackCodes(_mm_packs_epi32(codes[0], codes[1]), _mm_packs_epi32(codes[2], codes[3]));
}

template <int PixelStride> uint64_t EncodeColor4x4(int rowStride, const unsigned char* pixels) {
    __m128i rows[4];
    for (int i = 0; i < 4; i++) {
        rows[i] = LoadRow<PixelStride>(pixels + i * rowStride);
    }
    const MinMax fold = FoldRows(rows);
    const Range range = {FirstColor(fold.Min), FirstColor(fold.Max)};
    if (range.IsFlat()) {
        return FinishColorBlock({range.Max, range.Min}, 0);
    }
    const int axis = range.MainAxis();
    const Lanes lanes(rows);
    const Endpoints ends = FitEndpoints(range, axis, 16, SumMoments(lanes, axis));
    return FinishColorBlock(ends, ColorCodes(lanes, MakePalette(ends)));
}

/// floor(65536 / n), held to 16 bits.
constexpr auto s_Reciprocals = [] {
    std::array<uint16_t, 256> table = {};
    for (int n = 1; n < 256; n++) {
        table[n] = uint16_t(std::min(65536 / n, 65535));
    }
    return table;
}();

/// ((v - min) * steps + range / 2) / range in lanes of 16 bits, exactly.
class StepDivider {
public:
    StepDivider(int min, int range, int steps)
        : m_Min(_mm_set1_epi16(short(min))), m_Range(_mm_set1_epi16(short(range))),
          m_Steps(_mm_set1_epi16(short(steps))), m_Half(_mm_set1_epi16(short(range >> 1))),
          m_Reciprocal(_mm_set1_epi16(short(s_Reciprocals[range]))) {}

    __m128i operator()(__m128i v) const {
        const __m128i x = _mm_add_epi16(_mm_mullo_epi16(_mm_sub_epi16(v, m_Min), m_Steps), m_Half);
        const __m128i t = _mm_mulhi_epu16(x, m_Reciprocal); // the quotient or one less, as the reciprocal truncates
        const __m128i rest = _mm_sub_epi16(x, _mm_mullo_epi16(t, m_Range));
        return _mm_add_epi16(t, _mm_andnot_si128(_mm_cmpgt_epi16(m_Range, rest), _mm_set1_epi16(1)));
    }

private:
    __m128i m_Min, m_Range, m_Steps, m_Half, m_Reciprocal;
};

uint64_t EncodeGray4x4(int rowStride, const unsigned char* pixels) {
    const __m128i v = _mm_setr_epi32(int(Load32(pixels)), int(Load32(pixels + rowStride)),
                                     int(Load32(pixels + 2 * rowStride)), int(Load32(pixels + 3 * rowStride)));
    const auto fold = [&](auto f) {
        const __m128i lane = FoldLanes(v, f);
        const __m128i pair = f(lane, _mm_srli_epi32(lane, 16));
        return _mm_cvtsi128_si32(f(pair, _mm_srli_epi32(pair, 8))) & 255;
    };
    const GrayRange gray = QuantizeGray(fold([](__m128i a, __m128i b) { return _mm_min_epu8(a, b); }),
                                        fold([](__m128i a, __m128i b) { return _mm_max_epu8(a, b); }));
    const StepDivider divide(gray.Min, gray.Max - gray.Min, 3);
    const auto codes = [&](__m128i lanes) { // 0, 1, 2, 3 steps have the codes 1, 3, 2, 0
        const __m128i t = divide(lanes), one = _mm_set1_epi16(1);
        const __m128i high = _mm_and_si128(_mm_srli_epi16(_mm_add_epi16(t, one), 1), one);
        return _mm_or_si128(_mm_slli_epi16(high, 1), _mm_srli_epi16(_mm_cmpgt_epi16(_mm_set1_epi16(2), t), 15));
    };
    const __m128i zero = _mm_setzero_si128();
    const uint32_t word = PackCodes(codes(_mm_unpacklo_epi8(v, zero)), codes(_mm_unpackhi_epi8(v, zero)));
    return gray.Words | uint64_t(word) << 32;
}

/// 16 codes of three bits, in lanes of 16 bits, to 48 bits, the first lowest.
uint64_t PackAlphaCodes(__m128i first8, __m128i last8) {
    const __m128i by8 = _mm_set1_epi32(8 << 16 | 1), by64 = _mm_set1_epi32(64 << 16 | 1);
    const __m128i pairs = _mm_packs_epi32(_mm_madd_epi16(first8, by8), _mm_madd_epi16(last8, by8));
    const __m128i rows = _mm_madd_epi16(pairs, by64); // 12 bits in each lane
    const __m128i halves = _mm_or_si128(rows, _mm_srli_epi64(rows, 20));
    const uint32_t low = uint32_t(_mm_cvtsi128_si32(halves)) & 0xFFFFFF;
    const uint32_t high = uint32_t(_mm_cvtsi128_si32(_mm_srli_si128(halves, 8))) & 0xFFFFFF;
    return low | uint64_t(high) << 24;
}

uint64_t EncodeAlpha4x4(int rowStride, const unsigned char* pixels) {
    __m128i rows[4];
    for (int i = 0; i < 4; i++) {
        rows[i] = _mm_srli_epi32(LoadRow<4>(pixels + i * rowStride), 24);
    }
    const MinMax fold = FoldRows(rows);
    int min = _mm_cvtsi128_si32(fold.Min), max = _mm_cvtsi128_si32(fold.Max);
    PartAlphas(&min, &max);
    const StepDivider divide(min, max - min, 7);
    const auto codes = [&](__m128i lanes) { // 0 steps have code 1, 7 have code 0, all others 8 - t
        const __m128i c = _mm_and_si128(_mm_sub_epi16(_mm_set1_epi16(8), divide(lanes)), _mm_set1_epi16(7));
        return _mm_xor_si128(c, _mm_srli_epi16(_mm_cmpgt_epi16(_mm_set1_epi16(2), c), 15));
    };
    return uint64_t(uint32_t(max | min << 8)) |
           PackAlphaCodes(codes(_mm_packs_epi32(rows[0], rows[1])), codes(_mm_packs_epi32(rows[2], rows[3]))) << 16;
}

/// Two 16-bit words of a register, each in four lanes.
__m128i SpreadWords(uint32_t words) {
    const __m128i v = _mm_cvtsi32_si128(int(words));
    return _mm_shuffle_epi32(_mm_unpacklo_epi16(v, v), _MM_SHUFFLE(1, 1, 0, 0));
}

/// The four colours of a block, a lane each.
__m128i ColorPalette4(cFormat::Enum format, const unsigned char* block) {
    const uint32_t words = Load32(block);
    // red, green and blue to the top of a byte: products shift, the low halves up and the high halves down
    const __m128i fields = _mm_and_si128(SpreadWords(words), _mm_set1_epi64x(0x0000'001F'07E0'F800));
    const __m128i ends = _mm_mulhi_epu16(_mm_mullo_epi16(fields, _mm_set1_epi64x(0x0000'0800'0001'0001)),
                                         _mm_set1_epi64x(0x0000'0100'2000'0100));
    const __m128i swapped = _mm_shuffle_epi32(ends, _MM_SHUFFLE(1, 0, 3, 2));
    if (HasFourColors(format, words & 0xFFFF, words >> 16)) {
        const __m128i one = _mm_set1_epi64x(0x0000'0001'0001'0001);
        const __m128i sum = _mm_add_epi16(_mm_add_epi16(_mm_add_epi16(ends, ends), swapped), one);
        return _mm_packus_epi16(ends, _mm_mulhi_epu16(sum, _mm_set1_epi16(21846))); // by 3, exactly up to 32767
    }
    return _mm_packus_epi16(ends, _mm_move_epi64(_mm_avg_epu16(ends, swapped)));
}

/// Adds the colours to the pixels' alphas. The palette is mixed by masks of the codes' two bits.
void AddColors4x4(cFormat::Enum format, const unsigned char* block, __m128i (&rows)[4]) {
    const __m128i palette = ColorPalette4(format, block), codes = _mm_set1_epi32(int(Load32(block + 4)));
    const __m128i p0 = _mm_shuffle_epi32(palette, 0x00), p1 = _mm_shuffle_epi32(palette, 0x55);
    const __m128i p2 = _mm_shuffle_epi32(palette, 0xAA), p3 = _mm_shuffle_epi32(palette, 0xFF);
    const __m128i by1 = _mm_xor_si128(p0, p1), by2 = _mm_xor_si128(p0, p2);
    const __m128i by3 = _mm_xor_si128(_mm_xor_si128(by1, p2), p3);
    __m128i low = _mm_setr_epi32(1, 4, 16, 64);
    for (__m128i& row : rows) {
        const __m128i high = _mm_add_epi32(low, low);
        const __m128i m1 = _mm_cmpeq_epi32(_mm_and_si128(codes, low), low);
        const __m128i m2 = _mm_cmpeq_epi32(_mm_and_si128(codes, high), high);
        const __m128i mixed = _mm_xor_si128(_mm_xor_si128(p0, _mm_and_si128(m1, by1)),
                                            _mm_and_si128(m2, _mm_xor_si128(by2, _mm_and_si128(m1, by3))));
        row = _mm_or_si128(row, mixed);
        low = _mm_slli_epi32(low, 8);
    }
}

/// Alphas of the kind with eight values, at their place in the pixels.
void SetEightAlphas(const unsigned char* block, __m128i (&rows)[4]) {
    const __m128i first = _mm_set1_epi16(short(block[0] * 7)), step = _mm_set1_epi16(short(block[1] - block[0]));
    const __m128i zero = _mm_setzero_si128(), one = _mm_set1_epi16(1);
    for (int half = 0; half < 2; half++) {
        const uint32_t codes = half == 0 ? Load32(block + 2) : Load32(block + 4) >> 8; // two rows in 24 bits
        const __m128i lanes = SpreadWords((codes & 0xFFFF) | (codes >> 12) << 16);
        const __m128i code = _mm_srli_epi16(_mm_mullo_epi16(lanes, _mm_set1_epi64x(0x0010'0080'0400'2000)), 13);
        // sevenths toward the second alpha: code 0 has none, code 1 all, and the others one less than the code
        const __m128i rest = _mm_sub_epi16(_mm_sub_epi16(code, one), _mm_cmpeq_epi16(code, zero));
        const __m128i sevenths = _mm_add_epi16(rest, _mm_and_si128(_mm_cmpeq_epi16(code, one), _mm_set1_epi16(7)));
        const __m128i sum = _mm_add_epi16(first, _mm_mullo_epi16(sevenths, step));
        const __m128i alpha = _mm_slli_epi16(_mm_mulhi_epu16(sum, _mm_set1_epi16(9363)), 8); // by 7, exact to 13106
        rows[half * 2] = _mm_unpacklo_epi16(zero, alpha);
        rows[half * 2 + 1] = _mm_unpackhi_epi16(zero, alpha);
    }
}

bool IsWhole(int blockWidth, int blockHeight) {
    return blockWidth == 4 && blockHeight == 4;
}

} // namespace

void DecodeBlock(cFormat::Enum format, const unsigned char* block, Pixels& out) {
    if (format == cFormat::Dxt3 || (format == cFormat::Dxt5 && block[0] <= block[1])) {
        plain::DecodeBlock(format, block, out);
        return;
    }
    __m128i rows[4] = {};
    if (format == cFormat::Dxt5) {
        SetEightAlphas(block, rows);
        block += 8;
    }
    AddColors4x4(format, block, rows);
    for (int i = 0; i < 4; i++) {
        _mm_store_si128(reinterpret_cast<__m128i*>(&out.Words[i * 4]), rows[i]);
    }
}

uint64_t EncodeDXTColorBlock(int blockWidth, int blockHeight, int pixelStride, int rowStride,
                             const unsigned char* pixels) {
    if (!IsWhole(blockWidth, blockHeight)) {
        return plain::EncodeDXTColorBlock(blockWidth, blockHeight, pixelStride, rowStride, pixels);
    }
    return pixelStride == 4 ? EncodeColor4x4<4>(rowStride, pixels) : EncodeColor4x4<3>(rowStride, pixels);
}

uint64_t EncodeGrayDXTColorBlock(int blockWidth, int blockHeight, int rowStride, const unsigned char* pixels) {
    return IsWhole(blockWidth, blockHeight)
               ? EncodeGray4x4(rowStride, pixels)
               : plain::EncodeGrayDXTColorBlock(blockWidth, blockHeight, rowStride, pixels);
}

uint64_t EncodeDXT5AlphaBlock(int blockWidth, int blockHeight, int rowStride, const unsigned char* pixels) {
    return IsWhole(blockWidth, blockHeight) ? EncodeAlpha4x4(rowStride, pixels)
                                            : plain::EncodeDXT5AlphaBlock(blockWidth, blockHeight, rowStride, pixels);
}

} // namespace trellis::dxt
