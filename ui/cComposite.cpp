#include "ui/cComposite.h"

#include "render/cRender.h"

#include <algorithm>
#include <cmath>

namespace trellis {

cComposite::cComposite(cWnd* parent, float x, float y, int align, bool visible, bool enabled)
    : cControl(parent, "", x, y, align, visible, enabled), m_PartsVisible(visible), m_PartsEnabled(enabled) {}

void cComposite::SetParts(std::initializer_list<cControl*> parts, int font, float padding, float spacing) {
    m_Font = font;
    m_Padding = padding;
    m_Spacing = spacing;
    for (cControl* part : parts) {
        AddChild(part, false);
    }
    CalcRelBounds();
}

void cComposite::Unbind() {
    for (cWnd* child : m_Children) {
        if (auto* part = dynamic_cast<cControl*>(child)) {
            part->Unbind();
        }
    }
}

void cComposite::CalcRelBounds() {
    cVec2 size(0, 0);
    const cControl* first = nullptr;
    for (cWnd* child : m_Children) {
        if (const auto* part = dynamic_cast<const cControl*>(child)) {
            size.x += part->m_Size.x + (first ? m_Spacing : 0);
            size.y = std::max(size.y, part->m_Size.y);
            first = first ? first : part;
        }
    }
    if (first) {
        m_Text = first->m_Text;
    }
    LayOut(m_Font, m_Padding, size);

    float x = m_RelValue.x0 - m_RelBounds.x0;
    for (cWnd* child : m_Children) {
        if (auto* part = dynamic_cast<cControl*>(child)) {
            part->m_Align = cRect::LeftTop;
            part->m_Pos = {x, -std::floor((size.y - part->m_Size.y) / 2)};
            x += part->m_Size.x + m_Spacing;
        }
    }
}

void cComposite::CalcRects() {
    cControl::CalcRects();
    m_ClientBounds = m_Bounds;
    cWnd::CalcRects();
    if (m_Parent && !m_Bounds.IsEmpty()) {
        m_ClippedClient = m_Parent->m_ClippedClient; // parts may grow beyond the composite
    }
}

void cComposite::OnRender() {
    // A part's own flags are anybody's; only what changes here is passed on.
    const bool visible = m_Visible != m_PartsVisible, enabled = m_Enabled != m_PartsEnabled;
    for (cWnd* part : m_Children) {
        part->m_Visible = visible ? m_Visible : part->m_Visible;
        part->m_Enabled = enabled ? m_Enabled : part->m_Enabled;
    }
    m_PartsVisible = m_Visible;
    m_PartsEnabled = m_Enabled;
    CalcTends();
    CalcRects();
}

} // namespace trellis
