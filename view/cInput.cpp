#include "view/cInput.h"

#include "foundation/cImmortal.h"
#include "foundation/cMain.h"
#include "foundation/cTimer.h"
#include "math/cRect.h"
#include "render/cRender.h"
#include "ui/cTheme.h"
#include "view/cHomeButton.h"
#include "view/cViewer.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace trellis {

namespace {

// clang-format off
constexpr const char* s_Names[] = {
    "Esc", "F1", "F2", "F3", "F4", "F5", "F6", "F7", "F8", "F9", "F10", "F11", "F12",
    "0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "-", "=",
    "BackSpace", "Tab", "CapsLock", "Insert", "Delete", "Home", "End", "PageUp", "PageDown", "Up", "Down", "Left", "Right",
    "\\", "Enter", "[", "]", ";", "'", ",", ".", "/",
    "Shift", "Control", "Alt", "Space", "~",
    "A", "B", "C", "D", "E", "F", "G", "H", "I", "J", "K", "L", "M",
    "N", "O", "P", "Q", "R", "S", "T", "U", "V", "W", "X", "Y", "Z",
    "NumPad0", "NumPad1", "NumPad2", "NumPad3", "NumPad4", "NumPad5", "NumPad6", "NumPad7", "NumPad8", "NumPad9",
    "Add", "Subtract", "Multiply", "Divide", "Decimal",
    "LeftButton", "RightButton", "MiddleButton", "WheelUp", "WheelDown", "XButton1", "XButton2",
    "DpadUp", "DpadDown", "DpadLeft", "DpadRight", "Start", "Back",
    "LeftThumb", "LeftThumbUp", "LeftThumbDown", "LeftThumbLeft", "LeftThumbRight",
    "RightThumb", "RightThumbUp", "RightThumbDown", "RightThumbLeft", "RightThumbRight",
    "LeftShoulder", "RightShoulder", "(A)", "(B)", "(X)", "(Y)", "LeftTrigger", "RightTrigger",
};
// clang-format on
static_assert(std::size(s_Names) == cInput::CodeCount);

struct cInput_Touch_t {
    int Id;
    bool IsDown;
    cVec2 Position, Delta;
};

struct cInput_VIBRATION {
    float Left, Right;
    float EndTimeSec;
};

/// Everything that the module knows.
struct State {
    bool cInput_Inited = false;
    cList<cStr> cInput_Strs;
    cList<float> cInput_DownTimeSec; // by code
    cList<cInput::Event*> cInput_Events;
    int EventsTaken = 0; // off its head; they go when the list is looked at, so that draining it is no quadratic work

    cInput::KeyboardState cInput_KeyboardState;
    cInput::MouseState cInput_MouseState;
    cInput::GamepadState cInput_GamepadState;
    cVec2 cInput_MousePos{0, 0}, cInput_MousePosAcquire{0, 0}, cInput_MousePosOrient{0, 0}, cInput_MouseDelta{0, 0};
    int cInput_WheelDelta = 0;
    bool cInput_DoubleClick = false;

    cList<cInput::CharPress> cInput_Chars; // typed in this frame
    cInput::CharPress Repeating{-1, -1};   // by the key that was pressed last, while it is down
    float cInput_CharsStartRepeatTimeSec = 0;
    float cInput_GamepadStartRepeatTimeSec[cInput::GamepadCount] = {};

