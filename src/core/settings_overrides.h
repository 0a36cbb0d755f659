// The list of settings that override the settings file for the life of the process. The list object lies in a
// named block of memory, so that every module loaded into the process sees the same one.
#pragma once

#include <QString>
#include <QVector>

#include <optional>

/// One overridden setting.
struct SettingsOverride {
    QString name; ///< section and key run together
    QString value;
};

using SettingsOverrides = QVector<SettingsOverride>;

/// The list of this process, made empty by whoever asks first. The reference stays valid.
SettingsOverrides& settingsOverrides();

/// The value of the first pair with exactly this section and key; nothing when there is none.
std::optional<QString> findSettingsOverride(const QString& section, const QString& key);
