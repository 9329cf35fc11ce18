// Line between rows, or between the controls of a tool bar, with an optional caption.
#pragma once

#include "ui/cControl.h"

namespace trellis {

class cSeparator : public cControl {
public:
    cSeparator(cWnd* parent, const char* text, bool visible);

    int GetType() const override { return SeparatorType; }
    float GetWithinToolBarWidth() override;
    void CalcRelBounds() override;

protected:
    bool FillDrawArgs(cTheme::DrawArgs* args) override;
};

} // namespace trellis
