// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts

/// What the window's header shows between its tile and its last button while the settings are open: which
/// device they belong to, and the button of the software updater.
RowLayout {
    id: root
    objectName: "settingsHeader"

    required property var window
    required property var page

    spacing: 16

    ColumnLayout {
        Layout.fillWidth: true
        spacing: 4

        PlainText {
            objectName: "deviceTitle"
            Layout.fillWidth: true
            deviceText: root.window.selectedDeviceIndex !== -1 ? "Noctaris Tools - " + root.window.selectedDeviceHostname : "Noctaris Tools - No Device Selected"
            font.pixelSize: 20
            font.weight: Font.DemiBold
            color: root.window.textColor
        }

        RowLayout {
            visible: root.window.selectedDeviceIndex !== -1
            spacing: 6

            Fact {
                text: "Noctaris OS:"
            }

            Pill {
                id: versionBadge
                objectName: "versionBadge"
                deviceText: "v" + root.window.selectedDeviceVersion
                textColor: root.window.textColor
                color: Qt.rgba(255, 102, 0, badgeArea.containsMouse ? 0.35 : 0.2)
                implicitHeight: 20
                horizontalPadding: 10
                maximumWidth: 160
                Layout.fillWidth: true
                Layout.maximumWidth: implicitWidth
                Layout.minimumWidth: 52
                activeFocusOnTab: true
                Accessible.role: Accessible.Button
                Accessible.name: "Version " + root.window.selectedDeviceVersion + ", switch version"
                Accessible.onPressAction: root.page.openRollbackDialog()
                Keys.onSpacePressed: root.page.openRollbackDialog()
                Keys.onReturnPressed: root.page.openRollbackDialog()
                Keys.onEnterPressed: root.page.openRollbackDialog()

                FocusRing {
                    radius: 14
                    visible: versionBadge.activeFocus
                }

                MouseArea {
                    id: badgeArea
                    anchors.fill: parent
                    hoverEnabled: true
                    cursorShape: Qt.PointingHandCursor
                    onClicked: root.page.openRollbackDialog()
                }

                Tip {
                    objectName: "versionTip"
                    text: "Click to rollback to previous version"
                    visible: badgeArea.containsMouse
                }
            }

            Fact {
                Layout.leftMargin: 6
                text: "Channel: Stable"
            }

            Fact {
                Layout.leftMargin: 6
                text: "Model: "
            }

            Fact {
                objectName: "headerModel"
                Layout.fillWidth: true
                Layout.minimumWidth: 40
                Layout.maximumWidth: Math.ceil(implicitWidth)
                deviceText: root.window.selectedDeviceModel
                color: root.window.textColor
            }

            Fact {
                Layout.leftMargin: 6
                text: "IP: "
                visible: root.window.selectedDeviceIpAddress !== ""
            }

            Fact {
                objectName: "headerIpAddress"
                Layout.maximumWidth: 130
                text: root.window.selectedDeviceIpAddress
                color: root.window.textColor
                visible: root.window.selectedDeviceIpAddress !== ""
            }
        }
    }

    CustomButton {
        objectName: "updaterButton"
        textColor: "#1a1a1a"
        text: root.page.softwareUpdateCheckInProgress ? "⏳ Checking..." : "📱 Software Updater"
        enabled: !root.page.softwareUpdateCheckInProgress && !root.page.softwareUpdateInProgress && !root.page.networkResetInProgress && !root.page.lumarcResetInProgress && !root.page.factoryResetInProgress && !root.page.rebootInProgress && !root.page.shutdownInProgress
        onClicked: {
            if (!root.window.deviceDiscoveryObject || root.window.selectedDeviceIndex < 0)
                return
            // The page has the Escape key; a button that goes grey would keep it from there.
            root.page.takeFocus()
            root.page.softwareUpdateCheckInProgress = true
            root.window.deviceDiscoveryObject.checkForSoftwareUpdates(root.window.selectedDeviceIndex)
        }
    }

    component Fact: PlainText {
        font.pixelSize: 12
        color: root.window.secondaryTextColor
    }
}
