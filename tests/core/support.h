// What the tests of the companion share: a drawing in memory or from a file, a root of the application's
// files, and saving and loading.
#pragma once

#include "db/block_reference.h"
#include "db/dictionary.h"
#include "db/tables.h"
#include "dxf/drawing_file.h"
#include "ed/documents.h"
#include "platform/app_root.h"
#include "platform/diagnostics.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

namespace core_test {

/// A root of its own with the shipped files, for the length of a scope.
class Root {
public:
    Root()
    {
        platform::setAppRoot(m_folder.path() + QStringLiteral("/root"));
        EXPECT_TRUE(platform::fillRoot(
            platform::appRoot(), QStringLiteral(VERDELIS_SOURCE_DIR) + QStringLiteral("/share/verdelis")));
        m_before = platform::setDiagnosticHandler([this](const QString& text) { said += text + u'\n'; });
    }
    ~Root()
    {
        platform::setDiagnosticHandler(m_before);
        platform::setAppRoot({});
    }
    QString path(const QString& name) const { return platform::appRoot() + QStringLiteral("/Sys/") + name; }
    void write(const QString& name, const QByteArray& content) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QString said; ///< through the diagnostics

private:
    QTemporaryDir m_folder;
    platform::DiagnosticHandler m_before;
};

/// A drawing that is the current document for the length of a scope: empty, or one of tests/data/drawings.
class Drawing {
public:
    explicit Drawing(const QString& file = {})
        : document(kcDocManagerPtr()->open(std::make_unique<KcDbDatabase>(
            file.isEmpty() ? KcDbDatabase::Content::kNewDrawing : KcDbDatabase::Content::kEmpty)))
        , database(document.database())
    {
        if (file.isEmpty())
            return;
        const dxf::Result result
            = dxf::readDrawing(QStringLiteral(VERDELIS_TEST_DATA "/drawings/") + file, database);
        EXPECT_TRUE(result.ok) << qPrintable(result.error);
    }
    ~Drawing() { kcDocManagerPtr()->close(document); }

    KcDbObjectId addBlock(const QString& name, int flags = 0)
    {
        auto block = std::make_unique<KcDbBlockTableRecord>();
        block->initName(name);
        block->data().blockFlags = flags;
        return KcDbWrite<KcDbSymbolTable>(database.blockTable())->add(std::move(block));
    }
    static KcDbObjectId append(KcDbObjectId block, std::unique_ptr<KcDbEntity> entity)
    {
        KcDbDatabase* database = block.database();
        entity->setLayer(kcdbFindRecord(database->layerTable(), QStringLiteral("0")));
        return KcDbRead<KcDbBlockTableRecord>(block)->appendEntity(std::move(entity));
    }
    KcDbObjectId add(std::unique_ptr<KcDbEntity> entity)
    {
        return append(database.modelSpace(), std::move(entity));
    }
    KcDbObjectId insert(KcDbObjectId block, KcGePoint3d at = {})
    {
        return add(std::make_unique<KcDbBlockReference>(at, block));
    }
    std::string saved()
    {
        std::string bytes;
        const dxf::Result result = dxf::saveDrawing(database, bytes);
        EXPECT_TRUE(result.ok) << qPrintable(result.error);
        return bytes;
    }

    KcApDocument& document;
    KcDbDatabase& database;
};

/// The drawing as it is when it was saved and opened again.
inline std::unique_ptr<KcDbDatabase> reopened(Drawing& drawing)
{
    auto database = std::make_unique<KcDbDatabase>(KcDbDatabase::Content::kEmpty);
    const dxf::Result result = dxf::readDrawing(drawing.saved(), *database);
    EXPECT_TRUE(result.ok) << qPrintable(result.error);
    return database;
}

inline KcDbObjectId same(KcDbDatabase& database, KcDbObjectId id)
{
    return database.findHandle(id.handle());
}

} // namespace core_test
