#pragma once

#include "Sandbox/RequestMatch.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace marrowbox::sandbox {

/// What happens to one request besides its ordinary answer.
struct FaultEffects {
    std::vector<std::function<void()>> hooks;
    std::chrono::milliseconds latency{0};
    bool cutsBeforeAnswer = false;
    std::optional<unsigned> status;
    std::string reason;
    std::optional<std::string> body;
    NamedValues headers;
    std::vector<std::function<std::string(std::string)>> bodyEdits;
    std::optional<std::int64_t> shortenedTo;
    std::optional<std::int64_t> flippedByte;
    std::optional<std::int64_t> cutAfter;
    std::optional<std::int64_t> stallAfter;
    bool chunked = false;

    void add(const FaultEffects& other);
};

/// One scripted fault, read like a sentence:
///
///     sandbox.inject(Fault::on(listing(folder)).nth(2).answer(503).retryAfter("1.5").times(2));
///
/// It counts the requests that it matches from the moment it is injected; without nth and times it happens to
/// the first one alone.
class Fault {
  public:
    static Fault on(RequestMatch match);

    /// Begins with the nth such request, counted from 1.
    Fault& nth(int number);
    Fault& times(int count);
    Fault& always();

    /// Answers this status in place of the ordinary answer, with a body as Google writes it.
    Fault& answer(unsigned status);
    /// The reason in that body, such as "userRateLimitExceeded"; without it, the one usual for the status.
    Fault& reason(std::string reason);
    Fault& retryAfter(std::string value);
    Fault& header(std::string name, std::string value);
    /// Replaces the body.
    Fault& body(std::string text);
    /// Changes the body, such as a page of a listing. For media, the bytes of the range that was asked for.
    Fault& editBody(std::function<std::string(std::string)> edit);
    /// Says in a listing that the search was incomplete.
    Fault& incompleteSearch();
    /// Gives a listing a next page, whatever it holds.
    Fault& endlessPages();

    /// Waits before it answers, on the machine's clock.
    Fault& latency(std::chrono::milliseconds time);
    /// Closes the connection without an answer.
    Fault& cutBeforeAnswer();
    /// Announces the whole body, sends that many bytes of it and closes the connection.
    Fault& cutAfterBodyBytes(std::int64_t count);
    /// Announces the whole body, sends that many bytes of it, and then nothing until the client leaves.
    Fault& stallAfterBodyBytes(std::int64_t count);
    /// A body of that many bytes, announced as such.
    Fault& shortenBodyTo(std::int64_t count);
    /// Inverts the byte at this place of the body.
    Fault& flipByte(std::int64_t place);
    /// Sends the body in chunks, without announcing its length.
    Fault& chunked();
    /// Refuses the item as Drive does when its owner forbids downloads.
    Fault& refuseDownload();

    /// Runs before the answer is made, on the sandbox's thread: the place to change a Drive in mid-run.
    Fault& run(std::function<void()> hook);

  private:
    friend class FaultScript;
    RequestMatch match_;
    int first_ = 1;
    int count_ = 1;
    int seen_ = 0;
    FaultEffects effects_;
};

/// The faults of one sandbox. Any thread.
class FaultScript {
  public:
    void inject(Fault fault);
    void clear();
    /// All that happens to this request, faults in the order in which they were injected.
    FaultEffects effectsFor(const RecordedRequest& request);

  private:
    std::mutex mutex_;
    std::vector<Fault> faults_;
};

} // namespace marrowbox::sandbox
