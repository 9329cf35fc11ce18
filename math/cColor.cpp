#include "math/cColor.h"

namespace trellis {

cStr cColor::ToWebColor() const {
    cStr text("#");
    for (const float channel : {r, g, b}) {
        const unsigned int v = FloatToDword(channel);
        text.AppendFormat("%x%x", v >> 4, v & 15);
    }
    return text;
}

} // namespace trellis
