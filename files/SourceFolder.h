// File source over a folder on disk, and the way of an absolute path to the disk.
#pragma once

#include "files/cIO.h"

namespace trellis {

/// The redirect of the default source serves all sources: another folder under the read folder is overlaid, too.
class SourceFolder : public cIO::Source {
public:
    explicit SourceFolder(const char* path) : m_Path(path) {}

    bool Load(const char* path, cFile* out) const override;

    /// Writes below the write path, or below the folder itself when there is none.
    bool Save(const char* path, const void* data, unsigned int size, bool append) const override;
    const cStr& GetPath() const override { return m_Path; }
    bool FileExists(const char* path) const override;

    /// Reads the redirected copy of the file if there is one, else the file.
    static bool LoadAbsPath(const char* path, cFile* out);

    /// Reads just that file, and names `out` after it.
    ///
    /// @return false for anything but a regular file below 2^31 bytes, before anything is allocated; `out` is then
    ///         as it was
    static bool LoadAbsPath_NoWritePath(const char* path, cFile* out);

    /// @return false also for a path that is not absolute or ends in a slash
    static bool SaveAbsPath(const char* path, const void* data, unsigned int size, bool append);

    const cStr& GetWritePath() const { return m_WritePath; } ///< Empty for none.
    void SetPath(const char* path) { m_Path = path; }
    void SetWritePath(const char* path) { m_WritePath = path; }

private:
    cStr m_Path;      // the read folder
    cStr m_WritePath; // empty for none
};

} // namespace trellis
