// A colour as it is edited: by its picture, by each channel, and with a factor.
#pragma once

#include "math/cColor.h"
#include "reflection/cClassMembers.h"

namespace trellis {

class cColorEdit : public cClass {
    TRELLIS_CLASS(cColorEdit)

public:
    void CustomCtor() override; ///< White; the modulator at 1 in [0, 2].

    cColor Color; ///< Edited as a whole and by channel; saved as a whole.

    /// A factor with its own ends, in the order that `_cSliderRangedF` lays down.
    struct cModulator {
        float Value, Min, Max;
    };
    cModulator Modulator;
};

} // namespace trellis
