// A window of the X Window System. Pictures go through shared memory where the server has it.
#include "foundation/cStr.h"
#include "host/HostWindow.h"
#include "image/cImage.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/cursorfont.h>
#include <X11/extensions/XShm.h>
#include <X11/keysym.h>

#include <poll.h>
#include <sys/ipc.h>
#include <sys/shm.h>

#include <algorithm>
#include <bitset>
#include <chrono>
#include <clocale>
#include <cstring>
#include <vector>

#undef None // as X calls its 0

namespace trellis {

namespace {

constexpr struct {
    KeySym Symbol;
    int Code;
} s_Keys[] = {
    {XK_Escape, cInput::Esc},
    {XK_minus, cInput::Minus},
    {XK_equal, cInput::Equals},
    {XK_BackSpace, cInput::BackSpace},
    {XK_Tab, cInput::Tab},
    {XK_ISO_Left_Tab, cInput::Tab},
    {XK_Caps_Lock, cInput::CapsLock},
    {XK_Insert, cInput::Insert},
    {XK_Delete, cInput::Delete},
    {XK_Home, cInput::Home},
    {XK_End, cInput::End},
    {XK_Prior, cInput::PageUp},
    {XK_Next, cInput::PageDown},
    {XK_Up, cInput::Up},
    {XK_Down, cInput::Down},
    {XK_Left, cInput::Left},
    {XK_Right, cInput::Right},
    {XK_backslash, cInput::BackSlash},
    {XK_Return, cInput::Enter},
    {XK_KP_Enter, cInput::Enter},
    {XK_bracketleft, cInput::LeftBracket},
    {XK_bracketright, cInput::RightBracket},
    {XK_semicolon, cInput::Semicolon},
    {XK_apostrophe, cInput::Quote},
    {XK_comma, cInput::Comma},
    {XK_period, cInput::Period},
    {XK_slash, cInput::Slash},
    {XK_Shift_L, cInput::Shift},
    {XK_Shift_R, cInput::Shift},
    {XK_Control_L, cInput::Control},
    {XK_Control_R, cInput::Control},
    {XK_Alt_L, cInput::Alt},
    {XK_Alt_R, cInput::Alt},
    {XK_Meta_L, cInput::Alt},
    {XK_space, cInput::Space},
    {XK_grave, cInput::Tilde},
    {XK_KP_Insert, cInput::NumPad0},
    {XK_KP_End, cInput::NumPad1},
    {XK_KP_Down, cInput::NumPad2},
    {XK_KP_Next, cInput::NumPad3},
    {XK_KP_Left, cInput::NumPad4},
    {XK_KP_Begin, cInput::NumPad5},
    {XK_KP_Right, cInput::NumPad6},
    {XK_KP_Home, cInput::NumPad7},
    {XK_KP_Up, cInput::NumPad8},
    {XK_KP_Prior, cInput::NumPad9},
    {XK_KP_Add, cInput::Add},
    {XK_KP_Subtract, cInput::Subtract},
    {XK_KP_Multiply, cInput::Multiply},
    {XK_KP_Divide, cInput::Divide},
    {XK_KP_Delete, cInput::Decimal},
    {XK_KP_Decimal, cInput::Decimal},
};

/// Of the unshifted symbol. -1 for a key that has none.
int CodeOf(KeySym symbol) {
    const struct {
        KeySym First, Last;
        int Code;
    } rows[] = {
        {XK_a, XK_z, cInput::A},
        {XK_A, XK_Z, cInput::A},
        {XK_0, XK_9, cInput::Key0},
        {XK_F1, XK_F12, cInput::F1},
        {XK_KP_0, XK_KP_9, cInput::NumPad0},
    };
    for (const auto& row : rows) {
        if (symbol >= row.First && symbol <= row.Last) {
            return row.Code + int(symbol - row.First);
        }
    }
    for (const auto& key : s_Keys) {
        if (key.Symbol == symbol) {
            return key.Code;
        }
    }
    return -1;
}

/// The characters of a well-formed UTF-8 text. @return 0 at its end
int NextChar(const unsigned char*& text) {
    const int first = *text;
    if (first == 0) {
        return 0;
    }
    text++;
    const int more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : first >= 0xC0 ? 1 : 0;
    int c = more == 0 ? first : first & (0x3F >> more);
    for (int i = 0; i < more && (*text & 0xC0) == 0x80; i++) {
        c = c << 6 | (*text++ & 0x3F);
    }
    return c;
}

bool s_HasFailed = false; // of the request that is being tried

class X11Window : public HostWindow {
public:
    explicit X11Window(Display* display) : m_Display(display) {}
    ~X11Window() override;
    bool Create(const char* title, int width, int height, std::string* error);

