// Boxes and file requests in a window and by lines.

#include "ed/message_boxes.h"

#include "ed/console.h"
#include "ed/dialog_driver.h"
#include "ed/dialogs.h"
#include "ed/documents.h"
#include "ed/editor.h"
#include "platform/files.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

using platform::MessageBoxAnswer;
using platform::MessageBoxButtons;
using platform::MessageBoxIcon;
using platform::MessageBoxRequest;

namespace {

struct Button {
    MessageBoxAnswer answer;
    QMessageBox::StandardButton standard;
    const char16_t* chinese;
    const char* english; ///< with the key that chooses it
    const char* line; ///< that presses it
};

constexpr Button kButtons[] = {
    { MessageBoxAnswer::Ok, QMessageBox::Ok, u"确定", "&OK", "!ok" },
    { MessageBoxAnswer::Cancel, QMessageBox::Cancel, u"取消", "&Cancel", "!cancel" },
    { MessageBoxAnswer::Yes, QMessageBox::Yes, u"是", "&Yes", "!yes" },
    { MessageBoxAnswer::No, QMessageBox::No, u"否", "&No", "!no" },
    { MessageBoxAnswer::Retry, QMessageBox::Retry, u"重试", "&Retry", "!ok" },
    { MessageBoxAnswer::Abort, QMessageBox::Abort, u"中止", "&Abort", "!cancel" },
    { MessageBoxAnswer::Ignore, QMessageBox::Ignore, u"忽略", "&Ignore", "!no" },
};

std::vector<Button> buttonsOf(MessageBoxButtons buttons)
{
    using A = MessageBoxAnswer;
    const auto pick = [](std::initializer_list<A> answers) {
        std::vector<Button> rows;
        for (const A answer : answers)
            rows.push_back(*std::find_if(std::begin(kButtons), std::end(kButtons), [&](const Button& b) {
                return b.answer == answer;
            }));
        return rows;
    };
    switch (buttons) {
    case MessageBoxButtons::Ok:
        return pick({ A::Ok });
    case MessageBoxButtons::OkCancel:
        return pick({ A::Ok, A::Cancel });
    case MessageBoxButtons::YesNo:
        return pick({ A::Yes, A::No });
    case MessageBoxButtons::YesNoCancel:
        return pick({ A::Yes, A::No, A::Cancel });
    case MessageBoxButtons::RetryCancel:
        return pick({ A::Retry, A::Cancel });
    case MessageBoxButtons::AbortRetryIgnore:
        break;
    }
    return pick({ A::Abort, A::Retry, A::Ignore });
}

// The buttons of a box speak the language of its text: the host's own sentences are English. A name in it may
// be in another one, so that the end of the sentence tells.
QString captionOf(const Button& button, const MessageBoxRequest& request)
{
    const auto last
        = std::find_if(request.text.rbegin(), request.text.rend(), [](QChar c) { return c.isLetter(); });
    const bool chinese = last != request.text.rend() && last->script() == QChar::Script_Han;
    return chinese ? QString::fromUtf16(button.chinese) : QString::fromLatin1(button.english);
}

bool canShow()
{
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

QWidget* ownerOr(QWidget* owner)
{
    return owner ? owner : kcDocManagerPtr()->mainWindow();
}

std::unique_ptr<QMessageBox> makeBox(const MessageBoxRequest& request)
{
    auto box = std::make_unique<QMessageBox>(ownerOr(request.owner));
    box->setWindowTitle(request.caption);
    box->setTextFormat(Qt::PlainText);
    box->setText(request.text);
    static const std::map<MessageBoxIcon, QMessageBox::Icon> icons = {
        { MessageBoxIcon::None, QMessageBox::NoIcon },
        { MessageBoxIcon::Information, QMessageBox::Information },
        { MessageBoxIcon::Question, QMessageBox::Question },
        { MessageBoxIcon::Warning, QMessageBox::Warning },
        { MessageBoxIcon::Error, QMessageBox::Critical },
    };
    box->setIcon(icons.at(request.icon));
    for (const Button& button : buttonsOf(request.buttons))
        box->addButton(button.standard)->setText(captionOf(button, request));
    return box;
}

MessageBoxAnswer showBox(const MessageBoxRequest& request)
{
    const auto box = makeBox(request);
    kcedRunDialog(*box, KcEdDialogLock::None);
    for (const Button& button : buttonsOf(request.buttons))
        if (box->standardButton(box->clickedButton()) == button.standard)
            return button.answer;
    return platform::unattendedAnswer(request.buttons);
}

// The button that a line presses; nothing when it presses none of the box.
std::optional<MessageBoxAnswer> pressedBy(const MessageBoxRequest& request, const QString& text)
{
    const QString line = text.trimmed().toLower();
    const std::vector<Button> buttons = buttonsOf(request.buttons);
    for (const Button& button : buttons)
        if (line == QLatin1String(button.line)
            || line == QStringLiteral("!press ") + QString::fromUtf16(button.chinese)
            || line == QStringLiteral("!press ") + QString::fromLatin1(button.english + 1).toLower())
            return button.answer;
    // OK is what agrees, Cancel and closing what costs nothing, whatever the buttons are called.
    if (line == u"!ok")
        return buttons.front().answer;
    if (line == u"!cancel" || line == u"!close")
        return platform::unattendedAnswer(request.buttons);
    return {};
}

// Lines that look at the box without answering it.
bool looksAt(const MessageBoxRequest& request, const KcEdLine& line)
{
    const QString text = line.text.trimmed();
    if (!canShow()
        || !(
            text.startsWith(u"!shot ", Qt::CaseInsensitive)
            || text.compare(u"!list", Qt::CaseInsensitive) == 0))
        return false;
    const auto box = makeBox(request);
    box->setAttribute(Qt::WA_QuitOnClose, false);
    box->show();
    if (const QString reason = kcedDriveDialog(*box, text); !reason.isEmpty())
        KcEdEditor::instance().refuse(line, reason);
    return true;
}

// Reads lines until one answers; `answer` says whether a line does. False when nobody answered, the line
// being given back.
bool readLines(const QString& question, const std::function<bool(const KcEdLine&)>& answer)
{
    KcEdInputSource* source = KcEdEditor::instance().source();
    const KcEdActivityScope activity(KcEdActivity::Dialog);
    KcEdPrompt prompt;
    prompt.kind = KcEdPrompt::Kind::Dialog;
    prompt.text = question;
    for (;;) {
        kcedPrint(prompt.text);
        const KcEdEvent event = source->next(prompt);
        const auto* line = std::get_if<KcEdLine>(&event);
        if (!line) {
            if (std::holds_alternative<KcEdCall>(event))
                source->giveBack(event);
            kcedFreshRow();
            return false;
        }
        if (line->text.trimmed().startsWith(QLatin1Char(';')))
            continue;
        if (!line->text.trimmed().startsWith(QLatin1Char('!'))) {
            source->giveBack(*line);
            return false;
        }
        if (source->needsEcho())
            kcedPrint(line->text + QLatin1Char('\n'));
        if (answer(*line))
            return true;
    }
}

QString namesOf(const platform::FileRequest& request)
{
    QStringList patterns;
    for (const platform::FileFilter& row : platform::fileFilters(request.filter))
        patterns += row.patterns;
    patterns.removeDuplicates();
    return patterns.join(QLatin1Char(' '));
}

QString withExtension(const platform::FileRequest& request, const QString& path)
{
    if (request.opens || request.defaultExtension.isEmpty() || !QFileInfo(path).suffix().isEmpty())
        return path;
    return path + QLatin1Char('.') + request.defaultExtension;
}

// Whether a path can be taken: a file to open must be there, one to write to must not be lost by accident.
QString whyNotTaken(const platform::FileRequest& request, const QString& path)
{
    if (request.opens)
        return QFileInfo(path).isFile() ? QString() : QStringLiteral("There is no file %1.").arg(path);
    if (QFileInfo(path).isDir())
        return QStringLiteral("%1 is a folder.").arg(path);
    if (!QFileInfo(QFileInfo(path).absolutePath()).isDir())
        return QStringLiteral("There is no folder %1.").arg(QFileInfo(path).absolutePath());
    return {};
}

bool mayReplace(const platform::FileRequest& request, const QString& path)
{
    return request.opens || !QFileInfo::exists(path)
        || platform::MessageBoxW(
               request.owner, QStringLiteral("%1 已存在，是否替换？").arg(QFileInfo(path).fileName()),
               request.caption, MessageBoxButtons::YesNo, MessageBoxIcon::Warning)
        == MessageBoxAnswer::Yes;
}

QStringList filesByLines(const platform::FileRequest& request)
{
    QStringList chosen;
    kcedSay(QStringLiteral("%1 (%2)").arg(request.caption, namesOf(request)));
    const bool answered = readLines(QStringLiteral("\n[!file/!cancel]: "), [&](const KcEdLine& line) {
        QStringList words = kcedDialogWords(line.text);
        const QString verb = words.takeFirst().toLower();
        if (verb == u"!cancel" || verb == u"!close")
            return true;
        QString reason;
        if (verb != u"!file" || words.isEmpty())
            reason = QStringLiteral("A file is answered by !file PATH, or by !cancel.");
        else if (words.size() > 1 && !request.several) // a path with blanks and without quotes
            words = { line.text.trimmed().section(QLatin1Char(' '), 1).trimmed() };
        QStringList paths;
        for (const QString& word : words) {
            QString path = platform::normalisedPath(word);
            if (QFileInfo(path).isRelative() && !request.folder.isEmpty())
                path = request.folder + QLatin1Char('/') + path;
            path = withExtension(request, request.opens ? platform::findPath(path) : path);
            if (reason.isEmpty())
                reason = whyNotTaken(request, path);
            paths += path;
        }
        if (!reason.isEmpty()) {
            KcEdEditor::instance().refuse(line, reason);
            return false;
        }
        if (!mayReplace(request, paths.first()))
            return false;
        chosen = paths;
        return true;
    });
    if (!answered)
        kcedSayError(QStringLiteral("A file was asked for and none was named: %1").arg(request.caption));
    return chosen;
}

QStringList filesByDialog(const platform::FileRequest& request)
{
    QFileDialog dialog(ownerOr(request.owner), request.caption, request.folder);
    dialog.setAcceptMode(request.opens ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    dialog.setFileMode(
        !request.opens        ? QFileDialog::AnyFile
            : request.several ? QFileDialog::ExistingFiles
                              : QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    dialog.setDefaultSuffix(request.defaultExtension);
    QStringList filters;
    for (const platform::FileFilter& row : platform::fileFilters(request.filter)) {
        const QString patterns = QLatin1Char('(') + row.patterns.join(QLatin1Char(' ')) + QLatin1Char(')');
        filters += row.title.section(QLatin1Char('('), 0, 0).trimmed() + QLatin1Char(' ') + patterns;
    }
    if (!filters.isEmpty())
        dialog.setNameFilters(filters);
    if (!request.name.isEmpty())
        dialog.selectFile(request.name);
    for (;;) {
        if (kcedRunDialog(dialog, KcEdDialogLock::None) != QDialog::Accepted)
            return {};
        const QStringList files = dialog.selectedFiles();
        if (!files.isEmpty() && mayReplace(request, files.first()))
            return files;
    }
}

} // namespace

MessageBoxAnswer kcedAnswerMessageBox(const MessageBoxRequest& request)
{
    kcedSay(request.caption.isEmpty() ? request.text : request.caption + QStringLiteral(": ") + request.text);
    const MessageBoxAnswer none = platform::unattendedAnswer(request.buttons);
    KcEdInputSource* source = KcEdEditor::instance().source();
    if (!source)
        return none;
    if (!source->drivesDialogs())
        return showBox(request);
    if (!request.asks())
        return none;

    QStringList ways;
    for (const Button& button : buttonsOf(request.buttons))
        ways += QLatin1String(button.line);
    std::optional<MessageBoxAnswer> answer;
    const bool answered
        = readLines(QStringLiteral("\n[%1]: ").arg(ways.join(QLatin1Char('/'))), [&](const KcEdLine& line) {
              answer = pressedBy(request, line.text);
              if (!answer && !looksAt(request, line))
                  KcEdEditor::instance().refuse(
                      line,
                      QStringLiteral("A question is answered by one of: %1.")
                          .arg(ways.join(QStringLiteral(", "))));
              return answer.has_value();
          });
    if (!answered)
        kcedSayError(QStringLiteral("A question got no answer and was cancelled: %1").arg(request.text));
    return answer.value_or(none);
}

QStringList kcedAnswerFileRequest(const platform::FileRequest& request)
{
    KcEdInputSource* source = KcEdEditor::instance().source();
    if (!source)
        return {};
    return source->drivesDialogs() ? filesByLines(request) : filesByDialog(request);
}

void kcedInstallDialogHandlers()
{
    platform::setMessageBoxHandler(kcedAnswerMessageBox);
    platform::setFileDialogHandler(kcedAnswerFileRequest);
}
