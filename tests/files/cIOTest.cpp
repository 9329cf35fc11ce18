#include "files/cIO.h"

#include <sys/stat.h>

#include <filesystem>
#include <string_view>

#include "Folders.h"
#include "files/cFile.h"
#include "files/cIO_Internal.h"
#include "foundation/cLog.h"

namespace trellis {
namespace {

TEST(cIO_CutOutputDirectory, WholeNamesInAnyCase) {
    for (const char* name : {"dist/Debug/GNU-Linux-x86", "BUILD/rELEASE", "x64\\Release (GL)", "Debug", "Release 32"}) {
        cStr folder = cStr::Format("/p/%s", name);
        EXPECT_NE(cIO_CutOutputDirectory(&folder), nullptr);
        EXPECT_STREQ(folder, "/p/") << name;
    }
    constexpr struct {
        const char* Folder;
        const char* Rest;
    } cases[] = {
        {"/p/x64/Debug", "/p/x64/"},               // the slash counts
        {"/p/build-debug", "/p/build-"},           // an ending, not a component
        {"/p/Release/build/Debug", "/p/Release/"}, // cut once
        {"/p/Debug 16", "/p/Debug 16"},
        {"/p/Debug/", "/p/Debug/"},
        {"ebug", "ebug"},
        {"", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Folder);
        cStr folder(c.Folder);
        EXPECT_EQ(cIO_CutOutputDirectory(&folder) != nullptr, std::string_view(c.Folder) != c.Rest);
        EXPECT_STREQ(folder, c.Rest);
    }
}

TEST(cIO, StartsAtItsExecutable) {
    const std::string exe = std::filesystem::read_symlink("/proc/self/exe").string();
    EXPECT_EQ(cIO::GetThisFilePathName().Text(), exe);
    EXPECT_EQ(cIO::GetDefaultSourceFolder().Text(), std::filesystem::path(exe).parent_path().string());
    EXPECT_FALSE(cIO::CheckReadPath("a")); // no write folder yet
    const cStr line = cStr::Format("Default file source is folder \"%s\"", cIO::GetDefaultSourceFolder().Text());
    EXPECT_NE(cLog::GetLog().IndexOf(line), -1);

    EXPECT_STREQ(cIO::GetEnvironmentVariable("TRELLIS_TEST_VALUE"), "");
    EXPECT_STREQ(cIO::GetEnvironmentVariable(nullptr), "");
}

class cIO_Files : public Folders {};

TEST_F(cIO_Files, AbsolutePaths) {
    Source()->SetPath("/opt/p");
    constexpr struct {
        const char* Path;
        const char* Absolute;
    } cases[] = {
        {"HTTP://x\\y", "HTTP://x\\y"},
        {"https://x\\y", "https://x\\y"},
        {"Ftp://x\\y", "Ftp://x\\y"},
        {"http:/x\\y", "/opt/p/http:/x/y"},
        {"ftps://x", "/opt/p/ftps://x"},
        {"~/a\\b", "/a/b"},
        {"a\\b/c", "/opt/p/a/b/c"},
        {"\\a\\b", "/a/b"},
        {"", "/opt/p"},
        {nullptr, "/opt/p"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Path ? c.Path : "null");
        EXPECT_STREQ(cIO::EnsureAbsolutePath(c.Path), c.Absolute);
    }
}

TEST_F(cIO_Files, Redirect) {
    constexpr struct {
        const char* Name;
        const char* Read;
        const char* Write;
        const char* Path;
        const char* Redirected; // null when it is not
    } cases[] = {
        {"file", "/opt/p", "/home/u/w", "/opt/p/a/b.txt", "/home/u/w/a/b.txt"},
        {"case and slashes", "/opt/p", "/home/u/w", "\\OPT/P\\a", "/home/u/w/a"},
        {"the folder itself", "/opt/p", "/home/u/w", "/opt/p", "/home/u/w"},
        {"a longer name", "/opt/p", "/home/u/w", "/opt/pq/a", nullptr},
        {"write folder within", "/opt/p", "/opt/p/w", "/opt/p/a", "/opt/p/w/a"},
        {"in it already", "/opt/p", "/opt/p/w", "/opt/p/W/a", nullptr},
        {"in it already, told with a slash", "/opt/p", "/opt/p/w/", "/opt/p/w/a", nullptr},
        {"relative write folder", "/opt/p", "w", "/opt/p/a", "/opt/p/w/a"},
        {"a root that ends in a slash redirects nothing", "/opt/p/", "/home/u/w", "/opt/p/a", nullptr},
        {"no write folder", "/opt/p", "", "/opt/p/a", nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        Source()->SetPath(c.Read);
        cIO::SetDefaultSourceWriteFolder(c.Write);
        cStr path(c.Path);
        EXPECT_EQ(cIO::CheckReadPath(c.Path), c.Redirected != nullptr);
        EXPECT_EQ(cIO::ReplaceReadPath(&path), c.Redirected != nullptr);
        EXPECT_STREQ(path, c.Redirected ? c.Redirected : c.Path);
    }
}

/// A source that keeps one file in memory and says what it was asked.
class OneFile : public cIO::Source {
public:
    bool Load(const char* path, cFile* out) const override {
        Log.AppendFormat("load %s;", path);
        out->Copy("partial", 7, "partial");
        return FileExists(path);
    }
    bool Save(const char* path, const void*, unsigned int size, bool append) const override {
        Log.AppendFormat("save %s %u %d;", path, size, append);
        return FileExists(path);
    }
    const cStr& GetPath() const override { return cStr::Empty; }
    bool FileExists(const char* path) const override { return std::string_view(path) == "one"; }

    mutable cStr Log;
};

TEST_F(cIO_Files, LoadingAsksTheWriteFolderThenTheReadFolderThenTheNextSource) {
    Put(Read("both"), "read");
    Put(Write("both"), "write");
    Put(Read("mine"), "read");
    Put(Write("added"), "write");
    Put(Read("folder/inside"));
    Put(Top("outside"), "outside");
    OneFile one;
    cIO::GetSourcesMutable().Add(&one);

    const struct {
        std::string Path;
        const char* Text; // null when it cannot be loaded
        const char* Asked;
    } cases[] = {
        {"both", "write", ""},
        {"mine", "read", ""},
        {Read("both"), "write", ""},
        {Top("outside"), "outside", ""},
        {Top("read\\both"), "write", ""},
        {"one", "partial", "load one;"},
        {"two", nullptr, "load two;"},
        {Read("one"), nullptr, ""}, // sources are for relative paths only
        {"folder", nullptr, "load folder;"},
        {"folder/", nullptr, "load folder/;"},
        {"", nullptr, "load ;"},
        {std::string(5000, 'a'), nullptr, nullptr},
        {"a\nb%n%s", nullptr, "load a\nb%n%s;"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Path);
        one.Log.Clear();
        cLog::GetLogMutable().Clear();
        cFile file;
        file.Copy("old", 3, c.Path.c_str());
        EXPECT_EQ(cIO::LoadFile(file.GetName(), &file, true), c.Text != nullptr);
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(file.GetBytes().Data()), size_t(file.GetSize())),
                  c.Text ? c.Text : "");
        if (c.Asked) {
            EXPECT_STREQ(one.Log, c.Asked);
        }
        EXPECT_EQ(cLog::GetLog().IsEmpty(), c.Text != nullptr);
    }
    cIO::GetSourcesMutable().RemoveAt(1);

