// A script of input events: a host without a window plays it, frame by frame.
//
//     # frame  event   values
//     0        size    900 700            pixels of the screen
//     10       point   Mass               the mouse to the control of that caption, or to a part of a form
//     12       press   LeftButton         down in this frame, up in the next; codes by their names
//     14       type    12.5               a character a frame
//     30       move    200 300            pixels, Y upward
//     31       down    LeftButton
//     32       drag    80 -40 20          by so many pixels, over so many frames
//     60       up      LeftButton
//     61       double                     a double click
//     70       wheel   -3
//     80       save    picture            for the host
//
// The lines stand in the order of their frames.
#pragma once

#include "math/cVec2.h"
#include "view/cInput.h"

#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace trellis {

/// While one lives, it is what `cInput` samples.
class InputScript {
public:
    struct Listener {
        std::function<void(int width, int height)> Size;
        std::function<bool(const std::string& name, cVec2* position)> Find; ///< For `point`.
        std::function<bool(const std::string& name)> Save;                  ///< Called when its frame is done.
    };

    InputScript();
    ~InputScript();
    InputScript(const InputScript&) = delete;
    InputScript& operator=(const InputScript&) = delete;

    /// What a listener's `Save` is for the device's picture: NAME.bmp in the folder.
    static std::function<bool(const std::string& name)> SaverTo(const std::string& folder);

    bool Load(const char* pathName, std::string* error); ///< A file, to be parsed.

    /// @param error  receives what is wrong with which line
    bool Parse(const std::string& text, std::string* error);

    /// From now on writes each event to a file as it happens, and in place of a `point` where that was.
    bool Trace(const char* pathName, std::string* error);

    /// Runs all frames, 60 a second. @param frame  handles the input that has been sampled, and draws
    /// @return false when a name was not found or a picture not saved; the error tells
    bool Play(const Listener& listener, const std::function<void()>& frame, std::string* error);

    /// The same, frame by frame: saves the pictures of the frame before, and samples the next one's input. May be
    /// called from within a frame, by a dialog that runs frames of its own.
    ///
    /// @return false at the end, and where something went wrong: then the error tells
    bool Next(const Listener& listener, std::string* error);

private:
    struct Event {
        int Line, Frame;
        std::string Verb, Text;
        float Values[3];
        int Code;
    };

    static void SetDown(int code, bool down);
    bool Apply(const Event& event, const Listener& listener, std::string* error);
    bool IsOver() const;

    std::vector<Event> m_Events;
    std::ofstream m_Trace;

    // While it plays
    size_t m_Next = 0;
    int m_Frame = 0;
    std::vector<const Event*> m_Saves; // of the present frame
    std::vector<int> m_ToRelease;
    std::string m_ToType;
    cVec2 m_Step{0, 0};
    int m_StepsLeft = 0;
};

} // namespace trellis
