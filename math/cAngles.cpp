#include "math/cAngles.h"

#include "math/cMat4.h"
#include "math/cQuat.h"

namespace trellis {

void cAngles::Normalize360() {
    *this = Map(*this, cMath::Normalize360);
}

void cAngles::Normalize180() {
    *this = Map(*this, cMath::Normalize180);
}

void cAngles::EnsureShortestPath(cAngles* a, cAngles* b) {
    a->Normalize180();
    b->Normalize180();
    cAngles difference = *b - *a;
    difference.Normalize180();
    *b = *a + difference;
}

cQuat cAngles::ToQuat() const {
    return ToMat3().ToQuat();
}

cMat3 cAngles::ToMat3() const {
    return cMat3::RotationXYZ(*this);
}

cMat4 cAngles::ToMat4() const {
    return cMat4(ToMat3());
}

void cAngles::ToVectors(cVec3* forward, cVec3* right, cVec3* up) const {
    ToMat3().ToVectors(forward, right, up);
}

cVec3 cAngles::ToForward() const {
    return -ToMat3().GetRow(2);
}

cVec3 cAngles::ToRight() const {
    return ToMat3().GetRow(0);
}

cVec3 cAngles::ToUp() const {
    return ToMat3().GetRow(1);
}

} // namespace trellis
