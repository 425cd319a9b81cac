import QtQuick
import Marrowbox.Appearance
import Marrowbox.SetupViews

// The places that can be opened next.
RowList {
    id: root

    required property DriveBrowser browser

    label: browser.isAtRoots ? qsTr("My Drive & shared drives") : qsTr("Folders in %1").arg(browser.placeName)
    model: browser.locations

    delegate: ListRow {
        required property int index
        required property string name
        required symbol

        width: ListView.view.width
        title: name
        opens: true
        onClicked: root.browser.open(index)
    }
}
