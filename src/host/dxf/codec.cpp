// The table of codecs, tables of fields, and the resolution of names while reading.

#include "dxf/codec.h"

#include "db/block_table_record.h"
#include "db/open.h"
#include "db/tables.h"

namespace dxf {

// Names.

namespace {

std::unique_ptr<KcDbSymbolTableRecord> makeRecord(NameOf table)
{
    switch (table) {
    case NameOf::Layer:
        return std::make_unique<KcDbLayerTableRecord>();
    case NameOf::Linetype:
        return std::make_unique<KcDbLinetypeTableRecord>();
    case NameOf::TextStyle:
        return std::make_unique<KcDbTextStyleTableRecord>();
    case NameOf::DimStyle:
        return std::make_unique<KcDbDimStyleTableRecord>();
    case NameOf::Block:
        return std::make_unique<KcDbBlockTableRecord>();
    case NameOf::RegApp:
        break;
    }
    return std::make_unique<KcDbRegAppTableRecord>();
}

} // namespace

ReadContext::ReadContext(KcDbDatabase& d, Strings& s, KcDbVersion v)
    : database(d)
    , strings(s)
    , version(v)
{
}

KcDbObjectId ReadContext::named(NameOf table, const Group& group)
{
    const std::string_view raw = group.text();
    Names& names = m_names[size_t(table)];
    if (raw == names.lastKey && !names.last.isNull())
        return names.last;
    if (raw.empty())
        return {};
    names.lastKey = raw;
    KcDbObjectId& known = names.known[names.lastKey];
    if (known.isNull()) {
        const KcDbObjectId tables[]
            = { database.layerTable(),    database.linetypeTable(), database.textStyleTable(),
                database.dimStyleTable(), database.blockTable(),    database.regAppTable() };
        const QString name = text(group);
        KcDbWrite<KcDbSymbolTable> open(tables[size_t(table)]);
        known = open->getAt(name);
        if (known.isNull() && table == NameOf::Layer && name.trimmed() != name)
            known = open->getAt(name.trimmed());
        if (known.isNull()) {
            auto record = makeRecord(table);
            record->initName(name);
            known = open->add(std::move(record));
            KcDbDatabase::markImplicit(known);
        }
    }
    return names.last = known;
}

KcDbTypedValue ReadContext::typed(const Group& group)
{
    switch (valueKind(group.code)) {
    case ValueKind::Real: {
        const bool isPoint = (group.code >= 10 && group.code <= 18)
            || (group.code >= 110 && group.code <= 112) || (group.code >= 210 && group.code <= 219)
            || (group.code >= 1010 && group.code <= 1013);
        if (isPoint)
            return { group.code, KcGePoint3d{ group.real(), 0.0, 0.0 } };
        return { group.code, group.real() };
    }
    case ValueKind::Int16:
    case ValueKind::Int32:
    case ValueKind::Int64:
    case ValueKind::Bool:
        return { group.code, group.integer() };
    case ValueKind::Handle:
        return { group.code, handle(group) };
    case ValueKind::Bytes: {
        const std::string bytes = group.bytes();
        return { group.code, QByteArray(bytes.data(), qsizetype(bytes.size())) };
    }
    case ValueKind::Text:
        break;
    }
    return { group.code, text(group) };
}

void ReadContext::finding(int number, KcDbHandle object, const QString& text)
{
    if (reportsFindings)
        database.addFinding({ number, false, object, text });
}

// Codecs.

namespace {

struct Codecs {
    std::vector<std::unique_ptr<Codec>> all;
    std::unordered_map<std::string_view, const Codec*> byName;
    std::unordered_map<const KcRxClass*, const Codec*> byType;
};

Codecs& table()
{
    static Codecs codecs;
    return codecs;
}

const Codecs& codecs()
{
    static const bool built = [] {
        registerCurveCodecs();
        registerTextCodecs();
        registerReferenceCodecs();
        registerHatchCodec();
        registerTableRecordCodecs();
        registerObjectCodecs();
        registerTableCodecs();
        registerTableStyleCodecs();
        return true;
    }();
    (void)built;
    return table();
}

} // namespace

void registerCodec(std::unique_ptr<Codec> codec)
{
    Codecs& codecs = table();
    codecs.byName.emplace(codec->fileName(), codec.get());
    codecs.byType.emplace(codec->type(), codec.get());
    codecs.all.push_back(std::move(codec));
}

const Codec* codecNamed(std::string_view fileName)
{
    const Codecs& all = codecs();
    const auto found = all.byName.find(fileName);
    return found == all.byName.end() ? nullptr : found->second;
}

const Codec* codecFor(const KcDbObject& object)
{
    const Codecs& all = codecs();
    // Objects of derived classes without a codec of their own (those of modules) are written as what they
    // derive from.
    for (const KcRxClass* type = object.isA(); type; type = type->parent())
        if (const auto found = all.byType.find(type); found != all.byType.end())
            return found->second;
    return nullptr;
}

// Fields.

FieldTable::FieldTable(std::vector<Field> fields)
    : m_fields(std::move(fields))
{
    for (size_t i = 0; i < m_fields.size(); ++i) {
        const Field& f = m_fields[i];
        if (f.type == FieldType::Subclass)
            continue;
        const int components = f.type == FieldType::Point3 ? 3 : f.type == FieldType::Point2 ? 2 : 1;
        for (int c = 0; c < components; ++c)
            if (Slot& slot = m_index[size_t(f.code + 10 * c)]; slot.field == 0)
                slot = { uint8_t(i + 1), uint8_t(c) };
    }
}

void FieldTable::store(
    const Field& f, int component, std::byte* const* parts, const Group& g, ReadContext& context)
{
    std::byte* const at = parts[f.part] + f.offset;
    bool ok = true;
    switch (f.type) {
    case FieldType::Real:
        *reinterpret_cast<double*>(at) = g.real(&ok);
        break;
    case FieldType::Angle:
        *reinterpret_cast<double*>(at) = g.real(&ok) * (kPi / 180.0);
        break;
    case FieldType::Point3:
    case FieldType::Point2:
        reinterpret_cast<double*>(at)[component] = g.real(&ok);
        break;
    case FieldType::Int32:
        *reinterpret_cast<int*>(at) = int(g.integer(&ok));
        break;
    case FieldType::Int16:
        *reinterpret_cast<int16_t*>(at) = int16_t(g.integer(&ok));
        break;
    case FieldType::UInt32:
        *reinterpret_cast<uint32_t*>(at) = uint32_t(g.integer(&ok));
        break;
    case FieldType::Bool:
        *reinterpret_cast<bool*>(at) = g.integer(&ok) != 0;
        break;
    case FieldType::Text:
        *reinterpret_cast<QString*>(at) = context.text(g);
        break;
    case FieldType::Handle:
        *reinterpret_cast<KcDbObjectId*>(at) = context.handle(g);
        break;
    case FieldType::Name:
        *reinterpret_cast<KcDbObjectId*>(at) = context.named(f.table, g);
        break;
    case FieldType::Subclass:
        break;
    }
    if (!ok)
        context.finding(
            kFindingBadGroup, 0,
            QStringLiteral("Group %1 holds \"%2\", which is no number; it reads as 0.")
                .arg(g.code)
                .arg(QString::fromUtf8(g.value.data(), qsizetype(std::min<size_t>(g.value.size(), 40)))));
}

void FieldTable::write(const std::byte* const* parts, GroupList& out) const
{
    for (const Field& f : m_fields) {
        if (f.type == FieldType::Subclass) {
            out.subclass(f.text);
            continue;
        }
        if (out.version() < f.since)
            continue;
        const std::byte* const at = parts[f.part] + f.offset;
        const auto number = [&](double value) { return f.optional && value == f.otherwise; };
        switch (f.type) {
        case FieldType::Real: {
            const double v = *reinterpret_cast<const double*>(at);
            out.add({ f.code, v, number(v) });
            break;
        }
        case FieldType::Angle: {
            const double v = *reinterpret_cast<const double*>(at);
            out.add({ f.code, GroupList::degrees(v), number(v) });
            break;
        }
        case FieldType::Point3: {
            const auto* v = reinterpret_cast<const double*>(at);
            const KcGePoint3d p{ v[0], v[1], v[2] };
            out.point(f.code, p, f.optional && p == f.otherwisePoint);
            break;
        }
        case FieldType::Point2: {
            const auto* v = reinterpret_cast<const double*>(at);
            out.point(f.code, KcGePoint2d{ v[0], v[1] });
            break;
        }
        case FieldType::Int32: {
            const int v = *reinterpret_cast<const int*>(at);
            out.add({ f.code, int64_t(v), number(v) });
            break;
        }
        case FieldType::Int16: {
            const int16_t v = *reinterpret_cast<const int16_t*>(at);
            out.add({ f.code, int64_t(v), number(v) });
            break;
        }
        case FieldType::UInt32: {
            const uint32_t v = *reinterpret_cast<const uint32_t*>(at);
            out.add({ f.code, int64_t(int32_t(v)), number(v) });
            break;
        }
        case FieldType::Bool: {
            const bool v = *reinterpret_cast<const bool*>(at);
            out.add({ f.code, int64_t(v), number(v) });
            break;
        }
        case FieldType::Text: {
            const QString& v = *reinterpret_cast<const QString*>(at);
            out.add({ f.code, v, f.optional && v == QLatin1String(f.text) });
            break;
        }
        case FieldType::Handle: {
            const KcDbObjectId id = *reinterpret_cast<const KcDbObjectId*>(at);
            out.handle(f.code, id, f.optional && id.isNull());
            break;
        }
        case FieldType::Name: {
            const KcDbObjectId id = *reinterpret_cast<const KcDbObjectId*>(at);
            const QString name = id.isNull() ? QLatin1String(f.text) : kcdbRecordName(id);
            out.name(
                f.code, name,
                f.optional && (id.isNull() || name.compare(QLatin1String(f.text), Qt::CaseInsensitive) == 0));
            break;
        }
        case FieldType::Subclass:
            break;
        }
    }
}

} // namespace dxf
