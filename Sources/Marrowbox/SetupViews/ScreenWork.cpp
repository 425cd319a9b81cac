#include "Marrowbox/SetupViews/ScreenWork.h"

#include "Platform/Cancellation.h"

#include <boost/asio/co_spawn.hpp>

namespace marrowbox {

void startScreenWork(const asio::any_io_executor& main, asio::awaitable<void> work) {
    asio::co_spawn(main, std::move(work), [](std::exception_ptr thrown) {
        try {
            if (thrown)
                std::rethrow_exception(thrown);
        } catch (const CancellationError&) { // whoever cancelled knows
        }
    });
}

} // namespace marrowbox
