#include "ui/cSlider.h"

#include "ui/cWidgets.h"

#include <algorithm>
#include <cmath>

namespace trellis {

cSlider::cSlider(cWnd* parent, float* value, const float* min, const float* max, const char* text, float x, float y,
                 int align, bool visible, bool enabled)
    : cControl(parent, text, x, y, align, visible, enabled), m_Value(value), m_Min(min), m_Max(max) {
    m_TabStop = true;
}

cSlider::cSlider(cWnd* parent, int* value, const int* min, const int* max, const char* text, float x, float y,
                 int align, bool visible, bool enabled)
    : cControl(parent, text, x, y, align, visible, enabled), m_Value(value), m_Min(min), m_Max(max) {
    m_TabStop = true;
}

void cSlider::Unbind() {
    const auto clear = [](auto& pointer) { pointer = nullptr; };
    std::visit(clear, m_Value);
    std::visit(clear, m_Min);
    std::visit(clear, m_Max);
}

// ---- The value

bool cSlider::GetRange(Range* out) const {
    const auto read = [](const auto& pointer, double* number) {
        return std::visit([number](auto* p) { return p && (*number = double(*p), true); }, pointer);
    };
    return read(m_Value, &out->Value) && read(m_Min, &out->Min) && read(m_Max, &out->Max);
}

/// Brings `to` into the range. What is no number is not written.
void cSlider::SetValue(const Range& range, double to) {
    to = std::clamp(to, std::min(range.Min, range.Max), std::max(range.Min, range.Max));
    if (!std::isfinite(to)) {
        return;
    }
    if (int* const* value = std::get_if<int*>(&m_Value)) {
        **value = int(std::floor(to + 0.5)); // an int by its limits
    } else {
        *std::get<float*>(m_Value) = float(to);
    }
}

void cSlider::SlideToMouse() {
    const float half = m_Theme->SliderThumbWidth / 2, y = m_ValueRect.Center().y;
    const cSeg bar({m_ValueRect.x0 + half, y, 0}, {m_ValueRect.x1 - half, y, 0}); // the way of the thumb's middle
    Range range;
    if (m_ValueRect.Width() > 2 * half && !bar.IsZero() && GetRange(&range)) {
        const cVec2 mouse = cInput::GetMousePositionOrient();
        const float t = std::clamp(bar.ProjectPoint(cSeg::Line, {mouse.x, mouse.y, 0}), 0.0f, 1.0f);
        SetValue(range, range.Min + double(t) * (range.Max - range.Min));
    }
}

bool cSlider::HandleSliding(int code) {
    const int direction = StepOf(code);
    if (direction == 0) {
        return false;
    }
    Range range;
    if (GetRange(&range)) {
        double step = range.Max - range.Min;
        if (std::holds_alternative<int*>(m_Value)) {
            const double whole = std::trunc(step / std::max(m_Theme->SliderStepsInt, 1));
            step = whole != 0 ? whole : std::copysign(1.0, step);
        } else {
            step /= double(m_Theme->SliderSteps);
        }
        SetValue(range, range.Value + direction * step);
    }
    return true;
}

/// `Home` and `End`. @return whether `code` is one
bool cSlider::Jump(int code) {
    if (code != cInput::Home && code != cInput::End) {
        return false;
    }
    Range range;
    if (GetRange(&range)) {
        SetValue(range, code == cInput::Home ? range.Min : range.Max);
    }
    return true;
}

// ---- Layout

void cSlider::CalcRelBounds() {
    LayOut(m_Theme->SliderFont, m_Theme->SliderPadding, {m_Theme->SliderMinWidth, m_Theme->SliderHeight});
}

void cSlider::CalcRects() {
    cControl::CalcRects();
    m_ThumbRect = cRect::Empty;
    if (m_Bounds.IsEmpty()) {
        return;
    }
    if (m_PressCode == cInput::LeftButton && cWidgets::IsCaptured(this) && IsLive()) {
        SlideToMouse();
    }
    Range range;
    if (!GetRange(&range)) {
        return;
    }
    const double t = range.Min == range.Max ? 0 : (range.Value - range.Min) / (range.Max - range.Min);
    if (!std::isnan(t)) {
        const float width = m_Theme->SliderThumbWidth, way = std::max(m_ValueRect.Width() - width, 0.0f);
        const float x = m_ValueRect.x0 + std::floor(float(std::clamp(t, 0.0, 1.0)) * way + 0.5f);
        m_ThumbRect = {x, m_ValueRect.y0, x + width, m_ValueRect.y1};
    }
}

bool cSlider::FillDrawArgs(cTheme::DrawArgs* args) {
    args->Part = cTheme::Parts::Slider;
    args->ThumbRect = m_ThumbRect;
    return true;
}

// ---- Input

/// Takes hold, by the mouse or by a key. @return false: there is no capture to be had, or the slider is gone
bool cSlider::Hold(int code) {
    std::visit([this](auto* value) { m_OldValue = value ? *value : 0; }, m_Value);
    return Capture(code);
}

bool cSlider::OnButtonDown(int code) {
    if (!IsLive()) {
        return false;
    }
    if (cWidgets::IsCaptured(this)) {
        return true;
    }
    if (code == cInput::LeftButton || code == cInput::RightButton) {
        if (!IsMouseInside()) {
            return false;
        }
        const bool onBar = IsInside(m_ValueRect, cInput::GetMousePositionOrient()); // and not on the caption
        if (code == cInput::RightButton || !onBar || Hold(code)) {
            SetFocus(this);
        }
        return true;
    }
    return HasFocus(this) && Jump(code);
}

bool cSlider::OnChar(int, int code) {
    if (cWidgets::IsCaptured(this)) {
        if (code == m_PressCode && IsLive()) {
            HandleSliding(code);
        }
        return true;
    }
    if (!IsLive() || !HasFocus(this)) {
        return false;
    }
    if (StepOf(code) == 0) {
        return Jump(code);
    }
    if (Hold(code)) { // before the step: the message tells where it began
        HandleSliding(code);
    }
    return true;
}

bool cSlider::OnMouseMove() {
    return cWidgets::IsCaptured(this);
}

bool cSlider::OnButtonUp(int code) {
    if (!cWidgets::IsCaptured(this)) {
        return false;
    }
    if (code == m_PressCode) {
        m_PressCode = -1;
        cWidgets::ReleaseCapture();
        std::visit(
            [this](auto* value) {
                using T = std::remove_pointer_t<decltype(value)>;
                const T* old = std::get_if<T>(&m_OldValue);
                if (!value || !old) {
                    return;
                }
                const T former = *old;                                     // the slider may go while it is read
                const bool bothNaN = former != former && *value != *value; // NaN is another than itself
                if (*value != former && !bothNaN) {
                    Send(std::is_same_v<T, float> ? FloatSlid : IntSlid, &former, value);
                }
            },
            m_Value);
    }
    return true;
}

} // namespace trellis
