#include "editor/cSettings.h"

#include "image/cImage.h"
#include "tests/files/Folders.h"
#include "ui/cMessageBox.h"

#include <algorithm>
#include <set>

using namespace trellis;

namespace {

class BuildData : public Folders {
protected:
    using Files = std::set<std::string>;

    BuildData() {
        cMessageBox::SetHandler([](const char* title, const char* text) {
            s_Asked = std::string(title) + "|" + text;
            return s_Answer;
        });
        for (const char* name : {"Models/a.cModel", "Models/x/a.CANIM", "Models/a.cCamera", "Models/a.cBSP",
                                 "Models/a.md5mesh", "Shaders/s.glsl", "Xmls/menu.xml", "Fonts/f.cFont", "Fonts/f.bmp",
                                 "Fonts/f.dds", "Sounds/s.caf", "Sounds/s.wav", "Other/a.cModel", "a.cModel"}) {
            Put(Read(name));
        }
        Put(Read("Models/empty.cAnim"), "");
        Put(Read("Textures/broken.dds"));
        Put(Write("Models/new/d.cModel"));
        Put(Write("Xmls/menu.xml"), "newer");
        cImage picture(cFormat::Rgb8, 4, 4, 1, 1);
        std::fill_n(picture.GetPixels(), 48, static_cast<unsigned char>(7));
        for (const char* name : {"a.dds", "foo_N.DDS", "sub/b.bmp", "sub/c_n.dds", "c_n.bmp"}) {
            const cStr file = ("Textures/" + std::string(name)).c_str();
            EXPECT_TRUE(cIO::CreatePath(file) && cIO::SaveImage(file, picture));
        }
    }
    ~BuildData() override { cMessageBox::SetHandler(nullptr); }

    /// Builds, and gives the target's files with their contents, and the names of the textures that went to the
    /// encoder, which cannot write them.
    Files Built(int platform, bool normalMaps) {
        cSettings settings;
        settings.Platform = platform;
        settings.IncludeNormalMaps = normalMaps;
        cLog::GetLogMutable().Clear();
        settings.BuildData();

        Files found;
        const std::string target = Top(platform == cSettings::iOS ? "read.iOS" : "read.Tizen") + "/";
        std::error_code error; // there may be no such folder
        for (const auto& entry : std::filesystem::recursive_directory_iterator(target, error)) {
            if (entry.is_regular_file()) {
                found.insert(entry.path().string().substr(target.size()) + "=" + Get(entry.path().string()));
            }
        }
        const std::string log = cLog::GetLog().Text(), mark = "Can't encode image \"" + target;
        for (size_t at = 0; (at = log.find(mark, at)) != std::string::npos;) {
            at += mark.size();
            found.insert(log.substr(at, log.find('"', at) - at));
        }
        return found;
    }

    static inline std::string s_Asked;
    static inline bool s_Answer;
};

} // namespace

TEST_F(BuildData, FileByFile) {
    s_Answer = true;
    Put(Top("read.Tizen/Models/gone.cModel"), "of an older copy");
    const struct {
        int Platform;
        bool NormalMaps;
        Files Textures;
    } s_Cases[] = {
        {cSettings::iOS, false, {"a.cPvr", "c_n.cPvr", "sub/b.cPvr"}},
        {cSettings::iOS, true, {"a.cPvr", "c_n.cPvr", "foo_N.cPvr", "sub/b.cPvr", "sub/c_n.cPvr"}},
        {cSettings::Tizen, true, {}},
    };
    for (const auto& c : s_Cases) {
        SCOPED_TRACE(c.Platform * 2 + c.NormalMaps);
        Files expected = {"Fonts/f.bmp=x",     "Fonts/f.cFont=x",       "Models/a.cBSP=x",    "Models/a.cCamera=x",
                          "Models/a.cModel=x", "Models/new/d.cModel=x", "Models/x/a.CANIM=x", "Shaders/s.glsl=x",
                          "Sounds/s.caf=x",    "Xmls/menu.xml=newer"};
        for (const std::string& name : c.Textures) {
            expected.insert("Textures/" + name);
        }
        EXPECT_EQ(Built(c.Platform, c.NormalMaps), expected);
    }
}

TEST_F(BuildData, NothingIsDoneWithoutAYes) {
    s_Answer = false;
    Put(Top("read.iOS/kept"), "old");
    Source()->SetPath((Read() + "/\\/").c_str()); // as an application may have set it
    EXPECT_EQ(Built(cSettings::iOS, false), Files{"kept=old"});
    EXPECT_EQ(s_Asked, "Confirm Build Data For iOS|Are you sure you want to build data from folder \"" + Read() +
                           "\" for iOS platform within folder \"" + Top("read.iOS") + "\"?");
}
