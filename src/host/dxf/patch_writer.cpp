// Writing a drawing over the file it was read from: unchanged stretches are copied, changed records merged,
// new ones added where their owners' content ends.

#include "db/block_reference.h"
#include "db/dictionary.h"
#include "db/open.h"
#include "db/polyline.h"
#include "dxf/patch.h"
#include "dxf/record.h"
#include "dxf/source_file.h"
#include "dxf/writer.h"
#include "dxf/written.h"

#include <map>

namespace dxf {

namespace {

constexpr const char* kSectionOrder[] = { "HEADER", "CLASSES", "TABLES", "BLOCKS", "ENTITIES", "OBJECTS" };

class PatchWriter {
public:
    PatchWriter(KcDbDatabase& database, const SourceFile& file)
        : m_database(database)
        , m_file(file)
        , m_context(database, *file.strings, file.version)
    {
        m_context.reportsFindings = false;
    }

    void write(Pieces& out)
    {
        changeReadRecords();
        addNewRecords();
        changeHeader();
        addClasses();
        addMissingSections();
        assemble(out);
    }

private:
    struct Edit {
        uint64_t offset = 0;
        uint64_t length = 0; ///< bytes of the file that go
        std::string text; ///< what comes in their place
    };

    // Records.

    void changeReadRecords()
    {
        for (KcDbObjectStub* stub : m_file.order) {
            const KcDbObject& object = *stub->object;
            const bool erased = stub->flags & KcDbObjectStub::kErased;
            const KcDbSourcePlace& place = object.sourcePlace();
            if (erased || ((stub->flags & KcDbObjectStub::kRelisted) && !isInPlace(object))) {
                m_edits.push_back({ place.offset, place.length, {} });
                continue;
            }
            if (!place.changed)
                continue;
            std::string bytes = recordOf(object, place.offset);
            if (bytes != m_file.record(place))
                m_edits.push_back({ place.offset, place.length, std::move(bytes) });
            addNewSubObjects(object);
        }
    }

    bool isInPlace(const KcDbObject& object) const
    {
        const uint64_t offset = object.sourcePlace().offset;
        const auto block = m_file.blocks.find(object.ownerId().stub());
        if (block != m_file.blocks.end() && block->second.contains(offset))
            return true;
        const auto entities = m_file.sections.find("ENTITIES");
        return isCurrentSpace(object.ownerId()) && entities != m_file.sections.end()
            && entities->second.contains(offset);
    }

    bool isCurrentSpace(KcDbObjectId block) const
    {
        return block == m_database.modelSpace() || block == m_database.paperSpace();
    }

    KcDbHandle ownerHandle(const KcDbObject& object) const { return object.ownerId().handle(); }

    /// The bytes of a record in the form of the file. An object that was read, or copied from one that was,
    /// keeps the groups that no class knows.
    std::string recordOf(const KcDbObject& object, uint64_t ownPlace = ~uint64_t(0))
    {
        const Codec* codec = codecFor(object);
        const std::string name = fileNameOf(object);
        const bool isNew = ownPlace == ~uint64_t(0);
        if (!object.sourcePlace().isRead()) {
            GroupList out(m_file.version, GroupList::Defaults::kOmit);
            writeRecord(object, name, codec, handleFor(object), ownerHandle(object), out);
            return bytesOf(out.groups());
        }
        const std::string_view record = m_file.record(object.sourcePlace());
        SourceGroups source = parseRecord(record, m_file.form, *m_file.strings);
        GroupCursor cursor(record.data(), record.data() + record.size(), m_file.form);
        Group mark;
        cursor.next(mark);
        const bool isEntity = object.isKindOf(KcDbEntity::desc());
        const std::unique_ptr<KcDbObject> pristine
            = makeObject(codecNamed(mark.trimmed()), mark.trimmed(), isEntity);
        const RecordHead head = readRecord(cursor, m_context, codecNamed(mark.trimmed()), *pristine);
        restoreSubObjects(object, *pristine, head.attributesFollow);

        GroupList before(m_file.version, GroupList::Defaults::kKeep),
            after(m_file.version, GroupList::Defaults::kKeep);
        writeRecord(*pristine, mark.trimmed(), codecFor(*pristine), head.handle, head.owner, before);
        // In its own place a record keeps its handle (in old files: also that it has none) and its owner,
        // unless another object bears the handle too.
        const bool keepsHandle = !isNew && (head.handle == 0 || head.handle == object.handle());
        const KcDbHandle handle = keepsHandle ? head.handle : handleFor(object);
        const bool moved = isNew || (object.objectId().stub()->flags & KcDbObjectStub::kRelisted);
        writeRecord(object, name, codec, handle, moved ? ownerHandle(object) : head.owner, after);
        if (sameGroups(before.groups(), after.groups()))
            return std::string(record);
        if (codec && isEntity)
            dropStalePictures(source);
        return patchRecord(
            source, before.groups(), after.groups(), m_file.form, *m_file.strings, m_file.lineEnd);
    }

