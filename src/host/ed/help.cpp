// Reading the help expression and saying where the help file lies.

#include "ed/help.h"

#include "ed/console.h"
#include "platform/files.h"

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

void kcedShowHelp(const QString& path)
{
    const QString file = platform::findPath(platform::normalisedPath(path));
    if (QFileInfo::exists(file))
        kcedSay(QStringLiteral("Help: %1").arg(file));
    else
        kcedSay(QStringLiteral("The help file %1 is missing.").arg(file));
}
