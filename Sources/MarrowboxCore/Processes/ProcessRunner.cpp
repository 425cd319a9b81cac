#include "Processes/ProcessRunner.h"

#include "Models/Uuid.h"
#include "Platform/Cancellation.h"
#include "Platform/ChildProcess.h"
#include "Platform/Files.h"

#include <fcntl.h>
#include <mutex>
#include <optional>
#include <system_error>

namespace marrowbox {

namespace {

/// A private folder for one child's output, removed with the object; that it cannot be removed is ignored.
class ScratchDirectory {
  public:
    explicit ScratchDirectory(const fs::path& parent)
        : path_(parent / ("marrowbox-process-" + Uuid::random().text())) {
        makeDirectory(path_, 0700);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    ~ScratchDirectory() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }

    fs::path output() const { return path_ / "output"; }

  private:
    fs::path path_;
};

/// What the waiting coroutine and the thread that cancels share.
class ProcessBox {
  public:
    /// Starts the child unless the box was cancelled before, which throws CancellationError. The lock is held
    /// all the while, so that a cancellation sees either no child or one that runs.
    void launch(const ProgramLaunch& program, const Descriptor& output) {
        const std::lock_guard guard(lock_);
        if (cancelled_)
            throw CancellationError();
        process_.emplace(program, output);
    }

    void cancel() noexcept {
        const std::lock_guard guard(lock_);
        cancelled_ = true;
        if (process_)
            process_->requestTermination();
    }

    /// Waits for the child that was launched, and gives its status.
    asio::awaitable<std::int32_t> end() {
        while (true) {
            co_await process_->ended();
            const auto status = reap();
            if (status)
                co_return *status;
        }
    }

  private:
    std::optional<std::int32_t> reap() {
        const std::lock_guard guard(lock_);
        const auto status = process_->reap();
        if (status)
            process_.reset();
        return status;
    }

    std::mutex lock_;
    std::optional<ChildProcess> process_; ///< While the child runs. Only the waiting coroutine changes it.
    bool cancelled_ = false;
};

/// The surroundings' variables but those that would configure a tool behind the caller's back, and the given
/// ones over them.
std::map<std::string, std::string> childEnvironment(std::map<std::string, std::string> inherited,
                                                    const std::map<std::string, std::string>& given) {
    std::erase_if(inherited, [](const auto& variable) { return variable.first.starts_with("RCLONE_"); });
    for (const auto& [name, value] : given)
        inherited.insert_or_assign(name, value);
    return inherited;
}

Descriptor createOutput(const fs::path& path) {
    Descriptor file = openFile(path, O_WRONLY | O_CREAT | O_EXCL, 0600);
    if (::fchmod(file.number(), 0600) != 0)
        throwSystemError("chmod", path);
    return file;
}

} // namespace

asio::awaitable<ProcessRunner::Result> ProcessRunner::run(fs::path executable,
                                                          std::vector<std::string> arguments,
                                                          std::map<std::string, std::string> environment,
                                                          ProcessSurroundings surroundings,
                                                          std::stop_token stop) {
    // A file takes the output, since nobody has to drain it for the child to go on.
    const ScratchDirectory scratch(surroundings.temporaryFolder);
    const Descriptor output = createOutput(scratch.output());
    ProgramLaunch program;
    program.executable = std::move(executable);
    program.arguments = std::move(arguments);
    program.environment = childEnvironment(std::move(surroundings.environment), environment);

    ProcessBox box;
    const std::stop_callback onStop(stop, [&box] { box.cancel(); });
    box.launch(program, output);
    const auto status = co_await box.end();
    throwIfCancelled(stop);
    Result result;
    result.status = status;
    result.output = readFile(scratch.output());
    co_return result;
}

asio::awaitable<ProcessRunner::Result> ProcessRunner::run(fs::path executable,
                                                          std::vector<std::string> arguments,
                                                          std::map<std::string, std::string> environment,
                                                          std::stop_token stop) {
    return run(std::move(executable), std::move(arguments), std::move(environment),
               ProcessSurroundings::ofThisProcess(), std::move(stop));
}

} // namespace marrowbox