    /// What was changed has a handle of its own even where another object bears the one it was read with.
    KcDbHandle handleFor(const KcDbObject& object) const
    {
        const bool noHandles = m_file.version == KcDbVersion::R12 && !fileHasHandles();
        return noHandles ? 0 : object.handle();
    }

    bool fileHasHandles() const
    {
        for (const SourceFile::Variable& variable : m_file.header)
            if (variable.value.name == QLatin1String("$HANDLING"))
                return !variable.value.values.empty() && variable.value.values.front().integer() == 1;
        return false;
    }

    /// An attribute list is no group of the reference's own record; the mark that one follows is.
    static void restoreSubObjects(const KcDbObject& object, KcDbObject& pristine, bool attributesFollow)
    {
        if (!attributesFollow || pristine.isA() != KcDbBlockReference::desc()
            || object.isA() != pristine.isA())
            return;
        auto& reference = static_cast<KcDbBlockReference&>(pristine);
        if (!reference.data().array)
            reference.data().array = std::make_unique<KcDbBlockReference::Array>();
        const auto& current = static_cast<const KcDbBlockReference&>(object).attributes();
        reference.data().array->attributes
            = current.empty() ? std::vector<KcDbObjectId>{ object.objectId() } : current;
    }

    std::string bytesOf(const std::vector<OutGroup>& groups) const
    {
        std::string bytes;
        for (const OutGroup& group : groups)
            appendGroup(bytes, group, m_file.form, *m_file.strings, m_file.lineEnd);
        return bytes;
    }

    // New objects.

    static bool hasPlace(const KcDbObjectStub& stub) { return stub.flags & KcDbObjectStub::kLoaded; }

    void addNewSubObjects(const KcDbObject& parent)
    {
        std::string text;
        const std::vector<KcDbObjectId> subs = parent.subObjects();
        for (KcDbObjectId id : subs)
            if (isWritten(*id.stub()) && !hasPlace(*id.stub()))
                text += recordOf(*id.stub()->object);
        if (text.empty())
            return;
        const auto end = m_file.sequenceEnds.find(parent.objectId().stub());
        const KcDbSourcePlace& place = parent.sourcePlace();
        const uint64_t at = end != m_file.sequenceEnds.end() ? end->second : place.offset + place.length;
        m_edits.push_back({ at, 0, std::move(text) });
    }

    std::string withSubObjects(const KcDbObject& object)
    {
        std::string text = recordOf(object);
        for (KcDbObjectId id : object.subObjects())
            if (isWritten(*id.stub()))
                text += recordOf(*id.stub()->object);
        return text;
    }

    std::string newEntitiesOf(const KcDbBlockTableRecord& block)
    {
        std::string text;
        for (const KcDbObjectId id : block) {
            const KcDbObjectStub& stub = *id.stub();
            if (hasPlace(stub) && (!(stub.flags & KcDbObjectStub::kRelisted) || isInPlace(*stub.object)))
                continue;
            text += withSubObjects(*stub.object);
        }
        return text;
    }

    void addNewRecords()
    {
        addTableRecords();
        addBlockContent();
        addObjects();
    }

