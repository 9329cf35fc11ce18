// List of items that a combo box drops down, or a menu that stands by itself.
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"
#include "ui/cWnd.h"

namespace trellis {

class cComboBox;

/// A root window of the layer of pop-ups, in front of what it belongs to: it sees the events that the captured widget
/// leaves, and consumes all keys. It is dead once it has hidden itself and holds no capture. Gone or no longer usable
/// boxes take their list along.
class cComboBoxDropDown : public cWnd {
public:
    explicit cComboBoxDropDown(cComboBox* box);

    /// A menu. It is the caller's to add it to layer 4.
    /// @param report      receives the index of the chosen item, or -1 when it was cancelled; called once, unless the
    ///                    menu is freed while it is open
    /// @param x, y        its top left corner, moved into the screen where there is no room
    /// @param currentItem the one that is lit at first, or -1
    cComboBoxDropDown(void (*report)(int), const cList<cStr>& items, float x, float y, const cTheme* theme,
                      int currentItem = -1);

    int GetType() const override { return ComboBoxDropDownType; }
    bool OnButtonDown(int code) override;
    bool OnButtonUp(int code) override;
    bool OnChar(int c, int code) override;
    void OnRender() override;
    bool IsDead() override;
    bool IsHot(bool covered) override; ///< Nothing beneath an open list is hot.
    bool IsActive() override { return true; }
    int GetMouseOver() override; ///< The scroll bar's parts, then a row, which becomes the current one.
    void CalcRects() override;

    void Init();              ///< Measures the items and lays the list out; again after these were changed.
    void CalcPreRects();      ///< Below the box, or above it when there is no room.
    void EnableArrowScroll(); ///< A longer list gets its scroll bar.
    void ScrollToCurSel();
    void Hold(int code); ///< The list takes over a press that has begun elsewhere.
    void Cancel();

    bool IsOpenFor(const cComboBox* box) const { return m_Visible && m_Box == box; }

    cList<cStr> m_Items;
    cList<int> m_ItemFlags; ///< Bit 0: the item of that index cannot be chosen. May be shorter than the items.
    int m_CurSel = -1;      ///< The row under the hand.
    int m_PressCode = -1;

private:
    cComboBox* GetBox() const;
    bool IsBoxLive() const;
    bool IsChoice(int row) const;
    int RowUnderMouse() const; // -1: none
    void MoveCurSel(int by);
    void Choose(int row);
    void Hide();

    cComboBox* m_Box = nullptr; // null: a menu
    int m_BoxID = -1;
    void (*m_Report)(int) = nullptr;
    cVec2 m_At{0, 0};
    float m_ItemsWidth = 0;
    cVec2 m_SeenMouse; // where it last chose the row: at rest it does not compete with the keys
};

} // namespace trellis
