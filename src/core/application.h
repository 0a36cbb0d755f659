// The product as a whole: where its files are and what its drawing settings say.
#pragma once

#include <QString>

/// The application root with a separator at its end.
QString GetAppRoot();

/// Name of the settings file of the product, as a path.
QString settingsFilePath();

/// A value of the section "DRAWING SETTINGS" as an integer ("true" is 1); 0 when the key is absent or empty.
int GetVerdelis(const QString& key);

/// The same as text, number or integer. Returns 0 and leaves the value alone when the key is absent or empty.
int GetVerdelis(const QString& key, QString& value);
int GetVerdelis(const QString& key, double& value);
int GetVerdelis(const QString& key, int& value);
