#include "ui/cColorSwatch.h"

namespace trellis {

cColorSwatch::cColorSwatch(cWnd* parent, const float* color, const char* text, float x, float y, int align,
                           bool visible, bool enabled)
    : cControl(parent, text, x, y, align, visible, enabled), m_Value(color) {}

void cColorSwatch::CalcRelBounds() {
    LayOut(m_Theme->LabelFont, m_Theme->LabelPadding, m_Theme->ColorSwatchSize);
}

bool cColorSwatch::FillDrawArgs(cTheme::DrawArgs* args) {
    args->Part = cTheme::Parts::ColorSwatch;
    args->Color = m_Value ? cColor(m_Value[0], m_Value[1], m_Value[2], m_Value[3]) : cColor::Zero;
    return true;
}

} // namespace trellis
