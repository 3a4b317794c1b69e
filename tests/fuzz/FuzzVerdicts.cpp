// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/Verdicts.h"

#include <QByteArray>
#include <QLoggingCategory>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {
constexpr Outcome (*outcomes[])(const DeviceAnswer &) = {
    verdict::hostnameUpdate,     verdict::picturesDirectoryUpdate,
    verdict::upgradeStart,       verdict::deltaApply,
    verdict::rollback,           verdict::reboot,
    verdict::shutdown,           verdict::factoryReset,
    verdict::networkReset,       verdict::lumarcReset,
    verdict::lumarcRestart,      verdict::installStart,
    verdict::releaseUpdate,      verdict::hotspotUpdate,
    verdict::ethernetActivation, verdict::ethernetDeactivation};
} // namespace

/// Judges one body as the answer to every operation. No operation may end without a word for the user.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    static const bool isQuiet = [] {
        QLoggingCategory::setFilterRules(u"*=false"_s);
        return true;
    }();
    Q_UNUSED(isQuiet)
    const QByteArray body(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size));
    const DeviceAnswer answer = DeviceAnswer::withBody(u"10.0.0.2"_s, body);
    for (const auto &verdictOn : outcomes)
    {
        if (verdictOn(answer).message.isEmpty())
            std::abort();
    }
    verdict::picturesDirectory(answer);
    verdict::upgradeCheck(answer);
    verdict::deltaProgress(answer);
    verdict::deltaStatus(answer);
    verdict::regenerationProgress(answer);
    verdict::releaseType(answer);
    verdict::isBranchInstalled(answer, u"master"_s);
    verdict::installProgress(answer);
    verdict::isHotspotInternal(answer);
    verdict::networkInterfaces(answer);
    verdict::isServiceActive(answer);
    verdict::rustdeskId(answer);
    verdict::externalDrives(answer);
    return 0;
}
