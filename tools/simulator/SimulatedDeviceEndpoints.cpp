// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/SimulatedEndpoints.h"

#include <QJsonDocument>

#include <optional>

using namespace Qt::StringLiterals;

namespace endpoints {

HttpReply done(QJsonObject members)
{
    members["result"_L1] = true;
    return HttpReply::json(members);
}

HttpReply found(const QJsonValue &payload)
{
    return done({{u"payload"_s, payload}});
}

HttpReply listed(const SimulatedDevice &device, const QString &member, const QJsonArray &list)
{
    return device.work().answersInOldShape ? HttpReply{.body = QJsonDocument(list).toJson()}
                                           : done({{member, list}});
}

HttpReply refused(const QString &error)
{
    return HttpReply::json({{u"result"_s, false}, {u"error"_s, error}});
}

HttpReply notFound()
{
    return HttpReply::json({{u"detail"_s, u"Not Found"_s}}, 404);
}

namespace {

HttpReply rename(SimulatedDevice &device, const Call &call)
{
    constexpr qsizetype longestName = 64;
    if (call.argument.size() > longestName)
    {
        return refused(u"The hostname is too long"_s);
    }
    device.rename(call.argument);
    return done();
}

/// One of the values that make a host a device. Its member is called as its path ends.
template <auto value> HttpReply identity(SimulatedDevice &device, const Call &call)
{
    return HttpReply::json({{call.path.section(u'/', -1).replace(u'-', u'_'), device.state().*value}});
}

template <auto action> HttpReply obey(SimulatedDevice &device, const Call & /*call*/)
{
    (device.*action)();
    return done();
}

const Endpoint ofDevice[] = {
    {"GET", api, "/api/info/hostname", identity<&DeviceState::hostname>},
    {"POST", api, "/api/info/hostname/*", rename},
    {"GET", api, "/api/info/version", identity<&DeviceState::version>},
    {"GET", api, "/api/info/model", identity<&DeviceState::model>},
    {"GET", api, "/api/info/machine-id", identity<&DeviceState::machineId>},
    {"POST", api, "/api/system/reboot", obey<&SimulatedDevice::reboot>},
    {"POST", api, "/api/system/shutdown", obey<&SimulatedDevice::shutDown>},
    {"POST", api, "/api/system/factory_reset", obey<&SimulatedDevice::restoreFactorySettings>},
};

/// The argument, empty for a path without one, if the request's path is the endpoint's; else nothing.
std::optional<QString> argumentOf(const Endpoint &endpoint, const HttpRequest &request)
{
    const QByteArray path = request.path();
    QByteArrayView pattern(endpoint.path);
    if (endpoint.port != request.port)
    {
        return {};
    }
    if (!pattern.endsWith('*'))
    {
        return pattern == path ? std::optional(QString()) : std::nullopt;
    }
    pattern.chop(1);
    const QByteArray rest = path.mid(pattern.size());
    if (!path.startsWith(pattern) || rest.isEmpty() || rest.contains('/'))
    {
        return {};
    }
    return QString::fromUtf8(QByteArray::fromPercentEncoding(rest));
}

} // namespace
} // namespace endpoints

HttpReply SimulatedDevice::properReply(const HttpRequest &request)
{
    using namespace endpoints;
    m_work.settle();
    bool isPathKnown = false;
    for (const auto table : {std::span<const Endpoint>(ofDevice), ofSoftware, ofServices, ofNetwork, ofDisk})
    {
        for (const Endpoint &endpoint : table)
        {
            const std::optional<QString> argument = argumentOf(endpoint, request);
            if (argument && endpoint.method == request.method)
            {
                return endpoint.answer(*this, {.path = QString::fromLatin1(request.path()),
                                               .argument = *argument,
                                               .query = request.target.mid(request.path().size() + 1),
                                               .body = QJsonDocument::fromJson(request.body).object()});
            }
            isPathKnown = isPathKnown || argument;
        }
    }
    return isPathKnown ? HttpReply::json({{u"detail"_s, u"Method Not Allowed"_s}}, 405) : notFound();
}
