#include "math/cRotation.h"

#include "math/cAngles.h"
#include "math/cQuat.h"

namespace trellis {

void cRotation::Normalize360() {
    *this = cRotation(origin, axis, cMath::Normalize360(angle));
}

void cRotation::Normalize180() {
    *this = cRotation(origin, axis, cMath::Normalize180(angle));
}

const cMat3& cRotation::ToMat3() const {
    if (!matValid) {
        mat = cMat3::Rotation(axis, angle);
        matValid = true;
    }
    return mat;
}

cMat4 cRotation::ToMat4() const {
    return cMat4(ToMat3());
}

cAngles cRotation::ToAngles() const {
    return ToMat3().ToAngles();
}

cQuat cRotation::ToQuat() const {
    float s, c;
    cMath::SinCos(angle * 0.5f, &s, &c);
    return {axis * s, c};
}

} // namespace trellis
