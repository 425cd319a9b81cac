#pragma once

#include "Demo/DrivePicture.h"

#include <string_view>

namespace marrowbox::demo {

/// Whether this is the name under which a backup shows an item of the Drive: the item's own name, any
/// character of it perhaps as %XX, then the extension of an export; and where several names in one folder
/// would meet, a tag of the item's own before the extension. It is told from what a reader of a backup may
/// expect, and shares nothing with the code that makes such names.
bool isNameOf(std::string_view found, const DrivePicture& item);

} // namespace marrowbox::demo
