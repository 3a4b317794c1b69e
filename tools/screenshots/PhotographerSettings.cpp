// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "screenshots/Photographer.h"

#include "measure/Measure.h"

#include <QQuickItem>
#include <QQuickWindow>

using namespace Qt::StringLiterals;

bool Photographer::press(const QString &button, const QString &part)
{
    const QObject *place = part.isEmpty() ? m_program.window() : m_program.part(part);
    auto *found = place ? place->findChild<QObject *>(button) : nullptr;
    return found && QMetaObject::invokeMethod(found, "clicked");
}

bool Photographer::awaitPart(const QString &name, int limitMs)
{
    return measure::waitUntil(
        [&] {
            const auto *part = m_program.part<QQuickItem>(name);
            return part && part->isVisible();
        },
        limitMs);
}

/// The settings of the first device, which offers an update.
bool Photographer::takeSettings()
{
    QQuickWindow *window = m_program.window();
    window->setProperty("selectedDeviceIndex", 0);
    window->setProperty("showSettings", true);
    const QObject *page = m_program.part(u"settingsPage"_s);
    const bool isFilled =
        measure::waitUntil([&] { return !page->property("stableVersion").toString().isEmpty(); }, answerMs);
    if (!isFilled || !awaitPart(u"hostnameField"_s, answerMs))
        return false;
    take(u"settings"_s);
    const bool isDone = takeSupport() && takeQuestions() && takeProgress() && takeUpdate() && takeViewers();
    window->setProperty("showSettings", false);
    window->setProperty("selectedDeviceIndex", -1);
    return isDone;
}

/// Remote support with its ID, and pictures that go to an external drive.
bool Photographer::takeSupport()
{
    QObject *page = m_program.part(u"settingsPage"_s);
    QObject *toggle = m_program.part(u"remoteSupportSwitch"_s);
    toggle->setProperty("checked", true);
    QMetaObject::invokeMethod(toggle, "toggled");
    QMetaObject::invokeMethod(page, "updatePicturesDirectoryMode", Q_ARG(bool, false));
    if (!awaitPart(u"remoteIdContainer"_s, answerMs))
        return false;
    QMetaObject::invokeMethod(page, "startHostnameEdit");
    take(u"settings-in-use"_s);
    QMetaObject::invokeMethod(page, "cancelHostnameEdit");
    QMetaObject::invokeMethod(page, "updatePicturesDirectoryMode", Q_ARG(bool, true));
    return true;
}

/// What is asked before something is done, and told afterwards.
bool Photographer::takeQuestions()
{
    QObject *page = m_program.part(u"settingsPage"_s);
    for (const QString &name :
         {u"networkResetConfirmDialog"_s, u"factoryResetConfirmDialog"_s, u"lumarcResetConfirmDialog"_s,
          u"rebootConfirmDialog"_s, u"shutdownConfirmDialog"_s, u"softwareUpdateConfirmDialog"_s,
          u"ethernetActivateConfirmDialog"_s, u"picturesDirectorySetDialog"_s})
    {
        QMetaObject::invokeMethod(page, "showOverlay", Q_ARG(QString, name));
        take(name, Use::Checks);
        if (!press(u"cancelButton"_s, name))
            return false;
    }
    QMetaObject::invokeMethod(page, "showOverlay", Q_ARG(QString, u"ethernetActivateSuccessDialog"_s));
    take(u"ethernetActivateSuccessDialog"_s, Use::Checks);
    press(u"okButton"_s, u"ethernetActivateSuccessDialog"_s);
    QMetaObject::invokeMethod(page, "showMessage", Q_ARG(bool, false),
                              Q_ARG(QString, u"Failed to update hostname for 10.77.0.2: "_s.repeated(20)));
    take(u"messageDialog"_s, Use::Checks);
    return press(u"okButton"_s, u"messageDialog"_s);
}

bool Photographer::takeProgress()
{
    QObject *page = m_program.part(u"settingsPage"_s);
    page->setProperty("softwareUpdateProgress", 42);
    page->setProperty("lumarcRegenerationProgress", 70);
    for (const char *flag : {"ethernetActivationInProgress", "ethernetDeactivationInProgress",
                             "softwareUpdateInProgress", "lumarcResetInProgress"})
    {
        page->setProperty(flag, true);
        take(QString::fromLatin1(flag), Use::Checks);
        page->setProperty(flag, false);
    }
    return true;
}

/// A delta update, from the offer to the restart that it ends in.
bool Photographer::takeUpdate()
{
    constexpr int downloadMs = 60000;
    if (!press(u"updaterButton"_s) || !awaitPart(u"deltaUpdateDialog"_s, answerMs))
        return false;
    take(u"update-offer"_s);
    if (!press(u"confirmButton"_s, u"deltaUpdateDialog"_s))
        return false;
    const QObject *page = m_program.part(u"settingsPage"_s);
    if (!measure::waitUntil([&] { return page->property("deltaUpdateProgress").toInt() > 0; }, answerMs))
        return false;
    take(u"update-progress"_s);
    if (!awaitPart(u"deltaRebootDialog"_s, downloadMs))
        return false;
    take(u"update-restart"_s);
    return press(u"cancelButton"_s, u"deltaRebootDialog"_s);
}
