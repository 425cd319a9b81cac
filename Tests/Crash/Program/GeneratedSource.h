#pragma once

#include "Models/SyncUnit.h"
#include "Repository/BackupSource.h"

#include <string>

namespace marrowbox::test {

/// A source whose files follow from a number, the generation 1 or 2, so that a program and the test that
/// starts it know the same files without a word between them. A generation has 40 files in folders, which is
/// more than one batch; the second one changes, moves, adds and removes some. Among them are an empty file,
/// two equal ones, and one of more than a mebibyte.
class GeneratedSource final : public BackupSource {
  public:
    explicit GeneratedSource(int generation) : generation_(generation) {}

    asio::awaitable<std::vector<SourceEntry>> inventory(std::stop_token stop) override;
    asio::awaitable<void> download(std::vector<SourceEntry> entries, fs::path folder,
                                   std::stop_token stop) override;

  private:
    int generation_;
};

struct GeneratedFile {
    std::string content;
    std::string md5 = {};    ///< Hexadecimal.
    std::string sha256 = {}; ///< Hexadecimal.
};

/// The items of a generation.
std::vector<SourceEntry> generatedEntries(int generation);

/// What a file of any generation holds.
const GeneratedFile& generatedFile(const SourceEntry& entry);

/// The unit that the program backs up.
SyncUnit generatedUnit();

} // namespace marrowbox::test
