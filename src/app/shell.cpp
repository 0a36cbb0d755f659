// verdelis shell DRAWING [-o OUT.dxf]: the prompts on the terminal.

#include "program.h"

#include "ed/console.h"
#include "ed/editor.h"

#include <iostream>
#include <unistd.h>

namespace program {

int shell(const Arguments& given)
{
    Arguments arguments = given;
    const std::optional<QString> output = takeOption(arguments, QStringLiteral("-o"));
    if (const QString option = strayOption(arguments); !option.isEmpty())
        return wrongUsage(
            QStringLiteral("shell does not know the option %1, or its value is missing.").arg(option));
    if (arguments.size() != 1)
        return wrongUsage(QStringLiteral("shell takes one drawing."));
    if (output)
        if (const QString reason = whyNotWritable(*output); !reason.isEmpty())
            return fileError(reason);
    if (!prepareCommands())
        return kFileError;
    if (!openDrawing(arguments.first()))
        return kFileError;
    {
        KcEdStreamSource terminal(std::cin, isatty(STDIN_FILENO));
        const KcEdSourceScope source(terminal);
        KcEdEditor::instance().run();
    }
    if (output && !saveDrawingAs(*kcDocManagerPtr()->curDocument(), *output))
        return kFileError;
    return kDone;
}

} // namespace program
