#include "Sandbox/DriveItem.h"

namespace marrowbox::sandbox {

std::string_view nativeType(NativeKind kind) {
    switch (kind) {
    case NativeKind::document:
        return "application/vnd.google-apps.document";
    case NativeKind::spreadsheet:
        return "application/vnd.google-apps.spreadsheet";
    case NativeKind::presentation:
        return "application/vnd.google-apps.presentation";
    case NativeKind::drawing:
        return "application/vnd.google-apps.drawing";
    case NativeKind::form:
        return "application/vnd.google-apps.form";
    case NativeKind::site:
        return "application/vnd.google-apps.site";
    case NativeKind::shortcut:
        return "application/vnd.google-apps.shortcut";
    }
    return {};
}

} // namespace marrowbox::sandbox
