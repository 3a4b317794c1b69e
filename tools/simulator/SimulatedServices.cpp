// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/SimulatedEndpoints.h"

using namespace Qt::StringLiterals;

namespace endpoints {
namespace {

HttpReply operateService(SimulatedDevice &device, const Call &call)
{
    static const QStringList operations = {u"enable"_s, u"disable"_s, u"start"_s, u"stop"_s, u"restart"_s};
    ServicesState &services = device.work().services;
    const QString name = call.text("service"_L1);
    const QString operation = call.text("operation"_L1);
    if (!services.isActive.contains(name) || !operations.contains(operation))
    {
        return refused(u"\"%1\" of \"%2\" is not known"_s.arg(operation, name));
    }
    if (operation.endsWith("able"_L1))
    {
        services.isEnabled[name] = operation == "enable"_L1;
    }
    else if (operation != "start"_L1 || !services.isActive[name])
    {
        services.isActive[name] = operation != "stop"_L1;
        if (name == "lumarc"_L1)
        {
            device.restartCompanion();
        }
    }
    return done();
}

HttpReply serviceState(SimulatedDevice &device, const Call &call)
{
    const bool isActive = device.work().services.isActive.value(call.text("service"_L1));
    return done({{u"status"_s, isActive ? u"active"_s : u"inactive"_s}});
}

HttpReply resetRustdesk(SimulatedDevice &device, const Call &call)
{
    device.work().services.rustdeskPassword = call.text("password"_L1);
    return call.text("password"_L1).isEmpty() ? refused(u"There is no password"_s) : done();
}

HttpReply generationProgress(SimulatedDevice &device, const Call & /*call*/)
{
    const TimedProgress &regeneration = device.work().services.regeneration;
    const QString message = regeneration.isRunning() ? u"Regenerating images..."_s
                            : regeneration.isDone()  ? u"All images are there"_s
                                                     : u"Nothing to do"_s;
    return HttpReply::json({{u"progress"_s, static_cast<int>(regeneration.percent())},
                            {u"message"_s, message},
                            {u"inProgress"_s, regeneration.isRunning()}});
}

template <auto action> HttpReply obeyLumarc(SimulatedDevice &device, const Call & /*call*/)
{
    (device.work().services.regeneration.*action)();
    return done();
}

const Endpoint table[] = {
    {"POST", api, "/api/service", operateService},
    {"POST", api, "/api/service/isactive", serviceState},
    {"GET", api, "/api/software/rustdesk/id",
     [](auto &device, auto &) { return found(device.work().services.rustdeskId); }},
    {"POST", api, "/api/software/rustdesk/reset", resetRustdesk},
    {"GET", lumarc, "/reset", obeyLumarc<&TimedProgress::cancel>},
    {"GET", lumarc, "/generate", obeyLumarc<&TimedProgress::begin>},
    {"GET", lumarc, "/generate/progress", generationProgress},
};

} // namespace

const std::span<const Endpoint> ofServices = table;

} // namespace endpoints
