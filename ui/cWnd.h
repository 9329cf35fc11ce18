// Base of forms, panels, tool bars and controls: a tree of windows with rectangles, scroll bars and sizing borders.
//
// Coordinates are points of the screen with Y upward. A window draws only through its theme, and is flat to the
// manager: the tree exists here alone.
//
//     m_Bounds  >  m_ClientBounds  >  m_Client (less the bars)      m_AbsClient: the content, of any size
//
// Corners are listed clockwise from the top left, edges from the left.
#pragma once

#include "foundation/cList.h"
#include "math/cRect.h"
#include "math/cSeg.h"
#include "ui/cWidget.h"

#include <utility>

namespace trellis {

class cToolBar;

/// The manager owns windows; a window frees its children. Between the end of a parent and its own, a window may live
/// on for the rest of the frame without a parent; one that was never added goes before its parent does. A callback may
/// free the window itself, its parent or neighbours. Rendering thread only.
class cWnd : public cWidget {
public:
    /// What `GetType` answers.
    enum Type : int {
        WndType,
        ButtonType,
        BindButtonType,
        CheckBoxType,
        ComboBoxType,
        EditType,
        EditSliderType,
        FormType,
        PanelType,
        SeparatorType,
        SliderType,
        SliderRangedType,
        ToolBarType,
        EditVec2Type,
        EditVec3Type,
        EditVec4Type,
        FilePnType,
        ImageSwatchType,
        ColorSwatchType,
        ComboBoxDropDownType,
        LabelType
    };

    /// @param parent  may be null; the window becomes its child with `AddChild` or `SetToolBar`
    /// @param theme   of a root, not owned; a child takes that of its root. No window works without one
    explicit cWnd(cWnd* parent, const cTheme* theme = nullptr);
    ~cWnd() override; ///< Frees the children and the tool bar, or, while the manager walks its lists, asks for it.
    cWnd(const cWnd&) = delete;
    cWnd& operator=(const cWnd&) = delete;

    bool OnButtonDown(int code) override;
    bool OnButtonUp(int code) override;
    bool OnMouseMove() override;
    void OnRender() override; ///< Draws the scroll bars; a subclass calls it after its own body.
    bool IsHot(bool covered) override;
    bool OnSetCursor(cInput::Cursor::Enum* cursor) override;
    void OnBringToFront() override; ///< The children come along, and then the tool bar.

    // What says "asks the parent" or "tells the parent" reaches the owning form that way.
    virtual int GetType() const { return WndType; }

    /// A control's message; tells the parent, and a root drops it. @param before, after  by the kind of message
    virtual void MsgProc(int id, int msg, const void* before, const void* after);
    virtual void Activate();              ///< Tells the parent.
    virtual bool IsActive();              ///< Asks the parent; a root is not.
    virtual int GetFormState();           ///< Asks the parent; 0 for a root.
    virtual float GetCurActivity();       ///< Asks the parent; a root answers its own.
    virtual float GetCurAlpha();          ///< Asks the parent; 1 for a root.
    virtual cRect GetRelBounds();         ///< Of a control: relative to the parent's scrolled client. Else `Empty`.
    virtual bool HasFocus(cWnd* control); ///< Asks the parent; false for a root.
    virtual bool HasFocusNoEnabled(cWnd* control); ///< Likewise; a disabled control may show a caret.
    virtual void SetFocus(cWnd* control);          ///< Tells the parent.
    virtual void ClearFocus(cWnd* control);        ///< Tells the parent: `control` gives the focus up if it has it.
    virtual float GetWithinToolBarWidth() { return 0; }

    /// The layout of one frame, from `m_Bounds` and `m_ClientBounds`, which a subclass sets first. Allocates nothing.
    /// Scroll bars that appear or go settle over two frames.
    virtual void CalcRects();
    virtual void CalcRelBounds() {} ///< Controls measure themselves here.
    virtual void OnTabStop() { SetFocus(this); }
    virtual bool GetTabStop() const { return false; }
    virtual void SetTabStop(bool isStop) { (void)isStop; }
    virtual void GoTab(bool forward) { (void)forward; }
    virtual int GetMouseOver();                        ///< The `cTheme::Parts` value under the mouse; 0: none.
    virtual float GetArrowScrollSpeed();               ///< Points a step; the theme's.
    virtual float GetWheelScrollSpeed();               ///< Points a unit; the theme's.
    virtual void OnNewParent() {}                      ///< The window has become a child, or a tool bar.
    virtual bool IsCollapsed() const { return false; } ///< A panel that is not expanded hides what is beneath it.

