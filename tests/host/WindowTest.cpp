// The workbench and its window on a server of their own (Xvfb), with keys and pointer by xdotool.
#include "files/cIO.h"
#include "foundation/cThread.h"
#include "host/HostWindow.h"
#include "image/cImage.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <X11/Xlib.h>
#include <X11/Xutil.h> // last, as it calls None and Bool what others need
#undef None
#undef Bool
#undef Success

using namespace trellis;

namespace {

namespace fs = std::filesystem;

constexpr int s_Width = 1280, s_Height = 720;

void SleepMs(int ms) {
    cThread::Sleep(unsigned(ms));
}

std::string ReadAll(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A program that runs beside the test, in a folder, with its words in "errors".
class Program {
public:
    Program(const fs::path& folder, std::vector<std::string> arguments) {
        m_Id = fork();
        if (m_Id == 0) {
            fs::current_path(folder);
            const int errors = open("errors", O_WRONLY | O_CREAT | O_TRUNC, 0600);
            dup2(errors, STDERR_FILENO);
            std::vector<char*> words;
            for (std::string& argument : arguments) {
                words.push_back(argument.data());
            }
            words.push_back(nullptr);
            execvp(words[0], words.data());
            _exit(127);
        }
    }
    ~Program() { Kill(); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// @return its status; -1 when it had to be killed after so many seconds
    int Wait(int seconds) {
        for (int i = 0; i < seconds * 20; i++) {
            int status;
            if (waitpid(m_Id, &status, WNOHANG) == m_Id) {
                m_Id = -1;
                return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            }
            SleepMs(50);
        }
        Kill();
        return -1;
    }
    void Kill() {
        if (m_Id > 0) {
            kill(m_Id, SIGKILL);
            waitpid(std::exchange(m_Id, -1), nullptr, 0);
        }
    }
    /// Processor time, in seconds.
    double Used() const {
        std::istringstream stat(ReadAll("/proc/" + std::to_string(m_Id) + "/stat"));
        std::string word;
        double user = 0, system = 0;
        for (int i = 1; i <= 13; i++) {
            stat >> word; // none of them holds a blank: the program's name is one word
        }
        stat >> user >> system;
        return (user + system) / double(sysconf(_SC_CLK_TCK));
    }

private:
    pid_t m_Id;
};

/// xdotool's name of a code.
std::string KeyOf(const std::string& code) {
    static const std::map<std::string, std::string> s_Keys = {
        {"Enter", "Return"}, {"Control", "ctrl"}, {"Alt", "alt"}, {"Shift", "shift"}, {"Esc", "Escape"}};
    const auto key = s_Keys.find(code);
    if (key != s_Keys.end()) {
        return key->second;
    }
    return code.size() == 1 ? std::string(1, char(std::tolower(code[0]))) : code;
}

/// A resolved script of input as commands for xdotool, at a share of its speed.
std::string ToCommands(const std::string& script, double slower) {
    static const std::map<std::string, int> s_Buttons = {{"LeftButton", 1}, {"MiddleButton", 2}, {"RightButton", 3}};
    std::istringstream lines(script);
    std::ostringstream out;
    double x = 0, y = 0, last = 0;
    const auto move = [&] { out << "mousemove " << std::lround(x) << ' ' << s_Height - 1 - std::lround(y) << '\n'; };
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        double frame;
        std::string verb, text;
        words >> frame >> verb;
        if (frame > last) {
            out << "sleep " << (frame - last) / 60 * slower << '\n';
            last = frame;
        }
        if (verb == "move") {
            words >> x >> y;
            move();
        } else if (verb == "drag") {
            double dx, dy, steps;
            words >> dx >> dy >> steps;
            for (int i = 0; i < int(steps); i++) {
                x += dx / steps;
                y += dy / steps;
                move();
                out << "sleep " << slower / 60 << '\n';
            }
            last += steps;
        } else if (verb == "type") {
            std::getline(words >> std::ws, text);
            out << "type --delay " << int(16 * slower) << " \"" << text << "\"\n";
            last += double(text.size());
        } else if (verb == "down" || verb == "up" || verb == "press") {
            words >> text;
            const auto button = s_Buttons.find(text);
            const std::string what = button == s_Buttons.end() ? KeyOf(text) : std::to_string(button->second);
            const std::string kind = button == s_Buttons.end() ? "key" : "mouse";
            const bool isPress = verb == "press";
            if (verb != "up") {
                out << kind << "down " << what << '\n';
            }
            if (isPress) {
                out << "sleep " << slower / 60 << '\n';
            }
            if (verb != "down") {
                out << kind << "up " << what << '\n';
            }
        }
    }
    return out.str();
}

class Window : public testing::Test {
protected:
    void SetUp() override {
        const bool hasTools = std::system("which Xvfb xdotool >/dev/null 2>&1") == 0;
        if (!hasTools && !std::getenv("TRELLIS_NEEDS_WINDOW")) {
            GTEST_SKIP() << "no Xvfb, or no xdotool (Debian: install xvfb xdotool)";
        }
        ASSERT_TRUE(hasTools);
        m_Folder = fs::temp_directory_path() / ("trellis_window_" + std::to_string(getpid()));
        fs::create_directories(m_Folder);
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const std::string size = std::to_string(s_Width) + "x" + std::to_string(s_Height) + "x24";
        m_Server = std::make_unique<Program>(m_Folder, std::vector<std::string>{"Xvfb", "-displayfd",
                                                                                std::to_string(ends[1]), "-screen", "0",
                                                                                size, "-nolisten", "tcp", "-noreset"});
        close(ends[1]);
        char number[16] = {};
        ASSERT_GT(read(ends[0], number, sizeof number - 1), 0);
        close(ends[0]);
        m_Display = ":" + std::to_string(std::atoi(number));
        setenv("DISPLAY", m_Display.c_str(), 1);
    }
    void TearDown() override {
        m_Server.reset();
        std::error_code ignored;
        fs::remove_all(m_Folder, ignored);
    }

    std::unique_ptr<Program> Start(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), TRELLIS_WORKBENCH);
        return std::make_unique<Program>(m_Folder, arguments);
    }
    std::string Errors() const { return ReadAll(m_Folder / "errors"); }

