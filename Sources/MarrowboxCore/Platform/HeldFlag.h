#pragma once

namespace marrowbox {

/// A flag that is up while this lives.
class HeldFlag {
  public:
    explicit HeldFlag(bool& flag) : flag_(flag) { flag_ = true; }
    HeldFlag(const HeldFlag&) = delete;
    HeldFlag& operator=(const HeldFlag&) = delete;
    ~HeldFlag() { flag_ = false; }

  private:
    bool& flag_;
};

} // namespace marrowbox