    void addTableRecords()
    {
        for (const char* name : { "VPORT", "LTYPE", "LAYER", "STYLE", "VIEW", "UCS", "APPID", "DIMSTYLE" })
            addTable(m_database.tableNamed(name));
        if (m_file.version != KcDbVersion::R12) // R12 has block definitions, but no records of them
            addTable(m_database.blockTable());
    }

    void addTable(KcDbObjectId id)
    {
        const KcDbRead<KcDbSymbolTable> table(id);
        std::string text;
        int64_t count = 0;
        for (KcDbObjectId record : table->records()) {
            if (!isWritten(*record.stub()) || hasPlace(*record.stub()))
                continue;
            text += recordOf(*record.stub()->object);
            ++count;
        }
        if (text.empty())
            return;
        if (const auto end = m_file.tableEnds.find(id.stub()); end != m_file.tableEnds.end()) {
            m_edits.push_back({ end->second, 0, std::move(text) });
            return;
        }
        GroupList head(m_file.version, GroupList::Defaults::kOmit);
        head.text(0, QStringLiteral("TABLE"));
        head.text(2, QLatin1String(table->fileName()));
        if (!head.isR12()) {
            head.handle(5, table->handle());
            head.handle(330, KcDbHandle(0));
        }
        head.subclass("AcDbSymbolTable");
        head.integer(70, count);
        GroupList tail(m_file.version, GroupList::Defaults::kOmit);
        tail.text(0, QStringLiteral("ENDTAB"));
        addToSection("TABLES", bytesOf(head.groups()) + text + bytesOf(tail.groups()));
    }

    void addBlockContent()
    {
        const KcDbRead<KcDbSymbolTable> table(m_database.blockTable());
        for (KcDbObjectId id : table->records()) {
            const KcDbRead<KcDbBlockTableRecord> block(id);
            if (isCurrentSpace(id)) {
                if (std::string text = newEntitiesOf(*block); !text.empty())
                    addToSection("ENTITIES", std::move(text));
                if (isWritten(*id.stub()) && !hasPlace(*id.stub()) && m_file.blocks.count(id.stub()) == 0)
                    addToSection("BLOCKS", marksOf(*block, {}));
                continue;
            }
            if (const auto span = m_file.blocks.find(id.stub()); span != m_file.blocks.end()) {
                if (std::string text = newEntitiesOf(*block); !text.empty())
                    m_edits.push_back({ span->second.end, 0, std::move(text) });
            } else if (isWritten(*id.stub()) && !block->data().begin.isNull()) {
                addToSection("BLOCKS", marksOf(*block, newEntitiesOf(*block)));
            }
        }
    }

    std::string marksOf(const KcDbBlockTableRecord& block, std::string content)
    {
        std::string text;
        if (block.data().begin.isValid())
            text += recordOf(*block.data().begin.stub()->object);
        text += content;
        if (block.data().end.isValid())
            text += recordOf(*block.data().end.stub()->object);
        return text;
    }

    void addObjects()
    {
        std::string text;
        for (const KcDbObjectStub& stub : m_database.stubs()) {
            if (!stub.object || hasPlace(stub) || !isWritten(stub)
                || stub.object->isKindOf(KcDbEntity::desc())
                || stub.object->isKindOf(KcDbSymbolTableRecord::desc())
                || stub.object->isA() == KcDbHeader::desc() || stub.object->isA() == KcDbSymbolTable::desc())
                continue;
            text += recordOf(*stub.object);
        }
        if (!text.empty())
            addToSection("OBJECTS", std::move(text));
    }

    // Header and classes.

