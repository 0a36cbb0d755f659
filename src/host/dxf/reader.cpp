// Reading a drawing file into a database.

#include "db/block_reference.h"
#include "db/dictionary.h"
#include "db/open.h"
#include "db/polyline.h"
#include "db/tables.h"
#include "db/text.h"
#include "dxf/drawing_file.h"
#include "dxf/record.h"
#include "dxf/source_file.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace dxf {

namespace {

struct VersionRow {
    const char* name;
    KcDbVersion version;
    const char* text;
};

constexpr VersionRow kVersions[]
    = { { "AC1009", KcDbVersion::R12, "R12" },    { "AC1012", KcDbVersion::R13, "R13" },
        { "AC1014", KcDbVersion::R14, "R14" },    { "AC1015", KcDbVersion::V2000, "2000" },
        { "AC1018", KcDbVersion::V2004, "2004" }, { "AC1021", KcDbVersion::V2007, "2007" },
        { "AC1024", KcDbVersion::V2010, "2010" }, { "AC1027", KcDbVersion::V2013, "2013" },
        { "AC1032", KcDbVersion::V2018, "2018" } };

// Of the hundred per cent, what the bytes of the file take; the records in them take the rest.
constexpr int kPercentOfBytes = 10;

/// Thrown where the one who watches wants the reading stopped.
struct Stopped { };

class Reader {
public:
    Reader(KcDbDatabase& database, std::shared_ptr<SourceFile> file, const ReadProgress& progress)
        : m_database(database)
        , m_file(std::move(file))
        , m_cursor(m_file->begin(), m_file->end(), m_file->form)
        , m_progress(progress)
        , m_nextStep(progress ? m_file->begin() : nullptr)
    {
    }

    void read()
    {
        if (m_file->form != Form::Text)
            m_cursor.seek(m_file->begin() + kBinarySignatureSize);
        findVersionAndCharacterSet();
        m_context.emplace(m_database, *m_file->strings, m_file->version);
        m_database.setVersion(m_file->version);
        m_file->order.reserve(m_file->size / 300 + 64);

        m_database.beginLoading();
        Group group;
        bool ended = false;
        while (!ended && m_cursor.next(group)) {
            if (group.is(0, "SECTION"))
                readSection(group);
            else if (group.is(0, "EOF"))
                ended = true;
            else if (group.code != 999 && m_file->sections.empty())
                throw FileError(
                    m_cursor.where(group.begin) + ": this is no drawing file (no section begins)");
            else if (group.code == 0)
                throw FileError(
                    m_cursor.where(group.begin) + ": a section was expected, found \""
                    + std::string(group.trimmed().substr(0, 40)) + "\"");
            if (ended || group.code == 999)
                continue;
            m_file->endOfSections = m_file->offsetOf(m_cursor.position());
        }
        if (m_file->sections.empty())
            throw FileError("this is no drawing file (it holds no section)");
        if (!ended)
            m_database.addFinding(
                { kFindingTruncated, false, 0, QStringLiteral("The file has no end mark.") });
        if (m_file->strings->undecodable() > 0)
            m_database.addFinding(
                { kFindingUndecodableText, false, 0,
                  QStringLiteral(
                      "%1 bytes of text mean nothing in the character set of the drawing; they are kept.")
                      .arg(m_file->strings->undecodable()) });
        for (const auto& [id, width] : m_context->columnWidths)
            if (id.isResident() && id.stub()->object->isA() == KcDbMText::desc())
                static_cast<KcDbMText&>(*id.stub()->object).data().columnWidth = width;
        m_database.endLoading();
        reportUndefinedNames();
        m_database.completeFrame();
        KcDbModuleObject::reviveAll(m_database);
        m_file->changeCount = m_database.changeCount();
        m_database.setFile(m_file);
    }

private:
    /// Called for each record: a comparison, but for every hundredth of the file.
    void advance()
    {
        if (m_nextStep && m_cursor.position() >= m_nextStep)
            report();
    }
    void report()
    {
        const size_t done = m_file->offsetOf(m_cursor.position());
        const size_t step = m_file->size / 100 + 1;
        m_nextStep = m_file->size - done > step ? m_cursor.position() + step : nullptr;
        if (!m_progress(kPercentOfBytes + int((100 - kPercentOfBytes) * (double(done) / m_file->size))))
            throw Stopped();
    }

