// The framework's log: one growing text in memory. It takes no lock; the framework logs from its main thread.
#pragma once

#include "foundation/cStr.h"

namespace trellis {

class cLog {
public:
    struct Mode {
        enum Enum { Message, Warning, Error }; ///< What a host's dialog makes of them is its own concern.
    };

    /// One entry each, formatted as by printf and cut at 9998 bytes. Line ends inside become `EndLn`, and the entry
    /// ends with one. All but `Message` and `TimeMessage` take the splash screen down.
    static void Message(const char* format, ...) __attribute__((format(printf, 1, 2)));
    static void Warning(const char* format, ...) __attribute__((format(printf, 1, 2)));
    static void Error(const char* format, ...) __attribute__((format(printf, 1, 2)));
    static bool Assert(const char* format, ...) __attribute__((format(printf, 1, 2))); ///< Always false.

    /// An entry behind a stamp "mm:ss.mmm " since `ResetTime`, or since the first such entry. Line ends inside stay.
    static void TimeMessage(const char* format, ...) __attribute__((format(printf, 1, 2)));
    static void ResetTime();

    static void AddString(const char* format, va_list args) __attribute__((format(printf, 1, 0)));

    static const cStr& GetLog();
    static cStr& GetLogMutable();

    static bool IsVisible();                 ///< False: there is no window system here.
    static bool ShowDialog(Mode::Enum mode); ///< Takes the splash screen down; false, as nothing could be shown.

    /// Writes the whole log. @return false when nothing was written
    static bool SaveToFile(const char* path);

    /// Sends every entry to a file as well. Going from off to on starts that file with all that the log holds.
    static void EnableAutoSaveToFile(bool on, const char* path);

    static const cStr& EndLn; ///< "\r\n", on every platform.
    static int Time0;         ///< Clock ticks at `ResetTime`; 0 means not yet set.

private:
    static void Store(cStr entry);

    static cStr& s_Log;
    static bool s_AutoSaveToFile;
    static cStr& s_AutoSaveFilePn;
};

/// For the checks of a host; nothing in the foundation reads them.
extern int MarigoldAssertDebugInsteadOfException; ///< 1: a failed check stops for the debugger and does not throw.
extern cStr MarigoldLastException;                ///< Text of the last failure that was turned into an exception.

/// Trace of platform glue. Whatever it is given is dropped.
void __elog(const char* text);

} // namespace trellis
