// Files and logs of the codecs' tests.
#pragma once

#include <cstdlib>
#include <string>
#include <string_view>

#include "files/cFile.h"
#include "foundation/cLog.h"

namespace trellis {

/// A file over a heap block without slack, so that a read past its end shows.
inline cFile FileOf(std::string_view content) {
    cList<unsigned char> bytes;
    bytes.Resize(int(content.size()), false);
    bytes.AddRange(reinterpret_cast<const unsigned char*>(content.data()), int(content.size()));
    cFile file;
    file.Set(&bytes, "test");
    return file;
}

inline std::string BytesOf(const cFile& file) {
    return std::string(reinterpret_cast<const char*>(file.GetBytes().Data()), size_t(file.GetSize()));
}

/// As "01 FF".
inline std::string Hex(const char* text) {
    std::string bytes;
    for (char* end; *text; text = end) {
        bytes += char(std::strtol(text, &end, 16));
    }
    return bytes;
}

/// What is logged while `act` runs.
inline std::string Logged(auto act) {
    cLog::GetLogMutable().Clear();
    act();
    return cLog::GetLog().Text();
}

} // namespace trellis
