#include "editor/cSplash_Data.h"

#include "files/cIO.h"
#include "foundation/cTimer.h"

namespace trellis {

constinit cSplash_Data cSplash_Data::s_Data;

namespace {

bool LoadPiece(cSplash_Data::Piece* piece) {
    return !piece->FilePn.IsEmpty() && cIO::LoadImage(piece->FilePn, &piece->Image) &&
           piece->Image.ToFormat(cFormat::Rgb8);
}

} // namespace

/// Where a file of that name, without its extension, belongs; null for any other, and for backgrounds.
cSplash_Data::Piece* cSplash_Data::FindPiece(const cStr& name) {
    if (name.Length() == 1 && name[0] >= '0' && name[0] <= '9') {
        return &Digits[name[0] - '0'];
    }
    return cStr::CompareNoCase(name, "Dot") == 0       ? &Dot
           : cStr::CompareNoCase(name, "Version") == 0 ? &Version
                                                       : nullptr;
}

void cSplash_Data::SearchFiles() {
    static constexpr char s_Background[] = "Background";
    cList<cStr> files, backgrounds;
    cIO::SearchFiles("Splash", &files, true);
    for (const cStr& file : files) {
        cStr name = file.GetFileName();
        name.RemoveFileExtension();
        if (Piece* piece = FindPiece(name)) {
            piece->FilePn = file;
        } else if (cStr::CompareNoCase(name, s_Background, sizeof(s_Background) - 1) == 0) {
            backgrounds.Add(file);
        }
    }
    if (!backgrounds.IsEmpty()) {
        // From 2038 on an int is too short, and a clock of 32 bits is negative.
        const auto seconds = static_cast<unsigned long long>(static_cast<long long>(cTimer::AcquireClockSeconds()));
        Background.FilePn = backgrounds[int(seconds % unsigned(backgrounds.Count()))];
    }
    Searched = true;
}

bool cSplash_Data::Load() {
    bool isComplete = LoadPiece(&Background);
    for (int i = 0; i < DigitCount && isComplete; i++) {
        isComplete = LoadPiece(&Digits[i]);
    }
    Loaded = isComplete && LoadPiece(&Dot) && LoadPiece(&Version);
    return Loaded;
}

void cSplash_Data::Free() {
    *this = cSplash_Data();
}

void cSplash_Image::Compose(const cSplash_Data& data, const char* version, int x, int y) {
    Picture = data.Background.Image;
    Version.Clear();
    for (; *version; version++) {
        if (*version == '.' || (*version >= '0' && *version <= '9')) {
            Version.Append(*version);
        }
    }

    const auto draw = [&](const cImage& image, int left) { // pictures have their first row at the bottom
        Picture.MergeRgb8(image, left, y < 0 ? -y : Picture.GetHeight() - y - image.GetHeight());
    };
    const cImage& label = data.Version.Image;
    if (x >= 0) {
        draw(label, x);
        x += label.GetWidth();
        for (int i = 0; i < Version.Length(); i++) {
            const cImage& image = data.GetImage(Version[i]);
            draw(image, x);
            x += image.GetWidth();
        }
        return;
    }
    x += Picture.GetWidth();
    for (int i = Version.Length() - 1; i >= 0; i--) {
        const cImage& image = data.GetImage(Version[i]);
        x -= image.GetWidth();
        draw(image, x);
    }
    draw(label, x - label.GetWidth());
}

} // namespace trellis
