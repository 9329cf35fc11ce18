// The one window of a program, and the person in front of it: keys, pointer, wheel, focus, clipboard, cursors.
//
// Everything that a platform has of its own stands behind this class; the one there is, is in HostWindow_X11.cpp.
#pragma once

#include "view/cInput.h"

#include <memory>
#include <string>

namespace trellis {

class cImage;

/// While it lives, it is what `cInput` samples and what `cIO` has for a clipboard. Main thread only.
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

    int GetWidth() const { return m_Width; }
    int GetHeight() const { return m_Height; }
    bool IsClosing() const { return m_IsClosing; }              ///< The person has closed it.
    const std::string& GetFailure() const { return m_Failure; } ///< A sentence once the screen is gone.

    /// Whether something has happened since the last call: input, another size, something uncovered.
    bool TakeChange() { return std::exchange(m_HasChanged, false); }

protected:
    HostWindow();

    // What has happened, as a platform tells it. Down and up between two frames is seen as such.
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
    void Sample();
    bool* Flag(int code);

    static HostWindow* s_Window;

    cInput::KeyboardState m_Keys;
    cInput::MouseState m_Mouse;
    cList<cInput::CharPress> m_Chars;
    cList<int> m_Pressed;  // since the last sample
    cList<int> m_Released; // in the same time: they go up with the next one
    unsigned m_ClickTimeMs = 0;
    int m_ClickCode = -1;
    cVec2 m_ClickAt{0, 0};
    bool m_IsClosing = false, m_HasChanged = true;
    std::string m_Failure;
};

} // namespace trellis
