// Table, list and tree views of the toolkit, handled through their models, delegates and signals.

#include "ed/dialog_views.h"

#include "ed/dialog_controls.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHeaderView>
#include <QJsonArray>
#include <QKeyEvent>
#include <QPointer>
#include <QTableView>
#include <QTreeView>

namespace {

constexpr int kTristate[] = { 1, 2, 3 }; // by Qt::CheckState

bool isCheckable(const QModelIndex& index)
{
    return index.data(Qt::CheckStateRole).isValid();
}

QString toggle(QAbstractItemView& view, const QModelIndex& index, bool on)
{
    if (!(index.flags() & Qt::ItemIsUserCheckable) || !(index.flags() & Qt::ItemIsEnabled))
        return QStringLiteral("The check box cannot be changed.");
    const Qt::CheckState wanted = on ? Qt::Checked : Qt::Unchecked;
    if (Qt::CheckState(index.data(Qt::CheckStateRole).toInt()) == wanted)
        return {};
    const bool done = view.model()->setData(index, wanted, Qt::CheckStateRole);
    emit view.clicked(index);
    return done ? QString() : QStringLiteral("The check box cannot be changed.");
}

class ViewGrid : public KcEdScriptableGrid {
public:
    explicit ViewGrid(QAbstractItemView& view)
        : m_view(view)
        , m_header(headerOf(view))
    {
        collectRows(view.rootIndex());
        for (int visual = 0; visual < model().columnCount(view.rootIndex()); ++visual) {
            const int logical = m_header ? m_header->logicalIndex(visual) : visual;
            if (!m_header || !m_header->isSectionHidden(logical))
                m_columns.push_back(logical);
        }
    }

    int displayedRows() const override { return int(m_rows.size()); }
    int displayedColumns() const override { return int(m_columns.size()); }
    QString headerText(int column) const override
    {
        return model().headerData(m_columns[size_t(column)], Qt::Horizontal).toString();
    }
    QString cellText(int row, int column) const override
    {
        const QModelIndex index = at(row, column);
        if (isCheckable(index) && index.data().toString().isEmpty())
            return index.data(Qt::CheckStateRole).toInt() == Qt::Checked ? QStringLiteral("1")
                                                                         : QStringLiteral("0");
        return index.data().toString();
    }
    QString editCell(int row, int column, const QString& value) override
    {
        const QModelIndex index = at(row, column);
        m_view.setCurrentIndex(index);
        if (isCheckable(index) && (value == u"0" || value == u"1"))
            return toggle(m_view, index, value == u"1");
        if (QWidget* widget = m_view.indexWidget(index))
            return kcedTypeInto(*widget, value);
        if (!(index.flags() & Qt::ItemIsEditable))
            return QStringLiteral("The cell cannot be edited.");
        const QList<QWidget*> before = m_view.viewport()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
        m_view.edit(index);
        for (QWidget* editor : m_view.viewport()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            if (before.contains(editor))
                continue;
            const QPointer<QWidget> alive = editor;
            const QString reason = kcedTypeInto(*editor, value);
            if (alive)
                key(*editor, reason.isEmpty() ? Qt::Key_Return : Qt::Key_Escape);
            return reason;
        }
        return QStringLiteral("The cell cannot be edited.");
    }
    QString selectRow(int row) override
    {
        const QModelIndex index = at(row, 0);
        m_view.setCurrentIndex(index);
        if (m_view.selectionMode() != QAbstractItemView::NoSelection)
            m_view.selectionModel()->select(
                index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        emit m_view.clicked(index);
        return {};
    }
    QString selectColumn(int column) override
    {
        if (!m_header)
            return QStringLiteral("The grid has no header.");
        const int logical = m_columns[size_t(column)];
        if (auto* table = qobject_cast<QTableView*>(&m_view))
            table->selectColumn(logical);
        emit m_header->sectionClicked(logical);
        return {};
    }
    std::vector<int> selectedRows() const override
    {
        std::vector<int> rows;
        for (size_t i = 0; i < m_rows.size(); ++i)
            if (m_view.selectionModel()->rowIntersectsSelection(m_rows[i].row(), m_rows[i].parent()))
                rows.push_back(int(i));
        return rows;
    }

private:
    // Of a tree, what is below an open item follows it.
    void collectRows(const QModelIndex& parent)
    {
        const auto* table = qobject_cast<const QTableView*>(&m_view);
        const auto* tree = qobject_cast<const QTreeView*>(&m_view);
        for (int row = 0; row < model().rowCount(parent); ++row) {
            if ((table && table->isRowHidden(row)) || (tree && tree->isRowHidden(row, parent)))
                continue;
            m_rows.push_back(model().index(row, 0, parent));
            if (tree && tree->isExpanded(m_rows.back()))
                collectRows(QModelIndex(m_rows.back()));
        }
    }
    static QHeaderView* headerOf(QAbstractItemView& view)
    {
        if (auto* table = qobject_cast<QTableView*>(&view))
            return table->horizontalHeader();
        if (auto* tree = qobject_cast<QTreeView*>(&view))
            return tree->header();
        return nullptr;
    }
    static void key(QWidget& editor, int code)
    {
        const QPointer<QWidget> alive = &editor;
        for (const QEvent::Type type : { QEvent::KeyPress, QEvent::KeyRelease }) {
            QKeyEvent event(type, code, Qt::NoModifier);
            if (alive)
                QApplication::sendEvent(&editor, &event);
        }
        // The delegate commits when the event loop is reached next.
        QApplication::processEvents();
    }
    QAbstractItemModel& model() const { return *m_view.model(); }
    QModelIndex at(int row, int column) const
    {
        const QModelIndex first = m_rows[size_t(row)];
        return first.sibling(first.row(), m_columns[size_t(column)]);
    }

    QAbstractItemView& m_view;
    QHeaderView* m_header;
    std::vector<QModelIndex> m_rows; ///< first cells, by what is displayed
    std::vector<int> m_columns; ///< of the model, by what is displayed
};

class ViewTree : public KcEdScriptableTree {
public:
    explicit ViewTree(QAbstractItemView& view)
        : m_view(view)
    {
        collect(view.rootIndex(), {});
    }

