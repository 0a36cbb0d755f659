// Dialogs: modal ones, which may hide to let the user pick in the drawing, and modeless ones, which stand
// beside commands. A source of lines drives them by its "!" lines, in a window the user does; the code of a
// dialog cannot tell which. How to write one stands in docs/dialogs.md.
#pragma once

#include "ed/activity.h"

#include <QPointer>
#include <QString>

#include <memory>

class QDialog;

/// Whether a dialog holds the document for writing while it is open.
enum class KcEdDialogLock { Document, None };

/// Shows a dialog modally, over the main window, and returns its result when it is closed. The document is
/// locked meanwhile; when it must not be changed now, that is said and the dialog counts as cancelled. Where
/// lines drive dialogs, one that does not begin with "!" cancels the dialog and is read again. The dialog may
/// hide itself and come back (see KcEdDialogPause): hiding does not end it.
int kcedRunDialog(QDialog& dialog, KcEdDialogLock lock = KcEdDialogLock::Document);

/// Hides a modal dialog, and the modal dialogs below it, for the length of a scope: in it the dialog's code
/// asks for picks in the drawing.
class KcEdDialogPause {
public:
    explicit KcEdDialogPause(QDialog& dialog);
    ~KcEdDialogPause();
    KcEdDialogPause(const KcEdDialogPause&) = delete;
    KcEdDialogPause& operator=(const KcEdDialogPause&) = delete;

private:
    std::vector<QPointer<QDialog>> m_hidden;
    QPointer<QDialog> m_dialog;
};

/// Shows a dialog beside whatever goes on. It stays when the command that showed it has ended; it is deleted
/// when it is closed. The current document stays locked meanwhile (locks nest: commands go on working). Null,
/// the reason being said, when the document must not be changed now.
QDialog* kcedShowModeless(std::unique_ptr<QDialog> dialog);
/// Closes all modeless dialogs, as their close buttons would.
void kcedCloseModelessDialogs();
/// How many there are.
size_t kcedModelessDialogCount();

/// What a button of a modeless dialog does to the drawing: one undo step of that name, with the prompts that
/// `body` may make, when no command runs; a prompt that waits is cancelled first. Nothing happens when the
/// dialog is gone by then. False, with the reason said, when it cannot be done now.
bool kcedAct(QDialog& dialog, const QString& name, std::function<void()> body);

/// Takes a "!" line for the modeless dialogs, the topmost first; empty, or why it was not taken.
QString kcedDriveModeless(const QString& line);
