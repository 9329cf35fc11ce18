// Caption with a text that changes beside it.
#pragma once

#include "ui/cControl.h"

namespace trellis {

class cLabel : public cControl {
public:
    /// @param source  the text; may be null
    cLabel(cWnd* parent, const cStr* source, const char* text, float x, float y, int align, bool visible, bool enabled);

    int GetType() const override { return LabelType; }
    void CalcRelBounds() override;
    void Unbind() override { m_Source = nullptr; }

    const cStr* m_Source; ///< Not owned.

protected:
    bool FillDrawArgs(cTheme::DrawArgs* args) override;
};

} // namespace trellis
