// Questions that stop the program until they are answered. How they are asked is the host's.
#pragma once

namespace trellis {

class cMessageBox {
public:
    using Handler = bool (*)(const char* title, const char* text);

    static void SetHandler(Handler handler) { s_Handler = handler; } ///< Null: nobody is there to be asked.
    /// @return true for yes; false without a handler
    static bool YesNo(const char* title, const char* text) { return s_Handler && s_Handler(title, text); }

private:
    static inline Handler s_Handler = nullptr;
};

} // namespace trellis
