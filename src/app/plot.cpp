// verdelis plot DRAWING OUT.png|.pdf|.svg [--window X1,Y1,X2,Y2] [--layout NAME] [--size WxH] [--scale 1:N]
// [--paper A1]

#include "program.h"

#include "ed/plot_command.h"

namespace program {

namespace {

// Four numbers; nothing when they are others.
std::optional<KcGeExtents2d> windowOf(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char(','));
    double values[4];
    if (parts.size() != 4)
        return {};
    for (int i = 0; i < 4; ++i) {
        bool isNumber = false;
        values[i] = parts[i].trimmed().toDouble(&isNumber);
        if (!isNumber || !std::isfinite(values[i]))
            return {};
    }
    KcGeExtents2d box;
    box.addPoint({ values[0], values[1] });
    box.addPoint({ values[2], values[3] });
    return box.max.x > box.min.x && box.max.y > box.min.y ? std::optional(box) : std::nullopt;
}

std::optional<QSize> sizeOf(const QString& text)
{
    const QStringList parts = text.toLower().split(QLatin1Char('x'));
    const int width = parts.value(0).toInt(), height = parts.value(1).toInt();
    return parts.size() == 2 && width > 0 && height > 0 ? std::optional(QSize(width, height)) : std::nullopt;
}

} // namespace

int plot(const Arguments& given)
{
    Arguments arguments = given;
    KcGiPlotRequest request;
    if (const auto text = takeOption(arguments, QStringLiteral("--window"))) {
        request.window = windowOf(*text);
        if (!request.window)
            return wrongUsage(
                QStringLiteral("--window takes two corners as X1,Y1,X2,Y2, not \"%1\".").arg(*text));
    }
    if (const auto text = takeOption(arguments, QStringLiteral("--layout")))
        request.layout = *text;
    if (const auto text = takeOption(arguments, QStringLiteral("--size"))) {
        request.pixels = sizeOf(*text);
        if (!request.pixels)
            return wrongUsage(QStringLiteral("--size takes pixels as WIDTHxHEIGHT, not \"%1\".").arg(*text));
    }
    if (const auto text = takeOption(arguments, QStringLiteral("--scale"))) {
        request.scale = kcgiScale(*text);
        if (!request.scale)
            return wrongUsage(QStringLiteral("--scale takes a scale as 1:200, not \"%1\".").arg(*text));
    }
    if (const auto text = takeOption(arguments, QStringLiteral("--paper"))) {
        request.paper = kcgiPaper(*text);
        if (!request.paper)
            return wrongUsage(
                QStringLiteral("There is no paper \"%1\": A0 to A10, B0 to B10, Letter, Tabloid or "
                               "millimetres such as 420x297.")
                    .arg(*text));
    }
    if (const QString option = strayOption(arguments); !option.isEmpty())
        return wrongUsage(
            QStringLiteral("plot does not know the option %1, or its value is missing.").arg(option));
    if (arguments.size() != 2)
        return wrongUsage(QStringLiteral("plot takes a drawing and the file to write."));
    request.path = arguments[1];
    if (!kcgiPlotFormats().contains(QFileInfo(request.path).suffix().toLower()))
        return wrongUsage(
            QStringLiteral("A plot is a .png, .pdf or .svg file, not \"%1\".").arg(request.path));
    if (const QString reason = whyNotWritable(request.path); !reason.isEmpty())
        return fileError(reason);
    KcApDocument* document = openDrawing(arguments[0]);
    if (!document)
        return kFileError;
    request.drawingUnitsPerMillimetre = kcgiUnitsPerMillimetre(document->database());

    const KcGiPlotResult result = kcedPlot(document->database(), request);
    if (!result.error.isEmpty())
        return fileError(result.error);
    return kDone;
}

} // namespace program
