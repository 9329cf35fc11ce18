#include "foundation/cLog.h"

#include "editor/cSplash.h"
#include "files/cFile.h"
#include "files/cIO.h"
#include "foundation/cImmortal.h"
#include "foundation/cTimer.h"

#include <algorithm>

namespace trellis {

namespace {

// Other globals log while they are made, and threads log while the process exits.
cImmortal<cStr> s_EndLn __attribute__((init_priority(210))) ("\r\n");
constinit cImmortal<cStr> s_LogStore;
constinit cImmortal<cStr> s_AutoSaveFilePnStore;

bool EndsWithLineEnd(const cStr& text) {
    const int n = cLog::EndLn.Length();
    return text.Length() >= n && cStr::Compare(text.Text() + text.Length() - n, cLog::EndLn) == 0;
}

} // namespace

constinit const cStr& cLog::EndLn = s_EndLn.Value;
constinit int cLog::Time0 = 0;
constinit cStr& cLog::s_Log = s_LogStore.Value;
constinit bool cLog::s_AutoSaveToFile = false;
constinit cStr& cLog::s_AutoSaveFilePn = s_AutoSaveFilePnStore.Value;

constinit int MarigoldAssertDebugInsteadOfException = 1;
constinit cStr MarigoldLastException;

void __elog(const char*) {}

void cLog::Message(const char* format, ...) {
    va_list args;
    va_start(args, format);
    AddString(format, args);
    va_end(args);
}

void cLog::Warning(const char* format, ...) {
    va_list args;
    va_start(args, format);
    AddString(format, args);
    va_end(args);
    cSplash::DestroyNow();
}

void cLog::Error(const char* format, ...) {
    va_list args;
    va_start(args, format);
    AddString(format, args);
    va_end(args);
    cSplash::DestroyNow();
}

bool cLog::Assert(const char* format, ...) {
    va_list args;
    va_start(args, format);
    AddString(format, args);
    va_end(args);
    cSplash::DestroyNow();
    return false;
}

void cLog::TimeMessage(const char* format, ...) {
    if (Time0 == 0) {
        ResetTime();
    }
    const unsigned int t = cTimer::AcquireClockTicks() - unsigned(Time0);
    cStr entry = cStr::Format("%.02u:%.02u.%.03u ", t / 1000 / 60, t / 1000 % 60, t % 1000);
    va_list args;
    va_start(args, format);
    entry.Append(cStr::Formatv(format, args));
    va_end(args);
    Store(std::move(entry));
}

void cLog::ResetTime() {
    Time0 = int(cTimer::AcquireClockTicks());
}

void cLog::AddString(const char* format, va_list args) {
    cStr entry = cStr::Formatv(format, args);
    entry.Replace("\r", nullptr);
    entry.Replace("\n", EndLn);
    Store(std::move(entry));
}

void cLog::Store(cStr entry) {
    if (!EndsWithLineEnd(entry)) {
        entry.Append(EndLn);
    }
    if (s_AutoSaveToFile) {
        cIO::SaveFile(s_AutoSaveFilePn, entry.Text(), unsigned(entry.Length()), true,
                      false); // a warning would log again
    }
    s_Log.ReserveMore(entry.Length());
    s_Log.Append(entry);
}

const cStr& cLog::GetLog() {
    return s_Log;
}

cStr& cLog::GetLogMutable() {
    return s_Log;
}

bool cLog::IsVisible() {
    return false;
}

bool cLog::ShowDialog(Mode::Enum) {
    cSplash::DestroyNow();
    return false;
}

bool cLog::SaveToFile(const char* path) {
    cFile file;
    file.Copy(s_Log.Text(), s_Log.Length(), path);
    return cIO::SaveFile(path, file, false, true);
}

void cLog::EnableAutoSaveToFile(bool on, const char* path) {
    if (on && !s_AutoSaveToFile) {
        cIO::RemoveFile(path);
        cIO::SaveFile(path, s_Log.Text(), unsigned(s_Log.Length()), false, false);
    }
    s_AutoSaveFilePn = path;
    s_AutoSaveToFile = on;
}

} // namespace trellis
