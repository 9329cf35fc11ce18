#include "ui/cImageSwatch.h"

#include "render/cRender.h"

namespace trellis {

namespace {

/// Size and format, levels, and the file.
void Describe(int texture, cStr* lines) {
    const int width = cRender::GetTextureWidth(texture), height = cRender::GetTextureHeight(texture);
    if (width < 1 || height < 1) {
        return;
    }
    lines[0] = cStr::Format("%d x %d", width, height);
    if (const int depth = cRender::GetTextureDepth(texture); depth > 1) {
        lines[0].AppendFormat(" x %d", depth);
    }
    const int format = cRender::GetTextureFormat(texture);
    if (const char* name = cFormat::ToString(format); name && format != cFormat::None) {
        lines[0].AppendFormat(", %s", name);
    }
    const int levels = cRender::GetTextureMipMapCount(texture);
    lines[1] = cStr::Format(levels == 1 ? "%d level" : "%d levels", levels);
    lines[2] = cStr(cRender::GetTextureFilePn(texture)).GetFileName();
}

} // namespace

cImageSwatch::cImageSwatch(cWnd* parent, const int* texture, const char* text, float x, float y, int align,
                           bool visible, bool enabled)
    : cControl(parent, text, x, y, align, visible, enabled), m_Value(texture) {}

void cImageSwatch::CalcRelBounds() {
    LayOut(m_Theme->LabelFont, m_Theme->LabelPadding, m_Theme->ImageSwatchSize);
}

bool cImageSwatch::FillDrawArgs(cTheme::DrawArgs* args) {
    args->Part = cTheme::Parts::ImageSwatch;
    args->Texture = m_Value ? *m_Value : -1;
    if (args->Texture != -1) {
        Describe(args->Texture, args->Extra);
    }
    return true;
}

} // namespace trellis