    /// The window takes over the child, and so does the manager, in the layer of this window's root (the forms' when
    /// that has none). @return its id, or -1 when it was refused and stays the caller's
    ///
    /// @param layOut  false: more children follow, and the caller calls `CalcRelBounds` when all are there
    int AddChild(cWnd* child, bool layOut = true);
    int SetToolBar(cToolBar* toolBar); ///< Likewise, but it is no child. The former one is freed.
    /// Takes the child or the tool bar out of this window at once; it is deleted when no callback runs any more.
    /// @return false when a callback has freed this window
    bool FreeChild(cWnd* child);
    int GetLevel() const;              ///< Parents above; 0 for a root.
    cWnd* GetTopLevelParent();         ///< Null for a root.
    /// Appends all descendants, each ahead of its own children. @param skipCollapsed  leave out what panels hide
    void ListChildren(cList<cWnd*>* out, bool skipCollapsed);

    /// Slides the content so that no gap is left at the right and the bottom, and then none at the left and the top.
    void RestrictRelClientToScrollRect();
    void CalcTends(); ///< Advances what is animated by one frame.
    bool IsSizingBorderDrag() const;
    bool IsScrollBarDrag() const;
    bool IsWndPartDrag() const; ///< Either of these, or the content is panned.
    /// Repeats the held part of a scroll bar, and scrolls while a subclass's own drag is outside the client.
    void HandleScrolling();
    bool IsVisible() const; ///< With all ancestors.
    bool IsEnabled() const; ///< With all ancestors.

    /// Brings `current` nearer to `target` by `speed` units per second of the last frame; a speed of
    /// `cTheme::Immediate` is a jump at any time.
    static void Tend(float* current, float target, float speed);
    static bool IsInside(const cRect& rect, const cVec2& p); ///< For the mouse: all edges belong to the rectangle.

    // ---- Data. Windows of all kinds read each other's.
    const cTheme* m_Theme; ///< Not owned.
    cWnd* m_Parent;
    cWnd* m_Listener = nullptr; ///< Second receiver of what a control sends: a window that the manager has.
    cList<cWnd*> m_Children;    ///< In creation order, which is the tab order.
    cToolBar* m_ToolBar = nullptr;
    cVec2 m_Pos{0, 0}; ///< Relative to the parent's scrolled client, for controls.
    int m_Align = -1;  ///< The `cRect::Align` of the control that stands at `m_Pos`; -1: it lays itself out.
    cRect m_Bounds = cRect::Empty;
    cRect m_ClientBounds = cRect::Empty; ///< Holds the children; empty for a window without client.
    cRect m_RelClient = cRect::Empty;    ///< The content, relative to the client's top left corner: scrolling moves it.
    cRect m_Client = cRect::Empty;
    cRect m_AbsClient = cRect::Empty;     ///< `m_RelClient` on the screen: children position themselves inside.
    cRect m_ClippedClient = cRect::Empty; ///< Clipped by all ancestors' clients.
    cRect m_ClippedBounds = cRect::Empty; ///< Likewise: what the mouse can touch.
    cRect m_ScrollClip = cRect::Empty;    ///< A drag outside scrolls.
    bool m_Visible = false;
    float m_CurVisible = 0, m_TargetVisible = 0;
    bool m_Enabled = false;
    float m_CurEnabled = 0, m_TargetEnabled = 0;
    float m_CurActivity = 0, m_TargetActivity = 0;
    int m_DragPart = 0; ///< The `cTheme::Parts` value held; while it is not 0 the window is captured.
    int m_HotPart = 0;
    cVec2 m_LastMouse{0, 0};
    cVec2 m_Grab{0, 0}; ///< From the mouse to the grabbed edges; for a pan, the mouse at its start.
    cRect m_SavedRelClient = cRect::Empty;
    bool m_FitWidth = false; ///< The content stays as wide as the client,
    float m_MinFitWidth = 0; ///< and at least this.
    bool m_VScroll = false;  ///< The window has this bar; it shows while it is needed.
    bool m_HScroll = false;  ///< Likewise.
    bool m_WheelEnabled = false;
    bool m_WheelAnywhere = false; ///< Also when the mouse is elsewhere.
    bool m_WheelWhileCaptured = false;
    bool m_EdgeScroll = false;
    int m_EdgeScrollPart = 0; ///< The part that edge scrolling repeats; 0: none.
    bool m_MiddlePan = false; ///< The middle button pans the content.
    bool m_VBarShown = false, m_HBarShown = false;
    cRect m_VBar = cRect::Empty, m_HBar = cRect::Empty;     ///< The tracks.
    cRect m_VThumb = cRect::Empty, m_HThumb = cRect::Empty; ///< On whole points.
    cRect m_VThumbExact = cRect::Empty, m_HThumbExact = cRect::Empty;
    cRect m_VPage[2] = {cRect::Empty, cRect::Empty}, m_HPage[2] = {cRect::Empty, cRect::Empty};
    cRect m_VArrows[2] = {cRect::Empty, cRect::Empty}, m_HArrows[2] = {cRect::Empty, cRect::Empty};

