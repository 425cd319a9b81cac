#pragma once

#include <QString>
#include <span>
#include <string>

namespace marrowbox {

/// A sentence of a screen in the words of this system. It is given as tr() gives it: in the words of a Mac,
/// which the table of wordings knows, or translated. A translation already speaks of the system that it was
/// made for, and stays as it is.
QString worded(const QString& sentence);

/// One of the texts of the core, which knows nothing of translations, in the user's language.
QString spoken(const std::string& coreText);
/// Those that spoken() can translate.
std::span<const char* const> coreTexts();

} // namespace marrowbox
