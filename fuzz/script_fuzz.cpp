// Lines against prompts of every kind and against the command line: nothing that is typed may bring the
// program down.

#include "db/block_table_record.h"
#include "db/curves.h"
#include "ed/command_stack.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "ed/editor.h"
#include "ed/host_commands.h"
#include "ed/selection.h"

#include <cstdlib>

namespace {

// Asks one question of each kind in turn until one is cancelled; bounded, since a source that is empty
// cancels.
void askEverything()
{
    for (;;) {
        KcGePoint3d p;
        double d = 0.0;
        int i = 0;
        QString text;
        KcDbObjectId id;
        KcEdSelectionSet set;
        kcedInitGet(0, QStringLiteral("Dimension LType eXit 1 10 _ A B C D E"));
        if (kcedGetPoint(nullptr, QStringLiteral("\npoint "), p) == kcedCancel)
            return;
        kcedInitGet(7);
        if (kcedGetDist(&p, QStringLiteral("\ndistance "), d) == kcedCancel)
            return;
        if (kcedGetInt(QStringLiteral("\ninteger "), i) == kcedCancel)
            return;
        if (kcedGetString(true, QStringLiteral("\ntext "), text) == kcedCancel)
            return;
        if (kcedEntSel(QStringLiteral("\nentity "), id, p) == kcedCancel)
            return;
        if (kcedSSGet({}, nullptr, nullptr, {}, set) == kcedCancel)
            return;
        if (kcedGrRead().kind == KcEdTrack::Kind::Cancel)
            return;
        KcEdSelectionSet filtered;
        kcedSSGet(QStringLiteral("A"), nullptr, nullptr, { { 8, text } }, filtered);
    }
}

KcApDocument& freshDrawing()
{
    KcApDocument& document = kcDocManagerPtr()->open(std::make_unique<KcDbDatabase>());
    const KcDbRead<KcDbBlockTableRecord> space(document.database().modelSpace());
    space->appendEntity(std::make_unique<KcDbLine>(KcGePoint3d{ 0, 0, 0 }, KcGePoint3d{ 10, 10, 0 }));
    space->appendEntity(std::make_unique<KcDbCircle>(KcGePoint3d{ 5, 5, 0 }, 3.0));
    return document;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const bool ready = [] {
        kcedRegisterHostCommands();
        kcedCommandStack().addCommand(
            QStringLiteral("FUZZ"), QStringLiteral("ASK"), QStringLiteral("ASK"), 2, askEverything);
        kcedSetOutput([](const QString&) {});
        kcedSetErrorOutput([](const QString&) {});
        return true;
    }();
    (void)ready;
    KcApDocument& document = freshDrawing();
    {
        KcEdScriptSource script;
        script.append(
            QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size)), QStringLiteral("fuzz"));
        const KcEdSourceScope scope(script);
        KcEdEditor::instance().run();
    }
    // Whatever was typed, the drawing goes back to where it was.
    while (document.database().undo().canUndo())
        document.database().undo().undo();
    const KcDbRead<KcDbBlockTableRecord> space(document.database().modelSpace());
    const size_t count = space->entityIds().size();
    if (count != 2 || document.lockCount() != 0)
        std::abort();
    kcDocManagerPtr()->close(document);
    return 0;
}
