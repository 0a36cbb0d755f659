// The extension record of a table: what the file's own form of a table cannot hold.

#include "db/dictionary.h"
#include "db/table.h"

namespace {

const QString kRecordName = QStringLiteral("VDL_TABLE");
constexpr int kRecordVersion = 1;

// Group codes of the record: see docs/tables.md.
enum RecordCode {
    kVersionCode = 70,
    kRowsCode = 71,
    kColumnsCode = 72,
    kNamedColumnCode = 90,
    kNameCode = 1,
    kStateRowCode = 91,
    kStateColumnCode = 92,
    kStateCode = 93,
    kLowRowCode = 94,
    kLowHeightCode = 40,
    kTypedRowCode = 95,
    kTypeCode = 96,
};

} // namespace

KcDbValueList KcDbTable::recordValues() const
{
    KcDbValueList values;
    for (int column = 0; column < numColumns(); ++column)
        if (const QString& name = m_table.columns[column].name; !name.isEmpty()) {
            values.push_back({ kNamedColumnCode, int64_t(column) });
            values.push_back({ kNameCode, name });
        }
    for (int row = 0; row < numRows(); ++row) {
        const KcDbTableData::Row& held = m_table.rows[row];
        if (held.drawnHeight > held.height) {
            values.push_back({ kLowRowCode, int64_t(row) });
            values.push_back({ kLowHeightCode, held.height });
        }
        if (held.type) {
            values.push_back({ kTypedRowCode, int64_t(row) });
            values.push_back({ kTypeCode, int64_t(*held.type) });
        }
        for (int column = 0; column < numColumns(); ++column)
            if (const int state = cell(row, column).state) {
                values.push_back({ kStateRowCode, int64_t(row) });
                values.push_back({ kStateColumnCode, int64_t(column) });
                values.push_back({ kStateCode, int64_t(state) });
            }
    }
    if (values.empty())
        return values;
    const KcDbValueList head{ { kVersionCode, int64_t(kRecordVersion) },
                              { kRowsCode, int64_t(numRows()) },
                              { kColumnsCode, int64_t(numColumns()) } };
    values.insert(values.begin(), head.begin(), head.end());
    return values;
}

void KcDbTable::writeRecord()
{
    if (!database())
        return;
    KcDbValueList values = recordValues();
    KcDbObjectId id;
    if (KcDbRead<KcDbDictionary> dictionary(extensionDictionary()); dictionary)
        id = dictionary->getAt(kRecordName);
    if (KcDbRead<KcDbXrecord> record(id); record) {
        if (record->values() == values)
            return;
    } else if (values.empty()) {
        return;
    }
    if (values.empty()) {
        KcDbWrite<KcDbDictionary> dictionary(extensionDictionary());
        dictionary->remove(kRecordName);
        return;
    }
    if (KcDbWrite<KcDbXrecord> record(id); record) {
        record->setValues(std::move(values));
        return;
    }
    auto record = std::make_unique<KcDbXrecord>();
    record->setValues(std::move(values));
    if (KcDbWrite<KcDbDictionary> dictionary(createExtensionDictionary()); dictionary)
        dictionary->setAt(kRecordName, std::move(record));
}

void KcDbTable::readRecord() const
{
    // Read when first asked for: while a drawing is read, the table may come before its record. What is read
    // fills places that are empty until then, so a table that is open for reading only stays what it was.
    if (m_recordRead)
        return;
    const KcDbObjectId dictionaryId = extensionDictionary();
    if (!dictionaryId.isNull() && !dictionaryId.isValid())
        return;
    m_recordRead = true;
    const KcDbRead<KcDbDictionary> dictionary(dictionaryId);
    if (!dictionary)
        return;
    const KcDbRead<KcDbXrecord> record(dictionary->getAt(kRecordName));
    if (!record)
        return;
    KcDbTableData& table = const_cast<KcDbTable*>(this)->m_table;
    int rows = -1, columns = -1;
    int namedColumn = -1, stateRow = -1, stateColumn = -1, lowRow = -1, typedRow = -1;
    const auto isRow = [&](int row) { return rows == numRows() && row >= 0 && row < rows; };
    const auto isColumn
        = [&](int column) { return columns == numColumns() && column >= 0 && column < columns; };
    for (const KcDbTypedValue& value : record->values()) {
        const int number = int(value.integer(-1));
        switch (value.code) {
        case kVersionCode:
            if (number != kRecordVersion)
                return; // of a later form
            break;
        case kRowsCode:
            rows = number;
            break;
        case kColumnsCode:
            columns = number;
            break;
        case kNamedColumnCode:
            namedColumn = number;
            break;
        case kNameCode:
            if (isColumn(namedColumn))
                table.columns[namedColumn].name = value.text();
            break;
        case kStateRowCode:
            stateRow = number;
            break;
        case kStateColumnCode:
            stateColumn = number;
            break;
        case kStateCode:
            if (isRow(stateRow) && isColumn(stateColumn))
                table.cells[size_t(stateRow) * columns + stateColumn].state = number;
            break;
        case kLowRowCode:
            lowRow = number;
            break;
        case kLowHeightCode:
            if (isRow(lowRow) && value.real() < table.rows[lowRow].height) {
                table.rows[lowRow].drawnHeight = table.rows[lowRow].height;
                table.rows[lowRow].height = value.real();
            }
            break;
        case kTypedRowCode:
            typedRow = number;
            break;
        case kTypeCode:
            if (isRow(typedRow) && (number == kDataRow || number == kTitleRow || number == kHeaderRow))
                table.rows[typedRow].type = KcDbRowType(number);
            break;
        default:
            break;
        }
    }
}
