#include "ui/cEditSlider.h"

#include "ui/cEdit.h"
#include "ui/cSlider.h"

namespace trellis {

cEditSlider::cEditSlider(cWnd* parent, float* value, const float* min, const float* max, const char* text, float x,
                         float y, int align, bool visible, bool enabled)
    : cComposite(parent, x, y, align, visible, enabled) {
    Make(value, min, max, text);
}

cEditSlider::cEditSlider(cWnd* parent, int* value, const int* min, const int* max, const char* text, float x, float y,
                         int align, bool visible, bool enabled)
    : cComposite(parent, x, y, align, visible, enabled) {
    Make(value, min, max, text);
}

template <class T> void cEditSlider::Make(T* value, const T* min, const T* max, const char* text) {
    const cTheme& theme = *m_Theme;
    m_Edit = new cEdit(this, value, min, max, text, 0, 0, cRect::LeftTop, m_Visible, m_Enabled);
    m_Edit->m_Size = {theme.EditSliderEditWidth, theme.EditHeight};
    m_Slider = new cSlider(this, value, min, max, "", 0, 0, cRect::LeftTop, m_Visible, m_Enabled);
    m_Slider->m_Size = {theme.SliderMinWidth, theme.SliderHeight};
    SetParts({m_Edit, m_Slider}, theme.EditFont, theme.EditPadding, theme.EditSliderSpacing);
}

} // namespace trellis
