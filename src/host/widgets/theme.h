// Light and dark looks of windows and dialogs.
#pragma once

enum class KcUiTheme { System, Light, Dark };

/// Gives the program's widgets a look; System leaves them to the desktop.
void kcuiSetTheme(KcUiTheme theme);
/// What VERDELIS_THEME asks for: "light", "dark", anything else is the system's.
KcUiTheme kcuiThemeOfEnvironment();
