// Shows the frame rate on the screen; the left button drags it.
#pragma once

#include "math/cRect.h"
#include "ui/cWidget.h"

namespace trellis {

class cFpsDisplay : public cWidget {
public:
    /// @param font  -1 for the display's own  @param x, y  its top left corner from that of the viewport, Y upward
    explicit cFpsDisplay(int font = -1, float x = 10, float y = -10);

    bool OnButtonDown(int code) override;
    bool OnButtonUp(int code) override;
    bool OnMouseMove() override;
    void OnRender() override;
    bool IsHot(bool covered) override;

private:
    int m_Font;
    cVec2 m_Pos;
    cVec2 m_Grab{0, 0};
    cRect m_Bounds = cRect::Empty;
    float m_Fps = 0; // shown; moves towards the measured one
};

} // namespace trellis
