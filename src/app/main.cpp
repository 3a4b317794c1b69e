// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "app/Documents.h"
#include "app/MessageHandler.h"
#include "app/OpenFileLimit.h"
#include "devices/DeviceDiscovery.h"
#include "mdns/qMDNS.h"
#include "theme/ThemeManager.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QUrl>

using namespace Qt::StringLiterals;

/// Whether the command line asks for the debug lines. Looks no further than the first such option, and
/// leaves everything else alone.
static bool asksForVerboseLogging(int argc, char *argv[])
{
    for (int i = 1; i < argc; ++i)
    {
        const QString argument = QString::fromUtf8(argv[i]);
        if (argument == "--verbose"_L1 || argument == "-v"_L1)
            return true;
    }
    return false;
}

int main(int argc, char *argv[])
{
    if (asksForVerboseLogging(argc, argv))
    {
        qMDNS::setVerboseLogging(true);
        DeviceDiscovery::setVerboseLogging(true);
    }
    qInstallMessageHandler(writeLogLine);
    raiseOpenFileLimit();

    QGuiApplication application(argc, argv);
    documents::prepareApplication();
    documents::registerTypes();

    ThemeManager themeManager;
    DeviceDiscovery deviceDiscovery;
    QQmlApplicationEngine engine;
    documents::publish(engine, deviceDiscovery, themeManager);

    const QUrl mainDocument = documents::mainDocument();
    QObject::connect(
        &engine, &QQmlApplicationEngine::objectCreated, &application,
        [mainDocument](const QObject *object, const QUrl &url) {
            if (!object && url == mainDocument)
                QCoreApplication::exit(-1);
        },
        Qt::QueuedConnection);
    documents::loadMain(engine, mainDocument);
    // Also without a window: what went wrong stands on the log, next to what is out there.
    deviceDiscovery.startDiscovery();
    return QGuiApplication::exec();
}
