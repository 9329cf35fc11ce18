// What the handles for moving, rotating and scaling share: the frame on the screen, the drag, its repetition.
//
// A handle is cast a ray through the mouse; where the ray meets the handle's line, plane or sphere now, against where
// it met it when the drag began, gives the value.
#pragma once

#include "math/cAngles.h"
#include "math/cColor.h"
#include "math/cMat4.h"
#include "math/cPlane.h"
#include "math/cSeg.h"
#include "ui/cWidget.h"
#include "view/cSpace.h"

namespace trellis {

class cManipulator;
class cViewer;

/// The drag that the middle button takes up again.
struct cRepeatManipulator {
    const cManipulator* Tool = nullptr; ///< Compared, never followed.
    int Mode = 0;
    unsigned char Rest[16] = {}; ///< Zeroed at each new drag.
};

// Settings that all tools share.
extern int g_ManipulatorsType; ///< A `cManipulator::Type`.
extern cSpace::Enum g_ManipulatorsLocal;
extern float g_ManipulatorsSnap; ///< Step; 0 or less: none.
extern cRepeatManipulator g_RepeatManipulator;

/// Edits values of the caller by pointer, and writes them during the drag, in which it holds the capture. Where the
/// frame cannot be told - no viewer, a viewport of nothing, an axis of no length, a parent that cannot be inverted -
/// the value stays.
class cManipulator : public cWidget {
public:
    enum Type : int { None, MoveType, RotateType, ScaleType, Universal };

    class Mode {
    public:
        enum Enum : int {
            None,
            X,
            Y,
            Z,
            Free ///< Within the plane, on the sphere, along all axes at once.
        };
    };

    static constexpr int Layer = 1;

    /// `*slot`, which holds this tool, becomes null when the tool ends.
    template <class T> void Link(T** slot) {
        m_Slot = slot;
        m_Unlink = [](void* s) { *static_cast<T**>(s) = nullptr; };
    }
    /// Lets go of what is edited, which may end now, and frees the tool once that can be. Null is ignored.
    static void Free(cManipulator* tool);

    ~cManipulator() override; ///< Its drag can no longer be repeated.

    bool IsHot(bool covered) override; ///< While it is held, or the mouse is over a handle.
    bool OnButtonDown(int code) override;
    bool OnButtonUp(int code) override;
    bool OnMouseMove() override;

    void SetSpace(cSpace::Enum space) { Space = space; }
    /// The frame of the edited value; the first form inverts by itself, and without an inverse nothing can be dragged.
    void SetParent(const cMat4& parent);
    void SetParent(const cMat4& parent, const cMat4& inverse);

    /// Centre, axes, plane and size on the screen, as they are now. @return false where there is no frame
    bool CalcFrame();

    /// What the mouse is over, into `HotMode`. @param forDrag  also records where a drag begins
    void CalcMode(bool forDrag);
    void ContinueMode(Mode::Enum mode); ///< Begins a drag in that mode from where the mouse is.

    int CurMode = Mode::None;  ///< A `Mode::Enum`; while the tool is not held it is none.
    int HotMode = Mode::None;  ///< The handle under the mouse.
    cVec3* Pos = nullptr;      ///< Not owned, as all that is edited; null: the parent's origin.
    cAngles* Orient = nullptr; ///< Null: the world's axes.
    cSpace::Enum Space = cSpace::World;
    cVec3 Center = cVec3::Zero; ///< Of the handle, in the world.
    cSeg Axes[3] = {};
    cSeg StartAxes[3] = {};       ///< When the drag began.
    cVec3 StartHit = cVec3::Zero; ///< Where the ray met the handle first.
    cPlane Plane{};               ///< Of `Mode::Free`.
    float Radius = 0;             ///< Length of the handle, units of the world.
    cMat4 Parent = cMat4::Identity, ParentInverse = cMat4::Identity;
    bool HasParentInverse = true;
    int Button = -1;           ///< That began the drag.
    bool HasFreeInner = false; ///< The plane's handle is a ring, from `Radius` to twice as far, and its middle is free.
    float Pixel = 0;           ///< Units of the world at the centre.

protected:
    void Bind(cAngles* orient, cVec3* pos, cSpace::Enum space);

    static constexpr float TolerancePixels = 7;

    virtual float Length() const = 0;       ///< Of the axes, pixels.
    virtual float RadiusPixels() const = 0; ///< Of `Radius`.
    virtual bool IsLocal() const { return Space == cSpace::Local; }

    /// What the ray is over, in the present frame.
    virtual Mode::Enum Pick(const cSeg& ray) = 0;
    /// Where the ray meets the handle of a mode. @return false to leave the hit as it was
    virtual bool Hit(Mode::Enum mode, const cSeg& ray, cVec3* hit) const = 0;
    virtual void Unbind() = 0;
    virtual bool BeginDrag() = 0; ///< Keeps the value that `StartHit` belongs to. @return false: no drag from there
    virtual void Drag(const cVec3& hit) = 0;

    bool HitPlane(const cSeg& ray, cVec3* hit) const;
    /// The axis as an infinite line. @return false along the axis, and where it comes nearest behind the eye
    static bool HitAxis(const cSeg& axis, const cSeg& ray, cVec3* hit);
    int NearestAxis(const cSeg& ray) const;             ///< A `Mode::Enum`, within the tolerance.
    static bool GetRay(cSeg* out);                      ///< Through the mouse. @return false without a viewer
    static float Snapped(float v);                      ///< To the snap step, if there is one.
    static cVec3 Apply(const cVec3& p, const cMat4& m); ///< A point, divided by its fourth component.
    static cVec3 Turn(const cVec3& v, const cMat4& m);  ///< A direction.

    cColor ColorOf(Mode::Enum mode) const; ///< Red, green, blue for the axes; what is held or under the mouse is lit.
    static void BeginLook();               ///< The state that handles are drawn with.

    cVec3 m_Hit = cVec3::Zero; // of the last step

private:
    void* m_Slot = nullptr;
    void (*m_Unlink)(void*) = nullptr;
};

} // namespace trellis
