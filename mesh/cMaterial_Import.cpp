#include "mesh/cMaterial_Import.h"

#include "files/cIO.h"
#include "files/cIO_Assets.h"
#include "image/cImage.h"
#include "math/cVec3.h"
#include "render/cRender.h"

#include <cassert>
#include <new>
#include <utility>

namespace trellis {

namespace {

using ImportType = cMaterial::ImportType;

/// What the image dialogs open with belongs to the other dialogs, and is theirs again in the end.
class DialogMemory {
public:
    DialogMemory() : m_Path(cIO::GetImageDialogInitialPath()), m_File(cIO::GetImageDialogInitialFile()) {}
    ~DialogMemory() {
        cIO::SetImageDialogInitialPath(m_Path);
        cIO::SetImageDialogInitialFile(m_File);
    }
    DialogMemory(const DialogMemory&) = delete;
    DialogMemory& operator=(const DialogMemory&) = delete;

private:
    const cStr m_Path, m_File;
};

bool LoadPicture(cStr* filePn, cImage* image) {
    if (!cIO::LoadImageDialog(filePn) || !cIO::LoadImage(*filePn, image) || image->IsEmpty()) {
        return false;
    }
    image->Uncompress();
    image->RemoveMipMaps();
    return image->MakePowerOfTwo();
}

void RemoveAlpha(cImage* image) {
    image->RemoveChannels(true, true, true, false);
}

cVec3 Decode(const unsigned char* p) {
    const auto decode = [](unsigned char c) { return float(c) / 255 * 2 - 1; };
    return cVec3::Normalize({decode(p[0]), decode(p[1]), decode(p[2])});
}

/// Adds the relief of `other` where the sizes agree; alpha stays.
///
/// @return false when they do, and there is nothing to add it to
bool MixNormals(cImage* image, const cImage& other) {
    if (image->GetWidth() != other.GetWidth() || image->GetHeight() != other.GetHeight() ||
        image->GetDepth() != other.GetDepth()) {
        return true;
    }
    if (image->GetFormat() != cFormat::Rgb8 && image->GetFormat() != cFormat::Rgba8) {
        return false;
    }
    const int step = cFormat::ChannelCount[image->GetFormat()], otherStep = cFormat::ChannelCount[other.GetFormat()];
    unsigned char* p = image->GetPixels();
    const unsigned char* q = other.GetPixels();
    for (int i = image->GetPixelCount(); i > 0; i--, p += step, q += otherStep) {
        const cVec3 n = cVec3::Normalize(Decode(p) + Decode(q));
        for (int axis = 0; axis < 3; axis++) {
            p[axis] = static_cast<unsigned char>((n[axis] + 1) * 0.5f * 255);
        }
    }
    return true;
}

bool LoadNormalMap(const cMaterial_ImportArgs& args, cStr* filePn, cImage* image) {
    if (!LoadPicture(filePn, image)) {
        return false;
    }
    if (!args.NormalKeepAlpha) {
        RemoveAlpha(image);
    }
    if (args.InvertGreen) {
        image->InvertChannel(1);
    }
    return true;
}

/// The main picture of all types but `NormalMap`.
bool LoadMain(const cMaterial_ImportArgs& args, cStr* filePn, cImage* image) {
    if (!LoadPicture(filePn, image)) {
        return false;
    }
    const cFormat::Enum format = image->GetFormat();
    if (format != cFormat::R8 && format != cFormat::Rgb8 && format != cFormat::Rgba8) {
        return false;
    }
    if (args.Type == ImportType::Diffuse) {
        if (!args.KeepAlpha) {
            RemoveAlpha(image);
        }
        return true;
    }
    if (!image->ToNormalMap(cFormat::Rgba8, args.ScaleZ, false)) {
        return false;
    }
    if (!args.HeightAsAlpha || args.Type == ImportType::NormalMapPlusHeightMap) {
        RemoveAlpha(image);
    }
    if (args.InvertGreen) {
        image->InvertChannel(1);
    }
    return true;
}

/// @param source  receives the file of the picture that the result is, which names the target
bool MakePicture(const cMaterial_ImportArgs& args, cStr* source, cImage* image) {
    const bool mixed = args.Type == ImportType::NormalMapPlusHeightMap;
    if (!mixed && args.Type != ImportType::NormalMap) {
        return LoadMain(args, source, image);
    }
    if (!LoadNormalMap(args, source, image)) {
        return false;
    }
    cStr filePn;
    cImage relief;
    return !mixed || (LoadMain(args, &filePn, &relief) && MixNormals(image, relief));
}

/// Without its slash, unless that is all.
cStr FolderOf(const cStr& filePn) {
    cStr folder = filePn.GetFilePath();
    if (folder.Length() > 1) {
        folder.TrimEnd("/\\");
    }
    return folder;
}

/// @param filePn  what the dialog proposes; receives what it was answered
bool SavePicture(bool particle, const cImage& image, cStr* filePn) {
    cIO::SetImageDialogInitialPath(particle ? cStr("Textures/Particles") : FolderOf(*filePn));
    cIO::SetImageDialogInitialFile(filePn->GetFileName());
    return cIO::SaveImageDialog(filePn) && cIO::CreatePath(*filePn) && cIO::SaveImage(*filePn, image);
}

} // namespace

void cMaterial_Import(cMaterial_ImportArgs* args) {
    const bool diffuse = args->Type == ImportType::Diffuse;
    cStr* target = diffuse ? args->DiffuseMap : args->NormalMap;
    assert(target);
    args->Changed = false;

    static cStr ImportPath = cIO::GetImageDialogInitialPath();
    const DialogMemory memory;
    cIO::SetImageDialogInitialPath(ImportPath);
    cIO::SetImageDialogInitialFile("");
    cStr filePn;
    cImage image;
    try {
        if (!MakePicture(*args, &filePn, &image)) {
            return;
        }
        if (args->Compress || !diffuse) {
            image.CreateMipMaps(127);
            image.Compress();
        }
    } catch (const std::bad_alloc&) { // what could be read may be more than there is room for afterwards
        return;
    }
    if (target->IsEmpty()) {
        filePn = filePn.GetFilePath() + filePn.GetFileBase() + ".dds";
    } else {
        filePn = cIO::EnsureAbsolutePath(*target);
        filePn.SetFileExtension("dds");
    }
    if (!SavePicture(diffuse && !args->Compress, image, &filePn)) {
        return;
    }
    *target = cIO_RelativePath(filePn); // as textures are known to the device
    if (cRender::GetInstance()) {
        cRender::ReloadTexture(*target);
    }
    ImportPath = FolderOf(filePn);
    args->Changed = true;
}

} // namespace trellis
