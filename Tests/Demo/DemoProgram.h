#pragma once

#include "Platform/Descriptor.h"
#include "Support/ScratchFolder.h"

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace marrowbox::test {

namespace fs = std::filesystem;

/// The demonstration in a session of its own, as a terminal starts it: its tools are in its process group.
class DemoProgram {
  public:
    /// Variables beside those of the test; those that name a display are left out unless given here.
    explicit DemoProgram(std::map<std::string, std::string> variables = {});
    DemoProgram(const DemoProgram&) = delete;
    DemoProgram& operator=(const DemoProgram&) = delete;
    ~DemoProgram();

    fs::path folder() const { return fs::canonical(scratch_.path()) / "the demo's, größer"; }

    /// Reads on until these words have been written.
    void awaitWords(std::string_view words);
    /// What Ctrl-C at a terminal does.
    void interrupt() const;
    void terminate() const;
    /// Nobody reads what it writes any more.
    void stopReading() { output_.close(); }
    /// Its exit status, 128 and more for a signal.
    int status();
    const std::string& written() const { return written_; }

    /// Fails the test when a mount or a process of the program is left.
    void expectNothingRunning() const;
    /// And when a file is.
    void expectNothingLeft() const;

  private:
    [[noreturn]] void become(const std::map<std::string, std::string>& variables) const;
    bool readMore();

    ScratchFolder scratch_;
    fs::path temporary_ = scratch_ / "temporary";
    Descriptor output_;
    pid_t process_ = -1;
    std::string written_;
};

} // namespace marrowbox::test
