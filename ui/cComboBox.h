// Box that shows one of several items, and drops down the list of them.
#pragma once

#include "foundation/cList.h"
#include "ui/cControl.h"

namespace trellis {

class cComboBoxDropDown;

/// Sends `Selected` when another item was chosen. An index without an item shows an empty line; a box without items
/// does not open.
class cComboBox : public cControl {
public:
    /// @param value  index of the item
    cComboBox(cWnd* parent, int* value, const cList<cStr>& items, const char* text, float x, float y, int align,
              bool visible, bool enabled);
    ~cComboBox() override; ///< The open list goes as well.

    int GetType() const override { return ComboBoxType; }
    bool OnButtonDown(int code) override;
    bool OnButtonUp(int code) override;
    bool OnChar(int c, int code) override;
    bool IsHot(bool covered) override { return TrackHot(covered); }
    void CalcRelBounds() override;
    void Unbind() override { m_Value = nullptr; }

    void SetItems(const cList<cStr>& items); ///< An open list closes.
    void SelectedItem(int index);            ///< What the list calls; writes the value. A message may free the box.

    /// One item on or back by a key of the closed box. @return whether `code` is one
    bool HandleSelection(int code);

    int* m_Value; ///< Not owned.
    cList<cStr> m_Items;
    int m_DropDownID = -1; ///< Of the open list.

protected:
    bool FillDrawArgs(cTheme::DrawArgs* args) override;

private:
    void Open(int code);
    cComboBoxDropDown* GetDropDown() const; // null while it is closed
};

} // namespace trellis
