// The configuration as three records in a dictionary of the drawing. Texts stand in pairs or threes of a key
// (group 1) and what belongs to it (groups 3 and 70), so that other programs can show them.

#include "core/drawing_config.h"

#include "db/dictionary.h"
#include "db/open.h"
#include "db/tables.h"
#include "ed/documents.h"

namespace {

const QString configDictionary = QStringLiteral("VDL_CONFIG");
const QString areaNamesRecord = QStringLiteral("AREA_NAMES"); // names and field texts
const QString tablesRecord = QStringLiteral("TABLE_INFO"); // tables, each with its columns
const QString valuesRecord = QStringLiteral("VALUES"); // single values

constexpr int kKey = 1, kTable = 2, kText = 3, kVisible = 70;

// Names of single values.
const QString textStyleValue = QStringLiteral("TextStyle");
const QString standardValue = QStringLiteral("LayerStandard");
const QString treeLayerValue = QStringLiteral("TreeDimLayer");
const QString areaLayerValue = QStringLiteral("AreaDimLayer");
const QString backFillValue = QStringLiteral("TextBackFill");

KcDbObjectId find(const KcDbDatabase& database)
{
    const KcDbRead<KcDbDictionary> root(database.namedObjectsDictionary());
    return root ? root->getAt(configDictionary) : KcDbObjectId();
}

// A drawing file keeps each text on one line.
QString onOneLine(const QString& text)
{
    QString result;
    for (const QChar c : text) {
        if (c == u'\\')
            result += QLatin1String("\\\\");
        else if (c == u'\n')
            result += QLatin1String("\\n");
        else if (c == u'\r')
            result += QLatin1String("\\r");
        else
            result += c;
    }
    return result;
}

QString fromOneLine(const QString& text)
{
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'\\' || i + 1 == text.size()) {
            result += text[i];
            continue;
        }
        const QChar code = text[++i];
        result += code == u'n' ? QChar(u'\n') : code == u'r' ? QChar(u'\r') : code;
    }
    return result;
}

KcDbValueList readRecord(const KcDbDatabase& database, const QString& name)
{
    const KcDbRead<KcDbDictionary> dictionary(find(database));
    const KcDbRead<KcDbXrecord> record(dictionary ? dictionary->getAt(name) : KcDbObjectId());
    return record ? record->values() : KcDbValueList();
}

bool writeRecord(KcDbDatabase& database, const QString& name, KcDbValueList values)
{
    if (values == readRecord(database, name))
        return true; // a drawing that says so already stays as it is
    const KcDbObjectId id
        = KcDbDictionary::subDictionary(database.namedObjectsDictionary(), configDictionary);
    KcDbWrite<KcDbDictionary> dictionary(id);
    if (!dictionary)
        return false;
    if (KcDbWrite<KcDbXrecord> record(dictionary->getAt(name)); record) {
        record->setValues(std::move(values));
        return true;
    }
    auto record = std::make_unique<KcDbXrecord>();
    record->setValues(std::move(values));
    return !dictionary->setAt(name, std::move(record)).isNull();
}

// The pairs of a record, in order. A key without a text has an empty one.
std::map<QString, QString> readPairs(const KcDbDatabase& database, const QString& record)
{
    std::map<QString, QString> pairs;
    QString* text = nullptr;
    for (const KcDbTypedValue& value : readRecord(database, record)) {
        if (value.code == kKey)
            text = &pairs[fromOneLine(value.text())];
        else if (value.code == kText && text)
            *text = fromOneLine(value.text());
    }
    return pairs;
}

bool writePairs(KcDbDatabase& database, const QString& record, const std::map<QString, QString>& pairs)
{
    KcDbValueList values;
    for (const auto& [key, text] : pairs) {
        values.push_back({ kKey, onOneLine(key) });
        values.push_back({ kText, onOneLine(text) });
    }
    return writeRecord(database, record, std::move(values));
}

std::vector<CTbInfoStd> readTables(const KcDbDatabase& database)
{
    std::vector<CTbInfoStd> tables;
    QString key;
    STbInfoDesc desc;
    for (const KcDbTypedValue& value : readRecord(database, tablesRecord)) {
        if (value.code == kTable)
            tables.emplace_back(fromOneLine(value.text()));
        if (value.code == kKey)
            key = fromOneLine(value.text());
        if (value.code == kText)
            desc.text = fromOneLine(value.text());
        if (value.code == kVisible && !tables.empty()) {
            desc.visible = value.integer() != 0;
            tables.back().Set(key, desc);
        }
    }
    return tables;
}

bool writeTables(KcDbDatabase& database, const std::vector<CTbInfoStd>& tables)
{
    KcDbValueList values;
    for (const CTbInfoStd& table : tables) {
        values.push_back({ kTable, onOneLine(table.tableName()) });
        for (const CTbInfoStd::Entry& entry : table.entries()) {
            values.push_back({ kKey, onOneLine(entry.key) });
            values.push_back({ kText, onOneLine(entry.desc.text) });
            values.push_back({ kVisible, int64_t(entry.desc.visible) });
        }
    }
    return writeRecord(database, tablesRecord, std::move(values));
}

const CTbInfoStd* findTable(const std::vector<CTbInfoStd>& tables, const QString& name)
{
    const auto found = std::find_if(
        tables.begin(), tables.end(), [&](const CTbInfoStd& table) { return table.tableName() == name; });
    return found == tables.end() ? nullptr : &*found;
}

KcDbDatabase* orCurrent(KcDbDatabase* database)
{
    return database ? database : kcedCurrentDatabase();
}

