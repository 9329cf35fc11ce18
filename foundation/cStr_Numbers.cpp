// Numbers out of text and back.
#include "foundation/cStr.h"

#include <cmath>

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

/// value * 10^exponent, the power by repeated squaring from 10 in extended precision.
float ScaleByPowerOfTen(float value, int exponent) {
    long double power = 1.0L;
    long double square = 10.0L;
    for (int e = exponent < 0 ? -exponent : exponent; e > 0; e >>= 1, square *= square) {
        if (e & 1) {
            power *= square;
        }
    }
    return float(exponent < 0 ? value / power : value * power);
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
    return JoinNumbers(v, n, sep, [precision](float value) { return Format("%.*f", precision, double(value)); });
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
