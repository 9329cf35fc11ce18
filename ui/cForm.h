// Movable top-level window: title bar with its buttons, sizing, three states, and the keyboard focus of its controls.
//
// A normal form is kept as two anchors, its top left and its bottom right corner, each at a distance from the nearest
// of nine dock points of the base rectangle: the viewport, or, for a child form, the parent's content. When the base
// changes, each corner keeps that distance.
//
//     base:  0  1  2        FormMinSize at A's corner:  A----+
//            4  5  6                                    |    |      the form is the union of the two
//            8  9  10                                   +----B
#pragma once

#include "foundation/cStr.h"
#include "ui/cTheme.h"
#include "ui/cWnd.h"

namespace trellis {

/// A root form belongs to the manager, layer 3 as a rule; a child form is added to its parent with `AddChild`.
class cForm : public cWnd {
public:
    enum State : int { Minimized, Maximized, Normal };

    /// @param parent  null for a root form  @param theme  of a root form
    cForm(cWnd* parent, const char* title, const cRect& bounds, const cTheme* theme);
    ~cForm() override;

    int GetType() const override { return FormType; }
    bool IsDead() override { return m_Closed; }
    void OnRender() override;
    bool OnButtonDown(int code) override;
    bool OnButtonUp(int code) override;
    bool OnMouseMove() override;
    bool OnChar(int c, int code) override;
    bool OnSetCursor(cInput::Cursor::Enum* cursor) override;
    void Activate() override; ///< To the front, with all parents.
    bool IsActive() override; ///< In front of its siblings, and so are its parents.
    int GetFormState() override { return m_State; }
    float GetCurActivity() override { return m_CurActivity; }
    float GetCurAlpha() override; ///< Less while the form is moved or sized.
    bool HasFocus(cWnd* control) override;
    bool HasFocusNoEnabled(cWnd* control) override;
    void SetFocus(cWnd* control) override { m_Focus = control; }
    void ClearFocus(cWnd* control) override;
    void CalcRects() override;
    void OnNewParent() override;       ///< A child form is no root form any more.
    void GoTab(bool forward) override; ///< To the next control, or the one before: those of the tool bar, and then the
                                       ///< children in their order.
    int GetMouseOver() override;

    void Minimize(); ///< Or back to the state before.
    void Maximize(); ///< Or back to normal.
    void Close();    ///< For good; the manager deletes the form in its next `HandleInputEvents`.
    void SetNormalStateRels();
    void CalcNormalStateBounds();
    void CalcMinStateBounds();
    void CalcMaxStateBounds();
    void ScrollToFocusedControl();

    static inline constinit cList<cForm*> s_Forms; ///< The root forms, the rear first.

    bool m_Closed = false;
    cWnd* m_Focus = nullptr;
    int m_State = Normal;
    int m_PrevState = Normal; ///< Before it was minimised.
    cStr m_Title;
    cVec2 m_Offset0{0, 0}, m_Offset1{0, 0};                   ///< Of the corners from their dock points.
    int m_Align0 = -1, m_Align1 = -1;                         ///< The dock points; -1: taken from `m_Bounds` next.
    cRect m_Region0 = cRect::Empty, m_Region1 = cRect::Empty; ///< Where a corner keeps its dock point.
    cVec2 m_MinOffset{0, 0};
    int m_MinAlign = -1; ///< -1 until it is minimised first.
    cRect m_MinRegion = cRect::Empty;
    cRect m_GripRect = cRect::Empty;
    cRect m_CloseRect = cRect::Empty;
    cRect m_TitleRect = cRect::Empty;
    cRect m_MinimizeRect = cRect::Empty;
    cRect m_MaximizeRect = cRect::Empty;
    Amount m_GripHot, m_CloseHot, m_MinimizeHot, m_MaximizeHot;

protected:
    cRect GetBaseRect() const; ///< What the geometry is relative to; (0, 0, 640, 480) without a viewer.

private:
    void KeepNormal();
    bool IsMovedOrSized() const;
    void Vanish();
    void LetGo();
    void Hold(int part);
    void DockMinimized(const cRect& base);
    void CalcContent();
    void CalcParts();
    void DrawDockRegions(cTheme::DrawArgs* args) const;
    void DrawParts(cTheme::DrawArgs* args) const;

    cRect m_NormalBounds = cRect::Empty; // kept by `KeepNormal`
};

} // namespace trellis
