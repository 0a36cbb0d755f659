// The selection in words.

#include "ui/property_panel.h"

#include "ed/documents.h"
#include "ed/entity_dump.h"

#include <QHeaderView>
#include <QJsonArray>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

constexpr int kMostItems = 200; // of a long list of values; the rest is counted

QString asText(const QJsonValue& value)
{
    if (value.isDouble())
        return QString::number(value.toDouble(), 'g', 10);
    if (value.isBool())
        return value.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
    return value.toString();
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
    , m_tree(new QTreeWidget(this))
{
    setObjectName(QStringLiteral("propertyPanel"));
    m_tree->setObjectName(QStringLiteral("properties"));
    m_tree->setAccessibleName(QStringLiteral("Properties of the selection"));
    m_tree->setColumnCount(2);
    m_tree->setHeaderLabels({ "Property", "Value" });
    m_tree->setAlternatingRowColors(true);
    m_tree->header()->setStretchLastSection(true);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(2, 2, 2, 2);
    column->addWidget(m_tree);
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

void KcUiPropertyPanel::fill()
{
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
        new QTreeWidgetItem(m_tree, { QStringLiteral("Nothing is selected"), QString() });
        return;
    }
    if (ids.size() == 1) {
        if (const KcDbRead<KcDbEntity> entity(ids.front()); entity) {
            const QJsonObject values = kcedDumpEntity(*entity);
            for (auto value = values.begin(); value != values.end(); ++value)
                addValue(nullptr, value.key(), value.value());
        }
    } else {
        new QTreeWidgetItem(m_tree, { QStringLiteral("Selected"), QString::number(ids.size()) });
        std::map<QString, int> types, layers;
        for (const KcDbObjectId id : ids)
            if (const KcDbRead<KcDbEntity> entity(id); entity) {
                ++types[entity->isA()->name()];
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

void KcUiPropertyPanel::addValue(QTreeWidgetItem* parent, const QString& name, const QJsonValue& value)
{
    auto* item = parent ? new QTreeWidgetItem(parent, { name, QString() })
                        : new QTreeWidgetItem(m_tree, { name, QString() });
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
        QStringList numbers;
        for (const QJsonValue& number : value.toArray())
            numbers += asText(number);
        item->setText(1, numbers.join(QStringLiteral(", ")));
    } else {
        item->setText(1, asText(value));
        item->setToolTip(1, item->text(1));
    }
}
