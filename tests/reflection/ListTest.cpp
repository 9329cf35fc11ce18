#include "reflection/cClassList.h"
#include "reflection/cClassPointersGarbage.h"
#include "reflection/cColorEdit.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>

using namespace trellis;

namespace {

/// Can be referred to.
class cSign : public cClass {
    TRELLIS_CLASS(cSign)

public:
    cSign(const char* name, cClass* parent) : cSign() {
        Name = name;
        SetParent(parent);
    }
    cStr* GetObjectNamePointer() override { return Named ? &Name : nullptr; }
    bool CheckIfObjectIsGlobal() override { return Global; }
    unsigned GetObjectGlobalID() override { return ID; }
    void SetObjectGlobalID(unsigned id) override { ID = id; }

    cStr Name;
    bool Named = true;
    bool Global = false;
    unsigned ID = 0;
};

void cSign::RegisterMembers() {}

/// Holds a list of its own class.
class cCrate : public cClass {
    TRELLIS_CLASS(cCrate)

public:
    void CustomCtor() override { Weight = 7; }

    int Weight;
    cClassList<cCrate> Inner;
    std::shared_ptr<int> Alive = s_Alive;
    static inline std::shared_ptr<int> s_Alive = std::make_shared<int>();
};

void cCrate::RegisterMembers() {
    cClassMembers members(this);
    if (members.Begin()) {
        members.Add<_cInt>(Weight, "Weight");
        members.AddObject(Inner, "Inner");
    }
}

using cCrates = cClassList<cCrate>;

long Crates() {
    cCrates().GetExpansionBaseClass(); // registered by now, and the crates that this needs are there
    return cCrate::s_Alive.use_count();
}

/// "5 _ 0 color": a null element and one of another class in between.
std::string Content(const cCrates& crates) {
    std::string text;
    for (int i = 0; i < crates.Count(); i++) {
        const cCrate* crate = crates.Get(i);
        text += i ? " " : "";
        text += crate ? std::to_string(crate->Weight) : crates.GetObject(i) ? "color" : "_";
    }
    return text;
}

void Fill(cCrates& crates, int count) {
    for (int i = 0; i < count; i++) {
        auto* crate = new cCrate;
        crate->Weight = i;
        EXPECT_EQ(crates.Add(crate), i);
    }
}

} // namespace

TEST(ClassList, MakesElementsOfAnyObjectClassByName) {
    cCrates crates;
    EXPECT_STREQ(crates.GetClassName(), "cClassList.cCrate");
    constexpr struct {
        const char* Name;
        int Index;
    } s_Cases[] = {{"cCrate", 0}, {"cColorEdit", 1}, {"cClassList.cCrate", 2},
                   {"_cInt", -1}, {"crate", -1},     {"NULL", -1},
                   {"", -1},      {nullptr, -1}};
    for (const auto& c : s_Cases) {
        SCOPED_TRACE(c.Name ? c.Name : "null");
        EXPECT_EQ(crates.ExpandWith(c.Name, &crates), c.Index);
        if (c.Index >= 0) {
            EXPECT_STREQ(crates.GetElementID(c.Index), c.Name);
            EXPECT_EQ(crates.GetObject(c.Index)->cClass::GetParent(), &crates);
            EXPECT_EQ(crates.Get(c.Index) != nullptr, c.Index == 0);
        }
    }
    EXPECT_EQ(TRELLIS_CGARB.FindClass("crate"), nullptr) << "words of a file stay out of the palette";
    EXPECT_EQ(crates.Add(nullptr), 3);
    EXPECT_STREQ(crates.GetElementID(3), "NULL");
    EXPECT_EQ(crates.IndexOf(crates.GetObject(1)), 1);
    EXPECT_EQ(crates.IndexOf(&crates), -1);
    cCrates other;
    EXPECT_EQ(other.ExpandWith("cCrate", &crates), 4) << "the list at the address, not the descriptor";
    EXPECT_EQ(other.GetElementPtr(4, &crates), crates.Get(4));
}

