// What tests of whole commands share: the program, run on a drawing with a script, and the drawing that comes
// out.
#pragma once

#include "core/block.h"
#include "core/entity_tags.h"
#include "db/table.h"
#include "dxf/drawing_file.h"
#include "core/tags.h"
#include "statistics/table_builder.h"

#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <map>

/// Readable in messages of failed tests.
inline std::ostream& operator<<(std::ostream& stream, const QString& text)
{
    return stream << text.toStdString();
}

namespace end_to_end {

struct Outcome {
    int status = -1;
    QString out, err;
};

inline std::unique_ptr<KcDbDatabase> open(const QString& path)
{
    auto drawing = std::make_unique<KcDbDatabase>(KcDbDatabase::Content::kEmpty);
    const auto result = dxf::readDrawing(path, *drawing);
    EXPECT_TRUE(result.ok) << result.error;
    return drawing;
}

inline QByteArray bytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing ") + path.toUtf8();
}

/// The entities of model space that can be opened as one class.
template <class T> std::vector<KcDbObjectId> entities(const KcDbDatabase& drawing)
{
    std::vector<KcDbObjectId> ids;
    const KcDbRead<KcDbBlockTableRecord> space(drawing.modelSpace());
    for (const KcDbObjectId id : *space)
        if (KcDbRead<T>(id))
            ids.push_back(id);
    return ids;
}

/// Names and counts, in the order of names.
using Counts = std::map<QString, int>;

/// References in model space by the names of their blocks, taken one by one.
inline Counts referencesByName(const KcDbDatabase& drawing)
{
    Counts counts;
    for (const KcDbObjectId id : entities<KcDbBlockReference>(drawing)) {
        const KcDbObjectId block = KcDbRead<KcDbBlockReference>(id)->blockTableRecord();
        const KcDbRead<KcDbBlockTableRecord> definition(block);
        if (!KcDbRead<KcDbTable>(id) && definition && !definition->isFromExternalReference())
            ++counts[blockDefinitionName(block)];
    }
    return counts;
}

/// The tables of model space that carry the tag of a tree quantity table.
inline std::vector<KcDbObjectId> treeTables(const KcDbDatabase& drawing)
{
    std::vector<KcDbObjectId> tables = entities<KcDbTable>(drawing);
    std::erase_if(
        tables, [](KcDbObjectId id) { return entityTag(id, tags::entityType) != tags::kind::treeTable; });
    return tables;
}

/// Names and counts of a table's data rows; a name that stands twice fails.
inline Counts countsOfTable(KcDbObjectId id)
{
    Counts counts;
    const KcDbRead<KcDbTable> table(id);
    int column = 0;
    while (column < table->numColumns() && table->columnName(column) != u"数量")
        ++column;
    EXPECT_LT(column, table->numColumns());
    for (int row = findHeaderRows(*table).count; row < table->numRows(); ++row) {
        const QString name = table->plainText(row, 2);
        EXPECT_TRUE(counts.try_emplace(name, table->plainText(row, column).toInt()).second) << name;
    }
    return counts;
}

inline QString handle(KcDbObjectId id)
{
    return '#' + QString::number(id.handle(), 16).toUpper();
}

/// Runs the program on an application root of its own, which vanishes with the test.
class EndToEnd : public ::testing::Test {
protected:
    Outcome program(const QStringList& arguments)
    {
        QProcess process;
        process.start(VERDELIS_PROGRAM, arguments + QStringList{ "--root", folder.filePath("root") });
        process.closeWriteChannel();
        if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
            return {};
        return { process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                 QString::fromUtf8(process.readAllStandardError()) };
    }
    /// Plays lines on a drawing; what comes out lies in `result`, or nothing does.
    Outcome play(const QString& drawing, const QStringList& lines)
    {
        QFile::remove(result);
        QFile script(folder.filePath("script.scr"));
        EXPECT_TRUE(script.open(QIODevice::WriteOnly));
        script.write(lines.join('\n').toUtf8() + '\n');
        script.close();
        return program({ "run", drawing, "-s", script.fileName(), "-o", result });
    }
    /// Plays lines and keeps what comes out as a drawing for further plays.
    QString prepared(const QString& drawing, const QStringList& lines)
    {
        EXPECT_EQ(play(drawing, lines).status, 0);
        const QString kept = folder.filePath("prepared.dxf");
        QFile::remove(kept);
        EXPECT_TRUE(QFile::copy(result, kept));
        return kept;
    }
    static QString data(const QString& name)
    {
        return QStringLiteral(VERDELIS_TEST_DATA "/drawings/") + name;
    }

    const QTemporaryDir folder;
    const QString result = folder.filePath("result.dxf");
    const QString plan = QStringLiteral(VERDELIS_SOURCE_DIR "/examples/planting-plan.dxf");
};

} // namespace end_to_end
