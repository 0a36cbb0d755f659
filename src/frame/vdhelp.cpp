// VDHELP: the help file lies in the folder Sys below the application root; the host opens it.

#include "frame/commands.h"

#include "core/application.h"
#include "ed/documents.h"

QString helpExpression(const QString& appRoot)
{
    QString expression = QStringLiteral("(help \"%1Sys\\VdHelp.chm\")\n").arg(appRoot);
    return expression.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
}

void openHelp()
{
    KcApDocManager* documents = kcDocManagerPtr();
    documents->sendStringToExecute(
        documents->curDocument(), helpExpression(GetAppRoot()), true, false, false);
}
