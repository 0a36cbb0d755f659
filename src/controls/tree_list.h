// A tree with check boxes beside a column of texts that are edited in place. Each item is ticked by itself;
// what is below one that is not ticked is greyed.
#pragma once

#include "controls/select_tree.h"

class CTreeListCtrl : public CSelTreeCtrl {
public:
    explicit CTreeListCtrl(QWidget* parent = nullptr);

    /// Headers and widths in pixels.
    void SetColumns(const QStringList& headers, const QList<int>& widths);
    /// The text of the second column, which the user may edit.
    void SetItemValue(SelTreeItem& item, const QString& value);
    /// Takes over what an open editor holds, as leaving it does.
    void FinishEditing();
    QString GetItemValue(const SelTreeItem& item) const { return item.text(1); }
    SelTreeItem* FindItem(quintptr data) const;
    /// Greys what is below items that are not ticked, as ticking by hand does.
    void ShowWhatCounts();

protected:
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    void OnTicked(SelTreeItem& item) override;
    bool ticksTogether() const override { return false; }
};
