// The buttons of the workbench.
#pragma once

#include "ui/cForm.h"

#include <vector>

namespace trellis {

class cWorkbench;

class cWorkbenchForm : public cForm {
public:
    cWorkbenchForm(cWorkbench* program, const cRect& bounds, const cTheme* theme);

    void OnRender() override;
    void MsgProc(int id, int msg, const void* before, const void* after) override;
    void Fill(); ///< Once the manager has the form.

private:
    struct Action {
        int ID; // of the control
        void (*Do)(cWorkbenchForm* form);
    };
    void Add(cWnd* parent, cWnd* control, void (*action)(cWorkbenchForm* form));

    cWorkbench* m_Program;
    std::vector<Action> m_Actions;
    int m_ThemeIndex;
    bool m_IsPaused = false;
};

} // namespace trellis
