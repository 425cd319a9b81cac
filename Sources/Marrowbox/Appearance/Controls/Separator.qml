import QtQuick
import Marrowbox.Appearance

// A hairline between two parts of a page.
Rectangle {
    implicitHeight: Appearance.hairline
    implicitWidth: Appearance.hairline
    color: Appearance.border
}
