#include "Marrowbox/SetupViews/InstallSetupViews.h"

// Written by the build; naming it keeps the linker from dropping the module out of the static library.
extern void qml_register_types_Marrowbox_SetupViews();

namespace marrowbox {

void installSetupViews() {
    qml_register_types_Marrowbox_SetupViews();
}

} // namespace marrowbox
