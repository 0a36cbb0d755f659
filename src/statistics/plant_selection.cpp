// The loop of two prompts by which the user selects symbols or labels.

#include "statistics/plant_selection.h"

#include "core/prompts.h"
#include "core/selection.h"
#include "frame/module.h"

namespace {

using Ids = std::vector<KcDbObjectId>;

// What can be counted as symbols: references, those of external references left out.
Ids symbolsOf(const Ids& selected)
{
    Ids references;
    CSs(selected).GetEntitiesOfType(QStringLiteral("AcDbBlockReference"), references);
    CSs symbols(std::move(references));
    symbols.RemoveExternalReference();
    return symbols.ids();
}

Ids textsOf(const Ids& selected)
{
    Ids texts;
    CSs(selected).GetTexts(texts);
    return texts;
}

} // namespace

PlantSelection selectPlants()
{
    using Mode = PlantSelection::Mode;
    for (Mode mode = Mode::Symbols;;) {
        const bool symbols = mode == Mode::Symbols;
        Ids selected;
        QString keyword;
        if (GetSelectionOrString(
                selected, keyword,
                localised(
                    symbols ? QStringLiteral("SELECTTREEORDIMENSION")
                            : QStringLiteral("SELECTDIMENSIONORTREE")),
                symbols ? QStringLiteral("Dimension _ Dimension") : QStringLiteral("Block _ Block"),
                symbols ? kcutBuildList(0, "INSERT") : kcutBuildList(0, "TEXT,MTEXT")))
            return { mode, symbols ? symbolsOf(selected) : textsOf(selected) };
        if (symbols && keyword == u"D")
            mode = Mode::Labels;
        else if (!symbols && keyword == u"B")
            mode = Mode::Symbols;
        else
            return {};
    }
}
