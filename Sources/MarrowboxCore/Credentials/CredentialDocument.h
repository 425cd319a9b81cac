#pragma once

#include "Models/ByteString.h"

#include <boost/describe/class.hpp>
#include <cstdint>
#include <map>
#include <string>

namespace marrowbox {

/// The content of the credential file.
struct CredentialDocument {
    std::int64_t version = 1;                 ///< Always 1.
    std::map<std::string, ByteString> values; ///< Opaque bytes by key.
};

BOOST_DESCRIBE_STRUCT(CredentialDocument, (), (version, values))

} // namespace marrowbox
