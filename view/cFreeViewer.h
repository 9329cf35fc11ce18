// Camera that the user moves: it orbits a pivot by mouse, keys and gestures.
//
// With Alt held, the left button tumbles, the right one dollies and the middle one tracks; a second button beside it
// changes the motion while it is down.
#pragma once

#include "math/cBounds.h"
#include "view/cViewer.h"

namespace trellis {

/// While a drag runs it holds the capture. Distances are units of the world, motions pixels of the mouse. The pivot is
/// what counts: a state of the base that is popped lasts until the next `Update`.
class cFreeViewer : public cViewer {
public:
    class OrthoView {
    public:
        /// From where it looks at the pivot.
        enum Enum : int { Keep, Right, Top, Front, Left, Bottom, Back, TopUpright, BottomUpright, Count };
    };

    enum ModeOf : int { NoMode, Tracking, Tumbling, Dollying, HeldByAlt };

    struct CtorArgs : cViewer::CtorArgs {
        cVec3 HomeCenter;
        cAngles HomeAngles;
        float HomeDistance;
        float HomeOrthoScale;

        CtorArgs() { SetDefaults(); }
        void SetDefaults();
    };

    explicit cFreeViewer(const CtorArgs& args = CtorArgs()); ///< At home.

    bool OnButtonDown(int code) override;
    bool OnButtonUp(int code) override;
    bool OnMouseMove() override;
    void OnGestureDown(cGestureType::Enum type, const cVec2& position) override;
    void OnGestureMove(const cVec2& position, const cVec2& delta, float scale, float angle) override;
    void OnGestureUp() override;
    void OnRender() override { Update(); }
    bool IsHot(bool covered) override; ///< While it is held, or would be by a press.
    bool OnSetCursor(cInput::Cursor::Enum* cursor) override;

    using cViewer::Update;
    void Update(); ///< The eye from the pivot, and then everything else.

    void SetView(OrthoView::Enum view); ///< The lens stays.
    void SetOrthoProj(OrthoView::Enum view);
    void SetPerspProj();
    void Home();
    void LookAt(const cVec3& eye, const cVec3& target);
    /// Orbits that point from now on. The eye stays where it is; that of parallel rays moves along them.
    void OverrideCenter(const cVec3& center);

    // Motions by the mouse's travel. Each ends with `Update`.
    void Track(const cVec2& delta);
    void PlaneTrack(const cVec2& delta, const cVec3& normal); ///< Within the plane of that normal, of any length.
    void Tumble(const cVec2& delta);       ///< Pitch about the own right axis, yaw about the world's Y.
    void ScreenTumble(const cVec2& delta); ///< Both about the own axes.
    void Dolly(const cVec2& delta);
    void Roll(const cVec2& delta);
    void ScreenRoll(const cVec2& delta);

    void SnapAxis(); ///< To the nearest of the standard views.

    /// Sets how far ahead of the eye the pivot lies; the eye stays.
    void Aim(float distance);
    void Transform(const cMat4& transform); ///< Of pivot and orientation: the viewer moves with what it looks at.

    /// Moves the eye, straight or sideways, to where the box just fits, and the pivot into the box: straight ahead, or,
    /// for an area off the middle of the picture, by `OverrideCenter`. Nothing happens for an empty box, or without
    /// room.
    ///
    /// @param transform  of the box to the world
    /// @param area       pixels, the part of the viewport to fit into; the whole when it is empty
    void Frame(const cBounds& bounds, const cMat4& transform, const cRect& area);

    /// Two fingers: panning tracks, pinching dollies, turning rolls; a swipe tumbles.
    ///
    /// @param scale  ratio to the distance of the fingers before  @param angle  degrees since before
    void HandleGesture(cGestureType::Enum type, const cVec2& position, const cVec2& delta, float scale, float angle);

    bool Enabled = true;
    bool KeysEnabled = true;
    cVec3 HomeCenter;
    cAngles HomeAngles;
    float HomeDistance;
    float HomeOrthoScale;
    cVec3 Center;   ///< The pivot.
    float Distance; ///< Of the eye from it.
    float OrthoScaleTarget;
    bool IsOrthoView = false;
    bool HasOverrideCenter = false; ///< The eye is set off by
    cVec2 CenterOffset{0, 0};       ///< in the view's axes.
    int Mode = NoMode;              ///< A `ModeOf`.
    bool ChangedByWheel = false;    ///< Since the mode began.
    float TrackSpeed = 0.001f;
    float TumbleSpeed = 0.3f; ///< Degrees per pixel.
    float DollySpeed = 0.2f;
    float RollSpeed = 0.3f;
    float WheelSpeed = 1.2f;
    float OrthoZoomSpeed = 0.002f;
    float OrthoZoomMax = 1000;

private:
    bool OnKey(int code);
    void OnWheel();
    void CalcAxes();
    void Step(const cVec2& delta, const cVec3& right, const cVec3& up);

    cGestureType::Enum m_Gesture = cGestureType::None;
};

} // namespace trellis
