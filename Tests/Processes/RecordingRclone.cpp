#include "RecordingRclone.h"

#include "Platform/Files.h"

#include <fcntl.h>

namespace marrowbox::test {

namespace {

std::vector<std::string> pieces(const std::string& terminated) {
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    for (auto end = terminated.find('\0'); end != std::string::npos; end = terminated.find('\0', begin)) {
        pieces.push_back(terminated.substr(begin, end - begin));
        begin = end + 1;
    }
    return pieces;
}

std::map<std::string, std::string> variables(const std::string& terminated) {
    std::map<std::string, std::string> variables;
    for (const auto& text : pieces(terminated)) {
        const auto equals = text.find('=');
        variables.emplace(text.substr(0, equals), text.substr(equals + 1));
    }
    return variables;
}

} // namespace

RecordingRclone::RecordingRclone(const fs::path& folder, const std::string& script)
    : records_(folder / "calls"), executable_(folder / "rclone") {
    makeDirectory(records_, 0700);
    const std::string text = "#!/bin/sh\n"
                             "records='" +
                             records_.string() +
                             "'\n"
                             "call=1; while [ -e \"$records/$call\" ]; do call=$((call+1)); done\n"
                             "mkdir \"$records/$call\"\n"
                             "printf '%s\\0' \"$@\" >\"$records/$call/arguments\"\n"
                             "cat /proc/$$/environ >\"$records/$call/environment\"\n"
                             "shift 20\n"
                             "while [ $# -gt 0 ]; do printf 'bytes of %s' \"$1\" >\"$2\"; shift 2; done\n" +
                             script + "\n";
    writeAll(openFile(executable_, O_WRONLY | O_CREAT | O_EXCL, 0700), text);
}

std::vector<RecordingRclone::Call> RecordingRclone::calls() const {
    std::vector<Call> calls;
    for (int number = 1; fs::exists(records_ / std::to_string(number)); ++number) {
        const auto record = records_ / std::to_string(number);
        calls.push_back(
            {pieces(readFile(record / "arguments")), variables(readFile(record / "environment"))});
    }
    return calls;
}

} // namespace marrowbox::test
