#include "Sandbox/FileQuery.h"

#include <vector>

namespace marrowbox::sandbox {

namespace {

struct Token {
    enum Kind { word, text, sign } kind;
    std::string value;
};

/// Words, quoted texts and the signs = and !=; parentheses around conjunctions change nothing and are
/// dropped.
std::optional<std::vector<Token>> tokens(std::string_view text) {
    std::vector<Token> found;
    std::size_t place = 0;
    while (place < text.size()) {
        const char first = text[place];
        if (first == ' ' || first == '(' || first == ')') {
            ++place;
        } else if (first == '\'') {
            std::string value;
            for (++place; place < text.size() && text[place] != '\''; ++place) {
                if (text[place] == '\\' && place + 1 < text.size())
                    ++place;
                value += text[place];
            }
            if (place++ >= text.size())
                return std::nullopt;
            found.push_back({Token::text, std::move(value)});
        } else if (first == '=' || first == '!') {
            const std::size_t length = first == '!' ? 2 : 1;
            found.push_back({Token::sign, std::string(text.substr(place, length))});
            place += length;
        } else {
            const std::size_t end = std::min(text.find_first_of(" ()='!", place), text.size());
            found.push_back({Token::word, std::string(text.substr(place, end - place))});
            place = end;
        }
    }
    return found;
}

bool readClause(FileQuery& query, const Token& left, const Token& sign, const Token& right) {
    if (left.kind == Token::text && sign.value == "in" && right.value == "parents") {
        query.parent = left.value;
        return true;
    }
    const bool isEqual = sign.value == "=";
    if (left.value == "trashed" && isEqual && (right.value == "true" || right.value == "false")) {
        query.trashed = right.value == "true";
        return true;
    }
    if (right.kind != Token::text)
        return false;
    if (left.value == "name" && isEqual)
        query.name = right.value;
    else if (left.value == "mimeType" && isEqual)
        query.mimeType = right.value;
    else if (left.value == "mimeType" && sign.value == "!=")
        query.otherMimeType = right.value;
    else
        return false;
    return true;
}

} // namespace

bool FileQuery::matches(const DriveItem& item) const {
    return (!trashed || *trashed == item.trashed) && (!mimeType || *mimeType == item.mimeType) &&
           (!otherMimeType || *otherMimeType != item.mimeType) && (!name || *name == item.name);
}

std::optional<FileQuery> parseFileQuery(std::string_view text) {
    const auto found = tokens(text);
    if (!found || found->size() % 4 != 3)
        return std::nullopt;
    FileQuery query;
    for (std::size_t start = 0; start < found->size(); start += 4) {
        if (start > 0 && (*found)[start - 1].value != "and")
            return std::nullopt;
        if (!readClause(query, (*found)[start], (*found)[start + 1], (*found)[start + 2]))
            return std::nullopt;
    }
    if (query.parent.empty())
        return std::nullopt;
    return query;
}

} // namespace marrowbox::sandbox