    cLog::GetLogMutable().Clear();
    cFile file;
    EXPECT_FALSE(cIO::LoadFile("gone", &file, false));
    EXPECT_TRUE(cLog::GetLog().IsEmpty());
    EXPECT_FALSE(cIO::LoadFile("gone", &file, true));
    EXPECT_STREQ(cLog::GetLog(), "Can't load file \"gone\"\r\n");
    EXPECT_FALSE(cIO::LoadFile(nullptr, &file, true));
    EXPECT_FALSE(cIO::LoadFile("both", nullptr, true));
    EXPECT_TRUE(Source()->FileExists("added"));
    EXPECT_TRUE(Source()->FileExists("mine"));
    EXPECT_FALSE(Source()->FileExists("folder"));
}

TEST_F(cIO_Files, OnlyRegularFilesOfAnIntsSizeAreLoaded) {
    cFile file;
    Put(Read("huge"));
    std::filesystem::resize_file(Read("huge"), 1ull << 31); // sparse
    EXPECT_FALSE(cIO::LoadFile("huge", &file, false));
    ASSERT_EQ(mkfifo(Read("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(cIO::LoadFile("pipe", &file, false)); // and does not wait for a writer
    Put(Read("empty"), "");
    EXPECT_TRUE(cIO::LoadFile("empty", &file, false));
    EXPECT_EQ(file.GetSize(), 0);
    EXPECT_EQ(file.GetName().Text(), Read("empty"));
}

TEST_F(cIO_Files, SavingGoesToTheWriteFolder) {
    Put(Read("a"), "read");
    OneFile one;
    cIO::GetSourcesMutable().Add(&one);
    cLog::GetLogMutable().Clear();

    EXPECT_TRUE(cIO::SaveFile("a", "12", 2, false, true));
    EXPECT_TRUE(cIO::SaveFile(Read("a").c_str(), "34", 2, true, true));
    EXPECT_EQ(Get(Write("a")), "1234");
    EXPECT_EQ(Get(Read("a")), "read");
    EXPECT_TRUE(cIO::SaveFile("a", "5", 1, false, true)); // replaces
    EXPECT_EQ(Get(Write("a")), "5");
    EXPECT_FALSE(cIO::SaveFile(Top("out\\side").c_str(), "6", 1, false, false));
    EXPECT_TRUE(cIO::SaveFile(Top("outside").c_str(), "6", 1, false, true));
    EXPECT_EQ(Get(Top("outside")), "6");
    EXPECT_TRUE(one.Log.IsEmpty());
    EXPECT_TRUE(cLog::GetLog().IsEmpty());

    const struct {
        std::string Path;
        bool Ok;
        const char* Asked;
    } cases[] = {
        {"no/folder", false, "save no/folder 1 1;"}, // callers make folders themselves
        {"a/", false, "save a/ 1 1;"},
        {"", false, "save  1 1;"},
        {Read(), false, ""},
        {Read("b/"), false, ""},
        {"/dev/full", false, ""}, // opens, and fails when the bytes go out
        {"one", true, ""},        // the default source takes whatever it can
        {"c%n", true, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Path);
        one.Log.Clear();
        cLog::GetLogMutable().Clear();
        EXPECT_EQ(cIO::SaveFile(c.Path.c_str(), "x", 1, true, true), c.Ok);
        EXPECT_STREQ(one.Log, c.Asked);
        EXPECT_EQ(std::string(cLog::GetLog().Text()), c.Ok ? "" : "Can't save file \"" + c.Path + "\"\r\n");
    }
    cIO::GetSourcesMutable().RemoveAt(1);
    EXPECT_FALSE(cIO::SaveFile(nullptr, "x", 1, false, true));
    EXPECT_FALSE(cIO::SaveFile("a", nullptr, 1, false, true));

    cIO::SetDefaultSourceWriteFolder("");
    EXPECT_TRUE(cIO::SaveFile("a", "own", 3, false, true));
    EXPECT_EQ(Get(Read("a")), "own");
}

TEST_F(cIO_Files, FilesAreSavedUnderTheirName) {
    cFile file;
    EXPECT_FALSE(cIO::SaveFile("empty", file, false, true));
    EXPECT_EQ(Get(Write("empty")), "(none)");
    file.Copy("abc", 3, "named");
    EXPECT_TRUE(cIO::SaveFile(nullptr, file, false, true));
    EXPECT_TRUE(cIO::SaveFile("other", file, true, true));
    EXPECT_TRUE(cIO::SaveFile("other", file, true, true));
    EXPECT_EQ(Get(Write("named")), "abc");
    EXPECT_EQ(Get(Write("other")), "abcabc");
}

} // namespace
} // namespace trellis
