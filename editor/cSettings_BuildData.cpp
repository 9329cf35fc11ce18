// The release copy of the data for one platform.
#include "editor/cSettings.h"

#include "files/cFile.h"
#include "files/cIO.h"
#include "image/cCodecPvr.h"
#include "image/cImage.h"
#include "reflection/cEnum.h"
#include "ui/cMessageBox.h"

namespace trellis {

namespace {

constexpr struct {
    const char* Folder;
    const char* Extension;
} s_Copied[] = {
    {"Models", "cModel"}, {"Models", "cAnim"}, {"Models", "cCamera"}, {"Models", "cBsp"}, {"Shaders", "glsl"},
    {"Xmls", "Xml"},      {"Fonts", "cFont"},  {"Fonts", "bmp"},      {"Sounds", "caf"},
};

/// A build from one folder to another; neither name ends in a slash.
struct Build {
    cStr Source, Target;

    cList<cStr> Search(const char* folder, const char* extensions) const {
        cList<cStr> files;
        cIO::SearchFilesRecursive(Source + "/" + folder, &files, extensions);
        return files;
    }

    cStr TargetOf(const cStr& file) const { return Target + (file.Text() + Source.Length()); }

    void CopyFiles(const char* folder, const char* extension) const {
        for (const cStr& name : Search(folder, extension)) {
            cFile file;
            if (cIO::LoadFile(name, &file)) {
                const cStr target = TargetOf(name);
                cIO::CreatePath(target);
                cIO::SaveFile(target, file);
            }
        }
    }

    void ConvertTextures(const char* extension, bool includeNormalMaps) const {
        for (const cStr& name : Search("Textures", "dds;bmp")) {
            if (!includeNormalMaps && IsNormalMap(name)) {
                continue;
            }
            cImage image;
            if (cIO::LoadImage(name, &image)) {
                cStr target = TargetOf(name);
                target.SetFileExtension(extension);
                cIO::CreatePath(target);
                cIO::SaveImage(target, image);
            }
        }
    }

    static bool IsNormalMap(const cStr& name) {
        constexpr int length = 6;
        return name.Length() >= length && cStr::CompareNoCase(name.Text() + name.Length() - length, "_n.dds") == 0;
    }
};

} // namespace

void cSettings::BuildData() {
    const cStr platform = cEnums::Get("cSettings_Platform")->GetName(Platform);
    Build build;
    build.Source = cIO::GetDefaultSourceFolder();
    build.Source.TrimEnd("/\\");
    build.Target = build.Source + "." + platform;

    const cStr text = cStr::Format("Are you sure you want to build data from folder \"%s\" for %s platform within "
                                   "folder \"%s\"?",
                                   build.Source.Text(), platform.Text(), build.Target.Text());
    if (!cMessageBox::YesNo("Confirm Build Data For " + platform, text)) {
        return;
    }
    cIO::RemoveFolder(build.Target, true);
    for (const auto& copied : s_Copied) {
        build.CopyFiles(copied.Folder, copied.Extension);
    }
    // Tizen's copy has no textures: nothing converts them, and as they are they are not for a release.
    if (Platform != Tizen) {
        build.ConvertTextures(cCodecPvr::FileExtension, IncludeNormalMaps);
    }
}

} // namespace trellis
