#include "files/SourceFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>

#include "files/cFile.h"

namespace trellis {

namespace {

cStr Join(const cStr& folder, const char* path) {
    cStr joined = folder;
    joined.AppendPath(path);
    return joined;
}

bool IsRegularFile(const cStr& path) {
    struct stat info;
    return stat(path, &info) == 0 && S_ISREG(info.st_mode);
}

/// Fills `bytes` with the whole of an open file. @return false for what is no regular file of an int's size, too
bool ReadWhole(int fd, cList<unsigned char>* bytes) {
    struct stat info;
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode) || info.st_size < 0 ||
        info.st_size > std::numeric_limits<int>::max()) {
        return false;
    }
    const int size = int(info.st_size);
    try {
        bytes->Resize(size, false);
        bytes->SetCount(size);
    } catch (const std::bad_alloc&) {
        return false; // how large a file is was somebody else's choice
    }
    for (int done = 0; done < size;) {
        const ssize_t n = read(fd, bytes->Data() + done, size_t(size - done));
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 1) {
            return false;
        }
        done += int(n);
    }
    return true;
}

} // namespace

bool SourceFolder::Load(const char* path, cFile* out) const {
    return LoadAbsPath(Join(m_Path, path), out);
}

bool SourceFolder::Save(const char* path, const void* data, unsigned int size, bool append) const {
    return SaveAbsPath(Join(m_WritePath.IsEmpty() ? m_Path : m_WritePath, path), data, size, append);
}

bool SourceFolder::FileExists(const char* path) const {
    const cStr absolute = cIO::EnsureAbsolutePath(Join(m_Path, path));
    cStr redirected = absolute;
    return (cIO::ReplaceReadPath(&redirected) && IsRegularFile(redirected)) || IsRegularFile(absolute);
}

bool SourceFolder::LoadAbsPath(const char* path, cFile* out) {
    const cStr absolute = cIO::EnsureAbsolutePath(path);
    out->Clear();
    cStr redirected = absolute;
    if (cIO::ReplaceReadPath(&redirected) && LoadAbsPath_NoWritePath(redirected, out)) {
        return true;
    }
    return LoadAbsPath_NoWritePath(absolute, out);
}

bool SourceFolder::LoadAbsPath_NoWritePath(const char* path, cFile* out) {
    cStr name(path);
    name.BackSlashesToSlashes();
    const int fd = open(name, O_RDONLY | O_CLOEXEC | O_NONBLOCK); // or a named pipe would wait here for its writer
    if (fd < 0) {
        return false;
    }
    cList<unsigned char> bytes;
    const bool ok = ReadWhole(fd, &bytes);
    close(fd);
    if (ok) {
        out->Set(&bytes, name);
    }
    return ok;
}

bool SourceFolder::SaveAbsPath(const char* path, const void* data, unsigned int size, bool append) {
    cStr name(path);
    if (!data || !cIO::PathIsAbsolute(name) || std::strchr("/\\", name.Text()[name.Length() - 1])) {
        return false;
    }
    cIO::ReplaceReadPath(&name);
    name.BackSlashesToSlashes();
    FILE* file = std::fopen(name, append ? "abe" : "wbe"); // e: no program that we start shall hold it
    if (!file) {
        return false;
    }
    const bool written = std::fwrite(data, 1, size, file) == size;
    return std::fclose(file) == 0 && written; // a full disk may show at the close only
}

} // namespace trellis
