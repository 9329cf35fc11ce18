#include "ui/cSeparator.h"

#include "render/cRender.h"

namespace trellis {

cSeparator::cSeparator(cWnd* parent, const char* text, bool visible)
    : cControl(parent, text, 0, 0, cRect::LeftTop, visible, true) {}

float cSeparator::GetWithinToolBarWidth() {
    return m_Theme->ToolBarSeparatorWidth;
}

void cSeparator::CalcRelBounds() {
    const cRect client = GetParentClient();
    const bool isOnToolBar = m_Parent && m_Parent->GetType() == ToolBarType;
    const float width = isOnToolBar ? m_Theme->ToolBarSeparatorWidth : client.Width();
    const float height = isOnToolBar ? client.Height() : m_Theme->SeparatorHeight;
    m_RelBounds = {0, -height, width, 0};
    m_RelBounds.AlignPoint(m_Align, m_Pos.x, m_Pos.y);
    if (!isOnToolBar) { // across the whole row, whatever the column
        m_RelBounds.x0 = 0;
        m_RelBounds.x1 = width;
    }
    m_RelLabel = cRect::Empty;
    if (!m_Text.IsEmpty()) {
        m_RelLabel = cRender::MeasureStringCells(m_Theme->SeparatorFont, m_Text);
        m_RelLabel.AlignPoint(cRect::LeftMiddle, m_RelBounds);
    }
    m_RelValue = m_RelBounds;
}

bool cSeparator::FillDrawArgs(cTheme::DrawArgs* args) {
    args->Part = cTheme::Parts::Separator;
    return true;
}

} // namespace trellis
