#include "host/HostDialogs.h"

#include "foundation/cLog.h"
#include "host/FileForm.h"
#include "host/MessageForm.h"
#include "ui/cMessageBox.h"

#include <utility>

namespace trellis {

namespace {

using Captions = std::initializer_list<const char*>;

std::function<bool()> s_Frame;
const cTheme* s_Theme = nullptr;

/// @return null when no dialog can be shown
const cTheme* FindTheme(const char* title) {
    const cTheme* theme = s_Theme ? s_Theme : cTheme::WindowsStandard ? cTheme::WindowsStandard : cTheme::Fragile;
    if (!s_Frame || !theme) {
        cLog::Warning("The dialog \"%s\" is cancelled: there is no %s", title ? title : "",
                      s_Frame ? "theme" : "program to run it");
        return nullptr;
    }
    return theme;
}

/// @return the index of the pressed button, or -1
int Show(const char* title, const char* text, Captions buttons) {
    const cTheme* theme = FindTheme(title);
    if (!theme) {
        return DialogForm::Cancelled;
    }
    return DialogForm::Run(std::make_unique<MessageForm>(title, text ? text : "", buttons, theme), s_Frame);
}

bool ShowFiles(FileForm::Purpose purpose, const cIO::FileDialog& dialog, cStr* chosen) {
    const cTheme* theme = FindTheme(dialog.Title);
    cStr path;
    if (!theme || DialogForm::Run(std::make_unique<FileForm>(purpose, dialog, &path, theme, s_Frame), s_Frame) != 0) {
        return false;
    }
    *chosen = path;
    return true;
}

} // namespace

HostDialogs::HostDialogs(std::function<bool()> frame) {
    s_Frame = std::move(frame);
    cMessageBox::SetHandler([](const char* title, const char* text) {
        return Show(title, text, Captions{"Yes", "No"}) == 0;
    });
}

HostDialogs::~HostDialogs() {
    s_Frame = nullptr;
    cMessageBox::SetHandler(nullptr);
}

void HostDialogs::AddTo(cIO::Host* host) {
    host->ShowLoadFile = [](const cIO::FileDialog& dialog, cStr* filePn) {
        return ShowFiles(FileForm::Purpose::Load, dialog, filePn);
    };
    host->ShowSaveFile = [](const cIO::FileDialog& dialog, cStr* filePn) {
        return ShowFiles(FileForm::Purpose::Save, dialog, filePn);
    };
    host->ShowSelectFolder = [](const char* title, const char* initialFolder, cStr* folder) {
        cIO::FileDialog dialog;
        dialog.Title = title;
        dialog.InitialPath = initialFolder;
        return ShowFiles(FileForm::Purpose::Folder, dialog, folder);
    };
}

void HostDialogs::Tell(const char* title, const char* text) {
    Show(title, text, Captions{"OK"});
}

HostDialogs::Answer HostDialogs::Ask(const char* title, const char* text) {
    switch (Show(title, text, Captions{"Yes", "No", "Cancel"})) {
    case 0:
        return Yes;
    case 1:
        return No;
    }
    return Cancel;
}

void HostDialogs::SetTheme(const cTheme* theme) {
    s_Theme = theme;
}

bool HostDialogs::IsOpen() {
    return DialogForm::CountOpen() > 0;
}

} // namespace trellis
