// Camera paths: their files, and the registry by which programs share them.
#include "files/cIO_Cameras.h"

#include "animation/cCamera.h"
#include "files/cIO_Assets.h"
#include "foundation/cImmortal.h"

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
    return cIO_AddEntry(cIO_Cameras, std::move(entry), &cIO_Camera::Camera, std::move(camera));
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
    cIO_Replace(entry, &cIO_Camera::Camera, std::move(fresh));
    return true;
}

bool cIO::ReloadCamera(const char* path) {
    return cIO_ReloadPath(cIO_Cameras, EnsureAbsolutePath(path), ReloadCamera);
}

void cIO::ReloadCameras() {
    cLog::Message("Reloaded %d Cameras.", cIO_ReloadAll(cIO_Cameras.Count(), ReloadCamera));
}

void cIO::UnloadCameras() {
    cLog::Message("Unloaded %d Cameras.", cIO_UnloadEntries(cIO_Cameras, &cIO_Camera::Camera));
}

void cIO::FreeCameras() {
    UnloadCameras();
    cIO_FreeEntries(cIO_Cameras);
}

} // namespace trellis