    [[noreturn]] void fail(const Group& group, const std::string& what) const
    {
        throw FileError(m_cursor.where(group.begin) + ": " + what);
    }
    [[noreturn]] void truncated(const char* where) const
    {
        throw FileError(std::string("the file ends in the middle of ") + where + "; it was cut short");
    }

    void findVersionAndCharacterSet()
    {
        const char* const start = m_cursor.position();
        QString codePage;
        std::optional<KcDbVersion> version = KcDbVersion::R12;
        Group group, value;
        bool first = true;
        while (m_cursor.next(group)) {
            if (group.code == 999)
                continue;
            if (first && !group.is(0, "SECTION"))
                fail(group, "this is no drawing file (no section begins)");
            first = false;
            if (group.is(0, "ENDSEC"))
                break;
            if (group.code == 2 && group.trimmed() != "HEADER")
                break;
            if (group.is(9, "$ACADVER") && m_cursor.next(value)) {
                version = versionNamed(value.trimmed());
                if (!version && value.trimmed() < "AC1009")
                    version = KcDbVersion::R12;
                if (!version)
                    fail(
                        value, "the drawing's version \"" + std::string(value.trimmed()) + "\" is not known");
            } else if (group.is(9, "$DWGCODEPAGE") && m_cursor.next(value)) {
                codePage = QString::fromLatin1(value.trimmed().data(), qsizetype(value.trimmed().size()));
            }
        }
        m_cursor.seek(start);
        m_file->version = *version;
        if (codePage.isEmpty())
            codePage = QStringLiteral("ANSI_1252");
        // The beginning of a file, its tables included, is enough to tell the character set.
        constexpr size_t kSample = size_t(4) << 20;
        std::string_view sample = m_file->all().substr(0, kSample);
        if (m_file->size > kSample)
            sample = sample.substr(0, sample.rfind('\n') + 1);
        bool utf8 = false;
        if (m_file->form == Form::Text) {
            utf8 = *version >= KcDbVersion::V2007 ? isValidUtf8(sample) : looksLikeUtf8(sample, codePage);
            const char* lineEnd = static_cast<const char*>(std::memchr(sample.data(), '\n', sample.size()));
            if (lineEnd && lineEnd != sample.data() && lineEnd[-1] == '\r')
                m_file->lineEnd = "\r\n";
        } else {
            utf8 = *version >= KcDbVersion::V2007;
        }
        if (*version >= KcDbVersion::V2007 && !utf8)
            m_database.addFinding(
                { kFindingUndecodableText, false, 0,
                  QStringLiteral("The texts are not UTF-8, as the drawing's version wants, but %1.")
                      .arg(codePage) });
        m_file->strings = std::make_unique<Strings>(codePage, utf8);
    }

    void readSection(const Group& mark)
    {
        Group group;
        if (!m_cursor.next(group) || group.code != 2)
            fail(mark, "a section without a name");
        const std::string name(group.trimmed());
        SourceFile::Span span;
        span.begin = m_file->offsetOf(m_cursor.position());
        if (name == "HEADER")
            readHeader();
        else if (name == "CLASSES")
            readClasses();
        else if (name == "TABLES")
            readTables();
        else if (name == "BLOCKS")
            readBlocks();
        else if (name == "ENTITIES")
            readEntities();
        else if (name == "OBJECTS")
            readObjects();
        else
            skipSection(name);
        // Every reader stops at the end mark.
        if (!m_cursor.next(group))
            truncated(("the section " + name).c_str());
        if (!group.is(0, "ENDSEC"))
            fail(group, "the section " + name + " does not end where it should");
        span.end = m_file->offsetOf(group.begin);
        m_file->sections.emplace(name, span);
    }

