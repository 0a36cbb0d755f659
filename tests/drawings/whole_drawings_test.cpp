// Real drawings, opened and saved: unchanged, touched, changed in several places at once, and changed back.
// What may differ is known before; everything else must be as it was, record by record and byte by byte.
#include "support.h"

#include "db/block_reference.h"
#include "db/curves.h"
#include "db/polyline.h"
#include "db/table.h"
#include "db/tables.h"
#include "ed/copy_entity.h"

#include <cstring>
#include <set>

using namespace drawing_test;

namespace {

/// What one round of changes did, as the judge must see it and as a reader must find it.
struct Changes {
    QStringList allowed; ///< options of compare_drawings.py
    bool text = false, copied = false, table = false;
    QString layer;
    KcGePoint3d copiedTo;
    int count = 0;
    size_t entities = 0; ///< in model space afterwards
};

const QString kNewText = QStringLiteral("香樟 12株");
constexpr int kNewColor = 141;

/// Handles that stand twice in the file or that it lacks: changing such an object gives it another.
std::set<KcDbHandle> doubtful(const KcDbDatabase& drawing)
{
    std::set<KcDbHandle> handles;
    for (const KcDbFinding& finding : drawing.findings())
        handles.insert(finding.handle);
    return handles;
}

/// False for records of old files that have no handle there.
bool bearsHandle(const KcDbObject& object, const std::string& file)
{
    const KcDbSourcePlace& place = object.sourcePlace();
    const std::string record = '\n' + file.substr(place.offset, place.length);
    return record.find("\n  5") != std::string::npos || object.database()->version() > KcDbVersion::R12;
}

/// Lets a record that was read differ as `option` says.
void allow(
    Changes& changes, const KcDbObject& object, const char* option, const char* codes,
    const std::string& file)
{
    if (bearsHandle(object, file)) {
        changes.allowed += { option, hex(object.handle()) + codes };
        return;
    }
    const std::string record = file.substr(object.sourcePlace().offset, 40);
    const size_t name = record.find('\n') + 1;
    changes.allowed
        += { "--nameless",
             QString::fromStdString(record.substr(name, record.find_first_of("\r\n", name) - name)) + "=1" };
}

std::vector<KcDbObjectId> modelEntities(const KcDbDatabase& drawing)
{
    return KcDbRead<KcDbBlockTableRecord>(drawing.modelSpace())->entityIds();
}

void copySymbol(KcDbDatabase& drawing, Changes& changes)
{
    for (const KcDbObjectId id : modelEntities(drawing)) {
        if (const KcDbRead<KcDbBlockReference> original(id);
            !original || original->isA() != KcDbBlockReference::desc())
            continue;
        const KcDbObjectId copy = kcedCopyEntity(id, KcGeMatrix3d::translation({ 1250.5, -37.25, 0.0 }));
        const KcDbRead<KcDbBlockReference> symbol(copy);
        ASSERT_TRUE(symbol);
        changes.copied = true;
        // Whether an old file with few handles gives its new records one is its writer's choice.
        if (drawing.version() == KcDbVersion::R12)
            changes.allowed += { "--may", hex(copy.handle()), "--nameless", "INSERT=1" };
        else
            changes.allowed += { "--added", hex(copy.handle()) };
        changes.copiedTo = symbol->position();
        ++changes.count;
        return;
    }
}

void editText(KcDbDatabase& drawing, const std::string& file, Changes& changes)
{
    const auto avoid = doubtful(drawing);
    for (const KcDbObjectId id : modelEntities(drawing)) {
        if (avoid.count(id.handle()))
            continue;
        if (KcDbRead<KcDbText> text(id);
            text && text->isA() == KcDbText::desc() && !text->data().horizontal && !text->data().vertical) {
            KcDbWrite<KcDbText>(id)->setTextString(kNewText);
            allow(changes, *text, "--changed", ":1", file);
        } else if (KcDbRead<KcDbMText>(id)) {
            KcDbWrite<KcDbMText>(id)->setContents(kNewText);
            // of texts in columns the measured size follows
            allow(
                changes, *KcDbRead<KcDbMText>(id), "--changed",
                KcDbRead<KcDbMText>(id)->data().columns ? ":1+3+42+43" : ":1+3", file);
        } else {
            continue;
        }
        changes.text = true;
        ++changes.count;
        return;
    }
}

void changeLayer(KcDbDatabase& drawing, const std::string& file, Changes& changes)
{
    const auto avoid = doubtful(drawing);
    for (const KcDbObjectId id : KcDbRead<KcDbSymbolTable>(drawing.layerTable())->records()) {
        if (avoid.count(id.handle()) || KcDbRead<KcDbLayerTableRecord>(id)->data().color.rgb >= 0)
            continue;
        KcDbWrite<KcDbLayerTableRecord>(id)->setColor(kNewColor);
        const KcDbRead<KcDbLayerTableRecord> layer(id);
        changes.layer = layer->name();
        allow(changes, *layer, "--changed", ":62", file);
        ++changes.count;
        return;
    }
}

void eraseEntity(KcDbDatabase& drawing, const std::string& file, Changes& changes)
{
    const auto avoid = doubtful(drawing);
    std::vector<KcDbObjectId> entities = modelEntities(drawing);
    std::reverse(entities.begin(), entities.end());
    for (const KcDbObjectId id : entities) {
        const KcDbRead<KcDbEntity> entity(id);
        if (avoid.count(id.handle()) || !entity->sourcePlace().isRead() || !entity->reactors().empty()
            || !entity->extensionDictionary().isNull()
            || !(
                entity->isKindOf(KcDbLine::desc()) || entity->isKindOf(KcDbCircle::desc())
                || entity->isKindOf(KcDbPolyline::desc()) || entity->isKindOf(KcDbPoint::desc())))
            continue;
        KcDbWrite<KcDbEntity>(id)->erase();
        allow(changes, *KcDbRead<KcDbEntity>(id, true), "--erased", "", file);
        ++changes.count;
        return;
    }
}

void addTable(KcDbDatabase& drawing, Changes& changes)
{
    auto table = std::make_unique<KcDbTable>();
    table->setRowHeight(8.0);
    table->setColumnWidth(40.0);
    table->setSize(3, 2);
    table->setTextString(0, 0, QStringLiteral("苗木表"));
    table->setTextString(2, 1, kNewText);
    const KcDbObjectId id = KcDbTable::append(drawing.modelSpace(), std::move(table));
    ASSERT_TRUE(id.isResident());
    changes.table = true;
    changes.allowed += { "--added", hex(id.handle()) };
    ++changes.count;
}

/// What follows from new objects elsewhere in the file: counts in the heads of tables, classes, the seed of
/// handles, and the dictionary that the first table style is entered in.
void allowConsequences(const KcDbDatabase& drawing, KcDbHandle firstNew, Changes& changes)
{
    changes.allowed += { "--added-from", hex(firstNew), "--may",
                         "header:$HANDSEED,class:TABLESTYLE,class:ACAD_TABLE,CLASSES/SECTION,CLASSES/"
                         "ENDSEC,table:BLOCK_RECORD:70" };
    for (const char* name : { "BLOCK_RECORD", "STYLE" })
        changes.allowed += { "--may", hex(drawing.tableNamed(name).handle()) + ":70" };
    changes.allowed += { "--may", hex(drawing.namedObjectsDictionary().handle()) + ":3+350+360" };
}

// Looks for what was done by its values: old files have no handles that last.
void expectChanges(const KcDbDatabase& drawing, const Changes& changes)
{
    bool copied = false, text = false, table = false;
    for (const KcDbObjectId id : modelEntities(drawing)) {
        if (const KcDbRead<KcDbText> line(id); line)
            text = text || line->plainText() == kNewText;
        if (const KcDbRead<KcDbMText> paragraph(id); paragraph)
            text = text || paragraph->plainText() == kNewText;
        if (const KcDbRead<KcDbTable> grid(id); grid && grid->plainText(0, 0) == QStringLiteral("苗木表")) {
            table = true;
            EXPECT_EQ(grid->plainText(2, 1), kNewText);
            EXPECT_EQ(grid->numRows(), 3);
            EXPECT_EQ(grid->columnWidth(1), 40.0);
            EXPECT_GT(KcDbRead<KcDbBlockTableRecord>(grid->blockTableRecord())->entityIds().size(), 5u);
        } else if (const KcDbRead<KcDbBlockReference> symbol(id); symbol) {
            copied = copied
                || (symbol->position().x == changes.copiedTo.x && symbol->position().y == changes.copiedTo.y);
        }
    }
    EXPECT_TRUE(copied || !changes.copied) << "the copied symbol is gone";
    EXPECT_TRUE(text || !changes.text) << "the text is not the new one";
    EXPECT_TRUE(table || !changes.table) << "the table is gone";
    if (!changes.layer.isEmpty()) {
        const KcDbRead<KcDbLayerTableRecord> layer(kcdbFindRecord(drawing.layerTable(), changes.layer));
        ASSERT_TRUE(layer);
        EXPECT_EQ(layer->colorIndex(), kNewColor);
    }
    EXPECT_EQ(modelEntities(drawing).size(), changes.entities);
}

/// Compares two drawings in memory by way of files.
void expectSame(
    const std::string& before, const std::string& after, const QStringList& allowed, bool auditToo)
{
    QTemporaryDir folder;
    const QString a = folder.filePath("before.dxf"), b = folder.filePath("after.dxf");
    writeBytes(a, before);
    writeBytes(b, after);
    const Verdict same = compare(a, b, allowed);
    EXPECT_EQ(same.status, 0) << allowed.join(' ').toStdString() << '\n' << same.says.toStdString();
    if (!auditToo)
        return;
    if (const Verdict sound = audit(a, b); sound.status != kNotChecked) {
        EXPECT_EQ(sound.status, 0) << sound.says.toStdString();
    }
}

/// Named after its file, so that a failing drawing can be run alone.
class WholeDrawings : public ::testing::TestWithParam<std::string> {
protected:
    QString path() const { return kDrawings + QString::fromStdString(GetParam()) + ".dxf"; }
};

void unchanged(const QString& path)
{
    const std::string before = readBytes(path);
    const auto drawing = readDrawing(before);
    ASSERT_TRUE(drawing);
    EXPECT_TRUE(saveDrawing(*drawing) == before) << "not the same bytes";
}

// Every object is opened for writing and closed. That alone must not change a value, drop a group or move a
// record; and taken back, it leaves no trace at all.
void touched(const QString& path)
{
    const std::string before = readBytes(path);
    const auto drawing = readDrawing(before);
    ASSERT_TRUE(drawing);
    drawing->undo().beginStep("touch");
    size_t count = 0;
    for (KcDbObjectStub& stub : drawing->stubs())
        if (stub.flags & KcDbObjectStub::kLoaded)
            count += bool(KcDbWrite<KcDbObject>(KcDbObjectId(&stub)));
    drawing->undo().endStep();
    EXPECT_GT(count, 20u);
    QStringList notes;
    const std::string after = saveDrawing(*drawing, &notes);
    EXPECT_TRUE(notes.isEmpty()) << notes.join(' ').toStdString();
    if (doubtful(*drawing).empty())
        expectSame(before, after, {}, false);
    drawing->undo().undo();
    EXPECT_TRUE(saveDrawing(*drawing) == before) << "undo does not bring the bytes back";
}

void changed(const QString& path)
{
    const std::string before = readBytes(path);
    const auto drawing = readDrawing(before);
    ASSERT_TRUE(drawing);
    const KcDbHandle firstNew = drawing->nextHandle();
    const bool old = drawing->version() < KcDbVersion::V2000;

    Changes changes;
    drawing->undo().beginStep("change");
    editText(*drawing, before, changes);
    changeLayer(*drawing, before, changes);
    eraseEntity(*drawing, before, changes);
    copySymbol(*drawing, changes);
    if (!old) // these become drawings of another version, see below
        addTable(*drawing, changes);
    drawing->undo().endStep();
    EXPECT_GE(changes.count, 2);
    changes.entities = modelEntities(*drawing).size();
    allowConsequences(*drawing, firstNew, changes);

    QStringList notes;
    const std::string after = saveDrawing(*drawing, &notes);
    EXPECT_TRUE(notes.isEmpty()) << notes.join(' ').toStdString();
    expectSame(before, after, changes.allowed, true);
    if (const auto again = readDrawing(after); again) {
        EXPECT_EQ(again->findings().size(), drawing->findings().size());
        expectChanges(*again, changes);
        EXPECT_TRUE(saveDrawing(*again) == after);
    }
    drawing->undo().undo();
    EXPECT_TRUE(saveDrawing(*drawing) == before) << "undo does not bring the bytes back";
    drawing->undo().redo();
    EXPECT_TRUE(saveDrawing(*drawing) == after) << "redo does not bring the bytes back";
}

// A drawing whose version cannot hold a table becomes one of 2010, whole: every entity that was there is
// there again.
void tableInOldDrawing(const QString& path)
{
    const std::string before = readBytes(path);
    const auto drawing = readDrawing(before);
    ASSERT_TRUE(drawing);
    if (drawing->version() >= KcDbVersion::V2000)
        return;
    Changes changes;
    drawing->undo().beginStep("table");
    addTable(*drawing, changes);
    drawing->undo().endStep();
    changes.entities = modelEntities(*drawing).size();
    std::string after;
    const dxf::Result result = dxf::saveDrawing(*drawing, after);
    if (!result.ok) {
        // Something cannot be carried over: allowed, when it says what.
        EXPECT_TRUE(after.empty());
        EXPECT_GT(result.error.size(), 20);
        std::cout << QFileInfo(path).fileName().toStdString() << ": " << result.error.toStdString() << '\n';
        return;
    }
    ASSERT_EQ(result.notes.size(), 1);
    EXPECT_TRUE(result.notes.first().contains("2010") && result.notes.first().contains("ACAD_TABLE"))
        << result.notes.first().toStdString();
    const auto again = readDrawing(after);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->version(), KcDbVersion::V2010);
    expectChanges(*again, changes);
    QTemporaryDir folder;
    writeBytes(folder.filePath("before.dxf"), before);
    writeBytes(folder.filePath("after.dxf"), after);
    if (const Verdict sound = audit(folder.filePath("before.dxf"), folder.filePath("after.dxf"));
        sound.status != kNotChecked) {
        EXPECT_EQ(sound.status, 0) << sound.says.toStdString();
    }
    drawing->undo().undo();
    // Handles that were given out are not given out again; all else is as before.
    expectSame(before, saveDrawing(*drawing), { "--may", "header:$HANDSEED" }, false);
}

} // namespace

