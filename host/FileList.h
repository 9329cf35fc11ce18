// List of names with a scroll bar of its own, drawn as a theme's drop-down list.
#pragma once

#include "foundation/cList.h"
#include "ui/cControl.h"

#include <string>

namespace trellis {

/// Sends `Selected` with the former and the present row, and `Pressed` when a row is double clicked. The focus goes to
/// the list whenever a row is chosen.
class FileList : public cControl {
public:
    explicit FileList(cWnd* parent);

    bool OnButtonDown(int code) override;
    bool OnButtonUp(int code) override { return cWnd::OnButtonUp(code); }
    bool OnMouseMove() override { return cWnd::OnMouseMove(); }
    bool IsHot(bool covered) override { return cWnd::IsHot(covered); }
    void OnRender() override;
    void CalcRelBounds() override { LayOut(m_Size); }
    void CalcRects() override;
    float GetArrowScrollSpeed() override { return GetRowHeight(); }
    float GetWheelScrollSpeed() override { return 3 * GetRowHeight(); }

    void SetRows(cList<cStr> rows); ///< From the top, none chosen.
    const cList<cStr>& GetRows() const { return m_Rows; }
    int GetSelected() const { return m_Selected; } ///< -1: none.
    void Select(int row);                          ///< By hand: scrolls there, and tells. A row out of range: none.
    void Unselect() { m_Selected = -1; }
    void ScrollTo(int row);

    /// Up, Down, PageUp, PageDown, Home and End. @return false for other keys
    bool OnKey(int code);

    /// Where a row of that text is to be seen. @return false when it is not
    bool Find(const std::string& text, cVec2* position) const;

    float GetRowHeight() const;

private:
    int RowUnderMouse() const;
    int CountOnPage() const;

    cList<cStr> m_Rows;
    cList<cStr> m_Lent; // the rows in sight, while they are drawn
    int m_Selected = -1;
};

} // namespace trellis
