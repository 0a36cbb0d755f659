// Damaged and hostile drawings: whatever the file holds, the program ends with a status and a sentence, and
// nothing half-written is left behind.
#include "support.h"

#include "db/audit.h"
#include "db/block_table_record.h"
#include "db/entity.h"

#include <chrono>
#include <unistd.h>

using namespace drawing_test;

namespace {

/// Reads the bytes and does with the drawing what commands do: boxes, checks, a change, saving, reading
/// again. The error of reading; empty when it could be read.
QString exercise(const std::string& bytes)
{
    KcDbDatabase drawing(KcDbDatabase::Content::kEmpty);
    const dxf::Result read = dxf::readDrawing(std::string_view(bytes), drawing);
    if (!read.ok) {
        EXPECT_FALSE(read.error.isEmpty());
        return read.error;
    }
    for (size_t i = 0; i < drawing.stubs().size(); ++i) {
        const KcDbObjectId id(&drawing.stubs()[i]);
        if (const KcDbRead<KcDbEntity> entity(id); entity)
            entity->geomExtents();
    }
    kcdbAudit(drawing);
    for (size_t i = 0; i < drawing.stubs().size(); ++i)
        KcDbWrite<KcDbEntity>(KcDbObjectId(&drawing.stubs()[i]));
    std::string saved;
    if (const dxf::Result result = dxf::saveDrawing(drawing, saved); result.ok) {
        KcDbDatabase again(KcDbDatabase::Content::kEmpty);
        const dxf::Result reread = dxf::readDrawing(std::string_view(saved), again);
        EXPECT_TRUE(reread.ok) << "what was saved cannot be read: " << reread.error.toStdString();
    } else {
        EXPECT_FALSE(result.error.isEmpty());
    }
    return {};
}

std::string groups(std::initializer_list<std::pair<int, std::string>> list)
{
    std::string text;
    for (const auto& [code, value] : list)
        text += std::to_string(code) + '\n' + value + '\n';
    return text;
}

std::string section(const std::string& name, const std::string& content)
{
    return groups({ { 0, "SECTION" }, { 2, name } }) + content + groups({ { 0, "ENDSEC" } });
}

const std::string kEof = "0\nEOF\n";

std::string drawingOf(const std::string& version, const std::string& blocks, const std::string& entities)
{
    return section("HEADER", groups({ { 9, "$ACADVER" }, { 1, version } })) + section("BLOCKS", blocks)
        + section("ENTITIES", entities) + kEof;
}

std::string block(const std::string& name, const std::string& content)
{
    return groups({ { 0, "BLOCK" },
                    { 8, "0" },
                    { 2, name },
                    { 70, "0" },
                    { 10, "0" },
                    { 20, "0" },
                    { 3, name } })
        + content + groups({ { 0, "ENDBLK" }, { 8, "0" } });
}

std::string insert(const std::string& name)
{
    return groups({ { 0, "INSERT" }, { 8, "0" }, { 2, name }, { 10, "1" }, { 20, "1" } });
}

std::string line(const std::string& x = "1", const std::string& handle = {})
{
    return (handle.empty() ? groups({ { 0, "LINE" } }) : groups({ { 0, "LINE" }, { 5, handle } }))
        + groups({ { 8, "0" }, { 10, x }, { 20, "2" }, { 11, "3" }, { 21, "4" } });
}

struct Outcome {
    int status = -1;
    bool crashed = true;
    QString out, err;
};

class BadInput : public ::testing::Test {
protected:
    Outcome run(const QStringList& arguments)
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("VERDELIS_ROOT", folder.filePath("root"));
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        process.setProcessEnvironment(environment);
        process.start(VERDELIS_PROGRAM, arguments);
        if (!process.waitForFinished(120000)) {
            process.kill();
            return {};
        }
        return { process.exitCode(), process.exitStatus() != QProcess::NormalExit,
                 QString::fromUtf8(process.readAllStandardOutput()),
                 QString::fromUtf8(process.readAllStandardError()) };
    }
    /// Runs the bytes as a drawing that is to be saved over a file which exists already.
    Outcome open(const std::string& bytes)
    {
        const QString path = folder.filePath("bad.dxf");
        writeBytes(path, bytes);
        writeBytes(target(), "as it was");
        return run({ "run", path, "-o", target() });
    }
    QString target() const { return folder.filePath("target.dxf"); }
    /// Files beside the known ones: what a failed save would leave.
    QStringList leftovers() const
    {
        QStringList names = QDir(folder.path()).entryList(QDir::Files | QDir::Hidden);
        names.removeAll("bad.dxf");
        names.removeAll("target.dxf");
        return names;
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(BadInput, RefusedWithASentenceAndNothingWritten)
{
    const std::string good = readBytes(kDrawings + "wipeout-r2018.dxf");
    const std::string binary = readBytes(kDrawings + "binary-r2018.dxf");
    const auto with = [&](const std::string& what, const std::string& by) {
        std::string changed = good;
        changed.replace(changed.find(what), what.size(), by);
        return changed;
    };
    // The code of the first group of the entities, in words.
    const size_t entities = good.find("\nENTITIES\n") + 10;
    std::string wrongCode = good;
    wrongCode.replace(entities, 3, "zwo");
    const auto lineNumber = std::to_string(std::count(good.begin(), good.begin() + long(entities), '\n') + 1);
    std::string noise(5000, ' ');
    for (size_t i = 0; i < noise.size(); ++i)
        noise[i] = char((i * 7919) >> 3);
    const struct {
        const char* name;
        std::string bytes;
        std::string says;
    } rows[] = {
        { "an empty file", "", "no drawing" },
        { "a blank file", "\n\n\n", "" },
        { "noise", noise, "line 1" },
        { "a text", "Dear all,\nplease find the plan attached.\n", "line 1" },
        { "an unknown version", with("AC1032", "AC9999"), "AC9999" },
        { "a word for a group code", wrongCode, "line " + lineNumber },
        { "cut short inside a section", good.substr(0, good.size() / 2), "the file ends in the middle" },
        { "cut short inside the word SECTION", section("HEADER", "") + "0\nSECT", "line" },
        { "cut short inside a table that nobody knows", "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nDSEC\n0\nSECTI",
          "cut short" },
        { "a binary drawing cut short", binary.substr(0, binary.size() / 2), "byte" },
        { "only the mark of binary drawings", binary.substr(0, 22), "" },
        { "a section without end", with("ENDSEC", "ENDZZZ"), "HEADER" },
    };
    for (const auto& row : rows) {
        const Outcome outcome = open(row.bytes);
        EXPECT_FALSE(outcome.crashed) << row.name;
        EXPECT_EQ(outcome.status, 1) << row.name << ": " << outcome.err.toStdString();
        EXPECT_TRUE(outcome.err.contains(QString::fromStdString(row.says)))
            << row.name << ": " << outcome.err.toStdString();
        EXPECT_TRUE(outcome.err.contains("bad.dxf")) << row.name << ": " << outcome.err.toStdString();
        EXPECT_LT(outcome.err.size(), 400) << row.name;
        EXPECT_EQ(readBytes(target()), "as it was") << row.name;
        EXPECT_TRUE(leftovers().isEmpty()) << row.name << leftovers().join(' ').toStdString();
    }
}

TEST_F(BadInput, PlacesThatCannotBeReadOrWritten)
{
    const QString drawing = kDrawings + "extended-data.dxf";
    for (const QString& place : { folder.path(), folder.filePath("none.dxf"), QStringLiteral("/dev/null") }) {
        const Outcome outcome = run({ "dump", place });
        EXPECT_EQ(outcome.status, 1) << place.toStdString();
        EXPECT_TRUE(outcome.err.contains(place)) << outcome.err.toStdString();
        EXPECT_TRUE(outcome.out.isEmpty());
    }
    const Outcome full = run({ "run", drawing, "-o", "/dev/full" });
    EXPECT_EQ(full.status, 1);
    EXPECT_TRUE(full.err.contains("full")) << full.err.toStdString();
    if (geteuid() == 0)
        return; // the superuser may read and write everywhere
    writeBytes(folder.filePath("secret.dxf"), readBytes(drawing));
    QFile::setPermissions(folder.filePath("secret.dxf"), {});
    const Outcome secret = run({ "dump", folder.filePath("secret.dxf") });
    EXPECT_EQ(secret.status, 1);
    EXPECT_TRUE(secret.err.contains("secret.dxf"));
    QDir(folder.path()).mkdir("locked");
    QFile::setPermissions(folder.filePath("locked"), QFile::ReadOwner | QFile::ExeOwner);
    EXPECT_EQ(run({ "run", drawing, "-o", folder.filePath("locked/out.dxf") }).status, 1);
    QFile::setPermissions(folder.filePath("locked"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

// Cut at 200 places each: an error, or between two sections a finding; never a crash.
TEST_F(BadInput, CutShortAnywhere)
{
    for (const char* name : { "wipeout-r2018.dxf", "acad-table-r2013.dxf", "duplicate-handles-r13.dxf",
                              "binary-r13.dxf", "binary-r2018.dxf" }) {
        const std::string whole = readBytes(kDrawings + name);
        int refused = 0;
        for (size_t i = 0; i < 200; ++i) {
            const size_t length = whole.size() * i / 200 + i % 7;
            KcDbDatabase drawing(KcDbDatabase::Content::kEmpty);
            const dxf::Result result = dxf::readDrawing(std::string_view(whole).substr(0, length), drawing);
            const bool noticed = std::any_of(
                drawing.findings().begin(), drawing.findings().end(),
                [](const KcDbFinding& finding) { return finding.number == kFindingTruncated; });
            EXPECT_TRUE(result.ok ? noticed : !result.error.isEmpty())
                << name << " cut at " << length << " of " << whole.size() << " is taken for whole";
            refused += !result.ok;
        }
        EXPECT_GT(refused, 190) << name;
    }
}

// Whoever watches is told of every part of the file once, and is obeyed at any of them.
TEST_F(BadInput, ReadingIsWatchedAndStopped)
{
    const QString path = kDrawings + "wipeout-r2018.dxf";
    std::vector<int> told;
    KcDbDatabase whole(KcDbDatabase::Content::kEmpty);
    ASSERT_TRUE(dxf::readDrawing(path, whole, [&](int percent) {
                    told.push_back(percent);
                    return true;
                }).ok);
    EXPECT_GT(told.size(), 20u);
    EXPECT_LE(told.size(), 110u);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    EXPECT_GE(told.front(), 0);
    EXPECT_GT(told.back(), 90);
    EXPECT_LE(told.back(), 100);
    for (size_t last = 0; last < told.size(); ++last) {
        size_t calls = 0;
        KcDbDatabase part(KcDbDatabase::Content::kEmpty);
        const dxf::Result result = dxf::readDrawing(path, part, [&](int) { return calls++ != last; });
        EXPECT_TRUE(result.stopped && !result.ok && !result.error.isEmpty());
        EXPECT_EQ(calls, last + 1) << "it went on";
    }
}

// Odd, but a drawing: what can be read is read, and can be checked, changed and saved.
TEST_F(BadInput, OddValuesAreSurvived)
{
    const std::string square = groups({ { 10, "0" }, { 20, "0" }, { 10, "5" }, { 20, "5" } });
    std::string nested;
    for (int i = 0; i < 3000; ++i)
        nested += block("B" + std::to_string(i), insert("B" + std::to_string(i + 1)));
    nested += block("B3000", line());
    std::string doubling;
    for (int i = 0; i < 60; ++i)
        doubling += block(
            "D" + std::to_string(i),
            insert("D" + std::to_string(i + 1)) + insert("D" + std::to_string(i + 1)));
    doubling += block("D60", line());
    const std::string count = "2147483647";
    const struct {
        const char* name;
        std::string bytes;
    } rows[] = {
        { "a block inside itself", drawingOf("AC1009", block("A", insert("A") + line()), insert("A")) },
        { "two blocks inside each other",
          drawingOf("AC1009", block("A", insert("B")) + block("B", insert("A")), insert("A")) },
        { "blocks nested 3000 deep", drawingOf("AC1009", nested, insert("B0")) },
        { "blocks that double 60 times", drawingOf("AC1009", doubling, insert("D0")) },
        { "two blocks of one name",
          drawingOf("AC1009", block("A", line()) + block("a", line("7")), insert("A")) },
        { "a reference of nothing", drawingOf("AC1009", "", insert("") + insert("NOWHERE")) },
        { "handle 0", drawingOf("AC1009", "", line("1", "0") + line("2", "0")) },
        { "the highest handle",
          drawingOf("AC1009", "", line("1", "FFFFFFFFFFFFFFFF") + line("2", "7FFFFFFFFFFFFFFF")) },
        { "a handle that is none", drawingOf("AC1009", "", line("1", "XYZ") + line("2", "-1")) },
        { "no number",
          drawingOf("AC1009", "", line("nan") + line("inf") + line("1e400") + line("-1e400") + line("x")) },
        { "tiny and huge", drawingOf("AC1009", "", line("1e308") + line("-1e308") + line("1e-320")) },
        { "a huge count of vertices",
          drawingOf(
              "AC1024", "",
              groups({ { 0, "LWPOLYLINE" },
                       { 8, "0" },
                       { 100, "AcDbEntity" },
                       { 100, "AcDbPolyline" },
                       { 90, count },
                       { 70, "1" } })
                  + square) },
        { "a negative count of vertices",
          drawingOf(
              "AC1024", "",
              groups({ { 0, "LWPOLYLINE" },
                       { 8, "0" },
                       { 100, "AcDbEntity" },
                       { 100, "AcDbPolyline" },
                       { 90, "-5" },
                       { 70, "1" } })
                  + square) },
        { "huge counts in a hatch",
          drawingOf(
              "AC1024", "",
              groups({ { 0, "HATCH" },
                       { 8, "0" },
                       { 100, "AcDbEntity" },
                       { 100, "AcDbHatch" },
                       { 2, "SOLID" },
                       { 70, "1" },
                       { 91, count },
                       { 92, "2" },
                       { 72, "0" },
                       { 73, "1" },
                       { 93, count } })
                  + square + groups({ { 97, count }, { 78, count }, { 98, count } })) },
        { "edges that a hatch does not have",
          drawingOf(
              "AC1024", "",
              groups({ { 0, "HATCH" },
                       { 8, "0" },
                       { 100, "AcDbEntity" },
                       { 100, "AcDbHatch" },
                       { 2, "X" },
                       { 91, "1" },
                       { 92, "0" },
                       { 93, "9" },
                       { 72, "4" },
                       { 94, count },
                       { 95, count },
                       { 96, count },
                       { 40, "0" } })) },
        { "huge counts in a spline",
          drawingOf(
              "AC1024", "",
              groups({ { 0, "SPLINE" },
                       { 8, "0" },
                       { 100, "AcDbEntity" },
                       { 100, "AcDbSpline" },
                       { 70, "0" },
                       { 71, count },
                       { 72, count },
                       { 73, count },
                       { 74, count },
                       { 40, "0" },
                       { 40, "1" } })
                  + square) },
        { "a huge table",
          drawingOf(
              "AC1024", "",
              groups({ { 0, "ACAD_TABLE" },
                       { 8, "0" },
                       { 100, "AcDbEntity" },
                       { 100, "AcDbBlockReference" },
                       { 10, "0" },
                       { 100, "AcDbTable" },
                       { 91, count },
                       { 92, count },
                       { 141, "1" },
                       { 142, "1" } })) },
        { "a huge array of references",
          drawingOf(
              "AC1009", block("A", line()),
              groups({ { 0, "INSERT" },
                       { 8, "0" },
                       { 2, "A" },
                       { 10, "0" },
                       { 20, "0" },
                       { 70, "32767" },
                       { 71, "32767" },
                       { 44, "1e300" },
                       { 45, "1e300" } })) },
        { "vertices without polyline",
          drawingOf(
              "AC1009", "",
              groups({ { 0, "VERTEX" },
                       { 8, "0" },
                       { 10, "1" },
                       { 0, "SEQEND" },
                       { 0, "ATTRIB" },
                       { 2, "T" } })) },
        { "an end of a block without block", drawingOf("AC1009", groups({ { 0, "ENDBLK" } }), line()) },
        { "a line of ten million bytes",
          drawingOf(
              "AC1009", "",
              groups({ { 0, "TEXT" },
                       { 8, "0" },
                       { 10, "0" },
                       { 20, "0" },
                       { 40, "1" },
                       { 1, std::string(10'000'000, 'w') } })) },
        { "a normal without direction",
          drawingOf(
              "AC1009", "",
              groups({ { 0, "CIRCLE" },
                       { 8, "0" },
                       { 10, "0" },
                       { 20, "0" },
                       { 40, "1" },
                       { 210, "0" },
                       { 220, "0" },
                       { 230, "0" } })) },
        { "no section but the entities", section("ENTITIES", line()) + kEof },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto start = std::chrono::steady_clock::now();
        const QString error = exercise(row.bytes);
        // Refusing is fine too, with the place.
        if (!error.isEmpty()) {
            EXPECT_TRUE(error.contains("line")) << error.toStdString();
        }
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        EXPECT_LT(taken.count(), 60.0) << "never ends";
        const Outcome outcome = open(row.bytes);
        EXPECT_FALSE(outcome.crashed);
        EXPECT_EQ(outcome.status, error.isEmpty() ? 0 : 1) << outcome.err.toStdString();
        EXPECT_TRUE(leftovers().isEmpty());
    }
}

// A failed save leaves the file as it was and nothing beside it.
// A program of old closes the mark AcDbEntity at once; layer and colour follow under the mark of the class.
TEST_F(BadInput, CommonValuesUnderTheMarkOfTheClass)
{
    const auto drawing = readDrawing(
        "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nLINE\n5\n2A\n"
        "100\nAcDbEntity\n100\nAcDbLine\n8\nRivers\n62\n3\n370\n50\n6\nByLayer\n10\n1\n20\n2\n11\n3\n21\n4\n"
        "0\nENDSEC\n0\nEOF\n");
    ASSERT_TRUE(drawing);
    const KcDbObjectId id = drawing->findHandle(KcDbHandle(0x2A));
    {
        const KcDbRead<KcDbEntity> line(id);
        ASSERT_TRUE(line);
        EXPECT_EQ(line->layer(), "Rivers");
        EXPECT_EQ(line->color().index, 3);
        EXPECT_EQ(line->lineWeight(), 50);
    }
    // A change takes their place: nothing is said twice.
    KcDbWrite<KcDbEntity>(id)->setColor({ 5, -1 });
    const std::string saved = saveDrawing(*drawing);
    EXPECT_NE(saved.find("AcDbLine\n8\nRivers\n"), std::string::npos) << saved;
    EXPECT_EQ(saved.find("\n62\n3\n"), std::string::npos);
    EXPECT_EQ(saved.find("Rivers", saved.find("Rivers") + 1), std::string::npos);
    const auto again = readDrawing(saved);
    ASSERT_TRUE(again);
    EXPECT_EQ(KcDbRead<KcDbEntity>(again->findHandle(KcDbHandle(0x2A)))->color().index, 5);
}

TEST_F(BadInput, AFullDiskLeavesTheOldFile)
{
    const QString path = folder.filePath("bad.dxf");
    writeBytes(path, readBytes(kDrawings + "all-sorts-r2000.dxf"));
    writeBytes(target(), "as it was");
    QProcess shell;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("VERDELIS_ROOT", folder.filePath("root"));
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    shell.setProcessEnvironment(environment);
    // No file may grow beyond one megabyte: writing stops in the middle, as on a full disk.
    shell.start(
        "/bin/sh",
        { "-c", "trap '' XFSZ; ulimit -f 1024; exec \"$0\" \"$@\"", VERDELIS_PROGRAM, "run", path, "-o",
          target() });
    ASSERT_TRUE(shell.waitForFinished(60000));
    const QString err = QString::fromUtf8(shell.readAllStandardError());
    EXPECT_EQ(shell.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(shell.exitCode(), 1) << err.toStdString();
    EXPECT_TRUE(err.contains("target.dxf")) << err.toStdString();
    EXPECT_EQ(readBytes(target()), "as it was");
    EXPECT_TRUE(leftovers().isEmpty()) << leftovers().join(' ').toStdString();
}
