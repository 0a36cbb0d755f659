// The selection in words.

#include "ui/property_panel.h"

#include "db/curves.h"
#include "db/dictionary.h"
#include "db/tables.h"
#include "ed/activity.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "ed/entity_dump.h"
#include "ed/property_names.h"
#include "ed/selection_filter.h"
#include "widgets/colour_combo.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QJsonArray>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

constexpr int kMostItems = 200; // of a long list of values; the rest is counted

QStringList recordNames(KcDbObjectId table)
{
    QStringList names;
    if (const KcDbRead<KcDbSymbolTable> records(table); records)
        for (const KcDbObjectId id : records->records())
            names += kcdbRecordName(id);
    std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) {
        return QString::localeAwareCompare(a, b) < 0;
    });
    return names;
}

// An object as links name it: an entity by its kind and layer, a record by the name it is entered under.
QString objectTitle(KcDbObjectId id)
{
    const QString handle = QLatin1Char('#') + QString::number(id.handle(), 16).toUpper();
    const KcDbRead<KcDbObject> object(id);
    if (!object)
        return handle + QStringLiteral(" (erased)");
    if (object->isKindOf(KcDbEntity::desc()))
        return QStringLiteral("%1 %2, %3")
            .arg(
                kcedKindInWords(kcedEntityTypeName(static_cast<const KcDbEntity&>(*object))), handle,
                static_cast<const KcDbEntity&>(*object).layer());
    if (const KcDbRead<KcDbDictionary> dictionary(object->ownerId()); dictionary)
        if (const QString name = dictionary->nameOf(id); !name.isEmpty())
            return QStringLiteral("%1 %2").arg(kcedTagName(name).name, handle);
    return QStringLiteral("%1 %2").arg(object->isA()->name(), handle);
}

// Short lists of numbers (points, colours) read better in one row.
bool isShortList(const QJsonArray& list)
{
    return list.size() <= 4
        && std::all_of(list.begin(), list.end(), [](const QJsonValue& v) { return v.isDouble(); });
}

} // namespace

KcUiPropertyPanel::KcUiPropertyPanel(QWidget* parent)
    : QWidget(parent)
    , m_common(new QWidget(this))
    , m_layer(new QComboBox(m_common))
    , m_color(new CKcUiColorComboBox(true, m_common))
    , m_linetype(new QComboBox(m_common))
    , m_tree(new QTreeWidget(this))
{
    auto* form = new QFormLayout(m_common);
    form->setContentsMargins(4, 4, 4, 4);
    m_layer->setObjectName(QStringLiteral("selectionLayer"));
    m_color->setObjectName(QStringLiteral("selectionColor"));
    m_linetype->setObjectName(QStringLiteral("selectionLinetype"));
    for (QComboBox* box : { m_layer, m_linetype, static_cast<QComboBox*>(m_color) }) {
        box->setPlaceholderText(QStringLiteral("differs"));
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        box->setMinimumContentsLength(8);
    }
    form->addRow(QStringLiteral("Layer"), m_layer);
    form->addRow(QStringLiteral("Colour"), m_color);
    form->addRow(QStringLiteral("Line type"), m_linetype);
    QObject::connect(m_layer, &QComboBox::textActivated, this, [this](const QString& name) {
        change([name](KcDbEntity& entity) { entity.setLayer(name); });
    });
    m_color->onChosen
        = [this](int index) { change([index](KcDbEntity& entity) { entity.setColorIndex(index); }); };
    QObject::connect(m_linetype, &QComboBox::textActivated, this, [this](const QString& name) {
        const KcDbObjectId linetype = kcdbFindRecord(m_document->database().linetypeTable(), name);
        change([linetype](KcDbEntity& entity) { entity.setLinetypeId(linetype); });
    });
    setObjectName(QStringLiteral("propertyPanel"));
    m_tree->setObjectName(QStringLiteral("properties"));
    m_tree->setAccessibleName(QStringLiteral("Properties of the selection"));
    m_tree->setColumnCount(2);
    m_tree->setHeaderLabels({ "Property", "Value" });
    m_tree->setAlternatingRowColors(true);
    m_tree->header()->setStretchLastSection(true);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(2, 2, 2, 2);
    column->addWidget(m_common);
    column->addWidget(m_tree, 1);
    m_common->hide();
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, this, [this] { fill(); });
}

void KcUiPropertyPanel::setDocument(KcApDocument* document)
{
    m_document = document;
    m_shown.clear();
    m_tree->clear();
    refresh();
}

void KcUiPropertyPanel::refresh()
{
    if (isVisible() && !m_timer.isActive())
        m_timer.start(0);
}

