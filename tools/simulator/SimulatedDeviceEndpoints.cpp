// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/SimulatedDevice.h"

using namespace Qt::StringLiterals;

namespace {

/// One thing a device answers: a row here, and a function that reads the device's state or changes it.
struct Endpoint
{
    const char *method;
    quint16 port;
    const char *path;
    HttpReply (*answer)(DeviceState &state, const HttpRequest &request);
};

HttpReply hostname(DeviceState &state, const HttpRequest & /*request*/)
{
    return HttpReply::json({{u"hostname"_s, state.hostname}});
}

HttpReply version(DeviceState &state, const HttpRequest & /*request*/)
{
    return HttpReply::json({{u"version"_s, state.version}});
}

HttpReply model(DeviceState &state, const HttpRequest & /*request*/)
{
    return HttpReply::json({{u"model"_s, state.model}});
}

HttpReply machineId(DeviceState &state, const HttpRequest & /*request*/)
{
    return HttpReply::json({{u"machine_id"_s, state.machineId}});
}

constexpr quint16 api = SimulatedDevice::apiPort;

const Endpoint s_endpoints[] = {
    {"GET", api, "/api/info/hostname", hostname},
    {"GET", api, "/api/info/version", version},
    {"GET", api, "/api/info/model", model},
    {"GET", api, "/api/info/machine-id", machineId},
};

} // namespace

HttpReply SimulatedDevice::properReply(const HttpRequest &request)
{
    for (const Endpoint &endpoint : s_endpoints)
    {
        if (endpoint.port == request.port && endpoint.path == request.path() &&
            endpoint.method == request.method)
        {
            return endpoint.answer(m_state, request);
        }
    }
    return HttpReply::json({{u"detail"_s, u"Not Found"_s}}, 404);
}
