#include "Demo/StageDesktop.h"

namespace marrowbox::demo {

StageDesktop::StageDesktop(asio::any_io_executor main, ProcessSurroundings surroundings, fs::path clientFile,
                           fs::path chosenFolder)
    : main_(std::move(main)), surroundings_(std::move(surroundings)), clientFile_(std::move(clientFile)),
      chosenFolder_(std::move(chosenFolder)) {
}

void StageDesktop::wake() const {
    events_.machineWoke();
}

std::unique_ptr<Activity> StageDesktop::beginActivity(std::string) {
    return std::make_unique<Activity>();
}

asio::awaitable<std::optional<fs::path>> StageDesktop::chooseJSONFile(std::string) {
    co_return clientFile_;
}

asio::awaitable<std::optional<fs::path>> StageDesktop::chooseFolder(std::string) {
    co_return chosenFolder_;
}

bool StageDesktop::openPage(const std::string& address) {
    browser_ = std::make_shared<Browser>(main_, surroundings_, browserStop_);
    return browser_->open(address);
}

} // namespace marrowbox::demo
