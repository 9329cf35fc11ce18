// Rectangle that shows a texture.
#pragma once

#include "ui/cControl.h"

namespace trellis {

class cImageSwatch : public cControl {
public:
    /// @param texture  id of the texture; null or -1 shows that there is none
    cImageSwatch(cWnd* parent, const int* texture, const char* text, float x, float y, int align, bool visible,
                 bool enabled);

    int GetType() const override { return ImageSwatchType; }
    void CalcRelBounds() override;
    void Unbind() override { m_Value = nullptr; }

    const int* m_Value; ///< Not owned.

protected:
    bool FillDrawArgs(cTheme::DrawArgs* args) override;
};

} // namespace trellis