    std::vector<Item> items() const override
    {
        std::vector<Item> result;
        for (const auto& [path, index] : m_items)
            result.push_back(
                { path, isCheckable(index) ? kTristate[index.data(Qt::CheckStateRole).toInt()] : 0 });
        return result;
    }
    QString tickItem(const QString& wanted, bool on) override
    {
        std::vector<QModelIndex> found;
        QStringList paths;
        for (const auto& [path, index] : m_items) {
            paths += path;
            if (path == wanted || index.data().toString() == wanted)
                found.push_back(index);
        }
        if (found.empty())
            return QStringLiteral("The tree has no \"%1\". There are: %2.")
                .arg(wanted, paths.join(QStringLiteral(", ")));
        if (found.size() > 1)
            return QStringLiteral("\"%1\" stands more than once; name it by its path.").arg(wanted);
        if (!isCheckable(found.front()))
            return QStringLiteral("\"%1\" has no check box.").arg(wanted);
        return toggle(m_view, found.front(), on);
    }

private:
    void collect(const QModelIndex& parent, const QString& above)
    {
        for (int row = 0; row < m_view.model()->rowCount(parent); ++row) {
            const QModelIndex index = m_view.model()->index(row, 0, parent);
            const QString path = above + index.data().toString();
            m_items.emplace_back(path, index);
            collect(index, path + QLatin1Char('/'));
        }
    }

    QAbstractItemView& m_view;
    std::vector<std::pair<QString, QModelIndex>> m_items;
};

// What a widget is itself belongs to itself.
template <class T> std::shared_ptr<T> unowned(T* own)
{
    return std::shared_ptr<T>(own, [](T*) {});
}

} // namespace

std::shared_ptr<KcEdScriptableGrid> kcedGridOf(QWidget& widget)
{
    if (auto* own = dynamic_cast<KcEdScriptableGrid*>(&widget))
        return unowned(own);
    if (auto* view = qobject_cast<QAbstractItemView*>(&widget); view && view->model())
        return std::make_shared<ViewGrid>(*view);
    return nullptr;
}

std::shared_ptr<KcEdScriptableTree> kcedTreeOf(QWidget& widget)
{
    if (auto* own = dynamic_cast<KcEdScriptableTree*>(&widget))
        return unowned(own);
    if (auto* view = qobject_cast<QAbstractItemView*>(&widget); view && view->model())
        return std::make_shared<ViewTree>(*view);
    return nullptr;
}

void kcedDescribeView(QWidget& widget, QJsonObject& into)
{
    const bool isTree = qobject_cast<QTreeView*>(&widget) || dynamic_cast<KcEdScriptableTree*>(&widget);
    if (const auto tree = isTree ? kcedTreeOf(widget) : nullptr) {
        QJsonArray items;
        for (const KcEdScriptableTree::Item& item : tree->items())
            items.append(QJsonObject{ { QStringLiteral("item"), item.path },
                                      { QStringLiteral("state"), item.state } });
        into.insert(QStringLiteral("items"), items);
    }
    const auto grid = kcedGridOf(widget);
    if (!grid)
        return;
    QJsonArray headers, rows, selected;
    for (int column = 0; column < grid->displayedColumns(); ++column)
        headers.append(grid->headerText(column));
    for (int row = 0; row < grid->displayedRows(); ++row) {
        QJsonArray cells;
        for (int column = 0; column < grid->displayedColumns(); ++column)
            cells.append(grid->cellText(row, column));
        rows.append(cells);
    }
    for (const int row : grid->selectedRows())
        selected.append(row);
    into.insert(QStringLiteral("columns"), headers);
    into.insert(QStringLiteral("rows"), rows);
    into.insert(QStringLiteral("selected"), selected);
}
