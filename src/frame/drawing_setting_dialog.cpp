// Controls of the drawing settings, the checks while editing, and the preview.

#include "frame/drawing_setting_dialog.h"

#include "core/drawing_config.h"
#include "core/layers.h"
#include "core/preview.h"
#include "core/styles.h"
#include "frame/module.h"
#include "frame/sample_drawing.h"
#include "frame/split.h"
#include "platform/message_box.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

struct CDrawingSettingDlg::Controls {
    QComboBox *scale, *unit, *textStyle, *labelStyle;
    QLineEdit *textHeight, *tableTextHeight, *areaDigits;
    QCheckBox *autoAlign, *groupLabels, *backFill;
    QComboBox *labelType, *countUnit, *arcType, *treeLayer, *areaUnit, *areaLayer;
    QCheckBox *merge, *breakLeaders, *speciality, *ownTreeLayer, *ownAreaLayer;
    CGsPreviewCtrl* preview;
};

namespace {

QComboBox* makeList(const char* name, const QString& entries)
{
    auto* list = new QComboBox;
    list->setObjectName(QLatin1String(name));
    if (!entries.isEmpty())
        list->addItems(splitFields(entries, QLatin1Char(',')));
    return list;
}

QLineEdit* makeField(const char* name)
{
    auto* field = new QLineEdit;
    field->setObjectName(QLatin1String(name));
    field->setMaximumWidth(field->fontMetrics().averageCharWidth() * 16);
    return field;
}

QCheckBox* makeCheck(const char* name, const QString& text)
{
    auto* check = new QCheckBox(text);
    check->setObjectName(QLatin1String(name));
    return check;
}

void addRow(QFormLayout& form, const char* text, QWidget* field)
{
    form.addRow(localised(QLatin1String(text)), field);
}

// The drawing's layers; one that is remembered and no longer there comes first.
void fillLayers(QComboBox& list, const QString& remembered)
{
    QStringList names;
    GetLayers(names);
    QString chosen = remembered;
    if (chosen.isEmpty())
        GetCurrentLayer(chosen);
    else if (!names.contains(chosen, Qt::CaseInsensitive))
        names.prepend(chosen);
    list.addItems(names);
    list.setCurrentIndex(std::max(0, list.findText(chosen, Qt::MatchFixedString)));
}

} // namespace

