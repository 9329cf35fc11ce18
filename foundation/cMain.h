// The contract between the framework and the application that links it: hooks that the application defines, and what
// the framework offers them. An application without a window gives most hooks an empty body.
#pragma once

#include "foundation/cStr.h"

namespace trellis {

class cRect;

/// Called by `main` once the command line stands; the application takes over from here.
void cMain_OnPreInit();
/// The outer size, then the inner minimum, of the first window, in pixels. @return 0 when nothing was changed
int cMain_OnSetInitialWindowSize(int* width, int* height, int* minWidth, int* minHeight);
void cMain_OnRender(const cRect& viewport); ///< Once a frame, between the begin and the end of a frame.
void cMain_OnInit();
void cMain_OnFree();
void cMain_OnPostFree();
int cMain_OnClose(); ///< @return 1 when closing is allowed
void cMain_OnActivate();
void cMain_OnCrash();
void cMain_OnDrop(const char* filePn);
void cMain_OnDropURL(const char* url);
void cMain_OnDownloadProgress(int percent);
void cMain_OnInitPath(cStr* folder); ///< May change the folder of the default file source.

/// Defined by the application, too. A title needs `init_priority`: other globals may log it.
extern const cStr& cMain_Title;
extern cStr cMain_LoadSceneXmlFilePn;
extern bool cMain_LoadSceneEnableIntro;

extern cStr cLinuxMain_CmdLineArgs; ///< Arguments joined by one blank, without the program's name.
cStr cMain_GetCmdLineArgs();        ///< A copy of it.

/// State of a pen tablet; null pointers are allowed. `*last` is set to -1.
void cMain_GetTabletState(int* pressure, bool* penPressed, bool* eraserUsed, int* last);

} // namespace trellis