    cList<void*> SpareEvents;
    cList<cInput_Touch_t> cInput_Touches;
    cList<cInput_VIBRATION> cInput_Vibrations;
    float cInput_LeftMotorSpeed = 0, cInput_RightMotorSpeed = 0;
    cInput::Cursor::Enum Cursor = cInput::Cursor::Default;
    cInput::Samplers Samplers;
};

State& Get() {
    static cImmortal<State> s_State; // the clock stops vibrations at any time
    if (!s_State.Value.cInput_Inited) {
        State& state = s_State.Value;
        state.cInput_Inited = true;
        for (const char* name : s_Names) {
            state.cInput_Strs.Add(name);
        }
        state.cInput_DownTimeSec.SetCount(cInput::CodeCount);
    }
    return s_State.Value;
}

bool IsCode(int code) {
    return code >= 0 && code < cInput::CodeCount;
}

cInput::Event* NewEvent(cInput::EventType type, int code, const cVec2& position) {
    auto* event = new cInput::Event;
    event->Type = type;
    event->Code = code;
    event->Position = position;
    return event;
}

void AddButton(int code, bool down) {
    cInput::Event* event = NewEvent(cInput::ButtonEvent, code, Get().cInput_MousePos);
    event->Down = down;
    cInput::AddEvent(event);
}

void AddChar(const cInput::CharPress& press, bool repeat = false) {
    cInput::Event* event = NewEvent(cInput::CharEvent, press.Code, Get().cInput_MousePos);
    event->Char = press.Char;
    event->Down = true;
    event->Repeat = repeat;
    cInput::AddEvent(event);
}

/// Whether a repetition is due. The first comes after a delay, the others at a rate; after a stall there is one, not
/// all that were missed.
bool IsDue(float* nextTimeSec, float delaySec, float rateSec) {
    const float now = cTimer::GetSystemTimeSec();
    *nextTimeSec = std::min(*nextTimeSec, now + std::max(delaySec, rateSec)); // the clock may have been reset
    if (now < *nextTimeSec) {
        return false;
    }
    *nextTimeSec += rateSec;
    if (*nextTimeSec <= now) {
        *nextTimeSec = now + rateSec;
    }
    return true;
}

/// Button events of a device for what has changed. @param first  code of the first button
void AddChanges(const bool* now, const bool* before, int count, int first) {
    for (int i = 0; i < count; i++) {
        if (now[i] != before[i]) {
            AddButton(first + i, now[i]);
        }
    }
}

/// What was typed in this frame: the host's characters, and the keys that print nothing.
void AddChars(State& s, const cList<bool>& before) {
    const cList<bool>& now = s.cInput_KeyboardState.IsDown;
    for (int code = 0; code < cInput::KeyCount; code++) {
        const auto typed = std::find_if(s.cInput_Chars.begin(), s.cInput_Chars.end(),
                                        [code](const cInput::CharPress& c) { return c.Code == code; });
        if (now[code] && !before[code] && typed == s.cInput_Chars.end()) {
            s.cInput_Chars.Add({-1, code});
        }
    }
    for (const cInput::CharPress& press : s.cInput_Chars) {
        AddChar(press);
        if (cInput::IsDown(press.Code)) { // not one that was let go between two samples
            s.Repeating = press;
            s.cInput_CharsStartRepeatTimeSec = cTimer::GetSystemTimeSec() + cTheme::CharRepeatDelaySec;
        }
    }
}

void AddRepeats(State& s, const cInput::GamepadState& before) {
    if (!cInput::IsDown(s.Repeating.Code)) {
        s.Repeating = {-1, -1};
    } else if (IsDue(&s.cInput_CharsStartRepeatTimeSec, cTheme::CharRepeatDelaySec, cTheme::CharRepeatRateSec)) {
        AddChar(s.Repeating, true);
    }
    for (int i = 0; i < cInput::GamepadCount; i++) {
        const bool down = s.cInput_GamepadState.IsDown[i];
        float* next = &s.cInput_GamepadStartRepeatTimeSec[i];
        if (down && !before.IsDown[i]) {
            AddChar({-1, cInput::DpadUp + i}); // like a key that prints nothing
        }
        if (down != before.IsDown[i]) {
            *next = cTimer::GetSystemTimeSec() + cTheme::GamepadRepeatDelaySec;
        } else if (down && IsDue(next, cTheme::GamepadRepeatDelaySec, cTheme::GamepadRepeatRateSec)) {
            AddChar({-1, cInput::DpadUp + i}, true); // and no press, which would begin what the first one has ended
        }
    }
}

void UpdateTouches(const cInput::Event& e) {
    cList<cInput_Touch_t>& touches = Get().cInput_Touches;
    const auto at =
        std::find_if(touches.begin(), touches.end(), [&e](const cInput_Touch_t& t) { return t.Id == e.Id; });
    cInput_Touch_t& touch = at != touches.end() ? *at : touches[touches.Add({e.Id, false, e.Position, e.Delta})];
    touch = {e.Id, e.Down, e.Position, e.Delta};
    if (!e.Down) { // fingers come with ever new numbers
        touches.RemoveAt(int(&touch - touches.Data()));
    }
}

const cInput_Touch_t* FindTouch(int id) {
    for (const cInput_Touch_t& touch : Get().cInput_Touches) {
        if (touch.Id == id) {
            return &touch;
        }
    }
    return nullptr;
}

/// Quarter turns from the device to the picture: 1 counterclockwise, -1 clockwise.
int Turn() {
    return cHomeButton::IsOnTheRight() ? 1 : cHomeButton::IsOnTheLeft() ? -1 : 0;
}

cVec2 DeviceSize() {
    const cViewer* viewer = cRender::GetViewer();
    return viewer ? viewer->Viewport.Size() : cVec2(640, 480);
}

} // namespace

