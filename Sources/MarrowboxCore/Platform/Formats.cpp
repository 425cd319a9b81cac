#include "Platform/Formats.h"

#include "Platform/HostTimeZone.h"
#include "Platform/UserLocale.h"

#include <iterator>
#include <mutex>
#include <stdexcept>
#include <unicode/datefmt.h>
#include <unicode/measunit.h>
#include <unicode/numberformatter.h>
#include <vector>

namespace marrowbox {

namespace {

void requireFormat(UErrorCode status) {
    if (U_FAILURE(status))
        throw std::runtime_error(std::string("Formatting support failed: ") + u_errorName(status));
}

std::string utf8(const icu::UnicodeString& text) {
    std::string bytes;
    text.toUTF8String(bytes);
    return bytes;
}

/// The fields to show as a Unicode skeleton; their order and separators are the locale's.
std::unique_ptr<icu::DateFormat> dateFormat(const char* skeleton, const icu::Locale& locale,
                                            const icu::TimeZone& zone) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::DateFormat> format(
        icu::DateFormat::createInstanceForSkeleton(icu::UnicodeString(skeleton), locale, status));
    requireFormat(status);
    format->setTimeZone(zone);
    return format;
}

std::unique_ptr<icu::TimeZone> namedZone(const std::string& name) {
    std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name)));
    if (*zone == icu::TimeZone::getUnknown())
        throw std::invalid_argument("The time zone is unknown.");
    return zone;
}

std::string formatted(const icu::DateFormat& format, Date date) {
    icu::UnicodeString text;
    format.format((date.secondsSinceReference + referenceDateSince1970) * 1000, text);
    // The narrow blank that some locales set before AM and PM is next to nothing in the fonts of most mails.
    constexpr char16_t narrowNoBreakSpace = 0x202F;
    constexpr char16_t noBreakSpace = 0x00A0;
    return utf8(
        text.findAndReplace(icu::UnicodeString(narrowNoBreakSpace), icu::UnicodeString(noBreakSpace)));
}

/// How sizes are written in one unit. Setting a formatter up takes a hundred times as long as a number does.
struct SizeFormat {
    icu::number::LocalizedNumberFormatter format;
    std::uint64_t tenths; ///< Ten to the power of the digits that are worth reading of its fractions.
};

/// From the smallest unit, each a thousand of the one before.
std::vector<SizeFormat> sizeFormats(const icu::Locale& locale) {
    using icu::MeasureUnit;
    const auto in = [&](const MeasureUnit& unit, UNumberUnitWidth width, int digits) {
        return icu::number::NumberFormatter::withLocale(locale)
            .unit(unit)
            .unitWidth(width)
            .precision(icu::number::Precision::maxFraction(digits))
            .roundingMode(UNUM_ROUND_HALFUP);
    };
    return {// Symbols, except that "byte" has a plural only when written out.
            {in(MeasureUnit::getByte(), UNUM_UNIT_WIDTH_FULL_NAME, 0), 1},
            {in(MeasureUnit::getKilobyte(), UNUM_UNIT_WIDTH_SHORT, 0), 1},
            {in(MeasureUnit::getMegabyte(), UNUM_UNIT_WIDTH_SHORT, 1), 10},
            {in(MeasureUnit::getGigabyte(), UNUM_UNIT_WIDTH_SHORT, 2), 100},
            {in(MeasureUnit::getTerabyte(), UNUM_UNIT_WIDTH_SHORT, 2), 100},
            {in(MeasureUnit::getPetabyte(), UNUM_UNIT_WIDTH_SHORT, 2), 100}};
}

std::uint64_t magnitude(std::int64_t number) {
    const auto bits = static_cast<std::uint64_t>(number);
    return number < 0 ? 0 - bits : bits;
}

} // namespace

struct Formats::Implementation {
    /// A date format prepares itself further while it is used.
    mutable std::mutex mutex;
    std::unique_ptr<icu::DateFormat> dateAndTime;
    std::unique_ptr<icu::DateFormat> time;
    std::vector<SizeFormat> sizes;

    Implementation(const icu::TimeZone& zone, const icu::Locale& locale)
        : dateAndTime(dateFormat("yMMMdjmm", locale, zone)), time(dateFormat("jmm", locale, zone)),
          sizes(sizeFormats(locale)) {}
    Implementation(const icu::TimeZone& zone, const std::string& locale)
        : Implementation(zone, icu::Locale::createFromName(locale.c_str())) {}
};

Formats::Formats(std::shared_ptr<const Implementation> implementation)
    : implementation_(std::move(implementation)) {
}

Formats::Formats(const std::string& timeZone, const std::string& locale)
    : implementation_(std::make_shared<const Implementation>(*namedZone(timeZone), locale)) {
}

Formats Formats::current() {
    return Formats(std::make_shared<const Implementation>(*hostTimeZone(), userLocale()));
}

std::string Formats::dateAndTime(Date date) const {
    const std::lock_guard lock(implementation_->mutex);
    return formatted(*implementation_->dateAndTime, date);
}

std::string Formats::time(Date date) const {
    const std::lock_guard lock(implementation_->mutex);
    return formatted(*implementation_->time, date);
}

std::string Formats::byteCount(std::int64_t bytes) const {
    const std::uint64_t size = magnitude(bytes);
    auto chosen = implementation_->sizes.begin();
    std::uint64_t scale = 1;
    // The next unit begins where rounding would show a thousand of this one.
    while (std::next(chosen) != implementation_->sizes.end() &&
           size >= 1000 * scale - scale / (2 * chosen->tenths)) {
        scale *= 1000;
        ++chosen;
    }
    UErrorCode status = U_ZERO_ERROR;
    const auto number = chosen->format.formatDouble(double(bytes) / double(scale), status);
    const icu::UnicodeString text = number.toString(status);
    requireFormat(status);
    return utf8(text);
}

} // namespace marrowbox
