// The dialog's tree follows the elements of the document: both are walked in the same order.

#include "statistics/header_settings.h"

#include "controls/tree_list.h"
#include "core/drawing_config.h"
#include "ed/console.h"
#include "ed/dialogs.h"
#include "ed/documents.h"
#include "frame/module.h"
#include "platform/message_box.h"
#include "statistics/table_layout.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

// Children of the document's elements, and what they hold.
const QString kItem = QStringLiteral("Item"), kName = QStringLiteral("Name"),
              kValue = QStringLiteral("Value"), kCheck = QStringLiteral("Check"),
              kVisible = QStringLiteral("Visible");
const QString kOff = QStringLiteral("0");

constexpr int kNarrower = 30, kUsualWidth = 120; // pixels

bool isOffered(MarkupDocument& item, const QString& table)
{
    if (childText(item, kVisible).trimmed() == kOff)
        return false;
    return childText(item, kName) != QStringLiteral("图例") || table == QStringLiteral("乔灌数量统计表");
}

QString shownText(MarkupDocument& element)
{
    const QString text = childText(element, kValue);
    return text.isEmpty() ? childText(element, kName) : text;
}

void setChanged(MarkupDocument& element, const QString& child, const QString& text)
{
    if (childText(element, child) != text)
        setChildText(element, child, text);
}

// Writes what is shown for the element at the position, and for the items below it.
void write(MarkupDocument& element, const CTbInfoStd& shown)
{
    const STbInfoDesc* const desc = shown.FindByName(childText(element, kName));
    if (desc && desc->text != shownText(element))
        setChildText(element, kValue, desc->text);
    if (desc && desc->visible != (childText(element, kCheck) != kOff))
        setChildText(element, kCheck, desc->visible ? QString() : kOff);
    element.IntoElem();
    while (element.FindElem(kItem))
        write(element, shown);
    element.OutOfElem();
}

std::optional<CTbInfoStd> infoOf(const QString& table, const MarkupDocument& layout)
{
    for (CTbInfoStd& info : tableInfoIn(layout.GetDoc()).value_or(std::vector<CTbInfoStd>()))
        if (info.tableName() == table)
            return std::move(info);
    return std::nullopt;
}

} // namespace

CHeaderSettingDlg::CHeaderSettingDlg(const QString& table, const MarkupDocument& layout, QWidget* parent)
    : QDialog(parent)
    , m_table(table)
    , m_document(layout)
    , m_list(new CTreeListCtrl)
{
    setObjectName(QStringLiteral("CHeaderSettingDlg"));
    setWindowTitle(localised(QStringLiteral("HEADSETTING")));
    setSizeGripEnabled(true);
    m_list->setObjectName(QStringLiteral("headers"));
    m_list->setAccessibleName(windowTitle());
    m_list->SetColumns({ QStringLiteral("列表显示"), QStringLiteral("列表名称") }, {});

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    for (const auto& [which, key] : { std::pair{ QDialogButtonBox::Ok, QStringLiteral("BTNOK") },
                                      std::pair{ QDialogButtonBox::Cancel, QStringLiteral("BTNCANCEL") } }) {
        buttons->button(which)->setText(localised(key));
        buttons->button(which)->setObjectName(key);
    }
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* column = new QVBoxLayout(this);
    column->addWidget(m_list);
    column->addWidget(buttons);
    const int letter = fontMetrics().averageCharWidth();
    resize(letter * 60, fontMetrics().lineSpacing() * 24);

    if (!findTable(m_document, m_table))
        return;
    SelTreeItem* const root = m_list->AddItem(m_table, nullptr, CSelTreeCtrl::kNoBox);
    m_list->SetItemValue(*root, shownText(m_document));
    listItems(*root);
    // An empty heading would be read as none: the name stands for it, here as in the drawing.
    connect(m_list, &QTreeWidget::itemChanged, this, [](QTreeWidgetItem* item, int column) {
        if (column == 1 && item->text(1).trimmed().isEmpty())
            item->setText(1, item->text(0));
    });
    m_list->expandAll();
    m_list->ShowWhatCounts();
    m_list->setCurrentItem(root);
}

