// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CNetworkAdapters.h"

#include <QHostAddress>
#include <QNetworkAddressEntry>
#include <QNetworkInterface>

#include <arpa/inet.h>

namespace kiv::cam {

TArray<SNetworkAdapter> CNetworkAdapters::Up()
{
    TArray<SNetworkAdapter> adapters;
    for (const QNetworkInterface& system : QNetworkInterface::allInterfaces()) {
        if (!system.flags().testFlag(QNetworkInterface::IsUp))
            continue;
        SNetworkAdapter adapter;
        for (const QNetworkAddressEntry& entry : system.addressEntries()) {
            if (entry.ip().protocol() != QAbstractSocket::IPv4Protocol)
                continue;
            SNetworkAdapter::SAddress address;
            address.address = entry.ip().toIPv4Address();
            address.netmask = entry.netmask().toIPv4Address();
            if (system.flags().testFlag(QNetworkInterface::CanBroadcast))
                address.broadcast = entry.broadcast().toIPv4Address();
            adapter.addresses.add(address);
        }
        if (adapter.addresses.empty())
            continue;
        adapter.name = CString(system.name().toUtf8().constData());
        adapter.index = system.index();
        adapter.mtu = system.maximumTransmissionUnit();
        // Loopback and tunnels have no hardware address; Qt gives "" or all zeros for them.
        const QString mac = system.hardwareAddress();
        if (!mac.isEmpty() && mac != QLatin1String("00:00:00:00:00:00"))
            adapter.mac = CString(mac.toLower().toUtf8().constData());
        adapter.loopback = system.flags().testFlag(QNetworkInterface::IsLoopBack);
        adapters.add(std::move(adapter));
    }
    return adapters;
}

bool CNetworkAdapters::Find(const CString& name, SNetworkAdapter& adapter)
{
    for (SNetworkAdapter& candidate : Up()) {
        if (candidate.name == name) {
            adapter = std::move(candidate);
            return true;
        }
    }
    return false;
}

CString CNetworkAdapters::AddressText(std::uint32_t address)
{
    const in_addr network{htonl(address)};
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &network, text, sizeof text);
    return CString(text);
}

bool CNetworkAdapters::ParseAddress(const CString& text, std::uint32_t& address)
{
    // inet_pton takes exactly the dotted quad, unlike inet_aton ("10.1" is refused).
    in_addr network{};
    if (inet_pton(AF_INET, text.data(), &network) != 1)
        return false;
    address = ntohl(network.s_addr);
    return true;
}

} // namespace kiv::cam
