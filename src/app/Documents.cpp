// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "app/Documents.h"

#include "app/DocumentNetwork.h"
#include "app/FirstLetters.h"
#include "app/LateIcon.h"
#include "devices/DeviceDiscovery.h"
#include "devices/NoctarisDevice.h"
#include "images/ImageDownloader.h"
#include "theme/ThemeManager.h"

#include <QDebug>
#include <QGuiApplication>
#include <QIcon>
#include <QImageReader>
#include <QQmlApplicationEngine>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQuickStyle>
#include <QUrl>
#include <qqml.h>

using namespace Qt::StringLiterals;

namespace {
constexpr auto moduleUri = "NoctarisTools";
} // namespace

/// Has the linker keep the compiled documents, which nothing else refers to.
static void linkCompiledDocuments()
{
    Q_INIT_RESOURCE(qmlcache_noctaris_ui);
}

/// The second way in: the same document, asked for by its name in the module.
static void loadMainFromModule(QQmlApplicationEngine &engine)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    engine.loadFromModule(moduleUri, "Main");
#else
    engine.loadData("import NoctarisTools 1.0\nMain {}", QUrl(u"qrc:/qt/qml/NoctarisTools/"_s));
#endif
}

void documents::prepareApplication()
{
    firstLetters::prepare();
    QGuiApplication::setWindowIcon(QIcon(new LateIcon(u":/assets/logo.png"_s)));
    QGuiApplication::setApplicationName(u"Noctaris Discovery"_s);
    QGuiApplication::setApplicationVersion(QStringLiteral(NOCTARIS_VERSION));
    QGuiApplication::setOrganizationName(u"Noctaris"_s);
    QGuiApplication::setOrganizationDomain(QStringLiteral(NOCTARIS_ORGANIZATION_DOMAIN));
    QGuiApplication::setDesktopFileName(u"noctaris-tools"_s);
    QQuickStyle::setStyle(u"Basic"_s);
    // In MiB: a picture of sixty megapixels takes 229 while it is made smaller.
    constexpr int largestImage = 256;
    QImageReader::setAllocationLimit(largestImage);
}

void documents::registerTypes()
{
    linkCompiledDocuments();
    qmlRegisterType<DeviceDiscovery>(moduleUri, 1, 0, "DeviceDiscovery");
    qmlRegisterType<NoctarisDevice>(moduleUri, 1, 0, "NoctarisDevice");
    qmlRegisterType<ThemeManager>(moduleUri, 1, 0, "ThemeManager");
    qmlRegisterType<ImageDownloader>(moduleUri, 1, 0, "ImageDownloader");
    qmlRegisterModule(moduleUri, 1, 0);
}

void documents::publish(QQmlEngine &engine, DeviceDiscovery &deviceDiscovery, ThemeManager &themeManager)
{
    // It has no state, and outlives every engine.
    static DocumentNetwork network;
    engine.setNetworkAccessManagerFactory(&network);
    // Before Qt 6.5 an engine does not look there by itself.
    engine.addImportPath(u"qrc:/qt/qml"_s);
    QQmlContext *context = engine.rootContext();
    context->setContextProperty(u"deviceDiscovery"_s, &deviceDiscovery);
    context->setContextProperty(u"themeManager"_s, &themeManager);
    context->setContextProperty(u"appVersion"_s, QGuiApplication::applicationVersion());
}

QUrl documents::mainDocument()
{
    return {u"qrc:/qt/qml/NoctarisTools/qml/Main.qml"_s};
}

void documents::loadMain(QQmlApplicationEngine &engine, const QUrl &mainDocument)
{
    const QQmlComponent loadedAhead(&engine, mainDocument, QQmlComponent::Asynchronous);
    firstLetters::drawWhile(loadedAhead);
    engine.load(mainDocument);
    if (engine.rootObjects().isEmpty())
    {
        qDebug() << "Failed to load from resource, trying module import...";
        loadMainFromModule(engine);
    }
}
