// The workbench, apart from where its input comes from and where its pictures go: a window, or a script and files.
#pragma once

#include "files/cIO.h"
#include "host/HostDialogs.h"
#include "host/cWorkbenchScene.h"

#include <functional>
#include <string>

namespace trellis {

class cFreeViewer;
class cTheme;
class cWorkbenchForm;

/// One in a process, while `cRender` and `cTheme` are ready. The widgets are the manager's.
class cWorkbench {
public:
    struct Driver {
        std::function<bool()> Next; ///< Waits for a frame, and samples its input. False: the program ends.
        std::function<void()> Show; ///< The picture is done.
        cIO::Host Host;             ///< What it has of its own, as a clipboard; dialogs come with the program.
    };

    explicit cWorkbench(const Driver& driver);
    ~cWorkbench();
    cWorkbench(const cWorkbench&) = delete;
    cWorkbench& operator=(const cWorkbench&) = delete;

    bool RunFrame(); ///< @return false when the program ends
    void Resize(int width, int height);
    bool IsMoving() const { return m_IsMoving; }    ///< The picture changes by itself.
    bool IsSaying() const { return m_SaidSec > 0; } ///< A sentence shows.

    /// A scene's XML, a folder of models, or one model. What cannot be opened leaves everything as it was, and the
    /// person gets a sentence.
    bool Open(const char* path);
    bool OpenScene(const char* filePn);
    bool SaveScene(const char* filePn);
    void Rescue();   ///< What has changed, to files "Rescued" in the current folder, or the temporary one: nobody can be asked.
    bool MayClose(); ///< Asks whether to save a scene, and materials, that have changed. @return false: the person
                     ///< wants to stay

    // What the form and the keys do.
    void AskForFolder();
    void AddModel();
    void AskToOpen();
    bool AskToSave(); ///< @return whether it is saved
    void SetTheme(const cTheme* theme);
    void FrameView(); ///< On what is selected, or on all.
    void DeleteSelected();
    void SaveShot(); ///< As "ScreenShot.bmp", or with a number, in the current folder.
    void ToggleForm();
    void Click(); ///< Selects what is under the mouse.
    void Say(const char* sentence);

    bool Find(const std::string& name, cVec2* position); ///< Where the object of that name shows, for scripts.

    cWorkbenchScene& GetScene() { return m_Scene; }
    const cTheme* GetTheme() const { return m_Theme; }
    const cStr& GetSaid() const { return m_Said; } ///< The last sentence to the person.

private:
    class SceneWidget;
    class StatusLine;

    void Render();
    void RememberFile(const char* filePn);
    void Show(const char* sentence);
    void Dress(); // forms that have opened since
    void ReadLog();
    bool IsSaved(cClass* object, const cStr& saved);
    bool MayLose(cClass* object, const cStr& saved, const char* question);
    bool Save(cClass* object, cStr* saved, const char* filePn);

    Driver m_Driver;
    HostDialogs m_Dialogs;
    const cTheme* m_Theme;
    cFreeViewer* m_Viewer;
    cWorkbenchScene m_Scene;
    cStr m_Saved, m_SavedMaterials; // the scene, and the materials, as they were loaded or saved last
    int m_FormID = -1;
    int m_LogRead = 0;
    cStr m_Said;
    float m_SaidSec = 0; // how long it still shows
    bool m_IsMoving = false;
};

} // namespace trellis
