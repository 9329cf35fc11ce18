// A skeleton of 64 bones: posing by one clip and by two, and skinning of 10,000 vertices with four influences. cal3d
// skins positions and normals, ours also tangents and bitangents. cal3d's poses are relative to the parent, so that it
// has to build them; ours are not.
#include "Bench.h"

#include "animation/cAnim.h"
#include "mesh/cModel.h"

#include <cal3d/cal3d.h>
#include <cal3d/corekeyframe.h>
#include <cal3d/coretrack.h>

#include <cmath>
#include <vector>

using namespace trellis;

namespace {

constexpr int s_Bones = 64, s_FrameRate = 30, s_Clips = 2, s_Vertices = 10000;
constexpr float s_Step = 0.0137f; // seconds from one pose to the next

struct Place {
    cVec3 Position;
    cQuat Orientation;
};

int ParentOf(int bone) {
    return (bone + 1) / 2 - 1;
}

/// Relative to the parent. @param frame  -1 for the bind pose
Place LocalPlace(int clip, int frame, int bone) {
    const float t = float(frame + clip * 7 + bone);
    const cVec3 axis = cVec3::Normalize({std::sin(float(bone)), 1, std::cos(float(bone))});
    const cMat4 turn = cMat4::Rotation(axis, 40 * std::sin(t * 0.2f));
    return {{bone == 0 ? std::sin(t * 0.1f) : 0.5f, 1, 0.1f * std::cos(t * 0.3f)}, turn.ToQuat()};
}

std::vector<Place> Built(int clip, int frame) {
    std::vector<Place> places;
    for (int bone = 0; bone < s_Bones; bone++) {
        Place place = LocalPlace(clip, frame, bone);
        if (bone > 0) {
            const Place& parent = places[size_t(ParentOf(bone))];
            place.Position = cQuat::Rotate(place.Position, parent.Orientation) + parent.Position;
            place.Orientation = parent.Orientation * place.Orientation;
        }
        places.push_back(place);
    }
    return places;
}

struct Ours {
    Ours() {
        Model.Static = false;
        for (int bone = 0; const Place& place : Built(0, -1)) {
            Model.Joints.Add({"bone", ParentOf(bone++), place.Position, place.Orientation});
        }
        for (int clip = 0; clip < s_Clips; clip++) {
            cAnim& anim = Anims[clip];
            anim.FrameRate = s_FrameRate;
            anim.Frames.SetCount(s_FrameRate + 1);
            for (int frame = 0; frame <= s_FrameRate; frame++) {
                for (const Place& place : Built(clip, frame)) {
                    anim.Frames[frame].Add({place.Position, place.Orientation, cVec3::One});
                }
            }
            anim.UpdateBounds();
            Clips.Add(&anim);
        }
        Times.Add(0, s_Clips);
        Weights.Add(0.5f);
        Model.Meshes.SetCount(1);
        for (int i = 0; i < s_Vertices; i++) {
            const float t = float(i);
            cVertex::Anim v{};
            v.Pos = {std::sin(t), std::cos(t * 1.1f), std::sin(t * 0.7f)};
            v.Normal = cVec3::Normalize(v.Pos);
            v.Normal.ToPerps(v.Tangent, v.BiTangent);
            v.Indices = cVec4(float(i / 40 % s_Bones), float((i / 40 + 1) % s_Bones), float((i / 40 + 5) % s_Bones),
                              float((i / 40 + 9) % s_Bones));
            v.Weights = cVec4(0.4f, 0.3f, 0.2f, 0.1f);
            Model.Meshes[0].AnimVertices.Add(v);
        }
    }
    void Pose(float sec) { Anims[0].SetFrame(sec, Model, &Joints); }
    void Blend(float sec) {
        Times[0] = Times[1] = sec;
        cAnim::Blend(Clips, Times, Weights, Model, &Joints);
    }
    void Skin() { Model.SetAnim(Joints, &Model); }
    void SkinPlain() { Model.SetAnimPlain(Joints, &Model); }
    cVec3 Vertex(int i) const { return Model.Meshes[0].BumpVertices[i].Pos; }
    cVec3 Root() const { // where the bind pose's goes
        const float* m = Joints[0].m;
        const cVec3 p = Model.Joints[0].Position;
        return {m[0] * p.x + m[1] * p.y + m[2] * p.z + m[3], m[4] * p.x + m[5] * p.y + m[6] * p.z + m[7],
                m[8] * p.x + m[9] * p.y + m[10] * p.z + m[11]};
    }

