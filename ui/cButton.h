// Push button: with a caption, or with a picture for tool bars.
#pragma once

#include "ui/cPressControl.h"

namespace trellis {

/// Sends `Pressed` to its listener, and then to its parent.
class cButton : public cPressControl {
public:
    cButton(cWnd* parent, const char* text, float x, float y, int align, bool visible, bool enabled);

    /// With a picture; the text is its tool tip. It never takes the focus.
    /// @param arrow  with a small arrow beside the picture, which announces a list
    cButton(cWnd* parent, cTheme::ToolBarIcon::Enum icon, bool arrow, const char* text, float x, float y, int align,
            bool visible, bool enabled);

    int GetType() const override { return ButtonType; }
    void CalcRelBounds() override;
    float GetWithinToolBarWidth() override { return m_RelBounds.Width(); }
    bool OnSetToolTip(cStr* text, const cTheme** theme) override;

    int m_Icon = -1; ///< Cell of the tool-bar bitmap; -1: a plain button.
    bool m_Arrow = false;

protected:
    bool FillDrawArgs(cTheme::DrawArgs* args) override;
    void OnPressed() override;
    bool TakesFocus() const override { return m_Icon == -1; }
};

} // namespace trellis
