#include "foundation/cMain.h"

int main(int argc, char** argv) {
    using namespace trellis;
    for (int i = 1; i < argc; i++) {
        if (!cLinuxMain_CmdLineArgs.IsEmpty()) {
            cLinuxMain_CmdLineArgs.Append(' ');
        }
        cLinuxMain_CmdLineArgs.Append(argv[i]);
    }
    cMain_OnPreInit();
}
