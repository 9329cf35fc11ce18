#include "host/HostWindow.h"

#include <algorithm>
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
        s_Window->EndSample();
    };
    samplers.SetCursor = [](cInput::Cursor::Enum cursor) { s_Window->SetCursor(cursor); };
    cInput::SetSamplers(samplers);
}

HostWindow::~HostWindow() {
    cInput::SetSamplers({});
    s_Window = nullptr;
}

void HostWindow::AddTo(cIO::Host* host) {
    host->SetClipboardText = [](const char* text) { return s_Window && s_Window->SetClipboardText(text); };
    host->GetClipboardText = [](cStr* text) { return s_Window && s_Window->GetClipboardText(text); };
}

bool* HostWindow::Flag(int code) {
    if (code >= 0 && cInput::IsKeyboardCode(code)) {
        return &m_Keys.IsDown[code];
    }
    return cInput::IsMouseButtonCode(code) ? &m_Mouse.IsDown[code - cInput::LeftButton] : nullptr;
}

// ---- In their order

void HostWindow::Take(const Input& input) {
    m_HasChanged = true;
    if (m_Waiting.empty() && Fits(input)) {
        Apply(input);
    } else {
        m_Waiting.push_back(input);
    }
}

bool HostWindow::Fits(const Input& input) {
    switch (input.What) {
    case Input::Button:
    case Input::Click:
        return m_Changed.IndexOf(input.Code) == -1;
    case Input::Pointer:
        return std::none_of(m_Changed.begin(), m_Changed.end(), cInput::IsMouseButtonCode);
    default:
        return true;
    }
}

void HostWindow::Apply(const Input& input) {
    constexpr unsigned MostMs = 400;
    constexpr float Reach = 4;
    switch (input.What) {
    case Input::Click: {
        const cVec2 way = m_Mouse.Position - m_ClickAt;
        const unsigned timeMs = unsigned(input.Value);
        const bool isSecond = input.Code == cInput::LeftButton && m_ClickCode == input.Code &&
                              timeMs - m_ClickTimeMs <= MostMs && std::fabs(way.x) <= Reach &&
                              std::fabs(way.y) <= Reach;
        m_Mouse.DoubleClick = m_Mouse.DoubleClick || isSecond;
        m_ClickCode = isSecond ? -1 : input.Code; // a third one begins anew
        m_ClickTimeMs = timeMs;
        m_ClickAt = m_Mouse.Position;
        *Flag(input.Code) = true;
        m_Changed.Add(input.Code);
        break;
    }
    case Input::Button:
        if (*Flag(input.Code) != bool(input.Value)) {
            *Flag(input.Code) = input.Value;
            m_Changed.Add(input.Code);
        }
        break;
    case Input::Char:
        m_Chars.Add({input.Value, input.Code});
        break;
    case Input::Pointer:
        m_Mouse.Position = input.Position;
        break;
    case Input::Wheel:
        m_Mouse.Wheel += input.Code;
        break;
    }
}

/// The mouse is sampled last.
void HostWindow::EndSample() {
    m_Mouse.Wheel = 0;
    m_Mouse.DoubleClick = false;
    m_Changed.Clear();
    for (; !m_Waiting.empty() && Fits(m_Waiting.front()); m_Waiting.pop_front()) {
        Apply(m_Waiting.front());
        m_HasChanged = true;
    }
}

void HostWindow::OnButton(int code, bool isDown) {
    if (Flag(code)) {
        Take({Input::Button, code, isDown, {}});
    }
}

void HostWindow::OnClick(int code, unsigned timeMs) {
    if (Flag(code)) {
        Take({Input::Click, code, int(timeMs), {}});
    }
}

void HostWindow::OnChar(int utf32, int code) {
    Take({Input::Char, code, utf32, {}});
}

void HostWindow::OnPointer(float x, float y) {
    Take({Input::Pointer, 0, 0, {x, y}});
}

void HostWindow::OnWheel(int notches) {
    Take({Input::Wheel, notches, 0, {}});
}

void HostWindow::OnFocusLost() {
    for (int code = 0; code < cInput::DpadUp; code++) {
        if (bool* flag = Flag(code)) {
            *flag = false;
        }
    }
    m_Waiting.clear();
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
