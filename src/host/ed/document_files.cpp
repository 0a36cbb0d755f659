// Drawings that come and go, with every failure told and nothing lost.

#include "ed/document_files.h"

#include "ed/activity.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "ed/input.h"
#include "ed/status_bar.h"
#include "ed/system_variables.h"
#include "platform/file_dialog.h"
#include "platform/files.h"
#include "platform/message_box.h"

#include <QFileInfo>
#include <QStringDecoder>

namespace {

constexpr qint64 kBytesWithoutMeter = qint64(4) << 20; // read faster than a meter is looked at

void tell(const QString& sentence)
{
    platform::MessageBoxW(
        nullptr, sentence, QStringLiteral("Verdelis"), platform::MessageBoxButtons::Ok,
        platform::MessageBoxIcon::Error);
}

/// False, and said, when something holds the current drawing.
bool mayReplace(KcApDocument* current)
{
    if (!current || current->lockCount() == 0)
        return true;
    tell(QStringLiteral("Close the dialogs that work on this drawing first."));
    return false;
}

void replaceCurrent(std::unique_ptr<KcDbDatabase> database)
{
    KcApDocument* before = kcDocManagerPtr()->curDocument();
    kcDocManagerPtr()->open(std::move(database));
    if (before)
        kcDocManagerPtr()->close(*before);
}

/// By a dialog where there is a window, else as a line; Enter takes what is offered.
QString askFile(const platform::FileRequest& request, const QString& offered)
{
    if (kcDocManagerPtr()->mainWindow() && kcedVarInt(QStringLiteral("FILEDIA"), 1) == 1)
        return platform::askForFile(request);
    const QString offer = offered.isEmpty() ? QString() : QStringLiteral(" <%1>").arg(offered);
    QString path;
    const KcEdStatus status
        = kcedGetString(true, QStringLiteral("\n%1%2: ").arg(request.caption, offer), path);
    if (status != kcedNormal)
        return status == kcedNone ? offered : QString();
    path = path.trimmed();
    if (path.size() > 1 && path.startsWith(u'"') && path.endsWith(u'"'))
        path = path.mid(1, path.size() - 2);
    const bool lacksExtension = !request.opens && QFileInfo(path).suffix().isEmpty();
    return lacksExtension && !path.isEmpty() ? path + QLatin1Char('.') + request.defaultExtension : path;
}

} // namespace

dxf::Result kcedReadDrawing(const QString& path, KcDbDatabase& database)
{
    // The window looks at what the user does meanwhile; nothing of it may get at the drawings.
    const KcEdActivityScope working(KcEdActivity::Working);
    if (QFileInfo(path).size() < kBytesWithoutMeter)
        return dxf::readDrawing(path, database);
    KcEdProgress meter(QStringLiteral("Opening %1").arg(QFileInfo(path).fileName()), 100);
    return dxf::readDrawing(path, database, [&](int percent) {
        meter.setPosition(percent);
        return !kcedProgressCancelled();
    });
}

bool kcedOpenDrawing(const QString& path)
{
    if (!mayReplace(kcDocManagerPtr()->curDocument()))
        return false;
    auto database = std::make_unique<KcDbDatabase>(KcDbDatabase::Content::kEmpty);
    const dxf::Result result = kcedReadDrawing(path, *database);
    if (result.stopped) {
        kcedSay(QStringLiteral("Stopped; %1 is not opened.").arg(path));
        return false;
    }
    if (!result.ok) {
        tell(result.error);
        return false;
    }
    for (const QString& note : result.notes)
        kcedSay(note);
    replaceCurrent(std::move(database));
    kcedSay(QStringLiteral("Opened %1").arg(path));
    return true;
}

bool kcedNewDrawing()
{
    if (!mayReplace(kcDocManagerPtr()->curDocument()))
        return false;
    replaceCurrent(std::make_unique<KcDbDatabase>());
    return true;
}

bool kcedSaveDrawing(KcApDocument& document, const QString& path)
{
    document.setWriteProtected(true);
    const auto result = dxf::saveDrawing(document.database(), path);
    document.setWriteProtected(false);
    for (const QString& note : result.notes)
        kcedSay(note);
    if (!result.ok) {
        tell(result.error);
        return false;
    }
    document.database().setFileName(path);
    document.markSaved();
    kcedSay(QStringLiteral("Saved %1").arg(path));
    return true;
}

bool kcedMayDiscard(KcApDocument& document)
{
    if (!document.isModified())
        return true;
    const QString name = document.database().fileName();
    const auto answer = platform::MessageBoxW(
        nullptr,
        QStringLiteral("%1 has changes that are not saved. Save them?")
            .arg(name.isEmpty() ? QStringLiteral("The new drawing") : name),
        QStringLiteral("Verdelis"), platform::MessageBoxButtons::YesNoCancel,
        platform::MessageBoxIcon::Question);
    if (answer != platform::MessageBoxAnswer::Yes)
        return answer == platform::MessageBoxAnswer::No;
    const QString path
        = name.isEmpty() ? kcedAskDrawingFile(QStringLiteral("Save the drawing as"), false, {}) : name;
    return !path.isEmpty() && kcedSaveDrawing(document, path);
}

QString kcedAskDrawingFile(const QString& question, bool opens, const QString& suggested)
{
    platform::FileRequest request;
    request.caption = question;
    request.opens = opens;
    request.filter = QStringLiteral("Drawings (*.dxf)|*.dxf|All files|*.*||");
    request.defaultExtension = QStringLiteral("dxf");
    request.folder = suggested.isEmpty() ? QString() : QFileInfo(suggested).path();
    request.name = QFileInfo(suggested).fileName();
    return askFile(request, opens ? QString() : suggested);
}

QString kcedAskScriptFile()
{
    platform::FileRequest request;
    request.caption = QStringLiteral("Script to run");
    request.filter = QStringLiteral("Scripts (*.scr)|*.scr|All files|*.*||");
    return askFile(request, {});
}

platform::Result<QString> kcedReadScript(const QString& path)
{
    const auto bytes = platform::readWholeFile(path);
    if (!bytes)
        return platform::Result<QString>::failure(bytes.error);
    QStringDecoder decoder(QStringConverter::encodingForData(*bytes).value_or(QStringConverter::Utf8));
    const QString text = decoder(*bytes);
    if (decoder.hasError())
        return platform::Result<QString>::failure(
            QStringLiteral("The script %1 is not written in UTF-8.").arg(path));
    return { text, {} };
}
