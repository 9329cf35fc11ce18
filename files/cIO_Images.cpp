// Images by their files.
#include "files/cIO_Assets.h"
#include "image/cImage.h"

namespace trellis {

namespace {

cImage& Clipboard() { // of a program without a host's
    static cImage s_Image;
    return s_Image;
}

} // namespace

void cIO::AddCodec(const char* extension, ImageCodec* codec) {
    cIO_Init();
    cIO_AddCodecTo(cIO_ImageCodecs, extension, codec, "image codec.");
}

bool cIO::LoadImage(const char* path, cImage* image) {
    return cIO_LoadAsset(path, image, GetImageCodecs(), "image");
}

bool cIO::SaveImage(const char* path, const cImage& image) {
    return cIO_SaveAsset(path, image, GetImageCodecs(), "image");
}

bool cIO::CopyToClipboard(const cImage& image) {
    if (cIO_GetHost().SetClipboardImage) {
        return cIO_GetHost().SetClipboardImage(image);
    }
    Clipboard() = image;
    return true;
}

bool cIO::CopyFromClipboard(cImage* image) {
    if (cIO_GetHost().GetClipboardImage) {
        image->Free();
        return cIO_GetHost().GetClipboardImage(image) && !image->IsEmpty();
    }
    *image = Clipboard();
    return !image->IsEmpty();
}

} // namespace trellis
