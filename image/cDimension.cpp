#include "image/cDimension.h"

#include <iterator>

namespace trellis {

const char* cDimension::ToString(int dimension) {
    static constexpr const char* s_Texts[] = {"None", "1D", "2D", "3D", "Cube"};
    static_assert(std::size(s_Texts) == Cube + 1);
    return dimension >= 0 && dimension < int(std::size(s_Texts)) ? s_Texts[dimension] : nullptr;
}

} // namespace trellis