    void Play(const std::string& commands) {
        std::ofstream(m_Folder / "commands") << commands;
        const std::string line = "xdotool " + (m_Folder / "commands").string() + " >/dev/null";
        ASSERT_EQ(std::system(line.c_str()), 0);
    }

    /// What a person asks for by the window manager.
    void AskToClose() {
        ::Display* display = XOpenDisplay(m_Display.c_str());
        ASSERT_TRUE(display);
        ::Window root, parent, *windows = nullptr;
        unsigned count = 0;
        XQueryTree(display, DefaultRootWindow(display), &root, &parent, &windows, &count);
        ASSERT_GT(count, 0u);
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = windows[count - 1];
        event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", 0);
        event.xclient.format = 32;
        event.xclient.data.l[0] = long(XInternAtom(display, "WM_DELETE_WINDOW", 0));
        XSendEvent(display, windows[count - 1], 0, 0, &event);
        XFree(windows);
        XCloseDisplay(display);
    }

    /// Pixels of the screen that differ from a picture; -1 when there is nothing to compare.
    int CountDifferent(const fs::path& picturePn) {
        cImage picture;
        ::Display* display = XOpenDisplay(m_Display.c_str());
        if (!display || !cIO::LoadImage(picturePn.c_str(), &picture) || picture.GetWidth() != s_Width ||
            picture.GetHeight() != s_Height || !picture.ToFormat(cFormat::Rgba8)) {
            return -1;
        }
        XImage* screen = XGetImage(display, DefaultRootWindow(display), 0, 0, s_Width, s_Height, AllPlanes, ZPixmap);
        int different = 0;
        for (int y = 0; y < s_Height; y++) {
            for (int x = 0; x < s_Width; x++) {
                const unsigned char* p = picture.GetPixels() + ((s_Height - 1 - y) * s_Width + x) * 4;
                const unsigned long shown = XGetPixel(screen, x, y) & 0xFFFFFF;
                different += shown != (unsigned long)(p[0] << 16 | p[1] << 8 | p[2]);
            }
        }
        XDestroyImage(screen);
        XCloseDisplay(display);
        return different;
    }

