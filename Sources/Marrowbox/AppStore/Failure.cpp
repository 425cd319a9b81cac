#include "Marrowbox/AppStore/Failure.h"

#include "Models/BackupError.h"

namespace marrowbox {

std::string words(const std::exception& failure) {
    const auto* const finished = dynamic_cast<const BackupError*>(&failure);
    return finished ? finished->message() : failure.what();
}

} // namespace marrowbox
