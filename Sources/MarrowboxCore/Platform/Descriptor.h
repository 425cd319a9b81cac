#pragma once

#include <unistd.h>
#include <utility>

namespace marrowbox {

/// An open file descriptor that is closed with the object. Empty when it holds -1.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            close();
            number_ = std::exchange(other.number_, -1);
        }
        return *this;
    }
    ~Descriptor() { close(); }

    int number() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }
    /// Gives the descriptor away; the caller closes it.
    int release() { return std::exchange(number_, -1); }
    /// Closes at once, ignoring a failure to close.
    void close() noexcept {
        if (number_ >= 0)
            ::close(number_);
        number_ = -1;
    }

  private:
    int number_ = -1;
};

} // namespace marrowbox
