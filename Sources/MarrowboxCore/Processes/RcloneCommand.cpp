#include "Processes/RcloneCommand.h"

#include "Models/JSONFile.h"
#include "Models/Uuid.h"

#include <array>
#include <boost/describe/class.hpp>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace marrowbox {

namespace {

// No configuration file is read or written, and nothing behind "--" can be taken for a flag.
// clang-format off: an option stands beside its value
constexpr std::array<std::string_view, 20> commonArguments{
    "backend", "copyid", "marrow:",
    "--config", "/dev/null",
    "--drive-export-formats", "docx,xlsx,pptx,svg",
    "--retries", "3",
    "--low-level-retries", "5",
    "--contimeout", "20s",
    "--timeout", "5m",
    "--log-level", "ERROR",
    "--stats", "0",
    "--",
};
// clang-format on

/// A token as rclone reads it.
struct RcloneToken {
    std::string access_token;
    std::string refresh_token;
    std::string token_type;
    std::string expiry;
};

BOOST_DESCRIBE_STRUCT(RcloneToken, (), (access_token, refresh_token, token_type, expiry))

/// Such as 2026-03-01T09:30:00Z. A date beyond the four-digit years becomes their first or last second.
std::string internetDateTime(Date date) {
    constexpr std::int64_t earliest = -62'135'596'800; // 0001-01-01T00:00:00Z
    constexpr std::int64_t latest = 253'402'300'799;   // 9999-12-31T23:59:59Z
    const double since1970 = std::floor(date.secondsSinceReference + referenceDateSince1970);
    std::int64_t seconds = earliest;
    if (since1970 >= double(latest))
        seconds = latest;
    else if (since1970 > double(earliest))
        seconds = static_cast<std::int64_t>(since1970);

    const std::chrono::sys_seconds time{std::chrono::seconds(seconds)};
    const auto midnight = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day day(midnight);
    const std::chrono::hh_mm_ss clock(time - midnight);
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", int(day.year()),
                  unsigned(day.month()), unsigned(day.day()), int(clock.hours().count()),
                  int(clock.minutes().count()), int(clock.seconds().count()));
    return text.data();
}

std::string tokenText(const OAuthToken& token) {
    RcloneToken text;
    text.access_token = token.accessToken;
    text.refresh_token = token.refreshToken;
    text.token_type = "Bearer";
    text.expiry = internetDateTime(token.expiry);
    return encodeJSON(text, JSONStyle::compact);
}

} // namespace

bool RcloneCommand::isRewritten(std::string_view path) {
    // U+201B, with which rclone quotes, and the pictures of control characters, U+2401 to U+241F and U+2421.
    // All of them are three bytes long in UTF-8.
    const auto hasPicture = [&](unsigned last) {
        return path.find("\xE2\x90" + std::string(1, static_cast<char>(last))) != std::string_view::npos;
    };
    for (unsigned last = 0x81; last <= 0x9F; ++last)
        if (hasPicture(last))
            return true;
    return hasPicture(0xA1) || path.find("\u201B") != std::string_view::npos;
}

std::vector<RcloneCommand::Item> RcloneCommand::items(std::span<const SourceEntry> batch,
                                                      const std::filesystem::path& folder) {
    std::vector<Item> items;
    for (const auto& entry : batch) {
        if (entry.isDirectory)
            continue;
        Item item;
        item.id = entry.id.string();
        item.target = folder / entry.path.view();
        item.fetchedTo = isRewritten(entry.path) ? folder / Uuid::random().text() : item.target;
        items.push_back(std::move(item));
    }
    return items;
}

std::vector<std::string> RcloneCommand::arguments(std::span<const Item> items) {
    std::vector<std::string> arguments(commonArguments.begin(), commonArguments.end());
    for (const auto& item : items) {
        arguments.push_back(item.id);
        arguments.push_back(item.fetchedTo.string());
    }
    return arguments;
}

std::map<std::string, std::string> RcloneCommand::environment(const OAuthClient& client,
                                                              const OAuthToken& token,
                                                              const DriveLocation& location) {
    std::map<std::string, std::string> variables{
        {"RCLONE_CONFIG_MARROW_TYPE", "drive"},
        {"RCLONE_CONFIG_MARROW_SCOPE", "drive.readonly"},
        {"RCLONE_CONFIG_MARROW_CLIENT_ID", client.client_id},
        {"RCLONE_CONFIG_MARROW_TOKEN", tokenText(token)},
    };
    if (client.client_secret)
        variables.emplace("RCLONE_CONFIG_MARROW_CLIENT_SECRET", *client.client_secret);
    if (location.sharedDriveID)
        variables.emplace("RCLONE_CONFIG_MARROW_TEAM_DRIVE", *location.sharedDriveID);
    return variables;
}

} // namespace marrowbox