TEST_P(WholeDrawings, UnchangedAreSavedByteByByte)
{
    unchanged(path());
}
TEST_P(WholeDrawings, TouchedStayTheSame)
{
    touched(path());
}
TEST_P(WholeDrawings, OnlyWhatWasChangedDiffers)
{
    changed(path());
}
TEST_P(WholeDrawings, TablesMakeOldDrawingsNewer)
{
    tableInOldDrawing(path());
}

INSTANTIATE_TEST_SUITE_P(
    Files, WholeDrawings, ::testing::ValuesIn([] {
        std::vector<std::string> names;
        for (const QString& name :
             QDir(kDrawings).entryList({ QStringLiteral("*.dxf") }, QDir::Files, QDir::Name))
            names.push_back(QFileInfo(name).completeBaseName().toStdString());
        return names;
    }()),
    [](const auto& info) {
        std::string name = info.param;
        std::replace(name.begin(), name.end(), '-', '_');
        return name;
    });

// The same with the drawings of the folder that VERDELIS_CORPUS names.
TEST(Corpus, OpenedChangedAndSaved)
{
    const QString folder = qEnvironmentVariable("VERDELIS_CORPUS");
    if (folder.isEmpty())
        GTEST_SKIP() << "VERDELIS_CORPUS names no folder of drawings";
    const QStringList names = QDir(folder).entryList({ QStringLiteral("*.dxf") }, QDir::Files, QDir::Name);
    ASSERT_FALSE(names.isEmpty());
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        const QString path = QDir(folder).filePath(name);
        unchanged(path);
        touched(path);
        changed(path);
        tableInOldDrawing(path);
    }
}

