// The application's side of the hooks, for programs that only test the framework.
#include "foundation/cImmortal.h"
#include "foundation/cMain.h"

namespace trellis {

namespace {
cImmortal<cStr> s_Title __attribute__((init_priority(300))) ("Trellis tests");
}

void cMain_OnPreInit() {}
int cMain_OnSetInitialWindowSize(int*, int*, int*, int*) {
    return 0;
}
void cMain_OnRender(const cRect&) {}
void cMain_OnInit() {}
void cMain_OnFree() {}
void cMain_OnPostFree() {}
int cMain_OnClose() {
    return 1;
}
void cMain_OnActivate() {}
void cMain_OnCrash() {}
void cMain_OnDrop(const char*) {}
void cMain_OnDropURL(const char*) {}
void cMain_OnDownloadProgress(int) {}
void cMain_OnInitPath(cStr*) {}

constinit const cStr& cMain_Title = s_Title.Value;
constinit cStr cMain_LoadSceneXmlFilePn;
constinit bool cMain_LoadSceneEnableIntro = false;

} // namespace trellis
