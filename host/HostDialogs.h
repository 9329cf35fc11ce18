// The dialogs that the framework asks its host for, made of the framework's own widgets: files, folders, questions.
#pragma once

#include "files/cIO.h"

#include <functional>

namespace trellis {

class cTheme;

/// One in a process. A dialog may be asked for in the middle of an event: it runs frames of the program until it has
/// its answer, while nothing beneath gets input. Without an object of this class, or a theme, all are cancelled, and
/// the log tells.
class HostDialogs {
public:
    /// Becomes the handler of `cMessageBox`.
    /// @param frame  one frame of the program: input, widgets, drawing. False when the program ends: the open dialogs
    ///               are then cancelled
    explicit HostDialogs(std::function<bool()> frame);
    ~HostDialogs();
    HostDialogs(const HostDialogs&) = delete;
    HostDialogs& operator=(const HostDialogs&) = delete;

    static void AddTo(cIO::Host* host); ///< Sets ShowLoadFile, ShowSaveFile and ShowSelectFolder.

    static void Tell(const char* title, const char* text); ///< Until "OK" is pressed.
    enum Answer { Cancel, No, Yes };
    static Answer Ask(const char* title, const char* text);

    static void SetTheme(const cTheme* theme); ///< Null, as at first: `WindowsStandard`, or else `Fragile`.
    static bool IsOpen();
};

} // namespace trellis