    void skipSection(const std::string& name)
    {
        Group group;
        while (m_cursor.next(group)) {
            advance();
            if (group.is(0, "ENDSEC")) {
                m_cursor.back(group);
                return;
            }
        }
        truncated(("the section " + name).c_str());
    }

    void readHeader()
    {
        KcDbWrite<KcDbHeader> header(m_database.headerId());
        std::optional<SourceFile::Variable> variable;
        const auto finish = [&](const Group& next) {
            if (!variable)
                return;
            variable->place.end = m_file->offsetOf(next.begin);
            if (variable->value.name.compare("$HANDSEED", Qt::CaseInsensitive) != 0)
                header->append(variable->value);
            m_file->header.push_back(std::move(*variable));
            variable.reset();
        };
        Group group;
        while (m_cursor.next(group)) {
            if (group.code == 0) {
                finish(group);
                m_cursor.back(group);
                return;
            }
            if (group.code == 9) {
                finish(group);
                variable.emplace();
                variable->value.name = m_context->text(group).trimmed();
                variable->place.begin = m_file->offsetOf(group.begin);
                continue;
            }
            if (!variable)
                continue;
            KcDbValueList& values = variable->value.values;
            if ((group.code == 20 || group.code == 30) && !values.empty())
                if (auto* p = std::get_if<KcGePoint3d>(&values.back().value)) {
                    (group.code == 20 ? p->y : p->z) = group.real();
                    continue;
                }
            values.push_back(m_context->typed(group));
        }
        truncated("the header");
    }

    void readClasses()
    {
        Group group;
        bool expectName = false;
        while (m_cursor.next(group)) {
            if (group.is(0, "ENDSEC")) {
                m_cursor.back(group);
                return;
            }
            if (group.code == 0) {
                expectName = true;
            } else if (expectName && group.code == 1) {
                m_file->classes.emplace(group.trimmed());
                expectName = false;
            }
        }
        truncated("the classes");
    }

    /// Reads the record behind its name group and takes the object into the database.
    struct Read {
        KcDbObjectId id;
        RecordHead head;
    };
    Read takeRecord(const Group& name, bool isEntity, const Codec* codec = nullptr)
    {
        advance();
        const std::string_view fileName = name.trimmed();
        if (!codec)
            codec = lookUp(fileName);
        std::unique_ptr<KcDbObject> object = makeObject(codec, fileName, isEntity);
        KcDbObject& o = *object;
        Read result;
        result.head = readRecord(m_cursor, *m_context, codec, o);
        KcDbSourcePlace place;
        place.offset = m_file->offsetOf(name.begin);
        place.length = uint32_t(m_cursor.position() - name.begin);
        o.setSourcePlace(place);
        o.setOwnerId(m_database.idForHandle(result.head.owner));
        result.id = m_database.addObjectWithHandle(std::move(object), result.head.handle);
        result.id.stub()->flags |= KcDbObjectStub::kLoaded;
        m_file->order.push_back(result.id.stub());
        return result;
    }

    const Codec* lookUp(std::string_view fileName)
    {
        if (fileName != m_lastName) {
            m_lastName = fileName;
            m_lastCodec = codecNamed(m_lastName);
        }
        return m_lastCodec;
    }

    void readTables()
    {
        Group group;
        while (m_cursor.next(group)) {
            if (group.is(0, "ENDSEC")) {
                m_cursor.back(group);
                return;
            }
            if (group.is(0, "TABLE"))
                readTable();
        }
        truncated("the tables");
    }

