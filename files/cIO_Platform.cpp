// What the operating system does for cIO: listing, making and removing items, their properties, and processes.
#include "files/cIO.h"

#include <dirent.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "files/cIO_Internal.h"

namespace trellis {

namespace fs = std::filesystem;

namespace {

enum class Removal { Done, Missing, Failed };

int CompareNames(const cStr* a, const cStr* b) {
    const int order = cStr::ComparePath(*a, *b);
    return order ? order : cStr::Compare(*a, *b); // names that differ in case alone
}

Removal RemoveFileItem(const cStr& path) {
    if (unlink(path) == 0) {
        return Removal::Done;
    }
    return errno == ENOENT || errno == ENOTDIR ? Removal::Missing : Removal::Failed;
}

Removal RemoveFolderItem(const cStr& path, bool removeFolder) {
    std::error_code error;
    const fs::file_type type = fs::symlink_status(path.Text(), error).type();
    if (type == fs::file_type::not_found) {
        return Removal::Missing;
    }
    if (type == fs::file_type::symlink && removeFolder) {
        return RemoveFileItem(path); // the link is ours to remove, what it leads to is not
    }
    if (type != fs::file_type::directory) {
        return Removal::Failed;
    }
    // By the letter, not by our own search: that would skip what it cannot name, and take "*" for a wildcard.
    Removal result = Removal::Done;
    for (fs::directory_iterator it(path.Text(), error), end; !error && it != end; it.increment(error)) {
        std::error_code itemError;
        fs::remove_all(it->path(), itemError);
        if (itemError) {
            result = Removal::Failed;
        }
    }
    if (error || (removeFolder && rmdir(path) != 0)) {
        return Removal::Failed;
    }
    return result;
}

/// Removes by `remove` the item, then the write folder's copy.
template <class Remove> bool RemoveBoth(cStr path, Remove remove) {
    Removal result = remove(path);
    if (cIO::ReplaceReadPath(&path)) {
        const Removal copy = remove(path);
        if (copy != Removal::Missing && result != Removal::Failed) {
            result = copy;
        }
    }
    return result == Removal::Done;
}

bool SetPermissions(const char* path, unsigned int mode, bool folder) {
    const cStr found = cIO_FindForReading(path);
    struct stat info;
    return cIO::PathIsAbsolute(found) && stat(found, &info) == 0 && bool(S_ISDIR(info.st_mode)) == folder &&
           chmod(found, mode_t(mode & 07777)) == 0;
}

/// The file system of a path, or of its nearest folder that exists.
dev_t DiskOf(const char* path) {
    cStr item = cIO_FindForReading(path);
    struct stat info;
    while (stat(item, &info) != 0) {
        if (item.IsEmpty()) {
            item = "/";
        } else {
            item.RemoveFileName();
        }
        if (item == "/" && stat(item, &info) != 0) {
            return 0;
        }
    }
    return info.st_dev;
}

void SplitArguments(const char* text, cList<cStr>* words) {
    const char* p = text ? text : "";
    for (;;) {
        while (*p == ' ' || *p == '\t') {
            p++;
        }
        if (!*p) {
            return;
        }
        cStr word("");
        for (bool quoted = false; *p && (quoted || (*p != ' ' && *p != '\t')); p++) {
            if (*p == '"') {
                quoted = !quoted;
            } else {
                word.Append(*p);
            }
        }
        words->Add(word);
    }
}

/// The words as a vector for exec; it borrows their text.
cList<char*> MakeArgv(const cList<cStr>& words) {
    cList<char*> argv;
    for (const cStr& word : words) {
        argv.Add(const_cast<char*>(word.Text()));
    }
    argv.Add(nullptr);
    return argv;
}

/// @param outputFd  becomes standard output and error; -1 leaves them as ours
pid_t Spawn(const cStr& program, char* const* argv, int outputFd) {
    posix_spawn_file_actions_t actions;
    if (posix_spawn_file_actions_init(&actions) != 0) {
        return -1;
    }
    pid_t pid = -1;
    bool ok = posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0) == 0;
    if (outputFd != -1) {
        ok = ok && posix_spawn_file_actions_adddup2(&actions, outputFd, STDOUT_FILENO) == 0 &&
             posix_spawn_file_actions_adddup2(&actions, outputFd, STDERR_FILENO) == 0;
    }
    if (!ok || posix_spawnp(&pid, program, &actions, nullptr, argv, environ) != 0) {
        pid = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
    return pid;
}

/// Reads a pipe to its end, also past what is kept: a program that is not read from would never end.
void ReadOutput(int fd, cStr* output) {
    char chunk[4096];
    for (;;) {
        const ssize_t n = read(fd, chunk, sizeof(chunk));
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 1) {
            return;
        }
        output->Append(chunk, 0, std::min(int(n), cIO::MaxExecOutput - output->Length()));
    }
}

bool WaitFor(pid_t pid) {
    int status = 0;
    while (waitpid(pid, &status, 0) != pid) {
        if (errno != EINTR) {
            return false;
        }
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// The words that this process was started with.
void ReadCommandLine(cList<cStr>* words) {
    FILE* file = std::fopen("/proc/self/cmdline", "rbe");
    if (!file) {
        return;
    }
    cStr word("");
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) {
        if (c) {
            word.Append(char(c));
        } else {
            words->Add(word);
            word.Clear();
        }
    }
    std::fclose(file);
}

bool IsSameItem(const char* a, const char* b) {
    struct stat infoA, infoB;
    return lstat(a, &infoA) == 0 && stat(b, &infoB) == 0 && // a link is only itself
           infoA.st_dev == infoB.st_dev && infoA.st_ino == infoB.st_ino;
}

void CloseDescriptorsOnExec() {
    if (DIR* folder = opendir("/proc/self/fd")) {
        while (const dirent* entry = readdir(folder)) {
            const int fd = std::atoi(entry->d_name); // 0 for the dots
            if (fd > STDERR_FILENO) {
                fcntl(fd, F_SETFD, FD_CLOEXEC);
            }
        }
        closedir(folder);
    }
}

} // namespace

cStr cIO_FindForReading(const char* path) {
    cStr absolute = cIO::EnsureAbsolutePath(path);
    cStr redirected = absolute;
    struct stat info;
    return cIO::ReplaceReadPath(&redirected) && stat(redirected, &info) == 0 ? redirected : absolute;
}

void cIO_ListFolder(const char* folder, const char* wildcard, cIO::Items items, cList<cStr>* names) {
    names->Clear();
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        std::error_code typeError;
        const fs::file_type type = it->status(typeError).type();
        if (type != (items == cIO::Items::Files ? fs::file_type::regular : fs::file_type::directory)) {
            continue;
        }
        const std::string name = it->path().filename().string();
        // Every other operation would take a backslash in a name for a slash.
        if (name.find('\\') == std::string::npos && (!*wildcard || cIO_MatchWildcard(wildcard, name.c_str()))) {
            names->Add(cStr(name.c_str()));
        }
    }
    names->Sort(CompareNames); // the system's order differs from disk to disk
}

