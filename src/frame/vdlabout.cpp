// VDLABOUT: product name and version. Without a window they are printed on the command line.

#include "frame/commands.h"

#include "ed/console.h"
#include "ed/documents.h"
#include "frame/module.h"
#include "frame/settings.h"

QString versionOfBuild(const QString& buildDate)
{
    const int month
        = int(QStringLiteral("JanFebMarAprMayJunJulAugSepOctNovDec").indexOf(buildDate.left(3))) / 3 + 1;
    const int day = buildDate.mid(4, 2).trimmed().toInt();
    const auto twoDigits
        = [](int number) { return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0')); };
    return buildDate.mid(7, 4) + twoDigits(month) + twoDigits(day);
}

void showAbout()
{
    const KcApResourceScope resources(moduleHandle());
    kcedSay(productSettings().text(QStringLiteral("PRODUCT INFO"), QStringLiteral("sProductName")));
    kcedSay(QStringLiteral("当前版本：") + versionOfBuild(QStringLiteral(__DATE__)));
}