    cModel Model;
    cAnim Anims[s_Clips];
    cList<const cAnim*> Clips;
    cList<float> Times, Weights;
    cList<cAnim::Joint> Joints;
};

CalVector ToCal(const cVec3& v) {
    return {v.x, v.y, v.z};
}

CalQuaternion ToCal(const cQuat& q) { // rotates the other way
    return {-q.x, -q.y, -q.z, q.w};
}

/// The same by cal3d. Its objects are never destroyed.
struct Cal {
    explicit Cal(const Ours& ours) {
        auto* core = new CalCoreModel("bench");
        auto* skeleton = new CalCoreSkeleton;
        for (int bone = 0; bone < s_Bones; bone++) {
            const Place local = LocalPlace(0, -1, bone);
            const cModel::Joint& joint = ours.Model.Joints[bone];
            auto* coreBone = new CalCoreBone("bone" + std::to_string(bone));
            const cQuat inverse = joint.Orientation.Conjugate();
            coreBone->setParentId(ParentOf(bone));
            coreBone->setTranslation(ToCal(local.Position));
            coreBone->setRotation(ToCal(local.Orientation));
            coreBone->setTranslationBoneSpace(ToCal(-cQuat::Rotate(joint.Position, inverse)));
            coreBone->setRotationBoneSpace(ToCal(inverse));
            coreBone->setCoreSkeleton(skeleton);
            skeleton->addCoreBone(coreBone);
            if (bone > 0) {
                skeleton->getCoreBone(ParentOf(bone))->addChildId(bone);
            }
        }
        skeleton->calculateState();
        core->setCoreSkeleton(skeleton);
        for (int clip = 0; clip < s_Clips; clip++) {
            core->addCoreAnimation(Animation(clip));
        }
        auto* mesh = new CalCoreMesh;
        mesh->addCoreSubmesh(Submesh(ours));
        const int meshId = core->addCoreMesh(mesh);
        for (int clips = 1; clips <= s_Clips; clips++) {
            CalModel*& model = Models[clips - 1];
            model = new CalModel(core);
            model->attachMesh(meshId);
            for (int clip = 0; clip < clips; clip++) {
                model->getMixer()->blendCycle(clip, 1.0f / float(clips), 0);
            }
            model->getMixer()->updateAnimation(0); // learns the duration; time stands still until then
        }
        Buffer.resize(s_Vertices * 6);
    }

    /// @return the root's place
    cVec3 Update(int clips, float step) {
        CalModel& model = *Models[clips - 1];
        model.getMixer()->updateAnimation(step);
        model.getMixer()->updateSkeleton();
        const CalVector& p = model.getSkeleton()->getBone(0)->getTranslationAbsolute();
        return {p.x, p.y, p.z};
    }
    void Skin() {
        Models[0]->getPhysique()->calculateVerticesAndNormals(Models[0]->getMesh(0)->getSubmesh(0), Buffer.data());
    }
    cVec3 Vertex(int i) const { return {Buffer[size_t(i) * 6], Buffer[size_t(i) * 6 + 1], Buffer[size_t(i) * 6 + 2]}; }

