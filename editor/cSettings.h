// Settings of the application, which are its tool box as well: the class explorer shows the buttons beside the values.
#pragma once

#include "editor/cSettings_ClearColor.h"
#include "reflection/cClassMembers.h"
#include "ui/cWidget.h"

namespace trellis {

class cFpsDisplay;

/// Saved and loaded by the application as any reflected object. What is marked so below is never saved.
class cSettings : public cClass, public cWidget {
    TRELLIS_CLASS(cSettings)

public:
    enum ResourcesKind : int { Materials, Textures, Models, Anims, Cameras, Bsp, Sounds }; // as `Resources`
    enum BuildPlatform : int { iOS, Tizen };                                               // as `Platform`

    void CustomCtor() override;
    void CustomDtor() override; ///< Frees the frame rate's widget.

    /// Has `g_Settings` take part in the frames and input of `cWidgets`, through a widget that the manager owns.
    ///
    /// @return the widget's id
    static int AddToWidgets();

    /// Of each frame: opens the class explorer in the first one if it is to be, shows or hides the frame rate, sets the
    /// time scale.
    void OnRender() override;
    bool OnButtonDown(int code) override; ///< The tilde key opens the log, where `Console` allows it.

    // ---- Buttons. The first six load anew what is loaded; without a device there are no textures and shaders.
    void ReloadTextures();
    void ReloadModels();
    void ReloadAnims();
    void ReloadCameras();
    void ReloadSounds(); ///< Nothing: there is no sound here.
    void ReloadShaders();
    void GenFont() {}         ///< Nothing: fonts come from a tool of its own.
    void SaveLogToFile();     ///< To "Log.txt".
    void ImportParticle();    ///< Makes the texture of a particle from a picture that the user picks.
    void ListUnused();        ///< Of the kind `Resources`, into the log.
    void PrecompileShaders(); ///< For `ShadersPlatform`, after a question.

    /// Makes a release copy of the data for `Platform`, after a question: the folder "/data" becomes "/data.iOS". An
    /// older copy is removed first.
    void BuildData();

    /// Has the application go to a scene, by its hooks' variables.
    static void GoToScene(const char* xmlFilePn); ///< With the scene's intro.
    void ReturnToMenuScene();                     ///< To `MenuSceneXmlFile`, without an intro.

    /// Logs the files of a folder that no scene in "Xmls/Scene" names, in one entry.
    ///
    /// @param label       what the entry calls them
    /// @param extensions  as "dds;bmp"; of the files and of the names in the scenes
    static void ListUnusedResources(const char* folder, const char* label, const char* extensions, bool showDialog);

    static inline bool Console = false; ///< Whether the log opens by key.

    // ---- Values, in the order of the table
    cStr MenuSceneXmlFile;
    int Language;
    bool FullScreen;
    bool ShowGrid;
    bool Wireframe;
    bool ShowFps;
    bool ShowClassExplorerOnStartup;
    bool ControlViewerWithGamepad;
    bool Multithreading; ///< On by default.
    bool Mute;
    cSettings_ClearColor ClearColor;

    /// Source of `cTimer::TimeScale`, with its own ends, in the order that `_cSliderRangedF` lays down.
    struct cTimeScale {
        float Value, Min, Max;
    };
    cTimeScale TimeScale; ///< 1 in [0, 2] by default.
    cStr Title;
    int Resources;       ///< A `ResourcesKind`.
    int ShadersPlatform; ///< As `cRender::PrecompileShaders` takes it; "Platform" in files.

    bool LowQuality;           ///< Not saved.
    bool HomeButtonOnTheRight; ///< How the device is held. Not saved.
    bool HomeButtonOnTheLeft;  ///< Not saved.

    /// A `BuildPlatform`. "Platform" as well: files lead to the other one, an editor shows both.
    int Platform;
    bool IncludeNormalMaps;

private:
    void UpdateFpsDisplay();
    static void ListUnusedMaterials();

    int m_FpsDisplayID;        // -1 for none
    cFpsDisplay* m_FpsDisplay; // compared only
};

/// Made ahead of ordinary globals, and never destroyed.
extern cSettings& g_Settings;

} // namespace trellis
