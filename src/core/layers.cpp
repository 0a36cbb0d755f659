// Layers and line types that commands ask for by name.

#include "core/layers.h"

#include "core/application.h"
#include "core/drawing_config.h"
#include "db/header.h"
#include "db/tables.h"
#include "ed/documents.h"
#include "platform/character_sets.h"
#include "platform/diagnostics.h"
#include "platform/files.h"

namespace {

const QString continuous = QStringLiteral("Continuous");

KcDbDatabase* orCurrent(KcDbDatabase* database)
{
    return database ? database : kcedCurrentDatabase();
}

// What the drawing format allows in names; the bar belongs to the layers of external references.
bool isLayerName(const QString& name)
{
    constexpr int kLongest = 255;
    static const QString forbidden = QStringLiteral("<>/\\\":;?*|,=`");
    return !name.trimmed().isEmpty() && name.size() <= kLongest
        && std::none_of(
            name.begin(), name.end(), [](QChar c) { return c.unicode() < u' ' || forbidden.contains(c); });
}

KcDbObjectId makeLayer(KcDbDatabase& database, const QString& name, int color, KcDbObjectId lineType)
{
    if (!isLayerName(name))
        return {};
    auto layer = std::make_unique<KcDbLayerTableRecord>();
    layer->initName(name);
    layer->setColor(color);
    layer->setLinetypeObjectId(lineType.isNull() ? InitLineType(continuous, &database) : lineType);
    KcDbWrite<KcDbSymbolTable> table(database.layerTable());
    return table ? table->add(std::move(layer)) : KcDbObjectId();
}

// Line type files -------------------------------------------------------------------------------

QString textOfFile(const QString& fileName)
{
    const QString path = platform::findPath(GetAppRoot() + QStringLiteral("Sys/") + fileName);
    if (!QFileInfo(path).isFile())
        return {};
    const platform::Result<QByteArray> bytes = platform::readWholeFile(path);
    if (!bytes) {
        platform::diagnoseOnce(bytes.error);
        return {};
    }
    const std::string_view view(bytes->constData(), size_t(bytes->size()));
    const platform::Decoded utf8 = platform::CharacterSet::utf8().decode(view);
    if (utf8.clean())
        return utf8.text;
    return platform::CharacterSet::named(u"GBK")->decode(view).text; // what other programs write here
}

// The two lines of a line type: "*NAME,description" and "A,dash,-gap,…"; nothing when the file lacks it.
struct Definition {
    QString name, description, pattern;
};

std::optional<Definition> findDefinition(const QString& fileName, const QString& lineType)
{
    QString text = textOfFile(fileName);
    if (text.startsWith(QChar::ByteOrderMark))
        text.remove(0, 1);
    std::optional<Definition> found;
    for (const QString& raw : text.split(u'\n')) {
        const QString line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(u';'))
            continue;
        if (found && !line.startsWith(u'*')) {
            found->pattern = line;
            return found;
        }
        found.reset();
        const qsizetype comma = line.indexOf(u',');
        const QString name = line.mid(1, comma < 0 ? -1 : comma - 1).trimmed();
        if (line.startsWith(u'*') && name.compare(lineType, Qt::CaseInsensitive) == 0)
            found = Definition{ name, comma < 0 ? QString() : line.mid(comma + 1).trimmed(), {} };
    }
    return std::nullopt;
}

std::unique_ptr<KcDbLinetypeTableRecord> recordOf(const Definition& definition, const QString& fileName)
{
    const auto refuse = [&](const QString& reason) {
        platform::diagnoseOnce(QStringLiteral("line type \"%1\" of %2 was not loaded: %3")
                                   .arg(definition.name, fileName, reason));
        return nullptr;
    };
    if (definition.pattern.contains(u'['))
        return refuse(QStringLiteral("it has texts or shapes"));
    auto record = std::make_unique<KcDbLinetypeTableRecord>();
    record->initName(definition.name);
    record->data().description = definition.description;
    QStringList parts = definition.pattern.split(u',');
    if (parts.takeFirst().trimmed().compare(u"A", Qt::CaseInsensitive) != 0)
        return refuse(QStringLiteral("its pattern does not begin with A"));
    for (const QString& part : parts) {
        bool isNumber = false;
        const double length = part.trimmed().toDouble(&isNumber);
        if (!isNumber || !std::isfinite(length))
            return refuse(QStringLiteral("\"%1\" is not a number").arg(part));
        record->data().dashes.emplace_back().length = length;
        record->data().patternLength += std::abs(length);
    }
    return record;
}

} // namespace

KcDbObjectId InitStdLayer(const QString& name, KcDbDatabase* database)
{
    constexpr int kOrdinaryColor = 7;
    database = orCurrent(database);
    if (!database)
        return {};
    const CLayerStd standard = GetDwgGlobal(VdlOpenMode::kForRead, database)->GetLayerStd();
    const SLayerDesc* const desc = standard.find(name);
    const QString layer = desc && !desc->layer.isEmpty() ? desc->layer : name;
    if (const KcDbObjectId there = kcdbFindRecord(database->layerTable(), layer); !there.isNull())
        return there;
    if (!desc)
        return makeLayer(*database, layer, kOrdinaryColor, {});
    return makeLayer(*database, layer, desc->color, InitLineType(desc->lineType, database));
}

