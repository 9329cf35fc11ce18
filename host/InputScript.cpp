#include "host/InputScript.h"

#include "files/cIO.h"
#include "image/cImage.h"
#include "render/cRender.h"

#include <cmath>
#include <iterator>
#include <sstream>

namespace trellis {

namespace {

cInput::MouseState s_Mouse;
cInput::GamepadState s_Gamepad;
cInput::KeyboardState& Keys() {
    static cInput::KeyboardState s_Keys;
    return s_Keys;
}
cList<cInput::CharPress>& Chars() {
    static cList<cInput::CharPress> s_Chars;
    return s_Chars;
}

struct Verb {
    const char* Name;
    int Values; // numbers, at most 3
    bool HasText, HasCode;
};
constexpr Verb s_Verbs[] = {
    {"size", 2, false, false},  {"point", 0, true, false}, {"move", 2, false, false}, {"drag", 3, false, false},
    {"down", 0, true, true},    {"up", 0, true, true},     {"press", 0, true, true},  {"double", 0, false, false},
    {"wheel", 1, false, false}, {"type", 0, true, false},  {"save", 0, true, false},
};

} // namespace

InputScript::InputScript() {
    s_Mouse = {};
    s_Gamepad = {};
    Keys() = {};
    cInput::Samplers samplers;
    samplers.Mouse = [](cInput::MouseState* out) { *out = s_Mouse; };
    samplers.Keyboard = [](cInput::KeyboardState* out) { *out = Keys(); };
    samplers.Gamepad = [](cInput::GamepadState* out) { *out = s_Gamepad; };
    samplers.Chars = [](cList<cInput::CharPress>* out) { *out = Chars(); };
    cInput::SetSamplers(samplers);
}

InputScript::~InputScript() {
    cInput::SetSamplers({});
}

void InputScript::SetDown(int code, bool down) {
    if (cInput::IsKeyboardCode(code)) {
        Keys().IsDown[code] = down;
    } else if (cInput::IsGamepadCode(code)) {
        s_Gamepad.IsDown[code - cInput::DpadUp] = down;
    } else {
        s_Mouse.IsDown[code - cInput::LeftButton] = down;
    }
}

std::function<bool(const std::string&)> InputScript::SaverTo(const std::string& folder) {
    return [folder](const std::string& name) {
        cImage picture;
        cRender::ScreenShot(&picture);
        return cIO::SaveImage((folder + "/" + name + ".bmp").c_str(), picture);
    };
}

bool InputScript::Load(const char* pathName, std::string* error) {
    std::ifstream file(pathName, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file) {
        *error = std::string("cannot read ") + pathName;
        return false;
    }
    return Parse(text, error);
}

bool InputScript::Parse(const std::string& text, std::string* error) {
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); number++) {
        const auto fail = [&](const char* what) {
            *error = "line " + std::to_string(number) + ": " + what;
            return false;
        };
        std::istringstream words(line.substr(0, line.find('#')));
        Event event{number, 0, {}, {}, {}, -1};
        if (!(words >> std::ws) || words.peek() == EOF) {
            continue;
        }
        if (!(words >> event.Frame >> event.Verb) || event.Frame < 0) {
            return fail("not a frame and an event");
        }
        if (!m_Events.empty() && event.Frame < m_Events.back().Frame) {
            return fail("the frames go back");
        }
        const Verb* verb = nullptr;
        for (const Verb& v : s_Verbs) {
            verb = event.Verb == v.Name ? &v : verb;
        }
        if (!verb) {
            return fail("no such event");
        }
        for (int i = 0; i < verb->Values; i++) {
            if (!(words >> event.Values[i])) {
                return fail("a number is missing");
            }
        }
        if (verb->HasText) {
            std::getline(words >> std::ws, event.Text);
            event.Text.erase(event.Text.find_last_not_of(" \t\r") + 1);
            if (event.Text.empty()) {
                return fail("a name is missing");
            }
        }
        if (verb->HasCode) {
            event.Code = cInput::ToCode(event.Text.c_str());
            if (event.Code == -1) {
                return fail("no such code");
            }
        }
        m_Events.push_back(event);
    }
    return true;
}