// The judges themselves: a deliberate fault must be reported, and an expected change that did not happen too.
TEST(Judges, SeeEveryKindOfFault)
{
    QTemporaryDir folder;
    const QString original = kDrawings + "wipeout-r2018.dxf", other = folder.filePath("other.dxf");
    const std::string bytes = readBytes(original);
    const auto with = [&](const std::string& what, const std::string& by) {
        std::string changed = bytes;
        const size_t at = changed.find(what);
        EXPECT_NE(at, std::string::npos) << what;
        if (at != std::string::npos)
            changed.replace(at, what.size(), by);
        return changed;
    };
    EXPECT_EQ(compare(original, original).status, 0);
    // A whole line, taken out of the entities.
    const size_t line = bytes.find("  0\nLINE\n", bytes.find("\nENTITIES\n"));
    const size_t next = bytes.find("  0\n", line + 5);
    ASSERT_NE(next, std::string::npos);
    const std::string lacking = bytes.substr(0, line) + bytes.substr(next);
    // One digit of a coordinate.
    std::string digit = bytes;
    const size_t coordinate = digit.find("AcDbLine\n 10\n", line) + std::strlen("AcDbLine\n 10\n");
    const size_t last = digit.find('\n', coordinate) - 1;
    digit[last] = digit[last] == '1' ? '2' : '1';
    const struct {
        const char* name;
        std::string bytes;
        const char* says;
    } rows[] = {
        { "a missing entity", lacking, "LINE" },
        { "a digit", digit, "+ 10" },
        { "a header variable", with("$LTSCALE\n 40\n", "$LTSCALE\n 40\n1"), "$LTSCALE" },
        { "an added group", with("AcDbBlockBegin\n", "AcDbBlockBegin\n280\n     1\n"), "BLOCK" },
        { "another kind", with("\nCIRCLE\n", "\nCIRCLF\n"), "CIRCLE" },
        { "another version", with("AC1032", "AC1027"), "version" },
    };
    for (const auto& row : rows) {
        writeBytes(other, row.bytes);
        const Verdict verdict = compare(original, other);
        EXPECT_EQ(verdict.status, 1) << row.name;
        EXPECT_TRUE(verdict.says.contains(row.says)) << row.name << ": " << verdict.says.toStdString();
    }
    EXPECT_EQ(compare(original, original, { "--changed", "header:$LTSCALE" }).status, 1);
    EXPECT_EQ(compare(original, original, { "--erased", "FFFF" }).status, 1);
    EXPECT_EQ(compare(original, original, { "--added", "FFFF" }).status, 1);
    EXPECT_EQ(compare(original, kDrawings + "binary-r2018.dxf").status, 1);
}
