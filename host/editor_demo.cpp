// Opens the class explorer on a few objects, plays a script of input, and saves pictures of it.
//
//     editor_demo DATA SCRIPT FOLDER [XML]      DATA holds Fonts/ and Textures/
//
// The script is that of InputScript.h; FOLDER receives NAME.bmp for each of its pictures. Every file dialog is answered
// by the path XML, so that "Save..." and "Load..." of the tool bar work on it.
#include "animation/cSpline.h"
#include "editor/cClassExplorer.h"
#include "editor/cSettings.h"
#include "files/cIO.h"
#include "host/ScriptedHost.h"
#include "host/cShowcase.h"
#include "mesh/cMaterials.h"

#include <cstdio>

using namespace trellis;

namespace {

cStr s_XmlPn;

bool Answer(const cIO::FileDialog&, cStr* filePn) {
    *filePn = s_XmlPn;
    return !s_XmlPn.IsEmpty();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4 && argc != 5) {
        std::fprintf(stderr, "usage: editor_demo DATA SCRIPT FOLDER [XML]\n");
        return 2;
    }
    ScriptedHost host(argv[1]);
    s_XmlPn = argc == 5 ? argv[4] : "";
    cIO::Host dialogs;
    dialogs.ShowLoadFile = dialogs.ShowSaveFile = Answer;
    cIO::SetHost(dialogs);

    cShowcase showcase;
    cSpline spline;
    const cVec3 points[] = {{0, 0, 0}, {2, 1, 0}, {4, 0, 2}};
    spline.SetFromPoints(points, 3);
    cClassExplorer::AddObject("Showcase", &showcase, "");
    cClassExplorer::AddObject("Spline", &spline, "");
    cClassExplorer::AddObject("Materials", &g_Materials, "");
    cClassExplorer::AddMenuObject("Settings", &g_Settings, "");
    const auto open = [] {
        cSettings::AddToWidgets();
        cClassExplorer::ToggleClassExplorer();
        cClassExplorer::ToggleMainMenu();
    };
    const bool ok = host.Play(argv[2], argv[3], open);
    for (cClass* object : {static_cast<cClass*>(&showcase), static_cast<cClass*>(&spline)}) {
        cClassExplorer::RemoveObject(object);
    }
    return ok ? 0 : 1;
}
