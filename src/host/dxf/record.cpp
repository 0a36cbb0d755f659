// Reading and writing what the records of all kinds have in common.

#include "dxf/record.h"

#include "db/block_table_record.h"
#include "db/dictionary.h"
#include "db/open.h"
#include "db/raw_entity.h"
#include "db/tables.h"
#include "db/text.h"
#include "dxf/written.h"

namespace dxf {

namespace {

constexpr std::string_view kReactors = "{ACAD_REACTORS";
constexpr std::string_view kExtensionDictionary = "{ACAD_XDICTIONARY";

/// Reads a bracketed list (102 … 102); those of the drawing itself into the object, others are passed over.
struct Lists {
    std::vector<KcDbObjectId> reactors;
    KcDbObjectId extensionDictionary;
};

void readList(GroupCursor& cursor, ReadContext& context, std::string_view name, Lists& lists)
{
    Group group;
    while (cursor.next(group)) {
        if (group.code == 0 || group.code == 100) {
            cursor.back(group); // the list was never closed
            return;
        }
        if (group.code == 102)
            return;
        if (name == kReactors && group.code == 330)
            lists.reactors.push_back(context.handle(group));
        else if (name == kExtensionDictionary && group.code == 360)
            lists.extensionDictionary = context.handle(group);
    }
}

bool readEntityCommon(KcDbEntity& entity, const Group& group, ReadContext& context)
{
    switch (group.code) {
    case 8:
        entity.setLayer(context.named(NameOf::Layer, group));
        return true;
    case 6: {
        const KcDbObjectId id = context.named(NameOf::Linetype, group);
        entity.setLinetypeId(
            kcdbRecordName(id).compare(QLatin1String("ByLayer"), Qt::CaseInsensitive) == 0 ? KcDbObjectId()
                                                                                           : id);
        return true;
    }
    case 62:
        entity.setColor({ int16_t(group.integer()), entity.color().rgb });
        return true;
    case 420:
        entity.setColor({ entity.color().index, int32_t(group.integer() & 0xFFFFFF) });
        return true;
    case 440:
        entity.setTransparency(uint32_t(group.integer()));
        return true;
    case 370:
        entity.setLineWeight(int(group.integer()));
        return true;
    case 48:
        entity.setLinetypeScale(group.real());
        return true;
    case 60:
        entity.setVisible(group.integer() == 0);
        return true;
    case 67:
        entity.setInPaperSpace(group.integer() != 0);
        return true;
    default:
        return false;
    }
}

void writeEntityCommon(const KcDbEntity& entity, GroupList& out)
{
    out.subclass("AcDbEntity");
    out.integer(67, entity.isInPaperSpace(), 0);
    out.name(8, entity.layer());
    const QString linetype
        = entity.linetypeId().isNull() ? QStringLiteral("ByLayer") : kcdbRecordName(entity.linetypeId());
    out.name(6, linetype, entity.linetypeId().isNull());
    out.integer(62, entity.color().index, KcCmColor::kByLayer);
    if (out.version() >= KcDbVersion::V2000)
        out.integer(370, entity.lineWeight(), -1);
    if (out.version() >= KcDbVersion::R13)
        out.real(48, entity.linetypeScale(), 1.0);
    out.integer(60, !entity.isVisible(), 0);
    if (out.version() >= KcDbVersion::V2004) {
        if (entity.color().rgb >= 0)
            out.integer(420, entity.color().rgb);
        out.integer(440, int32_t(entity.transparency()), 0);
    }
}

class XDataReader {
public:
    explicit XDataReader(ReadContext& context)
        : m_context(context)
    {
    }
    void read(const Group& group)
    {
        if (group.code == 1001) {
            m_all.push_back({ m_context.named(NameOf::RegApp, group), {} });
            return;
        }
        if (m_all.empty())
            return; // values without an application: they stay in the file
        KcDbValueList& values = m_all.back().values;
        if (group.code >= 1020 && group.code <= 1033 && !values.empty()) {
            auto* p = std::get_if<KcGePoint3d>(&values.back().value);
            const int of = values.back().code;
            if (p && (group.code == of + 10 || group.code == of + 20)) {
                (group.code == of + 10 ? p->y : p->z) = group.real();
                return;
            }
        }
        values.push_back(m_context.typed(group));
    }
    std::vector<KcDbXData>& all() { return m_all; }

private:
    ReadContext& m_context;
    std::vector<KcDbXData> m_all;
};

/// The point whose coordinates are being read.
struct UnknownPoint {
    double x = 0.0;
    KcGePoint3d origin; ///< of a picture
    KcGeVector3d u, v; ///< of a pixel of a picture
};

/// Of what it does not know the program reads where it lies: its points, a dimension's block; and what it
/// owns.
void readUnknown(KcDbRawEntity& entity, const Group& group, ReadContext& context, UnknownPoint& point)
{
    KcDbRawEntity::Data& d = entity.data();
    const bool isPicture = entity.fileName() == "IMAGE";
    const bool isMultiline = entity.fileName() == "MLINE";
    switch (group.code) {
    case 2:
        if (d.block.isNull() && entity.fileName().endsWith("DIMENSION"))
            d.block = context.named(NameOf::Block, group);
        return;
    case 3:
        if (entity.fileName().endsWith("DIMENSION"))
            d.dimStyle = context.named(NameOf::DimStyle, group);
        return;
    case 360:
        d.owned.push_back(context.handle(group));
        return;
    case 10:
    case 13:
        point.x = group.real();
        return;
    case 11:
        point.x = point.u.x = group.real();
        return;
    case 12:
        point.v.x = group.real();
        return;
    case 20:
        point.origin = { point.x, group.real(), 0.0 };
        d.points.addPoint(point.origin);
        return;
    case 21:
        point.u.y = group.real();
        if (isMultiline) // vertices; other kinds have directions here
            d.points.addPoint({ point.x, group.real(), 0.0 });
        return;
    case 22:
        point.v.y = group.real();
        return;
    case 23:
        if (isPicture) {
            const KcGePoint3d right = point.origin + point.u * point.x,
                              up = point.origin + point.v * group.real();
            d.points.addPoint(right);
            d.points.addPoint(up);
            d.points.addPoint(right + (up - point.origin));
        }
        return;
    default:
        return;
    }
}

} // namespace

std::unique_ptr<KcDbObject> makeObject(const Codec* codec, std::string_view fileName, bool isEntity)
{
    if (codec && codec->type()->isDerivedFrom(KcDbEntity::desc()) == isEntity)
        return codec->create();
    const QByteArray name(fileName.data(), qsizetype(fileName.size()));
    if (isEntity)
        return std::make_unique<KcDbRawEntity>(name);
    return std::make_unique<KcDbRawObject>(name);
}

std::string fileNameOf(const KcDbObject& object)
{
    if (object.isA() == KcDbRawEntity::desc())
        return static_cast<const KcDbRawEntity&>(object).fileName().toStdString();
    if (object.isA() == KcDbRawObject::desc())
        return static_cast<const KcDbRawObject&>(object).fileName().toStdString();
    if (object.isA() == KcDbDictionary::desc())
        return static_cast<const KcDbDictionary&>(object).data().defaultId.isNull() ? "DICTIONARY"
                                                                                    : "ACDBDICTIONARYWDFLT";
    const Codec* codec = codecFor(object);
    return codec ? codec->fileName() : std::string();
}

RecordHead readRecord(GroupCursor& cursor, ReadContext& context, const Codec* codec, KcDbObject& object)
{
    RecordHead head;
    const bool isEntity = object.isKindOf(KcDbEntity::desc());
    const bool isTableRecord = object.isKindOf(KcDbSymbolTableRecord::desc());
    const bool isDimStyle = object.isA() == KcDbDimStyleTableRecord::desc();
    const bool isBlockRecord = object.isA() == KcDbBlockTableRecord::desc();
    const bool isXrecord = object.isKindOf(KcDbXrecord::desc());
    if (codec && codec->type() != object.isA())
        codec = nullptr;
    auto* entity = isEntity ? static_cast<KcDbEntity*>(&object) : nullptr;
    auto* raw = object.isA() == KcDbRawEntity::desc() ? static_cast<KcDbRawEntity*>(&object) : nullptr;
    bool hasName = false, hasFlags = false, commonIsEmpty = true;
    UnknownPoint rawPoint;

    ReadState state{ context, cursor };
    std::optional<Lists> lists;
    std::optional<XDataReader> xdata;
    Group group;
    while (cursor.next(group)) {
        switch (group.code) {
        case 0:
            cursor.back(group);
            goto done;
        case 5:
            if (state.subclassCount == 0 && !isDimStyle && head.handle == 0) {
                head.handle = state.handle = group.handle();
                continue;
            }
            break;
        case 105:
            if (isDimStyle) {
                head.handle = state.handle = group.handle();
                continue;
            }
            break;
        case 100:
            if (isXrecord && state.subclass == "AcDbXrecord")
                break;
            state.subclass = group.trimmed();
            ++state.subclassCount;
            continue;
        case 101:
            // Data embedded in the record by a later version; it says again, in its own way, what came
            // before.
            if (isXrecord)
                break;
            state.subclass = "Embedded Object";
            ++state.subclassCount;
            continue;
        case 102:
            if (isXrecord && state.subclass == "AcDbXrecord")
                break;
            if (!lists)
                lists.emplace();
            readList(cursor, context, group.trimmed(), *lists);
            continue;
        case 330:
            if (state.subclassCount == 0 && head.owner == 0) {
                head.owner = group.handle();
                continue;
            }
            break;
        case 66:
            head.attributesFollow = group.integer() == 1;
            break;
        default:
            if (group.code >= 1000 && group.code <= 1071) {
                if (!xdata)
                    xdata.emplace(context);
                xdata->read(group);
                continue;
            }
            break;
        }
        if (entity
            && (state.subclassCount == 0 || (state.subclassCount == 1 && state.subclass == "AcDbEntity"))) {
            commonIsEmpty = false;
            if (readEntityCommon(*entity, group, context))
                continue;
        }
        if (isTableRecord) {
            auto& record = static_cast<KcDbSymbolTableRecord&>(object);
            if (group.code == 2 && !hasName) {
                head.recordName = context.text(group);
                record.initName(head.recordName);
                hasName = true;
                continue;
            }
            if (group.code == 70 && !hasFlags && !isBlockRecord) {
                record.setFlags(int(group.integer()));
                hasFlags = true;
                continue;
            }
        }
        // Some programs close the mark AcDbEntity at once and say layer, colour and the like under the next
        // one.
        const bool isMisplaced = entity && commonIsEmpty && state.subclassCount == 2;
        if (codec) {
            if (!codec->read(object, group, state) && isMisplaced)
                readEntityCommon(*entity, group, context);
        } else if (isMisplaced && group.code == 8) {
            readEntityCommon(*entity, group, context);
        } else if (raw && state.subclass != "AcDbEntity") {
            readUnknown(*raw, group, context, rawPoint);
        }
    }
done:
    if (codec)
        codec->finish(object, state);
    if (lists) {
        for (KcDbObjectId id : lists->reactors)
            object.addPersistentReactor(id);
        if (!lists->extensionDictionary.isNull())
            object.setExtensionDictionary(lists->extensionDictionary);
    }
    if (xdata && !xdata->all().empty())
        object.setAllXData(std::move(xdata->all()));
    if (xdata && object.isA() == KcDbMText::desc()) {
        auto& text = static_cast<KcDbMText&>(object);
        const KcDbMText::ColumnNote note = text.columnNote();
        text.data().columnWidth = note.width;
        for (const KcDbObjectId other : note.others)
            context.columnWidths.emplace_back(other, note.width);
    }
    return head;
}

void writeRecord(
    const KcDbObject& object, std::string_view fileName, const Codec* codec, KcDbHandle handle,
    KcDbHandle owner, GroupList& out)
{
    out.text(0, QString::fromUtf8(fileName.data(), qsizetype(fileName.size())));
    const bool isDimStyle = object.isA() == KcDbDimStyleTableRecord::desc();
    if (handle != 0)
        out.handle(isDimStyle ? 105 : 5, handle);
    if (!out.isR12()) {
        if (const KcDbObjectId dictionary = object.extensionDictionary();
            !dictionary.isNull() && isWrittenReference(object, dictionary)) {
            out.text(102, QString::fromLatin1(kExtensionDictionary.data()));
            out.handle(360, dictionary);
            out.text(102, QStringLiteral("}"));
        }
        std::vector<KcDbObjectId> reactors;
        for (KcDbObjectId id : object.reactors())
            if (isWrittenReference(object, id))
                reactors.push_back(id);
        if (!reactors.empty()) {
            out.text(102, QString::fromLatin1(kReactors.data()));
            for (KcDbObjectId id : reactors)
                out.handle(330, id);
            out.text(102, QStringLiteral("}"));
        }
        out.handle(330, owner);
    }
    if (object.isKindOf(KcDbEntity::desc())) {
        writeEntityCommon(static_cast<const KcDbEntity&>(object), out);
    } else if (object.isKindOf(KcDbSymbolTableRecord::desc())) {
        const auto& record = static_cast<const KcDbSymbolTableRecord&>(object);
        out.subclass("AcDbSymbolTableRecord");
        out.subclass(record.isA()->name());
        out.text(2, record.name());
        if (record.isA() != KcDbBlockTableRecord::desc())
            out.integer(70, record.flags());
    }
    if (codec)
        codec->write(object, out);
    for (const KcDbXData& data : object.xdata()) {
        out.name(1001, kcdbRecordName(data.application));
        for (const KcDbTypedValue& value : data.values)
            out.typed(value);
    }
}

} // namespace dxf