CDrawingSettingDlg::CDrawingSettingDlg(QWidget* parent)
    : QDialog(parent)
    , m_controls(std::make_unique<Controls>())
{
    setObjectName(QStringLiteral("CDrawingSettingDlg"));
    setWindowTitle(localised(QStringLiteral("DRAWINGSETTINGSDLG")));
    setSizeGripEnabled(true);
    m_controls->preview = new CGsPreviewCtrl;
    m_controls->preview->setObjectName(QStringLiteral("preview"));
    m_controls->preview->setMinimumSize(320, 160);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(localised(QStringLiteral("BTNOK")));
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("BTNOK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(localised(QStringLiteral("BTNCANCEL")));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("BTNCANCEL"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* left = new QVBoxLayout;
    left->addWidget(makeCommonGroup());
    left->addStretch();
    auto* right = new QVBoxLayout;
    right->addWidget(makeTreeGroup());
    right->addWidget(makeAreaGroup());
    right->addStretch();
    auto* groups = new QHBoxLayout;
    groups->addLayout(left);
    groups->addLayout(right);
    auto* column = new QVBoxLayout(this);
    column->addLayout(groups);
    column->addWidget(m_controls->preview, 1);
    column->addWidget(buttons);

    if (const auto settings = readDrawingSettings()) {
        m_isLoaded = true;
        show(*settings);
    } else {
        for (QComboBox* list : findChildren<QComboBox*>())
            list->setCurrentIndex(-1);
    }
    watch();
    drawPreview();
}

CDrawingSettingDlg::~CDrawingSettingDlg() = default;

QWidget* CDrawingSettingDlg::makeCommonGroup()
{
    auto* group = new QGroupBox(localised(QStringLiteral("GBSET")));
    auto* form = new QFormLayout(group);
    Controls& c = *m_controls;
    addRow(*form, "SCALE", c.scale = makeList("dDrawingScale", QStringLiteral("1,5,10,50,100,200,500,1000")));
    c.scale->setEditable(true);
    c.scale->setInsertPolicy(QComboBox::NoInsert);
    c.scale->setCompleter(nullptr);
    addRow(*form, "TEXTHEIGHT", c.textHeight = makeField("dTextHeight"));
    addRow(*form, "UNIT", c.unit = makeList("iDrawingUnit", QStringLiteral("mm,cm,dm,m")));
    addRow(*form, "TBLTEXTHEIGHT", c.tableTextHeight = makeField("dTableTextHeight"));
    addRow(*form, "TEXTSTYLE", c.textStyle = makeList("sTextStyle", {}));
    addRow(*form, "DIMSTYLE", c.labelStyle = makeList("iDimStyle", QStringLiteral("括号,空格,破折号")));
    form->addRow(c.autoAlign = makeCheck("bAutoAlign", localised(QStringLiteral("AUTOALIGN"))));
    form->addRow(c.groupLabels = makeCheck("bDimGrouping", localised(QStringLiteral("DIMGROUPING"))));
    form->addRow(c.backFill = makeCheck("bTextBackFill", localised(QStringLiteral("TEXTBACKFILL"))));
    QStringList styles;
    GetTextStyles(styles);
    c.textStyle->addItems(styles);
    return group;
}

QWidget* CDrawingSettingDlg::makeTreeGroup()
{
    auto* group = new QGroupBox(localised(QStringLiteral("TREESET")));
    auto* form = new QFormLayout(group);
    Controls& c = *m_controls;
    addRow(
        *form, "DIMTYPE",
        c.labelType = makeList("iDimType", QStringLiteral("默认,最后标点,全部标点,全部带圆,有点有圆")));
    addRow(*form, "DIMUNIT", c.countUnit = makeList("iDimUnit", QStringLiteral(" ,株,丛")));
    addRow(*form, "ARCTYPE", c.arcType = makeList("iArcType", QStringLiteral("所有同向,间隔同向")));
    form->addRow(c.merge = makeCheck("bAutoMerge", localised(QStringLiteral("MERGEDIMTYPE"))));
    form->addRow(c.breakLeaders = makeCheck("bAutoBroken", localised(QStringLiteral("AUTOBROKEN"))));
    form->addRow(c.speciality = makeCheck("bDimType", localised(QStringLiteral("DIMTYPE2"))));
    c.ownTreeLayer = makeCheck("bTreeDimLayer", localised(QStringLiteral("OWNDIMLAYER")));
    form->addRow(c.ownTreeLayer, c.treeLayer = makeList("sTreeDimLayer", {}));
    return group;
}

QWidget* CDrawingSettingDlg::makeAreaGroup()
{
    auto* group = new QGroupBox(localised(QStringLiteral("LANDSET")));
    auto* form = new QFormLayout(group);
    Controls& c = *m_controls;
    addRow(*form, "AREADIGIT", c.areaDigits = makeField("iAreaDigit"));
    addRow(*form, "AREAUNIT", c.areaUnit = makeList("iAreaUnit", QStringLiteral("m²,,m2,M2")));
    c.ownAreaLayer = makeCheck("bAreaDimLayer", localised(QStringLiteral("OWNDIMLAYER")));
    form->addRow(c.ownAreaLayer, c.areaLayer = makeList("sAreaDimLayer", {}));
    return group;
}

void CDrawingSettingDlg::show(const DrawingSettings& settings)
{
    Controls& c = *m_controls;
    c.scale->setEditText(m_scale = settings.scale);
    c.textHeight->setText(m_textHeight = settings.textHeight);
    c.unit->setCurrentIndex(settings.unit);
    c.tableTextHeight->setText(m_tableTextHeight = settings.tableTextHeight);
    int style = c.textStyle->findText(settings.textStyle, Qt::MatchFixedString);
    if (style < 0)
        style = c.textStyle->findText(QStringLiteral("Standard"), Qt::MatchFixedString);
    c.textStyle->setCurrentIndex(style);
    c.labelStyle->setCurrentIndex(settings.labelStyle);
    c.autoAlign->setChecked(settings.autoAlign);
    c.groupLabels->setChecked(settings.groupLabels);
    c.backFill->setChecked(settings.backFill);
    c.labelType->setCurrentIndex(settings.labelType);
    c.countUnit->setCurrentIndex(settings.countUnit);
    c.arcType->setCurrentIndex(settings.arcType);
    c.merge->setChecked(settings.merge);
    c.breakLeaders->setChecked(settings.breakLeaders);
    c.speciality->setChecked(settings.speciality);
    c.ownTreeLayer->setChecked(settings.ownTreeLayer);
    fillLayers(*c.treeLayer, settings.treeLayer);
    c.areaDigits->setText(m_areaDigits = QString::number(settings.areaDigits));
    c.areaUnit->setCurrentIndex(settings.areaUnit);
    c.ownAreaLayer->setChecked(settings.ownAreaLayer);
    fillLayers(*c.areaLayer, settings.areaLayer);
}

void CDrawingSettingDlg::watch()
{
    Controls& c = *m_controls;
    c.treeLayer->setEnabled(c.ownTreeLayer->isChecked());
    c.areaLayer->setEnabled(c.ownAreaLayer->isChecked());
    connect(c.ownTreeLayer, &QCheckBox::toggled, c.treeLayer, &QWidget::setEnabled);
    connect(c.ownAreaLayer, &QCheckBox::toggled, c.areaLayer, &QWidget::setEnabled);
    for (QComboBox* list : { c.labelStyle, c.countUnit, c.areaUnit, c.textStyle })
        connect(list, &QComboBox::currentIndexChanged, this, [this] { drawPreview(); });

    connect(c.scale->lineEdit(), &QLineEdit::editingFinished, this, [this, &c] {
        if (const auto scale = checkedScale(c.scale->currentText()))
            c.scale->setEditText(m_scale = *scale);
        else
            refuse(
                *c.scale->lineEdit(), m_scale, QStringLiteral("请输入大于0的数!"),
                QStringLiteral("绘图比例"));
    });
    connect(c.scale, &QComboBox::activated, this, [this, &c] { m_scale = c.scale->currentText(); });
    const auto watchHeight = [this](QLineEdit* field, QString& accepted, const QString& caption) {
        connect(field, &QLineEdit::editingFinished, this, [this, field, &accepted, caption] {
            if (const auto height = checkedTextHeight(field->text()))
                field->setText(accepted = *height);
            else
                refuse(*field, accepted, QStringLiteral("请输入大于0.0的浮点数!"), caption);
        });
    };
    watchHeight(c.textHeight, m_textHeight, QStringLiteral("标注字高"));
    watchHeight(c.tableTextHeight, m_tableTextHeight, QStringLiteral("表格字高"));
    connect(c.areaDigits, &QLineEdit::editingFinished, this, [this, &c] {
        if (const auto digits = checkedAreaDigits(c.areaDigits->text()))
            c.areaDigits->setText(m_areaDigits = QString::number(*digits));
        else
            refuse(
                *c.areaDigits, m_areaDigits, QStringLiteral("只能输入0~9之间的整数!"),
                QStringLiteral("面积位数"));
        drawPreview();
    });
}

void CDrawingSettingDlg::refuse(
    QLineEdit& field, const QString& before, const QString& message, const QString& caption)
{
    // Without a settings file the controls begin empty, and passing through one is no mistake.
    if (!m_isLoaded && field.text().isEmpty())
        return;
    field.setText(before);
    if (m_refused)
        return; // the box below takes the focus away, which ends the editing once more
    m_refused = true;
    platform::MessageBoxW(
        this, message, caption, platform::MessageBoxButtons::Ok, platform::MessageBoxIcon::Warning);
    // Return both ends the editing and presses OK: the dialog stays, so that the user sees what became of it.
    QTimer::singleShot(0, this, [this, &field] {
        field.setFocus();
        field.selectAll();
        m_refused = false;
    });
}

DrawingSettings CDrawingSettingDlg::values() const
{
    const Controls& c = *m_controls;
    DrawingSettings result;
    result.scale = m_scale;
    result.textHeight = m_textHeight;
    result.unit = c.unit->currentIndex();
    result.tableTextHeight = m_tableTextHeight;
    result.textStyle = c.textStyle->currentText();
    result.labelStyle = c.labelStyle->currentIndex();
    result.autoAlign = c.autoAlign->isChecked();
    result.groupLabels = c.groupLabels->isChecked();
    result.backFill = c.backFill->isChecked();
    result.labelType = c.labelType->currentIndex();
    result.countUnit = c.countUnit->currentIndex();
    result.arcType = c.arcType->currentIndex();
    result.merge = c.merge->isChecked();
    result.breakLeaders = c.breakLeaders->isChecked();
    result.speciality = c.speciality->isChecked();
    result.ownTreeLayer = c.ownTreeLayer->isChecked();
    result.treeLayer = c.treeLayer->currentText();
    result.areaDigits = m_areaDigits.toInt();
    result.areaUnit = c.areaUnit->currentIndex();
    result.ownAreaLayer = c.ownAreaLayer->isChecked();
    result.areaLayer = c.areaLayer->currentText();
    return result;
}

void CDrawingSettingDlg::accept()
{
    if (m_refused)
        return;
    if (m_isLoaded)
        if (const QString failure = writeDrawingSettings(values()); !failure.isEmpty()) {
            platform::MessageBoxW(
                this, failure, windowTitle(), platform::MessageBoxButtons::Ok,
                platform::MessageBoxIcon::Error);
            return;
        }
    QDialog::accept();
}

void CDrawingSettingDlg::drawPreview()
{
    m_controls->preview->setDatabase(sampleDrawing(values()));
}
