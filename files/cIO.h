// All file traffic of the framework: sources, paths and their redirect, searching, dialogs, and the codec tables.
//
//     read folder   <program's data>/Textures/a.dds      may be read-only
//     write folder  <user's data>/Textures/a.dds         wins on reading; whatever is written goes there
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"

namespace trellis {

class cAnim;
class cBsp;
class cCamera;
class cFile;
class cImage;
class cMat4;
class cModel;

/// What the dialogs of a kind open with. A dialog that was accepted leaves its folder and file name here.
inline constinit cStr cIO_ModelAnimCameraBspDialogsInitialPath;
inline constinit cStr cIO_ModelDialogInitialFile;
inline constinit cStr cIO_AnimDialogInitialFile;
inline constinit cStr cIO_BspDialogInitialFile;
inline constinit cStr cIO_CameraDialogInitialFile;
inline constinit cStr cIO_SoundDialogInitialPath;
inline constinit cStr cIO_SoundDialogInitialFile;
inline constinit cStr cIO_ImageDialogInitialPath;
inline constinit cStr cIO_ImageDialogInitialFile;
inline constinit cStr cIO_XmlDialogInitialPath;
inline constinit cStr cIO_XmlDialogInitialFile;

/// Paths are always told in terms of the read folder, which is the default source's. A relative path is relative to
/// it; a path under it is redirected to the same place in the write folder, where there is one. Either slash will do.
/// A null path is an error to what loads, saves or removes, and elsewhere an empty one, which is the read folder.
///
/// What touches files runs the set-up at its first use: that first call must come from the main thread. From then on
/// files may be loaded, saved and removed on any thread, while nobody changes the sources or the write folder; with
/// `warn` on only where nobody else writes to `cLog` at the time. Dialogs, clipboard and codec tables belong to the
/// main thread.
class cIO {
public:
    /// A place that relative paths are looked up in.
    class Source {
    public:
        virtual ~Source() = default;

        /// @param path  relative to the source
        virtual bool Load(const char* path, cFile* out) const = 0;

        /// @return false also where the source is not for writing; the next one is asked then
        virtual bool Save(const char* path, const void* data, unsigned int size, bool append) const = 0;

        virtual const cStr& GetPath() const = 0; ///< Folder or archive that the source reads.

        /// Whether `Load` would find the file; reads nothing of it.
        virtual bool FileExists(const char* path) const = 0;
    };

    /// Codecs answer false for what they cannot do, and never take more of a file than it has. A decoder gets the file
    /// with its cursor at 0. `Encodes` tells whether a codec can write at all.
    class ImageCodec {
    public:
        virtual ~ImageCodec() = default;
        virtual bool Decode(const cFile& file, cImage* out) = 0;
        virtual bool Encode(const cImage& image, cFile* out) = 0;
    };
    class ModelCodec {
    public:
        virtual ~ModelCodec() = default;
        virtual bool Encodes() const = 0;
        virtual bool Decode(const cFile& file, cModel* out) = 0;
        virtual bool Encode(const cModel& model, cFile* out) = 0;
    };
    class AnimCodec {
    public:
        virtual ~AnimCodec() = default;
        virtual bool Encodes() const = 0;
        virtual bool Decode(const cFile& file, cAnim* out) = 0;
        virtual bool Encode(const cAnim& anim, cFile* out) = 0;
    };
    class CameraCodec {
    public:
        virtual ~CameraCodec() = default;
        virtual bool Encodes() const = 0;
        virtual bool Decode(const cFile& file, cCamera* out) = 0;
        virtual bool Encode(const cCamera& camera, cFile* out) = 0;
    };

    // A file extension without its dot, and the codec behind it.
    struct ImageCodecInfo {
        cStr Extension;
        ImageCodec* Codec = nullptr;
    };
    struct ModelCodecInfo {
        cStr Extension;
        ModelCodec* Codec = nullptr;
    };
    struct AnimCodecInfo {
        cStr Extension;
        AnimCodec* Codec = nullptr;
    };
    struct CameraCodecInfo {
        cStr Extension;
        CameraCodec* Codec = nullptr;
    };

