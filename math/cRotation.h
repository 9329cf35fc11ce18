// An angle about an axis through a point, with its matrix cached on demand.
#pragma once

#include "math/cMat4.h"

namespace trellis {

/// Even a const read may fill the cache: not to be shared across threads without care.
class cRotation {
public:
    cRotation() : cRotation(cVec3::Zero, cVec3::AxisX, 0) {}
    cRotation(const cVec3& origin_, const cVec3& axis_, float angle_) : origin(origin_), axis(axis_), angle(angle_) {}

    void Normalize360(); ///< The angle into [0, 360).
    void Normalize180(); ///< The angle into (-180, 180].

    const cMat3& ToMat3() const;
    cMat4 ToMat4() const; ///< The same rotation about the world's origin, with no translation.
    cAngles ToAngles() const;
    cQuat ToQuat() const;
    cVec3 ToAngularVelocity() const { return axis * (angle * cMath::RadsPerDeg); } ///< Radians.

    cVec3 origin;
    cVec3 axis;  ///< Of unit length. Whoever changes it or the angle sets `matValid` to false.
    float angle; ///< Degrees.
    mutable cMat3 mat = cMat3::Zero;
    mutable bool matValid = false;
};

} // namespace trellis
