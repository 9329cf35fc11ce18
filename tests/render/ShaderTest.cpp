// Shader sources on disk, and compiling beforehand with a script in the compiler's place.
#include "files/cIO.h"
#include "tests/files/Folders.h"
#include "tests/render/RecordingDevice.h"

using namespace trellis;

namespace {

class Shaders : public Folders {
protected:
    ~Shaders() override { RecordingDevice::Uninstall(); }

    struct Loaded {
        bool Ok;
        cStr Vertex, Pixel;
        int VertexLine, PixelLine;
        std::string Log;
    };
    Loaded Load(const char* text) {
        if (text) {
            Put(Read("Shaders/a.glsl"), text);
        }
        Loaded l;
        cLog::GetLogMutable().Clear();
        l.Ok = cRender::Stub::LoadShader("Shaders/a.glsl", &l.Vertex, &l.Pixel, &l.VertexLine, &l.PixelLine);
        l.Log = cLog::GetLog().Text();
        return l;
    }

    /// Installs a script as the compiler of a platform.
    void PutCompiler(const char* name, const char* script) {
        const std::string path = Top(std::string("Libs/PrecompileShaders/") + name);
        Put(path, std::string("#!/bin/sh\n") + script);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }
};

} // namespace

TEST(AutoConst, Names) {
    using A = cRender::AutoConst;
    EXPECT_EQ(A::FromString("g_TimeSec"), 15);
    EXPECT_EQ(A::FromString("g_timesec"), -1);
    EXPECT_EQ(A::FromString(nullptr), -1);
    EXPECT_EQ(A::ToString(21), nullptr);
    EXPECT_EQ(A::ToString(-1), nullptr);
    EXPECT_STREQ(A::ToString(A::TextureMatrix3), "g_TextureMatrix3");
    for (int i = 0; i < A::Count; i++) {
        EXPECT_EQ(A::FromString(A::ToString(i)), i);
    }
}

TEST_F(Shaders, SplitAtTheMarkers) {
    const Loaded missing = Load(nullptr);
    EXPECT_FALSE(missing.Ok);
    EXPECT_EQ(missing.Log, "") << "silent";
    EXPECT_EQ(missing.VertexLine, 1);
    EXPECT_EQ(missing.PixelLine, 1);

    const Loaded usual = Load("head\n  // VERTEX shader\nv\n// Pixel Shader x\np\n");
    EXPECT_TRUE(usual.Ok);
    EXPECT_STREQ(usual.Vertex, "// VERTEX shader\nv\n");
    EXPECT_STREQ(usual.Pixel, "// Pixel Shader x\np\n");
    EXPECT_EQ(usual.VertexLine, 2);
    EXPECT_EQ(usual.PixelLine, 4);
    EXPECT_NE(usual.Log.find(" * Loading shader \"Shaders/a.glsl\"..."), std::string::npos);

    const Loaded turned = Load("// Fragment shader\np\n\n// Vertex shader\nv");
    EXPECT_STREQ(turned.Vertex, "// Vertex shader\nv");
    EXPECT_STREQ(turned.Pixel, "// Fragment shader\np\n\n");
    EXPECT_EQ(turned.VertexLine, 4);

    for (const auto& [text, warning] : {std::pair("// Pixel shader\n", "No vertex shader found."),
                                        std::pair("// Vertex shader\n", "No fragment / pixel shader found"),
                                        std::pair("", "No vertex shader found.")}) {
        const Loaded l = Load(text);
        EXPECT_FALSE(l.Ok);
        EXPECT_NE(l.Log.find(warning), std::string::npos) << l.Log;
        EXPECT_EQ(l.Log.find("pixel shader found") != std::string::npos, *warning == 'N' && warning[3] == 'f');
    }
}

TEST_F(Shaders, ReplacingInTheOrderOfTheNames) {
    cRender::ReplaceInShaders("QQ2", "last");
    cRender::ReplaceInShaders("QQ1", "QQ2 again");
    cRender::ReplaceInShaders("", "never");
    const Loaded l = Load("// Vertex shader QQ1\n// Pixel shader QQ2");
    EXPECT_STREQ(l.Vertex, "// Vertex shader last again\n");
    EXPECT_STREQ(l.Pixel, "// Pixel shader last");
}

TEST_F(Shaders, CompilingBeforehand) {
    Put(Read("Shaders/Sky.hlsl"), "// Precompile\r\n// PositionOnly FOG, CLOUDS\r\n\r\n// NULL\r\nnot a variant\r\n"
                                  "// Vertex shader\r\nvs\r\n// Pixel shader\r\nps\r\n");
    Put(Read("Shaders/Deep/Sea.hlsl"), "// Precompile\n// NULL BAD\n// Vertex shader\nvs\n// Pixel shader\nps\n");
    Put(Read("Shaders/Plain.hlsl"), "// precompile\n// NULL\n// Vertex shader\n// Pixel shader\n");
    Put(Write("Shaders/PC/old.VS"));
    // Arguments: /T profile /Fo object source. The object gets the profile and the source.
    PutCompiler("PC.exe", "if grep -q BAD \"$5\"; then echo no good; exit 1; fi\n(echo \"$2\"; cat \"$5\") > \"$4\"\n");
    cLog::GetLogMutable().Clear();
    cRender::PrecompileShaders(0);
    const std::string log = cLog::GetLog().Text();
    EXPECT_NE(log.find("Can't compile vertex shader \"Deep/Sea\": no good"), std::string::npos) << log;
    EXPECT_NE(log.find("Can't compile pixel shader \"Deep/Sea\": no good"), std::string::npos);

    EXPECT_EQ(Get(Write("Shaders/PC/old.VS")), "(none)");
    EXPECT_EQ(Get(Write("Shaders/PC/Temp.txt")), "(none)");
    EXPECT_EQ(Get(Write("Shaders/PC/0.VS")), "vs_3_0\n#define FOG\n#define CLOUDS\n// Vertex shader\nvs");
    EXPECT_EQ(Get(Write("Shaders/PC/0.PS")), "ps_3_0\n#define FOG\n#define CLOUDS\n// Pixel shader\nps");
    EXPECT_EQ(Get(Write("Shaders/PC/1.PS")), "ps_3_0\n// Pixel shader\nps");
    EXPECT_EQ(Get(Write("Shaders/PC/Cache.txt")), "Sky\tFOG CLOUDS\t0\nSky\t\t1");
    EXPECT_EQ(cRender::GetShadersCache().Count(), 2);

    PutCompiler("Xbox360.exe", "echo \"$2|$3\" > \"${3#/Fo}\"; test -f \"$1\"\n");
    cRender::PrecompileShaders(1);
    const std::string vertex = Get(Write("Shaders/PC/0.VS"));
    EXPECT_EQ(vertex, "/Tvs_3_0|/Fo" + Write("Shaders/PC/0.VS") + "\n");
    EXPECT_EQ(cRender::GetShadersCache().Count(), 3);
}
