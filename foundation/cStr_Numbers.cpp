// Numbers out of text and back.
#include "foundation/cStr.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>

namespace trellis {

namespace {

const char* SkipBlanks(const char* s) {
    while (*s == ' ' || *s == '\t') {
        s++;
    }
    return s;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Takes an optional sign. @return whether it was a minus
bool TakeSign(const char** s) {
    const bool minus = **s == '-';
    *s += minus || **s == '+';
    return minus;
}

/// Takes a run of digits, `*value` = `*value` * 10 + digit for each, rounded to float every time: numbers in old files
/// must come out as they did, bit for bit. @return their number, at most a million
int TakeDigits(const char** s, float* value) {
    int count = 0;
    for (; IsDigit(**s); (*s)++) {
        *value = *value * 10.0f + float(**s - '0');
        count += count < 1000000; // enough to fail any range test, too little to overflow
    }
    return count;
}

/// Exponent behind its letter; 0 without digits, and beyond any range test for very long ones.
int TakeExponent(const char** s) {
    const bool minus = TakeSign(s);
    int exponent = 0;
    for (; IsDigit(**s); (*s)++) {
        exponent = exponent < 10000000 ? exponent * 10 + (**s - '0') : exponent;
    }
    return minus ? -exponent : exponent;
}

// 10^27 is the last power whose odd part, 5^27, fits the 64 bits of extended precision.
constexpr long double s_ExactPowers[] = {1e0L,  1e1L,  1e2L,  1e3L,  1e4L,  1e5L,  1e6L,  1e7L,  1e8L,  1e9L,
                                         1e10L, 1e11L, 1e12L, 1e13L, 1e14L, 1e15L, 1e16L, 1e17L, 1e18L, 1e19L,
                                         1e20L, 1e21L, 1e22L, 1e23L, 1e24L, 1e25L, 1e26L, 1e27L};
static_assert(std::size(s_ExactPowers) == 28);

/// 10^exponent in extended precision; past the exact powers by repeated squaring from 10.
long double PowerOfTen(int exponent) {
    if (exponent < int(std::size(s_ExactPowers))) {
        return s_ExactPowers[exponent];
    }
    long double power = 1.0L;
    long double square = 10.0L;
    for (int e = exponent; e > 0; e >>= 1, square *= square) {
        if (e & 1) {
            power *= square;
        }
    }
    return power;
}

float ScaleByPowerOfTen(float value, int exponent) {
    return float(exponent < 0 ? value / PowerOfTen(-exponent) : value * PowerOfTen(exponent));
}

constexpr int MostDecimals = 9; // 24 bits of a float times 10^9 stay inside 64

/// What printf gives for "%.*f": the float is an integer times a power of two, so the digits are worked out in
/// integers, exactly, and a tie goes to the even digit.
///
/// @param decimals  in [0, MostDecimals]
/// @param out       room for 24 characters
/// @return their number, or 0 for a value that is left to printf: 2^31 and above, infinite, or not a number
int FormatFixed(float value, int decimals, char* out) {
    const auto bits = std::bit_cast<uint32_t>(value);
    const int exponent = int(bits >> 23 & 0xFF);
    if (exponent >= 127 + 31) {
        return 0;
    }
    uint64_t scale = 1;
    for (int i = 0; i < decimals; i++) {
        scale *= 10;
    }
    const uint64_t mantissa = exponent ? (bits & 0x7FFFFF) | 0x800000 : bits & 0x7FFFFF;
    const int shift = 150 - (exponent ? exponent : 1); // value = mantissa / 2^shift
    uint64_t scaled;                                   // value * scale, rounded
    if (shift <= 0) {
        scaled = (mantissa << -shift) * scale;
    } else if (shift > 62) {
        scaled = 0; // below half of the last digit
    } else {
        const uint64_t exact = mantissa * scale;
        const uint64_t half = uint64_t(1) << (shift - 1);
        const uint64_t rest = exact & (2 * half - 1);
        scaled = exact >> shift;
        scaled += rest > half || (rest == half && (scaled & 1));
    }
    char* p = out;
    if (bits >> 31) {
        *p++ = '-'; // also in front of a zero
    }
    p = std::to_chars(p, p + 12, uint32_t(scaled / scale)).ptr;
    if (decimals > 0) {
        *p++ = '.';
        auto fraction = uint32_t(scaled % scale);
        for (int i = decimals - 1; i >= 0; i--, fraction /= 10) {
            p[i] = char('0' + fraction % 10);
        }
        p += decimals;
    }
    return int(p - out);
}

template <class T, class Convert> cStr JoinNumbers(const T* v, int n, const char* sep, Convert convert) {
    cStr text;
    for (int i = 0; i < n; i++) {
        if (i > 0) {
            text.Append(sep);
        }
        text.Append(convert(v[i]));
    }
    return text;
}

template <class T> bool ToArray(const char* s, cList<T>* out, bool (*convert)(const char*, T*)) {
    out->Clear();
    cList<cStr> tokens;
    cStr::Split(s, &tokens, " ,;\t");
    for (const cStr& token : tokens) {
        T value;
        if (!convert(token, &value)) {
            return false;
        }
        out->Add(value);
    }
    return true;
}

} // namespace

bool cStr::ToInt(const char* s, int* out) {
    *out = 0;
    if (!s) {
        return false;
    }
    s = SkipBlanks(s);
    const bool minus = TakeSign(&s);
    if (!IsDigit(*s)) {
        return false;
    }
    unsigned int value = 0;
    for (; IsDigit(*s); s++) {
        value = value * 10u + unsigned(*s - '0');
    }
    *out = int(minus ? 0u - value : value);
    return true;
}

bool cStr::ToFloat(const char* s, float* out) {
    *out = 0;
    if (!s) {
        return false;
    }
    s = SkipBlanks(s);
    const bool minus = TakeSign(&s);
    float value = 0;
    int digits = TakeDigits(&s, &value);
    int exponent = 0;
    if (*s == '.' || *s == ',') { // the comma is a decimal point, whatever the locale
        s++;
        const int fraction = TakeDigits(&s, &value);
        digits += fraction;
        exponent = -fraction;
    }
    if (digits == 0) {
        return false;
    }
    if (*s == 'e' || *s == 'E' || *s == 'd' || *s == 'D') {
        s++;
        exponent += TakeExponent(&s);
    }
    if (exponent < -125 || exponent > 128) {
        return false;
    }
    value = ScaleByPowerOfTen(minus ? -value : value, exponent);
    if (std::isinf(value)) {
        return false;
    }
    *out = value;
    return true;
}

cStr cStr::ToString(const int* v, int n, const char* sep) {
    return JoinNumbers(v, n, sep, [](int value) { return Format("%d", value); });
}

cStr cStr::ToString(const float* v, int n, int precision, const char* sep) {
    cStr text;
    for (int i = 0; i < n; i++) {
        if (i > 0) {
            text.Append(sep);
        }
        char digits[24];
        const bool plain = precision >= 0 && precision <= MostDecimals;
        if (const int count = plain ? FormatFixed(v[i], precision, digits) : 0) {
            text.Append(digits, 0, count);
        } else {
            text.Append(Format("%.*f", precision, double(v[i])));
        }
    }
    return text;
}

cStr cStr::ToString(const double* v, int n, int precision, const char* sep) {
    return JoinNumbers(v, n, sep, [precision](double value) { return Format("%.*f", precision, value); });
}

bool cStr::ToIntArray(const char* s, cList<int>* out) {
    return ToArray(s, out, ToInt);
}

bool cStr::ToFloatArray(const char* s, cList<float>* out) {
    return ToArray(s, out, ToFloat);
}

} // namespace trellis
