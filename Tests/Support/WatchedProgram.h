#pragma once

#include "Platform/Descriptor.h"
#include "Support/FileCall.h"

#include <deque>
#include <functional>
#include <linux/seccomp.h>
#include <optional>
#include <string>
#include <vector>

namespace marrowbox::test {

/// What becomes of a watched call.
class Answer {
  public:
    /// The call takes place.
    static Answer proceed() { return Answer(Kind::proceed, 0); }
    /// The program dies before the call, at once and with all its threads.
    static Answer kill() { return Answer(Kind::kill, 0); }
    /// The call does nothing and reports this error.
    static Answer fail(int error) { return Answer(Kind::fail, error); }
    /// A write of several bytes writes the first half of them; any other call takes place.
    static Answer writeHalf() { return Answer(Kind::writeHalf, 0); }
    /// The call waits until every other thread of the program and its children waits for something, and is
    /// then asked about again. What the others did meanwhile did not need it.
    static Answer whenQuiet() { return Answer(Kind::whenQuiet, 0); }

  private:
    friend class WatchedProgram;
    enum class Kind { proceed, kill, fail, writeHalf, whenQuiet };
    Answer(Kind kind, int error) : kind_(kind), error_(error) {}

    Kind kind_;
    int error_;
};

/// Why this machine does not let one process watch another's calls; nothing when it does.
std::optional<std::string> reasonForNoWatching();

/// A program that asks before each system call with which it changes files, whichever of its threads makes
/// it. The kernel holds the calling thread until the answer. Nothing is traced, so the program may be built
/// with a sanitizer, and it runs at nearly its own speed. It is killed with the object.
class WatchedProgram {
  public:
    /// Starts the program of the first word with all the words as its arguments. Throws where
    /// reasonForNoWatching() has one.
    explicit WatchedProgram(const std::vector<std::string>& words);
    WatchedProgram(const WatchedProgram&) = delete;
    WatchedProgram& operator=(const WatchedProgram&) = delete;
    ~WatchedProgram();

    /// Asks for an answer to one call after the other, until the program has ended. Gives its status, as
    /// wait(2) does.
    int run(const std::function<Answer(const FileCall&)>& decide);

    /// The number of its process, until it has ended.
    pid_t process() const { return child_; }

    /// What the program has written to its standard error.
    std::string words() const;

  private:
    void answerNext(const std::function<Answer(const FileCall&)>& decide);
    void answerHeld(const std::function<Answer(const FileCall&)>& decide);
    void ask(const seccomp_notif& question, bool wasHeld,
             const std::function<Answer(const FileCall&)>& decide);
    void reply(const seccomp_notif& question, Answer answer);
    /// Writes in the program's place. Gives the number of bytes, 0 when this call is no such write.
    std::size_t writeHalf(const seccomp_notif& question);
    int status();

    pid_t child_ = -1;
    std::deque<seccomp_notif> held_;
    Descriptor process_;
    Descriptor calls_;
    Descriptor errors_;
};

} // namespace marrowbox::test