    void changeHeader()
    {
        const KcDbRead<KcDbHeader> header(m_database.headerId());
        const bool changed = header->sourcePlace().changed;
        KcDbHandle seed = 0;
        for (const KcDbObjectStub& stub : m_database.stubs())
            if (stub.handle && !hasPlace(stub) && stub.object && isWritten(stub))
                seed = std::max(seed, stub.handle + 1);
        std::set<QString> known;
        for (const SourceFile::Variable& variable : m_file.header) {
            const QString name = variable.value.name.toUpper();
            known.insert(name);
            if (name == QLatin1String("$HANDSEED")) {
                const KcDbHandle there
                    = variable.value.values.empty() ? 0 : variable.value.values.front().id().handle();
                if (seed > there)
                    replaceVariable(
                        variable.place,
                        { name, { { 5, QString::number(m_database.nextHandle(), 16).toUpper() } } });
                continue;
            }
            const KcDbHeader::Variable* now = header->find(name);
            if (changed && now && now->values != variable.value.values)
                replaceVariable(variable.place, *now);
        }
        if (!changed)
            return;
        std::string text;
        for (const KcDbHeader::Variable& variable : header->variables())
            if (!known.count(variable.name.toUpper()))
                text += variableBytes(variable);
        if (!text.empty())
            addToSection("HEADER", std::move(text));
    }

    void replaceVariable(const SourceFile::Span& place, const KcDbHeader::Variable& variable)
    {
        m_edits.push_back({ place.begin, place.end - place.begin, variableBytes(variable) });
    }

    std::string variableBytes(const KcDbHeader::Variable& variable) const
    {
        GroupList out(m_file.version, GroupList::Defaults::kOmit);
        out.text(9, variable.name);
        for (const KcDbTypedValue& value : variable.values)
            out.typed(value);
        return bytesOf(out.groups());
    }

    void addClasses()
    {
        if (m_file.version == KcDbVersion::R12)
            return;
        std::map<std::string, int64_t> needed;
        for (const KcDbObjectStub& stub : m_database.stubs())
            if (stub.object && !hasPlace(stub) && isWritten(stub)) {
                const std::string name = fileNameOf(*stub.object);
                if (classEntryFor(name) && !m_file.classes.count(name))
                    ++needed[name];
            }
        std::string text;
        for (const auto& [name, count] : needed) {
            const ClassEntry& entry = *classEntryFor(name);
            GroupList out(m_file.version, GroupList::Defaults::kOmit);
            out.text(0, QStringLiteral("CLASS"));
            out.text(1, QLatin1String(entry.fileName));
            out.text(2, QLatin1String(entry.className));
            out.text(3, QLatin1String(entry.application));
            out.integer(90, entry.flags);
            if (m_file.version >= KcDbVersion::V2004)
                out.integer(91, count);
            out.integer(280, 0);
            out.integer(281, entry.isEntity);
            text += bytesOf(out.groups());
        }
        if (!text.empty())
            addToSection("CLASSES", std::move(text));
    }

    // Sections.

    void addToSection(const char* name, std::string text)
    {
        if (const auto section = m_file.sections.find(name); section != m_file.sections.end())
            m_edits.push_back({ section->second.end, 0, std::move(text) });
        else
            m_missing[name] += text;
    }

    void addMissingSections()
    {
        // A file that was cut short may lack the end of its last line.
        bool needsLineEnd
            = m_file.form == Form::Text && m_file.size > 0 && m_file.begin()[m_file.size - 1] != '\n';
        for (size_t i = 0; i < std::size(kSectionOrder); ++i) {
            const auto missing = m_missing.find(kSectionOrder[i]);
            if (missing == m_missing.end())
                continue;
            // Before the next section that the file has.
            uint64_t at = m_file.endOfSections;
            for (size_t j = i + 1; j < std::size(kSectionOrder); ++j)
                if (const auto next = m_file.sections.find(kSectionOrder[j]); next != m_file.sections.end()) {
                    at = startOfSection(next->second);
                    break;
                }
            GroupList head(m_file.version, GroupList::Defaults::kOmit),
                tail(m_file.version, GroupList::Defaults::kOmit);
            head.text(0, QStringLiteral("SECTION"));
            head.text(2, QLatin1String(kSectionOrder[i]));
            tail.text(0, QStringLiteral("ENDSEC"));
            const bool endsLine = needsLineEnd && at == m_file.size;
            needsLineEnd = needsLineEnd && !endsLine;
            m_edits.push_back({ at, 0,
                                (endsLine ? m_file.lineEnd : "") + bytesOf(head.groups())
                                    + missing->second + bytesOf(tail.groups()) });
        }
    }