    /// What a file dialog is asked for.
    struct FileDialog {
        const char* Title = "";
        const char* Extensions = "";       ///< As "dds;bmp"; empty for any. A saved name gets the first by default.
        const char* Key = nullptr;         ///< Whose folder is taken, and kept, when there is no initial path.
        const char* InitialPath = nullptr; ///< Null or empty: the folder of the key.
        const char* InitialFile = nullptr;
    };

    /// What only a host with a window can do. Null members do without: a dialog is then cancelled, and the clipboard
    /// is a buffer in memory.
    struct Host {
        bool (*ShowLoadFile)(const FileDialog& dialog, cStr* filePn) = nullptr;
        bool (*ShowSaveFile)(const FileDialog& dialog, cStr* filePn) = nullptr;
        bool (*ShowSelectFolder)(const char* title, const char* initialFolder, cStr* folder) = nullptr;
        bool (*SetClipboardText)(const char* text) = nullptr;
        bool (*GetClipboardText)(cStr* text) = nullptr;
        bool (*SetClipboardImage)(const cImage& image) = nullptr;
        bool (*GetClipboardImage)(cImage* image) = nullptr;
        bool (*Explore)(const char* path) = nullptr; ///< Shows a folder, or a file in its folder.
    };
    static void SetHost(const Host& host);

    // ---- Loading and saving

    /// A relative path goes through the sources in their order, until one has the file; in each, the write folder's
    /// copy of its folder comes first. A folder and a file of 2^31 bytes or more cannot be loaded.
    ///
    /// @param out   empty on failure, but untouched for a null path
    /// @param warn  logs a warning when the file cannot be loaded; callers who only probe pass false
    static bool LoadFile(const char* path, cFile* out, bool warn = true);

    /// Writes to the write folder where the path is under the read folder and there is one. The folder of the file
    /// must exist: see `CreatePath`. Without `append` the file is replaced.
    ///
    /// @return false also when only part of the data could be written
    static bool SaveFile(const char* path, const void* data, unsigned int size, bool append = false, bool warn = true);

    /// @param path  null: the file's own name
    /// @return false also for an empty file, of which nothing is created
    static bool SaveFile(const char* path, const cFile& file, bool append = false, bool warn = true);

    // ---- Sources and paths

    /// Entry 0 is the default source, a `SourceFolder`. Whoever adds a source keeps it alive to the end.
    static const cList<Source*>& GetSources();
    static cList<Source*>& GetSourcesMutable();

    static const cStr& GetDefaultSourceFolder(); ///< The read folder.

    /// @param folder  null or empty for none, which is how a program starts; a relative one is made absolute
    static void SetDefaultSourceWriteFolder(const char* folder);

    static bool PathIsAbsolute(const char* path); ///< Begins with either slash.

    /// The path with forward slashes, behind the read folder unless it is absolute. "~" stands for `GetUserFolder`.
    /// URLs of http, https and ftp come back unchanged.
    static cStr EnsureAbsolutePath(const char* path);

    /// Redirects a path under the read folder to the write folder; case and the kind of slash do not count.
    ///
    /// @return false when the path is not redirected, and unchanged: without a write folder, outside the read folder,
    ///         or inside the write folder already
    static bool ReplaceReadPath(cStr* path);
    static bool CheckReadPath(const char* path); ///< Whether `ReplaceReadPath` would redirect it.

    static const cStr& GetThisFilePathName(); ///< Full path of the running executable.

    /// @return empty for null and unset names, too
    static cStr GetEnvironmentVariable(const char* name);

    /// Empty: "~/a" is "/a", and "~" alone the read folder, whoever starts the program.
    static cStr GetUserFolder();
    /// XDG_CACHE_HOME, else ".cache" in HOME; empty when neither is set to an absolute path.
    static cStr GetCacheFolder();

