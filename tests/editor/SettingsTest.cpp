#include "editor/cSettings.h"

#include "editor/cClassExplorer.h"
#include "foundation/cMain.h"
#include "foundation/cTimer.h"
#include "mesh/cMaterial_Bump.h"
#include "mesh/cMaterials.h"
#include "mesh/cModel.h"
#include "tests/files/Folders.h"
#include "tests/render/RecordingDevice.h"
#include "ui/cFpsDisplay.h"
#include "ui/cMessageBox.h"
#include "ui/cTheme.h"
#include "ui/cWidgets.h"

#include <algorithm>

using namespace trellis;

namespace {

class Settings : public Folders {};

/// Without line ends and indentation.
std::string Written(cSettings& settings) {
    cStr text;
    EXPECT_TRUE(settings.WriteToString(&text));
    for (const char* end : {"\n  ", "\n ", "\n"}) {
        text.Replace(end, "");
    }
    return text.Text();
}

/// Presses a button of the table, as the class explorer does.
void Press(cSettings& settings, const std::string& name) {
    const cOneClassMemberInfo button = settings.GetElementInfo(("&cSettings::" + name).c_str(), &settings);
    ASSERT_TRUE(button.GetClass() && button.GetClass()->CheckIfFunction()) << name;
    button.GetClass()->call(&settings, nullptr);
}

constexpr char s_Changed[] =
    "<cSettings><MenuSceneXmlFile>Xmls/Menu.Xml</MenuSceneXmlFile><Language>Japanese</Language>"
    "<FullScreen>true</FullScreen><ShowGrid>true</ShowGrid><Wireframe>true</Wireframe><ShowFps>true</ShowFps>"
    "<ShowClassExplorerOnStartup>true</ShowClassExplorerOnStartup>"
    "<ControlViewerWithGamepad>true</ControlViewerWithGamepad><Multithreading>false</Multithreading><Mute>true</Mute>"
    "<ClearColor><Color>0.200 0.400 0.600 0.800</Color><Modulator>0.500 0.000 2.000</Modulator></ClearColor>"
    "<TimeScale>1.500 0.500 4.000</TimeScale><Title>A title</Title><Resources>BSP</Resources>"
    "<Platform>Xbox 360</Platform><Include Normal Maps>true</Include Normal Maps></cSettings>";

} // namespace

TEST_F(Settings, FilesHoldWhatWasChanged) {
    cSettings settings;
    settings.LowQuality = settings.HomeButtonOnTheRight = settings.HomeButtonOnTheLeft = true;
    EXPECT_EQ(Written(settings), "<cSettings></cSettings>") << "never saved";
    settings.MenuSceneXmlFile = "Xmls/Menu.Xml";
    settings.Language = 7;
    settings.FullScreen = settings.ShowGrid = settings.Wireframe = settings.ShowFps = true;
    settings.ShowClassExplorerOnStartup = settings.ControlViewerWithGamepad = settings.Mute = true;
    settings.Multithreading = false;
    settings.ClearColor.Color = cColor(0.2f, 0.4f, 0.6f, 0.8f);
    settings.ClearColor.Modulator.Value = 0.5f;
    settings.TimeScale = {1.5f, 0.5f, 4};
    settings.Title = "A title";
    settings.Resources = cSettings::Bsp;
    settings.ShadersPlatform = 1;
    settings.IncludeNormalMaps = true;
    EXPECT_EQ(Written(settings), s_Changed);
    ASSERT_TRUE(settings.WriteToFile("Settings.xml"));
    cSettings fresh;
    ASSERT_TRUE(fresh.ReadFromFile("Settings.xml"));
    EXPECT_EQ(Written(fresh), s_Changed);
}

TEST_F(Settings, TheLastPlatformOfAFileIsTheFirstOfTheTable) {
    constexpr struct {
        const char* File;
        int ShadersPlatform;
    } s_Cases[] = {{"<Platform>PC</Platform><Platform>Xbox 360</Platform>", 1},
                   {"<Platform>Xbox 360</Platform><Platform>Tizen</Platform>", 0}, // not a name of the first one's
                   {"<Platform>Tizen</Platform><Platform>Xbox 360</Platform>", 1}};
    for (const auto& c : s_Cases) {
        cSettings settings;
        ASSERT_TRUE(settings.ReadFromString((std::string("<cSettings>") + c.File + "</cSettings>").c_str()));
        EXPECT_EQ(settings.ShadersPlatform, c.ShadersPlatform) << c.File;
        EXPECT_EQ(settings.Platform, 0) << c.File;
    }
}

