#include "LinuxWorld.h"

#include "Platform/Files.h"
#include "Platform/FuseSupport.h"
#include "SnapshotMount/ProcessEnd.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>

namespace marrowbox::test {

std::optional<std::string> reasonForNoVolumes() {
    for (const char* tool : {"/usr/bin/mksquashfs", "/usr/bin/squashfuse", "/usr/bin/fusermount3",
                             "/usr/bin/findmnt", "/usr/bin/lsof", "/bin/ps"})
        if (::access(tool, X_OK) != 0)
            return std::string("this machine has no ") + tool;
    return reasonForNoFUSE();
}

LinuxWorld::LinuxWorld() : machine(std::make_shared<LiveMountSystem>(ProcessSurroundings::ofThisProcess())) {
    makeDirectories(directory.parent_path(), 0700);
    makeDirectory(runtime, 0700);
}

LinuxWorld::~LinuxWorld() {
    if (pool_)
        pool_->join();
    const std::string mounts =
        runTool("/usr/bin/findmnt", {"--json", "--list", "--output", "SOURCE,TARGET,FSTYPE,FS-OPTIONS"})
            .output;
    for (const Attachment& mount : SquashfsTool::inventory(mounts, ::getuid()))
        if (mount.image.native().starts_with(fs::canonical(scratch.path()).native()))
            runTool("/usr/bin/fusermount3", {"-u", "-z", mount.mountPoint->string()});
}

std::unique_ptr<SnapshotMount> LinuxWorld::start(const asio::any_io_executor& executor,
                                                 std::shared_ptr<SnapshotMountSystem> system,
                                                 std::chrono::milliseconds serverEndLimit) {
    const MountPointFolder points(MountPointFolder::place({{"XDG_RUNTIME_DIR", runtime}}, ::getuid()),
                                  ::getuid());
    MountMachine parts{.system = system,
                       .images = std::make_shared<SquashfsTool>(system, points, serverEndLimit),
                       .localTime = systemLocalTime()};
    return std::make_unique<SnapshotMount>(executor, directory, std::move(parts));
}

asio::any_io_executor LinuxWorld::executor() {
    if (!pool_)
        pool_.emplace(2);
    return pool_->get_executor();
}

bool LinuxWorld::hasNoWork() const {
    return folder().load().entries.empty() && directoryNames(workRoot()).empty();
}

ProcessRunner::Result LinuxWorld::runTool(fs::path executable, std::vector<std::string> arguments) {
    return await(machine->run(std::move(executable), std::move(arguments), {}, {}));
}

void LinuxWorld::unmountBehindTheBack(const SnapshotMount::Mounted& mounted) {
    auto servers = machine->processesWithArguments({mounted.volume});
    ASSERT_EQ(servers.size(), 1u);
    ASSERT_EQ(runTool("/usr/bin/fusermount3", {"-u", mounted.volume}).status, 0);
    ASSERT_TRUE(await(processesEnded(std::move(servers), std::chrono::seconds(60))));
}

void LinuxWorld::awaitEndOfProcesses(const std::string& argument) {
    ASSERT_TRUE(await(processesEnded(machine->processesWithArguments({argument}), std::chrono::seconds(60))));
}

void LinuxWorld::awaitMount(const fs::path& image) {
    const Descriptor list = openFile("/proc/self/mountinfo", O_RDONLY);
    while (true) {
        const std::string mounts = readFile("/proc/self/mountinfo");
        if (mounts.find(image.filename().native()) != std::string::npos &&
            mounts.find(image.parent_path().filename().native()) != std::string::npos)
            return;
        pollfd change{.fd = list.number(), .events = POLLPRI, .revents = 0};
        ASSERT_EQ(::poll(&change, 1, 60'000), 1) << "nothing was mounted";
        ::lseek(list.number(), 0, SEEK_SET);
    }
}

} // namespace marrowbox::test