bool getValue(const QString& name, QString& value, KcDbDatabase* database)
{
    const auto config = GetDwgGlobal(VdlOpenMode::kForRead, database);
    const QString stored = config ? config->value(name) : QString();
    if (!stored.isEmpty())
        value = stored;
    return !stored.isEmpty();
}

bool putValue(const QString& name, const QString& value, KcDbDatabase* database)
{
    const auto config = GetDwgGlobal(VdlOpenMode::kForWrite, database);
    return config && config->setValue(name, value);
}

} // namespace

bool CVdlConfig::IsInDrawing() const
{
    return !find(*m_database).isNull();
}

std::map<QString, QString> CVdlConfig::GetDimInfo() const
{
    return readPairs(*m_database, areaNamesRecord);
}

bool CVdlConfig::AppendAreaDimInfo(const QString& name, const QString& text)
{
    std::map<QString, QString> names = GetDimInfo();
    names[name] = text;
    return SetDimInfo(names);
}

bool CVdlConfig::SetDimInfo(const std::map<QString, QString>& names)
{
    return m_mode == VdlOpenMode::kForWrite && writePairs(*m_database, areaNamesRecord, names);
}

std::optional<CTbInfoStd> CVdlConfig::GetTbInfoStd(const QString& table) const
{
    const std::vector<CTbInfoStd> held = readTables(*m_database);
    const std::optional<std::vector<CTbInfoStd>> shipped = loadTableInfo();
    const CTbInfoStd* const own = findTable(held, table);
    const CTbInfoStd* const usual = shipped ? findTable(*shipped, table) : nullptr;
    if (!own && !usual)
        return std::nullopt;
    CTbInfoStd info = usual ? *usual : CTbInfoStd(table);
    if (own)
        for (const CTbInfoStd::Entry& entry : own->entries())
            info.Set(entry.key, entry.desc);
    return info;
}

bool CVdlConfig::SetTbInfoStd(const CTbInfoStd& info)
{
    if (m_mode != VdlOpenMode::kForWrite || info.tableName().isEmpty())
        return false;
    std::vector<CTbInfoStd> tables = readTables(*m_database);
    std::erase_if(tables, [&](const CTbInfoStd& table) { return table.tableName() == info.tableName(); });
    tables.push_back(info);
    return writeTables(*m_database, tables);
}

bool CVdlConfig::LoadTbInfoStd()
{
    if (m_mode != VdlOpenMode::kForWrite)
        return false;
    const std::optional<std::vector<CTbInfoStd>> shipped = loadTableInfo();
    return shipped && writeTables(*m_database, *shipped);
}

bool CVdlConfig::SetCurrentTextStyle(const QString& name)
{
    return setValue(textStyleValue, name);
}

bool CVdlConfig::GetCurrentStd(QString& name) const
{
    name = value(standardValue);
    if (name.isEmpty())
        if (const std::vector<CLayerStd> standards = loadLayerStandards(); !standards.empty())
            name = standards.front().name;
    return !name.isEmpty();
}

bool CVdlConfig::SetCurrentStd(const QString& name)
{
    return setValue(standardValue, name);
}

CLayerStd CVdlConfig::GetLayerStd() const
{
    CLayerStd standard;
    if (GetCurrentStd(standard.name))
        for (const CLayerStd& each : loadLayerStandards())
            if (each.name == standard.name)
                return each;
    return standard;
}

QString CVdlConfig::value(const QString& name) const
{
    const std::map<QString, QString> values = readPairs(*m_database, valuesRecord);
    const auto found = values.find(name);
    return found == values.end() ? QString() : found->second;
}

bool CVdlConfig::setValue(const QString& name, const QString& value)
{
    if (m_mode != VdlOpenMode::kForWrite)
        return false;
    std::map<QString, QString> values = readPairs(*m_database, valuesRecord);
    if (value.isEmpty())
        values.erase(name);
    else
        values[name] = value;
    return writePairs(*m_database, valuesRecord, values);
}

std::unique_ptr<CVdlConfig> GetDwgGlobal(VdlOpenMode mode, KcDbDatabase* database)
{
    database = orCurrent(database);
    return database ? std::make_unique<CVdlConfig>(*database, mode) : nullptr;
}

bool GetCurrentTextStyle(QString& name, KcDbDatabase* database)
{
    const KcDbObjectId style = GetVdlCurrentTextStyle(database);
    if (!style.isNull())
        name = kcdbRecordName(style);
    return !style.isNull();
}

KcDbObjectId GetVdlCurrentTextStyle(KcDbDatabase* database)
{
    database = orCurrent(database);
    if (!database)
        return {};
    QString name;
    KcDbObjectId style;
    if (getValue(textStyleValue, name, database))
        style = kcdbFindRecord(database->textStyleTable(), name);
    return style.isNull() ? database->currentTextStyle() : style;
}

bool GetTreeDimLayer(QString& name, KcDbDatabase* database)
{
    return getValue(treeLayerValue, name, database);
}

bool SetTreeDimLayer(const QString& name, KcDbDatabase* database)
{
    return putValue(treeLayerValue, name, database);
}

bool GetAreaDimLayer(QString& name, KcDbDatabase* database)
{
    return getValue(areaLayerValue, name, database);
}

bool SetAreaDimLayer(const QString& name, KcDbDatabase* database)
{
    return putValue(areaLayerValue, name, database);
}

bool GetTextBackFill(bool& value, KcDbDatabase* database)
{
    QString stored;
    if (!getValue(backFillValue, stored, database))
        return false;
    value = stored == u"1";
    return true;
}

bool SetTextBackFill(bool value, KcDbDatabase* database)
{
    return putValue(backFillValue, value ? QStringLiteral("1") : QStringLiteral("0"), database);
}
