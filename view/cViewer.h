// Camera: position, orientation and lens, and the matrices that drawing and picking read.
//
//     world --View--> eye, looking along -Z --Projection--> clip, x and y from -1 to 1 --> viewport, pixels
//
// Row vectors throughout: a point is p x View x Projection.
#pragma once

#include "foundation/cList.h"
#include "math/cAngles.h"
#include "math/cFrustum.h"
#include "math/cMat4.h"
#include "math/cQuat.h"
#include "math/cRect.h"
#include "math/cSeg.h"
#include "math/cVec2.h"
#include "ui/cWidget.h"

namespace trellis {

/// What a viewer is set up by; all else derives from it.
struct cViewer_State {
    cVec3 Position = cVec3::Zero; ///< Of the eye.
    cQuat Orient = cQuat::Identity;
    cRect Viewport{0, 0, 640, 480}; ///< Pixels.
    bool IsInfinite = false;        ///< No far plane.
    float FovY = 67.5f;             ///< Whole vertical angle, degrees.
    float ZNear = 0.1f;
    float ZFar = 2000;
    float Aspect = 0;         ///< Width over height; 0: the viewport's.
    bool RenderFlags[8] = {}; ///< Kept with the state for what renders; nothing here reads them.
    bool IsOrtho = false;
    float OrthoScale = 1;    ///< Pixels per unit.
    float OrthoDepth = 5000; ///< Half the depth of the orthographic box.
    bool ForRender = false;  ///< What the last update was told.
};

/// The fields are the caller's to change; `Update` makes everything else follow. Belongs to the main thread.
class cViewer : public cWidget, public cViewer_State {
public:
    using State = cViewer_State;

    struct CtorArgs {
        cVec3 Position;
        cAngles Angles;
        float FovY;
        float ZNear;
        float ZFar;
        bool IsInfinite;
        float OrthoDepth;

        CtorArgs() { SetDefaults(); }
        void SetDefaults();
    };

    explicit cViewer(const CtorArgs& args = CtorArgs()); ///< Updated once.

    /// Derives axes, matrices and planes. A singular projection leaves the inverse as it was.
    ///
    /// @param forRender  turns the picture where the settings tell that the device is held sideways
    void Update(bool forRender);

    void PushState();
    void PopState(); ///< Ends with the `Update` that the state was last updated with. Nothing for an empty stack.

    /// View and projection of an eye that looks at a target, past `Update` and the state, until the next update; no
    /// push keeps them. The lens' arguments are as of `cMat4::LookAtViewProjection`. The fields stay as they are.
    void SetLookAtViewProjection(const cVec3& eye, const cVec3& target, float fovY, float aspect, float zNear,
                                 float zFar);

    /// A shift of the picture in the next updates, no part of the state, in pixels to the right and up by halves: 1 is
    /// half a pixel.
    void SetDXY(float x, float y) { DXY = {x, y}; }

    bool CullPoint(const cVec3& p) const; ///< True behind any of the six planes.

    /// @param p  in clip space, x and y from -1 to 1; see `ScreenToClip`
    /// @return   from the near plane on: along the view for a parallel lens, else away from the eye
    cSeg GetPickRay(const cVec2& p) const;

    /// The volume between two distances from the eye. The lens' own near distance is `ZNear`, and minus `OrthoDepth`
    /// for a parallel one.
    void CalcFrustum(cFrustum* out, float zFar) const;
    void CalcFrustum(cFrustum* out, float zNear, float zFar) const;

    /// Where a point of the world shows, in pixels. What lies behind the near plane is first pulled to it, straight
    /// along the view, and so comes out on its own side of the screen.
    ///
    /// @return whether it is in front of the near plane; always for a parallel lens
    bool WorldToClosestScreenPoint(const cVec3& p, cVec2* pixels) const;

    cVec2 ScreenToClip(const cVec2& pixels) const;   ///< Pixels of the window, as the viewport's own, Y up.
    float GetAspect() const { return m_Aspect; }     ///< The one in use since the last update.
    bool IsParallel() const { return m_IsParallel; } ///< The lens in use.
    cVec3 GetEye() const { return ViewInverse.GetTranslation(); } ///< In use.

    // Derived
    cVec3 Forward, Right, Up;
    cVec2 DXY{0, 0};
    cMat4 View, ViewInverse, Projection, ViewProjection;
    cMat4 ViewProjectionInverse = cMat4::Identity;
    cPlane Planes[6];     ///< Left, right, bottom, top, near, far; facing inward, of unit length.
    cVec2 HalfSize;       ///< Of the viewport, pixels.
    cVec2 ViewportCenter; ///< Pixels.
    cMat4 Screen;         ///< Pixels of the viewport, from its lower left corner, to clip space.
    cMat4 ScreenInverse = cMat4::Identity;

    cList<State> States; ///< For `PushState`.

private:
    void SetView(const cMat3& axes, const cVec3& eye);
    void CalcPlanes();

    float m_Aspect = 1;
    bool m_IsParallel = false; // the lens in use
};

/// Orientation that looks along `dir`, of any length, with the Y axis upward; the X axis to the right for a direction
/// straight up or down. A direction of no length is used as it stands.
void cViewer_CalcOrientFromForwardDir(cQuat* out, const cVec3& dir);

} // namespace trellis
