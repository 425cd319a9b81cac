#pragma once

#include <functional>
#include <span>
#include <string_view>

namespace marrowbox {

/// Fills the span from the front and says how many bytes it wrote; 0 at the end.
using ChunkSource = std::function<std::size_t(std::span<char>)>;
using ChunkTaker = std::function<void(std::string_view)>;

/// Hands the same chunks, in order, to two takers that work at the same time: one on the calling thread, one
/// on a thread that ends with the call. Whichever is ahead reads the next chunk, so the slower one does
/// nothing but its own work; it is at most a few chunks behind. The source is called by one thread at a time.
/// The first failure of any of the three ends the call and is thrown.
void readForTwo(const ChunkSource& source, std::size_t chunkSize, const ChunkTaker& first,
                const ChunkTaker& second);

} // namespace marrowbox
