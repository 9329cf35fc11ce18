// Group of controls in a form: a title row that opens and closes it, and its children in a column beneath.
#pragma once

#include "foundation/cStr.h"
#include "ui/cWnd.h"

namespace trellis {

/// Sends `PanelToggled` to its parent. A panel directly in a form has no title row and is always open.
class cPanel : public cWnd {
public:
    cPanel(cWnd* parent, const char* title, float x, float y, bool visible, bool enabled);

    int GetType() const override { return PanelType; }
    bool OnButtonDown(int code) override;
    bool OnButtonUp(int code) override;
    bool OnMouseMove() override;
    bool OnChar(int c, int code) override;
    void OnRender() override;
    bool IsHot(bool covered) override;
    bool IsCollapsed() const override { return !m_Expanded; }
    cRect GetRelBounds() override { return m_RelBounds; }
    bool GetTabStop() const override { return !m_Headless; }
    void CalcRects() override;
    void CalcRelBounds() override;

    void SetSimple(bool simple); ///< A simple panel cannot be closed, and opens.
    void AlignChildren();        ///< Puts the rows one under the other.

    cStr m_Title;
    bool m_Expanded = false;
    bool m_Headless = false;
    bool m_Simple = false;
    cRect m_RelBounds = cRect::Empty, m_RelTitle = cRect::Empty, m_RelArrow = cRect::Empty; ///< In the parent's client.
    cRect m_Bounds2 = cRect::Empty, m_Title2 = cRect::Empty, m_Arrow2 = cRect::Empty;       ///< On the screen.
    float m_CurGrow = 0, m_TargetGrow = 0;
    cWnd* m_Root; ///< The form, as it was at creation or when the rows were aligned last.
    int m_Level;  ///< Depth, as it was at creation.
    int m_PressCode = -1;
    Amount m_Hot;

private:
    bool IsOverRow() const;
    void Toggle();
};

} // namespace trellis
