// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/SimulatedEndpoints.h"

using namespace Qt::StringLiterals;

namespace endpoints {
namespace {

HttpReply setHotspotInterface(SimulatedDevice &device, const Call &call)
{
    NetworkState &network = device.work().network;
    if (!network.wlans.contains(call.argument))
    {
        return refused(u"There is no interface \"%1\" for a hotspot"_s.arg(call.argument));
    }
    network.hotspotInterface = call.argument;
    return done();
}

HttpReply allInterfaces(SimulatedDevice &device, const Call & /*call*/)
{
    const NetworkState &network = device.work().network;
    QJsonArray list;
    const auto add = [&list](const QString &name, const QString &address) {
        list.append(QJsonObject{{u"interface"_s, name}, {u"ip"_s, address}});
    };
    add(u"eth0"_s, device.address());
    if (network.isDirectEthernet)
    {
        add(u"eth0"_s, u"10.55.0.1"_s);
    }
    for (const QString &name : network.wlans)
    {
        // The one that carries no hotspot looks for a network, and has found none.
        add(name, name == network.hotspotInterface ? u"10.42.0.1"_s : u"0.0.0.0"_s);
    }
    return listed(device, u"interfaces"_s, list);
}

template <bool isActive> HttpReply setDirectEthernet(SimulatedDevice &device, const Call & /*call*/)
{
    device.work().network.isDirectEthernet = isActive;
    return done();
}

HttpReply resetNetwork(SimulatedDevice &device, const Call & /*call*/)
{
    device.work().restoreNetwork();
    return done();
}

const Endpoint table[] = {
    {"GET", api, "/api/info/all_interfaces", allInterfaces},
    {"GET", api, "/api/system/hotspot_interface",
     [](auto &device, auto &) {
         return found(QJsonObject{{u"interface"_s, device.work().network.hotspotInterface}});
     }},
    {"POST", api, "/api/system/hotspot_interface/*", setHotspotInterface},
    {"POST", api, "/api/system/activate_direct_ethernet", setDirectEthernet<true>},
    {"POST", api, "/api/system/deactivate_direct_ethernet", setDirectEthernet<false>},
    {"POST", api, "/api/system/network_reset", resetNetwork},
};

} // namespace

const std::span<const Endpoint> ofNetwork = table;

} // namespace endpoints
