// The kind of a member that takes one of several named values.
#pragma once

#include "reflection/Kinds.h"

namespace trellis {

class cEnum;

/// The value of a `cEnum`, an int; files hold its name. The member's extra data is the `cEnum`, which the class fills
/// in its `CustomCtor`. -1 cannot be read back: the enum's first value stands in for it, as for an unknown name.
class _cIndex : public cKind<_cIndex, cValueKind<int>> {
public:
    static constexpr const char* ClassName = "_cIndex";
    void Save(cXml& node, void* data, void* extra) override; ///< Without an enum the body stays as it is.
    bool Load(cXml& node, void* data, cErrorPager* pager, void* extra) override;
    bool CompatibleWith(const char*, int size) override { return size == DataSize; }
};

} // namespace trellis
