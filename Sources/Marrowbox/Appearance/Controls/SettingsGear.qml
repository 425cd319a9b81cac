import QtQuick
import Marrowbox.Appearance

// Leads to the settings of a backup.
IconButton {
    symbol: "gearshape"
    symbolSide: Appearance.mediumIcon
    help: qsTr("Backup settings")
}