    fs::path m_Folder;
    std::string m_Display;
    std::unique_ptr<Program> m_Server;
};

/// The whole of a short session. Without a window and with one, the same scene and the same picture come out.
TEST_F(Window, ASessionEndsAsWithoutOne) {
    const fs::path scene = m_Folder / "scene.Xml", saved = m_Folder / "saved.Xml", shot = m_Folder / "shot.bmp";
    std::ofstream(scene) << "<cWorkbenchScene><Objects><Model><ModelFile>" TRELLIS_SCENES
                            "/lighthouse.obj</ModelFile></Model><Path></Path></Objects>"
                            "</cWorkbenchScene>";
    std::string script = ReadAll(TRELLIS_SCRIPTS "/workbench.txt");
    ASSERT_FALSE(script.empty());
    for (size_t at; (at = script.find("FOLDER")) != std::string::npos;) {
        script.replace(at, 6, m_Folder.string());
    }
    std::ofstream(m_Folder / "script.txt") << script;

    ASSERT_EQ(Start({"--headless", "--script", "script.txt", "--shot", shot, "--resolved", "resolved.txt", TRELLIS_DATA,
                     TRELLIS_SCENES "/lighthouse.obj"})
                  ->Wait(120),
              0)
        << Errors();
    const std::string expected = ReadAll(saved);
    EXPECT_NE(expected.find("<Path>"), std::string::npos) << expected;
    fs::remove(saved);

    const auto program = Start({TRELLIS_DATA, TRELLIS_SCENES "/lighthouse.obj"});
    SleepMs(2000);
    Play(ToCommands(ReadAll(m_Folder / "resolved.txt"), TRELLIS_SLOWER));
    SleepMs(7000); // the last sentence goes
    EXPECT_EQ(ReadAll(saved), expected);
    EXPECT_EQ(CountDifferent(shot), 0);
    AskToClose();
    EXPECT_EQ(program->Wait(10), 0) << Errors();
}

TEST_F(Window, RestsWhileNothingHappens) {
    const auto program = Start({TRELLIS_DATA, TRELLIS_SCENES "/lighthouse.obj"});
    SleepMs(6000);
    const double before = program->Used();
    SleepMs(4000);
    EXPECT_LE(program->Used() - before, 0.1);
    EXPECT_GT(before, 0.05);
}

TEST_F(Window, AServerThatGoesIsToldOf) {
    const auto program = Start({TRELLIS_DATA, TRELLIS_SCENES "/lighthouse.obj"});
    SleepMs(2000);
    Play("mousemove 640 300 click 1 sleep 0.5 key Delete sleep 0.5 key Return sleep 0.5\n"); // a change
    m_Server->Kill();
    EXPECT_EQ(program->Wait(10), 1);
    EXPECT_NE(Errors().find("The connection to the X server is lost."), std::string::npos) << Errors();
    EXPECT_NE(ReadAll(m_Folder / "Rescued.Xml").find("<cWorkbenchScene>"), std::string::npos) << Errors();
    EXPECT_EQ(Start({TRELLIS_DATA})->Wait(10), 1);
    EXPECT_NE(Errors().find("There is no X server to open a window on"), std::string::npos) << Errors();
}

/// A changed scene is not closed without a word.
TEST_F(Window, AsksBeforeAChangeIsLost) {
    const auto program = Start({TRELLIS_DATA, TRELLIS_SCENES "/lighthouse.obj"});
    SleepMs(2000);
    Play("mousemove 640 300 click 1 sleep 0.5 key Delete sleep 0.5 key Return sleep 0.5\n");
    AskToClose();
    SleepMs(1000);
    Play("key Escape sleep 0.5\n");
    AskToClose();
    SleepMs(1000);
    Play("key Tab sleep 0.2 key space sleep 0.2\n"); // "No"
    EXPECT_EQ(program->Wait(5), 0) << Errors();
}

// ---- The window itself

struct Sampled {
    std::vector<int> Downs, Chars;
    int Wheel = 0, DoubleClicks = 0;
};