TEST(ClassList, RemovesDeletesAndMoves) {
    constexpr struct {
        int First, Count;
        const char* Left;
    } s_Removals[] = {
        {1, 2, "0 3"},     {3, 1, "0 1 2"},        {0, 4, ""},
        {2, 9, "0 1"},     {4, 1, "0 1 2 3"},      {-1, 1, "0 1 2 3"},
        {1, 0, "0 1 2 3"}, {1, -2, "0 1 2 3 _ _"}, {0, INT_MIN, "0 1 2 3 _ _ _ _"}, // as many as the block holds
    };
    for (const auto& c : s_Removals) {
        SCOPED_TRACE(testing::Message() << c.First << " " << c.Count);
        const long before = Crates();
        cCrates crates;
        Fill(crates, 4);
        crates.RemoveAt(c.First, c.Count);
        EXPECT_EQ(Content(crates), c.Left);
        EXPECT_EQ(Crates() - before, std::min(crates.Count(), 4));
        EXPECT_EQ(crates.Capacity(), 8) << "the block stays";
    }
    cCrates crates;
    Fill(crates, 3);
    crates.RemoveAt(1);
    crates.RemoveAt(0, -1);
    EXPECT_EQ(Content(crates), "0 2 _") << "what was removed does not come back";
    EXPECT_TRUE(crates.MoveElement(0, 1) && crates.MoveElement(2, -2) && crates.MoveElement(9, 0));
    EXPECT_FALSE(crates.MoveElement(2, 1) || crates.MoveElement(0, -1));
    EXPECT_EQ(Content(crates), "_ 0 2");
}

TEST(ClassList, ResetsCopiesAndComesBackFromText) {
    const long before = Crates();
    cCrate crate;
    Fill(crate.Inner, 2);
    crate.Inner.ExpandWith("cColorEdit", &crate.Inner);
    crate.Inner.Add(nullptr);
    Fill(crate.Inner.Get(1)->Inner, 1);
    const auto clone = std::make_unique<cCrate>();
    Fill(clone->Inner, 5);
    EXPECT_TRUE(crate.FullCopy(&crate, nullptr, clone.get(), clone.get(), nullptr, nullptr));
    EXPECT_EQ(Content(clone->Inner), "0 1 color") << "real classes, no nulls";
    EXPECT_EQ(clone->Inner.GetObject(2)->cClass::GetParent(), &clone->Inner);
    EXPECT_TRUE(crate.Inner.FullCopy(&crate.Inner, nullptr, &crate.Inner, &crate.Inner, nullptr, nullptr));
    EXPECT_EQ(Content(crate.Inner), "0 1 color _") << "onto itself";

    cStr text;
    ASSERT_TRUE(clone->WriteToString(&text));
    EXPECT_EQ(text, "<cCrate>\n <Inner>\n  <cCrate>\n   <Weight>0</Weight>\n  </cCrate>\n  <cCrate>\n"
                    "   <Weight>1</Weight>\n   <Inner>\n    <cCrate>\n     <Weight>0</Weight>\n    </cCrate>\n"
                    "   </Inner>\n  </cCrate>\n  <cColorEdit></cColorEdit>\n </Inner>\n</cCrate>\n");
    ASSERT_TRUE(crate.ReadFromString(text));
    EXPECT_EQ(Content(crate.Inner), "0 1 color") << "emptied, then read";
    ASSERT_TRUE(crate.ReadFromString("<a><Inner><_cInt>5</_cInt><cNone></cNone><cCrate></cCrate></Inner></a>"));
    EXPECT_EQ(Content(crate.Inner), "7") << "a kind is no element";

    cClassList_CtorNoClear = true;
    Fill(*std::make_unique<cCrates>(), 2);
    EXPECT_EQ(Crates() - before, 6) << "crate 2, clone 4: a list that ends takes all along";
    clone->CallCtor(clone.get());
    cClassList_CtorNoClear = false;
    EXPECT_EQ(Content(clone->Inner), "7 7 color");
    EXPECT_EQ(Content(clone->Inner.Get(1)->Inner), "7");
    clone->CallCtor(clone.get());
    EXPECT_EQ(clone->Inner.Count() + clone->Inner.Capacity(), 0);
    EXPECT_EQ(Crates() - before, 3);
}

