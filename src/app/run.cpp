// verdelis run DRAWING [-s SCRIPT | -c LINE]... [-o OUT.dxf] [--sheet OUT.xlsx]

#include "program.h"

#include "ed/console.h"
#include "ed/editor.h"
#include "platform/files.h"

#include <QStringDecoder>

namespace program {

namespace {

struct Plan {
    QString drawing;
    QString output; ///< empty: nothing is saved
    KcEdScriptSource script;
    int status = kDone; ///< why nothing can be run
};

// A script is UTF-8, or UTF-16 with a byte order mark.
bool appendScript(KcEdScriptSource& script, const QString& path)
{
    const auto bytes = platform::readWholeFile(path);
    if (!bytes) {
        kcedSayError(bytes.error);
        return false;
    }
    QStringDecoder decoder(QStringConverter::encodingForData(*bytes).value_or(QStringConverter::Utf8));
    const QString text = decoder(*bytes);
    if (decoder.hasError()) {
        kcedSayError(QStringLiteral("The script %1 is not written in UTF-8.").arg(path));
        return false;
    }
    script.append(text, path);
    return true;
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
    KcApDocument* document = openDrawing(plan.drawing);
    if (!document)
        return kFileError;
    {
        const KcEdSourceScope source(plan.script);
        KcEdEditor::instance().run();
    }
    if (!plan.output.isEmpty() && !saveDrawingAs(*document, plan.output))
        return kFileError;
    return plan.script.refusals() > 0 ? kUsageError : kDone;
}

} // namespace program
