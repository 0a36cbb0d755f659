// Tables of words.

#include "ed/property_names.h"

#include "ge/point.h"

#include <QJsonArray>

namespace {

QMap<QString, KcEdTagName>& tagNames()
{
    static QMap<QString, KcEdTagName> names;
    return names;
}

QString number(double value)
{
    constexpr int kDigits = 10;
    return QString::number(value, 'g', kDigits);
}

QString degrees(double radians)
{
    return number(radians * 180.0 / kPi) + QChar(u'°');
}

QString nth(std::initializer_list<const char*> names, int index)
{
    return index >= 0 && index < int(names.size()) ? QLatin1String(names.begin()[index])
                                                   : QString::number(index);
}

} // namespace

void kcedNameTag(const QString& application, KcEdTagName name)
{
    tagNames()[application] = std::move(name);
}

KcEdTagName kcedTagName(const QString& application)
{
    return tagNames().value(application, { application, {} });
}

QString kcedKindInWords(const QString& typeName)
{
    static const QMap<QString, QString> words = {
        { "INSERT", "Block" },
        { "ACAD_TABLE", "Table" },
        { "LINE", "Line" },
        { "ARC", "Arc" },
        { "CIRCLE", "Circle" },
        { "ELLIPSE", "Ellipse" },
        { "SPLINE", "Spline" },
        { "XLINE", "Construction line" },
        { "RAY", "Ray" },
        { "POINT", "Point" },
        { "TRACE", "Trace" },
        { "SOLID", "Solid" },
        { "3DFACE", "Face" },
        { "LWPOLYLINE", "Polyline" },
        { "POLYLINE", "Polyline (older kind)" },
        { "TEXT", "Text" },
        { "ATTRIB", "Attribute" },
        { "ATTDEF", "Attribute definition" },
        { "MTEXT", "Multiline text" },
        { "HATCH", "Hatch" },
        { "LEADER", "Leader" },
        { "MULTILEADER", "Multileader" },
        { "DIMENSION", "Dimension" },
        { "VIEWPORT", "Viewport" },
        { "WIPEOUT", "Wipeout" },
        { "IMAGE", "Picture" },
        { "MLINE", "Multiline" },
    };
    return words.value(typeName, typeName);
}

QString kcedPropertyInWords(const QString& key)
{
    static const QMap<QString, QString> words = {
        { "type", "Kind" },
        { "trueColor", "True colour" },
        { "owner", "Space or block" },
        { "plain", "Text" },
        { "text", "Text as stored" },
        { "alignment", "Alignment point" },
        { "position", "Position" },
        { "style", "Text style" },
        { "tag", "Name" },
        { "dimStyle", "Dimension style" },
        { "attachment", "Attached at" },
        { "patternScale", "Pattern scale" },
        { "patternAngle", "Pattern angle" },
        { "cellBlocks", "Blocks in cells" },
        { "rowHeights", "Row heights" },
        { "columnWidths", "Column widths" },
        { "columnNames", "Columns" },
        { "merged", "Merged cells" },
        { "params", "Parameters" },
        { "angles", "Start and end angle" },
        { "start", "Start point" },
        { "end", "End point" },
        { "controlPoints", "Control points" },
        { "fitPoints", "Fit points" },
        { "majorAxis", "Major axis" },
        { "ratio", "Ratio of the axes" },
        { "viewCenter", "Centre of the view" },
        { "viewHeight", "Height of the view" },
        { "center", "Centre" },
        { "xdata", "Data of programs" },
        { "known", "Kind known here" },
        { "loops", "Boundaries" },
        { "arrow", "Arrow head" },
    };
    const auto word = words.find(key);
    return word != words.end() ? *word : key.left(1).toUpper() + key.mid(1);
}

QString kcedValueInWords(const QString& key, const QJsonValue& value)
{
    if (key == u"type" && value.isString())
        return kcedKindInWords(value.toString());
    if (key == u"owner")
        return value.toString().compare(u"*Model_Space", Qt::CaseInsensitive) == 0 ? QStringLiteral("Model")
                                                                                   : value.toString();
    if (key == u"attachment")
        return nth(
            { "", "top left", "top centre", "top right", "middle left", "middle centre", "middle right",
              "bottom left", "bottom centre", "bottom right" },
            value.toInt());
    if (key == u"justification") {
        const QJsonArray both = value.toArray();
        const QString across
            = nth({ "left", "centre", "right", "aligned", "middle", "fitted" }, both.at(0).toInt());
        const QString along = nth({ "base line", "bottom", "middle", "top" }, both.at(1).toInt());
        return across + QStringLiteral(", ") + along;
    }
    const bool isAngle = key == u"rotation" || key == u"patternAngle" || key == u"angles";
    if (value.isArray()) {
        QStringList parts;
        for (const QJsonValue& part : value.toArray())
            parts += kcedValueInWords(key, part);
        return parts.join(QStringLiteral(", "));
    }
    if (value.isDouble())
        return isAngle ? degrees(value.toDouble()) : number(value.toDouble());
    if (value.isBool())
        return value.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
    return value.toString();
}
