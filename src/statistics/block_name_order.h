// The block name order: the document that holds the order in which plants are listed, and its settings file.
#pragma once

#include "platform/result.h"

#include <QStringList>

/// The names of the order document, in its order, empty ones left out; the reason when it cannot be read.
platform::Result<QStringList> readBlockNameOrder(const QString& path);

/// Puts these names into the order document, whatever else it holds staying as it is. A document that is
/// missing is made; one that exists and cannot be read is left alone, with the reason as result.
platform::Status writeBlockNameOrder(const QString& path, const QStringList& names);

/// Whether imports take the order's numbers along: the flag kept in the settings file beside the document,
/// 0 when nothing is stored there.
int readIdWithExcel(const QString& iniPath);

/// Keeps the flag. False when the file was not written.
bool writeIdWithExcel(const QString& iniPath, int value);
