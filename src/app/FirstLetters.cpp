// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "app/FirstLetters.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QQmlComponent>
#include <QStringList>
#include <QThread>
#include <QThreadPool>

#include <atomic>

using namespace Qt::StringLiterals;

namespace {
struct Face
{
    int pixelSize;
    QFont::Weight weight;
    QString letters;
};

std::atomic<bool> s_areFontsListed = false;

/// Lets the engine's thread go on, which asks the main thread about each plugin. Its questions are events of
/// this kind; nothing else is served yet.
void serveEngine()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::User);
}

/// Waits for the list of fonts without keeping the engine's thread waiting; false if the document comes
/// first.
bool waitForFonts(const QQmlComponent &document)
{
    constexpr unsigned long pollUs = 50;
    while (!s_areFontsListed && document.isLoading())
    {
        serveEngine();
        QThread::usleep(pollUs);
    }
    return s_areFontsListed;
}
} // namespace

void firstLetters::prepare()
{
    QThreadPool::globalInstance()->start([] {
        QFontDatabase::families();
        s_areFontsListed = true;
    });
}

void firstLetters::drawWhile(const QQmlComponent &document)
{
    static const Face faces[] = {
        {14, QFont::Normal, u"Noctaris devices found, searching 0123456789.v"_s},
        {14, QFont::DemiBold, u"🔄 Auto ➕ Add Manually Rescan Network Refresh Info Remove Selected"_s},
        {12, QFont::DemiBold, u"STATUS IP ADDRESS HOSTNAME VERSION MODEL ACTIONS 0 devices found"_s},
        {20, QFont::DemiBold, u"🔭 Noctaris Tools"_s},
    };
    if (!waitForFonts(document))
        return;
    QImage sheet(200, 30, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&sheet);
    QFont font = QGuiApplication::font();
    for (const Face &face : faces)
    {
        font.setPixelSize(face.pixelSize);
        font.setWeight(face.weight);
        painter.setFont(font);
        // Word by word, so that the engine's thread never waits for long.
        for (const QString &word : face.letters.split(u' '))
        {
            painter.drawText(0, 24, word);
            serveEngine();
        }
    }
}
