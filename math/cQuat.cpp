#include "math/cQuat.h"

#include "math/cAngles.h"
#include "math/cMat4.h"
#include "math/cRotation.h"

namespace trellis {

namespace {

/// acos, with pi and 0 at the ends of its range and beyond.
float ArcCosRadians(float v) {
    return v <= -1 ? cMath::Pi : v >= 1 ? 0 : std::acos(v);
}

} // namespace

cVec3 cQuat::Rotate(const cVec3& v, const cQuat& q) {
    return (q * cQuat(v, 0) * q.Conjugate()).ToVec3();
}

cAngles cQuat::ToAngles() const {
    return ToMat3().ToAngles();
}

cMat3 cQuat::ToMat3() const {
    const float lengthSq = LengthSq();
    const float s = lengthSq >= cMath::FloatMinValue ? 2.0f / lengthSq : 0;
    const float xx = x * x * s, yy = y * y * s, zz = z * z * s;
    const float xy = x * y * s, xz = x * z * s, yz = y * z * s;
    const float wx = w * x * s, wy = w * y * s, wz = w * z * s;
    return {1 - (yy + zz), xy + wz, xz - wy, xy - wz, 1 - (xx + zz), yz + wx, xz + wy, yz - wx, 1 - (xx + yy)};
}

cMat4 cQuat::ToMat4() const {
    return cMat4(ToMat3());
}

cRotation cQuat::ToRotation() const {
    cVec3 axis = ToVec3();
    const float sine = axis.Normalize();
    if (!(sine > 0)) {
        return {};
    }
    return {cVec3::Zero, axis, 2.0f * cMath::ArcTan2(sine, w)};
}

cVec3 cQuat::ToAngularVelocity() const {
    return cVec3::Normalize(ToVec3()) * ArcCosRadians(w);
}

cQuat cQuat::Lerp(const cQuat& a, const cQuat& b, float t, bool shortest) {
    const cQuat end = shortest && Dot(a, b) < 0 ? -b : b;
    return Normalize(a + (end - a) * t);
}

cQuat cQuat::Slerp(const cQuat& a, const cQuat& b, float t, bool) {
    float d = Dot(a, b);
    cQuat end = b;
    if (d < 0) {
        d = -d;
        end = -b;
    }
    float weightA = 1 - t;
    float weightB = t;
    if (1 - d > cMath::EpsilonSq) {
        const float theta = ArcCosRadians(d);
        const float sine = std::sin(theta);
        weightA = std::sin((1 - t) * theta) / sine;
        weightB = std::sin(t * theta) / sine;
    }
    return a * weightA + end * weightB;
}

cQuat cQuat::Exp(const cQuat& q) {
    const cVec3 v = q.ToVec3();
    const float angle = v.Length();
    float s, c;
    ::sincosf(angle, &s, &c);
    return {angle > 0 ? v * (s / angle) : v, c};
}

cQuat cQuat::Ln(const cQuat& q) {
    return {q.ToAngularVelocity(), 0};
}

cQuat cQuat::LnDif(const cQuat& a, const cQuat& b) {
    return Ln(a.Conjugate() * b);
}

cQuat cQuat::Squad(const cQuat& p, const cQuat& a, const cQuat& b, const cQuat& q, float t) {
    return Slerp(Slerp(p, q, t), Slerp(a, b, t), 2 * t * (1 - t));
}

cQuat cQuat::SquadSetup(const cQuat& previous, const cQuat& current, const cQuat& next) {
    return current * Exp((LnDif(current, next) + LnDif(current, previous)) * -0.25f);
}

} // namespace trellis
