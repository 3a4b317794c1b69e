// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class NoctarisDevice;

/// The rules by which an answer counts as somebody's identity.
namespace identity {
/// Whether a host name, version or model means something: not empty, "Unknown" or "N/A".
bool isValid(const QString &value);
/// Whether a machine id can tell two machines apart: not empty or "Unknown".
bool isMachineId(const QString &value);
/// Whether host name, version and model of a record are all valid.
bool isComplete(const NoctarisDevice &device);
} // namespace identity
