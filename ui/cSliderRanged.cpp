#include "ui/cSliderRanged.h"

#include "ui/cEdit.h"
#include "ui/cSlider.h"

namespace trellis {

cSliderRanged::cSliderRanged(cWnd* parent, float* values, const char* text, float x, float y, int align, bool visible,
                             bool enabled)
    : cComposite(parent, x, y, align, visible, enabled) {
    Make(values, text);
}

cSliderRanged::cSliderRanged(cWnd* parent, int* values, const char* text, float x, float y, int align, bool visible,
                             bool enabled)
    : cComposite(parent, x, y, align, visible, enabled) {
    Make(values, text);
}

template <class T> void cSliderRanged::Make(T* values, const char* text) {
    const cTheme& theme = *m_Theme;
    T *lower = values ? values + 1 : nullptr, *upper = values ? values + 2 : nullptr;
    const auto edit = [&](T* value, const char* caption) {
        auto* made = new cEdit(this, value, static_cast<const T*>(nullptr), static_cast<const T*>(nullptr), caption, 0,
                               0, cRect::LeftTop, m_Visible, m_Enabled);
        made->m_Size = {theme.EditSliderEditWidth, theme.EditHeight};
        return made;
    };
    m_Lower = edit(lower, text);
    m_Slider = new cSlider(this, values, lower, upper, "", 0, 0, cRect::LeftTop, m_Visible, m_Enabled);
    m_Slider->m_Size = {theme.SliderMinWidth, theme.SliderHeight};
    m_Upper = edit(upper, "");
    m_Lower->m_UpperSibling = m_Upper;
    m_Upper->m_LowerSibling = m_Lower;
    SetParts({m_Lower, m_Slider, m_Upper}, theme.EditFont, theme.EditPadding, theme.EditSliderSpacing);
}

} // namespace trellis