void cInput::SetSamplers(const Samplers& samplers) {
    Get().Samplers = samplers;
}

void cInput::Init() {
    Get();
}

// ---- Events

void cInput::Acquire() {
    static cImmortal<KeyboardState> s_Keys;
    State& s = Get();
    UpdateVibrations();
    KeyboardState& keys = s_Keys.Value; // of the frame before
    const MouseState mouse = s.cInput_MouseState;
    const GamepadState gamepad = s.cInput_GamepadState;

    AcquireKeyboard(&s.cInput_KeyboardState);
    s.cInput_Chars.Clear();
    if (s.Samplers.Chars) {
        s.Samplers.Chars(&s.cInput_Chars);
    }
    s.cInput_MouseState = MouseState();
    s.cInput_MouseState.Position = mouse.Position; // stays where it was without a mouse
    if (s.Samplers.Mouse) {
        s.Samplers.Mouse(&s.cInput_MouseState);
    }
    s.cInput_GamepadState = GamepadState();
    if (s.Samplers.Gamepad) {
        s.Samplers.Gamepad(&s.cInput_GamepadState);
    }
    const MouseState& now = s.cInput_MouseState;
    s.cInput_MousePos = s.cInput_MousePosAcquire = now.Position;
    UpdateMousePosOrient();
    s.cInput_WheelDelta = now.Wheel;
    s.cInput_DoubleClick = now.DoubleClick;

    AddChanges(s.cInput_KeyboardState.IsDown.Data(), keys.IsDown.Data(), KeyCount, 0);
    AddChanges(now.IsDown, mouse.IsDown, WheelUp - LeftButton, LeftButton);
    if (now.Wheel != 0) { // a notch is pressed and never released
        AddButton(now.Wheel > 0 ? WheelUp : WheelDown, true);
    }
    constexpr int firstX = XButton1 - LeftButton;
    AddChanges(now.IsDown + firstX, mouse.IsDown + firstX, 2, XButton1);
    AddChanges(s.cInput_GamepadState.IsDown, gamepad.IsDown, GamepadCount, DpadUp);
    AddChars(s, keys.IsDown);
    AddRepeats(s, gamepad);
    keys.IsDown = s.cInput_KeyboardState.IsDown;

    s.cInput_MouseDelta = now.Position - mouse.Position;
    if (s.cInput_MouseDelta != cVec2(0, 0)) {
        Event* move = NewEvent(MouseMoveEvent, -1, now.Position);
        move->Delta = s.cInput_MouseDelta;
        AddEvent(move);
    }
}

const cList<cInput::Event*>& cInput::GetEvents() {
    State& s = Get();
    s.cInput_Events.RemoveAt(0, std::exchange(s.EventsTaken, 0));
    return s.cInput_Events;
}

cInput::Event* cInput::GetEvent() {
    State& s = Get();
    if (s.EventsTaken == s.cInput_Events.Count()) {
        return nullptr;
    }
    Event* first = s.cInput_Events[s.EventsTaken++];
    if (s.EventsTaken == s.cInput_Events.Count()) {
        s.cInput_Events.Clear();
        s.EventsTaken = 0;
    }
    return first;
}

void* cInput::Event::operator new(std::size_t bytes) {
    cList<void*>& spare = Get().SpareEvents;
    if (spare.IsEmpty()) {
        return ::operator new(bytes);
    }
    void* event = spare[spare.Count() - 1];
    spare.SetCount(spare.Count() - 1);
    return event;
}

