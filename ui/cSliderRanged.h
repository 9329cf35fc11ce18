// A number between two others that can be edited as well: the lower end, the slider, the upper end.
#pragma once

#include "ui/cComposite.h"

namespace trellis {

class cEdit;
class cSlider;

/// Neither end can be moved past the other: it is pushed along.
class cSliderRanged : public cComposite {
public:
    /// @param values  three: the value, its lower and its upper end
    cSliderRanged(cWnd* parent, float* values, const char* text, float x, float y, int align, bool visible,
                  bool enabled);
    cSliderRanged(cWnd* parent, int* values, const char* text, float x, float y, int align, bool visible, bool enabled);

    int GetType() const override { return SliderRangedType; }

    cEdit* m_Lower;
    cSlider* m_Slider;
    cEdit* m_Upper;

private:
    template <class T> void Make(T* values, const char* text);
};

} // namespace trellis
