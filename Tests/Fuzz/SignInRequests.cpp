// What a browser, or anybody else on this machine, may send to the sign-in's port: only a request that knows
// the state ends the sign-in, and whatever comes, the answer is one whole message.
#include "GoogleOAuth/SignInCallback.h"
#include "Require.h"

extern "C" int LLVMFuzzerTestOneInput(const char* bytes, std::size_t count) {
    using namespace marrowbox;
    constexpr std::string_view state = "k7Q2";
    const std::string_view request(bytes, count);
    const auto verdict = SignInCallback::judge(request, state);
    // The state has no character that an address may write in another way than as itself or by its number.
    const bool mayKnow = request.find(state) != request.npos || request.find('%') != request.npos;
    fuzz::require(std::holds_alternative<SignInCallback::Stray>(verdict.meaning) || mayKnow);
    const std::string message = SignInCallback::message(verdict);
    const std::size_t head = message.find("\r\n\r\n");
    fuzz::require(message.starts_with("HTTP/1.1 ") && head != message.npos);
    fuzz::require(verdict.status.find_first_of("\r\n") == std::string::npos);
    fuzz::require(message.ends_with(verdict.text));
    return 0;
}