TEST_F(Settings, FramesShowTheRateAndSetTheTimeScale) {
    const int id = cSettings::AddToWidgets();
    const auto frame = [](bool showFps, float timeScale = 1) {
        g_Settings.ShowFps = showFps;
        g_Settings.TimeScale.Value = timeScale;
        cWidgets::Render(0);
        const cList<cWidget*>& layer = cWidgets::GetLayer(4);
        return std::count_if(layer.begin(), layer.end(), [](cWidget* w) { return dynamic_cast<cFpsDisplay*>(w); });
    };
    EXPECT_EQ(frame(false, 0.25f), 0);
    EXPECT_EQ(cTimer::TimeScale, 0.25f);
    EXPECT_EQ(frame(true), 1);
    EXPECT_EQ(frame(true), 1);
    EXPECT_EQ(frame(false), 0);
    EXPECT_EQ(frame(true), 1);
    cWidgets::FreeLayer(4);
    EXPECT_EQ(frame(true), 1) << "the application freed it";
    cWidgets::FreeLayer(4);
    const int other = cWidgets::AddWidget(new cWidget, 4);
    EXPECT_EQ(frame(false), 0);
    EXPECT_NE(cWidgets::GetWidget(other), nullptr) << "it may have the id that the display had";
    {
        cSettings settings;
        settings.ShowFps = true;
        settings.OnRender();
        EXPECT_EQ(frame(false), 1);
    }
    EXPECT_EQ(frame(false), 0) << "the widget goes with its settings";

    for (const bool console : {false, true}) {
        cSettings::Console = console;
        EXPECT_EQ(cWidgets::GetWidget(id)->OnButtonDown(51), console);
        EXPECT_FALSE(cWidgets::GetWidget(id)->OnButtonDown(50));
    }
    cSettings::Console = false;
    cWidgets::FreeAll();
}

TEST(SettingsDeathTest, TheFirstFrameOpensTheExplorer) { // in a process of its own: there is one first frame in each
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (const bool wanted : {false, true}) {
        const auto run = [wanted] {
            RecordingDevice::Install();
            cTheme::Init();
            g_Settings.ShowClassExplorerOnStartup = wanted;
            g_Settings.OnRender();
            const bool first = cClassExplorer::GetVisible();
            g_Settings.ShowClassExplorerOnStartup = true;
            g_Settings.OnRender();
            std::_Exit(first == wanted && cClassExplorer::GetVisible() == wanted ? 0 : 1);
        };
        EXPECT_EXIT(run(), testing::ExitedWithCode(0), "") << wanted;
    }
}

TEST_F(Settings, ButtonsDoWhatTheyAreCalled) {
    RecordingDevice& device = RecordingDevice::Install();
    cSettings settings;
    device.Take();
    Press(settings, "ReloadTextures");
    Press(settings, "ReloadShaders");
    EXPECT_EQ(device.Take(), "ReloadTextures\nReloadShaders\n");
    RecordingDevice::Uninstall();
    for (const char* name : {"ReloadTextures", "ReloadModels", "ReloadAnims", "ReloadCameras", "ReloadSounds",
                             "ReloadShaders", "GenFont", "ImportParticle", "PrecompileShaders", "BuildData"}) {
        Press(settings, name); // without a device, or anybody to answer
    }
    EXPECT_NE(cLog::GetLog().IndexOf("Reloaded 0 Static Models,"), -1);
    EXPECT_NE(cLog::GetLog().IndexOf("Reloaded 0 Anims."), -1);
    EXPECT_NE(cLog::GetLog().IndexOf("Reloaded 0 Cameras."), -1);
    cLog::Message("saved");
    Press(settings, "SaveLogToFile");
    EXPECT_NE(Get(Write("Log.txt")).find("saved\r\n"), std::string::npos);

    settings.MenuSceneXmlFile = "Menu.Xml";
    cSettings::GoToScene("Xmls/Scene/a.Xml");
    EXPECT_EQ(cMain_LoadSceneXmlFilePn, "Xmls/Scene/a.Xml");
    EXPECT_TRUE(cMain_LoadSceneEnableIntro);
    settings.ReturnToMenuScene();
    EXPECT_EQ(cMain_LoadSceneXmlFilePn, "Menu.Xml");
    EXPECT_FALSE(cMain_LoadSceneEnableIntro);

    static std::string s_Asked;
    cMessageBox::SetHandler([](const char* title, const char* text) {
        s_Asked = std::string(title) + "|" + text;
        return false;
    });
    settings.ShadersPlatform = 1;
    Press(settings, "PrecompileShaders");
    cMessageBox::SetHandler(nullptr);
    EXPECT_EQ(s_Asked, "Confirm Precompile Shaders|Are you sure you want to precompile shaders for \"Xbox 360\" "
                       "platform ?");
}

