// Copying and pasting: rows among grids of one kind, blocks of cells as tab-separated text to and from a
// spreadsheet.

#include "controls/grid.h"

#include "platform/message_box.h"

#include <QApplication>
#include <QClipboard>

namespace {

// A text with a tab, a line end or a quote stands in quotes, as spreadsheets have it.
QString quoted(const QString& text)
{
    if (!text.contains(u'\t') && !text.contains(u'\n') && !text.contains(u'\r') && !text.startsWith(u'"'))
        return text;
    return u'"' + QString(text).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

std::vector<QStringList> tabSeparated(const QString& text)
{
    std::vector<QStringList> lines;
    QStringList line;
    QString field;
    bool inQuotes = false, any = false;
    const auto endLine = [&] {
        line << std::exchange(field, {});
        lines.push_back(std::exchange(line, {}));
        any = false;
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (inQuotes) {
            if (c != u'"')
                field += c;
            else if (i + 1 < text.size() && text[i + 1] == u'"')
                field += text[++i];
            else
                inQuotes = false;
            continue;
        }
        if (c == u'"' && field.isEmpty()) {
            inQuotes = any = true;
        } else if (c == u'\t') {
            line << std::exchange(field, {});
            any = true;
        } else if (c == u'\n') {
            endLine();
        } else if (c != u'\r') {
            field += c;
            any = true;
        }
    }
    if (any)
        endLine();
    return lines;
}

// Empty fields at the end of a line, and empty lines at the end, take no place.
size_t usedFields(const QStringList& line)
{
    const auto last
        = std::find_if(line.rbegin(), line.rend(), [](const QString& field) { return !field.isEmpty(); });
    return size_t(line.rend() - last);
}

} // namespace

QString CSGrid::SelectedText() const
{
    QStringList lines;
    const auto line = [&](int row, auto&& wanted) {
        QStringList fields;
        for (int column = 0; column < GetColumnCount(); ++column)
            if (wanted(column))
                fields << quoted(GetItemText(row, column));
        lines << fields.join(u'\t');
    };
    if (IsColSelected())
        for (int row = 0; row < GetRowCount(); ++row)
            line(row, [&](int column) { return IsColSelected(column); });
    else
        for (const long row : m_selectedRows)
            line(int(row), [](int) { return true; });
    return lines.join(u'\n') + (lines.isEmpty() ? QString() : QStringLiteral("\n"));
}

void CSGrid::ClipSelect()
{
    if (!IsRowSelected() && !IsColSelected())
        return;
    EndEdit();
    m_rowPaste.RemoveAll();
    for (const long index : m_selectedRows) {
        auto copy = std::make_unique<CSGridRow>(this);
        copy->CopyFrom(*GetRow(int(index)));
        m_rowPaste.Append(std::move(copy));
    }
    QApplication::clipboard()->setText(SelectedText());
    OnEndClip();
}

void CSGrid::Paste(int index)
{
    if (IsReadOnly() || m_rowPaste.IsEmpty() || index < 0 || index > GetRowCount())
        return;
    EndEdit();
    // Between the rows of a tree there is no place for a root row.
    if (const CSGridRow* at = GetRow(index); at && at->IsChildRow())
        return;
    int pasted = 0;
    for (int source = 0; source < m_rowPaste.GetCount(); ++source) {
        std::unique_ptr<CSGridRow> made = NewRow();
        made->CopyFrom(*m_rowPaste[source]);
        CSGridRow* row = made.get();
        if (!OnInsertRow(index + pasted, row))
            continue;
        InsertRow(index + pasted, row == made.get() ? made.release() : row);
        OnInsertRow(*row);
        ++pasted;
    }
    if (pasted == 0)
        return;
    UnSelect();
    for (int row = index; row < index + pasted; ++row)
        SelectRow(row, 1);
    SetSelectedItem(index);
    OnEndPaste();
    OnDataChanged();
}

QString CSGrid::PasteText(int row, int column, const QString& text)
{
    EndEdit();
    std::vector<QStringList> lines = tabSeparated(text);
    while (!lines.empty() && usedFields(lines.back()) == 0)
        lines.pop_back();
    if (lines.empty())
        return QStringLiteral("The clipboard holds no text.");
    size_t wide = 0;
    for (const QStringList& line : lines)
        wide = std::max(wide, usedFields(line));
    const int rows = std::max(0, GetRowCount() - row), columns = std::max(0, GetColumnCount() - column);
    if (int(lines.size()) > rows || int(wide) > columns)
        return QStringLiteral(
                   "The clipboard holds %1 × %2 cells (rows × columns), but from row %3 and column "
                   "%4 on there are %5 × %6. Nothing was pasted.")
            .arg(lines.size())
            .arg(wide)
            .arg(row + 1)
            .arg(column + 1)
            .arg(rows)
            .arg(columns);
    int changed = 0, refused = 0, locked = 0;
    for (size_t line = 0; line < lines.size(); ++line)
        for (int field = 0; field < int(lines[line].size()); ++field) {
            const int at = row + int(line);
            CSGridCell* const cell = GetCell(at, column + field);
            TString value = lines[line][field];
            if (!cell || cell->GetText() == value)
                continue;
            if (cell->IsReadOnly()) {
                ++locked;
                continue;
            }
            // A notification may take the row away, too.
            const bool taken = TakesText(*cell, value) && OnEdit(*cell) && OnModified(*cell, value)
                && GetCell(at, column + field) == cell;
            if (taken)
                cell->SetText(value);
            ++(taken ? changed : refused);
        }
    if (changed > 0) {
        OnEndPaste();
        OnDataChanged();
    }
    if (changed == 0 && refused == 0 && locked > 0)
        return QStringLiteral("The cells cannot be edited. Nothing was pasted.");
    return refused == 0 ? QString()
                        : QStringLiteral("Of the pasted texts %1 were taken and %2 were not; those cells "
                                         "keep what they had.")
                              .arg(changed)
                              .arg(refused);
}

// As an editor would: a list takes its choices, a check box ticks.
bool CSGrid::TakesText(CSGridCell& cell, const TString& text)
{
    const CSGridCol& column = *cell.GetCol();
    if (column.IsCheckButton())
        return text == u"0" || text == u"1";
    if (column.IsComboSel() && !column.IsComboEdit()) {
        QStringList choices;
        OnCellComboString(cell, choices);
        return choices.contains(text);
    }
    return true;
}

void CSGrid::PasteFromClipboard()
{
    const int row = m_selectedRows.empty() ? std::max(m_selectedItem, 0) : int(m_selectedRows.front());
    const int column = m_selectedCols.empty() ? m_activeColumn : int(m_selectedCols.front());
    // Whole columns begin at the first row, whole rows at the first column.
    const QString said = PasteText(
        m_selectedCols.empty() ? row : 0, m_selectedRows.empty() ? column : 0,
        QApplication::clipboard()->text());
    if (!said.isEmpty())
        platform::MessageBoxW(
            window(), said, window()->windowTitle(), platform::MessageBoxButtons::Ok,
            platform::MessageBoxIcon::Warning);
}
