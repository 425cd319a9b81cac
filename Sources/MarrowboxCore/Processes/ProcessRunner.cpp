#include "Processes/ProcessRunner.h"

#include "Models/Uuid.h"
#include "Platform/Cancellation.h"
#include "Platform/ChildProcess.h"
#include "Platform/Files.h"
#include "Platform/OpenInFolder.h"

#include <cerrno>
#include <fcntl.h>
#include <mutex>
#include <optional>
#include <system_error>
#include <unistd.h>

namespace marrowbox {

namespace {

/// A private folder with one child's output, removed with the object; that it cannot be removed is ignored.
/// Where everybody may write to the folder above, another may have taken its place since: nothing is found by
/// its path again but the folder itself, and that is removed only as long as it is this one.
class ScratchDirectory {
  public:
    explicit ScratchDirectory(const fs::path& parent)
        : path_(parent / ("marrowbox-process-" + Uuid::random().text())) {
        makeDirectory(path_, 0700);
        try {
            folder_ = openFile(path_, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
            output_ = createOutput();
        } catch (...) {
            remove();
            throw;
        }
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    ~ScratchDirectory() { remove(); }

    /// The file that the child writes.
    const Descriptor& output() const { return output_; }

    /// All that it has written. Its position in the file stays as it is.
    std::string written() const {
        std::string bytes(sizeOfOutput(), '\0');
        std::size_t held = 0;
        while (held < bytes.size()) {
            const ssize_t count =
                ::pread(output_.number(), bytes.data() + held, bytes.size() - held, static_cast<off_t>(held));
            if (count < 0 && errno == EINTR)
                continue;
            if (count < 0)
                throwSystemError("read", path_ / outputName);
            if (count == 0)
                break;
            held += static_cast<std::size_t>(count);
        }
        bytes.resize(held);
        return bytes;
    }

  private:
    static constexpr const char* outputName = "output";

    Descriptor createOutput() const {
        Descriptor file = openInFolder(folder_, outputName, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW);
        if (!file)
            throwSystemError("open", path_ / outputName);
        if (::fchmod(file.number(), 0600) != 0)
            throwSystemError("chmod", path_ / outputName);
        return file;
    }

    std::size_t sizeOfOutput() const {
        struct stat status{};
        if (::fstat(output_.number(), &status) != 0)
            throwSystemError("stat", path_ / outputName);
        return static_cast<std::size_t>(status.st_size);
    }

    bool isInItsPlace() const {
        struct stat opened{};
        const auto standing = linkStatus(path_);
        return standing && ::fstat(folder_.number(), &opened) == 0 && standing->st_dev == opened.st_dev &&
               standing->st_ino == opened.st_ino;
    }

    void remove() const noexcept {
        if (folder_)
            ::unlinkat(folder_.number(), outputName, 0);
        if (!folder_ || isInItsPlace())
            ::rmdir(path_.c_str());
    }

    fs::path path_;
    Descriptor folder_;
    Descriptor output_;
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

} // namespace

asio::awaitable<ProcessRunner::Result> ProcessRunner::run(fs::path executable,
                                                          std::vector<std::string> arguments,
                                                          std::map<std::string, std::string> environment,
                                                          ProcessSurroundings surroundings,
                                                          std::stop_token stop) {
    // A file takes the output, since nobody has to drain it for the child to go on.
    const ScratchDirectory scratch(surroundings.temporaryFolder);
    ProgramLaunch program;
    program.executable = std::move(executable);
    program.arguments = std::move(arguments);
    program.environment = childEnvironment(std::move(surroundings.environment), environment);

    ProcessBox box;
    const std::stop_callback onStop(stop, [&box] { box.cancel(); });
    box.launch(program, scratch.output());
    const auto status = co_await box.end();
    throwIfCancelled(stop);
    Result result;
    result.status = status;
    result.output = scratch.written();
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
