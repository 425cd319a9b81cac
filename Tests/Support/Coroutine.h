#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <exception>
#include <optional>
#include <type_traits>
#include <variant>

namespace marrowbox::test {

namespace asio = boost::asio;

/// Runs a coroutine to its end on an executor of its own and gives its result or throws its failure.
template <typename Result>
Result await(asio::awaitable<Result> work) {
    asio::io_context context;
    std::exception_ptr failure;
    if constexpr (std::is_void_v<Result>) {
        asio::co_spawn(context, std::move(work), [&](std::exception_ptr thrown) { failure = thrown; });
        context.run();
        if (failure)
            std::rethrow_exception(failure);
    } else {
        std::optional<Result> result;
        asio::co_spawn(context, std::move(work), [&](std::exception_ptr thrown, Result value) {
            failure = thrown;
            if (!thrown)
                result = std::move(value);
        });
        context.run();
        if (failure)
            std::rethrow_exception(failure);
        return std::move(*result);
    }
}

} // namespace marrowbox::test
