// verdelis run DRAWING [-s SCRIPT | -c LINE]... [-o OUT.dxf] [--sheet OUT.xlsx]

#include "program.h"

#include "ed/console.h"
#include "ed/document_files.h"
#include "ed/editor.h"

namespace program {

namespace {

struct Plan {
    QString drawing;
    QString output; ///< empty: nothing is saved
    KcEdScriptSource script;
    int status = kDone; ///< why nothing can be run
};

bool appendScript(KcEdScriptSource& script, const QString& path)
{
    const auto text = kcedReadScript(path);
    if (text)
        script.append(*text, path);
    else
        kcedSayError(text.error);
    return text.ok();
}

int readPlan(Arguments arguments, Plan& plan)
{
    Arguments places;
    int lines = 0;
    while (!arguments.isEmpty()) {
        const QString argument = arguments.takeFirst();
        const bool takesValue = QStringList{ "-s", "-c", "-o", "--sheet" }.contains(argument);
        if (takesValue && arguments.isEmpty())
            return wrongUsage(QStringLiteral("%1 lacks its value.").arg(argument));
        if (argument == u"-s") {
            if (!appendScript(plan.script, arguments.takeFirst()))
                return kFileError;
        } else if (argument == u"-c") {
            plan.script.append(arguments.takeFirst() + QLatin1Char('\n'), QStringLiteral("-c"), ++lines);
        } else if (argument == u"-o") {
            plan.output = arguments.takeFirst();
            if (const QString reason = whyNotWritable(plan.output); !reason.isEmpty())
                return fileError(reason);
        } else if (argument == u"--sheet") {
            return wrongUsage(
                QStringLiteral("--sheet is not there yet: no command writes spreadsheets so far."));
        } else if (argument.startsWith(QLatin1Char('-')) && argument.size() > 1) {
            return wrongUsage(QStringLiteral("run does not know the option %1.").arg(argument));
        } else {
            places += argument;
        }
    }
    if (places.size() != 1)
        return wrongUsage(QStringLiteral("run takes one drawing."));
    plan.drawing = places.first();
    return kDone;
}

} // namespace

int run(const Arguments& arguments)
{
    Plan plan;
    if (const int status = readPlan(arguments, plan); status != kDone)
        return status;
    if (!prepareCommands())
        return kFileError;
    if (!openDrawing(plan.drawing))
        return kFileError;
    {
        const KcEdSourceScope source(plan.script);
        KcEdEditor::instance().run();
    }
    // A script may have opened another one.
    if (!plan.output.isEmpty() && !saveDrawingAs(*kcDocManagerPtr()->curDocument(), plan.output))
        return kFileError;
    return plan.script.refusals() > 0 ? kUsageError : kDone;
}

} // namespace program
