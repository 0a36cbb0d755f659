// The "!" lines that scripts send to a dialog.
#pragma once

#include <QString>
#include <QStringList>

class QDialog;

/// Does in a dialog what a line says, the way that mouse and keys would do it. Empty, or a sentence saying
/// why the line was not taken; a name that no control has is answered by the names there are.
QString kcedDriveDialog(QDialog& dialog, const QString& line);

/// The words of a line: parted by blanks, or in double quotes, which fall away.
QStringList kcedDialogWords(const QString& line);