    void readTable()
    {
        // The head: the table's name, handle, counts. It stays as it is.
        std::string name;
        KcDbHandle handle = 0;
        Group group;
        while (m_cursor.next(group) && group.code != 0) {
            if (group.code == 2 && name.empty())
                name = group.trimmed();
            else if (group.code == 5 && handle == 0)
                handle = group.handle();
        }
        const KcDbObjectId table = m_database.tableNamed(name.c_str());
        if (!table.isNull() && table.handle() == 0) {
            if (handle != 0)
                m_database.giveHandle(table, handle);
            table.stub()->flags &= ~uint32_t(KcDbObjectStub::kImplicit);
            table.stub()->flags |= KcDbObjectStub::kLoaded;
        }
        const Codec* codec = lookUp(name);
        for (; !group.is(0, "ENDTAB");) {
            if (group.code != 0)
                truncated("a table");
            if (group.is(0, "ENDSEC")) { // the end mark of the table is missing
                m_cursor.back(group);
                return;
            }
            if (table.isNull() || !codec) {
                Group skipped;
                do {
                    if (!m_cursor.next(skipped))
                        truncated("a table");
                } while (skipped.code != 0);
                m_cursor.back(skipped);
            } else {
                takeTableRecord(group, table, codec);
            }
            if (!m_cursor.next(group))
                truncated("a table");
        }
        if (!table.isNull())
            m_file->tableEnds.emplace(table.stub(), m_file->offsetOf(group.begin));
    }

    void takeTableRecord(const Group& mark, KcDbObjectId table, const Codec* codec)
    {
        const Read read = takeRecord(mark, false, codec);
        KcDbObjectStub& stub = *read.id.stub();
        stub.object->setOwnerId(table);
        KcDbWrite<KcDbSymbolTable> open(table);
        const KcDbObjectId there = open->getAt(read.head.recordName);
        if (!there.isNull() && (there.stub()->flags & KcDbObjectStub::kImplicit)) {
            // The name was used before it was defined: the ids handed out lead to the definition from now on.
            becomeDefinition(there, read.id);
            return;
        }
        open->list(read.id, read.head.recordName);
    }

    /// Moves a definition into the object that was made when its name was met first.
    void becomeDefinition(KcDbObjectId implicit, KcDbObjectId definition)
    {
        KcDbObjectStub& from = *definition.stub();
        std::unique_ptr<KcDbObject> object = from.object->copy();
        const KcDbSourcePlace place = from.object->sourcePlace();
        const KcDbObjectId owner = from.object->ownerId();
        m_database.exchangeHandles(*implicit.stub(), from);
        m_database.replaceObject(implicit, std::move(object));
        KcDbObjectStub& to = *implicit.stub();
        to.object->setSourcePlace(place);
        to.object->setOwnerId(owner);
        to.flags = KcDbObjectStub::kLoaded;
        from.flags = KcDbObjectStub::kErased;
        std::replace(m_file->order.begin(), m_file->order.end(), &from, &to);
    }

    void readBlocks()
    {
        Group group;
        while (m_cursor.next(group)) {
            if (group.is(0, "ENDSEC")) {
                m_cursor.back(group);
                return;
            }
            if (group.is(0, "BLOCK"))
                readBlock(group);
            else if (group.code == 0)
                m_database.addFinding(
                    { kFindingMisplacedRecord, false, 0,
                      QStringLiteral("A record \"%1\" stands outside the blocks; it is kept.")
                          .arg(QString::fromUtf8(group.value.data(), qsizetype(group.value.size()))) });
        }
        truncated("the blocks");
    }

    void readBlock(const Group& mark)
    {
        const Read begin = takeRecord(mark, true);
        const KcDbBlockBegin::Data data = static_cast<const KcDbBlockBegin&>(*begin.id.stub()->object).data();
        const KcDbObjectId block = blockFor(begin, data.name);
        begin.id.stub()->object->setOwnerId(block);
        auto& record = static_cast<KcDbBlockTableRecord&>(*block.stub()->object);
        record.data().begin = begin.id;
        record.data().origin = data.origin;
        record.data().blockFlags = data.flags;
        record.data().xrefPath = data.xrefPath;
        record.data().description = data.description;

        const uint64_t from = m_file->offsetOf(m_cursor.position());
        Group group;
        m_parent = {};
        while (m_cursor.next(group)) {
            if (group.is(0, "ENDBLK")) {
                const Read end = takeRecord(group, true);
                end.id.stub()->object->setOwnerId(block);
                record.data().end = end.id;
                m_file->blocks[block.stub()] = { from, m_file->offsetOf(group.begin) };
                return;
            }
            if (group.is(0, "ENDSEC"))
                fail(group, "the block \"" + data.name.toStdString() + "\" does not end");
            if (group.code == 0)
                takeEntity(group, block);
        }
        truncated("a block");
    }

