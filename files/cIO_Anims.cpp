// Animations: their files, and the registry by which programs share them.
#include "files/cIO_Anims.h"

#include "animation/cAnim.h"
#include "files/cIO_Assets.h"
#include "foundation/cImmortal.h"

#include <cmath>

namespace trellis {

namespace {

constinit cImmortal<cList<cIO_Anim*>> s_AnimsStore;

bool IsNear(const cMat4& a, const cMat4& b) {
    constexpr float tolerance = 0.0001f;
    for (int row = 0; row < 4; row++) {
        for (int column = 0; column < 4; column++) {
            if (!(std::fabs(a(row, column) - b(row, column)) <= tolerance)) {
                return false;
            }
        }
    }
    return true;
}

/// Loads a clip in the form that an entry describes.
bool LoadFor(const cIO_Anim& entry, cAnim* anim) {
    if (!cIO::LoadAnim(entry.Path, anim)) {
        return false;
    }
    anim->ReSample(entry.Selector);
    if (!IsNear(entry.Transform, cMat4::Identity)) {
        anim->Transform(entry.Transform);
    }
    return true;
}

/// Whether a loaded entry is what a selector asks for. Without one, any clip that is at the rate of its entry will do.
bool Matches(const cIO_Anim& entry, int selector) {
    const int wanted = selector < 1 ? entry.Selector : selector;
    return entry.Selector == selector || (entry.Anim && wanted == entry.Anim->FrameRate);
}

} // namespace

constinit cList<cIO_Anim*>& cIO_Anims = s_AnimsStore.Value;

cIO_Anim::~cIO_Anim() {
    delete Anim;
}

void cIO::AddCodec(const char* extension, AnimCodec* codec) {
    cIO_Init();
    cIO_AddCodecTo(cIO_AnimCodecs, extension, codec, codec->Encodes() ? "animation codec." : "animation decoder.");
}

bool cIO::LoadAnim(const char* path, cAnim* anim) {
    return cIO_LoadAsset(path, anim, GetAnimCodecs(), "animation");
}

bool cIO::SaveAnim(const char* path, const cAnim& anim) {
    return cIO_SaveAsset(path, anim, GetAnimCodecs(), "animation file");
}

int cIO::GetAnimID(const char* path, int selector, const cMat4& transform) {
    auto entry = std::make_unique<cIO_Anim>();
    entry->Path = cIO_RelativePath(path);
    entry->AbsolutePath = EnsureAbsolutePath(path);
    entry->Selector = selector < 1 ? 0 : selector;
    entry->Transform = transform;
    for (int i = 0; i < cIO_Anims.Count(); i++) {
        const cIO_Anim& known = *cIO_Anims[i];
        if (cStr::ComparePath(known.Path, entry->Path) != 0) {
            continue;
        }
        if (!known.Anim) {
            ReloadAnim(i); // its frame rate is asked for
        }
        if (IsNear(known.Transform, transform) && Matches(known, entry->Selector)) {
            return i;
        }
    }
    auto anim = std::make_unique<cAnim>();
    if (!LoadFor(*entry, anim.get())) {
        return -1;
    }
    return cIO_AddEntry(cIO_Anims, std::move(entry), &cIO_Anim::Anim, std::move(anim));
}

const cAnim* cIO::GetAnimPtr(int id) {
    return GetAnimMutablePtr(id);
}

cAnim* cIO::GetAnimMutablePtr(int id) {
    cIO_Anim* entry = cIO_FindEntry(cIO_Anims, id);
    if (entry && !entry->Anim) {
        ReloadAnim(id);
    }
    return entry ? entry->Anim : nullptr;
}

const char* cIO::GetAnimFilePn(int id) {
    const cIO_Anim* entry = cIO_FindEntry(cIO_Anims, id);
    return entry ? entry->Path.Text() : "";
}

bool cIO::ReloadAnim(int id) {
    cIO_Anim* entry = cIO_FindEntry(cIO_Anims, id);
    auto fresh = std::make_unique<cAnim>();
    if (!entry || !LoadFor(*entry, fresh.get())) {
        return false;
    }
    cIO_Replace(entry, &cIO_Anim::Anim, std::move(fresh));
    return true;
}

bool cIO::ReloadAnim(const char* path) {
    return cIO_ReloadPath(cIO_Anims, cIO_RelativePath(path), ReloadAnim);
}

void cIO::ReloadAnims() {
    cLog::Message("Reloaded %d Anims.", cIO_ReloadAll(cIO_Anims.Count(), ReloadAnim));
}

void cIO::UnloadAnims() {
    cLog::Message("Unloaded %d Anims.", cIO_UnloadEntries(cIO_Anims, &cIO_Anim::Anim));
}

void cIO::FreeAnims() {
    UnloadAnims();
    cIO_FreeEntries(cIO_Anims);
}

} // namespace trellis
