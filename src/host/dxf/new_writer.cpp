// Writing a whole drawing anew, as text of version 2010: drawings made in memory, and those of older versions
// that hold something their version cannot.

#include "db/block_reference.h"
#include "db/dictionary.h"
#include "db/header.h"
#include "db/open.h"
#include "db/polyline.h"
#include "db/raw_entity.h"
#include "db/tables.h"
#include "db/viewport.h"
#include "dxf/patch.h"
#include "dxf/record.h"
#include "dxf/source_file.h"
#include "dxf/writer.h"
#include "dxf/written.h"

namespace dxf {

namespace {

constexpr const char* kTableOrder[]
    = { "VPORT", "LTYPE", "LAYER", "STYLE", "VIEW", "UCS", "APPID", "DIMSTYLE", "BLOCK_RECORD" };

class NewWriter {
public:
    NewWriter(KcDbDatabase& database, KcDbVersion version)
        : m_database(database)
        , m_file(dynamic_cast<SourceFile*>(database.file()))
        , m_version(version)
        , m_strings(QStringLiteral("UTF-8"), true)
    {
        if (m_file) {
            m_context.emplace(database, *m_file->strings, m_file->version);
            m_context->reportsFindings = false;
        }
    }

    ~NewWriter()
    {
        for (KcDbObjectStub* stub : m_onlyImplied)
            setChanged(*stub, false);
    }

    void write(Pieces& out)
    {
        becomeWhole();
        writeHeader();
        writeClasses();
        writeTables();
        writeBlocks();
        writeEntities();
        writeObjects();
        raw(0, "EOF");
        out.add(std::move(m_out));
    }

private:
    void raw(int code, const char* text) { group({ code, QString::fromLatin1(text) }); }
    void group(const OutGroup& g) { appendGroup(m_out, g, Form::Text, m_strings, "\n"); }
    void groups(const std::vector<OutGroup>& list)
    {
        for (const OutGroup& g : list)
            group(g);
    }

    /// Everything that was only implied is written now; that does not make it a change of the drawing.
    void becomeWhole()
    {
        m_database.completeFrame();
        for (const char* name : kTableOrder)
            if (const KcDbObjectId table = m_database.tableNamed(name); table.handle() == 0)
                m_database.giveHandle(table, 0);
        // R12 keeps no records of blocks: definitions get their marks, layouts theirs.
        for (KcDbObjectId id : KcDbRead<KcDbSymbolTable>(m_database.blockTable())->records()) {
            auto& block = static_cast<KcDbBlockTableRecord&>(*id.stub()->object).data();
            if (block.begin.isNull())
                block.begin = addMark(std::make_unique<KcDbBlockBegin>(), id);
            if (block.end.isNull())
                block.end = addMark(std::make_unique<KcDbBlockEnd>(), id);
        }
        updateBlockMarks(m_database);
        for (KcDbObjectStub& stub : m_database.stubs())
            if (stub.object && (stub.flags & KcDbObjectStub::kImplicit)
                && !stub.object->sourcePlace().changed) {
                setChanged(stub, true);
                m_onlyImplied.push_back(&stub);
            }
    }

    KcDbObjectId addMark(std::unique_ptr<KcDbEntity> mark, KcDbObjectId block)
    {
        const KcDbObjectId id = m_database.addObject(std::move(mark), block);
        KcDbDatabase::markImplicit(id);
        return id;
    }

    static void setChanged(KcDbObjectStub& stub, bool changed)
    {
        KcDbSourcePlace place = stub.object->sourcePlace();
        place.changed = changed;
        stub.object->setSourcePlace(place);
    }

    // Objects.

    void object(const KcDbObject& o, KcDbHandle owner)
    {
        const std::string name = fileNameOf(o);
        if (!o.sourcePlace().isRead() || !m_file) {
            fresh(o, name, owner);
            return;
        }
        if (m_file->version == KcDbVersion::R12)
            fromR12(o, name, owner);
        else
            carriedOver(o, name, owner);
    }

