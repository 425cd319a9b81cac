#include "Marrowbox/AppStore/Failure.h"

#include "Models/BackupError.h"
#include "Platform/UnicodeText.h"

namespace marrowbox {

std::string words(const std::exception& failure) {
    const auto* const finished = dynamic_cast<const BackupError*>(&failure);
    return validText(finished ? std::string_view(finished->message()) : failure.what());
}

} // namespace marrowbox
