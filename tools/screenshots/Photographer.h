// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "harness/RunningProgram.h"

#include <memory>
#include <vector>

class SimulatedDevice;

/// Brings the program into each of its states and takes pictures of it, in both themes. Those of the
/// window's first size go to one folder, those of its smallest size to another.
class Photographer
{
public:
    Photographer(RunningProgram &program, QString folder, QString smallFolder);
    ~Photographer();

    /// Takes all pictures; false if a state could not be reached, which it says itself.
    bool takeAll();

private:
    struct AnnouncedDevice;
    /// How long a device may take to answer.
    static constexpr int answerMs = 5000;

    bool takeEmpty();
    bool takeScanning();
    bool takeDevices();
    bool takeSettings();
    bool takeSupport();
    bool takeUpdate();
    bool takeQuestions();
    bool takeProgress();
    // What opens over the settings: PhotographerViewers.cpp
    bool takeViewers();
    void takeRollback();
    void takeImages();
    void takeImageAnswers();
    void takeVideos();
    bool takeDialogInput();
    bool takeDialogSuccess();
    bool takeDialogTimeout();

    /// Where the pictures go: all of them, or only what helps to check the interface.
    enum class Use
    {
        Documentation,
        Checks
    };
    void take(const QString &name, Use use = Use::Documentation);
    /// Presses a button, within a part of the window if one is named.
    bool press(const QString &button, const QString &part = {});
    /// Waits until a part of the window is there and shown.
    bool awaitPart(const QString &name, int limitMs);
    void awaitValue(const QObject *part, const char *property, const QVariant &value);
    void closeViewers();
    /// Makes anew what opens over the settings, for it asks its device each time, and takes a picture of it:
    /// after all answers, or while a request waits for its one.
    QObject *takeOpened(const QString &loaderName, const QString &name, const QByteArray &heldKey = {});
    void openDialog();
    /// Types an address into the dialog's field and, if wanted, presses its button.
    void enterAddress(const QString &address, bool isAdded);
    bool awaitDialogText(const QString &text, int limitMs);

    /// The device whose settings are shown.
    SimulatedDevice &firstDevice();

    RunningProgram &m_program;
    QString m_folder;
    QString m_smallFolder;
    std::vector<std::unique_ptr<AnnouncedDevice>> m_devices;
    /// Whether each value that was awaited has come.
    bool m_isAllReached = true;
};
