// Set-up, sources, paths, loading and saving.
#include "files/cIO.h"

#include <unistd.h>

#include <atomic>
#include <cstdlib>

#include "files/SourceFolder.h"
#include "files/cFile.h"
#include "files/cIO_Internal.h"
#include "foundation/cImmortal.h"
#include "foundation/cLog.h"
#include "foundation/cMain.h"

namespace trellis {

namespace {

constinit cImmortal<cList<cIO::Source*>> s_SourcesStore;
constinit cImmortal<cStr> s_ThisFilePathNameStore;
std::atomic<bool> s_Initialised{false};

// Tested in this order: a longer name stands before the one that it ends in. The slashes count as they are written.
constexpr const char* s_OutputDirectories[] = {
    "dist/Debug/GNU-Linux-x86",
    "dist/Release/GNU-Linux-x86",
    "build/Debug",
    "build/Release",
    "x64\\Debug",
    "x64\\Release",
    "x64\\Debug (DX)",
    "x64\\Release (DX)",
    "x64\\Debug (GL)",
    "x64\\Release (GL)",
    "Debug",
    "Release",
    "Debug (DX)",
    "Release (DX)",
    "Debug (GL)",
    "Release (GL)",
    "Debug 64",
    "Release 64",
    "Debug 32",
    "Release 32",
};
static_assert(std::size(s_OutputDirectories) == 20);

constexpr const char* s_UrlPrefixes[] = {"http://", "https://", "ftp://"};

void ReadThisFilePathName() {
    char target[512]; // a longer path is cut, as everybody who builds paths from it expects
    const ssize_t n = readlink(cStr::Format("/proc/%d/exe", int(getpid())), target, sizeof(target));
    if (n > 0) {
        cIO_ThisFilePathName.Copy(target, 0, int(n));
    }
}

bool IsSlash(char c) {
    return c == '/' || c == '\\';
}

} // namespace

constinit cList<cIO::Source*>& cIO_Sources = s_SourcesStore.Value;
constinit cStr& cIO_ThisFilePathName = s_ThisFilePathNameStore.Value;
constinit SourceFolder* cIO_DefaultSource = nullptr;

const char* cIO_CutOutputDirectory(cStr* folder) {
    for (const char* name : s_OutputDirectories) {
        const int at = folder->Length() - int(std::strlen(name));
        if (at >= 0 && cStr::CompareNoCase(folder->Text() + at, name) == 0) {
            folder->Remove(at, folder->Length() - at);
            return name;
        }
    }
    return nullptr;
}

void cIO_TrimFolder(cStr* folder) {
    while (folder->Length() > 1 && IsSlash(folder->Text()[folder->Length() - 1])) {
        folder->Remove(folder->Length() - 1);
    }
}

void cIO_Init() {
    if (s_Initialised.load(std::memory_order_relaxed)) {
        return;
    }
    // Set first: the log and the application's hook below may load and save files themselves.
    s_Initialised.store(true, std::memory_order_relaxed);

    ReadThisFilePathName();
    cStr folder = cIO_ThisFilePathName;
    folder.RemoveFileName();
    if (const char* name = cIO_CutOutputDirectory(&folder)) {
        cLog::Message("Program is running under output directory \"%s\"", name);
    }
    if (folder.IsEmpty()) {
        folder = "/"; // the program stands in the root
    }
    cIO_DefaultSource = new SourceFolder(folder);
    cIO_Sources.Add(cIO_DefaultSource);

    cMain_OnInitPath(&folder);
    cIO_DefaultSource->SetPath(cIO::EnsureAbsolutePath(folder));
    cLog::Message("Default file source is folder \"%s\"", cIO_DefaultSource->GetPath().Text());

    cIO_AddBuiltInCodecs();
}

const cList<cIO::Source*>& cIO::GetSources() {
    cIO_Init();
    return cIO_Sources;
}

cList<cIO::Source*>& cIO::GetSourcesMutable() {
    cIO_Init();
    return cIO_Sources;
}

const cStr& cIO::GetDefaultSourceFolder() {
    cIO_Init();
    return cIO_DefaultSource ? cIO_DefaultSource->GetPath() : cStr::Empty; // none yet while the set-up logs
}

void cIO::SetDefaultSourceWriteFolder(const char* folder) {
    cIO_Init();
    cStr path;
    if (folder && *folder) {
        path = EnsureAbsolutePath(folder);
        // A slash at its end would hide that a path is in the write folder already, which is then redirected twice.
        cIO_TrimFolder(&path);
    }
    if (cIO_DefaultSource) {
        cIO_DefaultSource->SetWritePath(path);
    }
}

bool cIO::PathIsAbsolute(const char* path) {
    return path && IsSlash(path[0]);
}

cStr cIO::EnsureAbsolutePath(const char* path) {
    const cStr& root = GetDefaultSourceFolder();
    cStr result(path ? path : "");
    for (const char* prefix : s_UrlPrefixes) {
        if (cStr::CompareNoCase(result, prefix, int(std::strlen(prefix))) == 0) {
            return result;
        }
    }
    if (result.Text()[0] == '~') {
        cStr home = GetUserFolder();
        home.Append(result, 1, result.Length() - 1);
        result = std::move(home);
    }
    if (!PathIsAbsolute(result)) {
        cStr absolute = root;
        absolute.AppendPath(result);
        result = std::move(absolute);
    }
    result.BackSlashesToSlashes();
    return result;
}

bool cIO::ReplaceReadPath(cStr* path) {
    const cStr& read = GetDefaultSourceFolder();
    if (!cIO_DefaultSource || cIO_DefaultSource->GetWritePath().IsEmpty()) {
        return false;
    }
    const cStr& write = cIO_DefaultSource->GetWritePath();
    const cStr absolute = EnsureAbsolutePath(*path);
    // The match must end at a component, so a read folder that itself ends in a slash ("/x/", from "/x/Release 64")
    // redirects nothing. Installations rely on it: such a program writes beside its project.
    if (cStr::ComparePath(absolute, read, read.Length()) != 0 ||
        cStr::ComparePath(absolute, write, write.Length()) == 0) {
        return false;
    }
    cStr redirected = write;
    redirected.AppendPath(absolute.Text() + read.Length());
    *path = EnsureAbsolutePath(redirected);
    return true;
}

bool cIO::CheckReadPath(const char* path) {
    cStr copy(path);
    return ReplaceReadPath(&copy);
}

const cStr& cIO::GetThisFilePathName() {
    cIO_Init();
    return cIO_ThisFilePathName;
}

cStr cIO::GetEnvironmentVariable(const char* name) {
    cIO_Init();
    const char* value = name ? std::getenv(name) : nullptr;
    return cStr(value ? value : "");
}

bool cIO::LoadFile(const char* path, cFile* out, bool warn) {
    cIO_Init();
    if (!out || !path) {
        return false;
    }
    const cStr name(path); // may be the name of `out`
    out->Clear();
    bool ok = false;
    if (PathIsAbsolute(name)) {
        ok = SourceFolder::LoadAbsPath(name, out);
    } else {
        for (int i = 0; i < cIO_Sources.Count() && !ok; i++) {
            ok = cIO_Sources[i]->Load(name, out);
        }
    }
    if (!ok) {
        out->Clear(); // a source may have left a part
        if (warn) {
            cLog::Warning("Can't load file \"%s\"", name.Text());
        }
    }
    return ok;
}

bool cIO::SaveFile(const char* path, const void* data, unsigned int size, bool append, bool warn) {
    cIO_Init();
    if (!path || !data) {
        return false;
    }
    bool ok = false;
    if (PathIsAbsolute(path)) {
        ok = SourceFolder::SaveAbsPath(path, data, size, append);
    } else {
        for (int i = 0; i < cIO_Sources.Count() && !ok; i++) {
            ok = cIO_Sources[i]->Save(path, data, size, append);
        }
    }
    if (!ok && warn) {
        cLog::Warning("Can't save file \"%s\"", path);
    }
    return ok;
}

bool cIO::SaveFile(const char* path, const cFile& file, bool append, bool warn) {
    if (file.GetSize() == 0) {
        return false; // an empty file cannot be saved
    }
    return SaveFile(path ? path : file.GetName().Text(), file.GetBytes().Data(), unsigned(file.GetSize()), append,
                    warn);
}

void cIO::AddSourceZip(const char*) {
    cIO_Init();
}

void cIO::AddSourceZips(const char* folder) {
    cList<cStr> files;
    SearchFiles(folder, &files, true);
    for (const cStr& file : files) {
        if (cStr::CompareNoCase(file.GetFileExtension(), "cZip") == 0) {
            AddSourceZip(file);
        }
    }
}

bool cIO::ExtractZip(const char*, const char*, void (*)(float)) {
    cIO_Init();
    return false;
}

bool cIO::CreateZip(const char*, const char*, bool, void (*)(float)) {
    cIO_Init();
    return false;
}

} // namespace trellis
