#include "editor/cSettings.h"

namespace trellis {

constinit cSettings g_Settings;

} // namespace trellis
