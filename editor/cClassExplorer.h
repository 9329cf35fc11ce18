// The editor of reflected objects: a form with a row for each member of an object whose class it does not know.
//
//     +- Lights - cRoom --------------------------------+      objects are announced with `AddObject`; the controls of
//     | [Object v] | Load Save | ... | Add [Class v]    |      the one that is chosen are bound to its members
//     |        Name [hall           ]                   |
//     | > Lights                                        |      a panel for each object and list in it, open by bit 0
//     |   > cLamp                                       |      of the object's flags
//     +-------------------------------------------------+
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"
#include "math/cVec2.h"

#include <initializer_list>

namespace trellis {

class cClass;
class cOneClassMemberStorage;
class cXml;

/// Everything is kept while the forms are closed. Main thread only.
class cClassExplorer {
public:
    /// A change of one value: which of the targets is set says of what kind.
    struct UndoRedoNode {
        void Do(int direction) const; ///< -1 writes the old value, any other the new one.

        bool OldBool = false, NewBool = false;
        int OldInt = 0, NewInt = 0;
        float OldFloat = 0, NewFloat = 0;
        cStr OldStr, NewStr;
        bool* Bool = nullptr;
        int* Int = nullptr;
        float* Float = nullptr;
        cStr* Str = nullptr;
        cClass* Owner = nullptr;                        ///< Of the element.
        const cOneClassMemberStorage* Member = nullptr; ///< Its accessors. Null: it has none.
    };

    /// An element that has the focus. Its pointers are compared with those of controls, and never followed.
    struct Focus {
        cClass* Class = nullptr; ///< The object itself, or the kind of a value. Null: nothing has the focus.
        void* Data = nullptr;
        void* Extra = nullptr;
        int Index = -1;          ///< Among the elements of the panel's object that can be edited.
        cClass* Panel = nullptr; ///< The object whose panel the element stands in.
        int Part = 0;            ///< Of its control.
    };

    struct Object {
        cStr Name;
        cClass* Class = nullptr;
        cStr Folder, FileName; ///< Of its XML file.
        cList<UndoRedoNode> Undo;
        int UndoIndex = -1; ///< The last change that is done; -1: nothing is left to undo.
        cVec2 View{0, 0};   ///< How far its rows were scrolled.
        Focus FocusedElement;
    };

    class Stub; ///< The form.

    /// Registers the built-in classes, once. Every construction of a reflected object comes through here.
    static void Init() {
        if (!Inited) [[unlikely]] {
            RegisterBuiltIn();
        }
    }

    /// Announces an object, which stays the caller's and lives until `RemoveObject`. Null is ignored, and one that
    /// is announced already.
    ///
    /// @param path  an XML file, which the object reads at once; or the folder that its dialogs begin in
    static void AddObject(const char* name, cClass* object, const char* path);
    static void AddMenuObject(const char* name, cClass* object, const char* path); ///< And the main menu shows it.
    static void RemoveObject(const cClass* object); ///< Before it goes. Unknown ones are ignored.

    /// Resets an object that was announced, and reads it anew. Nothing happens unless the path ends in "Xml".
    static void ReloadObject(cClass* object, const char* path);

    /// Opens the panels on the way to an object within the one that is shown, closes all others, and goes there.
    static void FocusObject(cClass* object);

    static void ToggleClassExplorer(); ///< Opens the form, or closes it. Without a theme it stays closed.
    static void ToggleMainMenu();      ///< The smaller form, of the object for the menu.
    static bool GetVisible();          ///< Whether one of the two is open and visible.

    /// To be called by code that changes what an object consists of, before or right after it does: controls let go of
    /// the members at once, and are made anew in the next frame.
    static void ReCreateControls();

    static cList<Object>& GetObjects() { return s_Objects; } ///< In order of addition.

private:
    static void RegisterBuiltIn();
    static bool Add(const char* name, cClass* object, const char* path);
    static Object* Find(const cClass* object); ///< Null when it was not announced.
    static Stub* GetStub(int id);              ///< Null while that form is closed.
    static void Toggle(int* id, bool isClassExplorer);

    template <class Call> static void ForEachForm(Call call) { ///< Of the open ones.
        for (const int id : {s_ClassExplorerID, s_MainMenuID}) {
            if (Stub* stub = GetStub(id)) {
                call(stub);
            }
        }
    }

    static inline bool Inited = false;
    static inline constinit cList<Object> s_Objects;
    static inline int s_ClassExplorerID = -1, s_MainMenuID = -1;  ///< Of the widgets; -1: closed.
    static inline int s_MainMenuObjIndex = -1;                    ///< From the end of the list, so 0 is the last one.
    static inline constinit cList<int> s_SessionHistory_ObjIndex; ///< Objects as they were visited.
    static inline int s_SessionHistoryIndex = -1;

    // Where the forms were when they were closed; an alignment of -1 says that it never was.
    static inline bool s_ClassExplorerIsMaximized = false, s_MainMenuIsMaximized = false;
    static inline cVec2 s_ClassExplorerMinStateRelPos{0, 0}, s_MainMenuMinStateRelPos{0, 0};
    static inline int s_ClassExplorerMinStateAlign = -1, s_MainMenuMinStateAlign = -1;
    static inline cVec2 s_ClassExplorerNormalStateRelPosTl{0, 0}, s_MainMenuNormalStateRelPosTl{0, 0};
    static inline cVec2 s_ClassExplorerNormalStateRelPosBr{0, 0}, s_MainMenuNormalStateRelPosBr{0, 0};
    static inline int s_ClassExplorerNormalStateAlignTl = -1, s_MainMenuNormalStateAlignTl = -1;
    static inline int s_ClassExplorerNormalStateAlignBr = -1, s_MainMenuNormalStateAlignBr = -1;
    static inline float s_ClassExplorerToolBarScrollPos = 0, s_MainMenuToolBarScrollPos = 0;
};

extern cXml cClassExplorer_ClipBoard; ///< What was copied last; an empty node: nothing.

} // namespace trellis