    KcDbObjectId blockFor(const Read& begin, const QString& name)
    {
        // The owner's handle is surer than the name: two blocks may differ only in what a name cannot tell.
        const KcDbObjectId owner = m_database.findHandle(begin.head.owner);
        if (KcDbRead<KcDbBlockTableRecord> record(owner); record)
            return owner;
        KcDbWrite<KcDbSymbolTable> table(m_database.blockTable());
        KcDbObjectId id = table->getAt(name);
        if (id.isNull() || !static_cast<KcDbBlockTableRecord*>(id.stub()->object)->data().begin.isNull()) {
            auto record = std::make_unique<KcDbBlockTableRecord>();
            record->initName(name);
            if (id.isNull()) {
                id = table->add(std::move(record));
            } else { // a second definition of one name: kept, but references draw the first
                record->setOwnerId(table->objectId());
                id = m_database.addObject(std::move(record), table->objectId());
            }
        }
        if (!(id.stub()->flags & KcDbObjectStub::kLoaded))
            KcDbDatabase::markImplicit(id); // R12: the record itself is not in the file
        return id;
    }

    void readEntities()
    {
        KcDbObjectId model = m_database.modelSpace(), paper = m_database.paperSpace();
        if (model.isNull() || paper.isNull()) {
            m_database.completeFrame();
            model = m_database.modelSpace();
            paper = m_database.paperSpace();
        }
        Group group;
        m_parent = {};
        while (m_cursor.next(group)) {
            if (group.is(0, "ENDSEC")) {
                m_cursor.back(group);
                return;
            }
            if (group.code != 0)
                fail(group, "an entity was expected");
            takeEntity(group, {}, model, paper);
        }
        truncated("the entities");
    }

    void takeEntity(const Group& mark, KcDbObjectId block, KcDbObjectId model = {}, KcDbObjectId paper = {})
    {
        const std::string_view fileName = mark.trimmed();
        const bool isAttribute = fileName == "ATTRIB", isVertex = fileName == "VERTEX";
        if ((isAttribute || isVertex || fileName == "SEQEND") && !m_parent.isNull()) {
            takeSubEntity(mark, isAttribute, isVertex);
            return;
        }
        const Read read = takeRecord(mark, true);
        KcDbObject& object = *read.id.stub()->object;
        auto& entity = static_cast<KcDbEntity&>(object);
        KcDbObjectId owner = block;
        if (block.isNull()) {
            owner = object.ownerId() == paper || object.ownerId() == model ? object.ownerId()
                : entity.isInPaperSpace()                                  ? paper
                                                                           : model;
        }
        object.setOwnerId(owner);
        static_cast<KcDbBlockTableRecord&>(*owner.stub()->object).list(read.id);
        m_parent = {};
        if (fileName == "INSERT" ? read.head.attributesFollow : fileName == "POLYLINE")
            m_parent = read.id;
    }

