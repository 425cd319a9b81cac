#include "Repository/ByteWindow.h"

#include "Platform/Files.h"

#include <cstring>
#include <span>

namespace marrowbox {

namespace {

/// Small enough to stay in the processor's cache between the reading and the look.
constexpr std::size_t readPiece = 128 * 1024;

} // namespace

ByteWindow::ByteWindow(const Descriptor& file) : file_(file), buffer_(readPiece) {
}

void ByteWindow::fetch(std::size_t count) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
    if (buffer_.size() < count)
        buffer_.resize(count);
    while (end_ < count) {
        const std::size_t read = readSome(file_, std::span(buffer_).subspan(end_));
        if (read == 0)
            return;
        end_ += read;
    }
}

} // namespace marrowbox
