// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "harness/RunningProgram.h"

#include <memory>
#include <vector>

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

    bool takeEmpty();
    bool takeScanning();
    bool takeDevices();
    bool takeDialogInput();
    bool takeDialogSuccess();
    bool takeDialogTimeout();

    void take(const QString &name);
    void openDialog();
    /// Types an address into the dialog's field and, if wanted, presses its button.
    void enterAddress(const QString &address, bool isAdded);
    bool awaitDialogText(const QString &text, int limitMs);

    RunningProgram &m_program;
    QString m_folder;
    QString m_smallFolder;
    std::vector<std::unique_ptr<AnnouncedDevice>> m_devices;
};
