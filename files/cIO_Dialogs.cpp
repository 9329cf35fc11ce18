// Dialogs, their memory, and the clipboard: what a host with a window shows on our behalf.
#include "files/cIO.h"

#include "files/cIO_Internal.h"
#include "foundation/cImmortal.h"

namespace trellis {

namespace {

constinit cImmortal<cList<cIO_FileDialogPref>> s_FileDialogPrefsStore;
constinit cIO::Host s_Host;
constinit cStr s_Clipboard; // of a program without a host's

/// A kind of assets: its words, its memory, and what it can be loaded from or saved as.
struct Kind {
    const char* LoadTitle;
    const char* SaveTitle;
    cStr* InitialPath;
    cStr* InitialFile;
    cStr (*Extensions)(bool saving);
};

template <class Info> cStr CodecExtensions(const cList<Info>& codecs, bool saving) {
    cList<cStr> extensions;
    for (const Info& info : codecs) {
        if constexpr (requires { info.Codec->Encodes(); }) {
            if (saving && !info.Codec->Encodes()) {
                continue;
            }
        }
        extensions.Add(info.Extension);
    }
    return cStr::Join(";", extensions);
}

// clang-format off
constexpr Kind s_Model  = {"Load Model", "Save Model",
    &cIO_ModelAnimCameraBspDialogsInitialPath, &cIO_ModelDialogInitialFile,
    [](bool saving) { return CodecExtensions(cIO::GetModelCodecs(), saving); }};
constexpr Kind s_Anim   = {"Load Animation", "Save Animation",
    &cIO_ModelAnimCameraBspDialogsInitialPath, &cIO_AnimDialogInitialFile,
    [](bool saving) { return CodecExtensions(cIO::GetAnimCodecs(), saving); }};
constexpr Kind s_Bsp    = {"Load BSP", "Save BSP",
    &cIO_ModelAnimCameraBspDialogsInitialPath, &cIO_BspDialogInitialFile,
    [](bool) { return cStr("cBsp"); }};
constexpr Kind s_Camera = {"Load Camera", "Save Camera",
    &cIO_ModelAnimCameraBspDialogsInitialPath, &cIO_CameraDialogInitialFile,
    [](bool saving) { return CodecExtensions(cIO::GetCameraCodecs(), saving); }};
constexpr Kind s_Sound  = {"Load Sound", "Save Sound",
    &cIO_SoundDialogInitialPath, &cIO_SoundDialogInitialFile,
    [](bool) { return cStr("caf"); }};
constexpr Kind s_Image  = {"Load Image", "Save Image",
    &cIO_ImageDialogInitialPath, &cIO_ImageDialogInitialFile,
    [](bool saving) { return CodecExtensions(cIO::GetImageCodecs(), saving); }};
constexpr Kind s_Xml    = {"Load Xml", "Save Xml",
    &cIO_XmlDialogInitialPath, &cIO_XmlDialogInitialFile,
    [](bool) { return cStr("Xml"); }};
// clang-format on

bool ShowFileDialog(const cIO::FileDialog& dialog, bool saving, cStr* filePn) {
    cIO::FileDialog shown = dialog;
    cStr folder = dialog.InitialPath && *dialog.InitialPath ? cIO::EnsureAbsolutePath(dialog.InitialPath)
                                                            : cIO::GetFileDialogInitialFolder(dialog.Key);
    shown.InitialPath = folder;
    const auto show = saving ? s_Host.ShowSaveFile : s_Host.ShowLoadFile;
    cStr chosen;
    if (!show || !show(shown, &chosen) || chosen.IsEmpty()) {
        return false;
    }
    if (saving && dialog.Extensions) {
        cList<cStr> extensions;
        cStr::Split(dialog.Extensions, &extensions, ";");
        if (!extensions.IsEmpty()) {
            chosen.SetFileDefaultExtension(extensions[0]);
        }
    }
    *filePn = cIO::EnsureAbsolutePath(chosen);
    if (dialog.Key) {
        folder = *filePn;
        folder.RemoveFileName();
        cIO::SetFileDialogInitialFolder(dialog.Key, folder);
    }
    return true;
}

bool ShowKindDialog(const Kind& kind, bool saving, cStr* filePn) {
    const cStr extensions = kind.Extensions(saving);
    cIO::FileDialog dialog;
    dialog.Title = saving ? kind.SaveTitle : kind.LoadTitle;
    dialog.Extensions = extensions;
    dialog.InitialPath = *kind.InitialPath;
    dialog.InitialFile = *kind.InitialFile;
    cStr chosen;
    if (!ShowFileDialog(dialog, saving, &chosen)) {
        return false;
    }
    *kind.InitialPath = chosen;
    kind.InitialPath->RemoveFileName();
    *kind.InitialFile = chosen.GetFileName();
    *filePn = chosen; // last: it may be one of the two
    return true;
}

int FindPref(const char* key) {
    for (int i = 0; key && i < cIO_FileDialogPrefs.Count(); i++) {
        if (cIO_FileDialogPrefs[i].Key == key) {
            return i;
        }
    }
    return -1;
}

} // namespace

constinit cList<cIO_FileDialogPref>& cIO_FileDialogPrefs = s_FileDialogPrefsStore.Value;

void cIO::SetHost(const Host& host) {
    s_Host = host;
}

bool cIO::LoadFileDialog(const FileDialog& dialog, cStr* filePn) {
    return ShowFileDialog(dialog, false, filePn);
}

bool cIO::SaveFileDialog(const FileDialog& dialog, cStr* filePn) {
    return ShowFileDialog(dialog, true, filePn);
}

bool cIO::SelectFolderDialog(const char* title, const char* key, cStr* folder) {
    cStr chosen;
    if (!s_Host.ShowSelectFolder || !s_Host.ShowSelectFolder(title, GetFileDialogInitialFolder(key), &chosen) ||
        chosen.IsEmpty()) {
        return false;
    }
    *folder = EnsureAbsolutePath(chosen);
    SetFileDialogInitialFolder(key, *folder);
    return true;
}

// clang-format off
bool cIO::LoadModelDialog(cStr* filePn)  { return ShowKindDialog(s_Model, false, filePn); }
bool cIO::SaveModelDialog(cStr* filePn)  { return ShowKindDialog(s_Model, true, filePn); }
bool cIO::LoadAnimDialog(cStr* filePn)   { return ShowKindDialog(s_Anim, false, filePn); }
bool cIO::SaveAnimDialog(cStr* filePn)   { return ShowKindDialog(s_Anim, true, filePn); }
bool cIO::LoadBspDialog(cStr* filePn)    { return ShowKindDialog(s_Bsp, false, filePn); }
bool cIO::SaveBspDialog(cStr* filePn)    { return ShowKindDialog(s_Bsp, true, filePn); }
bool cIO::LoadCameraDialog(cStr* filePn) { return ShowKindDialog(s_Camera, false, filePn); }
bool cIO::SaveCameraDialog(cStr* filePn) { return ShowKindDialog(s_Camera, true, filePn); }
bool cIO::LoadSoundDialog(cStr* filePn)  { return ShowKindDialog(s_Sound, false, filePn); }
bool cIO::SaveSoundDialog(cStr* filePn)  { return ShowKindDialog(s_Sound, true, filePn); }
bool cIO::LoadImageDialog(cStr* filePn)  { return ShowKindDialog(s_Image, false, filePn); }
bool cIO::SaveImageDialog(cStr* filePn)  { return ShowKindDialog(s_Image, true, filePn); }
bool cIO::LoadXmlDialog(cStr* filePn)    { return ShowKindDialog(s_Xml, false, filePn); }
bool cIO::SaveXmlDialog(cStr* filePn)    { return ShowKindDialog(s_Xml, true, filePn); }
// clang-format on

cStr cIO::GetFileDialogInitialFolder(const char* key) {
    const int index = FindPref(key);
    return index == -1 ? GetDefaultSourceFolder() : cIO_FileDialogPrefs[index].Folder;
}

void cIO::SetFileDialogInitialFolder(const char* key, const char* folder) {
    if (!key) {
        return;
    }
    cIO_FileDialogPref pref = {key, EnsureAbsolutePath(folder)};
    const int index = FindPref(key);
    if (index == -1) {
        cIO_FileDialogPrefs.Add(pref);
    } else {
        cIO_FileDialogPrefs[index] = pref;
    }
}

bool cIO::GetFileDialogPrefExists(const char* key) {
    cIO_Init();
    return FindPref(key) != -1;
}

bool cIO::CopyToClipboard(const char* text) {
    if (s_Host.SetClipboardText) {
        return s_Host.SetClipboardText(text ? text : "");
    }
    s_Clipboard = text ? text : "";
    return true;
}

bool cIO::CopyFromClipboard(cStr* text) {
    if (s_Host.GetClipboardText) {
        text->Clear();
        return s_Host.GetClipboardText(text) && !text->IsEmpty();
    }
    *text = s_Clipboard;
    return !text->IsEmpty();
}

const cIO::Host& cIO_GetHost() {
    return s_Host;
}

bool cIO::Explore(const char* path) {
    return s_Host.Explore && s_Host.Explore(cIO_FindForReading(path));
}

} // namespace trellis