    void Poll() override;
    void Wait(int ms) override;
    void Show(const cImage& picture) override;
    void SetTitle(const char* title) override;

protected:
    void SetCursor(cInput::Cursor::Enum cursor) override;
    bool SetClipboardText(const char* text) override;
    bool GetClipboardText(cStr* text) override;

private:
    void Handle(XEvent& event);
    void OnKey(XKeyEvent& event);
    int CodeOfKey(unsigned key) const;
    void AnswerSelection(const XSelectionRequestEvent& request);
    bool TakeSelection(Atom property, cStr* text);
    bool EnsureImage();
    void FreeImage();

    Display* m_Display;
    Window m_Window = 0;
    GC m_Gc = nullptr;
    XIM m_Method = nullptr;
    XIC m_Context = nullptr;
    std::bitset<256> m_Held; // keys, by their X codes
    Atom m_DeleteWindow = 0, m_Clipboard = 0, m_Utf8 = 0, m_Targets = 0, m_Property = 0;
    XImage* m_Image = nullptr;
    XShmSegmentInfo m_Shared{};
    bool m_IsShared = false;
    std::string m_Owned; // the clipboard, while it is ours
    Cursor m_Cursors[cInput::Cursor::Hand + 1] = {};
};

} // namespace

std::unique_ptr<HostWindow> HostWindow::Open(const char* title, int width, int height, std::string* error) {
    Display* display = XOpenDisplay(nullptr);
    if (!display) {
        *error = "There is no X server to open a window on (DISPLAY is not set, or nobody answers there).";
        return nullptr;
    }
    auto window = std::make_unique<X11Window>(display);
    return window->Create(title, width, height, error) ? std::move(window) : nullptr;
}

namespace {

bool X11Window::Create(const char* title, int width, int height, std::string* error) {
    const int screen = DefaultScreen(m_Display);
    const Visual* visual = DefaultVisual(m_Display, screen);
    if (DefaultDepth(m_Display, screen) < 24 || visual->red_mask != 0xFF0000 || visual->blue_mask != 0xFF) {
        *error = "The screen has no true colours.";
        return false;
    }
    XSetErrorHandler([](Display*, XErrorEvent*) { // by default they end the program: a window of another one that has
        s_HasFailed = true;                       // gone while it asked for our clipboard is enough
        return 0;
    });
    XSetIOErrorHandler([](Display*) { return 0; }); // the other one says it
    XSetIOErrorExitHandler(
        m_Display,
        [](Display*, void* window) {
            static_cast<X11Window*>(window)->OnFailure("The connection to the X server is lost.");
        },
        this);
    m_Window =
        XCreateSimpleWindow(m_Display, RootWindow(m_Display, screen), 0, 0, unsigned(width), unsigned(height), 0, 0, 0);
    XSelectInput(m_Display, m_Window,
                 KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask | PointerMotionMask |
                     EnterWindowMask | StructureNotifyMask | ExposureMask | FocusChangeMask);
    const auto atom = [this](const char* name) { return XInternAtom(m_Display, name, False); };
    m_DeleteWindow = atom("WM_DELETE_WINDOW");
    m_Clipboard = atom("CLIPBOARD");
    m_Utf8 = atom("UTF8_STRING");
    m_Targets = atom("TARGETS");
    m_Property = atom("TRELLIS_CLIPBOARD");
    XSetWMProtocols(m_Display, m_Window, &m_DeleteWindow, 1);
    XkbSetDetectableAutoRepeat(m_Display, True, nullptr);
    std::setlocale(LC_CTYPE, ""); // of dead keys
    XSetLocaleModifiers("");
    m_Method = XOpenIM(m_Display, nullptr, nullptr, nullptr);
    if (m_Method) {
        m_Context = XCreateIC(m_Method, XNInputStyle, XIMPreeditNothing | XIMStatusNothing, XNClientWindow, m_Window,
                              XNFocusWindow, m_Window, nullptr);
    }
    m_Gc = XCreateGC(m_Display, m_Window, 0, nullptr);
    SetTitle(title);
    OnSize(width, height);
    XMapWindow(m_Display, m_Window);
    return true;
}

X11Window::~X11Window() {
    FreeImage();
    if (GetFailure().empty()) {
        if (m_Context) {
            XDestroyIC(m_Context);
        }
        if (m_Method) {
            XCloseIM(m_Method);
        }
        if (m_Gc) {
            XFreeGC(m_Display, m_Gc);
        }
        XCloseDisplay(m_Display); // and all that it has
    }
}

// ---- Events

void X11Window::Poll() {
    while (GetFailure().empty() && XPending(m_Display) > 0) {
        XEvent event;
        XNextEvent(m_Display, &event);
        if (!XFilterEvent(&event, 0)) {
            Handle(event);
        }
    }
}

void X11Window::Wait(int ms) {
    if (GetFailure().empty() && XPending(m_Display) == 0) {
        pollfd connection{ConnectionNumber(m_Display), POLLIN, 0};
        poll(&connection, 1, ms);
    }
}

void X11Window::Handle(XEvent& event) {
    const auto buttonOf = [](unsigned button) {
        switch (button) {
        case Button1:
            return int(cInput::LeftButton);
        case Button2:
            return int(cInput::MiddleButton);
        case Button3:
            return int(cInput::RightButton);
        case 8:
            return int(cInput::XButton1);
        case 9:
            return int(cInput::XButton2);
        default:
            return -1;
        }
    };
    const auto point = [this](int x, int y) { OnPointer(float(x), float(m_Height - 1 - y)); };
    switch (event.type) {
    case KeyPress:
        OnKey(event.xkey);
        break;
    case KeyRelease:
        m_Held.reset(event.xkey.keycode & 255);
        OnButton(CodeOfKey(event.xkey.keycode), false);
        break;
    case ButtonPress:
        point(event.xbutton.x, event.xbutton.y);
        if (event.xbutton.button == Button4 || event.xbutton.button == Button5) {
            OnWheel(event.xbutton.button == Button4 ? 1 : -1);
        } else {
            OnClick(buttonOf(event.xbutton.button), unsigned(event.xbutton.time));
        }
        break;
    case ButtonRelease:
        point(event.xbutton.x, event.xbutton.y);
        OnButton(buttonOf(event.xbutton.button), false);
        break;
    case EnterNotify:
        point(event.xcrossing.x, event.xcrossing.y);
        break;
    case MotionNotify:
        point(event.xmotion.x, event.xmotion.y);
        break;
    case ConfigureNotify:
        OnSize(std::max(event.xconfigure.width, 1), std::max(event.xconfigure.height, 1));
        break;
    case Expose:
        OnChange();
        break;
    case FocusOut:
        m_Held.reset();
        OnFocusLost();
        break;
    case MappingNotify:
        XRefreshKeyboardMapping(&event.xmapping);
        break;
    case SelectionRequest:
        AnswerSelection(event.xselectionrequest);
        break;
    case SelectionClear:
        if (XGetSelectionOwner(m_Display, m_Clipboard) != m_Window) { // not again ours meanwhile
            m_Owned.clear();
        }
        break;
    case ClientMessage:
        if (Atom(event.xclient.data.l[0]) == m_DeleteWindow) {
            OnClose();
        }
        break;
    }
}

/// By the first layout that has a code for the key. A digit may be the shifted symbol, as in France; a modifier is not
/// another layout's.
int X11Window::CodeOfKey(unsigned key) const {
    constexpr int Layouts = 4;
    const auto symbolOf = [&](int layout, int level) {
        return XkbKeycodeToKeysym(m_Display, KeyCode(key), layout, level);
    };
    const KeySym shifted = symbolOf(0, 1);
    if (shifted >= XK_0 && shifted <= XK_9) {
        return CodeOf(shifted);
    }
    for (int layout = 0; layout < Layouts; layout++) {
        const KeySym symbol = symbolOf(layout, 0);
        const int code = CodeOf(symbol);
        if (code != -1 || IsModifierKey(symbol)) {
            return code;
        }
    }
    return -1;
}

/// Repeats are the framework's to make; a character goes with its first press.
void X11Window::OnKey(XKeyEvent& event) {
    const int code = CodeOfKey(event.keycode);
    const bool isRepeat = m_Held.test(event.keycode & 255);
    m_Held.set(event.keycode & 255, event.keycode != 0); // 0: composed of several, and never let go
    if (!isRepeat) {
        OnButton(code, true);
    }
    char text[64] = {};
    KeySym symbol = 0;
    int length;
    if (m_Context) {
        Status status;
        length = Xutf8LookupString(m_Context, &event, text, int(sizeof text) - 1, &symbol, &status);
    } else {
        length = XLookupString(&event, text, int(sizeof text) - 1, &symbol, nullptr);
    }
    text[std::clamp(length, 0, int(sizeof text) - 1)] = 0;
    const auto* at = reinterpret_cast<const unsigned char*>(text);
    while (const int c = isRepeat ? 0 : NextChar(at)) {
        if (c >= ' ' && c != 0x7F && !(event.state & ControlMask)) {
            OnChar(c, code);
        }
    }
}

// ---- Pictures

/// Of the window's size; in memory that the server reads as well, if it can.
bool X11Window::EnsureImage() {
    if (m_Image && m_Image->width == m_Width && m_Image->height == m_Height) {
        return true;
    }
    FreeImage();
    const int screen = DefaultScreen(m_Display);
    Visual* visual = DefaultVisual(m_Display, screen);
    const auto depth = unsigned(DefaultDepth(m_Display, screen)), width = unsigned(m_Width),
               height = unsigned(m_Height);
    if (XShmQueryExtension(m_Display)) {
        m_Image = XShmCreateImage(m_Display, visual, depth, ZPixmap, nullptr, &m_Shared, width, height);
        m_Shared.shmid = m_Image ? shmget(IPC_PRIVATE, size_t(m_Image->bytes_per_line) * height, IPC_CREAT | 0600) : -1;
        if (m_Shared.shmid != -1) {
            XSync(m_Display, False); // what has failed before is not meant
            void* memory = shmat(m_Shared.shmid, nullptr, 0);
            s_HasFailed = memory == reinterpret_cast<void*>(-1);
            if (!s_HasFailed) {
                m_Shared.shmaddr = m_Image->data = static_cast<char*>(memory);
                m_Shared.readOnly = True;
                XShmAttach(m_Display, &m_Shared); // not with a server on another machine
                XSync(m_Display, False);
            }
            shmctl(m_Shared.shmid, IPC_RMID, nullptr); // goes with the last of the two
            m_IsShared = !s_HasFailed;
            if (m_IsShared) {
                return true;
            }
            if (m_Image->data) {
                shmdt(m_Shared.shmaddr);
            }
        }
        if (m_Image) {
            m_Image->data = nullptr;
            XDestroyImage(m_Image);
            m_Image = nullptr;
        }
    }
    auto* pixels = static_cast<char*>(std::calloc(size_t(width) * height, 4));
    m_Image = pixels ? XCreateImage(m_Display, visual, depth, ZPixmap, 0, pixels, width, height, 32, 0) : nullptr;
    return m_Image;
}

void X11Window::FreeImage() {
    if (!m_Image) {
        return;
    }
    if (m_IsShared) {
        if (GetFailure().empty()) {
            XShmDetach(m_Display, &m_Shared);
            XSync(m_Display, False);
        }
        shmdt(m_Shared.shmaddr);
        m_Image->data = nullptr;
    }
    XDestroyImage(m_Image); // with its pixels
    m_Image = nullptr;
    m_IsShared = false;
}

void X11Window::Show(const cImage& picture) {
    if (!GetFailure().empty() || !EnsureImage() || picture.GetFormat() != cFormat::Rgba8) {
        return;
    }
    const int width = std::min(m_Width, picture.GetWidth()), height = std::min(m_Height, picture.GetHeight());
    for (int y = 0; y < height; y++) { // from RGBA, the bottom row first, to BGRX, the top row first
        const unsigned char* from =
            picture.GetPixels() + size_t(picture.GetHeight() - 1 - y) * size_t(picture.GetWidth()) * 4;
        char* to = m_Image->data + size_t(y) * size_t(m_Image->bytes_per_line);
        for (int x = 0; x < width; x++) {
            unsigned pixel;
            std::memcpy(&pixel, from + x * 4, 4);
            pixel = (pixel & 0xFF00FF00u) | (pixel & 0xFFu) << 16 | (pixel >> 16 & 0xFFu);
            std::memcpy(to + x * 4, &pixel, 4);
        }
    }
    const auto w = unsigned(width), h = unsigned(height);
    if (m_IsShared) {
        XShmPutImage(m_Display, m_Window, m_Gc, m_Image, 0, 0, 0, 0, w, h, False);
    } else {
        XPutImage(m_Display, m_Window, m_Gc, m_Image, 0, 0, 0, 0, w, h);
    }
    XSync(m_Display, False); // the server reads it before it is written again
}

void X11Window::SetTitle(const char* title) {
    XStoreName(m_Display, m_Window, title);
    XChangeProperty(m_Display, m_Window, XInternAtom(m_Display, "_NET_WM_NAME", False), m_Utf8, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(title), int(std::strlen(title)));
}

void X11Window::SetCursor(cInput::Cursor::Enum cursor) {
    static constexpr unsigned Shapes[] = {XC_left_ptr,
                                          XC_left_ptr,
                                          XC_sb_h_double_arrow,
                                          XC_sb_v_double_arrow,
                                          XC_bottom_left_corner,
                                          XC_bottom_right_corner,
                                          XC_hand2};
    static_assert(std::size(Shapes) == cInput::Cursor::Hand + 1);
    if (!GetFailure().empty()) {
        return;
    }
    const int which = cursor == cInput::Cursor::Default ? int(cInput::Cursor::Arrow) : int(cursor);
    if (which < 0 || which > cInput::Cursor::Hand) {
        return;
    }
    Cursor& made = m_Cursors[which];
    if (!made && which == cInput::Cursor::None) {
        const Pixmap empty = XCreatePixmap(m_Display, m_Window, 1, 1, 1);
        XColor black{};
        made = XCreatePixmapCursor(m_Display, empty, empty, &black, &black, 0, 0);
        XFreePixmap(m_Display, empty);
    } else if (!made) {
        made = XCreateFontCursor(m_Display, Shapes[which]);
    }
    XDefineCursor(m_Display, m_Window, made);
}

// ---- Clipboard

bool X11Window::SetClipboardText(const char* text) {
    if (!GetFailure().empty()) {
        return false;
    }
    m_Owned = text;
    XSetSelectionOwner(m_Display, m_Clipboard, m_Window, CurrentTime);
    return XGetSelectionOwner(m_Display, m_Clipboard) == m_Window;
}

void X11Window::AnswerSelection(const XSelectionRequestEvent& request) {
    XEvent answer{};
    answer.xselection.type = SelectionNotify;
    answer.xselection.requestor = request.requestor;
    answer.xselection.selection = request.selection;
    answer.xselection.target = request.target;
    answer.xselection.time = request.time;
    const Atom property = request.property ? request.property : request.target; // as old programs have it
    const long mostBytes = std::max(XExtendedMaxRequestSize(m_Display), XMaxRequestSize(m_Display)) * 4 - 64;
    answer.xselection.property = property;
    if (request.target == m_Targets) {
        const Atom offered[] = {m_Targets, m_Utf8, XA_STRING};
        XChangeProperty(m_Display, request.requestor, property, XA_ATOM, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(offered), int(std::size(offered)));
    } else if ((request.target == m_Utf8 || request.target == XA_STRING) && long(m_Owned.size()) <= mostBytes) {
        XChangeProperty(m_Display, request.requestor, property, request.target, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(m_Owned.data()), int(m_Owned.size()));
    } else {
        answer.xselection.property = 0;
    }
    XSendEvent(m_Display, request.requestor, False, 0, &answer);
}

bool X11Window::GetClipboardText(cStr* text) {
    if (!GetFailure().empty()) {
        return false;
    }
    if (XGetSelectionOwner(m_Display, m_Clipboard) == m_Window) {
        *text = m_Owned.c_str();
        return true;
    }
    for (XEvent late; XCheckTypedWindowEvent(m_Display, m_Window, SelectionNotify, &late);) {
    }
    XConvertSelection(m_Display, m_Clipboard, m_Utf8, m_Property, m_Window, CurrentTime);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(500);
    while (std::chrono::steady_clock::now() < deadline && GetFailure().empty()) { // its owner may have hung
        XEvent event;
        if (XCheckTypedWindowEvent(m_Display, m_Window, SelectionNotify, &event)) {
            return event.xselection.property != 0 && TakeSelection(event.xselection.property, text);
        }
        XFlush(m_Display);
        pollfd connection{ConnectionNumber(m_Display), POLLIN, 0};
        poll(&connection, 1, 20);
    }
    return false;
}

/// @return false for what comes in pieces or is too long, which is larger than any text here
bool X11Window::TakeSelection(Atom property, cStr* text) {
    constexpr long MostWords = 1 << 20; // four bytes each
    Atom type;
    int format = 0;
    unsigned long count, left;
    unsigned char* bytes = nullptr;
    if (XGetWindowProperty(m_Display, m_Window, property, 0, MostWords, True, AnyPropertyType, &type, &format, &count,
                           &left, &bytes) != Success ||
        !bytes) {
        return false;
    }
    const bool isWhole = format == 8 && left == 0;
    if (isWhole) {
        *text = reinterpret_cast<const char*>(bytes); // which the library ends with a 0
    }
    XFree(bytes);
    return isWhole;
}

} // namespace

} // namespace trellis
