// The program: chooses the sub-command.

#include "program.h"

#include "ed/console.h"
#include "platform/app_root.h"
#include "widgets/theme.h"

#include <QApplication>

namespace {

const char kHelp[] =
    R"(verdelis: landscape planting tools for 2D CAD drawings

verdelis [DRAWING]                                open the window
verdelis run DRAWING [-s SCRIPT | -c LINE]... [-o OUT.dxf]
                                                  run without a window; several -s and -c in order
verdelis shell DRAWING [-o OUT.dxf]               the same prompts on the terminal
verdelis plot DRAWING OUT.png|.pdf|.svg [--window X1,Y1,X2,Y2] [--layout NAME] [--size WxH] [--scale 1:N] [--paper A1]
                                                  a picture of the drawing: all of it, a window or a layout
verdelis audit DRAWING [-o OUT.dxf]               numbered findings, errors apart from fixes; -o saves the repaired drawing
verdelis dump DRAWING [--type T] [--layer L] [HANDLE...]
                                                  entities as JSON lines, tags included
verdelis commands                                 every command that exists, with its purpose
verdelis --help, --version

--root DIR goes with every one of them: the folder with settings and data to work on.
Exit status: 0 done; 1 a drawing or script could not be read, or a result not be written;
2 wrong usage, or a script line that nothing took.
)";

// Passes on what the toolkit says, but for its remarks on a variable that servers and containers do not set,
// and on what it cannot do without a display.
void passOn(QtMsgType, const QMessageLogContext&, const QString& text)
{
    if (!text.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR not set"))
        && !text.startsWith(QLatin1String("This plugin does not support")))
        kcedSayError(text);
}

int runSubCommand(QStringList arguments)
{
    using namespace program;
    if (arguments.contains(QStringLiteral("--root"))) {
        const auto root = takeOption(arguments, QStringLiteral("--root"));
        if (!root || root->isEmpty())
            return wrongUsage(QStringLiteral("--root lacks its folder."));
        platform::setAppRoot(*root);
    }
    const QString name = arguments.isEmpty() ? QString() : arguments.takeFirst();
    if (name == u"--help" || name == u"-h") {
        kcedPrint(QString::fromUtf8(kHelp));
        return kDone;
    }
    if (name == u"--version") {
        kcedSay(QStringLiteral("verdelis ") + QLatin1String(kVersion));
        return kDone;
    }

    struct Row {
        const char* name;
        int (*body)(const Arguments&);
    };
    static constexpr Row rows[] = {
        { "run", run },   { "shell", shell }, { "plot", plot },
        { "dump", dump }, { "audit", audit }, { "commands", listCommands },
    };
    for (const Row& row : rows)
        if (name == QLatin1String(row.name))
            return row.body(arguments);
    if (name.startsWith(QLatin1Char('-')))
        return wrongUsage(QStringLiteral("There is no option %1.").arg(name));
    if (!name.isEmpty())
        arguments.prepend(name);
    return window(arguments);
}

} // namespace

int main(int argc, char** argv)
{
    // Dialogs and fonts work without a display too.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        program::noteMissingDisplay();
    }
    qInstallMessageHandler(passOn);
    QApplication application(argc, argv);
    application.setOrganizationName(QStringLiteral("verdelis")); // the folder of the settings
    application.setApplicationName(QStringLiteral("verdelis"));
    kcuiSetTheme(kcuiThemeOfEnvironment());
    return runSubCommand(application.arguments().mid(1));
}
