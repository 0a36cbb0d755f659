// NEW, OPEN, SAVE, SAVEAS, QUIT, SCRIPT. A drawing changes places with another when the command that asked
// for it has ended.

#include "ed/commands/commands.h"
#include "ed/commands/tools.h"

#include "ed/command_stack.h"
#include "ed/document_files.h"
#include "ed/documents.h"
#include "ed/editor.h"

#include <QFileInfo>
#include <QWidget>

using namespace hand;

namespace {

KcApDocument& document()
{
    return *kcDocManagerPtr()->curDocument();
}

/// False, and said, when the command runs inside another one, whose drawing must stay.
bool standsAlone()
{
    const KcEdCommandStack& stack = kcedCommandStack();
    if (stack.depth() <= 1 && KcEdEditor::instance().source())
        return true;
    kcedSay(QStringLiteral("%1 cannot be used inside another command.").arg(stack.active()->globalName));
    return false;
}

/// Does something when the running command has ended, before anything else.
void afterThisCommand(std::function<void()> body)
{
    KcEdEditor::instance().source()->giveBack(KcEdCall{ std::move(body) });
}

} // namespace

void hand::newDrawing()
{
    if (standsAlone() && kcedMayDiscard(document()))
        afterThisCommand([] { kcedNewDrawing(); });
}

void hand::openDrawing()
{
    if (!standsAlone() || !kcedMayDiscard(document()))
        return;
    const QString path = kcedAskDrawingFile(QStringLiteral("Drawing to open"), true, database().fileName());
    if (!path.isEmpty())
        afterThisCommand([path] { kcedOpenDrawing(path); });
}

void hand::saveDrawing()
{
    if (!standsAlone())
        return;
    QString path = database().fileName();
    if (!document().isModified() && QFileInfo::exists(path))
        return kcedSay(QStringLiteral("Nothing has changed since %1 was saved.").arg(path));
    if (path.isEmpty())
        path = kcedAskDrawingFile(QStringLiteral("Save the drawing as"), false, {});
    if (!path.isEmpty())
        afterThisCommand([path] { kcedSaveDrawing(document(), path); });
}

void hand::saveDrawingAs()
{
    if (!standsAlone())
        return;
    const QString own = database().fileName();
    const QString path = kcedAskDrawingFile(QStringLiteral("Save the drawing as"), false, own);
    if (path.isEmpty())
        return;
    // A dialog has asked about it; a typed name has not.
    if (!kcDocManagerPtr()->mainWindow() && path != own && QFileInfo::exists(path)) {
        const auto replaces = askYesNo(QStringLiteral("%1 exists. Replace it?").arg(path), false);
        if (!replaces || !*replaces)
            return;
    }
    afterThisCommand([path] { kcedSaveDrawing(document(), path); });
}

void hand::quit()
{
    if (!standsAlone())
        return;
    if (QWidget* window = kcDocManagerPtr()->mainWindow()) // asks by itself
        afterThisCommand([window] { window->close(); });
    else if (kcedMayDiscard(document()))
        KcEdEditor::instance().quit();
}

void hand::script()
{
    if (!standsAlone())
        return;
    const QString path = kcedAskScriptFile();
    if (path.isEmpty())
        return;
    const auto text = kcedReadScript(path);
    if (!text)
        return kcedSay(text.error);
    QString lines = *text;
    lines.remove(u'\r');
    if (lines.endsWith(u'\n'))
        lines.chop(1);
    KcEdEditor::instance().source()->insert(lines.split(u'\n'));
}
