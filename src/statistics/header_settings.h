// The header settings of a statistics table: which columns are drawn, and what stands over them.
#pragma once

#include "core/table_info.h"
#include "exchange/markup_document.h"
#include "platform/result.h"

#include <QDialog>

class CTreeListCtrl;
class SelTreeItem;

/// Lists the items of one table of the layout document, with a box for each that is drawn and the text that
/// is shown for it. What the user does goes into a copy of the document.
class CHeaderSettingDlg : public QDialog {
public:
    /// `layout` must hold the table. Items that the document does not offer ("Visible" is "0"), and the
    /// legend of any table but the one of trees, are not listed; they stay as they are.
    CHeaderSettingDlg(const QString& table, const MarkupDocument& layout, QWidget* parent = nullptr);

    /// The copy, as OK left it: "Check" is empty for what is ticked and "0" for what is not, "Value" is the
    /// text.
    const MarkupDocument& document() const { return m_document; }
    /// Stays open, saying so, while no column is ticked.
    void accept() override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void listItems(SelTreeItem& parent);
    void keepItems(const SelTreeItem& parent);
    void fitColumns();
    bool showsColumns() const;

    QString m_table;
    MarkupDocument m_document;
    CTreeListCtrl* m_list;
};

/// The layout document with what the current drawing shows for a table written into it. A failure says that
/// the document cannot be read or has no such table.
platform::Result<MarkupDocument> headersOfDrawing(const QString& table);

/// Lets the user edit the headers of a table, and keeps them with the current drawing. False when nothing was
/// kept: the user cancelled or changed nothing, or the headers cannot be had or kept, which is said.
bool editTableHeaders(const QString& table, QWidget* parent = nullptr);
