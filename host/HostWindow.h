// The one window of a program, and the person in front of it: keys, pointer, wheel, focus, clipboard, cursors.
//
// Everything that a platform has of its own stands behind this class; the one there is, is in HostWindow_X11.cpp.
#pragma once

#include "files/cIO.h"
#include "view/cInput.h"

#include <deque>
#include <memory>
#include <string>
#include <utility>

namespace trellis {

class cImage;

/// While it lives, it is what `cInput` samples. Main thread only.
class HostWindow {
public:
    /// @param error  receives a sentence
    /// @return null when there is no screen to open it on
    static std::unique_ptr<HostWindow> Open(const char* title, int width, int height, std::string* error);

    virtual ~HostWindow();
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;

    virtual void Poll() = 0;                      ///< Takes what has happened.
    virtual void Wait(int ms) = 0;                ///< Until something happens, or so long.
    virtual void Show(const cImage& picture) = 0; ///< `Rgba8`, row 0 at the bottom.
    virtual void SetTitle(const char* title) = 0;

    static void AddTo(cIO::Host* host); ///< The clipboard, for as long as the window lives.

    int GetWidth() const { return m_Width; }
    int GetHeight() const { return m_Height; }
    bool TakeClose() { return std::exchange(m_IsClosing, false); } ///< Whether the person wants to close it.
    const std::string& GetFailure() const { return m_Failure; }    ///< A sentence once the screen is gone.

    /// Whether something has happened since the last call: input, another size, something uncovered.
    bool TakeChange() { return std::exchange(m_HasChanged, false); }

protected:
    HostWindow();

    // What has happened, in its order, as a platform tells it. What does not fit into one sample waits for the next: a
    // button that changes twice, a pointer that moves on after a click.
    void OnButton(int code, bool isDown);    ///< Keys as well; -1 and repeats are ignored.
    void OnClick(int code, unsigned timeMs); ///< A button goes down; two in a row are a double click.
    void OnChar(int utf32, int code);
    void OnPointer(float x, float y); ///< Y upward.
    void OnWheel(int notches);
    void OnFocusLost(); ///< Nothing is down any more.
    void OnSize(int width, int height);
    void OnChange() { m_HasChanged = true; }
    void OnClose() { m_IsClosing = m_HasChanged = true; }
    void OnFailure(const char* sentence);

    virtual void SetCursor(cInput::Cursor::Enum cursor) = 0;
    virtual bool SetClipboardText(const char* text) = 0;
    virtual bool GetClipboardText(cStr* text) = 0;

    int m_Width = 0, m_Height = 0;

private:
    struct Input {
        enum Kind { Button, Click, Char, Pointer, Wheel } What;
        int Code;       // or the notches
        int Value;      // whether down; the character; the time
        cVec2 Position; // of the pointer
    };

    void Take(const Input& input);
    bool Fits(const Input& input);
    void Apply(const Input& input);
    void EndSample();
    bool* Flag(int code);

    static HostWindow* s_Window;

    cInput::KeyboardState m_Keys;
    cInput::MouseState m_Mouse;
    cList<cInput::CharPress> m_Chars;
    cList<int> m_Changed; // buttons, since the last sample
    std::deque<Input> m_Waiting;
    unsigned m_ClickTimeMs = 0;
    int m_ClickCode = -1;
    cVec2 m_ClickAt{0, 0};
    bool m_IsClosing = false, m_HasChanged = true;
    std::string m_Failure;
};

} // namespace trellis
