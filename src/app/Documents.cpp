// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "app/Documents.h"

#include "app/DocumentNetwork.h"
#include "app/LateIcon.h"
#include "devices/DeviceDiscovery.h"
#include "devices/NoctarisDevice.h"
#include "images/ImageDownloader.h"
#include "theme/ThemeManager.h"

#include <QDebug>
#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QQmlApplicationEngine>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQuickStyle>
#include <QThreadPool>
#include <QUrl>
#include <qqml.h>

#include <chrono>
#include <semaphore>

using namespace Qt::StringLiterals;

namespace {
constexpr auto moduleUri = "NoctarisTools";
} // namespace

/// Has the linker keep the compiled documents, which nothing else refers to.
static void linkCompiledDocuments()
{
    Q_INIT_RESOURCE(qmlcache_noctaris_ui);
}

/// Has the system's fonts listed while the documents are being loaded: the first text of the window would
/// otherwise wait for it.
static std::binary_semaphore s_areFontsListed(0);

static void listFontsInBackground()
{
    QThreadPool::globalInstance()->start([] {
        QFontDatabase::families();
        s_areFontsListed.release();
    });
}

/// Lets the engine's thread go on, which asks this one about each plugin. Nothing else is served yet.
static void serveEngine()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::User);
}

/// Draws once, where nobody sees it, the letters of the window's first frame, word by word: making them takes
/// long, and this thread has little else to do while the engine's own loads a document.
static void makeLetters(const QQmlComponent &document)
{
    struct Face
    {
        int pixelSize;
        QFont::Weight weight;
        QString letters;
    };
    static const Face faces[] = {
        {14, QFont::Normal, u"Noctaris devices found, searching 0123456789.v"_s},
        {14, QFont::DemiBold, u"🔄 Auto ➕ Add Manually Rescan Network Refresh Info Remove Selected"_s},
        {12, QFont::DemiBold, u"STATUS IP ADDRESS HOSTNAME VERSION MODEL ACTIONS 0 devices found"_s},
        {20, QFont::DemiBold, u"🔭 Noctaris Tools"_s},
    };
    QImage sheet(200, 30, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&sheet);
    QFont font = QGuiApplication::font();
    for (const Face &face : faces)
    {
        font.setPixelSize(face.pixelSize);
        font.setWeight(face.weight);
        painter.setFont(font);
        for (const QString &word : face.letters.split(u' '))
        {
            // Any word would wait for the list of fonts, and the engine's thread for this one.
            bool areFontsListed = s_areFontsListed.try_acquire();
            while (!areFontsListed && document.isLoading())
            {
                serveEngine();
                areFontsListed = s_areFontsListed.try_acquire_for(std::chrono::microseconds(50));
            }
            if (!areFontsListed)
                return;
            s_areFontsListed.release();
            painter.drawText(0, 24, word);
            serveEngine();
        }
    }
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
    listFontsInBackground();
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
    makeLetters(loadedAhead);
    engine.load(mainDocument);
    if (engine.rootObjects().isEmpty())
    {
        qDebug() << "Failed to load from resource, trying module import...";
        loadMainFromModule(engine);
    }
}
