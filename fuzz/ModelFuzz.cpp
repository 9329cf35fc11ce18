// Models from arbitrary bytes, by the codec that the build names. Whatever comes out is whole, and what the native
// codec writes of it reads back to the same bytes; a native file reads back to its own.
#include "foundation/cLog.h"
#include "fuzz/Fuzz.h"
#include "mesh/cCodecMd5Model.h"
#include "mesh/cCodecModel.h"
#include "mesh/cCodecObj.h"
#include "mesh/cModel.h"

#include <algorithm>
#include <type_traits>

using namespace trellis;

namespace {

cFile Written(cIO::ModelCodec& codec, const cModel& model, bool* ok) {
    cFile file;
    *ok = codec.Encode(model, &file);
    file.SetPos(0);
    return file;
}

void CheckWhole(const cModel& model) {
    for (const cModel::Mesh& mesh : model.Meshes) {
        const int vertices = model.Static ? mesh.BumpVertices.Count() : mesh.AnimVertices.Count();
        for (const int index : mesh.Indices) {
            Check(index >= 0 && index < vertices);
        }
    }
    for (const cModel::Joint& joint : model.Joints) {
        Check(joint.Parent >= -1 && joint.Parent < model.Joints.Count());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    cLog::GetLogMutable().Clear();
    cFile file = FileOf(data, size);
    MODEL_CODEC codec;
    cCodecModel native;
    cModel model;
    const bool decoded = codec.Decode(file, &model);
    bool ok;
    if constexpr (std::is_same_v<MODEL_CODEC, cCodecObj>) {
        // Tabs keep the lines from the shorter way.
        cList<unsigned char> bytes = file.GetBytes();
        std::replace(bytes.begin(), bytes.end(), (unsigned char)' ', (unsigned char)'\t');
        const cFile tabs = FileOf(bytes.Data(), size_t(bytes.Count()));
        cModel other;
        Check(codec.Decode(tabs, &other) == decoded);
        if (decoded) {
            bool otherOk;
            const cFile a = Written(native, model, &ok), b = Written(native, other, &otherOk);
            Check(ok == otherOk && AreSame(a, b));
        }
    }
    if (!decoded) {
        return 0;
    }
    CheckWhole(model);
    const cFile first = Written(native, model, &ok);
    if constexpr (std::is_same_v<MODEL_CODEC, cCodecModel>) {
        Check(ok && StartsWith(file, first));
    }
    if (ok) {
        cModel back;
        Check(native.Decode(first, &back));
        CheckWhole(back);
        const cFile second = Written(native, back, &ok);
        Check(ok && AreSame(first, second));
    }
    cCodecObj obj;
    Check(obj.Encode(model, &file));
    return 0;
}
