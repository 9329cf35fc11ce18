#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "Folders.h"
#include "files/cIO_Internal.h"

namespace trellis {
namespace {

namespace fs = std::filesystem;

// The copy of this program that a restart makes ends before any test runs.
constexpr const char* s_RestartMark = "TRELLIS_TEST_RESTART_FD";
[[maybe_unused]] const bool s_Restarted = [] {
    if (const char* fd = std::getenv(s_RestartMark)) {
        _exit(fcntl(std::atoi(fd), F_GETFD) == -1 ? 42 : 43);
    }
    return false;
}();

class cIO_Platform : public Folders {};

TEST_F(cIO_Platform, CreatePathLeavesTheFileNameOut) {
    const struct {
        std::string Path;
        std::string Made;
        std::string NotMade;
    } cases[] = {
        {"a/b/c.txt", Write("a/b"), Write("a/b/c.txt")},
        {"d.e/f", Write("d.e/f"), Read("d.e")}, // the point is in another component
        {"g/h.i/", Write("g/h.i"), Read("g")},
        {Top("k\\l\\m"), Top("k/l/m"), Top("k\\l\\m")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Path);
        EXPECT_TRUE(cIO::CreatePath(c.Path.c_str()));
        EXPECT_TRUE(cIO::CreatePath(c.Path.c_str())) << "once more";
        EXPECT_TRUE(fs::is_directory(c.Made));
        EXPECT_FALSE(fs::exists(c.NotMade));
    }
    Put(Write("file"));
    EXPECT_FALSE(cIO::CreatePath("file/x"));
    EXPECT_FALSE(cIO::CreatePath("file"));
    EXPECT_FALSE(cIO::CreatePath(nullptr));
    EXPECT_FALSE(cIO::CreatePath(""));
}

TEST_F(cIO_Platform, RemovalTakesBothCopies) {
    Put(Read("both"));
    Put(Write("both"));
    Put(Write("mine"));
    fs::create_directory(Read("folder"));
    EXPECT_TRUE(cIO::RemoveFile("both"));
    EXPECT_FALSE(fs::exists(Read("both")) || fs::exists(Write("both")));
    EXPECT_FALSE(cIO::RemoveFile("both"));
    EXPECT_TRUE(cIO::RemoveFile(Read("mine").c_str()));
    EXPECT_FALSE(cIO::RemoveFile("folder"));
    EXPECT_FALSE(cIO::RemoveFile(nullptr));

    Put(Read("t/a/*/b"));
    Put(Write("t/c"));
    Put(Write("t/\\x"));
    EXPECT_TRUE(cIO::RemoveFolder("t", false));
    EXPECT_TRUE(fs::is_empty(Read("t")) && fs::is_empty(Write("t")));
    EXPECT_TRUE(cIO::RemoveFolder("t/", true));
    EXPECT_FALSE(fs::exists(Read("t")) || fs::exists(Write("t")));
    EXPECT_FALSE(cIO::RemoveFolder("t", true));
}

TEST_F(cIO_Platform, FolderRemovalStaysInside) {
    Put(Top("precious/file"));
    Put(Read("near"));
    Put(Read("t/*/x"));
    fs::create_directory_symlink(Top("precious"), Read("t/link"));
    EXPECT_TRUE(cIO::RemoveFolder("t/*", true)); // that very folder
    EXPECT_TRUE(fs::exists(Read("t/link")));
    EXPECT_FALSE(cIO::RemoveFolder("t/link", false));
    EXPECT_TRUE(cIO::RemoveFolder("t/link/", true)); // the link, not what it leads to
    EXPECT_FALSE(fs::is_symlink(Read("t/link")));
    fs::create_directory_symlink(Top("precious"), Read("t/link"));
    EXPECT_TRUE(cIO::RemoveFolder("t", true));
    EXPECT_TRUE(fs::exists(Top("precious/file")));

    Source()->SetPath(Read("root").c_str());
    Put(Read("root/data"));
    for (const char* path : {static_cast<const char*>(nullptr), "", ".", "..", "~", "/.", "/x/..", "http://x/y"}) {
        EXPECT_FALSE(cIO::RemoveFolder(path, true));
    }
    EXPECT_FALSE(cIO::CreatePath("http://x/y/")); // not a folder "http:" wherever the program was started
    EXPECT_FALSE(cIO::RemoveFolder((Read("near")).c_str(), true)); // a file
    EXPECT_TRUE(fs::exists(Read("root/data")) && fs::exists(Read("near")));
}

TEST_F(cIO_Platform, ChangeTimesOfWhatReadingFinds) {
    const auto touch = [](const std::string& path, long seconds, long nanoseconds) {
        Put(path);
        const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    };
    touch(Read("a"), 1000, 5);
    touch(Read("b"), 1000, 6);
    touch(Write("c"), 999, 7);
    touch(Read("c"), 5000, 0);
    EXPECT_EQ(cIO::CompareFileChangeTimes("a", "b"), -1);
    EXPECT_EQ(cIO::CompareFileChangeTimes("b", "a"), 1);
    EXPECT_EQ(cIO::CompareFileChangeTimes("a", "a"), 0);
    EXPECT_EQ(cIO::CompareFileChangeTimes("c", "a"), -1); // the write folder's copy
    EXPECT_EQ(cIO::CompareFileChangeTimes("a", "gone"), 1);
    EXPECT_EQ(cIO::CompareFileChangeTimes("gone", "a"), 1);
}

TEST_F(cIO_Platform, Properties) {
    Put(Read("f"));
    Put(Write("f"));
    EXPECT_TRUE(cIO::SetFilePermissions("f", 0600));
    EXPECT_TRUE(cIO::SetFolderPermissions(Read().c_str(), 0700)); // the write folder is its copy
    struct stat info;
    ASSERT_EQ(stat(Write("f").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600u);
    ASSERT_EQ(stat(Write().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0700u);
    EXPECT_FALSE(cIO::SetFolderPermissions("f"));
    EXPECT_FALSE(cIO::SetFilePermissions(Write().c_str()));
    EXPECT_FALSE(cIO::SetFilePermissions("gone"));

    EXPECT_TRUE(cIO::CheckDifferentDisks("/proc/self/gone", "f"));
    EXPECT_FALSE(cIO::CheckDifferentDisks(Top("gone/deep").c_str(), Top("x").c_str()));
    EXPECT_GT(cIO::GetDiskFreeSpace(), 0);
    Source()->SetPath(Top("gone").c_str());
    EXPECT_EQ(cIO::GetDiskFreeSpace(), 0);
}

TEST_F(cIO_Platform, ExecSplitsArgumentsAndReadsToTheEnd) {
    const struct {
        const char* Command;
        const char* Arguments;
        bool Ok;
        const char* Output;
    } cases[] = {
        {"printf", "[%s] a \"b  c\" d\"e f\"g \"\" \t$HOME;`id`", true, "[a][b  c][de fg][][$HOME;`id`]"},
        {"false", nullptr, false, ""},
        {"cat", nullptr, true, ""}, // its input is empty
        {"sh", "-c \"echo out; echo err >&2; exit 3\"", false, "out\nerr\n"},
        {"sh", "-c \"kill -9 $$\"", false, ""},
        {"trellis-no-such-program", "a", false, ""},
        {"", "a", false, ""},
        {nullptr, nullptr, false, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Command ? c.Command : "null");
        cStr output("old");
        EXPECT_EQ(cIO::Exec(c.Command, c.Arguments, &output), c.Ok);
        EXPECT_STREQ(output, c.Output);
    }
    cStr output;
    EXPECT_TRUE(cIO::Exec("true"));
    EXPECT_TRUE(cIO::Exec("head", "-c 1000000 /dev/zero", &output)); // far more than a pipe holds
    EXPECT_EQ(output.Length(), 1000000);

    Put(Read("tools/run"), "#!/bin/sh\necho here\n"); // a path is relative to the data
    ASSERT_TRUE(cIO::SetFilePermissions("tools/run", 0755));
    EXPECT_TRUE(cIO::Exec("tools\\run", nullptr, &output));
    EXPECT_STREQ(output, "here\n");
}

TEST_F(cIO_Platform, RestartReplacesTheProcessAndClosesItsDescriptors) {
    cIO::GetThisFilePathName();
    const pid_t pid = fork();
    if (pid == 0) {
        setenv(s_RestartMark, std::to_string(open("/dev/null", O_RDONLY)).c_str(), 1);
        cIO::RestartThisApplication();
        _exit(1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 42);
}

TEST_F(cIO_Platform, CacheFolder) {
    const struct {
        const char* Xdg;
        const char* Home;
        const char* Folder;
    } cases[] = {
        {"/x/cache", "/h", "/x/cache"}, {"relative", "/h", "/h/.cache"}, {"", "/h", "/h/.cache"}, {"", "h", ""}};
    for (const auto& c : cases) {
        setenv("XDG_CACHE_HOME", c.Xdg, 1);
        setenv("HOME", c.Home, 1);
        EXPECT_STREQ(cIO::GetCacheFolder(), c.Folder) << c.Xdg << " " << c.Home;
        EXPECT_STREQ(cIO::GetUserFolder(), "");
    }
}

TEST_F(cIO_Platform, WithoutAHostDialogsAreCancelledAndTheClipboardIsInMemory) {
    cStr path("old");
    EXPECT_FALSE(cIO::SaveFileDialog({}, &path));
    EXPECT_FALSE(cIO::SelectFolderDialog("title", "key", &path));
    EXPECT_STREQ(path, "old");
    EXPECT_FALSE(cIO::Explore("f"));

    EXPECT_TRUE(cIO::CopyToClipboard("text"));
    EXPECT_TRUE(cIO::CopyFromClipboard(&path));
    EXPECT_STREQ(path, "text");
    EXPECT_TRUE(cIO::CopyToClipboard(nullptr));
    EXPECT_FALSE(cIO::CopyFromClipboard(&path));
}

cStr s_Asked;
const char* s_Answer;

bool Answer(const char* verb, const cIO::FileDialog& dialog, cStr* filePn) {
    s_Asked = cStr::Format("%s|%s|%s|%s|%s", verb, dialog.Title, dialog.Extensions, dialog.InitialPath,
                           dialog.InitialFile ? dialog.InitialFile : "-");
    *filePn = s_Answer;
    return true;
}

TEST_F(cIO_Platform, DialogsRememberFolderAndFile) {
    Source()->SetPath("/d");
    cIO::Host host;
    host.ShowLoadFile = [](const cIO::FileDialog& dialog, cStr* out) { return Answer("load", dialog, out); };
    host.ShowSaveFile = [](const cIO::FileDialog& dialog, cStr* out) { return Answer("save", dialog, out); };
    host.ShowSelectFolder = [](const char* title, const char* folder, cStr* out) {
        s_Asked = cStr::Format("%s|%s", title, folder);
        *out = s_Answer;
        return true;
    };
    cIO::SetHost(host);

    cIO_FileDialogPrefs.Clear();
    cIO::SetModelAnimCameraBspDialogsInitialPath("");
    cIO::SetBspDialogInitialFile("");

    cStr path;
    cIO::SetXmlDialogInitialPath("Xmls");
    cIO::SetXmlDialogInitialFile("a.Xml");
    s_Answer = "Other\\b";
    EXPECT_TRUE(cIO::SaveXmlDialog(&path));
    EXPECT_STREQ(s_Asked, "save|Save Xml|Xml|/d/Xmls|a.Xml");
    EXPECT_STREQ(path, "/d/Other/b.Xml");
    EXPECT_STREQ(cIO::GetXmlDialogInitialPath(), "/d/Other");
    EXPECT_STREQ(cIO::GetXmlDialogInitialFile(), "b.Xml");
    s_Answer = ""; // as good as cancelled
    EXPECT_FALSE(cIO::LoadXmlDialog(&path));
    EXPECT_STREQ(s_Asked, "load|Load Xml|Xml|/d/Other|b.Xml");
    EXPECT_STREQ(path, "/d/Other/b.Xml");

    // Models, animations, cameras and BSPs stand together: one folder, a file each.
    s_Answer = "/m/c.cBsp";
    EXPECT_TRUE(cIO::LoadBspDialog(&path));
    EXPECT_STREQ(cIO::GetBspDialogInitialFile(), "c.cBsp");
    EXPECT_TRUE(cIO::LoadCameraDialog(&path));
    EXPECT_NE(s_Asked.IndexOf("|/m|"), -1);
    EXPECT_STREQ(cIO::GetModelDialogInitialFile(), "");

    // Other dialogs go by a key of the caller's.
    EXPECT_FALSE(cIO::GetFileDialogPrefExists("k"));
    EXPECT_STREQ(cIO::GetFileDialogInitialFolder("k"), "/d");
    cIO::SetFileDialogInitialFolder("k", "rel");
    cIO::SetFileDialogInitialFolder("K", "/K");
    cIO::SetFileDialogInitialFolder(nullptr, "/n");
    EXPECT_TRUE(cIO::LoadFileDialog({"t", "x;y", "k", nullptr, nullptr}, &path));
    EXPECT_STREQ(s_Asked, "load|t|x;y|/d/rel|-");
    EXPECT_STREQ(cIO::GetFileDialogInitialFolder("k"), "/m");
    s_Answer = "/s";
    EXPECT_TRUE(cIO::SelectFolderDialog("pick", "k", &path));
    EXPECT_STREQ(s_Asked, "pick|/m");
    EXPECT_STREQ(cIO::GetFileDialogInitialFolder("k"), "/s");
    EXPECT_TRUE(cIO::GetFileDialogPrefExists("k"));
    EXPECT_FALSE(cIO::GetFileDialogPrefExists(nullptr));
    cIO::SetHost({});
}

} // namespace
} // namespace trellis
