// verdelis [DRAWING]: the window.

#include "program.h"

#include "ed/console.h"
#include "ed/editor.h"
#include "ui/main_window.h"

#include <QFileInfo>
#include <QGuiApplication>

namespace program {

namespace {

bool hasDisplay = true;

} // namespace

void noteMissingDisplay()
{
    hasDisplay = false;
}

int window(const Arguments& arguments)
{
    if (const QString option = strayOption(arguments); !option.isEmpty())
        return wrongUsage(QStringLiteral("There is no option %1.").arg(option));
    if (arguments.size() > 1)
        return wrongUsage(QStringLiteral("The window opens one drawing."));
    if (arguments.size() == 1 && !QFileInfo(arguments.first()).isFile())
        return wrongUsage(QStringLiteral("%1 is neither a sub-command nor a drawing that is there.")
                              .arg(arguments.first()));
    if (!hasDisplay)
        return wrongUsage(QStringLiteral(
            "There is no display for the window; `verdelis run` and `verdelis shell` work without one."));
    if (!prepareCommands())
        return kFileError;
    // By this name desktops find the entry of their menus that belongs to the window.
    QGuiApplication::setDesktopFileName(QStringLiteral("verdelis"));
    KcUiMainWindow window;
    window.show();
    const KcEdSourceScope source(window.source());
    const QString drawing = arguments.value(0);
    if (!window.offerLostWork(drawing) && (drawing.isEmpty() || !window.openDrawing(drawing)))
        window.newDrawing();
    KcEdEditor::instance().run();
    return kDone;
}

} // namespace program
