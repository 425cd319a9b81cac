import QtQuick
import Marrowbox.Appearance

// The small line above a title. Its text is written in capitals where it stands.
Words {
    font: Appearance.eyebrow
    color: Appearance.muted
}