bool cIO::CreatePath(const char* path) {
    cStr folder = EnsureAbsolutePath(path);
    if (!path || !*path || !PathIsAbsolute(folder)) {
        return false;
    }
    if (!folder.GetFileExtension().IsEmpty()) {
        folder.RemoveFileName();
    }
    cIO_TrimFolder(&folder);
    if (folder.IsEmpty()) {
        return true; // the root of the disk
    }
    ReplaceReadPath(&folder);
    std::error_code error;
    fs::create_directories(folder.Text(), error);
    return fs::is_directory(folder.Text(), error);
}

bool cIO::RemoveFile(const char* path) {
    const cStr file = EnsureAbsolutePath(path);
    return PathIsAbsolute(file) && RemoveBoth(file, RemoveFileItem); // a URL would count from the working directory
}

bool cIO::RemoveFolder(const char* path, bool removeFolder) {
    cStr folder = EnsureAbsolutePath(path);
    cIO_TrimFolder(&folder);
    // Nobody means the whole disk, or all of the program's data by a path such as "." or "..".
    if (!path || !*path || !PathIsAbsolute(folder) || IsSameItem(folder, "/")) {
        return false;
    }
    if (!PathIsAbsolute(path)) {
        for (cStr up = GetDefaultSourceFolder(); !up.IsEmpty(); up.RemoveFileName()) {
            if (IsSameItem(folder, up)) {
                return false;
            }
        }
    }
    return RemoveBoth(folder, [removeFolder](const cStr& item) { return RemoveFolderItem(item, removeFolder); });
}

