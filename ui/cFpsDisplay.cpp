#include "ui/cFpsDisplay.h"

#include "foundation/cTimer.h"
#include "render/cRender.h"
#include "ui/cWidgets.h"
#include "ui/cWnd.h"
#include "view/cViewer.h"

#include <algorithm>

namespace trellis {

namespace {

constexpr float SharePerSec = 4; // of the way to the measured number

cVec2 GetViewportLeftTop() {
    const cViewer* viewer = cRender::GetViewer();
    return (viewer ? viewer->Viewport : cRect(0, 0, 640, 480)).GetPoint(cRect::LeftTop);
}

} // namespace

cFpsDisplay::cFpsDisplay(int font, float x, float y) : m_Font(font), m_Pos(x, y) {
    if (m_Font == -1 && cRender::GetInstance()) {
        m_Font = cRender::GetFontID("Comic Sans MS BI24");
    }
}

void cFpsDisplay::OnRender() {
    const float measured = cTimer::GetFramesPerSecond();
    cStr text = "Paused";
    if (measured != 0) {
        const float share = m_Fps == 0 ? 1 : SharePerSec * cTimer::GetSystemFrameTimeSec(); // the first one at once
        m_Fps += (measured - m_Fps) * std::clamp(share, 0.0f, 1.0f);
        const int fps = cMath::TruncateToInt(m_Fps + 0.5f);
        text = cStr::Format("%s FPS", cStr::ToString(&fps).Text());
    }
    const cVec2 at = GetViewportLeftTop() + m_Pos;
    const cVec2 size = cRender::MeasureStringCells(m_Font, text).Size();
    m_Bounds = {at.x, at.y - size.y, at.x + size.x, at.y};
    cRender::DrawString(m_Font, text, at, cColor::White);
}

bool cFpsDisplay::IsHot(bool covered) {
    return !covered && (cWidgets::IsCaptured(this) || cWnd::IsInside(m_Bounds, cInput::GetMousePositionOrient()));
}

bool cFpsDisplay::OnButtonDown(int code) {
    if (cWidgets::IsCaptured(this)) {
        return true;
    }
    const cVec2 mouse = cInput::GetMousePositionOrient();
    if (code != cInput::LeftButton || !cWnd::IsInside(m_Bounds, mouse)) {
        return false;
    }
    m_Grab = m_Pos - mouse;
    cWidgets::SetCapture(this);
    return true;
}

bool cFpsDisplay::OnMouseMove() {
    const bool captured = cWidgets::IsCaptured(this);
    if (captured) {
        m_Pos = cInput::GetMousePositionOrient() + m_Grab;
    }
    return captured;
}

bool cFpsDisplay::OnButtonUp(int code) {
    const bool captured = cWidgets::IsCaptured(this);
    if (captured && code == cInput::LeftButton) {
        cWidgets::ReleaseCapture();
    }
    return captured;
}

} // namespace trellis
