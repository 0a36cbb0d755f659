// Showing the layers, and changing one as one undo step.

#include "ui/layer_panel.h"

#include "db/header.h"
#include "db/tables.h"
#include "ed/activity.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "ed/system_variables.h"
#include "gi/colour_table.h"
#include "widgets/colours.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QPainter>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

constexpr int kRefreshDelay = 50; // milliseconds; a command that makes a hundred layers costs one refresh

QIcon swatch(const KcCmColor& color)
{
    constexpr int kSide = 14;
    QIcon icon;
    for (const int ratio : { 1, 2, 3 }) { // of screens of common densities
        QPixmap picture(kSide * ratio, kSide * ratio);
        picture.setDevicePixelRatio(ratio);
        picture.fill(QColor::fromRgb(color.rgb >= 0 ? QRgb(color.rgb) : kcgiIndexColor(color.index)));
        QPainter painter(&picture);
        painter.setPen(Qt::gray); // white ones are seen on white, too
        painter.drawRect(QRectF(0.5, 0.5, kSide - 1, kSide - 1));
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}

} // namespace

KcUiLayerPanel::KcUiLayerPanel(QWidget* parent)
    : QWidget(parent)
    , m_filter(new QLineEdit(this))
    , m_list(new QTreeWidget(this))
{
    setObjectName(QStringLiteral("layerPanel"));
    m_filter->setPlaceholderText(QStringLiteral("Find a layer"));
    m_filter->setClearButtonEnabled(true);
    m_list->setObjectName(QStringLiteral("layers"));
    m_list->setAccessibleName(QStringLiteral("Layers"));
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAlternatingRowColors(true);
    m_list->setColumnCount(kColumns);
    m_list->setHeaderLabels({ "Layer", "On", "Frozen", "Locked", "Colour", "Line type" });
    m_list->header()->setStretchLastSection(true);
    m_list->setToolTip(QStringLiteral("Double click a layer to make it current, its colour to change it"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(2, 2, 2, 2);
    column->addWidget(m_filter);
    column->addWidget(m_list);
    QObject::connect(m_filter, &QLineEdit::textChanged, this, [this] { applyFilter(); });
    QObject::connect(m_list, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int at) {
        itemChanged(item, at);
    });
    QObject::connect(m_list, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item, int at) {
        itemActivated(item, at);
    });
    m_timer.setSingleShot(true);
    m_timer.setInterval(kRefreshDelay);
    QObject::connect(&m_timer, &QTimer::timeout, this, [this] { fill(); });
}

KcUiLayerPanel::~KcUiLayerPanel()
{
    setDocument(nullptr);
}

void KcUiLayerPanel::setDocument(KcApDocument* document)
{
    if (m_document)
        m_document->database().removeListener(this);
    m_document = document;
    if (m_document)
        m_document->database().addListener(this);
    m_timer.start();
}

void KcUiLayerPanel::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    m_timer.start();
}

void KcUiLayerPanel::changed(const KcDbObject& object)
{
    if (object.isKindOf(KcDbLayerTableRecord::desc()) || object.isKindOf(KcDbHeader::desc()))
        m_timer.start();
}