    // ---- Folders and items. Paths are redirected as for saving; see each one for the read folder's part.

    /// Makes all missing folders of a path. A last component with an extension is a file name and left out.
    ///
    /// @return whether the folder exists now
    static bool CreatePath(const char* path);

    /// Removes a file and the write folder's copy of it. Folders are refused.
    ///
    /// @return true when there was such a file and none of it is left
    static bool RemoveFile(const char* path);

    /// Removes all that is in a folder, and in the write folder's copy of it. Symbolic links inside are removed and not
    /// followed. Null and empty paths, the root of the disk, and by a relative name the read folder or one above
    /// it are refused.
    ///
    /// @param removeFolder  false only empties it
    /// @return true when there was such a folder and all that was to go has gone
    static bool RemoveFolder(const char* path, bool removeFolder);

    enum class Items { Files, Folders };

    /// The primitive behind the searches below: no redirect, no merging.
    ///
    /// @param pattern  a folder for all that is in it, or a folder and one component with '*' or '?' in it, which
    ///                 match as everywhere in paths without regard to case
    /// @param out      absolute paths in the order of `cStr::ComparePath`; emptied first
    static void SearchItems(const char* pattern, cList<cStr>* out, Items items);

    /// @param merge  also looks into the write folder's copy. What is found there is named as if it stood in the read
    ///               folder, behind the read folder's own files, and what stands in both is listed once.
    static void SearchFiles(const char* pattern, cList<cStr>* out, bool merge = true);
    static void SearchFolders(const char* pattern, cList<cStr>* out); ///< Always merges.

    /// The files of a folder, then those of each of its folders in turn; always merges. A wildcard counts in the first
    /// folder only, and picks among its files and folders alike. Links that lead back up end the walk there.
    ///
    /// @param extensions  as "dds;bmp", without regard to case; null or empty for all
    static void SearchFilesRecursive(const char* pattern, cList<cStr>* out);
    static void SearchFilesRecursive(const char* pattern, cList<cStr>* out, const char* extensions);

    /// Mode bits as for chmod, of the copy that reading would find.
    ///
    /// @return false when there is no such file (folder), or it belongs to somebody else
    static bool SetFilePermissions(const char* path, unsigned int mode = 0644);
    static bool SetFolderPermissions(const char* path, unsigned int mode = 0755);

    /// Compares the times of the last change of two files, each as reading would find it.
    ///
    /// @return -1 when `a` is older, 0, or 1; also 1 when either cannot be told, so that what is derived is made anew
    static int CompareFileChangeTimes(const char* a, const char* b);

    /// Whether two paths lie on different file systems. For what does not exist, its nearest existing folder counts.
    static bool CheckDifferentDisks(const char* a, const char* b);

    static double GetDiskFreeSpace(); ///< Bytes that this program may still fill in the read folder; 0 on failure.

    // ---- Archives: nothing here reads them. A `Source` that does can be added to the sources.

    static void AddSourceZip(const char* filePn);
    static void AddSourceZips(const char* folder); ///< Each file of the folder with the extension "cZip".
    static bool ExtractZip(const char* filePn, const char* folder, void (*onProgress)(float));
    static bool CreateZip(const char* filePn, const char* folder, bool, void (*onProgress)(float));

    // ---- Processes

    /// Runs a program and waits for its end. No shell is involved.
    ///
    /// @param command    a name is searched in PATH; a path may be relative to the read folder
    /// @param arguments  separated by blanks and tabs; double quotes hold them together, there is no escape. May be
    /// null.
    /// @param output     may be null; gets standard output and error to their end, at most `MaxExecOutput` bytes. With
    ///                   it the wait lasts until everything that the program leaves running has closed them
    /// @return whether it could be started and ended with status 0
    static bool Exec(const char* command, const char* arguments = nullptr, cStr* output = nullptr);