QString LayerKey2Name(const QString& keyword, int /*what*/)
{
    const auto config = GetDwgGlobal(VdlOpenMode::kForRead);
    if (!config)
        return keyword;
    const CLayerStd standard = config->GetLayerStd();
    const SLayerDesc* const desc = standard.find(keyword);
    return desc && !desc->layer.isEmpty() ? desc->layer : keyword;
}

KcDbObjectId InitLineType(const QString& name, KcDbDatabase* database)
{
    database = orCurrent(database);
    if (!database || name.isEmpty())
        return {};
    if (const KcDbObjectId there = kcdbFindRecord(database->linetypeTable(), name); !there.isNull())
        return there;
    std::unique_ptr<KcDbLinetypeTableRecord> record;
    if (name.compare(continuous, Qt::CaseInsensitive) == 0) {
        record = std::make_unique<KcDbLinetypeTableRecord>();
        record->initName(continuous);
    }
    QStringList files{ QStringLiteral("gb.lin"), QStringLiteral("acad.lin") };
    const KcDbRead<KcDbHeader> header(database->headerId());
    if (header->integer(QStringLiteral("$MEASUREMENT"), 1) == 0)
        std::swap(files[0], files[1]);
    for (const QString& file : files)
        if (!record)
            if (const std::optional<Definition> definition = findDefinition(file, name))
                record = recordOf(*definition, file);
    if (!record)
        return {};
    KcDbWrite<KcDbSymbolTable> table(database->linetypeTable());
    return table ? table->add(std::move(record)) : KcDbObjectId();
}

bool GetLayers(QStringList& names, int /*reserved*/, KcDbDatabase* database)
{
    names.clear();
    database = orCurrent(database);
    if (database)
        if (const KcDbRead<KcDbSymbolTable> table(database->layerTable()); table)
            names = table->names();
    return !names.isEmpty();
}

bool GetCurrentLayer(QString& name, KcDbDatabase* database)
{
    database = orCurrent(database);
    const KcDbObjectId layer = database ? database->currentLayer() : KcDbObjectId();
    if (!layer.isNull())
        name = kcdbRecordName(layer);
    return !layer.isNull();
}

bool GetLayerNameIsOff(QStringList& names, KcDbDatabase* database)
{
    names.clear();
    database = orCurrent(database);
    if (!database)
        return false;
    for (const KcDbObjectId id : KcDbRead<KcDbSymbolTable>(database->layerTable())->records())
        if (const KcDbRead<KcDbLayerTableRecord> layer(id); layer && (layer->isOff() || layer->isFrozen()))
            names.push_back(layer->name());
    return !names.isEmpty();
}

bool GetLayerColor(const QString& name, int& colorIndex, KcDbDatabase* database)
{
    database = orCurrent(database);
    const KcDbRead<KcDbLayerTableRecord> layer(
        database ? kcdbFindRecord(database->layerTable(), name) : KcDbObjectId());
    if (layer)
        colorIndex = layer->colorIndex();
    return bool(layer);
}

bool GetLayerLineType(const QString& name, QString& lineType, KcDbDatabase* database)
{
    database = orCurrent(database);
    const KcDbRead<KcDbLayerTableRecord> layer(
        database ? kcdbFindRecord(database->layerTable(), name) : KcDbObjectId());
    if (!layer)
        return false;
    lineType = kcdbRecordName(layer->linetypeObjectId());
    if (lineType.isEmpty())
        lineType = continuous;
    return true;
}

KcDbObjectId CreateLayer(const QString& name, int color, KcDbDatabase* database)
{
    database = orCurrent(database);
    if (!database)
        return {};
    const KcDbObjectId there = kcdbFindRecord(database->layerTable(), name);
    if (there.isNull())
        return makeLayer(*database, name, color, {});
    if (const KcDbRead<KcDbLayerTableRecord> layer(there); layer && (layer->isOff() || layer->isFrozen())) {
        KcDbWrite<KcDbLayerTableRecord> shown(there);
        shown->setIsOff(false);
        shown->setIsFrozen(false);
    }
    return there;
}

int SetLayers(const QStringList& names, bool on, KcDbDatabase* database)
{
    database = orCurrent(database);
    int found = 0;
    for (const QString& name : names)
        if (KcDbWrite<KcDbLayerTableRecord> layer(
                database ? kcdbFindRecord(database->layerTable(), name) : KcDbObjectId());
            layer) {
            layer->setIsOff(!on);
            ++found;
        }
    return found;
}

bool SetEntityLayer(KcDbObjectId entity, KcDbObjectId layer)
{
    if (!KcDbRead<KcDbLayerTableRecord>(layer) || layer.database() != entity.database())
        return false;
    if (const KcDbRead<KcDbEntity> there(entity); !there || there->layerId() == layer)
        return bool(there);
    KcDbWrite<KcDbEntity>(entity)->setLayer(layer);
    return true;
}
