// Bar on which the mouse or the keys choose a number between two others.
#pragma once

#include "ui/cControl.h"

#include <variant>

namespace trellis {

/// Sends `FloatSlid` or `IntSlid` when the hand lets go and the value is another. `Home` and `End` send nothing.
class cSlider : public cControl {
public:
    cSlider(cWnd* parent, float* value, const float* min, const float* max, const char* text, float x, float y,
            int align, bool visible, bool enabled);
    cSlider(cWnd* parent, int* value, const int* min, const int* max, const char* text, float x, float y, int align,
            bool visible, bool enabled);

    int GetType() const override { return SliderType; }
    bool OnButtonDown(int code) override;
    bool OnButtonUp(int code) override;
    bool OnChar(int c, int code) override;
    bool OnMouseMove() override;
    bool IsHot(bool covered) override { return TrackHot(covered); }
    void CalcRelBounds() override;
    void CalcRects() override;
    void Unbind() override;

    /// One step by a key that slides. @return whether `code` is one
    bool HandleSliding(int code);

    // Not owned. All of one type; a null pointer stops the slider.
    std::variant<float*, int*> m_Value;
    std::variant<const float*, const int*> m_Min, m_Max;
    cRect m_ThumbRect = cRect::Empty;

protected:
    bool FillDrawArgs(cTheme::DrawArgs* args) override;

private:
    struct Range {
        double Value, Min, Max; // holds floats and ints exactly
    };
    bool GetRange(Range* out) const; // false: one of the pointers is null
    void SetValue(const Range& range, double to);
    void SlideToMouse();
    bool Jump(int code);
    bool Hold(int code);

    std::variant<float, int> m_OldValue; // when the hand took hold
};

} // namespace trellis
