// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "screenshots/Photographer.h"

#include "measure/Measure.h"
#include "simulator/ServiceAnnouncer.h"
#include "simulator/SimulatedDevice.h"

#include <QQuickItem>
#include <QQuickWindow>

#include <array>
#include <iostream>

using namespace Qt::StringLiterals;

namespace {
// Longer than every transition of the interface, and four times that is shorter than a success stands.
constexpr int transitionsMs = 300;

/// Three devices and a hidden fourth, at the addresses that scripts/screenshots has made for them.
QString addressOf(int number)
{
    return u"10.77.0.%1"_s.arg(number + 2);
}

/// Whether a picture that an item shows is still on its way.
bool isWaitingForPicture(const QQuickItem *item)
{
    const bool isWaiting = item->objectName() == "pictureIndicator"_L1 && item->property("running").toBool();
    return isWaiting || std::ranges::any_of(item->childItems(), isWaitingForPicture);
}

bool complain(const char *what)
{
    std::cerr << "noctaris-screenshots: not reached: " << what << '\n';
    return false;
}
} // namespace

struct Photographer::AnnouncedDevice
{
    explicit AnnouncedDevice(int number) : device(QHostAddress(addressOf(number)), number)
    {
        if (device.start())
            announcer.start({device.state().hostname,
                             device.address(),
                             SimulatedDevice::apiPort,
                             {{u"device"_s, u"noctaris"_s}, {u"model"_s, device.state().model}}});
    }

    SimulatedDevice device;
    ServiceAnnouncer announcer;
};

Photographer::Photographer(RunningProgram &program, QString folder, QString smallFolder)
    : m_program(program), m_folder(std::move(folder)), m_smallFolder(std::move(smallFolder))
{
}

Photographer::~Photographer() = default;

void Photographer::awaitValue(const QObject *part, const char *property, const QVariant &value)
{
    if (!measure::waitUntil([&] { return part && part->property(property) == value; }, answerMs))
        m_isAllReached = complain(property);
}

SimulatedDevice &Photographer::firstDevice()
{
    return m_devices.front()->device;
}

bool Photographer::takeAll()
{
    if (!takeEmpty() || !takeScanning() || !takeDevices() || !takeSettings())
        return false;
    openDialog();
    return takeDialogInput() && takeDialogTimeout() && takeDialogSuccess();
}

bool Photographer::takeEmpty()
{
    DeviceDiscovery &devices = m_program.devices();
    devices.startDiscovery();
    // Ten seconds of multicast DNS, and the sweep of a small network.
    constexpr int emptyRunMs = 45000;
    if (!measure::waitUntil([&] { return !devices.isScanning(); }, emptyRunMs))
        return complain("the end of a run without devices");
    take(u"empty"_s);
    return true;
}

bool Photographer::takeScanning()
{
    m_program.devices().startDiscovery();
    take(u"scanning"_s);
    m_program.devices().stopDiscovery();
    return true;
}

bool Photographer::takeDevices()
{
    DeviceDiscovery &devices = m_program.devices();
    for (int number = 0; number < 3; ++number)
        m_devices.push_back(std::make_unique<AnnouncedDevice>(number));
    const auto areSettled = [&] {
        return std::ranges::all_of(m_devices, [](const auto &each) { return each->announcer.isSettled(); });
    };
    constexpr int settlingLimitMs = 15000;
    if (!measure::waitUntil(areSettled, settlingLimitMs))
        return complain("three announced devices");
    devices.startDiscovery();
    constexpr int runLimitMs = 20000;
    if (!measure::waitUntil([&] { return devices.deviceCount() == 3 && !devices.isScanning(); }, runLimitMs))
        return complain("a run with three devices");
    take(u"devices"_s);
    return true;
}

bool Photographer::takeDialogInput()
{
    take(u"add-device-idle"_s);
    enterAddress(u"256.1.1.1"_s, false);
    take(u"add-device-invalid"_s);

    // A listed address: the program says so, and the dialog waits on for the device to be added.
    enterAddress(addressOf(0), true);
    if (!awaitDialogText(u"Device %1 already exists"_s.arg(addressOf(0)), 1000))
        return complain("the dialog's word on a listed device");
    take(u"add-device-duplicate"_s);
    return true;
}

bool Photographer::takeDialogTimeout()
{
    constexpr int validationLimitMs = 20000;
    if (!awaitDialogText(u"Device validation timed out. Please check the IP address and try again."_s,
                         validationLimitMs))
        return complain("the dialog's timeout");
    take(u"add-device-timed-out"_s);
    return true;
}

bool Photographer::takeDialogSuccess()
{
    SimulatedDevice device(QHostAddress(addressOf(3)), 3);
    device.hold("GET /api/info/machine-id");
    if (!device.start())
        return complain("a fourth device");
    enterAddress(device.address(), true);
    take(u"add-device-validating"_s);
    device.release("GET /api/info/machine-id");
    if (!awaitDialogText(u"Device added successfully!"_s, answerMs))
        return complain("the dialog's success");
    take(u"add-device-success"_s);
    return true;
}

void Photographer::take(const QString &name, Use use)
{
    QQuickWindow *window = m_program.window();
    const QSize fullSize = window->size();
    const QString fullFolder = use == Use::Documentation ? m_folder : m_smallFolder + u"/full"_s;
    const std::array<std::pair<QString, QSize>, 2> targets{
        {{fullFolder, fullSize}, {m_smallFolder, window->minimumSize()}}};
    for (const bool isDark : {false, true})
    {
        m_program.theme().setIsDarkTheme(isDark);
        for (const auto &[folder, size] : targets)
        {
            window->resize(size);
            measure::pass(transitionsMs);
            measure::waitUntil([&] { return !isWaitingForPicture(window->contentItem()); }, answerMs);
            const QString file = folder + u'/' + name + (isDark ? u"-dark.png"_s : u"-light.png"_s);
            m_program.savePicture(file);
            // With fewer shades the noise of a night sky takes a quarter of the room.
            if (folder == m_folder)
                QImage(file).convertToFormat(QImage::Format_RGB555).save(file);
        }
        window->resize(fullSize);
    }
}

void Photographer::openDialog()
{
    QMetaObject::invokeMethod(m_program.part(u"addManuallyButton"_s), "clicked");
    measure::pass(transitionsMs);
}

void Photographer::enterAddress(const QString &address, bool isAdded)
{
    m_program.part(u"ipInput"_s)->setProperty("text", address);
    if (isAdded)
        QMetaObject::invokeMethod(m_program.part(u"addButton"_s), "clicked");
}

bool Photographer::awaitDialogText(const QString &text, int limitMs)
{
    const QObject *line = m_program.part(u"statusText"_s);
    return line && measure::waitUntil([&] { return line->property("text").toString() == text; }, limitMs);
}