void KcUiPropertyPanel::change(std::function<void(KcDbEntity&)> setting)
{
    const std::vector<KcDbObjectId> ids = m_shown;
    kcedRequest(KcEdWish::Change, [this, ids, setting = std::move(setting), document = m_document] {
        if (document != m_document || !document)
            return;
        size_t locked = 0;
        {
            const KcApUndoStep step(document->database(), QStringLiteral("PROPERTIES"));
            for (const KcDbObjectId id : ids) {
                KcDbObjectId layerId;
                if (const KcDbRead<KcDbEntity> entity(id); entity)
                    layerId = entity->layerId();
                const KcDbRead<KcDbLayerTableRecord> layer(layerId);
                if (layer && layer->isLocked())
                    ++locked;
                else if (KcDbWrite<KcDbEntity> entity(id); entity)
                    setting(*entity);
            }
        }
        if (locked > 0)
            kcedSay(QStringLiteral("%1 on a locked layer").arg(locked));
        // A prompt that was cancelled for this has shown the old values again.
        m_shownAt = 0;
        refresh();
    });
}

void KcUiPropertyPanel::fillChoices()
{
    KcDbDatabase& database = m_document->database();
    m_layer->clear();
    m_layer->addItems(recordNames(database.layerTable()));
    m_linetype->clear();
    m_linetype->addItems(recordNames(database.linetypeTable()));
}

// What all of them have in common; nothing is shown where they differ.
void KcUiPropertyPanel::showCommon(const std::vector<KcDbObjectId>& ids)
{
    fillChoices();
    std::optional<KcDbObjectId> layer, linetype;
    std::optional<int> color;
    bool oneLayer = true, oneLinetype = true, oneColor = true;
    const auto note = [](auto& common, auto value, bool& one) {
        one = one && (!common || *common == value);
        common = value;
    };
    for (const KcDbObjectId id : ids) {
        const KcDbRead<KcDbEntity> entity(id);
        if (!entity)
            continue;
        note(layer, entity->layerId(), oneLayer);
        note(linetype, entity->linetypeId(), oneLinetype);
        note(color, entity->color().rgb >= 0 ? -1 : entity->colorIndex(), oneColor);
        if (!oneLayer && !oneLinetype && !oneColor)
            break;
    }
    const auto show = [](QComboBox& box, bool one, KcDbObjectId id, const QString& otherwise) {
        const QString name = id.isNull() ? otherwise : kcdbRecordName(id);
        box.setCurrentIndex(one ? box.findText(name, Qt::MatchFixedString) : -1);
    };
    show(*m_layer, oneLayer && layer, layer.value_or(KcDbObjectId()), QString());
    show(*m_linetype, oneLinetype && linetype, linetype.value_or(KcDbObjectId()), QStringLiteral("ByLayer"));
    if (const KcDbRead<KcDbLayerTableRecord> record(layer.value_or(KcDbObjectId())); record && oneLayer)
        m_color->setCurrentLayerColor(record->colorIndex());
    m_color->setColorIndex(oneColor && color ? *color : -1);
}

// Who is told when the entity changes, and what its extension dictionary names.
void KcUiPropertyPanel::addLinks(const KcDbEntity& entity)
{
    QTreeWidgetItem* links = nullptr;
    const auto add = [&](const QString& name, const QString& value) {
        if (!links)
            links = new QTreeWidgetItem(m_tree, { QStringLiteral("Links"), QString() });
        new QTreeWidgetItem(links, { name, value });
    };
    for (const KcDbObjectId id : entity.reactors())
        add(QStringLiteral("Followed by"), objectTitle(id));
    if (const KcDbRead<KcDbDictionary> extension(entity.extensionDictionary()); extension)
        for (const KcDbDictionary::Entry& entry : extension->data().entries) {
            QStringList values;
            const KcDbRead<KcDbObject> object(entry.id);
            // Of an object that a module defines, what it refers to says enough.
            const bool isOurs = object && object->isKindOf(KcDbModuleObject::desc());
            if (object && object->isKindOf(KcDbXrecord::desc()))
                for (const KcDbTypedValue& value : static_cast<const KcDbXrecord&>(*object).values()) {
                    if (const auto* id = std::get_if<KcDbObjectId>(&value.value); id && !id->isNull())
                        values += objectTitle(*id);
                    else if (const QString text = value.text(); !text.isEmpty() && !isOurs)
                        values += text;
                }
            add(kcedTagName(entry.name).name, values.mid(0, kMostItems).join(QStringLiteral("; ")));
        }
    if (links)
        links->setExpanded(true);
}

