// Trees from arbitrary bytes, and queries of whatever comes out. A whole tree is saved as it was read.
#include "fuzz/Fuzz.h"
#include "math/cMat4.h"
#include "spatial/cBsp.h"

using namespace trellis;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const cFile file = FileOf(data, size);
    cFile saved;
    cBsp bsp;
    const bool isWhole = bsp.Load(file);
    cList<cBsp::Triangle> all, some;
    cList<const cBsp::Triangle*> found;
    bsp.GetAllTriangles(&all);
    Check(isWhole ? !all.IsEmpty() && file.GetPos() == all.Count() * 41 : all.Count() == int(size / 41));
    const cVec3 ends[] = {{-9, -8, -7}, {9, 7, 8}, {0.5f, 0.25f, -1}, {0.5f, 0.25f, 1e6f}, cVec3::Zero};
    for (const cVec3& from : ends) {
        for (const cVec3& to : ends) {
            const cBsp::Triangle* triangle = nullptr;
            cVec3 point;
            Check(bsp.Intersects(from, to, &point, &triangle) == (triangle != nullptr));
        }
        for (const float radius : {0.0f, 1.0f, 1e9f}) {
            bsp.GetTrianglesWithinRadius(from, radius, &some);
            bsp.GetTrianglesNear(from, radius, from - cVec3::One * radius, from + cVec3::One * radius, &found);
            Check(found.Count() <= some.Count() && some.Count() <= all.Count());
        }
    }
    if (isWhole) {
        bsp.Save(&saved);
        Check(saved.GetSize() == file.GetPos());
        for (int i = 0; i < saved.GetSize(); i++) { // of the flags only two bits are kept
            Check(saved.GetBytes()[i] == (i % 41 == 40 ? data[i] & 3 : data[i]));
        }
    }
    bsp.Transform(cMat4::Scaling(2, 3, 4));
    bsp.Intersects(ends[0], ends[1], nullptr, nullptr);
    return 0;
}
