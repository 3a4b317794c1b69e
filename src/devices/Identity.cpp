// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/Identity.h"

#include "devices/NoctarisDevice.h"

using namespace Qt::StringLiterals;

bool identity::isValid(const QString &value)
{
    return isMachineId(value) && value != "N/A"_L1;
}

bool identity::isMachineId(const QString &value)
{
    return !value.isEmpty() && value != "Unknown"_L1;
}

bool identity::isComplete(const NoctarisDevice &device)
{
    return isValid(device.hostname()) && isValid(device.version()) && isValid(device.model());
}
