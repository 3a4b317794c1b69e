# SPDX-FileCopyrightText: The NoctarisTools developers
# SPDX-License-Identifier: MIT
# The documents, as QML module NoctarisTools 1.0 in a library that the application, the tools and the
# interface tests share. Included by the top folder: resource paths follow the path from here.
set(qml_extra_arguments)
if(Qt6_VERSION VERSION_GREATER_EQUAL 6.8)
    qt_policy(SET QTP0001 NEW)
    qt_policy(SET QTP0004 NEW)
    set(qml_extra_arguments NO_GENERATE_EXTRA_QMLDIRS)
endif()

# Parts of the documents that are no names of the module: reached by a relative import alone.
set(qml_inner_parts
    qml/components/EmptyState.qml
    qml/components/FocusRing.qml
    qml/components/Pill.qml
    qml/components/PlainText.qml
    qml/components/SettingsHeader.qml
    qml/components/Tip.qml
    qml/settings/AddressField.qml
    qml/settings/BusyOverlay.qml
    qml/settings/CancelEditButton.qml
    qml/settings/Card.qml
    qml/settings/CardHeading.qml
    qml/settings/Cards.qml
    qml/settings/ConfirmOverlay.qml
    qml/settings/DeltaProgress.qml
    qml/settings/DeltaReboot.qml
    qml/settings/DeltaUpdateOffer.qml
    qml/settings/DeviceInformationCard.qml
    qml/settings/EditButton.qml
    qml/settings/EthernetActivateConfirm.qml
    qml/settings/EthernetActivateSuccess.qml
    qml/settings/EthernetActivationProgress.qml
    qml/settings/EthernetDeactivationProgress.qml
    qml/settings/EthernetRow.qml
    qml/settings/FactoryResetConfirm.qml
    qml/settings/FillBar.qml
    qml/settings/HostnameRow.qml
    qml/settings/HotspotRow.qml
    qml/settings/LabelledRow.qml
    qml/settings/LumarcProgress.qml
    qml/settings/LumarcResetConfirm.qml
    qml/settings/MessageDialog.qml
    qml/settings/NetworkResetConfirm.qml
    qml/settings/OverlayText.qml
    qml/settings/Overlays.qml
    qml/settings/PageButton.qml
    qml/settings/PageComboBox.qml
    qml/settings/PageField.qml
    qml/settings/PageFooter.qml
    qml/settings/PageLoader.qml
    qml/settings/PageOverlay.qml
    qml/settings/PageRadioButton.qml
    qml/settings/PageState.qml
    qml/settings/PageSwitch.qml
    qml/settings/PageTimers.qml
    qml/settings/PicturesDirectoryRow.qml
    qml/settings/PicturesDirectorySet.qml
    qml/settings/ProgressOverlay.qml
    qml/settings/RebootConfirm.qml
    qml/settings/ReleaseTypePart.qml
    qml/settings/RemoteIdContainer.qml
    qml/settings/RemoteSupportPart.qml
    qml/settings/ResetCard.qml
    qml/settings/ShutdownConfirm.qml
    qml/settings/SmallBusyIndicator.qml
    qml/settings/SoftwareUpdateConfirm.qml
    qml/settings/SoftwareUpdateProgress.qml
    qml/settings/StatusLamp.qml
    qml/settings/WebInterfacesCard.qml
    qml/settings/WifiRow.qml
    qml/settings/contrast.js
    qml/settings/stages.js
    qml/viewers/ChangeList.qml
    qml/viewers/CheckMark.qml
    qml/viewers/DeviceApi.qml
    qml/viewers/DialogState.qml
    qml/viewers/DirectoryRow.qml
    qml/viewers/DownloadFolderDialog.qml
    qml/viewers/FloatingNotification.qml
    qml/viewers/FullImageViewer.qml
    qml/viewers/ImageInformation.qml
    qml/viewers/ImageTools.qml
    qml/viewers/LoadingNote.qml
    qml/viewers/NetworkPicture.qml
    qml/viewers/ProgressStrip.qml
    qml/viewers/ReleaseNotes.qml
    qml/viewers/RollbackFooter.qml
    qml/viewers/RollbackHeader.qml
    qml/viewers/SaveToRow.qml
    qml/viewers/StorageIndicator.qml
    qml/viewers/ThumbnailCell.qml
    qml/viewers/ThumbnailGrid.qml
    qml/viewers/VersionPills.qml
    qml/viewers/VideoList.qml
    qml/viewers/ViewerButton.qml
    qml/viewers/ViewerCard.qml
    qml/viewers/ViewerFooter.qml
    qml/viewers/ViewerHeader.qml
    qml/viewers/ViewerPage.qml
    qml/viewers/pictures.js
    qml/viewers/texts.js
    qml/viewers/versions.js
)
configure_file(qml/settings/maker.js.in ${PROJECT_BINARY_DIR}/maker.js @ONLY)
set_source_files_properties(${PROJECT_BINARY_DIR}/maker.js PROPERTIES QT_RESOURCE_ALIAS qml/settings/maker.js)
list(APPEND qml_inner_parts ${PROJECT_BINARY_DIR}/maker.js)
set_source_files_properties(${qml_inner_parts} PROPERTIES QT_QML_SKIP_QMLDIR_ENTRY TRUE)

qt_add_library(noctaris_ui STATIC)
qt_add_qml_module(noctaris_ui
    URI NoctarisTools
    VERSION 1.0
    RESOURCE_PREFIX /qt/qml
    NO_PLUGIN
    NO_IMPORT_SCAN
    OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/modules/NoctarisTools
    ${qml_extra_arguments}
    QML_FILES
        qml/Main.qml
        qml/DeviceTable.qml
        qml/AddDeviceDialog.qml
        qml/RollbackDialog.qml
        qml/SettingsPage.qml
        qml/ImagesViewer.qml
        qml/VideosViewer.qml
        qml/components/DeviceRow.qml
        qml/components/StatusIndicator.qml
        qml/components/CustomButton.qml
        ${qml_inner_parts}
)
target_sources(noctaris_ui PRIVATE
    src/app/DocumentNetwork.cpp src/app/DocumentNetwork.h src/app/Documents.cpp src/app/Documents.h
    src/app/FirstLetters.cpp src/app/FirstLetters.h src/app/LateIcon.cpp src/app/LateIcon.h)
# For the sources written by hand: what the documents are compiled into is not ours to tidy.
set_source_files_properties(src/app/DocumentNetwork.cpp src/app/Documents.cpp src/app/FirstLetters.cpp
    src/app/LateIcon.cpp PROPERTIES
    COMPILE_OPTIONS "$<TARGET_PROPERTY:noctaris_warnings,INTERFACE_COMPILE_OPTIONS>"
    COMPILE_DEFINITIONS "$<TARGET_PROPERTY:noctaris_warnings,INTERFACE_COMPILE_DEFINITIONS>;NOCTARIS_VERSION=\"${PROJECT_VERSION}\";NOCTARIS_ORGANIZATION_DOMAIN=\"${NOCTARIS_ORGANIZATION_DOMAIN}\"")
target_link_libraries(noctaris_ui
    PUBLIC noctaris_core Qt6::Quick
    PRIVATE Qt6::QuickControls2)
