// VDLABOUT: the About box, with product name and version.

#include "ed/dialogs.h"
#include "ed/documents.h"
#include "frame/about_dialog.h"
#include "frame/commands.h"
#include "frame/module.h"
#include "frame/settings.h"
#include "widgets/product_icon.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

QString versionOfBuild(const QString& buildDate)
{
    const int month
        = int(QStringLiteral("JanFebMarAprMayJunJulAugSepOctNovDec").indexOf(buildDate.left(3))) / 3 + 1;
    const int day = buildDate.mid(4, 2).trimmed().toInt();
    const auto twoDigits
        = [](int number) { return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0')); };
    return buildDate.mid(7, 4) + twoDigits(month) + twoDigits(day);
}

CAboutDlg::CAboutDlg(QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("CAboutDlg"));
    setWindowTitle(QStringLiteral("About Verdelis"));
    auto* icon = new QLabel;
    icon->setPixmap(productIcon(64, devicePixelRatioF()));
    auto* name
        = new QLabel(productSettings().text(QStringLiteral("PRODUCT INFO"), QStringLiteral("sProductName")));
    name->setObjectName(QStringLiteral("sProductName"));
    name->setTextFormat(Qt::PlainText);
    auto* version = new QLabel(versionOfBuild(QStringLiteral(__DATE__)));
    version->setObjectName(QStringLiteral("version"));
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("确定"));
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("BTNOK"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* grid = new QGridLayout(this);
    grid->setHorizontalSpacing(16);
    grid->addWidget(icon, 0, 0, 2, 1);
    grid->addWidget(name, 0, 1, 1, 2);
    grid->addWidget(new QLabel(QStringLiteral("当前版本：")), 1, 1);
    grid->addWidget(version, 1, 2);
    grid->addWidget(buttons, 2, 0, 1, 3);
    grid->setColumnStretch(2, 1);
}

void showAbout()
{
    const KcApResourceScope resources(moduleHandle());
    CAboutDlg dialog(kcDocManagerPtr()->mainWindow());
    kcedRunDialog(dialog, KcEdDialogLock::None);
}
