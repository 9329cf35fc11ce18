// Folders with fonts whose glyphs are all alike, and the recording device that has their pictures.
#pragma once

#include <string>

#include "files/cFile.h"
#include "render/cFont.h"
#include "tests/files/Folders.h"
#include "tests/render/RecordingDevice.h"

namespace trellis {

class FontFolders : public Folders {
protected:
    ~FontFolders() override { RecordingDevice::Uninstall(); }

    /// @param advance  of each glyph from 32 to `last`
    void PutFont(const std::string& name, int height, float advance, int last = 126) {
        cFont font;
        font.Height = height;
        for (int code = 32; code <= last; code++) {
            font.Glyphs.Add({static_cast<unsigned short>(code), 0, 0, 0, 0, 0, 0, 1, 1, advance, 0});
        }
        cFile file;
        font.Write(&file);
        Put(Read("Fonts/" + name + ".cFont"),
            std::string(reinterpret_cast<const char*>(file.GetBytes().Data()), size_t(file.GetSize())));
        Device.Textures.push_back({"Fonts/" + name + ".bmp", 64, 64, 1, 0, 1, 0});
    }

    RecordingDevice& Device = RecordingDevice::Install();
};

} // namespace trellis
