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
    qml/components/DeviceSummary.qml
    qml/components/EmptyState.qml
    qml/components/Pill.qml
    qml/components/PlainText.qml
    qml/components/SettingsHeader.qml
)
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
        qml/SettingsPage.qml
        qml/components/DeviceRow.qml
        qml/components/StatusIndicator.qml
        qml/components/CustomButton.qml
        ${qml_inner_parts}
)
target_sources(noctaris_ui PRIVATE src/app/Documents.cpp src/app/Documents.h)
# For the one source written by hand: what the documents are compiled into is not ours to tidy.
set_source_files_properties(src/app/Documents.cpp PROPERTIES
    COMPILE_OPTIONS "$<TARGET_PROPERTY:noctaris_warnings,INTERFACE_COMPILE_OPTIONS>"
    COMPILE_DEFINITIONS "$<TARGET_PROPERTY:noctaris_warnings,INTERFACE_COMPILE_DEFINITIONS>;NOCTARIS_VERSION=\"${PROJECT_VERSION}\";NOCTARIS_ORGANIZATION_DOMAIN=\"${NOCTARIS_ORGANIZATION_DOMAIN}\"")
target_link_libraries(noctaris_ui
    PUBLIC noctaris_core Qt6::Quick
    PRIVATE Qt6::QuickControls2)