// Lists the items below the main position.
void CHeaderSettingDlg::listItems(SelTreeItem& parent)
{
    m_document.IntoElem();
    while (m_document.FindElem(kItem)) {
        if (!isOffered(m_document, m_table))
            continue;
        const bool isOn = childText(m_document, kCheck) != kOff;
        SelTreeItem* const item = m_list->AddItem(
            childText(m_document, kName), &parent, isOn ? CSelTreeCtrl::kChecked : CSelTreeCtrl::kUnchecked);
        m_list->SetItemValue(*item, shownText(m_document));
        listItems(*item);
    }
    m_document.OutOfElem();
}

// Takes the items below the main position from the tree.
void CHeaderSettingDlg::keepItems(const SelTreeItem& parent)
{
    int place = 0;
    m_document.IntoElem();
    while (m_document.FindElem(kItem)) {
        if (!isOffered(m_document, m_table))
            continue;
        const auto& item = static_cast<const SelTreeItem&>(*parent.child(place++));
        setChanged(
            m_document, kCheck, m_list->GetSelState(&item) == CSelTreeCtrl::kUnchecked ? kOff : QString());
        if (m_list->GetItemValue(item) != shownText(m_document))
            setChildText(m_document, kValue, m_list->GetItemValue(item));
        keepItems(item);
    }
    m_document.OutOfElem();
}

bool CHeaderSettingDlg::showsColumns() const
{
    const auto* root = static_cast<const SelTreeItem*>(m_list->topLevelItem(0));
    for (int place = 0; root && place < root->childCount(); ++place)
        if (m_list->GetSelState(root->Child(place)) == CSelTreeCtrl::kChecked)
            return true;
    return false;
}

void CHeaderSettingDlg::accept()
{
    m_list->FinishEditing();
    if (!showsColumns()) {
        platform::MessageBoxW(
            this, QStringLiteral("请至少勾选一列。"), windowTitle(), platform::MessageBoxButtons::Ok,
            platform::MessageBoxIcon::Warning);
        return;
    }
    if (const auto* root = static_cast<const SelTreeItem*>(m_list->topLevelItem(0));
        root && findTable(m_document, m_table)) {
        if (m_list->GetItemValue(*root) != shownText(m_document))
            setChildText(m_document, kValue, m_list->GetItemValue(*root));
        keepItems(*root);
    }
    QDialog::accept();
}

void CHeaderSettingDlg::fitColumns()
{
    const int half = m_list->width() / 2;
    m_list->setColumnWidth(0, half > 0 ? half : kUsualWidth);
    m_list->setColumnWidth(1, half > kNarrower ? half - kNarrower : kUsualWidth);
}

void CHeaderSettingDlg::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    fitColumns();
}

void CHeaderSettingDlg::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    fitColumns();
}

platform::Result<MarkupDocument> headersOfDrawing(const QString& table)
{
    platform::Result<MarkupDocument> layout = loadTableLayout();
    if (!layout)
        return layout;
    if (!findTable(*layout, table))
        return platform::Result<MarkupDocument>::failure(
            QStringLiteral("表格布局文件中没有“%1”。").arg(table));
    if (const auto config = GetDwgGlobal(VdlOpenMode::kForRead))
        if (const std::optional<CTbInfoStd> shown = config->GetTbInfoStd(table))
            write(*layout, *shown);
    return layout;
}

bool editTableHeaders(const QString& table, QWidget* parent)
{
    const platform::Result<MarkupDocument> layout = headersOfDrawing(table);
    if (!layout) {
        kcedSay(layout.error + QStringLiteral("不能设置表头。"));
        return false;
    }
    const KcApResourceScope resources(moduleHandle());
    CHeaderSettingDlg dialog(table, *layout, parent);
    if (kcedRunDialog(dialog) != QDialog::Accepted)
        return false;
    const KcApDocLock lock;
    const auto config = lock ? GetDwgGlobal(VdlOpenMode::kForWrite) : nullptr;
    const std::optional<CTbInfoStd> before = config ? config->GetTbInfoStd(table) : std::nullopt;
    const std::optional<CTbInfoStd> edited = infoOf(table, dialog.document());
    if (!before || !edited) {
        kcedSay(QStringLiteral("图形当前不能修改，表头设置未保存。"));
        return false;
    }
    // What the drawing holds of items that the document has no more stays.
    CTbInfoStd after = *before;
    for (const CTbInfoStd::Entry& entry : edited->entries())
        after.Set(entry.key, entry.desc);
    return after.entries() != before->entries() && config->SetTbInfoStd(after);
}
