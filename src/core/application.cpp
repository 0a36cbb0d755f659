// Application root and drawing settings for the companion module and whoever loads it.

#include "core/application.h"

#include "core/settings_overrides.h"
#include "platform/app_root.h"
#include "platform/numbers.h"
#include "platform/profile_file.h"

namespace {

const QString drawingSettings = QStringLiteral("DRAWING SETTINGS");

std::optional<QString> readDrawingSetting(const QString& key)
{
    if (key.isEmpty())
        return std::nullopt;
    if (auto overridden = findSettingsOverride(drawingSettings, key))
        return overridden;
    QString value;
    constexpr int bufferSize = 4096;
    if (!platform::GetPrivateProfileStringW(drawingSettings, key, {}, value, bufferSize, settingsFilePath()))
        return std::nullopt;
    return value;
}

int toInteger(const QString& text)
{
    return text.compare(u"true", Qt::CaseInsensitive) == 0 ? 1 : platform::wtoi(text);
}

} // namespace

QString GetAppRoot()
{
    return platform::appRoot() + u'/';
}

QString settingsFilePath()
{
    return GetAppRoot() + QStringLiteral("Sys/VERDELIS.INI");
}

int GetVerdelis(const QString& key)
{
    int value = 0;
    GetVerdelis(key, value);
    return value;
}

int GetVerdelis(const QString& key, QString& value)
{
    const auto found = readDrawingSetting(key);
    if (found)
        value = *found;
    return found ? 1 : 0;
}

int GetVerdelis(const QString& key, double& value)
{
    const auto found = readDrawingSetting(key);
    if (found)
        value = platform::wtof(*found);
    return found ? 1 : 0;
}

int GetVerdelis(const QString& key, int& value)
{
    const auto found = readDrawingSetting(key);
    if (found)
        value = toInteger(*found);
    return found ? 1 : 0;
}
