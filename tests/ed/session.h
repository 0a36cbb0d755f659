// A drawing in memory and a script that runs on it, with what it printed.
#pragma once

#include "db/block_reference.h"
#include "db/curves.h"
#include "db/tables.h"
#include "ed/command_stack.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "ed/editor.h"
#include "ed/host_commands.h"
#include "ed/pick_geometry.h"
#include "ed/selection.h"

#include <QStringList>

namespace ed_test {

/// Opens an empty drawing for the length of a test and catches what is printed.
class Session {
public:
    Session()
        : document(kcDocManagerPtr()->open(std::make_unique<KcDbDatabase>()))
        , database(document.database())
    {
        kcedRegisterHostCommands();
        m_output = kcedSetOutput([this](const QString& text) { printed += text; });
        m_errors = kcedSetErrorOutput([this](const QString& text) { errors += text + QLatin1Char('\n'); });
    }
    ~Session()
    {
        kcedSetOutput(m_output);
        kcedSetErrorOutput(m_errors);
        kcedCommandStack().removeGroup(QStringLiteral("TEST"));
        kcDocManagerPtr()->close(document);
    }

    /// Runs the lines; how many nothing took.
    int run(const QStringList& lines)
    {
        KcEdScriptSource script;
        script.append(lines.join(QLatin1Char('\n')) + QLatin1Char('\n'), QStringLiteral("test"));
        const KcEdSourceScope scope(script);
        KcEdEditor::instance().run();
        return script.refusals();
    }

    /// Runs the lines as answers to a command of one test.
    int run(std::function<void()> command, const QStringList& answers, int flags = 0)
    {
        kcedCommandStack().removeGroup(QStringLiteral("TEST"));
        kcedCommandStack().addCommand(
            QStringLiteral("TEST"), QStringLiteral("TESTED"), QStringLiteral("TESTED"), flags,
            std::move(command));
        return run(QStringList{ QStringLiteral("TESTED") } + answers);
    }

    KcDbObjectId add(std::unique_ptr<KcDbEntity> entity, const QString& layer = QStringLiteral("0"))
    {
        entity->setLayer(kcdbFindRecord(database.layerTable(), layer));
        return KcDbRead<KcDbBlockTableRecord>(database.currentSpace())->appendEntity(std::move(entity));
    }
    KcDbObjectId
    addLine(double x1, double y1, double x2, double y2, const QString& layer = QStringLiteral("0"))
    {
        return add(std::make_unique<KcDbLine>(KcGePoint3d{ x1, y1, 0 }, KcGePoint3d{ x2, y2, 0 }), layer);
    }
    KcDbObjectId addLayer(const QString& name)
    {
        auto layer = std::make_unique<KcDbLayerTableRecord>();
        layer->initName(name);
        return KcDbWrite<KcDbSymbolTable>(database.layerTable())->add(std::move(layer));
    }
    KcDbObjectId addBlock(const QString& name)
    {
        auto block = std::make_unique<KcDbBlockTableRecord>();
        block->initName(name);
        return KcDbWrite<KcDbSymbolTable>(database.blockTable())->add(std::move(block));
    }
    static QString handle(KcDbObjectId id)
    {
        return QLatin1Char('#') + QString::number(id.handle(), 16).toUpper();
    }

    KcApDocument& document;
    KcDbDatabase& database;
    QString printed, errors;

private:
    KcEdOutput m_output, m_errors;
};

} // namespace ed_test