    /// Replaces this process by a fresh copy of the program with the same arguments. Open descriptors are closed, the
    /// process id stays.
    ///
    /// @return only on failure, and then false; a program started later then inherits no descriptors
    static bool RestartThisApplication();

    static bool Explore(const char* path); ///< False without a host.

    static constexpr int MaxExecOutput = 1 << 26;

    // ---- Dialogs and clipboard. A dialog answers false when it was cancelled, and its argument is then as before.

    static bool LoadFileDialog(const FileDialog& dialog, cStr* filePn);
    static bool SaveFileDialog(const FileDialog& dialog, cStr* filePn);
    static bool SelectFolderDialog(const char* title, const char* key, cStr* folder);

    // clang-format off
    static bool LoadModelDialog(cStr* filePn);
    static bool SaveModelDialog(cStr* filePn);
    static bool LoadAnimDialog(cStr* filePn);
    static bool SaveAnimDialog(cStr* filePn);
    static bool LoadBspDialog(cStr* filePn);
    static bool SaveBspDialog(cStr* filePn);
    static bool LoadCameraDialog(cStr* filePn);
    static bool SaveCameraDialog(cStr* filePn);
    static bool LoadSoundDialog(cStr* filePn);
    static bool SaveSoundDialog(cStr* filePn);
    static bool LoadImageDialog(cStr* filePn);
    static bool SaveImageDialog(cStr* filePn);
    static bool LoadXmlDialog(cStr* filePn);
    static bool SaveXmlDialog(cStr* filePn);

    static void SetModelAnimCameraBspDialogsInitialPath(const char* s) { cIO_ModelAnimCameraBspDialogsInitialPath = s; }
    static void SetModelDialogInitialFile(const char* s)  { cIO_ModelDialogInitialFile = s; }
    static void SetAnimDialogInitialFile(const char* s)   { cIO_AnimDialogInitialFile = s; }
    static void SetBspDialogInitialFile(const char* s)    { cIO_BspDialogInitialFile = s; }
    static void SetCameraDialogInitialFile(const char* s) { cIO_CameraDialogInitialFile = s; }
    static void SetSoundDialogInitialPath(const char* s)  { cIO_SoundDialogInitialPath = s; }
    static void SetSoundDialogInitialFile(const char* s)  { cIO_SoundDialogInitialFile = s; }
    static void SetImageDialogInitialPath(const char* s)  { cIO_ImageDialogInitialPath = s; }
    static void SetImageDialogInitialFile(const char* s)  { cIO_ImageDialogInitialFile = s; }
    static void SetXmlDialogInitialPath(const char* s)    { cIO_XmlDialogInitialPath = s; }
    static void SetXmlDialogInitialFile(const char* s)    { cIO_XmlDialogInitialFile = s; }

    static const cStr& GetModelAnimCameraBspDialogsInitialPath() { return cIO_ModelAnimCameraBspDialogsInitialPath; }
    static const cStr& GetModelDialogInitialFile()  { return cIO_ModelDialogInitialFile; }
    static const cStr& GetAnimDialogInitialFile()   { return cIO_AnimDialogInitialFile; }
    static const cStr& GetBspDialogInitialFile()    { return cIO_BspDialogInitialFile; }
    static const cStr& GetCameraDialogInitialFile() { return cIO_CameraDialogInitialFile; }
    static const cStr& GetSoundDialogInitialPath()  { return cIO_SoundDialogInitialPath; }
    static const cStr& GetSoundDialogInitialFile()  { return cIO_SoundDialogInitialFile; }
    static const cStr& GetImageDialogInitialPath()  { return cIO_ImageDialogInitialPath; }
    static const cStr& GetImageDialogInitialFile()  { return cIO_ImageDialogInitialFile; }
    static const cStr& GetXmlDialogInitialPath()    { return cIO_XmlDialogInitialPath; }
    static const cStr& GetXmlDialogInitialFile()    { return cIO_XmlDialogInitialFile; }
    // clang-format on

