#include "Marrowbox/ContentView/InstallContentView.h"

// Written by the build; naming them keeps the linker from dropping the module out of the static library.
extern void qml_register_types_Marrowbox_ContentView();

namespace marrowbox {

void installContentView() {
    qml_register_types_Marrowbox_ContentView();
}

} // namespace marrowbox
