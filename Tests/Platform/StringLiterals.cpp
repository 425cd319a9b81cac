#include "StringLiterals.h"

#include <algorithm>
#include <cctype>

namespace marrowbox::test {

namespace {

bool isWordCharacter(char byte) {
    return std::isalnum(static_cast<unsigned char>(byte)) != 0 || byte == '_';
}

class Scanner {
  public:
    explicit Scanner(std::string_view source) : source_(source) {}

    std::vector<std::string> scan() {
        while (position_ < source_.size()) {
            if (!skipComment() && !readRawLiteral() && !readLiteral())
                passCharacter();
        }
        return std::move(literals_);
    }

  private:
    bool startsWith(std::string_view text) const { return source_.substr(position_).starts_with(text); }

    bool skipTo(std::string_view end) {
        const auto found = source_.find(end, position_);
        position_ = std::min(source_.size(), found == source_.npos ? found : found + end.size());
        return true;
    }

    bool skipComment() {
        if (startsWith("//"))
            return skipTo("\n");
        return startsWith("/*") && skipTo("*/");
    }

    bool readRawLiteral() {
        if (!startsWith("R\"") || followsWord())
            return false;
        const auto open = source_.find('(', position_);
        const std::string end = ")" + std::string(source_.substr(position_ + 2, open - position_ - 2)) + "\"";
        const auto close = std::min(source_.size(), source_.find(end, open));
        keep(std::string(source_.substr(open + 1, close - open - 1)));
        position_ = std::min(source_.size(), close + end.size());
        return true;
    }

    bool readLiteral() {
        const char quote = source_[position_];
        if (quote != '"' && (quote != '\'' || followsWord())) // 1'000 holds no text
            return false;
        std::string text;
        for (++position_; position_ < source_.size() && source_[position_] != quote; ++position_) {
            if (source_[position_] == '\\')
                ++position_;
            text += source_[std::min(position_, source_.size() - 1)];
        }
        ++position_;
        keep(std::move(text));
        return true;
    }

    bool followsWord() const { return position_ > 0 && isWordCharacter(source_[position_ - 1]); }

    void keep(std::string text) {
        if (continues_)
            literals_.back() += text;
        else
            literals_.push_back(std::move(text));
        continues_ = true;
    }

    void passCharacter() {
        continues_ = continues_ && std::isspace(static_cast<unsigned char>(source_[position_])) != 0;
        ++position_;
    }

    std::string_view source_;
    std::size_t position_ = 0;
    std::vector<std::string> literals_;
    bool continues_ = false;
};

} // namespace

std::vector<std::string> stringLiterals(std::string_view source) {
    return Scanner(source).scan();
}

} // namespace marrowbox::test
