import QtQuick
import QtQuick.Layouts
import Marrowbox.Appearance

Page {
    title: "Question"

    Question {
        visible: true
        title: "Remove “Family pictures”?"
        message: "This removes the backup and its schedule from Marrowbox. Files it has already saved stay on the destination, and nothing is changed in Google Drive."
        yesText: "Remove backup"
        destructive: true
    }

    Item { Layout.fillHeight: true }
}
