// All user input: keyboard, mouse, gamepad, touch and tablet, as one list of events and one number space of codes.
//
//     a frame:  cInput::Acquire()  ->  cWidgets::HandleInputEvents()  ->  cInput::FreeEvents()
//
// Positions are pixels of the window, Y upward. The devices themselves are sampled by the host; see `Samplers`.
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"
#include "math/cVec2.h"

#include <cstddef>

namespace trellis {

class cGestureType {
public:
    enum Enum : int { None, Pan, Pinch, Rotate, Swipe };
};

/// Belongs to the main thread. Codes out of range have no name and are never down.
class cInput {
public:
    // clang-format off
    enum Code : int {
        Esc, F1, F2, F3, F4, F5, F6, F7, F8, F9, F10, F11, F12,
        Key0, Key1, Key2, Key3, Key4, Key5, Key6, Key7, Key8, Key9, Minus, Equals,
        BackSpace, Tab, CapsLock, Insert, Delete, Home, End, PageUp, PageDown, Up, Down, Left, Right,
        BackSlash, Enter, LeftBracket, RightBracket, Semicolon, Quote, Comma, Period, Slash,
        Shift, Control, Alt, Space, Tilde,
        A, B, C, D, E, F, G, H, I, J, K, L, M, N, O, P, Q, R, S, T, U, V, W, X, Y, Z,
        NumPad0, NumPad1, NumPad2, NumPad3, NumPad4, NumPad5, NumPad6, NumPad7, NumPad8, NumPad9,
        Add, Subtract, Multiply, Divide, Decimal,
        LeftButton, RightButton, MiddleButton, WheelUp, WheelDown, XButton1, XButton2,
        DpadUp, DpadDown, DpadLeft, DpadRight, Start, Back,
        LeftThumb, LeftThumbUp, LeftThumbDown, LeftThumbLeft, LeftThumbRight,
        RightThumb, RightThumbUp, RightThumbDown, RightThumbLeft, RightThumbRight,
        LeftShoulder, RightShoulder, ButtonA, ButtonB, ButtonX, ButtonY, LeftTrigger, RightTrigger,
        CodeCount
    };
    // clang-format on
    static constexpr int KeyCount = LeftButton;
    static constexpr int GamepadCount = CodeCount - DpadUp;

    class Cursor {
    public:
        enum Enum : int { Default = -1, None, Arrow, Horizontal, Vertical, Diagonal, OtherDiagonal, Hand };
    };

    enum EventType : int { ButtonEvent = 1, MouseMoveEvent, CharEvent, TouchEvent, GestureEvent };
    enum GestureStage : int { GestureDown = 1, GestureMove, GestureUp };

    struct Event {
        int Type = 0; ///< An `EventType`.
        int Code = -1;
        bool Down = false;
        bool Repeat = false; ///< Made because a key stays down.
        cVec2 Position{0, 0};
        cVec2 Delta{0, 0};
        int Char = -1; ///< UTF-32, or -1 for a key or gamepad button that prints nothing.
        int Id = -1;   ///< Of the finger.
        float Pressure = 1;
        int Stage = 0; ///< A `GestureStage`.
        cGestureType::Enum Gesture = cGestureType::None;
        float Values[2] = {0, 0}; ///< Of a gesture: scale and angle.

        // The mouse moves every frame: freed events are kept for the next.
        static void* operator new(std::size_t bytes);
        static void operator delete(void* event);
    };

    struct KeyboardState {
        KeyboardState() { IsDown.Add(false, KeyCount); }
        cList<bool> IsDown; ///< By code.
    };

    /// Wheel and double click are what happened since the sample before.
    struct MouseState {
        cVec2 Position{0, 0};
        bool IsDown[XButton2 - LeftButton + 1] = {}; ///< From `LeftButton` on; the wheel's two are not looked at.
        int Wheel = 0;                               ///< Notches; positive is up.
        bool DoubleClick = false;
    };

