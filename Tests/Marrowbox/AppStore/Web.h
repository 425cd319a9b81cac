#pragma once

#include "GoogleOAuth/HTTP.h"

#include <boost/asio/steady_timer.hpp>
#include <memory>
#include <string>

namespace marrowbox::test {

/// A web that answers every request alike.
HTTPSend answering(int status, std::string body = "{}");

/// A web that nothing comes back from.
HTTPSend offline();

/// A web that takes every request and answers only once it is let go; a request that is cancelled meanwhile
/// ends.
class HeldWeb {
  public:
    explicit HeldWeb(const asio::any_io_executor& executor);
    HTTPSend send() const;
    /// From now on requests are answered at once, those that wait as well.
    void letGo();

  private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace marrowbox::test
