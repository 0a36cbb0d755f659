// Reads the layer standard document.

#include "core/layer_standard.h"

#include "core/xml_file.h"
#include "platform/numbers.h"

#include <QXmlStreamReader>

namespace {

const QString standardDocument = QStringLiteral("VDLLayerStd.xml");
constexpr int kMostColors = 255;
constexpr int kOrdinaryColor = 7;

SLayerDesc readLayer(const QXmlStreamAttributes& attributes)
{
    SLayerDesc layer;
    layer.keyword = attributes.value(QLatin1String("KeyWord")).toString();
    layer.layer = attributes.value(QLatin1String("Name")).toString();
    const int color = platform::wtoi(attributes.value(QLatin1String("Color")).toString());
    layer.color = int16_t(color >= 1 && color <= kMostColors ? color : kOrdinaryColor);
    layer.lineType = attributes.value(QLatin1String("LineType")).toString();
    layer.note = attributes.value(QLatin1String("Note")).toString();
    return layer;
}

} // namespace

const SLayerDesc* CLayerStd::find(const QString& keyword) const
{
    const auto found = std::find_if(
        layers.begin(), layers.end(), [&](const SLayerDesc& layer) { return layer.keyword == keyword; });
    return found == layers.end() ? nullptr : &*found;
}

std::vector<CLayerStd> loadLayerStandards()
{
    const std::optional<QString> text = readSystemDocument(standardDocument);
    if (!text)
        return {};
    QXmlStreamReader xml(*text);
    std::vector<CLayerStd> standards;
    if (xml.readNextStartElement())
        while (xml.readNextStartElement()) {
            if (xml.name() != u"LayerStd") {
                xml.skipCurrentElement();
                continue;
            }
            CLayerStd& standard = standards.emplace_back();
            standard.name = xml.attributes().value(QLatin1String("Name")).toString();
            while (xml.readNextStartElement()) {
                if (xml.name() == u"Layer")
                    standard.layers.push_back(readLayer(xml.attributes()));
                xml.skipCurrentElement();
            }
        }
    if (xml.hasError()) {
        diagnoseDocument(standardDocument, xml.lineNumber(), xml.errorString());
        return {};
    }
    return standards;
}