    CalModel* Models[s_Clips]; // of one clip, of two
    std::vector<float> Buffer; // position and normal

private:
    static CalCoreAnimation* Animation(int clip) {
        auto* animation = new CalCoreAnimation;
        animation->setDuration(1);
        for (int bone = 0; bone < s_Bones; bone++) {
            auto* track = new CalCoreTrack;
            track->setCoreBoneId(bone);
            for (int frame = 0; frame <= s_FrameRate; frame++) {
                const Place place = LocalPlace(clip, frame, bone);
                auto* key = new CalCoreKeyframe;
                key->setTime(float(frame) / s_FrameRate);
                key->setTranslation(ToCal(place.Position));
                key->setRotation(ToCal(place.Orientation));
                track->addCoreKeyframe(key);
            }
            animation->addCoreTrack(track);
        }
        return animation;
    }

    static CalCoreSubmesh* Submesh(const Ours& ours) {
        auto* submesh = new CalCoreSubmesh;
        submesh->reserve(s_Vertices, 0, 0, 0);
        for (int i = 0; i < s_Vertices; i++) {
            const cVertex::Anim& v = ours.Model.Meshes[0].AnimVertices[i];
            CalCoreSubmesh::Vertex vertex;
            vertex.position = ToCal(v.Pos);
            vertex.normal = ToCal(v.Normal);
            vertex.collapseId = -1;
            vertex.faceCollapseCount = 0;
            for (int k = 0; k < 4; k++) {
                vertex.vectorInfluence.push_back({int(v.Indices[k]), v.Weights[k]});
            }
            submesh->setVertex(i, vertex);
        }
        return submesh;
    }
};

/// At a key, where both agree on the poses between the ends of a bone's chain.
const cBenchCheck s_Check("skinned vertices of ours and cal3d", [] {
    Ours ours;
    Cal cal(ours);
    const float sec = 10.0f / s_FrameRate;
    ours.Blend(sec);
    if (!((ours.Root() - cal.Update(2, sec)).Length() < 1e-3f)) {
        return false;
    }
    cal.Update(1, sec);
    cal.Skin();
    ours.Pose(sec);
    ours.Skin();
    for (int i = 0; i < s_Vertices; i++) {
        if (!((ours.Vertex(i) - cal.Vertex(i)).Length() < 1e-3f)) {
            return false;
        }
    }
    return true;
});

void Time(benchmark::State& state, int items, auto body) {
    float sec = 0;
    for (auto _ : state) {
        sec = sec + s_Step < 1 ? sec + s_Step : 0;
        body(sec);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * items);
}

void BM_PoseOurs(benchmark::State& state) {
    Ours ours;
    Time(state, s_Bones, [&](float sec) { ours.Pose(sec); });
}
void BM_PoseCal3d(benchmark::State& state) {
    Cal cal{Ours()};
    Time(state, s_Bones, [&](float) { cal.Update(1, s_Step); });
}
void BM_BlendTwoOurs(benchmark::State& state) {
    Ours ours;
    Time(state, s_Bones, [&](float sec) { ours.Blend(sec); });
}
void BM_BlendTwoCal3d(benchmark::State& state) {
    Cal cal{Ours()};
    Time(state, s_Bones, [&](float) { cal.Update(2, s_Step); });
}
void BM_SkinOurs(benchmark::State& state) {
    Ours ours;
    ours.Pose(0.5f);
    Time(state, s_Vertices, [&](float) { ours.Skin(); });
}
void BM_SkinOursPlain(benchmark::State& state) {
    Ours ours;
    ours.Pose(0.5f);
    Time(state, s_Vertices, [&](float) { ours.SkinPlain(); });
}
void BM_SkinCal3d(benchmark::State& state) {
    Cal cal{Ours()};
    cal.Update(1, 0.5f);
    Time(state, s_Vertices, [&](float) { cal.Skin(); });
}
BENCHMARK(BM_PoseOurs);
BENCHMARK(BM_PoseCal3d);
BENCHMARK(BM_BlendTwoOurs);
BENCHMARK(BM_BlendTwoCal3d);
BENCHMARK(BM_SkinOurs);
BENCHMARK(BM_SkinOursPlain);
BENCHMARK(BM_SkinCal3d);

} // namespace