bool InputScript::Trace(const char* pathName, std::string* error) {
    m_Trace.open(pathName);
    if (!m_Trace) {
        *error = std::string("cannot write ") + pathName;
        return false;
    }
    return true;
}

bool InputScript::Play(const Listener& listener, const std::function<void()>& frame, std::string* error) {
    error->clear();
    while (Next(listener, error)) {
        frame();
        cInput::FreeEvents();
    }
    return error->empty();
}

bool InputScript::IsOver() const {
    return m_Next == m_Events.size() && m_StepsLeft == 0 && m_ToType.empty() && m_ToRelease.empty();
}

bool InputScript::Next(const Listener& listener, std::string* error) {
    for (const Event* save : std::exchange(m_Saves, {})) {
        if (!listener.Save(save->Text)) {
            *error = "line " + std::to_string(save->Line) + ": cannot save " + save->Text;
            return false;
        }
    }
    if (IsOver()) {
        return false;
    }
    Chars().Clear();
    s_Mouse.Wheel = 0;
    s_Mouse.DoubleClick = false;
    for (int code : std::exchange(m_ToRelease, {})) {
        SetDown(code, false);
    }
    for (; m_Next < m_Events.size() && m_Events[m_Next].Frame <= m_Frame; m_Next++) {
        if (!Apply(m_Events[m_Next], listener, error)) {
            return false;
        }
    }
    if (m_StepsLeft > 0) {
        s_Mouse.Position += m_Step;
        m_StepsLeft--;
    }
    if (!m_ToType.empty()) {
        Chars().Add({static_cast<unsigned char>(m_ToType[0]), -1});
        m_ToType.erase(0, 1);
    }
    m_Frame++;
    cInput::Acquire();
    return true;
}

bool InputScript::Apply(const Event& e, const Listener& listener, std::string* error) {
    const bool isPlace = e.Verb == "point" || e.Verb == "move";
    if (e.Verb == "size") {
        listener.Size(int(e.Values[0]), int(e.Values[1]));
    } else if (e.Verb == "point") {
        if (!listener.Find(e.Text, &s_Mouse.Position)) {
            *error = "line " + std::to_string(e.Line) + ": nothing is called " + e.Text;
            return false;
        }
        s_Mouse.Position = {std::floor(s_Mouse.Position.x), std::floor(s_Mouse.Position.y)}; // as of a mouse
    } else if (e.Verb == "move") {
        s_Mouse.Position = {e.Values[0], e.Values[1]};
    } else if (e.Verb == "drag") {
        m_StepsLeft = std::max(1, int(e.Values[2]));
        m_Step = cVec2(e.Values[0], e.Values[1]) * (1.0f / float(m_StepsLeft));
    } else if (e.Verb == "wheel") {
        s_Mouse.Wheel = int(e.Values[0]);
    } else if (e.Verb == "type") {
        m_ToType += e.Text;
    } else if (e.Verb == "save") {
        m_Saves.push_back(&e);
    } else {
        const int code = e.Verb == "double" ? int(cInput::LeftButton) : e.Code;
        s_Mouse.DoubleClick = s_Mouse.DoubleClick || e.Verb == "double";
        SetDown(code, e.Verb != "up");
        if (e.Verb == "press" || e.Verb == "double") {
            m_ToRelease.push_back(code);
        }
    }
    if (m_Trace.is_open()) {
        m_Trace << m_Frame << ' ' << (isPlace ? "move" : e.Verb);
        if (isPlace) {
            m_Trace << ' ' << s_Mouse.Position.x << ' ' << s_Mouse.Position.y;
        } else if (!e.Text.empty()) {
            m_Trace << ' ' << e.Text;
        } else {
            m_Trace << ' ' << e.Values[0] << ' ' << e.Values[1] << ' ' << e.Values[2];
        }
        m_Trace << '\n';
    }
    return true;
}

} // namespace trellis
