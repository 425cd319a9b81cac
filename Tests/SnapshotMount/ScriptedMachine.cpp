#include "ScriptedMachine.h"

#include "Platform/Cancellation.h"
#include "Platform/Files.h"

#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <fcntl.h>
#include <gtest/gtest.h>

namespace marrowbox::test {

namespace {

std::string textOf(const ToolCommand& command) {
    std::string text = command.executable.filename();
    for (const std::string& argument : command.arguments)
        text += " " + argument;
    return text;
}

template <typename Value>
Value* findCall(std::map<std::string, Value>& map, const std::string& text) {
    for (auto& [call, value] : map)
        if (text.starts_with(call))
            return &value;
    return nullptr;
}

std::string head = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
)";

std::string entitiesText(const std::optional<fs::path>& mountPoint) {
    std::string text = "<key>system-entities</key><array><dict><key>content-hint</key>"
                       "<string>GUID_partition_scheme</string><key>dev-entry</key><string>/dev/disk4</string>"
                       "</dict><dict><key>dev-entry</key><string>/dev/disk4s1</string>";
    if (mountPoint)
        text += "<key>mount-point</key><string>" + mountPoint->string() + "</string>";
    return text + "</dict></array>";
}

void makeFile(const fs::path& path, std::string_view content) {
    writeAll(openFile(path, O_WRONLY | O_CREAT | O_TRUNC, 0644), content);
}

} // namespace

std::string inventoryText(const std::vector<Attachment>& images) {
    std::string text = head + "<dict><key>framework</key><string>623</string><key>images</key><array>";
    for (const Attachment& image : images)
        text += "<dict><key>image-path</key><string>" + image.image.string() + "</string>" +
                entitiesText(image.mountPoint) + "</dict>";
    return text + "</array></dict></plist>\n";
}

ScriptedMachine::Result ScriptedMachine::usual(const ToolCommand& command) {
    const std::string text = textOf(command);
    const fs::path last = command.arguments.back();
    if (text.starts_with("hdiutil create")) {
        makeFile(last, "an image");
        return {0, ""};
    }
    if (text.starts_with("hdiutil attach")) {
        const fs::path mountPoint = "/Volumes/Snapshot";
        attached.push_back({last, mountPoint});
        return {0, head + "<dict>" + entitiesText(mountPoint) + "</dict></plist>\n"};
    }
    if (text.starts_with("hdiutil info"))
        return {0, inventoryText(attached)};
    if (text.starts_with("hdiutil detach")) {
        const auto count =
            std::erase_if(attached, [&](const Attachment& image) { return image.mountPoint == last; });
        return {count == 1 ? 0 : 1, ""};
    }
    if (text.starts_with("lsof"))
        return {1, ""};
    if (text.starts_with("ps"))
        return {0, "/sbin/launchd\n/usr/libexec/logd\n"};
    ADD_FAILURE() << "an unknown tool was run: " << text;
    return {127, ""};
}

asio::awaitable<ScriptedMachine::Result> ScriptedMachine::run(fs::path executable,
                                                              std::vector<std::string> arguments,
                                                              std::map<std::string, std::string> environment,
                                                              std::stop_token stop) {
    EXPECT_TRUE(environment.empty());
    const ToolCommand command{std::move(executable), std::move(arguments)};
    const std::string text = textOf(command);
    throwIfCancelled(stop);
    calls.push_back(command);
    if (isLost_)
        throw std::system_error(EIO, std::generic_category(), "the machine is gone");
    if (const auto* found = findCall(gates_, text)) {
        const auto gate = *found;
        gate->isReached = true;
        boost::system::error_code released;
        co_await gate->timer.async_wait(asio::redirect_error(asio::use_awaitable, released));
    }
    throwIfCancelled(stop);
    if (auto* queue = findCall(once_, text); queue != nullptr && !queue->empty()) {
        const Answer next = queue->front();
        queue->erase(queue->begin());
        co_return next(command);
    }
    if (const Answer* other = findCall(answers_, text))
        co_return (*other)(command);
    co_return usual(command);
}

uid_t ScriptedMachine::owner(const fs::path& path) const {
    const auto other = owners.find(path);
    return other != owners.end() ? other->second : SnapshotMountSystem::owner(path);
}

std::shared_ptr<Gate> ScriptedMachine::hold(const std::string& call, const asio::any_io_executor& executor) {
    auto gate = std::make_shared<Gate>(executor);
    gates_[call] = gate;
    return gate;
}

std::size_t ScriptedMachine::count(const std::string& call) const {
    return static_cast<std::size_t>(
        std::ranges::count_if(calls, [&](const auto& made) { return textOf(made).starts_with(call); }));
}

} // namespace marrowbox::test
