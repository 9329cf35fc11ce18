#include "host/HostWindow.h"

#include "files/cIO.h"

#include <cmath>

namespace trellis {

HostWindow* HostWindow::s_Window = nullptr;

HostWindow::HostWindow() {
    s_Window = this;
    cInput::Samplers samplers;
    samplers.Keyboard = [](cInput::KeyboardState* out) { *out = s_Window->m_Keys; };
    samplers.Chars = [](cList<cInput::CharPress>* out) {
        *out = s_Window->m_Chars;
        s_Window->m_Chars.Clear();
    };
    samplers.Mouse = [](cInput::MouseState* out) {
        *out = s_Window->m_Mouse;
        s_Window->Sample();
    };
    samplers.SetCursor = [](cInput::Cursor::Enum cursor) { s_Window->SetCursor(cursor); };
    cInput::SetSamplers(samplers);
    cIO::Host host;
    host.SetClipboardText = [](const char* text) { return s_Window->SetClipboardText(text); };
    host.GetClipboardText = [](cStr* text) { return s_Window->GetClipboardText(text); };
    cIO::SetHost(host);
}

HostWindow::~HostWindow() {
    cInput::SetSamplers({});
    cIO::SetHost({});
    s_Window = nullptr;
}

/// The keyboard is sampled ahead of the mouse: what went down and up meanwhile has been seen as down.
void HostWindow::Sample() {
    m_Mouse.Wheel = 0;
    m_Mouse.DoubleClick = false;
    for (const int code : m_Released) {
        *Flag(code) = false;
        m_HasChanged = true;
    }
    m_Released.Clear();
    m_Pressed.Clear();
}

bool* HostWindow::Flag(int code) {
    if (code >= 0 && cInput::IsKeyboardCode(code)) {
        return &m_Keys.IsDown[code];
    }
    return cInput::IsMouseButtonCode(code) ? &m_Mouse.IsDown[code - cInput::LeftButton] : nullptr;
}

void HostWindow::OnButton(int code, bool isDown) {
    bool* flag = Flag(code);
    if (!flag || *flag == isDown) {
        return;
    }
    m_HasChanged = true;
    if (isDown) {
        *flag = true;
        m_Pressed.Add(code);
    } else if (m_Pressed.IndexOf(code) == -1) {
        *flag = false;
    } else {
        m_Released.Add(code);
    }
}

void HostWindow::OnClick(int code, unsigned timeMs) {
    constexpr unsigned MostMs = 400;
    constexpr float Reach = 4;
    const cVec2 way = m_Mouse.Position - m_ClickAt;
    const bool isSecond = code == cInput::LeftButton && m_ClickCode == code && timeMs - m_ClickTimeMs <= MostMs &&
                          std::fabs(way.x) <= Reach && std::fabs(way.y) <= Reach;
    m_Mouse.DoubleClick = m_Mouse.DoubleClick || isSecond;
    m_ClickCode = isSecond ? -1 : code; // a third one begins anew
    m_ClickTimeMs = timeMs;
    m_ClickAt = m_Mouse.Position;
    OnButton(code, true);
}

void HostWindow::OnChar(int utf32, int code) {
    m_Chars.Add({utf32, code});
    m_HasChanged = true;
}

void HostWindow::OnPointer(float x, float y) {
    m_Mouse.Position = {x, y};
    m_HasChanged = true;
}

void HostWindow::OnWheel(int notches) {
    m_Mouse.Wheel += notches;
    m_HasChanged = true;
}

void HostWindow::OnFocusLost() {
    for (int code = 0; code < cInput::DpadUp; code++) {
        if (bool* flag = Flag(code)) {
            *flag = false;
        }
    }
    m_Pressed.Clear();
    m_Released.Clear();
    m_HasChanged = true;
}

void HostWindow::OnSize(int width, int height) {
    m_HasChanged = m_HasChanged || width != m_Width || height != m_Height;
    m_Width = width;
    m_Height = height;
}

void HostWindow::OnFailure(const char* sentence) {
    m_Failure = sentence;
    OnClose();
}

} // namespace trellis
