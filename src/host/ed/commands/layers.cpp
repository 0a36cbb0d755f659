// LAYER: making layers and changing their properties, by names and wild cards.

#include "ed/commands/commands.h"
#include "ed/commands/tools.h"

#include "db/header.h"
#include "db/tables.h"
#include "ed/command_stack.h"
#include "ed/system_variables.h"
#include "ed/wild_card.h"

using namespace hand;

namespace {

/// Escape at a question of an option: ends the command.
struct GivenUp { };

/// Names as the user types them, several with commas; empty for Enter where nothing is offered.
QString askNames(const QString& question, const QString& otherwise = {})
{
    QString names;
    const KcEdStatus status
        = kcedGetString(true, QStringLiteral("\n%1%2: ").arg(question, offered(otherwise)), names);
    if (status == kcedCancel)
        throw GivenUp();
    return status == kcedNone ? otherwise : names.trimmed();
}

std::vector<KcDbObjectId> layersNamed(const QString& names)
{
    const KcEdWildCard pattern(names);
    std::vector<KcDbObjectId> found;
    for (const KcDbObjectId id : KcDbRead<KcDbSymbolTable>(database().layerTable())->records())
        if (pattern.matches(kcdbRecordName(id)))
            found.push_back(id);
    if (found.empty())
        kcedSay(QStringLiteral("No layer is named \"%1\".").arg(names));
    return found;
}

QString currentName()
{
    return kcdbRecordName(database().currentLayer());
}

/// A sentence when the name cannot be a layer's.
QString whyNoName(const QString& name)
{
    constexpr int kLongest = 255;
    if (name.isEmpty() || name.size() > kLongest)
        return QStringLiteral("A name has 1 to %1 characters.").arg(kLongest);
    for (const QChar c : name)
        if (QStringLiteral("<>/\\\":;?*|,=`").contains(c) || c < QChar(u' '))
            return QStringLiteral("A name cannot hold %1.").arg(c);
    return {};
}

KcDbObjectId makeLayer(const QString& name)
{
    if (const QString reason = whyNoName(name); !reason.isEmpty()) {
        kcedSay(reason);
        return {};
    }
    auto layer = std::make_unique<KcDbLayerTableRecord>();
    layer->initName(name);
    layer->setLinetypeObjectId(kcdbFindRecord(database().linetypeTable(), QStringLiteral("Continuous")));
    return KcDbWrite<KcDbSymbolTable>(database().layerTable())->add(std::move(layer));
}

void setCurrent(KcDbObjectId layer)
{
    if (KcDbRead<KcDbLayerTableRecord>(layer)->isFrozen())
        return kcedSay(QStringLiteral("A frozen layer cannot be the current one."));
    kcedSetVar(QStringLiteral("CLAYER"), kcdbRecordName(layer));
}

template <class Change> void changeAll(const std::vector<KcDbObjectId>& layers, Change change)
{
    for (const KcDbObjectId id : layers)
        change(*KcDbWrite<KcDbLayerTableRecord>(id));
}

void freeze(const QString& names)
{
    for (const KcDbObjectId id : layersNamed(names))
        if (id == database().currentLayer())
            kcedSay(QStringLiteral("The current layer %1 is not frozen.").arg(currentName()));
        else
            KcDbWrite<KcDbLayerTableRecord>(id)->setIsFrozen(true);
}

/// An index colour by number or by the name of one of the first seven, or "r,g,b"; nothing for anything else.
std::optional<KcCmColor> colorOf(const QString& text)
{
    static const QStringList names{ QStringLiteral("red"),   QStringLiteral("yellow"),
                                    QStringLiteral("green"), QStringLiteral("cyan"),
                                    QStringLiteral("blue"),  QStringLiteral("magenta"),
                                    QStringLiteral("white") };
    if (const qsizetype at = names.indexOf(text.toLower()); at >= 0)
        return KcCmColor{ int16_t(at + 1), -1 };
    const QStringList parts = text.split(u',');
    if (parts.size() == 3) {
        int rgb = 0;
        for (const QString& part : parts) {
            bool isNumber = false;
            const int value = part.trimmed().toInt(&isNumber);
            if (!isNumber || value < 0 || value > 255)
                return {};
            rgb = rgb * 256 + value;
        }
        return KcCmColor{ 7, rgb };
    }
    bool isNumber = false;
    const int index = text.toInt(&isNumber);
    return isNumber && index >= 1 && index <= 255 ? std::optional(KcCmColor{ int16_t(index), -1 })
                                                  : std::nullopt;
}

void askColor()
{
    const QString text = askNames(QStringLiteral("Color (1-255, red to white, or r,g,b)"));
    const auto color = colorOf(text);
    if (!color)
        return text.isEmpty() ? void() : kcedSay(QStringLiteral("\"%1\" is no colour.").arg(text));
    const QString names = askNames(QStringLiteral("Layers for color %1").arg(text), currentName());
    changeAll(layersNamed(names), [&](KcDbLayerTableRecord& layer) { layer.data().color = *color; });
}

void askLinetype()
{
    const QString text = askNames(QStringLiteral("Linetype or [?]"), QStringLiteral("Continuous"));
    const KcDbRead<KcDbSymbolTable> types(database().linetypeTable());
    if (text == u"?")
        return kcedSay(types->names().join(QStringLiteral(", ")));
    const KcDbObjectId type = types->getAt(text);
    if (type.isNull())
        return text.isEmpty() ? void()
                              : kcedSay(QStringLiteral("The drawing has no linetype \"%1\".").arg(text));
    const QString names = askNames(QStringLiteral("Layers for linetype %1").arg(text), currentName());
    changeAll(layersNamed(names), [&](KcDbLayerTableRecord& layer) { layer.setLinetypeObjectId(type); });
}

void askLineWeight()
{
    constexpr int kDefault = -3;
    static constexpr int kWeights[] = { 0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,
                                        53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211 };
    const QString text
        = askNames(QStringLiteral("Line weight in mm (0.00 to 2.11), or Default"), QStringLiteral("Default"));
    if (text.isEmpty())
        return;
    int weight = kDefault;
    if (!QStringLiteral("Default").startsWith(text, Qt::CaseInsensitive)) {
        const auto millimetres = kcedParseReal(text);
        if (!millimetres || *millimetres < 0.0 || *millimetres > 2.11)
            return kcedSay(QStringLiteral("\"%1\" is no line weight.").arg(text));
        // The nearest of those that a drawing file can hold.
        weight = *std::ranges::min_element(
            kWeights, {}, [&](int each) { return std::abs(each - *millimetres * 100.0); });
    }
    const QString names = askNames(QStringLiteral("Layers for this weight"), currentName());
    changeAll(
        layersNamed(names), [&](KcDbLayerTableRecord& layer) { layer.data().lineWeight = int16_t(weight); });
}

void askPlot()
{
    kcedInitGet(0, QStringLiteral("Plot No _ Plot No"));
    QString keyword;
    const KcEdStatus status = kcedGetKword(QStringLiteral("\nPlotting [Plot/No plot] <Plot>: "), keyword);
    if (status == kcedCancel)
        throw GivenUp();
    const bool plots = status == kcedNone || keyword == u"Plot";
    const QString names = askNames(QStringLiteral("Layers"), currentName());
    changeAll(layersNamed(names), [&](KcDbLayerTableRecord& layer) { layer.data().plottable = plots; });
}

void listLayers()
{
    const QString names = askNames(QStringLiteral("Layers to list"), QStringLiteral("*"));
    for (const KcDbObjectId id : layersNamed(names)) {
        const KcDbRead<KcDbLayerTableRecord> layer(id);
        QString states;
        const auto add = [&](bool is, QLatin1String word) {
            if (is)
                states += QLatin1Char(' ') + word;
        };
        add(id == database().currentLayer(), QLatin1String("current"));
        add(layer->isOff(), QLatin1String("off"));
        add(layer->isFrozen(), QLatin1String("frozen"));
        add(layer->isLocked(), QLatin1String("locked"));
        add(!layer->data().plottable, QLatin1String("not plotted"));
        kcedSay(QStringLiteral("%1  colour %2  %3%4")
                    .arg(layer->name())
                    .arg(layer->colorIndex())
                    .arg(kcdbRecordName(layer->linetypeObjectId()), states));
    }
}

void makeNew()
{
    const QString names = askNames(QStringLiteral("Names of the new layers"));
    for (const QString& name : names.split(u',', Qt::SkipEmptyParts))
        makeLayer(name.trimmed());
}

void makeCurrent()
{
    const QString name
        = askNames(QStringLiteral("Name of the new layer, which becomes current"), currentName());
    if (name.isEmpty())
        return;
    if (const KcDbObjectId layer = makeLayer(name); !layer.isNull())
        setCurrent(layer);
}

void askCurrent()
{
    const QString name = askNames(QStringLiteral("Name of the layer to be current"), currentName());
    const KcDbObjectId layer = kcdbFindRecord(database().layerTable(), name);
    if (!layer.isNull())
        setCurrent(layer);
    else if (!name.isEmpty())
        kcedSay(QStringLiteral("The drawing has no layer \"%1\".").arg(name));
}

/// The options that ask for names only.
bool switchState(const QString& option)
{
    struct Row {
        QLatin1String option;
        QLatin1String question;
        void (*change)(KcDbLayerTableRecord&);
    };
    static const Row rows[] = {
        { QLatin1String("ON"), QLatin1String("Layers to be on"),
          [](KcDbLayerTableRecord& l) { l.setIsOff(false); } },
        { QLatin1String("OFF"), QLatin1String("Layers to be off"),
          [](KcDbLayerTableRecord& l) { l.setIsOff(true); } },
        { QLatin1String("Thaw"), QLatin1String("Layers to thaw"),
          [](KcDbLayerTableRecord& l) { l.setIsFrozen(false); } },
        { QLatin1String("Lock"), QLatin1String("Layers to lock"),
          [](KcDbLayerTableRecord& l) { l.setIsLocked(true); } },
        { QLatin1String("Unlock"), QLatin1String("Layers to unlock"),
          [](KcDbLayerTableRecord& l) { l.setIsLocked(false); } },
    };
    for (const Row& row : rows)
        if (option == row.option) {
            if (const QString names = askNames(row.question); !names.isEmpty())
                changeAll(layersNamed(names), row.change);
            return true;
        }
    return false;
}

void carryOut(const QString& option)
{
    if (option == u"?")
        listLayers();
    else if (option == u"Make")
        makeCurrent();
    else if (option == u"Set")
        askCurrent();
    else if (option == u"New")
        makeNew();
    else if (option == u"Color")
        askColor();
    else if (option == u"Ltype")
        askLinetype();
    else if (option == u"LWeight")
        askLineWeight();
    else if (option == u"Plot")
        askPlot();
    else if (option == u"Freeze") {
        if (const QString names = askNames(QStringLiteral("Layers to freeze")); !names.isEmpty())
            freeze(names);
    } else {
        switchState(option);
    }
}

} // namespace

void hand::layers()
{
    for (;;) {
        kcedInitGet(
            0,
            QStringLiteral("? Make Set New ON OFF Color Ltype LWeight Freeze Thaw LOck Unlock Plot _ "
                           "? Make Set New ON OFF Color Ltype LWeight Freeze Thaw Lock Unlock Plot"));
        QString option;
        if (kcedGetKword(
                QStringLiteral(
                    "\nCurrent layer: \"%1\"\n[?/Make/Set/New/ON/OFF/Color/Ltype/LWeight/Freeze/Thaw/"
                    "LOck/Unlock/Plot]: ")
                    .arg(currentName()),
                option)
            != kcedNormal)
            return;
        try {
            carryOut(option);
        } catch (const GivenUp&) {
            return;
        }
        kcedRoundCompleted();
    }
}