    void fresh(const KcDbObject& o, const std::string& name, KcDbHandle owner)
    {
        GroupList out(m_version, GroupList::Defaults::kOmit);
        writeRecord(o, name, codecFor(o), o.handle(), owner, out);
        groups(out.groups());
    }

    /// Versions with class marks: the record as it was, with the changes merged, in the new character set.
    void carriedOver(const KcDbObject& o, const std::string& name, KcDbHandle owner)
    {
        const std::string_view record = m_file->record(o.sourcePlace());
        std::string merged(record);
        GroupCursor cursor(record.data(), record.data() + record.size(), m_file->form);
        Group mark;
        cursor.next(mark);
        const std::unique_ptr<KcDbObject> pristine
            = makeObject(codecNamed(mark.trimmed()), mark.trimmed(), o.isKindOf(KcDbEntity::desc()));
        const RecordHead head = readRecord(cursor, *m_context, codecNamed(mark.trimmed()), *pristine);
        if (o.sourcePlace().changed || head.handle != o.handle()) {
            const SourceGroups source = parseRecord(record, m_file->form, *m_file->strings);
            GroupList before(m_file->version, GroupList::Defaults::kKeep),
                after(m_version, GroupList::Defaults::kKeep);
            writeRecord(*pristine, mark.trimmed(), codecFor(*pristine), head.handle, head.owner, before);
            writeRecord(o, name, codecFor(o), o.handle(), head.owner ? head.owner : owner, after);
            merged = patchRecord(
                source, before.groups(), after.groups(), m_file->form, *m_file->strings, m_file->lineEnd);
        }
        const SourceGroups result = parseRecord(merged, m_file->form, *m_file->strings);
        groups(result.groups);
    }

    /// R12 has no class marks: known classes are written anew, the others get the marks of their kind.
    void fromR12(const KcDbObject& o, const std::string& name, KcDbHandle owner)
    {
        if (const auto* viewport
            = o.isA() == KcDbViewport::desc() ? static_cast<const KcDbViewport*>(&o) : nullptr) {
            KcDbViewport copy(*viewport);
            takeViewFromXData(*viewport, copy);
            GroupList out(m_version, GroupList::Defaults::kOmit);
            writeRecord(copy, name, codecFor(o), o.handle(), owner, out);
            groups(out.groups());
            return;
        }
        const bool keepsGroups = o.isA() == KcDbRawEntity::desc()
            || o.isA() == KcDbDimStyleTableRecord::desc() || o.isA() == KcDbViewTableRecord::desc()
            || o.isA() == KcDbViewportTableRecord::desc();
        if (!keepsGroups) {
            fresh(o, name, owner);
            return;
        }
        const SourceGroups source
            = parseRecord(m_file->record(o.sourcePlace()), m_file->form, *m_file->strings);
        GroupList common(m_version, GroupList::Defaults::kOmit);
        writeRecord(o, name, nullptr, o.handle(), owner, common);
        std::vector<OutGroup> head, xdata;
        for (const OutGroup& g : common.groups())
            (g.code >= 1000 ? xdata : head).push_back(g);
        groups(head);
        const std::vector<QString> marks = marksFor(o, name, source.groups);
        const auto* style = o.isA() == KcDbDimStyleTableRecord::desc() ? &o : nullptr;
        if (!marks.empty())
            raw(100, marks.front().toLatin1().constData());
        bool flagsSeen = false;
        for (const OutGroup& g : source.groups) {
            const bool isRecord = o.isKindOf(KcDbSymbolTableRecord::desc());
            if (g.code == 0 || g.code == 105 || g.code >= 1000 || (g.code == 5 && !style))
                continue;
            if (!isRecord && isEntityCommon(g.code))
                continue;
            if (isRecord && g.code == 2)
                continue;
            if (isRecord && g.code == 70 && !flagsSeen) {
                flagsSeen = true;
                continue;
            }
            // Names of arrow blocks became references to their records.
            if (style && (g.code == 5 || g.code == 6 || g.code == 7)) {
                const auto* block = std::get_if<QString>(&g.value);
                const KcDbObjectId id
                    = block ? kcdbFindRecord(m_database.blockTable(), *block) : KcDbObjectId();
                if (!id.isNull())
                    group({ 337 + g.code, HandleValue{ id.handle() } });
                continue;
            }
            group(g);
        }
        for (size_t i = 1; i < marks.size(); ++i)
            raw(100, marks[i].toLatin1().constData());
        groups(xdata);
    }

