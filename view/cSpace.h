// The frame of a manipulator's axes.
#pragma once

namespace trellis {

class cSpace {
public:
    enum Enum : int {
        World,
        Local ///< The orientation of what is edited.
    };
};

} // namespace trellis
