#include "animation/cCodecCamera.h"

#include "animation/cCamera.h"
#include "files/cNativeFile.h"

namespace trellis {

namespace {

constexpr unsigned short s_Magic = 0x6363;
constexpr unsigned char s_Version = 0;
constexpr int s_CameraBytes = 18, s_FrameBytes = 26; // the least that each takes in a file

bool ReadFrame(const cFile& file, cCamera::Frame* out) {
    cQuat& q = out->Orientation;
    if (!file.ReadVec3(&out->Position) || !file.ReadFloat(&q.x) || !file.ReadFloat(&q.y) || !file.ReadFloat(&q.z) ||
        !cNativeFile::ReadRanges(file, &out->FieldOfView, 1)) {
        return false;
    }
    q.w = cNativeFile::RestoreW(q);
    return true;
}

bool ReadCamera(const cFile& file, cCamera::Camera* out) {
    int frames;
    if (!cNativeFile::ReadName(file, &out->Name) || !file.ReadFloat(&out->ZNear) || !file.ReadFloat(&out->ZFar) ||
        !file.ReadInt(&out->StartFrame) || out->StartFrame < 0 || !file.ReadInt(&frames) ||
        !cNativeFile::IsCount(file, frames, s_FrameBytes)) {
        return false;
    }
    out->Frames.SetCount(frames);
    for (cCamera::Frame& frame : out->Frames) {
        if (!ReadFrame(file, &frame)) {
            return false;
        }
    }
    return true;
}

bool cCodecCameraDecode(const cFile& file, cCamera* out) {
    unsigned short magic;
    unsigned char version;
    int cameras;
    if (!file.ReadWord(&magic) || magic != s_Magic || !cNativeFile::ReadByte(file, &version) || version != s_Version ||
        !file.ReadInt(&out->FrameRate) || out->FrameRate < 0 || !file.ReadInt(&cameras) ||
        !cNativeFile::IsCount(file, cameras, s_CameraBytes)) {
        return false;
    }
    for (int i = 0; i < cameras; i++) { // a camera in memory is larger than in the file: one after the other
        if (!ReadCamera(file, &out->Cameras[out->Cameras.Add(cCamera::Camera())])) {
            return false;
        }
    }
    return true;
}

} // namespace

bool cCodecCamera::Decode(const cFile& file, cCamera* out) {
    out->Free();
    if (cCodecCameraDecode(file, out)) {
        return true;
    }
    out->Free();
    return false;
}

bool cCodecCamera::Encode(const cCamera& camera, cFile* out) {
    if (camera.FrameRate < 0) {
        return false;
    }
    out->WriteWord(s_Magic);
    out->WriteBytes(&s_Version, 1);
    out->WriteInt(camera.FrameRate);
    out->WriteInt(camera.Cameras.Count());
    for (const cCamera::Camera& c : camera.Cameras) {
        if (c.StartFrame < 0 || !cNativeFile::WriteName(out, c.Name)) {
            return false;
        }
        out->WriteFloat(c.ZNear);
        out->WriteFloat(c.ZFar);
        out->WriteInt(c.StartFrame);
        out->WriteInt(c.Frames.Count());
        for (const cCamera::Frame& frame : c.Frames) {
            const cQuat q = cNativeFile::WithoutSign(frame.Orientation);
            out->WriteVec3(frame.Position);
            out->WriteVec3({q.x, q.y, q.z});
            cNativeFile::WriteRanges(out, &frame.FieldOfView, 1);
        }
    }
    return true;
}

} // namespace trellis
