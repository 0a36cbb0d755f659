// Running dialogs: by lines, or by a loop of their own while the user works in them.

#include "ed/dialogs.h"

#include "ed/command_stack.h"
#include "ed/console.h"
#include "ed/dialog_driver.h"
#include "ed/documents.h"
#include "ed/editor.h"

#include <QApplication>
#include <QDialog>
#include <QEventLoop>

namespace {

struct Modeless {
    QPointer<QDialog> dialog;
    std::unique_ptr<KcApDocLock> lock;
};

std::vector<QDialog*>& modalDialogs()
{
    static std::vector<QDialog*> dialogs;
    return dialogs;
}

std::vector<Modeless>& modelessDialogs()
{
    static std::vector<Modeless> dialogs;
    return dialogs;
}

// What waits in the queue of events belongs to the line that caused it: repainting, notifications sent later,
// dialogs that delete themselves.
void settle()
{
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void putAboveMainWindow(QDialog& dialog)
{
    QWidget* main = kcDocManagerPtr()->mainWindow();
    if (!dialog.parentWidget() && main)
        dialog.setParent(main, dialog.windowFlags());
    // Without a main window the last dialog to be hidden would end the program.
    dialog.setAttribute(Qt::WA_QuitOnClose, false);
}

bool refusesLock(const KcApDocLock& lock)
{
    if (lock.status() != Kcad::eLockViolation)
        return false;
    kcedSay(QStringLiteral("The drawing must not be changed now."));
    return true;
}

// Ends a dialog that nobody answers. One that would not be cancelled is ended all the same.
void cancel(QDialog& dialog, const bool& finished)
{
    dialog.reject();
    settle();
    if (!finished)
        dialog.QDialog::done(QDialog::Rejected);
}

void driveByLines(QDialog& dialog, const bool& finished)
{
    KcEdEditor& editor = KcEdEditor::instance();
    KcEdPrompt prompt;
    prompt.kind = KcEdPrompt::Kind::Dialog;
    prompt.text = QStringLiteral("\n[%1]: ").arg(dialog.windowTitle());
    settle();
    while (!finished) {
        KcEdInputSource* source = editor.source();
        if (!source->needsEcho())
            kcedPrint(prompt.text);
        const KcEdEvent event = source->next(prompt);
        const auto* line = std::get_if<KcEdLine>(&event);
        if (line && line->text.trimmed().startsWith(QLatin1Char(';')))
            continue;
        if (!line || !line->text.startsWith(QLatin1Char('!'))) {
            if (!std::holds_alternative<KcEdEnd>(event) && !std::holds_alternative<KcEdEscape>(event))
                source->giveBack(event);
            if (!std::holds_alternative<KcEdEscape>(event))
                kcedSayError(QStringLiteral("The dialog \"%1\" was cancelled: %2.")
                                 .arg(
                                     dialog.windowTitle(),
                                     line ? QStringLiteral("\"%1\" is no line for a dialog").arg(line->text)
                                          : QStringLiteral("nobody answers it any more")));
            cancel(dialog, finished);
            return;
        }
        if (source->needsEcho())
            kcedPrint(line->text + QLatin1Char('\n'));
        const QString reason = kcedDriveDialog(dialog, line->text);
        settle();
        if (!reason.isEmpty())
            editor.refuse(*line, reason);
    }
}

void waitForUser(QDialog& dialog, const bool& finished)
{
    QEventLoop loop;
    QObject::connect(&dialog, &QDialog::finished, &loop, &QEventLoop::quit);
    // A loop that ends at once with -1 was begun after the program was told to quit.
    while (!finished)
        if (loop.exec() == -1)
            cancel(dialog, finished);
}

} // namespace

int kcedRunDialog(QDialog& dialog, KcEdDialogLock kind)
{
    std::optional<KcApDocLock> lock;
    if (kind == KcEdDialogLock::Document && refusesLock(lock.emplace()))
        return QDialog::Rejected;
    putAboveMainWindow(dialog);
    bool finished = false;
    const auto connection
        = QObject::connect(&dialog, &QDialog::finished, &dialog, [&finished] { finished = true; });
    {
        const KcEdActivityScope activity(KcEdActivity::Dialog);
        modalDialogs().push_back(&dialog);
        dialog.setWindowModality(Qt::ApplicationModal);
        dialog.show();
        const KcEdInputSource* source = KcEdEditor::instance().source();
        if (!source)
            cancel(dialog, finished);
        else if (source->drivesDialogs())
            driveByLines(dialog, finished);
        else
            waitForUser(dialog, finished);
        dialog.hide();
        modalDialogs().pop_back();
    }
    QObject::disconnect(connection);
    return dialog.result();
}

KcEdDialogPause::KcEdDialogPause(QDialog& dialog)
    : m_dialog(&dialog)
{
    for (auto open = modalDialogs().rbegin(); open != modalDialogs().rend(); ++open)
        if ((*open)->isVisible()) {
            (*open)->hide();
            m_hidden.push_back(*open);
        }
    if (dialog.isVisible()) {
        dialog.hide();
        m_hidden.insert(m_hidden.begin(), QPointer(&dialog));
    }
}

KcEdDialogPause::~KcEdDialogPause()
{
    for (auto dialog = m_hidden.rbegin(); dialog != m_hidden.rend(); ++dialog)
        if (*dialog)
            (*dialog)->show();
    if (m_dialog && m_dialog->isVisible())
        m_dialog->activateWindow();
}

QDialog* kcedShowModeless(std::unique_ptr<QDialog> owned)
{
    auto lock = std::make_unique<KcApDocLock>();
    if (refusesLock(*lock))
        return nullptr;
    QDialog* dialog = owned.release();
    putAboveMainWindow(*dialog);
    modelessDialogs().push_back({ dialog, std::move(lock) });
    QObject::connect(dialog, &QDialog::finished, dialog, [dialog] {
        std::erase_if(modelessDialogs(), [&](const Modeless& row) { return row.dialog == dialog; });
        dialog->deleteLater();
    });
    // One that is deleted otherwise, with its parent for instance, must not keep the document locked.
    QObject::connect(dialog, &QObject::destroyed, qApp, [] {
        std::erase_if(modelessDialogs(), [](const Modeless& row) { return row.dialog.isNull(); });
    });
    dialog->setWindowModality(Qt::NonModal);
    dialog->show();
    return dialog;
}

void kcedCloseModelessDialogs()
{
    while (!modelessDialogs().empty()) {
        const QPointer<QDialog> dialog = modelessDialogs().back().dialog;
        bool finished = false;
        QObject::connect(dialog, &QDialog::finished, qApp, [&finished] { finished = true; });
        cancel(*dialog, finished);
        if (dialog)
            std::erase_if(modelessDialogs(), [&](const Modeless& row) { return row.dialog == dialog; });
        settle();
    }
}

size_t kcedModelessDialogCount()
{
    return modelessDialogs().size();
}

bool kcedAct(QDialog& dialog, const QString& name, std::function<void()> body)
{
    return kcedRequest(KcEdWish::Change, [alive = QPointer(&dialog), name, body = std::move(body)] {
        if (!alive)
            return;
        KcEdCommand action;
        action.globalName = name;
        action.handler = body;
        kcedCommandStack().run(action);
    });
}

QString kcedDriveModeless(const QString& line)
{
    for (auto row = modelessDialogs().rbegin(); row != modelessDialogs().rend(); ++row)
        if (row->dialog && row->dialog->isVisible()) {
            const QString reason = kcedDriveDialog(*row->dialog, line);
            settle();
            return reason;
        }
    return QStringLiteral("No dialog is open.");
}
