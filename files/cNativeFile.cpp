#include "files/cNativeFile.h"

#include "math/cMath.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

namespace trellis {

namespace {

constexpr float s_One = 32767.0f;

short ToShort(float v) {
    const float scaled = v * s_One;
    return scaled >= float(SHRT_MAX)   ? short(SHRT_MAX)
           : scaled <= float(SHRT_MIN) ? short(SHRT_MIN)
           : scaled != scaled          ? short(0)
                                       : short(scaled);
}

template <class Convert> bool ReadShorts(const cFile& file, float* out, int count, Convert convert) {
    for (int i = 0; i < count; i++) {
        short v;
        if (!file.ReadShort(&v)) {
            return false;
        }
        out[i] = convert(float(v));
    }
    return true;
}

} // namespace

bool cNativeFile::ReadName(const cFile& file, cStr* out) {
    short length;
    if (!file.ReadShort(&length) || length < 0 || length > BytesLeft(file)) {
        return false;
    }
    out->Copy(reinterpret_cast<const char*>(file.GetBytes().Data()), file.GetPos(), length);
    file.SetPos(file.GetPos() + length);
    return int(std::strlen(*out)) == length;
}

bool cNativeFile::WriteName(cFile* out, const cStr& name) {
    if (name.Length() > SHRT_MAX || int(std::strlen(name)) != name.Length()) {
        return false;
    }
    out->WriteShort(short(name.Length()));
    out->WriteString(name);
    return true;
}

bool cNativeFile::ReadUnits(const cFile& file, float* out, int count) {
    return ReadShorts(file, out, count, [](float v) { return v / s_One; });
}

void cNativeFile::WriteUnits(cFile* out, const float* v, int count) {
    for (int i = 0; i < count; i++) {
        out->WriteShort(ToShort(v[i]));
    }
}

bool cNativeFile::ReadRanges(const cFile& file, float* out, int count) {
    return ReadShorts(file, out, count, [](float v) { return v * 256.0f / s_One; });
}

void cNativeFile::WriteRanges(cFile* out, const float* v, int count) {
    for (int i = 0; i < count; i++) {
        out->WriteShort(short(cMath::TruncateToInt(v[i] * 0.00390625f * s_One)));
    }
}

float cNativeFile::RestoreW(const cQuat& q) {
    return std::sqrt(std::clamp(1.0f - q.x * q.x - q.y * q.y - q.z * q.z, 0.0f, 1.0f));
}

} // namespace trellis