    struct Amount {
        float Cur = 0, Target = 0;
    };
    struct BarAmounts {
        Amount Thumb, Arrows[2], Shown;
    };
    BarAmounts m_VBarAmounts, m_HBarAmounts;
    cSeg m_ThumbSeg{}; ///< The way of the mouse while a thumb is dragged: from the top down, or left to right.
    float m_HScale = 0, m_VScale = 0; ///< Track per content.
    float m_RepeatTimeSec = 0;        ///< When the held part acts next; -1: at once when the mouse is back.
    bool m_Sizable = false;
    cRect m_Edges[4] = {cRect::Empty, cRect::Empty, cRect::Empty, cRect::Empty};       ///< Between the corners.
    cRect m_Corners[4] = {cRect::Empty, cRect::Empty, cRect::Empty, cRect::Empty};     ///< Squares.
    cRect m_CornerHoles[4] = {cRect::Empty, cRect::Empty, cRect::Empty, cRect::Empty}; ///< Not part of the border.

protected:
    /// The parent's scrolled client on whole points; `Empty` without a parent. A control whose parent's is empty calls
    /// `EmptyRects` and draws nothing.
    cRect GetParentClient() const;
    void EmptyRects(); ///< Of bounds and clients: the mouse cannot touch the window, nor what is beneath it.
    void Leave();      ///< The parent no longer has this window, nor the form the focus beneath it.

    /// Tells, after a callback, whether it has freed the window. Lives on the stack.
    class Guard {
    public:
        explicit Guard(const cWnd* wnd) : m_Wnd(wnd), m_Outer(std::exchange(s_Innermost, this)) {}
        ~Guard() { s_Innermost = m_Outer; }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;
        bool IsGone() const { return !m_Wnd; } ///< Also of null.

    private:
        friend class cWnd;
        static inline Guard* s_Innermost = nullptr;
        const cWnd* m_Wnd;
        Guard* m_Outer;
    };

private:
    int AddToManager(cWnd* wnd);
    bool IsBeneath(const cWnd* wnd) const;
    static void ClearFocusBeneath(cWnd* wnd);
    void Detach(const cWnd* wnd);
    void DropLostPart();

    void CalcScrollBars();
    void CalcSizing();
    void Hold(int part);
    bool Step(int part); // false: the layout has freed the window
    bool RepeatHeldPart();
    void ScrollAtEdges();
    bool OnWheel();
    void HoldThumb(const cVec2& mouse, bool vertical);
    void DragThumb(const cVec2& mouse);
    void DragBorder(const cVec2& mouse);
    void CalcBarTends(BarAmounts* amounts, bool shown, int thumb, int firstArrow) const;
    void DrawBar(bool vertical);
};

} // namespace trellis