    void takeSubEntity(const Group& mark, bool isAttribute, bool isVertex)
    {
        const Read read = takeRecord(mark, true);
        KcDbObjectStub& stub = *read.id.stub();
        if (read.head.owner == 0)
            stub.object->setOwnerId(m_parent);
        KcDbObject& parent = *m_parent.stub()->object;
        if (parent.isA() == KcDbBlockReference::desc()) {
            auto& reference = static_cast<KcDbBlockReference&>(parent);
            std::unique_ptr<KcDbBlockReference::Array>& array = reference.data().array;
            if (!array)
                array = std::make_unique<KcDbBlockReference::Array>();
            if (isAttribute && stub.object->isKindOf(KcDbAttribute::desc()))
                array->attributes.push_back(read.id);
            else if (!isVertex)
                array->sequenceEnd = read.id;
        } else if (parent.isA() == KcDb2dPolyline::desc()) {
            auto& polyline = static_cast<KcDb2dPolyline&>(parent);
            if (isVertex)
                polyline.data().vertices.push_back(read.id);
            else if (!isAttribute)
                polyline.data().sequenceEnd = read.id;
        }
        if (!isAttribute && !isVertex) {
            m_file->sequenceEnds[m_parent.stub()] = stub.object->sourcePlace().offset;
            m_parent = {};
        }
    }

    void readObjects()
    {
        Group group;
        while (m_cursor.next(group)) {
            if (group.is(0, "ENDSEC")) {
                m_cursor.back(group);
                return;
            }
            if (group.code != 0)
                fail(group, "an object was expected");
            const Read read = takeRecord(group, false);
            // The root dictionary is the first one, and owned by nothing.
            const KcDbObjectId root = m_database.namedObjectsDictionary();
            if ((root.isNull() || (root.stub()->flags & KcDbObjectStub::kImplicit))
                && read.id.stub()->object->isKindOf(KcDbDictionary::desc()))
                m_database.setNamedObjectsDictionary(read.id);
        }
        truncated("the objects");
    }

    /// Names may be used before they are defined; what is still only implied at the end was never defined.
    void reportUndefinedNames()
    {
        const auto report = [this](const char* kind, const QString& name) {
            // What every drawing has counts as defined.
            static const QStringList kAlwaysThere{
                "0", "STANDARD", "BYLAYER", "BYBLOCK", "CONTINUOUS", "ACAD"
            };
            if (!kAlwaysThere.contains(name.toUpper()))
                m_database.addFinding({ kFindingUndefinedName, false, 0,
                                        QStringLiteral("The drawing uses the %1 \"%2\" without defining it.")
                                            .arg(QLatin1String(kind), name) });
        };
        const std::pair<KcDbObjectId, const char*> tables[]
            = { { m_database.layerTable(), "layer" },
                { m_database.linetypeTable(), "line type" },
                { m_database.textStyleTable(), "text style" },
                { m_database.dimStyleTable(), "dimension style" },
                { m_database.regAppTable(), "application" } };
        for (const auto& [table, kind] : tables)
            for (KcDbObjectId id : KcDbRead<KcDbSymbolTable>(table)->records())
                if (id.stub()->flags & KcDbObjectStub::kImplicit)
                    report(kind, kcdbRecordName(id));
        for (KcDbObjectId id : KcDbRead<KcDbSymbolTable>(m_database.blockTable())->records())
            if (const KcDbRead<KcDbBlockTableRecord> block(id);
                block && block->data().begin.isNull() && !block->isLayout())
                report("block", block->name());
    }

    KcDbDatabase& m_database;
    std::shared_ptr<SourceFile> m_file;
    GroupCursor m_cursor;
    const ReadProgress& m_progress;
    const char* m_nextStep; ///< where the watcher is told next; null: no more
    std::optional<ReadContext> m_context;
    std::string m_lastName;
    const Codec* m_lastCodec = nullptr;
    KcDbObjectId m_parent; ///< the entity whose attributes or vertices follow
};

Result stopped()
{
    Result result;
    result.stopped = true;
    result.error = QStringLiteral("the reading was stopped");
    return result;
}

Result readBytes(SourceFile::Room bytes, size_t size, KcDbDatabase& database, const ReadProgress& progress)
{
    Result result;
    try {
        Reader(database, std::make_shared<SourceFile>(std::move(bytes), size), progress).read();
        result.ok = true;
        for (const KcDbFinding& finding : database.findings())
            if (finding.number == kFindingTruncated)
                result.notes.push_back(finding.text + QStringLiteral(" It may have been cut short."));
    } catch (const Stopped&) {
        return stopped();
    } catch (const FileError& error) {
        result.error = QString::fromStdString(error.what());
    } catch (const std::bad_alloc&) {
        result.error = QStringLiteral("there is not enough memory for the drawing");
    }
    return result;
}

/// R12 binary files have group codes of one byte: the first group (0 "SECTION") tells.
Form formOf(std::string_view bytes)
{
    if (!isBinary(bytes))
        return Form::Text;
    return bytes.size() > kBinarySignatureSize + 1 && bytes[kBinarySignatureSize + 1] != '\0'
        ? Form::BinaryR12
        : Form::Binary;
}

} // namespace