    /// The folder that dialogs of a key begin in; the read folder when none was set.
    static cStr GetFileDialogInitialFolder(const char* key);
    static void SetFileDialogInitialFolder(const char* key, const char* folder); ///< Makes the folder absolute.
    static bool GetFileDialogPrefExists(const char* key);

    static bool CopyToClipboard(const char* text);
    static bool CopyFromClipboard(cStr* text); ///< False, and an empty text, when there is none.
    static bool CopyToClipboard(const cImage& image);
    static bool CopyFromClipboard(cImage* image); ///< False, and an empty image, when there is none.

    // ---- Assets. What is loaded goes by its extension to a codec, without regard to case; what cannot be loaded, or
    // not be decoded, costs a warning. The log knows files by their path relative to the read folder.

    static bool LoadImage(const char* path, cImage* image);
    static bool LoadModel(const char* path, cModel* model);
    static bool LoadAnim(const char* path, cAnim* anim);
    static bool LoadCamera(const char* path, cCamera* camera);
    static bool LoadBsp(const char* path, cBsp* bsp); ///< The extension is "cBsp" by default.

    /// Without an extension, or a codec for it, false without a word. An object that encodes to nothing is no file.
    static bool SaveImage(const char* path, const cImage& image);
    static bool SaveModel(const char* path, const cModel& model);
    static bool SaveAnim(const char* path, const cAnim& anim);
    static bool SaveCamera(const char* path, const cCamera& camera);
    static bool SaveBsp(const char* path, const cBsp& bsp);

    // The registry. An ID stays what it is until everything of its kind is freed, whatever happens to the data behind
    // it: that can be unloaded, comes back with the next access, and is loaded anew into the same object when its file
    // has changed. All of it belongs to the main thread.

    /// @param proxy  the same file is kept once as a model and once as a proxy
    /// @return -1 when it cannot be loaded
    static int GetModelID(const char* path, bool proxy);

    /// @param selector  frame rate to sample the clip at; below 1: whatever was asked for first, or else its own
    static int GetAnimID(const char* path, int selector, const cMat4& transform);
    static int GetCameraID(const char* path);

    // Null for an ID that is none, and for an asset that was unloaded and cannot be loaded any more.
    static const cModel* GetModelPtr(int id);
    static const cAnim* GetAnimPtr(int id);
    static cAnim* GetAnimMutablePtr(int id);
    static const cCamera* GetCameraPtr(int id);
    static const char* GetModelFilePn(int id); ///< Relative to the read folder; "" for an ID that is none.
    static const char* GetAnimFilePn(int id);

    // On failure the old data stay.
    static bool ReloadModel(int id);
    static bool ReloadModel(const char* path); ///< Every entry of that path. @return whether any could be reloaded
    static void ReloadModels();
    static bool ReloadAnim(int id);
    static bool ReloadAnim(const char* path);
    static void ReloadAnims();
    static bool ReloadCamera(int id);
    static bool ReloadCamera(const char* path);
    static void ReloadCameras();
    static void UnloadModels();
    static void UnloadAnims();
    static void UnloadCameras();
    static void FreeModels(); ///< Their IDs are invalid from here on.
    static void FreeAnims();
    static void FreeCameras();

    // ---- Codecs, in the order of addition

    /// Registers a codec for an extension, unless that has one. It must live to the end of the process.
    static void AddCodec(const char* extension, ImageCodec* codec);
    static void AddCodec(const char* extension, ModelCodec* codec);
    static void AddCodec(const char* extension, AnimCodec* codec);
    static void AddCodec(const char* extension, CameraCodec* codec);

    static const cList<ImageCodecInfo>& GetImageCodecs();
    static const cList<ModelCodecInfo>& GetModelCodecs();
    static const cList<AnimCodecInfo>& GetAnimCodecs();
    static const cList<CameraCodecInfo>& GetCameraCodecs();
};

} // namespace trellis
