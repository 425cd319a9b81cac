#include "Models/SourceEntry.h"

#include <array>
#include <charconv>

namespace marrowbox {

namespace {

constexpr std::string_view nativeTypePrefix = "application/vnd.google-apps.";

} // namespace

std::string SourceEntry::fingerprint() const {
    std::string text;
    appendFingerprint(text);
    return text;
}

void SourceEntry::appendFingerprint(std::string& to) const {
    for (const std::string_view piece : {id.view(), version.view(), mimeType.view()}) {
        to += piece;
        to += '|';
    }
    std::array<char, 20> digits{};
    const auto end = std::to_chars(digits.begin(), digits.end(), size).ptr;
    to.append(digits.begin(), end);
    to += '|';
    if (md5)
        to += md5->view();
}

std::size_t SourceEntry::fingerprintHash() const {
    thread_local std::string text;
    text.clear();
    appendFingerprint(text);
    return SharedTextHash()(text);
}

bool SourceEntry::hasFingerprintOf(const SourceEntry& other) const {
    if (id == other.id && version == other.version && mimeType == other.mimeType && size == other.size &&
        md5 == other.md5)
        return true;
    // A field that holds the separator can still make the texts equal.
    return fingerprint() == other.fingerprint();
}

bool SourceEntry::isExport() const {
    return !isDirectory && mimeType.view().starts_with(nativeTypePrefix);
}

} // namespace marrowbox

std::size_t
std::hash<marrowbox::SourceEntry>::operator()(const marrowbox::SourceEntry& entry) const noexcept {
    return marrowbox::SharedTextHash()(entry.path.view()) ^ entry.fingerprintHash();
}
