#include "foundation/cMain.h"

namespace trellis {

constinit cStr cLinuxMain_CmdLineArgs;

cStr cMain_GetCmdLineArgs() {
    return cLinuxMain_CmdLineArgs;
}

} // namespace trellis