void cInput::Event::operator delete(void* event) {
    constexpr int Most = 64;
    cList<void*>& spare = Get().SpareEvents;
    if (event && spare.Count() < Most) {
        spare.Add(event);
    } else {
        ::operator delete(event);
    }
}

void cInput::FreeEvents() {
    for (Event* event : GetEvents()) {
        delete event;
    }
    Get().cInput_Events.Clear();
}

void cInput::AddEvent(Event* event, bool atFront) {
    State& s = Get();
    if (!event || (event->Type == ButtonEvent && !IsCode(event->Code))) {
        return;
    }
    if (atFront && s.EventsTaken > 0) {
        s.cInput_Events[--s.EventsTaken] = event;
    } else {
        s.cInput_Events.Insert(atFront ? 0 : s.cInput_Events.Count(), event);
    }
    if (event->Type == ButtonEvent && event->Down) {
        s.cInput_DownTimeSec[event->Code] = cTimer::GetTimeSec();
    } else if (event->Type == TouchEvent) {
        UpdateTouches(*event);
    }
}

void cInput::EnableEvents(bool enabled) {
    if (Get().Samplers.EnableEvents) {
        Get().Samplers.EnableEvents(enabled);
    }
}

void cInput::SimulateMouseEventWithMultitouchEvent(const Event& e) {
    static int s_Followed = -1;
    constexpr float Still = 0.001f;
    if (s_Followed == -1) {
        if (e.Down && e.Id >= 0) {
            s_Followed = e.Id;
            Event* press = NewEvent(ButtonEvent, LeftButton, e.Position);
            press->Down = true;
            AddEvent(press);
        }
    } else if (e.Id != s_Followed) {
        return;
    } else if (!e.Down) {
        s_Followed = -1;
        AddEvent(NewEvent(ButtonEvent, LeftButton, e.Position));
    } else if (std::fabs(e.Delta.x) > Still || std::fabs(e.Delta.y) > Still) {
        Event* move = NewEvent(MouseMoveEvent, -1, e.Position);
        move->Delta = e.Delta;
        AddEvent(move);
    }
}

// ---- State

bool cInput::IsDown(int code) {
    const State& s = Get();
    if (!IsCode(code)) {
        return false;
    }
    if (IsKeyboardCode(code)) {
        return s.cInput_KeyboardState.IsDown[code];
    }
    if (IsGamepadCode(code)) {
        return s.cInput_GamepadState.IsDown[code - DpadUp];
    }
    return IsMouseButtonCode(code) && s.cInput_MouseState.IsDown[code - LeftButton];
}

float cInput::GetDownTimeSec(int code) {
    return IsCode(code) ? Get().cInput_DownTimeSec[code] : 0;
}

int cInput::ToCode(const char* name) {
    const cList<cStr>& names = Get().cInput_Strs;
    for (int i = 0; name && i < names.Count(); i++) {
        if (cStr::CompareNoCase(names[i], name) == 0) {
            return i;
        }
    }
    return -1;
}

const cStr& cInput::ToString(int code) {
    return IsCode(code) ? Get().cInput_Strs[code] : cStr::Empty;
}

const cVec2& cInput::GetMousePosition() {
    return Get().cInput_MousePos;
}

const cVec2& cInput::GetMousePositionAcquire() {
    return Get().cInput_MousePosAcquire;
}

const cVec2& cInput::GetMousePositionOrient() {
    return Get().cInput_MousePosOrient;
}

const cVec2& cInput::GetMouseDelta() {
    return Get().cInput_MouseDelta;
}

int cInput::GetWheelDelta() {
    return Get().cInput_WheelDelta;
}

bool cInput::IsDoubleClick() {
    return Get().cInput_DoubleClick;
}

cVec2 cInput::GetPosOrient(const cVec2& p) {
    const cVec2 size = DeviceSize();
    switch (Turn()) {
    case 1:
        return {size.y - p.y, p.x};
    case -1:
        return {p.y, size.x - p.x};
    }
    return p;
}

