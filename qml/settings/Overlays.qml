// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Everything that lies over the page's content, by name. None of it takes the focus or blocks what is
/// beside it.
Item {
    id: root

    required property var page

    readonly property alias messageDialog: messageDialog
    readonly property alias ethernetActivateConfirmDialog: ethernetActivateConfirmDialog
    readonly property alias ethernetActivateSuccessDialog: ethernetActivateSuccessDialog
    readonly property alias networkResetConfirmDialog: networkResetConfirmDialog
    readonly property alias softwareUpdateConfirmDialog: softwareUpdateConfirmDialog
    readonly property alias rebootConfirmDialog: rebootConfirmDialog
    readonly property alias picturesDirectorySetDialog: picturesDirectorySetDialog
    readonly property alias deltaUpdateDialog: deltaUpdateDialog
    readonly property alias shutdownConfirmDialog: shutdownConfirmDialog
    readonly property alias lumarcResetConfirmDialog: lumarcResetConfirmDialog
    readonly property alias factoryResetConfirmDialog: factoryResetConfirmDialog
    readonly property alias deltaRebootDialog: deltaRebootDialog
    readonly property alias imagesViewerLoader: imagesViewerLoader
    readonly property alias videosViewerLoader: videosViewerLoader
    readonly property alias rollbackDialogLoader: rollbackDialogLoader
    /// The viewer that covers the page; null if there is none.
    readonly property var viewer: videosViewerLoader.item || imagesViewerLoader.item
    readonly property bool isRollbackOpen: !!rollbackDialogLoader.item

    MessageDialog {
        id: messageDialog
        page: root.page
    }

    // As high as the message, and after it: a viewer covers it.
    PageLoader {
        id: imagesViewerLoader
        objectName: "imagesViewerLoader"
        page: root.page
        z: 2000
        document: "../ImagesViewer.qml"
        properties: ({ imageDownloader: root.page.activeImageDownloader })
    }

    PageLoader {
        id: videosViewerLoader
        objectName: "videosViewerLoader"
        page: root.page
        z: 2000
        document: "../VideosViewer.qml"
    }

    EthernetActivateConfirm {
        id: ethernetActivateConfirmDialog
        page: root.page
    }

    EthernetActivateSuccess {
        id: ethernetActivateSuccessDialog
        page: root.page
    }

    NetworkResetConfirm {
        id: networkResetConfirmDialog
        page: root.page
    }

    SoftwareUpdateConfirm {
        id: softwareUpdateConfirmDialog
        page: root.page
    }

    RebootConfirm {
        id: rebootConfirmDialog
        page: root.page
    }

    PicturesDirectorySet {
        id: picturesDirectorySetDialog
        page: root.page
    }

    DeltaUpdateOffer {
        id: deltaUpdateDialog
        page: root.page
    }

    ShutdownConfirm {
        id: shutdownConfirmDialog
        page: root.page
    }

    LumarcResetConfirm {
        id: lumarcResetConfirmDialog
        page: root.page
    }

    FactoryResetConfirm {
        id: factoryResetConfirmDialog
        page: root.page
    }

    EthernetActivationProgress {
        page: root.page
    }

    EthernetDeactivationProgress {
        page: root.page
    }

    SoftwareUpdateProgress {
        page: root.page
    }

    DeltaProgress {
        page: root.page
    }

    LumarcProgress {
        page: root.page
    }

    DeltaReboot {
        id: deltaRebootDialog
        page: root.page
    }

    PageLoader {
        id: rollbackDialogLoader
        objectName: "rollbackDialogLoader"
        page: root.page
        z: 5000
        document: "../RollbackDialog.qml"
        onLoaded: {
            if (item)
                item.show() // qmllint disable
        }
    }
}
