// A temporary folder with a read and a write folder in it, which the default source uses during a test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "files/SourceFolder.h"
#include "files/cIO.h"
#include "foundation/cLog.h"

namespace trellis {

class Folders : public testing::Test {
protected:
    Folders() : m_OldRoot(cIO::GetDefaultSourceFolder()), m_OldLog(cLog::GetLog()) {
        std::string pattern = (std::filesystem::temp_directory_path() / "trellis-files-XXXXXX").string();
        m_Top = mkdtemp(pattern.data());
        std::filesystem::create_directories(Read());
        std::filesystem::create_directories(Write());
        Source()->SetPath(Read().c_str());
        cIO::SetDefaultSourceWriteFolder(Write().c_str());
    }
    ~Folders() override {
        cLog::GetLogMutable() = m_OldLog;
        Source()->SetPath(m_OldRoot);
        cIO::SetDefaultSourceWriteFolder(nullptr);
        std::error_code error;
        std::filesystem::remove_all(m_Top, error);
    }

    static SourceFolder* Source() { return static_cast<SourceFolder*>(cIO::GetSourcesMutable()[0]); }

    std::string Top(const std::string& name) const { return m_Top + "/" + name; }
    std::string Read(const std::string& name = "") const { return m_Top + (name.empty() ? "/read" : "/read/" + name); }
    std::string Write(const std::string& name = "") const {
        return m_Top + (name.empty() ? "/write" : "/write/" + name);
    }

    static void Put(const std::string& path, const std::string& text = "x") {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << text;
    }
    static std::string Get(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "(none)";
    }

    /// The paths without the part in front of the test's own folder.
    std::vector<std::string> Names(const cList<cStr>& paths) const {
        std::vector<std::string> names;
        for (const cStr& path : paths) {
            const std::string text = path.Text();
            names.push_back(text.starts_with(m_Top + "/") ? text.substr(m_Top.size() + 1) : text);
        }
        return names;
    }

private:
    cStr m_OldRoot;
    cStr m_OldLog;
    std::string m_Top;
};

} // namespace trellis
