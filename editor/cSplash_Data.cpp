#include "editor/cSplash_Data.h"

#include "files/cIO.h"
#include "foundation/cTimer.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace trellis {

constinit cSplash_Data cSplash_Data::s_Data;

namespace {

bool LoadPiece(cSplash_Data::Piece* piece) {
    return cIO::LoadImage(piece->FilePn, &piece->Image) && piece->Image.ToFormat(cFormat::Rgb8);
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
    Piece* pieces[DigitCount + 3] = {&Background, &Dot, &Version};
    for (int i = 0; i < DigitCount; i++) {
        pieces[3 + i] = &Digits[i];
    }
    const auto isThere = [](const Piece* piece) { return !piece->FilePn.IsEmpty(); };
    Loaded = std::all_of(std::begin(pieces), std::end(pieces), isThere) && // ahead of the first that is loaded
             std::all_of(std::begin(pieces), std::end(pieces), LoadPiece);
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

    const auto draw = [&](const cImage& image, long long left) { // pictures have their first row at the bottom
        constexpr long long Far = 1 << 24;                       // nothing is seen there
        const long long bottom = y < 0 ? -(long long)y : (long long)Picture.GetHeight() - y - image.GetHeight();
        if (std::max(std::abs(left), std::abs(bottom)) < Far) {
            Picture.MergeRgb8(image, int(left), int(bottom));
        }
    };
    const cImage& label = data.Version.Image;
    long long at = x;
    if (x >= 0) {
        draw(label, at);
        at += label.GetWidth();
        for (int i = 0; i < Version.Length(); i++) {
            const cImage& image = data.GetImage(Version[i]);
            draw(image, at);
            at += image.GetWidth();
        }
        return;
    }
    at += Picture.GetWidth();
    for (int i = Version.Length() - 1; i >= 0; i--) {
        const cImage& image = data.GetImage(Version[i]);
        at -= image.GetWidth();
        draw(image, at);
    }
    draw(label, at - label.GetWidth());
}

} // namespace trellis
