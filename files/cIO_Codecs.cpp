// The codec tables, and the codecs that come with the framework.
#include "animation/cCodecAnim.h"
#include "animation/cCodecCamera.h"
#include "animation/cCodecMd5Anim.h"
#include "files/cIO_Assets.h"
#include "foundation/cImmortal.h"
#include "image/cCodecBmp.h"
#include "image/cCodecDds.h"
#include "image/cCodecPvr.h"
#include "image/cCodecTga.h"
#include "mesh/cCodecMd5Model.h"
#include "mesh/cCodecModel.h"
#include "mesh/cCodecObj.h"

namespace trellis {

namespace {

constinit cImmortal<cList<cIO::ImageCodecInfo>> s_ImageCodecsStore;
constinit cImmortal<cList<cIO::ModelCodecInfo>> s_ModelCodecsStore;
constinit cImmortal<cList<cIO::AnimCodecInfo>> s_AnimCodecsStore;
constinit cImmortal<cList<cIO::CameraCodecInfo>> s_CameraCodecsStore;

} // namespace

constinit cList<cIO::ImageCodecInfo>& cIO_ImageCodecs = s_ImageCodecsStore.Value;
constinit cList<cIO::ModelCodecInfo>& cIO_ModelCodecs = s_ModelCodecsStore.Value;
constinit cList<cIO::AnimCodecInfo>& cIO_AnimCodecs = s_AnimCodecsStore.Value;
constinit cList<cIO::CameraCodecInfo>& cIO_CameraCodecs = s_CameraCodecsStore.Value;

// Codecs are never destroyed, like the tables that point at them.
void cIO_AddBuiltInCodecs() {
    static cImmortal<cCodecDds> s_Dds;
    static cImmortal<cCodecBmp> s_Bmp;
    static cImmortal<cCodecPvr> s_Pvr;
    static cImmortal<cCodecTga> s_Tga;
    cIO::AddCodec("Dds", &s_Dds.Value);
    cIO::AddCodec("Bmp", &s_Bmp.Value);
    cIO::AddCodec(cCodecPvr::FileExtension, &s_Pvr.Value);
    cIO::AddCodec("Tga", &s_Tga.Value);
    static cImmortal<cCodecModel> s_Model;
    static cImmortal<cCodecMd5Model> s_Md5Model;
    static cImmortal<cCodecObj> s_Obj;
    cIO::AddCodec("cModel", &s_Model.Value);
    cIO::AddCodec(cCodecMd5Model::FileExtension, &s_Md5Model.Value);
    cIO::AddCodec("Obj", &s_Obj.Value);
    static cImmortal<cCodecAnim> s_Anim;
    static cImmortal<cCodecMd5Anim> s_Md5Anim;
    cIO::AddCodec("cAnim", &s_Anim.Value);
    cIO::AddCodec(cCodecMd5Anim::FileExtension, &s_Md5Anim.Value);
    static cImmortal<cCodecCamera> s_Camera;
    cIO::AddCodec("cCamera", &s_Camera.Value);
}

cStr cIO_RelativePath(const char* path) {
    cStr name = cIO::EnsureAbsolutePath(path);
    cStr root = cIO::GetDefaultSourceFolder();
    root.TrimEnd("/\\"); // with a slash at its end it would be no whole component
    if (name.Length() > root.Length() && cStr::ComparePath(name, root, root.Length()) == 0) {
        name.Remove(0, root.Length());
        name.TrimStart("/\\");
    }
    return name;
}

const cList<cIO::ImageCodecInfo>& cIO::GetImageCodecs() {
    cIO_Init();
    return cIO_ImageCodecs;
}

const cList<cIO::ModelCodecInfo>& cIO::GetModelCodecs() {
    cIO_Init();
    return cIO_ModelCodecs;
}

const cList<cIO::AnimCodecInfo>& cIO::GetAnimCodecs() {
    cIO_Init();
    return cIO_AnimCodecs;
}

const cList<cIO::CameraCodecInfo>& cIO::GetCameraCodecs() {
    cIO_Init();
    return cIO_CameraCodecs;
}

} // namespace trellis
