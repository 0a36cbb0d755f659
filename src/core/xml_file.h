// The product's XML documents as texts, in whatever character set they are saved.
#pragma once

#include <QString>

#include <optional>

/// The text of a document in Sys/ below the application root. Nothing when it is missing; nothing, and a line
/// through the diagnostics, when it cannot be read or names a character set that is not known.
std::optional<QString> readSystemDocument(const QString& fileName);
/// Says through the diagnostics what is wrong with a document, once.
void diagnoseDocument(const QString& fileName, qint64 line, const QString& error);
