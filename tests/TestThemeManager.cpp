// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "theme/ThemeManager.h"

#include <QFile>
#include <QGuiApplication>
#include <QMetaProperty>
#include <QPalette>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
const QColor darkGrey(0x20, 0x20, 0x20);
const QColor lightGrey(0xe0, 0xe0, 0xe0);

void setSystemColors(const QColor &window, const QColor &windowText)
{
    QPalette palette = QGuiApplication::palette();
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, windowText);
    QGuiApplication::setPalette(palette);
}

void setSystemDark(bool isDark)
{
    setSystemColors(isDark ? darkGrey : lightGrey, isDark ? lightGrey : darkGrey);
}

/// Keeps the names of a manager's signals in the order in which they come.
void recordSignals(ThemeManager &manager, QStringList *names)
{
    QObject::connect(&manager, &ThemeManager::isDarkThemeChanged, [names] { *names << u"dark"_s; });
    QObject::connect(&manager, &ThemeManager::isAutoThemeChanged, [names] { *names << u"auto"_s; });
    QObject::connect(&manager, &ThemeManager::themeChanged, [names] { *names << u"theme"_s; });
}
} // namespace

/// The look: what the system says, what the user says, and what of it is remembered.
class TestThemeManager : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void firstRun();
    void followsTheSystemWhileAutomatic();
    void choiceByHandIsForGood();
    void colours();

private:
    QByteArray stored() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestThemeManager::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_folder->path());
    QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope, m_folder->filePath(u"system"_s));
    setSystemDark(false);
}

/// The lines of the store, empty if nothing was ever written.
QByteArray TestThemeManager::stored() const
{
    QFile file(m_folder->filePath(u"Noctaris/Discovery.conf"_s));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestThemeManager::firstRun()
{
    const auto isDark = [](const QColor &window, const QColor &windowText) {
        setSystemColors(window, windowText);
        return ThemeManager().isDarkTheme();
    };
    QVERIFY(!isDark(lightGrey, darkGrey));
    QVERIFY(isDark(QColor(0x80, 0x80, 0x80), QColor(0x82, 0x82, 0x82)));
    // Red and blue of one lightness, of which blue looks darker.
    QVERIFY(!isDark(Qt::blue, Qt::red));
    QCOMPARE(stored(), QByteArray());
}

void TestThemeManager::followsTheSystemWhileAutomatic()
{
    QStringList names;
    {
        ThemeManager manager;
        recordSignals(manager, &names);
        QVERIFY(manager.isAutoTheme());
        // Asking for the look that is there is no choice.
        manager.setIsDarkTheme(false);
        QVERIFY(names.isEmpty());

        setSystemDark(true);
        QVERIFY(manager.isDarkTheme());
        // Another dark palette is no change of the look.
        setSystemColors(Qt::black, lightGrey);
        setSystemDark(false);
        QVERIFY(!manager.isDarkTheme());
        QVERIFY(manager.isAutoTheme());
        QCOMPARE(names, QStringList({u"dark"_s, u"theme"_s, u"dark"_s, u"theme"_s}));

        // Whoever else watches gets the event too.
        QEvent paletteChange(QEvent::ApplicationPaletteChange);
        QVERIFY(!manager.eventFilter(qApp, &paletteChange));
    }
    QCOMPARE(stored(), QByteArray());
}

void TestThemeManager::choiceByHandIsForGood()
{
    const QStringList allThree({u"dark"_s, u"auto"_s, u"theme"_s});
    QStringList names;
    {
        ThemeManager manager;
        recordSignals(manager, &names);
        manager.toggleTheme();
        QVERIFY(manager.isDarkTheme());
        QVERIFY(!manager.isAutoTheme());
        setSystemDark(true);
        setSystemDark(false);
        QVERIFY(manager.isDarkTheme());

        // The mode was manual already, and is announced all the same.
        manager.toggleTheme();
        manager.setProperty("isDarkTheme", true);
        QCOMPARE(names, allThree + allThree + allThree);
    }
    QVERIFY(stored().contains("isAutoTheme=false"));
    QVERIFY(stored().contains("isDarkTheme=true"));

    ThemeManager restarted;
    QVERIFY(restarted.isDarkTheme());
    QVERIFY(!restarted.isAutoTheme());
    setSystemDark(true);
    setSystemDark(false);
    QVERIFY(restarted.isDarkTheme());
}

/// By the names that the documents bind to, read anew after themeChanged alone.
void TestThemeManager::colours()
{
    ThemeManager manager;
    const auto color = [&manager](const char *name) { return manager.property(name).value<QColor>(); };
    const QMetaObject *type = manager.metaObject();
    for (int i = type->indexOfProperty("backgroundColor"); i < type->propertyCount(); ++i)
        QCOMPARE(type->property(i).notifySignal().name(), QByteArray("themeChanged"));
    QCOMPARE(color("backgroundColor"), QColor(0xf5f6fa));
    QCOMPARE(color("statusBarColor"), QColor(0xf8f9ff));
    manager.toggleTheme();
    QCOMPARE(color("backgroundColor"), QColor(0x1a1a1a));
    QCOMPARE(color("statusBarColor"), QColor(0x374151));
}

QTEST_MAIN(TestThemeManager)
#include "TestThemeManager.moc"
