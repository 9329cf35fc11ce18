#include "editor/cSplash.h"

#include "image/cImage.h"
#include "tests/files/Folders.h"
#include "tests/foundation/FakeClock.h"

#include <algorithm>

using namespace trellis;

namespace {

using Rows = std::vector<std::string>; // of red values as characters, the top row first

class Splash : public Folders {
protected:
    Splash() {
        cSplash::SetPresenter([](const cImage& picture, int) {
            s_Shown.clear();
            for (int y = picture.GetHeight() - 1; y >= 0; y--) {
                const unsigned char* p = picture.GetPixels() + y * picture.GetRowSize();
                std::string row;
                for (int x = 0; x < picture.GetWidth(); x++) {
                    row += char(p[x * 3]);
                }
                s_Shown.push_back(row);
            }
        });
        s_Shown.clear();
        cIO::CreatePath("Splash"); // in the write folder
        Paint("Background", 12, 5, '-');
        for (int digit = 0; digit < 10; digit++) {
            Paint(std::to_string(digit), digit == 2 ? 2 : 1, 3, char('0' + digit));
        }
        Paint("DOT", 1, 1, '.');
        Paint("version", 3, 2, 'v');
    }
    ~Splash() override {
        cSplash::SetPresenter(nullptr);
        cSplash::DestroyNow();
    }

    void Paint(const std::string& name, int width, int height, char c) {
        cImage image(cFormat::Rgba8, width, height, 1, 1);
        std::fill_n(image.GetPixels(), width * height * 4, static_cast<unsigned char>(c));
        ASSERT_TRUE(cIO::SaveImage(("Splash/" + name + ".tga").c_str(), image));
    }

    static inline Rows s_Shown;
};

} // namespace

TEST_F(Splash, VersionsArePutTogetherFromEitherSide) {
    const struct {
        const char* Version;
        int X, Y;
        Rows Picture;
    } s_Cases[] = {
        {"v1.2-beta", 1, 1, {"------------", "-vvv1.22----", "-vvv1-22----", "----1-22----", "------------"}},
        {"v1.2-beta", -2, -1, {"------------", "------1-22--", "---vvv1-22--", "---vvv1.22--", "------------"}},
        {"beta", 0, 0, {"vvv---------", "vvv---------", "------------", "------------", "------------"}},
        {"20222", -1, -3, {"vv220222222-", "vv220222222-", "------------", "------------", "------------"}},
    };
    for (const auto& c : s_Cases) {
        SCOPED_TRACE(c.Version);
        cSplash::Show({c.Version, c.X, c.Y, 3});
        EXPECT_EQ(cSplash::GetWindow(), 3);
        EXPECT_EQ(s_Shown, c.Picture);
    }
    cLog::Warning("A message goes in front");
    EXPECT_EQ(cSplash::GetWindow(), 0);
}

TEST_F(Splash, EveryPictureMustBeThere) {
    for (const char* name : {"7", "0", "DOT", "version", "Background"}) {
        SCOPED_TRACE(name);
        const std::string file = Write(std::string("Splash/") + name + ".tga");
        const std::string bytes = Get(file);
        std::filesystem::remove(file);
        cSplash::Show({"1.0", 0, 0, 1});
        EXPECT_EQ(cSplash::GetWindow(), 0);
        EXPECT_TRUE(s_Shown.empty());
        Put(file, "no picture");
        cSplash::Show({"1.0", 0, 0, 1});
        EXPECT_EQ(cSplash::GetWindow(), 0);
        Put(file, bytes);
    }
    cSplash::Show({"1.0", 0, 0, 1});
    EXPECT_EQ(cSplash::GetWindow(), 1) << "each one begins anew";
}

TEST_F(Splash, AnotherBackgroundEachSecond) {
    Paint("BACKGROUND winter", 12, 5, 'w');
    Paint("My background", 12, 5, 'x');
    Paint("7.old", 12, 5, 'x');
    std::string seen;
    for (int second = 0; second < 4; second++) {
        const cFakeClock clock(4'000'000'000 + second);
        cSplash::Show({"7", 0, 0, 1});
        ASSERT_EQ(s_Shown.size(), 5u);
        EXPECT_EQ(s_Shown[0][3], '7');
        seen += s_Shown[4][11];
    }
    EXPECT_EQ(seen, "w-w-") << "in the order of paths: a blank sorts below the point";
}
