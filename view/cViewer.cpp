#include "view/cViewer.h"

#include "view/cHomeButton.h"

#include <algorithm>
#include <cmath>

namespace trellis {

namespace {

/// A side of nothing counts as a pixel: a form that is folded up must not fill the matrices with infinities.
float Side(float v) {
    return v > 0 ? v : 1;
}

cVec3 Unproject(const cVec4& clip, const cMat4& inverse) {
    const cVec4 p = clip * inverse;
    return p.w == 1 || p.w == 0 ? cVec3(p.x, p.y, p.z) : cVec3(p.x / p.w, p.y / p.w, p.z / p.w);
}

cPlane PlaneOf(const cVec4& v) {
    const cVec3 normal(v.x, v.y, v.z);
    const float length = normal.Length();
    return length > 0 ? cPlane(normal / length, v.w / length) : cPlane(normal, v.w);
}

} // namespace

void cViewer::CtorArgs::SetDefaults() {
    const State defaults;
    Position = defaults.Position;
    Angles = cAngles(0, 0, 0);
    FovY = defaults.FovY;
    ZNear = defaults.ZNear;
    ZFar = defaults.ZFar;
    IsInfinite = defaults.IsInfinite;
    OrthoDepth = defaults.OrthoDepth;
}

cViewer::cViewer(const CtorArgs& args) {
    Position = args.Position;
    Orient = args.Angles.ToQuat();
    FovY = args.FovY;
    ZNear = args.ZNear;
    ZFar = args.ZFar;
    IsInfinite = args.IsInfinite;
    OrthoDepth = args.OrthoDepth;
    Update(false);
}

void cViewer::Update(bool forRender) {
    ForRender = forRender;
    SetView(Orient.ToMat3(), Position);

    const float width = Side(Viewport.Width());
    const float height = Side(Viewport.Height());
    m_Aspect = Aspect == 0 ? width / height : Aspect;
    m_IsParallel = IsOrtho;
    if (IsOrtho) {
        Projection = cMat4::Ortho(width / OrthoScale, height / OrthoScale, -OrthoDepth, OrthoDepth);
    } else if (IsInfinite) {
        Projection = cMat4::PerspectiveInf(FovY, m_Aspect, ZNear);
    } else {
        Projection = cMat4::Perspective(FovY, m_Aspect, ZNear, ZFar);
    }
    if (forRender && cHomeButton::IsOnTheRight()) {
        Projection *= cMat4::RotationZ(-90);
    } else if (forRender && cHomeButton::IsOnTheLeft()) {
        Projection *= cMat4::RotationZ(90);
    }
    if (DXY != cVec2(0, 0)) {
        Projection *= cMat4::Translation(DXY.x / width, DXY.y / height, 0);
    }

    ViewProjection = View * Projection;
    cMat4::Invert(ViewProjection, &ViewProjectionInverse);
    CalcPlanes();

    HalfSize = cVec2(width, height) * 0.5f;
    ViewportCenter = Viewport.Center();
    Screen = cMat4(2 / width, 0, 0, 0, 0, 2 / height, 0, 0, 0, 0, 1, 0, -1, -1, 0, 1);
    cMat4::Invert(Screen, &ScreenInverse);
}

void cViewer::SetView(const cMat3& axes, const cVec3& eye) {
    axes.ToVectors(&Forward, &Right, &Up);
    ViewInverse = cMat4(axes, eye);
    const auto along = [&eye](const cVec3& axis) { return -cVec3::Dot(axis, eye); };
    View = cMat4(cMat3::Transpose(axes), cVec3(along(Right), along(Up), along(-Forward)));
}

// A point is inside where -w <= x <= w, and so on (Gribb and Hartmann, "Fast Extraction of Viewing Frustum Planes from
// the World-View-Projection Matrix"). The parallel lens has its near plane at a depth of 0, the others at -1.
void cViewer::CalcPlanes() {
    const cMat4 columns = cMat4::Transpose(ViewProjection);
    const cVec4 x = columns.GetRow(0), y = columns.GetRow(1), z = columns.GetRow(2), w = columns.GetRow(3);
    const cVec4 inside[6] = {w + x, w - x, w + y, w - y, m_IsParallel ? z : w + z, w - z};
    std::transform(inside, inside + 6, Planes, PlaneOf);
}

void cViewer::PushState() {
    States.Add(*this);
}

void cViewer::PopState() {
    if (!States.IsEmpty()) {
        static_cast<State&>(*this) = States[States.Count() - 1];
        States.SetCount(States.Count() - 1);
        Update(ForRender);
    }
}

void cViewer::SetLookAtViewProjection(const cVec3& eye, const cVec3& target, float fovY, float aspect, float zNear,
                                      float zFar) {
    const cVec3 forward = cVec3::Normalize(target - eye);
    const cVec3 right = cVec3::Normalize(cVec3::Cross(forward, cVec3::AxisY));
    SetView(cMat3::FromVectors(forward, right, cVec3::Normalize(cVec3::Cross(right, forward))), eye);
    m_Aspect = aspect;
    m_IsParallel = false;
    Projection = cMat4::Perspective(fovY, aspect, zNear, zFar);
    ViewProjection = cMat4::LookAtViewProjection(eye, target, fovY, aspect, zNear, zFar);
    cMat4::Invert(ViewProjection, &ViewProjectionInverse);
    CalcPlanes();
}

bool cViewer::CullPoint(const cVec3& p) const {
    return std::any_of(Planes, Planes + 6, [&p](const cPlane& plane) { return plane.SignedDistance(p) < 0; });
}

cSeg cViewer::GetPickRay(const cVec2& p) const {
    constexpr float Eps = 0.001f;
    const cVec3 from = Unproject(cVec4(p.x, p.y, m_IsParallel ? 0.0f : -1.0f, 1), ViewProjectionInverse);
    cSeg ray;
    ray.SetFromRay(from, m_IsParallel ? Forward : from - ViewInverse.GetTranslation(), Eps);
    return ray;
}

void cViewer::CalcFrustum(cFrustum* out, float zFar) const {
    CalcFrustum(out, m_IsParallel ? -OrthoDepth : ZNear, zFar);
}

void cViewer::CalcFrustum(cFrustum* out, float zNear, float zFar) const {
    static constexpr cVec2 Corners[4] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    const auto fill = [this](cVec3* corners, float distance) {
        const cVec4 clip = cVec4(0, 0, -distance, 1) * Projection;
        const float depth = clip.w == 0 ? -1 : clip.z / clip.w; // the eye itself has no depth
        for (int i = 0; i < 4; i++) {
            corners[i] = Unproject(cVec4(Corners[i].x, Corners[i].y, depth, 1), ViewProjectionInverse);
        }
    };
    fill(out->corners, zNear);
    fill(out->corners + 4, zFar);
    out->CalcPlanes();
}

bool cViewer::WorldToClosestScreenPoint(const cVec3& p, cVec2* pixels) const {
    const float depth = cVec3::Dot(p - ViewInverse.GetTranslation(), Forward);
    const bool isInFront = m_IsParallel || depth >= ZNear;
    const cVec3 seen = isInFront ? p : p + Forward * (ZNear - depth);
    const cVec4 clip = cVec4(seen.x, seen.y, seen.z, 1) * ViewProjection;
    const float w = clip.w != 0 ? clip.w : 1;
    *pixels = {ViewportCenter.x + clip.x / w * HalfSize.x, ViewportCenter.y + clip.y / w * HalfSize.y};
    return isInFront;
}

cVec2 cViewer::ScreenToClip(const cVec2& pixels) const {
    return {(pixels.x - ViewportCenter.x) / HalfSize.x, (pixels.y - ViewportCenter.y) / HalfSize.y};
}

void cViewer_CalcOrientFromForwardDir(cQuat* out, const cVec3& dir) {
    const float most = std::max({std::fabs(dir.x), std::fabs(dir.y), std::fabs(dir.z)}); // its square may be no float
    const cVec3 forward = most > 0 && std::isfinite(most) ? cVec3::Normalize(dir / most) : dir;
    const cVec3 side = cVec3::Cross(forward, cVec3::AxisY);
    const cVec3 right = side.LengthSq() > 0 ? cVec3::Normalize(side) : cVec3::AxisX;
    *out = cMat3::FromVectors(forward, right, cVec3::Cross(right, forward)).ToQuat();
}

} // namespace trellis
