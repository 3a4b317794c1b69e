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
    void firstRun_data();
    void firstRun();
    void followsTheSystemWhileAutomatic();
    void choiceByHandIsForGood();
    void watchesTheApplicationAlone();
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

void TestThemeManager::firstRun_data()
{
    QTest::addColumn<QColor>("window");
    QTest::addColumn<QColor>("windowText");
    QTest::addColumn<bool>("isDark");
    QTest::newRow("light") << lightGrey << darkGrey << false;
    QTest::newRow("dark") << darkGrey << lightGrey << true;
    QTest::newRow("a shade darker than its text")
        << QColor(0x80, 0x80, 0x80) << QColor(0x82, 0x82, 0x82) << true;
    // Red and blue of one lightness, of which blue looks darker.
    QTest::newRow("equal lightness is light") << QColor(Qt::blue) << QColor(Qt::red) << false;
}

void TestThemeManager::firstRun()
{
    QFETCH(QColor, window);
    QFETCH(QColor, windowText);
    setSystemColors(window, windowText);
    {
        const ThemeManager manager;
        QTEST(manager.isDarkTheme(), "isDark");
        QVERIFY(manager.isAutoTheme());
    }
    QCOMPARE(stored(), QByteArray());
}

void TestThemeManager::followsTheSystemWhileAutomatic()
{
    QStringList names;
    {
        ThemeManager manager;
        recordSignals(manager, &names);
        // Asking for the look that is there is no choice.
        manager.setIsDarkTheme(false);
        QVERIFY(names.isEmpty());
        QVERIFY(manager.isAutoTheme());

        setSystemDark(true);
        QVERIFY(manager.isDarkTheme());
        QCOMPARE(names, QStringList({u"dark"_s, u"theme"_s}));

        // Another dark palette is no change of the look.
        setSystemColors(Qt::black, lightGrey);
        QCOMPARE(names.size(), 2);

        setSystemDark(false);
        QVERIFY(!manager.isDarkTheme());
        QVERIFY(manager.isAutoTheme());
        QCOMPARE(names, QStringList({u"dark"_s, u"theme"_s, u"dark"_s, u"theme"_s}));
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
        QCOMPARE(names, allThree);

        setSystemDark(true);
        setSystemDark(false);
        QVERIFY(manager.isDarkTheme());
        QCOMPARE(names, allThree);

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
    names.clear();
    recordSignals(restarted, &names);
    setSystemDark(true);
    setSystemDark(false);
    QVERIFY(restarted.isDarkTheme());
    QVERIFY(names.isEmpty());
}

void TestThemeManager::watchesTheApplicationAlone()
{
    ThemeManager manager;
    qApp->removeEventFilter(&manager);
    setSystemDark(true);
    QObject other;
    QEvent paletteChange(QEvent::ApplicationPaletteChange);
    QEvent fontChange(QEvent::ApplicationFontChange);
    manager.eventFilter(&other, &paletteChange);
    manager.eventFilter(qApp, &fontChange);
    QVERIFY(!manager.isDarkTheme());
    // Whoever else watches gets the event too.
    QVERIFY(!manager.eventFilter(qApp, &paletteChange));
    QVERIFY(manager.isDarkTheme());
}

/// By the names that the documents bind to, read anew after themeChanged alone.
void TestThemeManager::colours()
{
    struct Pair
    {
        const char *property;
        QRgb light;
        QRgb dark;
    };
    ThemeManager manager;
    const QMetaObject *type = manager.metaObject();
    for (const auto &[name, light, dark] :
         {Pair{"backgroundColor", 0xf5f6fa, 0x1a1a1a}, Pair{"onPrimaryColor", 0xffffff, 0xffffff},
          Pair{"statusBarColor", 0xf8f9ff, 0x374151}})
    {
        const QMetaProperty property = type->property(type->indexOfProperty(name));
        QCOMPARE(property.notifySignal().name(), QByteArray("themeChanged"));
        QCOMPARE(property.read(&manager).value<QColor>(), QColor(light));
        manager.toggleTheme();
        QCOMPARE(property.read(&manager).value<QColor>(), QColor(dark));
        manager.toggleTheme();
    }
}

QTEST_MAIN(TestThemeManager)
#include "TestThemeManager.moc"