SourceFile::Room::Room(size_t size)
{
    constexpr size_t kLargePage = size_t(2) << 20;
    const size_t rounded = (size / kLargePage + 1) * kLargePage;
    m_bytes = static_cast<char*>(std::aligned_alloc(kLargePage, rounded));
    if (!m_bytes)
        throw std::bad_alloc();
    if (size > kLargePage)
        ::madvise(m_bytes, rounded, MADV_HUGEPAGE);
}

SourceFile::Room::~Room()
{
    std::free(m_bytes);
}

SourceFile::SourceFile(Room bytes, size_t length)
    : size(length)
    , m_bytes(std::move(bytes))
{
    form = formOf(all());
}

std::optional<KcDbVersion> versionNamed(std::string_view acadver)
{
    for (const VersionRow& row : kVersions)
        if (acadver == row.name)
            return row.version;
    return std::nullopt;
}

const char* versionName(KcDbVersion version)
{
    return kVersions[size_t(version)].name;
}

QString versionText(KcDbVersion version)
{
    return QLatin1String(kVersions[size_t(version)].text);
}

Result readDrawing(std::string_view bytes, KcDbDatabase& database, const ReadProgress& progress)
{
    SourceFile::Room copy(bytes.size());
    std::memcpy(copy.get(), bytes.data(), bytes.size());
    return readBytes(std::move(copy), bytes.size(), database, progress);
}

Result readDrawing(const QString& path, KcDbDatabase& database, const ReadProgress& progress)
{
    Result result;
    const auto failed = [&](int error) {
        result.error = QStringLiteral("%1: %2").arg(path, QString::fromLocal8Bit(std::strerror(error)));
        return result;
    };
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return failed(errno);
    struct stat info { };
    if (::fstat(descriptor, &info) != 0 || S_ISDIR(info.st_mode)) {
        ::close(descriptor);
        return failed(S_ISDIR(info.st_mode) ? EISDIR : errno);
    }
    // Read, not mapped: another program may cut the file short while it is open here.
    const size_t size = size_t(info.st_size);
    std::optional<SourceFile::Room> room;
    try {
        room.emplace(size);
    } catch (const std::bad_alloc&) {
        ::close(descriptor);
        return failed(ENOMEM);
    }
    SourceFile::Room& bytes = *room;
    // Slow disks and networks take their time over this already.
    constexpr size_t kPiece = size_t(16) << 20;
    bool goesOn = true;
    size_t got = 0;
    while (got < size && goesOn) {
        const ssize_t n = ::read(descriptor, bytes.get() + got, std::min(size - got, kPiece));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            const int error = errno;
            ::close(descriptor);
            return failed(error);
        }
        if (n == 0)
            break;
        got += size_t(n);
        goesOn = !progress || progress(int(kPercentOfBytes * (double(got) / size)));
    }
    ::close(descriptor);
    result = goesOn ? readBytes(std::move(bytes), got, database, progress) : stopped();
    if (!result.ok)
        result.error = QStringLiteral("%1: %2").arg(path, result.error);
    for (QString& note : result.notes)
        note = QStringLiteral("%1: %2").arg(path, note);
    database.setFileName(path);
    return result;
}

} // namespace dxf