    struct GamepadState {
        bool IsDown[GamepadCount] = {}; ///< From `DpadUp` on.
        cVec2 LeftThumb{0, 0}, RightThumb{0, 0};
        float LeftTrigger = 0, RightTrigger = 0;
    };

    /// What a key has typed. A key without an entry of its own prints nothing.
    struct CharPress {
        int Char;
        int Code; ///< -1 when it came from no key.
    };

    /// How the host reaches the devices. What is null is not there.
    struct Samplers {
        void (*Keyboard)(KeyboardState* out) = nullptr;
        void (*Chars)(cList<CharPress>* out) = nullptr; ///< Typed since the sample before, without repeats.
        void (*Mouse)(MouseState* out) = nullptr;
        void (*Gamepad)(GamepadState* out) = nullptr;
        void (*SetCursor)(Cursor::Enum cursor) = nullptr;
        void (*SetVibration)(float left, float right) = nullptr;
        void (*EnableEvents)(bool enabled) = nullptr;
    };
    static void SetSamplers(const Samplers& samplers);

    static void Init(); ///< Runs by itself.

    // ---- Events
    static void Acquire(); ///< Samples the devices; what has changed becomes events. Once a frame.
    static const cList<Event*>& GetEvents();
    static Event* GetEvent(); ///< Takes the first off the list; the caller deletes it. Null when there is none.
    static void FreeEvents();
    /// Takes over an event, except a button's with a code out of range, which is ignored and stays the caller's.
    static void AddEvent(Event* event, bool atFront = false);
    static void EnableEvents(bool enabled);
    /// Lets one finger act as the left button and the mouse; further fingers are ignored.
    static void SimulateMouseEventWithMultitouchEvent(const Event& e);

    // ---- State
    static bool IsDown(int code);
    static float GetDownTimeSec(int code); ///< Time of the last press; 0 for none.
    static bool IsKeyboardCode(int code) { return code < KeyCount; }
    static bool IsMouseButtonCode(int code) {
        return (code >= LeftButton && code <= MiddleButton) || code == XButton1 || code == XButton2;
    }
    static bool IsGamepadCode(int code) { return code >= DpadUp && code < CodeCount; }
    static int ToCode(const char* name); ///< Case does not count; -1 for what is none.
    static const cStr& ToString(int code);

    static const cVec2& GetMousePosition();
    static const cVec2& GetMousePositionAcquire(); ///< As it was sampled.
    static const cVec2& GetMousePositionOrient();  ///< Turned as the picture is.
    static const cVec2& GetMouseDelta();
    static int GetWheelDelta();
    static bool IsDoubleClick();
    /// Between the device's orientation and the picture's, by the flags that `cViewer::Update` obeys.
    static cVec2 GetPosOrient(const cVec2& p);
    static cVec2 GetPosUnorient(const cVec2& p);
    static cVec2 GetDeltaOrient(const cVec2& d);
    static void UpdateMousePosOrient();

    static const cVec2& GetLeftThumbPos();
    static const cVec2& GetRightThumbPos();
    static float GetLeftTriggerPos();
    static float GetRightTriggerPos();

    static bool GetMultitouchIsDown(int id);
    static cVec2 GetMultitouchPosition(int id); ///< (0, 0) for an unknown finger.
    static cVec2 GetMultitouchDelta(int id);
    static void GetMultitouchPositions(cList<cVec2>* out); ///< Of the fingers that are down.

    // ---- Output
    static void AcquireKeyboard(KeyboardState* out);
    static void SetCursor(Cursor::Enum cursor);
    static Cursor::Enum GetCursor();
    /// Adds to what the motors do. @param left, right  from 0 to 1
    static void AddVibration(float left, float right, float seconds);
    static void SetVibration(float left, float right);
    static void UpdateVibrations();
    static void StopVibrations();
};

/// The pen tablet, as a host last told.
struct cLinuxMain_Tablet {
    static inline bool PenPressed = false;
    static inline bool EraserUsed = false;
    static inline int CurPressure = 0;
    static inline cVec2 CurTilt{0, 0};
};

} // namespace trellis
