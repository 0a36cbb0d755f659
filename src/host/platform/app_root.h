// The application root: the folder with Sys/ (settings, documents, language file) and Data/ that a user works
// on.
#pragma once

#include "platform/result.h"

namespace platform {

/// Chooses the root for this process (the option --root), as an absolute path or one relative to the current
/// folder. An empty text goes back to the environment.
void setAppRoot(const QString& folder);

/// The root as an absolute path without a separator at its end: the one set, else VERDELIS_ROOT, else
/// "verdelis" in the user's data folder ($XDG_DATA_HOME or ~/.local/share). It need not exist.
QString appRoot();

/// Folder of the root as shipped: ../share/verdelis as seen from the running program.
QString shippedRoot();

/// Copies the shipped root into the application root when that is missing or empty; any other is left as it
/// stands. Fails, with the reason, when a copy is needed and cannot be made; nothing is left behind then.
Status prepareAppRoot();

/// The same for any two folders.
Status fillRoot(const QString& root, const QString& shipped);

} // namespace platform
