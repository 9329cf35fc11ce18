#include "view/cRotateTool.h"

#include "math/cQuat.h"
#include "math/cSphere.h"
#include "render/cRender.h"
#include "view/cViewer.h"

#include <cmath>

namespace trellis {

namespace {

/// Half of a ring that lies toward the eye, or away from it.
void DrawHalfRing(const cVec3& center, float radius, const cVec3& axis, const cVec3& toEye, const cColor& color,
                  bool isFront) {
    constexpr int Segments = 64;
    cVertex::PositionColored lines[2 * Segments];
    cVec3 right, up;
    axis.ToPerps(right, up);
    const unsigned int packed = color.ToDword();
    int count = 0;
    cVec3 last = right;
    for (int i = 1; i <= Segments; i++) {
        float s, c;
        cMath::SinCos(360.0f * float(i) / Segments, &s, &c);
        const cVec3 next = right * c + up * s;
        if ((cVec3::Dot(last + next, toEye) >= 0) == isFront) {
            lines[count++] = {center + last * radius, packed};
            lines[count++] = {center + next * radius, packed};
        }
        last = next;
    }
    if (count > 0) {
        static const int s_ID = cRender::GetShaderID("Colored", cVertex::PositionColored::FormatID);
        cRender::SetShader(s_ID);
        cRender::DrawArrays(cTopology::LineList, lines, count);
    }
}

} // namespace

void cRotateTool::Bind(cAngles* orient) {
    Bind(orient, nullptr, cSpace::World);
}

/// On the sphere, or else on its outline, where the ray comes nearest.
bool cRotateTool::HitSphere(const cSeg& ray, cVec3* hit) const {
    float t0, t1;
    if (cSphere(Center, Radius).RayIntersection(ray.start, ray.direction, t0, t1) && t1 >= 0) {
        *hit = ray.start + ray.direction * (t0 >= 0 ? t0 : t1);
        return true;
    }
    const cVec3 nearest = ray.GetPoint(ray.ProjectPoint(cSeg::Ray, Center));
    const cVec3 offset = nearest - Center;
    if (!(offset.LengthSq() > 0)) {
        return false;
    }
    *hit = Center + cVec3::Normalize(offset) * Radius;
    return true;
}

/// Of the ray from a ring's visible half; beyond any tolerance from the other one.
///
/// @param hit  where the ray is near the sphere; the search begins there
float cRotateTool::DistanceToRing(const cSeg& ray, const cVec3& axis, cVec3 hit) const {
    constexpr int Steps = 8;
    float distance = cMath::FloatMaxValue;
    for (int i = 0; i < Steps; i++) { // from the ray to the ring, and back again
        const cVec3 offset = hit - Center, flat = offset - axis * cVec3::Dot(offset, axis);
        if (!(flat.LengthSq() > 0)) {
            break;
        }
        const cVec3 onRing = Center + cVec3::Normalize(flat) * Radius;
        hit = ray.GetPoint(ray.ProjectPoint(cSeg::Ray, onRing));
        const bool isBehind = cVec3::Dot(onRing - Center, Plane.normal) < -0.25f * Radius;
        distance = isBehind ? cMath::FloatMaxValue : (hit - onRing).Length();
    }
    return distance;
}

cManipulator::Mode::Enum cRotateTool::Pick(const cSeg& ray) {
    const float tolerance = Pixel * TolerancePixels;
    const float distance = cSeg::Distance(cSeg::Ray, ray, Center);
    cVec3 hit;
    if (!Orient || distance > Radius + tolerance || !HitSphere(ray, &hit)) {
        return Mode::None;
    }
    int best = Mode::None;
    float bestDistance = tolerance;
    for (int i = 0; i < 3; i++) {
        const float off = DistanceToRing(ray, Axes[i].direction, hit);
        if (off <= bestDistance) {
            bestDistance = off;
            best = Mode::X + i;
        }
    }
    return best != Mode::None ? Mode::Enum(best) : distance <= Radius ? Mode::Free : Mode::None;
}

bool cRotateTool::Hit(Mode::Enum mode, const cSeg& ray, cVec3* hit) const {
    return mode != Mode::None && Orient && HitSphere(ray, hit);
}

bool cRotateTool::BeginDrag() {
    StartAngles = *Orient;
    m_HasTurned = false;
    StartCenter = Center;
    return true;
}

void cRotateTool::Drag(const cVec3& hit) {
    constexpr float Least = 0.001f;
    if (!Orient || CurMode == Mode::None) {
        return;
    }
    cVec3 a = StartHit - StartCenter, b = hit - Center, axis;
    if (CurMode != Mode::Free) {
        axis = StartAxes[CurMode - Mode::X].direction;
        a -= axis * cVec3::Dot(a, axis);
        b -= axis * cVec3::Dot(b, axis);
    }
    const float lengths = a.Length() * b.Length();
    if (!(a.Length() >= Least && b.Length() >= Least)) {
        return;
    }
    const cVec3 normal = cVec3::Cross(a, b);
    const float cosine = cVec3::Dot(a, b) / lengths;
    if (cosine >= 1) { // no way between them
        if (m_HasTurned) {
            *Orient = StartAngles;
        }
        return;
    }
    float angle = cosine <= -1 ? 180 : std::acos(cosine) * cMath::DegsPerRad;
    if (CurMode != Mode::Free) {
        angle = cVec3::Dot(normal, axis) < 0 ? -angle : angle;
    } else if (normal.LengthSq() > 0) {
        axis = cVec3::Normalize(normal);
    } else {
        return; // half a turn of the sphere has no axis
    }
    // The angles are the parent's. Seen in its mirror, a rotation runs the other way.
    axis = Turn(axis, ParentInverse);
    if (!(axis.LengthSq() > 0)) {
        return;
    }
    const auto row = [this](int i) { return Turn({float(i == 0), float(i == 1), float(i == 2)}, Parent); };
    if (cVec3::Dot(cVec3::Cross(row(0), row(1)), row(2)) < 0) {
        angle = -angle;
    }
    const cQuat q = cMat3::Rotation(cVec3::Normalize(axis), angle).ToQuat() * StartAngles.ToQuat();
    cAngles to = q.ToAngles();
    to.Normalize180();
    for (float* v : {&to.x, &to.y, &to.z}) {
        *v = Snapped(*v);
        if (!std::isfinite(*v)) {
            return;
        }
    }
    m_HasTurned = true;
    *Orient = to;
}

void cRotateTool::OnRender() {
    if (!Orient || !CalcFrame()) {
        return;
    }
    BeginLook();
    const cVec3 toEye = Plane.normal;
    cRender::DrawFacingCircle(Center, Radius, toEye, cColor(0.5f, 0.5f, 0.5f, 1));
    for (const bool isFront : {false, true}) {
        for (int i = 0; i < 3; i++) {
            cColor color = ColorOf(Mode::Enum(Mode::X + i));
            color.a = isFront ? 1.0f : 0.25f;
            for (const float by : {-0.5f, 0.0f, 0.5f}) { // as wide as the shafts of the other tools
                DrawHalfRing(Center, Radius + by * Pixel, Axes[i].direction, toEye, color, isFront);
            }
        }
    }
    if (HotMode == Mode::Free || CurMode == Mode::Free) {
        cRender::DrawFacingCircle(Center, Radius + Pixel, toEye, ColorOf(Mode::Free));
    }
}

} // namespace trellis
