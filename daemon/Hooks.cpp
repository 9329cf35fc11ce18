// The application's side of the framework's hooks: a daemon has no window, so all but the first are empty.
#include "daemon/Halyard.h"
#include "daemon/Halyard_Log.h"
#include "foundation/cImmortal.h"
#include "foundation/cMain.h"
#include "foundation/cThread.h"

namespace trellis {

namespace {

constexpr unsigned int ProcessMs = 5000;

// Connections show it while the process exits.
cImmortal<cStr> s_Title __attribute__((init_priority(300))) ("Marigold: Halyard 1.8 Linux Daemon (32-bit)");

} // namespace

constinit const cStr& cMain_Title = s_Title.Value;
constinit cStr cMain_LoadSceneXmlFilePn;
constinit bool cMain_LoadSceneEnableIntro = false;

void cMain_OnPreInit() {
    Halyard_OnPreInit();
    Halyard_Log::Init();
    Halyard_OnInit();
    for (;;) {
        Halyard_OnProcess();
        Halyard_AdmitListSignal();
        cThread::Sleep(ProcessMs);
        Halyard_HoldListSignal();
    }
}

int cMain_OnSetInitialWindowSize(int*, int*, int*, int*) {
    return 0;
}

int cMain_OnClose() {
    return 1;
}

void cMain_OnRender(const cRect&) {}
void cMain_OnInit() {}
void cMain_OnFree() {}
void cMain_OnPostFree() {}
void cMain_OnActivate() {}
void cMain_OnCrash() {}
void cMain_OnDrop(const char*) {}
void cMain_OnDropURL(const char*) {}
void cMain_OnDownloadProgress(int) {}
void cMain_OnInitPath(cStr*) {}

} // namespace trellis
