#include "daemon/Halyard_Log.h"

#include "daemon/Halyard_Service.h"
#include "files/cIO.h"
#include "foundation/cImmortal.h"
#include "foundation/cLog.h"
#include "foundation/cThread.h"
#include "foundation/cTimer.h"

#include <cstdio>

using namespace trellis;

namespace {

// Threads log while the process exits.
cImmortal<cStr> s_FilePathNameStore __attribute__((init_priority(300))) ("Log.txt");
constinit cImmortal<cStr> s_TextStore;

/// Keeps a text bounded; the cut is at a byte, wherever a line ends.
void CutFront(cStr* text) {
    if (text->Length() > Halyard_Log::MaxTail) {
        text->Remove(0, Halyard_Log::TailCut);
    }
}

} // namespace

constinit cStr& Halyard_Log::s_FilePathName = s_FilePathNameStore.Value;
constinit cStr& Halyard_Log::s_Text = s_TextStore.Value;
pthread_mutex_t Halyard_Log::s_Mutex = PTHREAD_MUTEX_INITIALIZER;

void Halyard_Log::Init() {
    const cStr path = cIO::GetEnvironmentVariable("HALYARD_LOGFILE");
    if (!path.IsEmpty()) {
        s_FilePathName = path;
        cIO::CreatePath(path);
    }
    cIO::RemoveFile(s_FilePathName);
    cThread::CreateMutex(s_Mutex);
}

void Halyard_Message(const char* text) {
    const cMutexLock lock(Halyard_Log::s_Mutex);
    cStr entry(text);
    entry.Replace("\r", nullptr);
    cStr line(entry);
    line.Replace("\n", nullptr);
    std::printf("%s \n", line.Text());
    std::fflush(stdout); // a pipe shows each line at once, as a terminal does

    entry.Replace("\n", cLog::EndLn);
    const int endLength = cLog::EndLn.Length();
    if (entry.Length() < endLength || entry.IndexOf(cLog::EndLn, entry.Length() - endLength) < 0) {
        entry.Append(cLog::EndLn);
    }
    if (!cIO::SaveFile(Halyard_Log::s_FilePathName, entry.Text(), unsigned(entry.Length()), true, true)) {
        CutFront(&cLog::GetLogMutable()); // each failure warns there, and peers decide how often
    }
    Halyard_Log::s_Text.Append(entry);
    CutFront(&Halyard_Log::s_Text);
}

void _msg(const char* format, ...) {
    cStr entry = Halyard_AcquireDateTime();
    va_list args;
    va_start(args, format);
    const cStr message = cStr::Formatv(format, args);
    va_end(args);
    entry.Append(" | ");
    entry.Append(message);
    Halyard_Message(entry);
}

void Halyard_GetLog(cStr* out) {
    const cMutexLock lock(Halyard_Log::s_Mutex);
    *out = Halyard_Log::s_Text;
}
