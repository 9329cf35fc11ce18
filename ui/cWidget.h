// Base of everything that receives frames and input.
#pragma once

namespace trellis {

/// So far only what its owner needs: it is deleted through its base.
class cWidget {
public:
    virtual ~cWidget() = default;
};

} // namespace trellis