void KcUiPropertyPanel::fill()
{
    m_common->setVisible(m_document && !m_document->pickFirst.isEmpty());
    if (!m_document)
        return m_tree->clear();
    const std::vector<KcDbObjectId>& ids = m_document->pickFirst.ids();
    const uint64_t change = m_document->database().changeCount();
    if (ids == m_shown && change == m_shownAt && m_tree->topLevelItemCount() > 0)
        return;
    m_shown = ids;
    m_shownAt = change;
    m_tree->clear();
    if (ids.empty()) {
        auto* nothing = new QTreeWidgetItem(m_tree, { QStringLiteral("Nothing is selected"), QString() });
        nothing->setFirstColumnSpanned(true);
        return;
    }
    showCommon(ids);
    if (ids.size() == 1) {
        if (const KcDbRead<KcDbEntity> entity(ids.front()); entity) {
            addValues(*entity);
            addLinks(*entity);
        }
    } else {
        new QTreeWidgetItem(m_tree, { QStringLiteral("Selected"), QString::number(ids.size()) });
        std::map<QString, int> types, layers;
        for (const KcDbObjectId id : ids)
            if (const KcDbRead<KcDbEntity> entity(id); entity) {
                ++types[kcedKindInWords(kcedEntityTypeName(*entity))];
                ++layers[entity->layer()];
            }
        const auto addCounts = [&](const QString& title, const std::map<QString, int>& counts) {
            auto* parent = new QTreeWidgetItem(m_tree, { title, QString::number(counts.size()) });
            for (const auto& [name, count] : counts)
                new QTreeWidgetItem(parent, { name, QString::number(count) });
            parent->setExpanded(counts.size() <= 20);
        };
        addCounts(QStringLiteral("Kinds"), types);
        addCounts(QStringLiteral("Layers"), layers);
    }
    m_tree->resizeColumnToContents(0);
}

// What the fields above show is not said again; what the entity is comes first, then what a plan is measured
// by.
void KcUiPropertyPanel::addValues(const KcDbEntity& entity)
{
    QJsonObject values = kcedDumpEntity(entity);
    for (const char* shownAbove : { "layer", "color", "linetype" })
        values.remove(QLatin1String(shownAbove));
    if (values.value(QStringLiteral("plain")) == values.value(QStringLiteral("text")))
        values.remove(QStringLiteral("text"));
    const auto take = [&](const QString& key) {
        if (const QJsonValue value = values.take(key); !value.isUndefined())
            addValue(nullptr, key, value);
    };
    take(QStringLiteral("type"));
    take(QStringLiteral("block"));
    take(QStringLiteral("plain"));
    take(QStringLiteral("pattern"));
    if (entity.isKindOf(KcDbCurve::desc())) {
        const KcGeCurve3d curve = static_cast<const KcDbCurve&>(entity).curve();
        if (const auto length = curve.length())
            addValue(nullptr, QStringLiteral("length"), *length);
        if (const auto area = curve.area(); area && curve.isClosed())
            addValue(nullptr, QStringLiteral("area"), std::abs(*area));
    }
    take(QStringLiteral("area"));
    const QJsonObject tags = values.take(QStringLiteral("tags")).toObject();
    if (!tags.isEmpty()) {
        auto* parent = new QTreeWidgetItem(m_tree, { QStringLiteral("Tags"), QString() });
        for (auto tag = tags.begin(); tag != tags.end(); ++tag) {
            const KcEdTagName words = kcedTagName(tag.key());
            const QString value = tag.value().toString();
            auto* item = new QTreeWidgetItem(parent, { words.name, words.values.value(value, value) });
            item->setToolTip(0, tag.key());
            item->setToolTip(1, value);
        }
        parent->setExpanded(true);
    }
    for (auto value = values.begin(); value != values.end(); ++value)
        addValue(nullptr, value.key(), value.value());
}

void KcUiPropertyPanel::addValue(QTreeWidgetItem* parent, const QString& name, const QJsonValue& value)
{
    // Inside the rest, names are the drawing's own: of attributes, of rows.
    const QString title = parent ? name : kcedPropertyInWords(name);
    auto* item = parent ? new QTreeWidgetItem(parent, { title, QString() })
                        : new QTreeWidgetItem(m_tree, { title, QString() });
    if (value.isObject()) {
        const QJsonObject members = value.toObject();
        for (auto member = members.begin(); member != members.end(); ++member)
            addValue(item, member.key(), member.value());
        item->setExpanded(true);
    } else if (value.isArray() && !isShortList(value.toArray())) {
        const QJsonArray list = value.toArray();
        item->setText(1, QString::number(list.size()));
        for (int i = 0; i < std::min<int>(kMostItems, list.size()); ++i)
            addValue(item, QString::number(i + 1), list[i]);
        if (list.size() > kMostItems)
            new QTreeWidgetItem(
                item, { QStringLiteral("…"), QStringLiteral("%1 more").arg(list.size() - kMostItems) });
    } else if (value.isArray()) {
        item->setText(1, kcedValueInWords(name, value));
    } else {
        item->setText(1, kcedValueInWords(name, value));
        item->setToolTip(1, item->text(1));
    }
}
