// Fonts for benchmarks, in a folder of their own while one lives: the codes from 32 to 126, all alike.
#pragma once

#include "files/cFile.h"
#include "files/cIO.h"
#include "render/cFont.h"

#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <string>

namespace trellis {

class BenchFonts {
public:
    explicit BenchFonts(std::initializer_list<const char*> names) {
        m_Folder = (std::filesystem::temp_directory_path() / "trellis-bench-XXXXXX").string();
        if (!mkdtemp(m_Folder.data())) {
            std::abort();
        }
        std::filesystem::create_directories(m_Folder + "/Fonts");
        cFont font;
        font.Ascent = 12;
        font.Height = 16;
        for (unsigned short code = 32; code < 127; code++) {
            font.Glyphs.Add({code, 0, 1, 1, 0, 0, 0, 8, 10, 7, 0});
        }
        cFile file;
        font.Write(&file);
        for (const char* name : names) {
            cIO::SaveFile((m_Folder + "/Fonts/" + name + ".cFont").c_str(), file);
        }
        cIO::SetDefaultSourceWriteFolder(m_Folder.c_str());
    }
    ~BenchFonts() {
        cIO::SetDefaultSourceWriteFolder(nullptr);
        std::filesystem::remove_all(m_Folder);
    }
    BenchFonts(const BenchFonts&) = delete;
    BenchFonts& operator=(const BenchFonts&) = delete;

private:
    std::string m_Folder;
};

} // namespace trellis
