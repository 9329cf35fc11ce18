#include "ui/cComboBox.h"

#include "ui/cComboBoxDropDown.h"
#include "ui/cWidgets.h"

#include <algorithm>

namespace trellis {

cComboBox::cComboBox(cWnd* parent, int* value, const cList<cStr>& items, const char* text, float x, float y, int align,
                     bool visible, bool enabled)
    : cControl(parent, text, x, y, align, visible, enabled), m_Value(value), m_Items(items) {
    m_TabStop = true;
}

cComboBox::~cComboBox() {
    if (cComboBoxDropDown* list = GetDropDown()) {
        list->Cancel();
        cWidgets::FreeWidget(list, true);
    }
}

cComboBoxDropDown* cComboBox::GetDropDown() const {
    // The id may have become another widget's.
    auto* list = dynamic_cast<cComboBoxDropDown*>(cWidgets::GetWidget(m_DropDownID));
    return list && list->IsOpenFor(this) ? list : nullptr;
}

void cComboBox::SetItems(const cList<cStr>& items) {
    if (cComboBoxDropDown* list = GetDropDown()) {
        list->Cancel();
    }
    m_Items = items;
}

void cComboBox::SelectedItem(int index) {
    if (!m_Value || index < 0 || index >= m_Items.Count() || index == *m_Value) {
        return;
    }
    const int before = *m_Value;
    *m_Value = index;
    Send(Selected, &before, m_Value);
}

bool cComboBox::HandleSelection(int code) {
    const int step = StepOf(code);
    if (step != 0 && m_Value && !m_Items.IsEmpty()) {
        SelectedItem(int(std::clamp((long long)*m_Value + step, 0LL, m_Items.Count() - 1LL)));
    }
    return step != 0;
}

// ---- Input

void cComboBox::Open(int code) {
    const Guard guard(this);
    SetFocus(this);
    if (guard.IsGone()) {
        return;
    }
    const bool isBoxHeld = m_Theme->ComboCapturesOnPress || code != cInput::LeftButton;
    if (m_Items.IsEmpty() || cWidgets::IsCaptured()) {
        return;
    }
    if (isBoxHeld) {
        if (!Capture(code)) {
            return;
        }
    } else if (!IsActive()) {
        Activate();
        if (guard.IsGone()) {
            return;
        }
    }
    m_PressCode = code;
    auto* list = new cComboBoxDropDown(this);
    m_DropDownID = cWidgets::AddWidget(list, cWidgets::ToolTipLayer);
    if (m_DropDownID == -1) {
        delete list;
    } else if (isBoxHeld) {
        list->m_PressCode = code == cInput::LeftButton ? code : -1; // a mouse may go on to a row
    } else {
        list->Hold(code);
    }
}

bool cComboBox::OnButtonDown(int code) {
    if (!IsLive() || GetDropDown()) {
        return false; // an open list sees to it
    }
    if (cWidgets::IsCaptured(this)) {
        return true;
    }
    if (code == cInput::RightButton && IsMouseInside()) {
        SetFocus(this);
        return true;
    }
    if (code == cInput::LeftButton ? !IsMouseInside() : !IsPressKey(code)) {
        return false;
    }
    Open(code);
    return true;
}

bool cComboBox::OnButtonUp(int code) {
    if (!cWidgets::IsCaptured(this)) {
        return false;
    }
    if (code == m_PressCode) {
        m_PressCode = -1;
        cWidgets::ReleaseCapture();
    }
    if (cComboBoxDropDown* list = GetDropDown()) {
        list->OnButtonUp(code); // consumed here, it would not get there
    }
    return true;
}

bool cComboBox::OnChar(int, int code) {
    if (!IsLive() || GetDropDown()) {
        return false;
    }
    const bool captured = cWidgets::IsCaptured(this);
    if (StepOf(code) == 0 || !(captured ? code == m_PressCode : HasFocus(this))) {
        return captured;
    }
    if (captured || Capture(code)) {
        HandleSelection(code);
    }
    return true;
}

// ---- Layout

void cComboBox::CalcRelBounds() {
    LayOut(m_Theme->ComboFont, m_Theme->ComboPadding, {m_Theme->ComboMinWidth, m_Theme->ComboHeight});
}

bool cComboBox::FillDrawArgs(cTheme::DrawArgs* args) {
    args->Part = cTheme::Parts::ComboBox;
    if (m_Value && *m_Value >= 0 && *m_Value < m_Items.Count()) {
        args->Value = m_Items[*m_Value];
    }
    args->Toggled = GetDropDown();
    return true;
}

} // namespace trellis
