// Models: their files, and the registry by which programs share them.
#include "files/cIO_Models.h"

#include "files/cIO_Assets.h"
#include "foundation/cImmortal.h"
#include "mesh/cModel.h"

namespace trellis {

namespace {

constinit cImmortal<cList<cIO_Model*>> s_ModelsStore;

/// What a model needs to be drawn.
void Prepare(cModel* model) {
    model->GetMaterialsID();
    model->CreateRenderBuffers();
}

} // namespace

constinit cList<cIO_Model*>& cIO_Models = s_ModelsStore.Value;

cIO_Model::~cIO_Model() {
    delete Model;
}

void cIO::AddCodec(const char* extension, ModelCodec* codec) {
    cIO_Init();
    cIO_AddCodecTo(cIO_ModelCodecs, extension, codec, codec->Encodes() ? "model codec." : "model decoder.");
}

bool cIO::LoadModel(const char* path, cModel* model) {
    return cIO_LoadAsset(path, model, GetModelCodecs(), "model");
}

bool cIO::SaveModel(const char* path, const cModel& model) {
    return cIO_SaveAsset(path, model, GetModelCodecs(), "model file");
}

int cIO::GetModelID(const char* path, bool proxy) {
    const cStr absolute = EnsureAbsolutePath(path);
    const cStr relative = cIO_RelativePath(path);
    for (int i = 0; i < cIO_Models.Count(); i++) {
        if (cIO_Models[i]->Proxy == proxy && cStr::ComparePath(cIO_Models[i]->Path, relative) == 0) {
            return i;
        }
    }
    auto model = std::make_unique<cModel>();
    if (!LoadModel(relative, model.get())) {
        return -1; // not remembered: the file may be there the next time
    }
    Prepare(model.get());
    auto entry = std::make_unique<cIO_Model>();
    entry->Path = relative;
    entry->AbsolutePath = absolute;
    entry->Proxy = proxy;
    return cIO_AddEntry(cIO_Models, std::move(entry), &cIO_Model::Model, std::move(model));
}

const cModel* cIO::GetModelPtr(int id) {
    cIO_Model* entry = cIO_FindEntry(cIO_Models, id);
    if (entry && !entry->Model) {
        ReloadModel(id);
    }
    return entry ? entry->Model : nullptr;
}

const char* cIO::GetModelFilePn(int id) {
    const cIO_Model* entry = cIO_FindEntry(cIO_Models, id);
    return entry ? entry->Path.Text() : "";
}

bool cIO::ReloadModel(int id) {
    cIO_Model* entry = cIO_FindEntry(cIO_Models, id);
    auto fresh = std::make_unique<cModel>();
    if (!entry || !LoadModel(entry->Path, fresh.get())) {
        return false;
    }
    if (entry->Model) {
        entry->Model->FreeRenderBuffers();
    }
    cIO_Replace(entry, &cIO_Model::Model, std::move(fresh));
    Prepare(entry->Model);
    return true;
}

bool cIO::ReloadModel(const char* path) {
    return cIO_ReloadPath(cIO_Models, cIO_RelativePath(path), ReloadModel);
}

void cIO::ReloadModels() {
    int counts[2][2] = {}; // by proxy, then by skeleton
    for (int i = 0; i < cIO_Models.Count(); i++) {
        if (ReloadModel(i)) {
            counts[cIO_Models[i]->Proxy][!cIO_Models[i]->Model->Joints.IsEmpty()]++;
        }
    }
    cLog::Message("Reloaded %d Static Models, %d Anim Models, %d Static Proxies, %d Anim Proxies.", counts[0][0],
                  counts[0][1], counts[1][0], counts[1][1]);
}

void cIO::UnloadModels() {
    cLog::Message("Unloaded %d Models.", cIO_UnloadEntries(cIO_Models, &cIO_Model::Model));
}

void cIO::FreeModels() {
    UnloadModels();
    cIO_FreeEntries(cIO_Models);
}

} // namespace trellis
