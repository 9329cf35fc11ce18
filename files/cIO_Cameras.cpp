// Camera paths: their files, and the registry by which programs share them.
#include "files/cIO_Cameras.h"

#include "animation/cCamera.h"
#include "files/cIO_Assets.h"
#include "foundation/cImmortal.h"

#include <memory>

namespace trellis {

namespace {

constinit cImmortal<cList<cIO_Camera*>> s_CamerasStore;

} // namespace

constinit cList<cIO_Camera*>& cIO_Cameras = s_CamerasStore.Value;

cIO_Camera::~cIO_Camera() {
    delete Camera;
}

void cIO::AddCodec(const char* extension, CameraCodec* codec) {
    cIO_Init();
    cIO_AddCodecTo(cIO_CameraCodecs, extension, codec, codec->Encodes() ? "camera codec." : "camera decoder.");
}

bool cIO::LoadCamera(const char* path, cCamera* camera) {
    return cIO_LoadAsset(path, camera, GetCameraCodecs(), "camera");
}

bool cIO::SaveCamera(const char* path, const cCamera& camera) {
    return cIO_SaveAsset(path, camera, GetCameraCodecs(), "camera file");
}

int cIO::GetCameraID(const char* path) {
    const cStr absolute = EnsureAbsolutePath(path);
    for (int i = 0; i < cIO_Cameras.Count(); i++) {
        if (cStr::ComparePath(cIO_Cameras[i]->Path, absolute) == 0) {
            return i;
        }
    }
    auto camera = std::make_unique<cCamera>();
    if (!LoadCamera(absolute, camera.get())) {
        return -1;
    }
    auto entry = std::make_unique<cIO_Camera>();
    entry->Path = absolute;
    entry->Camera = camera.release();
    const int id = cIO_Cameras.Add(entry.get());
    entry.release();
    return id;
}

const cCamera* cIO::GetCameraPtr(int id) {
    cIO_Camera* entry = cIO_FindEntry(cIO_Cameras, id);
    if (entry && !entry->Camera) {
        ReloadCamera(id);
    }
    return entry ? entry->Camera : nullptr;
}

bool cIO::ReloadCamera(int id) {
    cIO_Camera* entry = cIO_FindEntry(cIO_Cameras, id);
    auto fresh = std::make_unique<cCamera>();
    if (!entry || !LoadCamera(entry->Path, fresh.get())) {
        return false;
    }
    if (entry->Camera) { // the object stays where it is: programs hold its address
        entry->Camera->Copy(*fresh);
    } else {
        entry->Camera = fresh.release();
    }
    return true;
}

bool cIO::ReloadCamera(const char* path) {
    const cStr absolute = EnsureAbsolutePath(path);
    bool reloaded = false;
    for (int i = 0; i < cIO_Cameras.Count(); i++) {
        if (cStr::ComparePath(cIO_Cameras[i]->Path, absolute) == 0) {
            reloaded |= ReloadCamera(i);
        }
    }
    return reloaded;
}

void cIO::ReloadCameras() {
    int count = 0;
    for (int i = 0; i < cIO_Cameras.Count(); i++) {
        count += ReloadCamera(i);
    }
    cLog::Message("Reloaded %d Cameras.", count);
}

void cIO::UnloadCameras() {
    int count = 0;
    for (cIO_Camera* entry : cIO_Cameras) {
        if (entry->Camera) {
            delete std::exchange(entry->Camera, nullptr);
            count++;
        }
    }
    cLog::Message("Unloaded %d Cameras.", count);
}

void cIO::FreeCameras() {
    UnloadCameras();
    cIO_FreeEntries(cIO_Cameras);
}

} // namespace trellis
