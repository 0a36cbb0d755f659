// Passes requests for files to whoever shows them.

#include "platform/file_dialog.h"

namespace platform {

namespace {

FileDialogHandler& currentHandler()
{
    static FileDialogHandler handler;
    return handler;
}

} // namespace

std::vector<FileFilter> fileFilters(const QString& filter)
{
    std::vector<FileFilter> rows;
    const QStringList parts = filter.split(QLatin1Char('|'));
    for (qsizetype i = 0; i + 1 < parts.size() && !parts[i].isEmpty(); i += 2) {
        QStringList patterns = parts[i + 1].split(QLatin1Char(';'), Qt::SkipEmptyParts);
        for (QString& pattern : patterns)
            if (pattern = pattern.trimmed(); pattern == u"*.*")
                pattern = QStringLiteral("*");
        rows.push_back({ parts[i], patterns });
    }
    return rows;
}

FileDialogHandler setFileDialogHandler(FileDialogHandler handler)
{
    return std::exchange(currentHandler(), std::move(handler));
}

QStringList askForFiles(const FileRequest& request)
{
    // A copy, so that a handler may replace itself.
    const FileDialogHandler handler = currentHandler();
    return handler ? handler(request) : QStringList();
}

QString askForFile(const FileRequest& request)
{
    return askForFiles(request).value(0);
}

} // namespace platform