    static bool isEntityCommon(int code)
    {
        return code == 8 || code == 6 || code == 62 || code == 67 || code == 60 || code == 48;
    }

    /// The class marks of kinds that are kept as they are. The first stands before the groups, the others
    /// behind them.
    std::vector<QString>
    marksFor(const KcDbObject& o, const std::string& name, const std::vector<OutGroup>& source) const
    {
        if (o.isKindOf(KcDbSymbolTableRecord::desc()))
            return {};
        if (name == "SHAPE")
            return { QStringLiteral("AcDbShape") };
        if (name == "DIMENSION") {
            int type = 0;
            for (const OutGroup& g : source)
                if (g.code == 70)
                    if (const auto* value = std::get_if<int64_t>(&g.value))
                        type = int(*value & 7);
            static const std::vector<QString> kTypes[]
                = { { "AcDbDimension", "AcDbAlignedDimension", "AcDbRotatedDimension" },
                    { "AcDbDimension", "AcDbAlignedDimension" },
                    { "AcDbDimension", "AcDb2LineAngularDimension" },
                    { "AcDbDimension", "AcDbDiametricDimension" },
                    { "AcDbDimension", "AcDbRadialDimension" },
                    { "AcDbDimension", "AcDb3PointAngularDimension" },
                    { "AcDbDimension", "AcDbOrdinateDimension" } };
            if (type < 7)
                return kTypes[type];
        }
        throw FileError(
            "an object of the kind " + name + " (handle "
            + QString::number(o.handle(), 16).toUpper().toStdString()
            + ") cannot be carried over from version R12 to 2010");
    }

    /// R12 keeps the view of a viewport in extended data.
    static void takeViewFromXData(const KcDbViewport& viewport, KcDbViewport& copy)
    {
        const KcDbValueList* values = viewport.xdataOf(QStringLiteral("ACAD"));
        if (!values)
            return;
        std::vector<double> reals;
        std::vector<KcGePoint3d> points;
        for (const KcDbTypedValue& value : *values) {
            if (const auto* p = std::get_if<KcGePoint3d>(&value.value))
                points.push_back(*p);
            else if (value.code == 1040)
                reals.push_back(value.real());
        }
        if (points.size() < 2 || reals.size() < 4)
            return;
        KcDbViewport::Data& d = copy.data();
        d.viewTarget = points[0];
        d.viewDirection = points[1].asVector();
        d.viewTwist = reals[0] * (kPi / 180.0);
        d.viewHeight = reals[1];
        d.viewCenter = { reals[2], reals[3] };
    }

    void withSubObjects(const KcDbObject& o, KcDbHandle owner)
    {
        object(o, owner);
        for (KcDbObjectId id : o.subObjects())
            if (isWritten(*id.stub()))
                object(*id.stub()->object, o.handle());
    }

    // Sections.

    void section(const char* name)
    {
        raw(0, "SECTION");
        raw(2, name);
    }

    void writeHeader()
    {
        section("HEADER");
        const KcDbRead<KcDbHeader> header(m_database.headerId());
        raw(9, "$ACADVER");
        raw(1, versionName(m_version));
        raw(9, "$DWGCODEPAGE");
        const QString codePage = header->text("$DWGCODEPAGE");
        raw(3, (codePage.isEmpty() ? QStringLiteral("ANSI_936") : codePage).toUtf8().constData());
        raw(9, "$HANDSEED");
        group({ 5, HandleValue{ m_database.nextHandle() } });
        for (const KcDbHeader::Variable& variable : header->variables()) {
            const QString name = variable.name.toUpper();
            if (name == "$ACADVER" || name == "$DWGCODEPAGE" || name == "$HANDSEED" || name == "$HANDLING")
                continue;
            group({ 9, variable.name });
            GroupList values(m_version, GroupList::Defaults::kOmit);
            for (const KcDbTypedValue& value : variable.values)
                values.typed(value);
            groups(values.groups());
        }
        raw(0, "ENDSEC");
    }

