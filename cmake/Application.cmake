# SPDX-FileCopyrightText: The NoctarisTools developers
# SPDX-License-Identifier: MIT
# The program itself, and what an installation consists of.
qt_add_executable(noctaris-tools src/app/main.cpp)
target_link_libraries(noctaris-tools PRIVATE noctaris_core noctaris_ui noctaris_warnings)
set_target_properties(noctaris-tools PROPERTIES
    QT_QML_MODULE_NO_IMPORT_SCAN TRUE
    RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
qt_add_resources(noctaris-tools application_icon PREFIX / FILES assets/logo.png)

install(TARGETS noctaris-tools)
install(FILES assets/noctaris-tools.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES assets/logo.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
    RENAME noctaris-tools.svg)
foreach(size 16 32 48 64 128 256)
    install(FILES assets/logo-${size}.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps RENAME noctaris-tools.png)
endforeach()