/// Frames until the window has been quiet for a while.
Sampled Sample(HostWindow* window) {
    Sampled seen;
    for (int quiet = 0; quiet < 20; quiet++) {
        window->Wait(10);
        window->Poll();
        quiet = window->TakeChange() ? 0 : quiet;
        cInput::Acquire();
        seen.Wheel += cInput::GetWheelDelta();
        for (const cInput::Event* event : cInput::GetEvents()) {
            if (event->Type == cInput::ButtonEvent && event->Down) {
                seen.Downs.push_back(event->Code);
            } else if (event->Type == cInput::CharEvent && event->Char != -1) {
                seen.Chars.push_back(event->Char);
            }
        }
        seen.DoubleClicks += cInput::IsDoubleClick();
        cInput::FreeEvents();
    }
    return seen;
}

TEST_F(Window, SaysWhatThePersonDoes) {
    std::string error;
    const auto window = HostWindow::Open("Test", 400, 300, &error);
    ASSERT_TRUE(window) << error;
    Play("mousemove 200 150\n");
    Sample(window.get());
    EXPECT_EQ(cInput::GetMousePosition().x, 200);
    EXPECT_EQ(cInput::GetMousePosition().y, 299 - 150);

    const struct {
        const char* Commands;
        std::vector<int> Downs, Chars;
        int Wheel = 0, DoubleClicks = 0;
    } rows[] = {
        {"key a\n", {cInput::A}, {'a'}},
        {"key shift+a\n", {cInput::Shift, cInput::A}, {'A'}},
        {"key ctrl+z\n", {cInput::Control, cInput::Z}, {}},
        {"key --delay 50 Return F5 Left KP_Add\n", {cInput::Enter, cInput::F5, cInput::Left, cInput::Add}, {'+'}},
        {"click 1\n", {cInput::LeftButton}, {}},
        {"sleep 0.6 click --repeat 2 --delay 60 1\n", {cInput::LeftButton, cInput::LeftButton}, {}, 0, 1},
        {"sleep 0.6 click 1 sleep 0.6 click 1\n", {cInput::LeftButton, cInput::LeftButton}, {}, 0, 0},
        {"click 3 click 2\n", {cInput::RightButton, cInput::MiddleButton}, {}},
        {"click 4 click 4 click 5\n", {cInput::WheelUp, cInput::WheelDown}, {}, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Commands);
        Play(row.Commands);
        const Sampled seen = Sample(window.get());
        if (row.Wheel == 0) { // notches may fall into one frame
            EXPECT_EQ(seen.Downs, row.Downs);
        }
        EXPECT_EQ(seen.Chars, row.Chars);
        EXPECT_EQ(seen.Wheel, row.Wheel);
        EXPECT_EQ(seen.DoubleClicks, row.DoubleClicks);
    }
}

TEST_F(Window, ShowsThePictureUprightInItsColours) {
    std::string error;
    const auto window = HostWindow::Open("Test", s_Width, s_Height, &error);
    ASSERT_TRUE(window) << error;
    cImage picture(cFormat::Rgba8, s_Width, s_Height, 1, 1);
    for (int i = 0; i < s_Width * s_Height; i++) {
        const unsigned pixel = 0xFF000000u | unsigned(i) * 2654435761u >> 8;
        std::memcpy(picture.GetPixels() + i * 4, &pixel, 4);
    }
    Sample(window.get());
    window->Show(picture);
    Sample(window.get());
    const fs::path path = m_Folder / "picture.tga";
    ASSERT_TRUE(cIO::SaveImage(path.c_str(), picture));
    EXPECT_EQ(CountDifferent(path), 0);
}

TEST_F(Window, KeepsAClipboard) {
    std::string error;
    const auto window = HostWindow::Open("Test", 100, 100, &error);
    ASSERT_TRUE(window) << error;
    cIO::Host host;
    HostWindow::AddTo(&host);
    cStr text;
    EXPECT_FALSE(host.GetClipboardText(&text));
    EXPECT_TRUE(host.SetClipboardText("Gr\xC3\xBC\xC3\x9F"
                                      "e"));
    EXPECT_TRUE(host.GetClipboardText(&text));
    EXPECT_EQ(text, "Gr\xC3\xBC\xC3\x9F"
                    "e");
}

} // namespace
