#include "ui/cLabel.h"

namespace trellis {

cLabel::cLabel(cWnd* parent, const cStr* source, const char* text, float x, float y, int align, bool visible,
               bool enabled)
    : cControl(parent, text, x, y, align, visible, enabled), m_Source(source) {}

void cLabel::CalcRelBounds() {
    LayOut(m_Theme->LabelFont, m_Theme->LabelPadding, m_Theme->LabelValueSize);
    if (!m_Source) {
        m_RelValue = cRect::Empty; // no box to be drawn, but its room, so that captions stay flush
    }
}

bool cLabel::FillDrawArgs(cTheme::DrawArgs* args) {
    args->Part = cTheme::Parts::Label;
    if (m_Source) {
        args->Value = *m_Source;
    }
    return true;
}

} // namespace trellis
