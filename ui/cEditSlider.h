// A number with both a field and a slider.
#pragma once

#include "ui/cComposite.h"

namespace trellis {

class cEdit;
class cSlider;

class cEditSlider : public cComposite {
public:
    /// @param min, max  of the slider and of the field
    cEditSlider(cWnd* parent, float* value, const float* min, const float* max, const char* text, float x, float y,
                int align, bool visible, bool enabled);
    cEditSlider(cWnd* parent, int* value, const int* min, const int* max, const char* text, float x, float y, int align,
                bool visible, bool enabled);

    int GetType() const override { return EditSliderType; }

    cEdit* m_Edit;
    cSlider* m_Slider;

private:
    template <class T> void Make(T* value, const T* min, const T* max, const char* text);
};

} // namespace trellis
