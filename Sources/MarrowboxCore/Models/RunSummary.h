#pragma once

#include <boost/describe/class.hpp>
#include <cstdint>

namespace marrowbox {

/// What a run changed, in files.
struct RunSummary {
    std::int64_t added = 0;           ///< Count as new at their path.
    std::int64_t updated = 0;         ///< Downloaded again, since their path held other content.
    std::int64_t removed = 0;         ///< Of the previous snapshot, whose path is gone.
    std::int64_t unchanged = 0;       ///< Identical at the same path.
    std::int64_t exported = 0;        ///< Downloaded native documents.
    std::int64_t downloadedBytes = 0; ///< Stored bytes of everything that was downloaded.

    /// Additions, updates and removals together.
    std::int64_t changed() const { return added + updated + removed; }

    friend bool operator==(const RunSummary&, const RunSummary&) = default;
};

BOOST_DESCRIBE_STRUCT(RunSummary, (), (added, updated, removed, unchanged, exported, downloadedBytes))

} // namespace marrowbox
