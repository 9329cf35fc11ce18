#include "ui/cCheckBox.h"

#include "render/cRender.h"

#include <algorithm>
#include <cmath>

namespace trellis {

cCheckBox::cCheckBox(cWnd* parent, bool* value, const char* text, float x, float y, int align, bool visible,
                     bool enabled)
    : cPressControl(parent, text, x, y, align, visible, enabled), m_Value(value) {}

void cCheckBox::CalcRelBounds() {
    const float box = m_Theme->CheckBoxBoxSize;
    const float text = cRender::MeasureStringCells(m_Theme->CheckBoxFont, m_Text).Width();
    const float left = box + m_Theme->CheckBoxPadding;
    LayOut({std::max(m_Theme->CheckBoxMinWidth, m_Text.IsEmpty() ? box : left + text), m_Theme->CheckBoxHeight});
    if (m_Parent && m_Parent->GetType() == ToolBarType) { // side by side, as with captions at the left
        m_RelBounds.Translate({m_Pos.x + m_Theme->RowInsets.x - m_RelBounds.x0, 0});
    }
    const cRect& r = m_RelBounds;
    const float top = r.y1 - std::floor((r.Height() - box) / 2);
    m_RelValue = {r.x0, top - box, r.x0 + box, top};
    m_RelLabel = m_Text.IsEmpty() ? cRect::Empty : cRect(r.x0 + left, r.y0, r.x0 + left + text, r.y1);
}

bool cCheckBox::FillDrawArgs(cTheme::DrawArgs* args) {
    args->Part = cTheme::Parts::CheckBox;
    args->Toggled = m_Value && *m_Value;
    return true;
}

void cCheckBox::OnPressed() {
    if (m_Value) {
        *m_Value = !*m_Value;
        Send(Checked, m_Value, nullptr); // the new value; undo takes its opposite for the former one
    }
}

} // namespace trellis