bool cIO::SetFilePermissions(const char* path, unsigned int mode) {
    return SetPermissions(path, mode, false);
}

bool cIO::SetFolderPermissions(const char* path, unsigned int mode) {
    return SetPermissions(path, mode, true);
}

int cIO::CompareFileChangeTimes(const char* a, const char* b) {
    struct stat infoA, infoB;
    if (stat(cIO_FindForReading(a), &infoA) != 0 || stat(cIO_FindForReading(b), &infoB) != 0) {
        return 1;
    }
    const auto timeA = std::pair(infoA.st_mtim.tv_sec, infoA.st_mtim.tv_nsec);
    const auto timeB = std::pair(infoB.st_mtim.tv_sec, infoB.st_mtim.tv_nsec);
    return timeA < timeB ? -1 : timeB < timeA;
}

bool cIO::CheckDifferentDisks(const char* a, const char* b) {
    return DiskOf(a) != DiskOf(b);
}

double cIO::GetDiskFreeSpace() {
    struct statfs64 info;
    return statfs64(GetDefaultSourceFolder(), &info) == 0 ? double(info.f_bavail) * double(info.f_bsize) : 0;
}

cStr cIO::GetUserFolder() {
    cIO_Init();
    // Not HOME: what "~" means in a stored path would depend on who starts the program.
    return cStr();
}

cStr cIO::GetCacheFolder() {
    cStr folder = GetEnvironmentVariable("XDG_CACHE_HOME");
    if (folder.Text()[0] == '/') {
        return folder; // XDG Base Directory: relative paths there are to be ignored
    }
    folder = GetEnvironmentVariable("HOME");
    if (folder.Text()[0] != '/') {
        return cStr();
    }
    folder.AppendPath(".cache");
    folder.BackSlashesToSlashes();
    return folder;
}

bool cIO::Exec(const char* command, const char* arguments, cStr* output) {
    cIO_Init();
    cList<cStr> words;
    words.Add(cStr(command));
    SplitArguments(arguments, &words); // before `output` is emptied: it may hold them
    if (output) {
        output->Clear();
    }
    if (words[0].IsEmpty()) {
        return false;
    }
    if (std::strpbrk(words[0], "/\\")) {
        words[0] = EnsureAbsolutePath(words[0]);
    }
    int ends[2] = {-1, -1};
    if (output && pipe2(ends, O_CLOEXEC) != 0) {
        return false;
    }
    cList<char*> argv = MakeArgv(words);
    const pid_t pid = Spawn(words[0], argv.Data(), ends[1]);
    if (output) {
        close(ends[1]);
        if (pid != -1) {
            ReadOutput(ends[0], output);
        }
        close(ends[0]);
    }
    return pid != -1 && WaitFor(pid);
}

bool cIO::RestartThisApplication() {
    cList<cStr> words;
    ReadCommandLine(&words);
    if (words.IsEmpty()) {
        words.Add(GetThisFilePathName());
    }
    cList<char*> argv = MakeArgv(words);
    CloseDescriptorsOnExec();
    std::fflush(nullptr);
    execv(GetThisFilePathName(), argv.Data());
    return false;
}

} // namespace trellis
