// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

class QQmlComponent;

/// Makes the letters of the window's first frame while the window's document is being loaded: drawing a
/// letter for the first time takes long, and the main thread has little else to do then.
namespace firstLetters {
/// Has the system's fonts listed in the background, which every first letter would wait for.
void prepare();
/// Draws the letters where nobody sees them, as long as the document is loading.
void drawWhile(const QQmlComponent &document);
} // namespace firstLetters
