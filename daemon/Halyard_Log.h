// The service's log: standard output, a file, and a bounded tail in memory for the log page.
#pragma once

#include "foundation/cStr.h"

#include <pthread.h>

/// Statics of the log. Lines end with `cLog::EndLn`, in the file and in memory alike.
class Halyard_Log {
public:
    /// Takes the path from "HALYARD_LOGFILE" where it is set, and begins an empty log.
    static void Init();

    static trellis::cStr& s_FilePathName; ///< "Log.txt" by default, relative to the program's folder.
    static trellis::cStr& s_Text;         ///< The tail. Guarded by `s_Mutex`, as is the writing of the file.
    static pthread_mutex_t s_Mutex;

    static constexpr int MaxTail = 50000; ///< Above this length ...
    static constexpr int TailCut = 5000;  ///< ... the tail loses so many bytes from its front, wherever a line ends.
};

/// One entry without a time stamp. Safe on any thread; takes the log's mutex.
void Halyard_Message(const char* text);

/// One entry behind date and time: "Monday, 05 January 2026 14:03:22 | Using port 8888". The normal way to log.
/// Takes the timer's mutex, then the log's.
void _msg(const char* format, ...) __attribute__((format(printf, 1, 2)));

void Halyard_GetLog(trellis::cStr* out); ///< A copy of the tail.
