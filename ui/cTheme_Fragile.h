// The soft look: round shapes of gradients, which glow and swell under the hand. All sizes grow with its fonts.
#pragma once

#include "ui/cTheme.h"

namespace trellis {

class cTheme_Fragile_Pen;

class cTheme_Fragile : public cTheme {
public:
    cTheme_Fragile(); ///< Needs a device. Without "Calibri 11" or "Calibri 16" the sizes stay 0.
    void Draw(const DrawArgs& args) const override;

    float R(float v) const; ///< A length in points of the small font, scaled, whole.

private:
    void SetMetrics();

    using Pen = cTheme_Fragile_Pen;
    static void DrawScrollTrack(const Pen& pen);
    static void DrawScrollThumb(const Pen& pen);
    static void DrawScrollPage(const Pen& pen);
    static void DrawScrollArrow(const Pen& pen);
    static void DrawFormBody(const Pen& pen);
    static void DrawFormClient(const Pen& pen);
    static void DrawFormTitleBar(const Pen& pen);
    static void DrawFormTitle(const Pen& pen);
    static void DrawFormButton(const Pen& pen);
    static void DrawFormGrip(const Pen& pen);
    static void DrawDockRegion(const Pen& pen);

    static void DrawButton(const Pen& pen);
    static void DrawBindButton(const Pen& pen);
    static void DrawSlider(const Pen& pen);
    static void DrawCheckBox(const Pen& pen);
    static void DrawComboBox(const Pen& pen);
    static void DrawDropDown(const Pen& pen);
    static void DrawToolTip(const Pen& pen);
    static void DrawEdit(const Pen& pen);
    static void DrawPanel(const Pen& pen);
    static void DrawSeparator(const Pen& pen);
    static void DrawLabel(const Pen& pen);
    static void DrawImageSwatch(const Pen& pen);
    static void DrawColorSwatch(const Pen& pen);
};

} // namespace trellis
