// Rectangle that shows a colour.
#pragma once

#include "ui/cControl.h"

namespace trellis {

class cColorSwatch : public cControl {
public:
    /// @param color  red, green, blue, alpha; null shows none
    cColorSwatch(cWnd* parent, const float* color, const char* text, float x, float y, int align, bool visible,
                 bool enabled);

    int GetType() const override { return ColorSwatchType; }
    void CalcRelBounds() override;
    void Unbind() override { m_Value = nullptr; }

    const float* m_Value; ///< Not owned.

protected:
    bool FillDrawArgs(cTheme::DrawArgs* args) override;
};

} // namespace trellis