TEST(ClassPointers, NamesAreFoundUnderTheirRootFirst) {
    EXPECT_EQ(CPGARB.GetBranch(nullptr), 0);
    EXPECT_EQ(CPGARB.GetBranch("ab"), 37); // 97 * 1 + 98 * 2 = 293
    EXPECT_EQ(CPGARB.GetBranch("\xff\x01"), 1);
    EXPECT_EQ(CPGARB.GetCPointer("ab"), CPGARB.GetCPointer("") + 37);

    cSign rootA("", nullptr), rootB("", nullptr), rootC("", nullptr);
    cSign inA("exit", &rootA), inB("exit", &rootB), other("exits", &rootA), askA("", &rootA), askC("", &rootC);
    cSign nameless("exit", &rootC);
    nameless.Named = false;
    EXPECT_EQ(CPGARB.AddClass(&nameless), CPGARB.NoID);
    EXPECT_EQ(nameless.ID, CPGARB.NoID);
    for (cSign* sign : {&inA, &inB, &other}) {
        const unsigned id = CPGARB.AddClass(sign);
        EXPECT_EQ(sign->ID, id);
        EXPECT_EQ(id >> 24, 6u); // 99 + 2 * 83 + 3 * 105 + 4 * 103 + 5 * 110 = 1542
        EXPECT_EQ((*CPGARB.GetCPointer("cSign"))[int(id & 0xFFFFFF)]->Object, sign);
        EXPECT_EQ(CPGARB.AddClass(sign), id) << "a second reset";
    }
    EXPECT_EQ(CPGARB.AddRef("cSign", "exit", &askA), inA.ID);
    const unsigned foreign = CPGARB.AddRef("cSign", "exit", &askC);
    EXPECT_EQ(foreign, std::max(inA.ID, inB.ID)) << "the last one";
    inA.Global = true;
    EXPECT_EQ(CPGARB.AddRef("cSign", "exit", &askC), inA.ID);
    const unsigned exit = inA.ID;
    for (cSign* sign : {&inA, &inB, &other}) {
        CPGARB.DeleteClass(sign);
    }
    const unsigned missing = CPGARB.AddRef("cSign", "exit", &askA);
    EXPECT_EQ(missing, other.ID) << "the last one freed";
    EXPECT_NE(missing, exit) << "held still";
    EXPECT_EQ(CPGARB.AddRef("cSign", "exit", &askC), missing) << "one record for all who ask";
    EXPECT_EQ(CPGARB.GetPointer(missing)->RefCount, 2);
    const unsigned another = CPGARB.AddRef("aTign", "exit", &askC);
    EXPECT_EQ(another >> 24, missing >> 24);
    const unsigned gate = CPGARB.AddRef("cSign", "gate", &askC);
    EXPECT_TRUE(another != missing && gate != missing && gate != another);
    for (const unsigned id : {exit, exit, foreign, missing, missing, another, gate}) {
        CPGARB.DelRef(id);
    }
    EXPECT_TRUE(CPGARB.GetPointer(missing)->PendingName.IsEmpty());
}

TEST(ClassPointers, RecordsComeBackWhenNothingHoldsThem) {
    cSign a("lane", nullptr), b("yard", nullptr);
    const unsigned id = CPGARB.AddClass(&a);
    CPGARB.AddRef(id);
    CPGARB.DelRef(id);
    CPGARB.DelRef(id); // one too many
    CPGARB.AddRef(id);
    EXPECT_EQ(CPGARB.GetPointer(id)->RefCount, 1);
    CPGARB.DeleteClass(&a);
    EXPECT_EQ(CPGARB.GetPointer(id)->Object, nullptr) << "orphaned";
    EXPECT_NE(CPGARB.AddClass(&b), id);
    CPGARB.DeleteClass(&b);
    CPGARB.DelRef(id);
    CPGARB.AddRef(id); // free: nobody can hold it
    CPGARB.DelRef(id);
    EXPECT_EQ(CPGARB.AddClass(&b), id) << "the last one freed";
    CPGARB.DeleteClass(&a); // has that ID, too, from before
    EXPECT_EQ(CPGARB.GetPointer(id)->Object, &b);
    EXPECT_NE(CPGARB.AddClass(&a), id);
    CPGARB.DeleteClass(&a);
    CPGARB.DeleteClass(&b);
    for (const unsigned unknown : {CPGARB.NoID, id | 0xFFFFFF, id + 0x1000000}) {
        CPGARB.AddRef(unknown);
        CPGARB.DelRef(unknown);
        EXPECT_EQ(CPGARB.GetPointer(unknown), nullptr);
    }
}
