// Opening, saving and preparing, each with a plain message when it fails.

#include "program.h"

#include "ed/console.h"
#include "ed/document_files.h"
#include "ed/host_commands.h"
#include "ed/message_boxes.h"
#include "ed/module.h"
#include "platform/app_root.h"

#include <QFileInfo>

namespace program {

int wrongUsage(const QString& sentence)
{
    kcedSayError(sentence);
    kcedSayError(QStringLiteral("`verdelis --help` says what the program takes."));
    return kUsageError;
}

int fileError(const QString& sentence)
{
    kcedSayError(sentence);
    return kFileError;
}

std::optional<QString> takeOption(Arguments& arguments, const QString& name)
{
    const qsizetype at = arguments.indexOf(name);
    if (at < 0 || at + 1 >= arguments.size())
        return {};
    const QString value = arguments[at + 1];
    arguments.remove(at, 2);
    return value;
}

QString strayOption(const Arguments& arguments)
{
    for (const QString& argument : arguments)
        if (argument.startsWith(QLatin1Char('-')) && argument.size() > 1)
            return argument;
    return {};
}

KcApDocument* openDrawing(const QString& path)
{
    auto database = std::make_unique<KcDbDatabase>(KcDbDatabase::Content::kEmpty);
    const dxf::Result result = kcedReadDrawing(path, *database);
    if (!result.ok) {
        kcedSayError(result.error);
        return nullptr;
    }
    for (const QString& note : result.notes)
        kcedSayError(note);
    return &kcDocManagerPtr()->open(std::move(database));
}

QString whyNotWritable(const QString& path)
{
    const QFileInfo file(path);
    if (path.isEmpty())
        return QStringLiteral("The name of the result is empty.");
    if (file.isDir())
        return QStringLiteral("%1 cannot be written: it is a folder.").arg(path);
    const QFileInfo folder(file.absolutePath());
    if (!folder.isDir())
        return QStringLiteral("%1 cannot be written: there is no folder %2.").arg(path, folder.filePath());
    if (file.exists() ? !file.isWritable() : !folder.isWritable())
        return QStringLiteral("%1 cannot be written: that is not allowed.").arg(path);
    return {};
}

bool saveDrawingAs(KcApDocument& document, const QString& path)
{
    document.setWriteProtected(true);
    const auto result = dxf::saveDrawing(document.database(), path);
    document.setWriteProtected(false);
    for (const QString& note : result.notes)
        kcedSayError(note);
    if (!result.ok)
        kcedSayError(result.error);
    return result.ok;
}

bool prepareCommands()
{
    if (const platform::Status root = platform::prepareAppRoot(); !root) {
        kcedSayError(root.error);
        return false;
    }
    kcedInstallDialogHandlers();
    kcedRegisterHostCommands();
    if (!kcrxDynamicLinker().isLoaded(kcrxMainModulePath()))
        if (const platform::Status loaded = kcrxDynamicLinker().loadModule(kcrxMainModulePath()); !loaded)
            kcedSayError(loaded.error);
    return true;
}

} // namespace program
