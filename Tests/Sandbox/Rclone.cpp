#include "Rclone.h"

#include "Platform/Files.h"

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>

namespace marrowbox::test {

namespace {

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> found;
    for (std::string& text : texts)
        found.push_back(text.data());
    found.push_back(nullptr);
    return found;
}

} // namespace

Rclone::Rclone(sandbox::SandboxServer& sandbox) {
    sandbox.writeAuthority(state_ / "authority.pem");
    environment_ = sandbox.environment(state_ / "authority.pem");
    environment_["HOME"] = state_.path();
    environment_["RCLONE_CONFIG_MARROW_TYPE"] = "drive";
    environment_["RCLONE_CONFIG_MARROW_SCOPE"] = "drive.readonly";
    environment_["RCLONE_CONFIG_MARROW_CLIENT_ID"] = sandbox.identity().client().id;
    environment_["RCLONE_CONFIG_MARROW_CLIENT_SECRET"] = sandbox.identity().client().secret.value();
    setToken(sandbox.identity().issueToken());
}

Rclone::~Rclone() {
    if (child_ == 0)
        return;
    ::kill(child_, SIGKILL);
    ::waitpid(child_, nullptr, 0);
}

void Rclone::setToken(const sandbox::SandboxToken& token, const std::string& expiry) {
    environment_["RCLONE_CONFIG_MARROW_TOKEN"] = R"({"access_token":")" + token.accessToken +
                                                 R"(","token_type":"Bearer","refresh_token":")" +
                                                 token.refreshToken + R"(","expiry":")" + expiry + R"("})";
}

void Rclone::setTeamDrive(const std::string& id) {
    environment_["RCLONE_CONFIG_MARROW_TEAM_DRIVE"] = id;
}

void Rclone::start(const std::vector<std::pair<std::string, std::string>>& items) {
    std::vector<std::string> arguments{"/usr/bin/rclone",
                                       "backend",
                                       "copyid",
                                       "marrow:",
                                       "--config",
                                       "/dev/null",
                                       "--drive-export-formats",
                                       "docx,xlsx,pptx,svg",
                                       "--retries",
                                       "3",
                                       "--low-level-retries",
                                       "5",
                                       "--contimeout",
                                       "20s",
                                       "--timeout",
                                       "5m",
                                       "--log-level",
                                       "ERROR",
                                       "--stats",
                                       "0",
                                       "--"};
    for (const auto& [id, name] : items) {
        arguments.push_back(id);
        arguments.push_back(folder_ / name);
    }
    std::vector<std::string> environment;
    for (const auto& [name, value] : environment_)
        environment.push_back(name + "=" + value);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, (state_ / "stderr").c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
    const int failure = ::posix_spawn(&child_, arguments[0].c_str(), &actions, nullptr,
                                      pointers(arguments).data(), pointers(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0)
        throw std::system_error(failure, std::generic_category(), "posix_spawn");
}

void Rclone::terminate() const {
    ::kill(child_, SIGTERM);
}

int Rclone::wait() {
    int status = 0;
    ::waitpid(std::exchange(child_, 0), &status, 0);
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

int Rclone::copy(const std::vector<std::pair<std::string, std::string>>& items) {
    start(items);
    return wait();
}

std::string Rclone::complaint() const {
    return readFile(state_ / "stderr");
}

} // namespace marrowbox::test
