#include "ParsedMail.h"

#include "Models/JSONFile.h"
#include "Support/ScratchFolder.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace marrowbox::test {

ParsedMail parseMail(std::string_view message) {
    const ScratchFolder folder;
    std::ofstream(folder / "mail.eml", std::ios::binary) << message;
    const std::string command = "/usr/bin/python3 " MARROWBOX_TEST_DATA "/parse_mail.py " +
                                (folder / "mail.eml").string() + " >" + (folder / "mail.json").string();
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("Python could not read the message.");
    return JSONFile::read<ParsedMail>(folder / "mail.json");
}

} // namespace marrowbox::test
