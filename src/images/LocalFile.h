// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Where a picture is kept on this computer. Its name comes from the device, so it may be anything.
namespace localfile {
enum class System
{
    Unix,
    Windows,
#ifdef Q_OS_WIN
    Own = Windows,
#else
    Own = Unix,
#endif
};
/// Whether a name means a file in the folder it is put behind, and neither one elsewhere nor a device.
bool staysInFolder(const QString &fileName, System system = System::Own);

/// The path for a name in a folder; if there is such a file, the first free one with a counter behind the
/// name, in front of its suffix.
QString freePath(const QString &folder, const QString &fileName);
} // namespace localfile
