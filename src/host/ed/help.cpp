// Reading the help expression, finding the help file, and opening it.

#include "ed/help.h"

#include "ed/console.h"
#include "ed/documents.h"
#include "platform/files.h"

#include <QDesktopServices>
#include <QUrl>

std::optional<QString> kcedHelpPath(const QString& text)
{
    static const QRegularExpression form(
        QStringLiteral(R"re(^\s*\(\s*help\s+"((?:[^"\\]|\\.)*)"\s*\)\s*$)re"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return {};
    QString path;
    const QString quoted = match.captured(1);
    for (qsizetype i = 0; i < quoted.size(); ++i) {
        if (quoted[i] == QLatin1Char('\\'))
            ++i;
        path += quoted[i];
    }
    return path;
}

QString kcedFindHelp(const QString& path)
{
    const QString file = platform::findPath(platform::normalisedPath(path));
    if (QFileInfo(file).isFile())
        return file;
    const QString stem = QFileInfo(file).path() + QLatin1Char('/') + QFileInfo(file).completeBaseName();
    for (const char* pages : { ".html", ".htm", "/index.html" })
        if (const QString found = platform::findPath(stem + QLatin1String(pages)); QFileInfo(found).isFile())
            return found;
    return {};
}

void kcedShowHelp(const QString& path)
{
    const QString file = kcedFindHelp(path);
    if (file.isEmpty())
        return kcedSay(QStringLiteral("The help file %1 is missing.")
                           .arg(platform::findPath(platform::normalisedPath(path))));
    kcedSay(QStringLiteral("Help: %1").arg(file));
    if (kcDocManagerPtr()->mainWindow() && !QDesktopServices::openUrl(QUrl::fromLocalFile(file)))
        kcedSay(QStringLiteral("The desktop has no program that opens it."));
}
