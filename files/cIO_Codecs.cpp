// The codec tables, and the codecs that come with the framework.
#include "files/cIO_Internal.h"
#include "foundation/cImmortal.h"

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

// Each format brings its codec along; there is no format in the library yet.
void cIO_AddBuiltInCodecs() {}

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