    void writeClasses()
    {
        section("CLASSES");
        std::map<std::string, int64_t> counts;
        for (const KcDbObjectStub& stub : m_database.stubs())
            if (stub.object && isWritten(stub))
                if (const std::string name = fileNameOf(*stub.object); classEntryFor(name))
                    ++counts[name];
        for (const auto& [name, count] : counts) {
            const ClassEntry& entry = *classEntryFor(name);
            raw(0, "CLASS");
            raw(1, entry.fileName);
            raw(2, entry.className);
            raw(3, entry.application);
            group({ 90, int64_t(entry.flags) });
            group({ 91, count });
            group({ 280, int64_t(0) });
            group({ 281, int64_t(entry.isEntity) });
        }
        raw(0, "ENDSEC");
    }

    void writeTables()
    {
        section("TABLES");
        for (const char* name : kTableOrder) {
            const KcDbRead<KcDbSymbolTable> table(m_database.tableNamed(name));
            std::vector<KcDbObjectId> records;
            for (KcDbObjectId id : table->records())
                if (isWritten(*id.stub()))
                    records.push_back(id);
            raw(0, "TABLE");
            raw(2, name);
            group({ 5, HandleValue{ table->handle() } });
            group({ 330, HandleValue{ 0 } });
            raw(100, "AcDbSymbolTable");
            group({ 70, int64_t(records.size()) });
            if (std::string_view(name) == "DIMSTYLE")
                raw(100, "AcDbDimStyleTable");
            for (KcDbObjectId id : records)
                object(*id.stub()->object, table->handle());
            raw(0, "ENDTAB");
        }
        raw(0, "ENDSEC");
    }

    bool isInEntities(KcDbObjectId block) const
    {
        return block == m_database.modelSpace() || block == m_database.paperSpace();
    }

    void writeBlocks()
    {
        section("BLOCKS");
        for (KcDbObjectId id : KcDbRead<KcDbSymbolTable>(m_database.blockTable())->records()) {
            const KcDbRead<KcDbBlockTableRecord> block(id);
            if (!isWritten(*id.stub()))
                continue;
            object(*block->data().begin.stub()->object, id.handle());
            if (!isInEntities(id))
                for (const KcDbObjectId entity : *block)
                    withSubObjects(*entity.stub()->object, id.handle());
            object(*block->data().end.stub()->object, id.handle());
        }
        raw(0, "ENDSEC");
    }

    void writeEntities()
    {
        section("ENTITIES");
        for (KcDbObjectId id : { m_database.modelSpace(), m_database.paperSpace() }) {
            const KcDbRead<KcDbBlockTableRecord> block(id);
            for (const KcDbObjectId entity : *block)
                withSubObjects(*entity.stub()->object, id.handle());
        }
        raw(0, "ENDSEC");
    }

    void writeObjects()
    {
        section("OBJECTS");
        // The root dictionary comes first.
        const KcDbObjectId root = m_database.namedObjectsDictionary();
        object(*root.stub()->object, 0);
        for (const KcDbObjectStub& stub : m_database.stubs()) {
            if (!stub.object || &stub == root.stub() || !isWritten(stub)
                || stub.object->isKindOf(KcDbEntity::desc())
                || stub.object->isKindOf(KcDbSymbolTableRecord::desc())
                || stub.object->isA() == KcDbHeader::desc() || stub.object->isA() == KcDbSymbolTable::desc())
                continue;
            object(*stub.object, stub.object->ownerId().handle());
        }
        raw(0, "ENDSEC");
    }

    KcDbDatabase& m_database;
    SourceFile* m_file;
    KcDbVersion m_version;
    Strings m_strings;
    std::optional<ReadContext> m_context;
    std::string m_out;
    std::vector<KcDbObjectStub*> m_onlyImplied;
};

} // namespace

void writeAnew(KcDbDatabase& database, KcDbVersion version, Pieces& out, QStringList&)
{
    NewWriter(database, version).write(out);
}

} // namespace dxf
