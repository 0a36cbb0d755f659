// The second column of the tree is edited by the toolkit's own editor, kept from the first one.

#include "controls/tree_list.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QLineEdit>
#include <QPointer>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <QTreeWidgetItemIterator>

namespace {

constexpr int kValueColumn = 1;

// What is pasted may hold characters that no document and no drawing takes.
QString printable(const QString& typed)
{
    QString text;
    for (const char32_t c : typed.toUcs4()) {
        const bool isText = QChar::category(c) != QChar::Other_Control && !QChar::isNonCharacter(c);
        text += isText ? QString::fromUcs4(&c, 1) : QStringLiteral(" ");
    }
    return text;
}

class ValueDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget*
    createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        if (index.column() != kValueColumn)
            return nullptr;
        QWidget* const editor = QStyledItemDelegate::createEditor(parent, option, index);
        editor->setAccessibleName(index.siblingAtColumn(0).data().toString());
        return editor;
    }
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override
    {
        if (const auto* field = qobject_cast<const QLineEdit*>(editor))
            model->setData(index, printable(field->text()));
        else
            QStyledItemDelegate::setModelData(editor, model, index);
    }
    // A text that is cut off is shown as a whole.
    bool helpEvent(
        QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
        const QModelIndex& index) override
    {
        const bool isCut = event && event->type() == QEvent::ToolTip && index.isValid()
            && sizeHint(option, index).width() > view->visualRect(index).width();
        if (!isCut)
            return QStyledItemDelegate::helpEvent(event, view, option, index);
        QToolTip::showText(event->globalPos(), index.data().toString(), view, view->visualRect(index));
        return true;
    }
};

} // namespace

CTreeListCtrl::CTreeListCtrl(QWidget* parent)
    : CSelTreeCtrl(parent)
{
    setHeaderHidden(false);
    setItemDelegate(new ValueDelegate(this));
    setEditTriggers(DoubleClicked | EditKeyPressed | SelectedClicked);
    setAllColumnsShowFocus(true);
    // A screen reader says the value with the name that it belongs to.
    connect(this, &QTreeWidget::itemChanged, this, [](QTreeWidgetItem* item, int column) {
        if (column == kValueColumn)
            item->setData(0, Qt::AccessibleDescriptionRole, item->text(kValueColumn));
    });
}

bool CTreeListCtrl::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event)
{
    if (index.column() == kValueColumn)
        return CSelTreeCtrl::edit(index, trigger, event);
    // The key edits the value wherever the cursor stands. Clicks on the name fold and tick.
    if (trigger != EditKeyPressed)
        return CSelTreeCtrl::edit(index, NoEditTriggers, event);
    const QModelIndex value = index.siblingAtColumn(kValueColumn);
    setCurrentIndex(value);
    return CSelTreeCtrl::edit(value, trigger, event);
}

void CTreeListCtrl::FinishEditing()
{
    if (state() != EditingState)
        return;
    for (QWidget* editor : viewport()->findChildren<QLineEdit*>(Qt::FindDirectChildrenOnly)) {
        commitData(editor);
        closeEditor(editor, QAbstractItemDelegate::NoHint);
    }
}

void CTreeListCtrl::SetColumns(const QStringList& headers, const QList<int>& widths)
{
    setColumnCount(int(headers.size()));
    setHeaderLabels(headers);
    header()->setStretchLastSection(false);
    for (int column = 0; column < int(widths.size()); ++column)
        setColumnWidth(column, widths[column]);
}

void CTreeListCtrl::SetItemValue(SelTreeItem& item, const QString& value)
{
    item.setText(kValueColumn, value);
    item.setFlags(item.flags() | Qt::ItemIsEditable);
}

SelTreeItem* CTreeListCtrl::FindItem(quintptr data) const
{
    for (QTreeWidgetItemIterator walk(const_cast<CTreeListCtrl*>(this)); *walk; ++walk)
        if (auto* item = static_cast<SelTreeItem*>(*walk); GetItemData(item) == data)
            return item;
    return nullptr;
}

void CTreeListCtrl::OnTicked(SelTreeItem& item)
{
    for (int place = 0; place < item.childCount(); ++place)
        item.child(place)->setDisabled(GetSelState(&item) == kUnchecked);
}

void CTreeListCtrl::ShowWhatCounts()
{
    for (QTreeWidgetItemIterator walk(this); *walk; ++walk)
        OnTicked(static_cast<SelTreeItem&>(**walk));
}