    /// The offset of the mark of a section, which is two groups before its content.
    uint64_t startOfSection(const SourceFile::Span& section) const
    {
        uint64_t before = m_file.form == Form::Text ? 0 : kBinarySignatureSize;
        for (const auto& [name, span] : m_file.sections) {
            if (span.end >= section.begin)
                continue;
            GroupCursor cursor(m_file.begin() + span.end, m_file.end(), m_file.form);
            Group mark;
            cursor.next(mark);
            before = std::max(before, m_file.offsetOf(cursor.position()));
        }
        return before;
    }

    void assemble(Pieces& out)
    {
        // What is added before a record comes ahead of the record's own change.
        std::stable_sort(m_edits.begin(), m_edits.end(), [](const Edit& a, const Edit& b) {
            return a.offset != b.offset ? a.offset < b.offset : (a.length == 0) > (b.length == 0);
        });
        uint64_t at = 0;
        for (Edit& edit : m_edits) {
            out.add(m_file.all().substr(at, edit.offset - at));
            out.add(std::move(edit.text));
            at = edit.offset + edit.length;
        }
        out.add(m_file.all().substr(at));
    }

    KcDbDatabase& m_database;
    const SourceFile& m_file;
    ReadContext m_context;
    std::vector<Edit> m_edits;
    std::map<std::string, std::string> m_missing;
};

} // namespace

void updateBlockMarks(KcDbDatabase& database)
{
    const KcDbRead<KcDbSymbolTable> table(database.blockTable());
    for (KcDbObjectId id : table->records()) {
        const KcDbRead<KcDbBlockTableRecord> block(id);
        const bool changed = block->sourcePlace().changed;
        if (block->data().begin.isNull() && changed && isWritten(*id.stub()) && !block->isLayout()) {
            KcDbWrite<KcDbBlockTableRecord> open(id);
            open->data().begin = database.addObject(std::make_unique<KcDbBlockBegin>(), id);
            open->data().end = database.addObject(std::make_unique<KcDbBlockEnd>(), id);
        }
        const KcDbRead<KcDbBlockBegin> begin(block->data().begin);
        // Where record and mark of an unchanged block disagree, both stay as the file has them.
        if (!begin || (!changed && (block->data().begin.stub()->flags & KcDbObjectStub::kLoaded)))
            continue;
        KcDbBlockBegin::Data data{ block->name(), block->origin(), block->data().blockFlags,
                                   block->data().xrefPath, block->data().description };
        // R12 files write the names of some blocks in capitals in one place and not in the other.
        if (begin->data().name.compare(data.name, Qt::CaseInsensitive) == 0)
            data.name = begin->data().name;
        if (data == begin->data())
            continue;
        KcDbObjectStub& mark = *block->data().begin.stub();
        if (mark.flags & KcDbObjectStub::kLoaded)
            KcDbWrite<KcDbBlockBegin>(KcDbObjectId(&mark))->data() = data;
        else // made in memory, and no change by itself
            static_cast<KcDbBlockBegin&>(*mark.object).data() = data;
    }
}

void completeSequences(KcDbDatabase& database)
{
    // By index: objects are added on the way.
    for (size_t i = 0; i < database.stubs().size(); ++i) {
        KcDbObjectStub& stub = database.stubs()[i];
        if (!stub.object || !stub.object->sourcePlace().changed || !isWritten(stub))
            continue;
        const KcDbObjectId id(&stub);
        if (KcDbRead<KcDb2dPolyline> polyline(id); polyline && !polyline->data().sequenceEnd.isResident()) {
            auto end = std::make_unique<KcDbSequenceEnd>();
            end->setPropertiesFrom(*polyline);
            KcDbWrite<KcDb2dPolyline> open(id);
            open->data().sequenceEnd = database.addObject(std::move(end), id);
        }
    }
}

void patchFile(KcDbDatabase& database, const SourceFile& file, Pieces& out)
{
    PatchWriter(database, file).write(out);
}

} // namespace dxf
