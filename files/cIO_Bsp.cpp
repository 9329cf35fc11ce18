// Collision trees by their files. They have one format and no codecs.
#include "files/cFile.h"
#include "files/cIO_Internal.h"
#include "foundation/cLog.h"
#include "spatial/cBsp.h"

#include <new>

namespace trellis {

bool cIO::LoadBsp(const char* path, cBsp* bsp) {
    cStr name(path);
    name.SetFileDefaultExtension("cBsp");
    cFile file;
    if (!LoadFile(name, &file, true)) {
        cLog::Warning("Can't load BSP file \"%s\"", name.Text());
        return false;
    }
    bool decoded = false;
    try {
        decoded = bsp->Load(file);
    } catch (const std::bad_alloc&) { // nodes take more room than their bytes
    }
    if (!decoded) {
        cLog::Warning("Can't decode BSP file \"%s\"", name.Text());
        bsp->Free();
        return false;
    }
    cLog::Message("Loaded BSP file \"%s\"", name.Text());
    return true;
}

bool cIO::SaveBsp(const char* path, const cBsp& bsp) {
    cStr name(path);
    name.SetFileDefaultExtension("cBsp");
    cFile file;
    return bsp.Save(&file) && SaveFile(name, file);
}

} // namespace trellis
