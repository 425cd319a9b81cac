#include "Models/JSONReader.h"

#include "Models/JSONHandler.h"
#include "Platform/Files.h"

#include <boost/json/basic_parser_impl.hpp>

namespace marrowbox {

namespace {

/// Small enough to stay in the processor's cache between the reading and the parsing.
constexpr std::size_t readPiece = 128 * 1024;

class Decoding {
  public:
    Decoding(JSONSlot slot, JSONSharing* sharing) : parser_(boost::json::parse_options(), slot, sharing) {}

    void feed(std::string_view piece) {
        boost::json::error_code failure;
        const std::size_t used = parser_.write_some(true, piece.data(), piece.size(), failure);
        if (!failure && used < piece.size())
            failure = boost::json::error::extra_data;
        require(failure, used);
        consumed_ += used;
    }

    void end() {
        boost::json::error_code failure;
        parser_.write_some(false, nullptr, 0, failure);
        require(failure, 0);
    }

  private:
    void require(const boost::json::error_code& failure, std::size_t used) const {
        if (failure)
            throw JSONDecodingError("The text is not valid JSON at byte " + std::to_string(consumed_ + used) +
                                    ": " + failure.message() + ".");
    }

    boost::json::basic_parser<JSONHandler> parser_;
    std::size_t consumed_ = 0;
};

} // namespace

void decodeJSONInto(JSONSlot slot, std::string_view text, JSONSharing* sharing) {
    Decoding decoding(slot, sharing);
    decoding.feed(text);
    decoding.end();
}

void decodeJSONInto(JSONSlot slot, const Descriptor& file, JSONSharing* sharing) {
    Decoding decoding(slot, sharing);
    std::vector<char> piece(readPiece);
    while (const std::size_t count = readSome(file, piece))
        decoding.feed({piece.data(), count});
    decoding.end();
}

} // namespace marrowbox
