// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "devices/DeviceDiscovery.h"
#include "theme/ThemeManager.h"

#include <QHash>
#include <QQmlApplicationEngine>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

class QQuickItem;
class QQuickWindow;

/// The program's parts, put together in the program's own order, for a tool that watches them at work.
/// Settings are kept in a folder of its own, so that a tool neither reads nor changes the user's.
class RunningProgram : public QObject
{
    Q_OBJECT
public:
    /// To be made right after the application object, which has to outlive it.
    RunningProgram();
    ~RunningProgram() override;

    /// Brings the window up; false if there is none. The first discovery run is the caller's to start,
    /// right afterwards.
    bool open();

    DeviceDiscovery &devices() { return *m_devices; }
    ThemeManager &theme() { return *m_theme; }
    QQuickWindow *window() const { return m_window; }
    /// A part of the window, by its object name; null if there is none.
    template <typename Part = QObject> Part *part(const QString &objectName) const
    {
        return windowObject()->findChild<Part *>(objectName);
    }

    /// When the first frame was drawn, by measure::nowMs(); 0 before.
    double firstFrameMs() const { return m_firstFrameMs; }
    /// When the first frame with at least so many rows was drawn, by measure::nowMs(); 0 before.
    double frameWithRowsMs(int count) const { return m_frameWithRowsMs.value(count); }

    /// The texts that a row of the table shows, from left to right; empty if the row is not in view.
    QStringList textsOfRow(int row) const;
    /// Draws the window as it stands into a picture file.
    bool savePicture(const QString &fileName) const;

private:
    QObject *windowObject() const;
    void onFrame();

    QTemporaryDir m_settingsFolder;
    std::unique_ptr<ThemeManager> m_theme;
    std::unique_ptr<DeviceDiscovery> m_devices;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
    QQuickWindow *m_window = nullptr;
    double m_firstFrameMs = 0;
    QHash<int, double> m_frameWithRowsMs;
};
