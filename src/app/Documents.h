// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

class DeviceDiscovery;
class QQmlApplicationEngine;
class QQmlEngine;
class QUrl;
class ThemeManager;

/// How the interface documents are brought up, for the program and for the tools around it.
namespace documents {
/// Gives the application object its icon, names and version, and the controls their plain style. Comes
/// before any document is loaded.
void prepareApplication();
/// Makes the program's classes known to the documents as module NoctarisTools 1.0.
void registerTypes();
/// Publishes the two long-lived controllers and the version to every document of an engine.
void publish(QQmlEngine &engine, DeviceDiscovery &deviceDiscovery, ThemeManager &themeManager);
/// Where the main document stands.
QUrl mainDocument();
/// Loads the main document, by its module if it cannot be had from where it stands.
void loadMain(QQmlApplicationEngine &engine, const QUrl &mainDocument);
} // namespace documents