TEST_F(Settings, UnusedFilesAreThoseThatNoSceneNames) {
    for (const char* name : {"Textures/a.dds", "Textures/b.bmp", "Textures/sub/c.DDS", "Textures/d.dds",
                             "Textures/e.dds", "Textures/f.dds", "Textures/g.tga", "Models/a.cModel", "Models/a.cAnim",
                             "Models/a.cCamera", "Models/a.cBsp", "Sounds/a.caf"}) {
        Put(Read(name));
    }
    Put(Write("Textures/h.dds"));
    Put(Read("Xmls/Scene/sub/one.xml"), "<A>textures\\A.dds</A>\r\n<Adds>5</Adds> <B>Textures/b.bmp</B>\n<!-- <C>" +
                                            Read("Textures/sub/c.dds") +
                                            "</C> -->\nTextures/d.dds</D>\n<D>Textures/d.dds\n</D>\n"
                                            "<E>Textures/ e.dds</E><E>Textures/e.dds</E>\n");
    Put(Write("Xmls/Scene/two.Xml"), "<F>x>Textures/f.dds</F><Model>Models/a.cModel</Model>");
    Put(Read("Xmls/other.Xml"), "<D>Textures/d.dds</D>");
    Put(Read("Xmls/Scene/three.txt"), "<D>Textures/d.dds</D>");

    const auto path = [&](const char* name) { return Read(name) + "\r\n"; };
    const struct {
        int Kind;
        std::string Report;
    } s_Cases[] = {
        {cSettings::Textures,
         "Textures (3):\r\n" + path("Textures/d.dds") + path("Textures/e.dds") + path("Textures/h.dds")},
        {cSettings::Models, "Models (0):\r\n"},
        {cSettings::Anims, "Anims (1):\r\n" + path("Models/a.cAnim")},
        {cSettings::Cameras, "Cameras (1):\r\n" + path("Models/a.cCamera")},
        {cSettings::Bsp, "BSP (1):\r\n" + path("Models/a.cBsp")},
        {cSettings::Sounds, "Sounds (1):\r\n" + path("Sounds/a.caf")},
    };
    cSettings settings;
    for (const auto& c : s_Cases) {
        settings.Resources = c.Kind;
        cLog::GetLogMutable().Clear();
        Press(settings, "ListUnused");
        EXPECT_EQ(cLog::GetLog().Text(), "Unused " + c.Report);
    }
}

TEST_F(Settings, UnusedMaterialsAreThoseThatNoModelNames) {
    auto* category = new cMaterial_Category;
    auto* group = new cMaterial_Group;
    group->GroupName = "Stone";
    for (const char* name : {"Wet", "Dry", "Old", "wet"}) {
        auto* material = new cMaterial_Bump;
        material->MaterialName = name;
        group->Materials.Add(material);
    }
    category->Groups.Add(group);
    g_Materials.Categories.Add(category);
    cModel model;
    model.Meshes.SetCount(4);
    model.Meshes[0].MaterialName = "STONE.wet";
    model.Meshes[1].MaterialName = "stone_wet";
    model.Meshes[2].MaterialName = "Stone\\old_4";
    model.Meshes[3].MaterialName = "Dry";
    std::filesystem::create_directories(Write("Models"));
    ASSERT_TRUE(cIO::SaveModel("Models/m.cModel", model));
    cSettings settings;
    Press(settings, "ListUnused");
    const std::string log = cLog::GetLog().Text();
    EXPECT_TRUE(log.ends_with("Unused Materials (2):\r\nStone/Dry\r\nStone/wet\r\n")) << log;
    g_Materials.Categories.RemoveAt(0, 1);
}