void KcUiLayerPanel::fill()
{
    if (!isVisible())
        return;
    m_filling = true;
    const QString chosen = m_list->currentItem() ? m_list->currentItem()->text(kName) : QString();
    m_list->clear();
    QList<QTreeWidgetItem*> items;
    if (m_document) {
        const QString current = kcedVarText(QStringLiteral("CLAYER"));
        const KcDbRead<KcDbSymbolTable> table(m_document->database().layerTable());
        for (const KcDbObjectId id : table->records()) {
            const KcDbRead<KcDbLayerTableRecord> layer(id);
            if (!layer)
                continue;
            auto* item = new QTreeWidgetItem;
            item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
            item->setText(kName, layer->name());
            item->setCheckState(kOn, layer->isOff() ? Qt::Unchecked : Qt::Checked);
            item->setCheckState(kFrozen, layer->isFrozen() ? Qt::Checked : Qt::Unchecked);
            item->setCheckState(kLocked, layer->isLocked() ? Qt::Checked : Qt::Unchecked);
            item->setIcon(kColor, swatch(layer->data().color));
            item->setText(
                kColor,
                layer->data().color.rgb >= 0 ? QColor::fromRgb(QRgb(layer->data().color.rgb)).name()
                                             : QString::number(layer->colorIndex()));
            item->setText(kLinetype, kcdbRecordName(layer->linetypeObjectId()));
            if (layer->name().compare(current, Qt::CaseInsensitive) == 0) {
                QFont bold = font();
                bold.setBold(true);
                item->setFont(kName, bold);
                item->setToolTip(kName, QStringLiteral("The current layer"));
            }
            items += item;
        }
    }
    std::sort(items.begin(), items.end(), [](const QTreeWidgetItem* a, const QTreeWidgetItem* b) {
        return QString::localeAwareCompare(a->text(kName), b->text(kName)) < 0;
    });
    m_list->addTopLevelItems(items);
    for (QTreeWidgetItem* item : items)
        if (item->text(kName) == chosen)
            m_list->setCurrentItem(item);
    for (const int column : { kName, kOn, kFrozen, kLocked, kColor })
        m_list->resizeColumnToContents(column);
    applyFilter();
    m_filling = false;
}

void KcUiLayerPanel::applyFilter()
{
    for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
        QTreeWidgetItem* item = m_list->topLevelItem(row);
        item->setHidden(!item->text(kName).contains(m_filter->text(), Qt::CaseInsensitive));
    }
}

void KcUiLayerPanel::itemChanged(QTreeWidgetItem* item, int column)
{
    if (m_filling || (column != kOn && column != kFrozen && column != kLocked))
        return;
    const QString name = item->text(kName);
    const bool checked = item->checkState(column) == Qt::Checked;
    kcedRequest(KcEdWish::Change, [this, name, checked, column] {
        if (!m_document)
            return;
        KcDbDatabase& database = m_document->database();
        const bool isCurrent = name.compare(kcedVarText(QStringLiteral("CLAYER")), Qt::CaseInsensitive) == 0;
        if (column == kFrozen && checked && isCurrent) {
            kcedSay(QStringLiteral("The current layer cannot be frozen."));
        } else {
            const KcApUndoStep step(database, QStringLiteral("LAYER"));
            if (KcDbWrite<KcDbLayerTableRecord> layer(kcdbFindRecord(database.layerTable(), name)); layer) {
                if (column == kOn)
                    layer->setIsOff(!checked);
                else if (column == kFrozen)
                    layer->setIsFrozen(checked);
                else
                    layer->setIsLocked(checked);
            }
        }
        m_timer.start();
        kcedRegenerate();
    });
}

void KcUiLayerPanel::changeColor(const QString& name)
{
    KcDbDatabase& database = m_document->database();
    const KcDbObjectId id = kcdbFindRecord(database.layerTable(), name);
    int color = 7;
    if (const KcDbRead<KcDbLayerTableRecord> layer(id); layer)
        color = layer->colorIndex();
    if (!kcedSetColorDialog(color, false, color))
        return;
    const KcApUndoStep step(database, QStringLiteral("LAYER"));
    if (KcDbWrite<KcDbLayerTableRecord> layer(id); layer)
        layer->setColor(color);
}

void KcUiLayerPanel::itemActivated(QTreeWidgetItem* item, int column)
{
    const QString name = item->text(kName);
    kcedRequest(KcEdWish::Change, [this, name, column] {
        if (!m_document)
            return;
        if (column == kName) {
            if (const QString sentence = kcedSetVar(QStringLiteral("CLAYER"), name); !sentence.isEmpty())
                kcedSay(sentence);
        } else if (column == kColor) {
            changeColor(name);
        }
        m_timer.start();
    });
}