cVec2 cInput::GetPosUnorient(const cVec2& p) {
    const cVec2 size = DeviceSize();
    switch (Turn()) {
    case 1:
        return {p.y, size.y - p.x};
    case -1:
        return {size.x - p.y, p.x};
    }
    return p;
}

cVec2 cInput::GetDeltaOrient(const cVec2& d) {
    const float turn = float(Turn());
    return turn == 0 ? d : cVec2(-turn * d.y, turn * d.x);
}

void cInput::UpdateMousePosOrient() {
    Get().cInput_MousePosOrient = GetPosOrient(Get().cInput_MousePos);
}

const cVec2& cInput::GetLeftThumbPos() {
    return Get().cInput_GamepadState.LeftThumb;
}

const cVec2& cInput::GetRightThumbPos() {
    return Get().cInput_GamepadState.RightThumb;
}

float cInput::GetLeftTriggerPos() {
    return Get().cInput_GamepadState.LeftTrigger;
}

float cInput::GetRightTriggerPos() {
    return Get().cInput_GamepadState.RightTrigger;
}

bool cInput::GetMultitouchIsDown(int id) {
    const cInput_Touch_t* touch = FindTouch(id);
    return touch && touch->IsDown;
}

cVec2 cInput::GetMultitouchPosition(int id) {
    const cInput_Touch_t* touch = FindTouch(id);
    return touch ? touch->Position : cVec2(0, 0);
}

cVec2 cInput::GetMultitouchDelta(int id) {
    const cInput_Touch_t* touch = FindTouch(id);
    return touch ? touch->Delta : cVec2(0, 0);
}

void cInput::GetMultitouchPositions(cList<cVec2>* out) {
    out->Clear();
    for (const cInput_Touch_t& touch : Get().cInput_Touches) {
        out->Add(touch.Position);
    }
}

// ---- Output

void cInput::AcquireKeyboard(KeyboardState* out) {
    out->IsDown.SetCount(KeyCount);
    std::fill(out->IsDown.begin(), out->IsDown.end(), false);
    if (Get().Samplers.Keyboard) {
        Get().Samplers.Keyboard(out);
        out->IsDown.SetCount(KeyCount);
    }
}

void cInput::SetCursor(Cursor::Enum cursor) {
    Get().Cursor = cursor;
    if (Get().Samplers.SetCursor) {
        Get().Samplers.SetCursor(cursor);
    }
}

cInput::Cursor::Enum cInput::GetCursor() {
    return Get().Cursor;
}

void cInput::AddVibration(float left, float right, float seconds) {
    Get().cInput_Vibrations.Add({left, right, cTimer::GetTimeSec() + seconds});
}

void cInput::SetVibration(float left, float right) {
    Get().cInput_LeftMotorSpeed = left;
    Get().cInput_RightMotorSpeed = right;
    if (Get().Samplers.SetVibration) {
        Get().Samplers.SetVibration(left, right);
    }
}

void cInput::UpdateVibrations() {
    State& s = Get();
    const float now = cTimer::GetTimeSec();
    float left = 0, right = 0;
    for (int i = s.cInput_Vibrations.Count() - 1; i >= 0; i--) {
        const cInput_VIBRATION vibration = s.cInput_Vibrations[i];
        if (vibration.EndTimeSec <= now) {
            s.cInput_Vibrations.RemoveAt(i);
        } else {
            left += vibration.Left;
            right += vibration.Right;
        }
    }
    left = std::min(left, 1.0f);
    right = std::min(right, 1.0f);
    if (left != s.cInput_LeftMotorSpeed || right != s.cInput_RightMotorSpeed) {
        SetVibration(left, right);
    }
}

void cInput::StopVibrations() {
    Get().cInput_Vibrations.Clear();
    SetVibration(0, 0);
}

void cMain_GetTabletState(int* pressure, bool* penPressed, bool* eraserUsed, int* last) {
    if (pressure) {
        *pressure = cLinuxMain_Tablet::CurPressure;
    }
    if (penPressed) {
        *penPressed = cLinuxMain_Tablet::PenPressed;
    }
    if (eraserUsed) {
        *eraserUsed = cLinuxMain_Tablet::EraserUsed;
    }
    if (last) {
        *last = -1;
    }
}

} // namespace trellis
