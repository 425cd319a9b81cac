#include "Sandbox/AnswerBody.h"

#include <algorithm>

namespace marrowbox::sandbox {

namespace {

/// Brings the bytes of a range into memory, where a fault can change them.
void holdWhole(Answer& answer) {
    if (answer.media)
        answer.body = bodyPart(answer, 0, answer.media->length);
    answer.media.reset();
}

void shorten(Answer& answer, std::int64_t size) {
    if (answer.media)
        answer.media->length = std::min(answer.media->length, size);
    else
        answer.body.resize(std::min(answer.body.size(), static_cast<std::size_t>(size)));
}

void flip(Answer& answer, std::int64_t place) {
    holdWhole(answer);
    const auto index = static_cast<std::size_t>(place);
    if (index < answer.body.size())
        answer.body[index] = static_cast<char>(~answer.body[index]);
}

} // namespace

void applyEffects(const FaultEffects& effects, Answer& answer) {
    if (effects.body) {
        answer.media.reset();
        answer.body = *effects.body;
    }
    if (!effects.bodyEdits.empty())
        holdWhole(answer);
    for (const auto& edit : effects.bodyEdits)
        answer.body = edit(std::move(answer.body));
    if (effects.flippedByte)
        flip(answer, *effects.flippedByte);
    if (effects.shortenedTo)
        shorten(answer, *effects.shortenedTo);
    answer.headers.insert(answer.headers.end(), effects.headers.begin(), effects.headers.end());
}

std::string answerHead(const Answer& answer, std::optional<std::int64_t> length, bool isKeptAlive) {
    std::string head = "HTTP/1.1 " + std::to_string(answer.status) + " ";
    head += reasonPhrase(answer.status);
    head += "\r\n";
    for (const auto& [name, value] : answer.headers)
        head += name + ": " + value + "\r\n";
    head += length ? "Content-Length: " + std::to_string(*length) + "\r\n" : "Transfer-Encoding: chunked\r\n";
    if (!isKeptAlive)
        head += "Connection: close\r\n";
    return head + "\r\n";
}

std::string bodyPart(const Answer& answer, std::int64_t offset, std::int64_t count) {
    if (!answer.media)
        return answer.body.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(count));
    std::string part(static_cast<std::size_t>(count), '\0');
    answer.media->content.read(answer.media->offset + offset, part);
    return part;
}

} // namespace marrowbox::sandbox
