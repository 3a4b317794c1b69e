// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts

/// The device's name, and how it is changed.
LabelledRow {
    id: root

    readonly property alias hostnameField: hostnameField

    label: "Host Name:"

    PageField {
        id: hostnameField
        objectName: "hostnameField"
        page: root.page
        description: "Host name"
        Layout.fillWidth: true
        Layout.minimumWidth: 120
        text: root.page.getHostnameText().substring(0, root.page.maxShownLength)
        enabled: root.page.hostnameEditing && !root.page.hostnameUpdateInProgress
        Keys.onReturnPressed: root.page.handleHostnameSave()
        Keys.onEnterPressed: root.page.handleHostnameSave()
        Keys.onEscapePressed: root.page.cancelHostnameEdit()
    }

    EditButton {
        objectName: "hostnameButton"
        isEditing: root.page.hostnameEditing
        isBusy: root.page.hostnameUpdateInProgress
        subject: "host name"
        onStarted: root.page.startHostnameEdit()
        onSaved: root.page.handleHostnameSave()
    }

    CancelEditButton {
        objectName: "hostnameCancelButton"
        subject: "host name"
        visible: root.page.hostnameEditing && !root.page.hostnameUpdateInProgress
        onClicked: root.page.cancelHostnameEdit()
    }
}
