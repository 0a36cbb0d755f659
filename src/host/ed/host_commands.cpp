// Undoing, copying, moving, erasing, listing: each a short procedure.

#include "ed/host_commands.h"

#include "ed/command_stack.h"
#include "ed/console.h"
#include "ed/copy_entity.h"
#include "ed/documents.h"
#include "ed/editor.h"
#include "ed/entity_dump.h"
#include "ed/hatch_commands.h"
#include "ed/pick_geometry.h"
#include "ed/plot_command.h"
#include "ed/selection.h"

#include <QJsonDocument>

namespace {

KcDbDatabase& database()
{
    return kcDocManagerPtr()->curDocument()->database();
}

KcEdSelectionSet askSelection()
{
    KcEdSelectionSet set;
    kcedSSGet({}, nullptr, nullptr, {}, set);
    return set;
}

// Members of a selection that may be changed; the user is told about the others.
std::vector<KcDbObjectId> changeable(const KcEdSelectionSet& set)
{
    KcEdPickGeometry layers(1.0);
    std::vector<KcDbObjectId> ids;
    for (const KcDbObjectId id : set.ids())
        if (const KcDbRead<KcDbEntity> entity(id); entity && !layers.isOnLockedLayer(*entity))
            ids.push_back(id);
    if (const size_t locked = set.size() - ids.size(); locked > 0)
        kcedSay(QStringLiteral("%1 on a locked layer").arg(locked));
    return ids;
}

// Base point and second point of a displacement; Enter at the second takes the first as the displacement
// itself.
std::optional<KcGeVector3d> askDisplacement()
{
    kcedInitGet(KcEdPrompt::kNoEmpty);
    KcGePoint3d base, second;
    if (kcedGetPoint(nullptr, QStringLiteral("\nBase point: "), base) != kcedNormal)
        return {};
    const KcEdStatus status
        = kcedGetPoint(&base, QStringLiteral("\nSecond point <use the first as displacement>: "), second);
    if (status == kcedCancel)
        return {};
    const KcGeVector3d inUcs = status == kcedNormal ? second - base : base.asVector();
    return database().ucsToWorld() * inUcs;
}

void undo()
{
    const QString name = database().undo().undo();
    kcedSay(name.isEmpty() ? QStringLiteral("Nothing to undo") : name);
}

void redo()
{
    const QString name = database().undo().redo();
    kcedSay(name.isEmpty() ? QStringLiteral("Nothing to redo") : name);
}

void eraseObjects()
{
    for (const KcDbObjectId id : changeable(askSelection()))
        if (KcDbWrite<KcDbEntity> entity(id); entity)
            entity->erase();
}

void moveObjects()
{
    const auto ids = changeable(askSelection());
    if (ids.empty())
        return;
    const auto displacement = askDisplacement();
    if (!displacement)
        return;
    size_t failed = 0;
    for (const KcDbObjectId id : ids)
        if (KcDbWrite<KcDbEntity> entity(id);
            !entity || entity->transformBy(KcGeMatrix3d::translation(*displacement)) != Kcad::eOk)
            ++failed;
    if (failed > 0)
        kcedSay(QStringLiteral("%1 could not be moved: the program does not know their kind").arg(failed));
}

void copyObjects()
{
    const KcEdSelectionSet set = askSelection();
    if (set.isEmpty())
        return;
    const auto displacement = askDisplacement();
    if (!displacement)
        return;
    size_t failed = 0;
    for (const KcDbObjectId id : set.ids())
        if (kcedCopyEntity(id, KcGeMatrix3d::translation(*displacement)).isNull())
            ++failed;
    if (failed > 0)
        kcedSay(QStringLiteral("%1 could not be copied: the program does not know their kind").arg(failed));
}

void regenerate()
{
    kcedRegenerate();
}

void listObjects()
{
    const KcEdSelectionSet set = askSelection();
    for (const KcDbObjectId id : set.ids())
        if (const KcDbRead<KcDbEntity> entity(id); entity)
            kcedSay(QString::fromUtf8(QJsonDocument(kcedDumpEntity(*entity)).toJson(QJsonDocument::Compact)));
}

} // namespace

void kcedRegisterHostCommands()
{
    static const QString group = QStringLiteral("KCAD");
    struct Row {
        const char* name;
        int flags;
        void (*handler)();
        const char* purpose;
    };
    static constexpr Row rows[] = {
        { "COPY", 2, copyObjects, "copy objects by a displacement" },
        { "ERASE", 2, eraseObjects, "erase objects" },
        { "HATCH", 2, kcedHatch, "fill closed outlines with a pattern" },
        { "LIST", 2, listObjects, "print the values of objects" },
        { "MOVE", 2, moveObjects, "move objects by a displacement" },
        { "PLOT", KcEdCommand::kNoUndoStep, kcedPlotCommand, "write the drawing, or a part of it, to a PDF, PNG or SVG file" },
        { "REDO", KcEdCommand::kNoUndoStep, redo, "bring back what was undone last" },
        { "REGEN", 0, regenerate, "draw the drawing anew" },
        { "REGENALL", 0, regenerate, "draw all views anew" },
        { "U", KcEdCommand::kNoUndoStep, undo, "take back the last command" },
        { "UNDO", KcEdCommand::kNoUndoStep, undo, "take back the last command" },
        { "WIPEOUT", 2, kcedWipeout, "mask an area, or show and hide the frames of masks" },
    };
    KcEdCommandStack& stack = kcedCommandStack();
    for (const auto& command : stack.commands())
        if (command->group == group)
            return;
    for (const Row& row : rows) {
        const QString name = QString::fromLatin1(row.name);
        stack.addCommand(group, name, name, row.flags, row.handler);
        stack.setPurpose(group, name, QString::fromLatin1(row.purpose));
    }
}

QString kcedCommand(const QStringList& texts)
{
    if (texts.isEmpty())
        return {};
    const KcEdCommand* command = kcedCommandStack().lookup(texts.first());
    if (!command)
        return QStringLiteral("Unknown command \"%1\".").arg(texts.first());
    KcEdListSource answers(texts.mid(1));
    const KcEdSourceScope scope(answers);
    if (!kcedCommandStack().run(*command))
        return QStringLiteral("%1 failed.").arg(command->globalName);
    return answers.refusal();
}
