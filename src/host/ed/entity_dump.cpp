// Each kind of entity as a JSON object.

#include "ed/entity_dump.h"

#include "db/block_reference.h"
#include "db/curves.h"
#include "db/hatch.h"
#include "db/leader.h"
#include "db/polyline.h"
#include "db/raw_entity.h"
#include "db/symbol_table.h"
#include "db/table.h"
#include "db/text.h"
#include "db/viewport.h"
#include "db/wipeout.h"
#include "ed/filter_values.h"
#include "ed/selection_filter.h"

#include <QJsonArray>

namespace {

QString handleText(KcDbObjectId id)
{
    return QString::number(id.handle(), 16).toUpper();
}

QJsonArray json(KcGePoint2d p)
{
    return { p.x, p.y };
}

QJsonArray json(KcGePoint3d p)
{
    return { p.x, p.y, p.z };
}

QJsonArray json(KcGeVector3d v)
{
    return { v.x, v.y, v.z };
}

template <class Points> QJsonArray jsonPoints(const Points& points)
{
    QJsonArray list;
    for (const auto& p : points)
        list.append(json(p));
    return list;
}

template <class T> const T* as(const KcDbEntity& entity)
{
    return entity.isKindOf(T::desc()) ? static_cast<const T*>(&entity) : nullptr;
}

void dumpText(QJsonObject& o, const KcDbText& text)
{
    const auto& d = text.data();
    o["text"] = d.text;
    o["plain"] = text.plainText();
    o["position"] = json(d.position);
    o["alignment"] = json(d.alignment);
    o["height"] = d.height;
    o["rotation"] = d.rotation;
    o["justification"] = QJsonArray{ d.horizontal, d.vertical };
    o["style"] = kcdbRecordName(d.style);
    if (const auto* attribute = as<KcDbAttribute>(text)) {
        o["tag"] = attribute->attribute().tag;
        o["flags"] = attribute->attribute().flags;
    } else if (const auto* definition = as<KcDbAttributeDefinition>(text)) {
        o["tag"] = definition->attribute().tag;
        o["prompt"] = definition->attribute().prompt;
        o["flags"] = definition->attribute().flags;
    }
}

void dumpMText(QJsonObject& o, const KcDbMText& text)
{
    const auto& d = text.data();
    o["text"] = d.contents;
    o["plain"] = text.plainText();
    o["position"] = json(d.location);
    o["height"] = d.height;
    o["width"] = d.width;
    o["attachment"] = d.attachment;
    o["rotation"] = text.rotation();
    o["style"] = kcdbRecordName(d.style);
}

void dumpReference(QJsonObject& o, const KcDbBlockReference& reference)
{
    const auto& d = reference.data();
    o["block"] = kcdbRecordName(d.block);
    o["position"] = json(d.position);
    o["scale"] = json(d.scale);
    o["rotation"] = d.rotation;
    if (d.array && (d.array->columns != 1 || d.array->rows != 1)) {
        o["columns"] = d.array->columns;
        o["rows"] = d.array->rows;
        o["spacing"] = QJsonArray{ d.array->columnSpacing, d.array->rowSpacing };
    }
    QJsonObject attributes;
    for (const KcDbObjectId id : reference.attributes())
        if (const KcDbRead<KcDbAttribute> attribute(id); attribute)
            attributes[attribute->attribute().tag] = attribute->textString();
    if (!attributes.isEmpty())
        o["attributes"] = attributes;
}

void dumpTable(QJsonObject& o, const KcDbTable& table)
{
    QJsonArray cells, blocks, heights, widths, names;
    for (int row = 0; row < table.numRows(); ++row) {
        QJsonArray texts;
        for (int column = 0; column < table.numColumns(); ++column) {
            texts.append(table.plainText(row, column));
            if (const KcDbObjectId block = table.blockTableRecordId(row, column); !block.isNull())
                blocks.append(QJsonArray{ row, column, kcdbRecordName(block) });
        }
        cells.append(texts);
        heights.append(table.rowHeight(row));
    }
    for (int column = 0; column < table.numColumns(); ++column) {
        widths.append(table.columnWidth(column));
        names.append(table.columnName(column));
    }
    o["cells"] = cells;
    o["cellBlocks"] = blocks;
    o["rowHeights"] = heights;
    o["columnWidths"] = widths;
    o["columnNames"] = names;
    QJsonArray merges;
    for (const KcDbCellRange& range : table.table().merges)
        merges.append(QJsonArray{ range.minRow, range.maxRow, range.minColumn, range.maxColumn });
    o["merged"] = merges;
}

void dumpHatch(QJsonObject& o, const KcDbHatch& hatch)
{
    const auto& d = hatch.data();
    o["pattern"] = d.patternName;
    o["solid"] = d.solid;
    o["patternScale"] = d.patternScale;
    o["patternAngle"] = d.patternAngle;
    o["associative"] = d.associative;
    if (const auto area = hatch.getArea())
        o["area"] = *area;
    QJsonArray loops;
    for (const KcDbHatch::Loop& loop : d.loops) {
        QJsonObject l;
        l["type"] = loop.type;
        if (loop.isPolyline()) {
            QJsonArray points;
            for (const auto& v : loop.vertices)
                points.append(QJsonArray{ v.x, v.y, v.bulge });
            l["vertices"] = points;
        } else {
            l["edges"] = int(loop.edges.size());
        }
        loops.append(l);
    }
    o["loops"] = loops;
}

void dumpPolyline(QJsonObject& o, const KcDbPolyline& polyline)
{
    QJsonArray vertices;
    for (const auto& v : polyline.data().vertices)
        vertices.append(QJsonArray{ v.x, v.y, v.bulge });
    o["vertices"] = vertices;
    o["closed"] = polyline.isClosed();
    o["elevation"] = polyline.data().elevation;
    o["width"] = polyline.data().constantWidth;
}

void dump2dPolyline(QJsonObject& o, const KcDb2dPolyline& polyline)
{
    QJsonArray vertices;
    for (const KcDbObjectId id : polyline.data().vertices)
        if (const KcDbRead<KcDbVertex> vertex(id); vertex)
            vertices.append(QJsonArray{ vertex->data().position.x, vertex->data().position.y,
                                        vertex->data().position.z, vertex->data().bulge });
    o["vertices"] = vertices;
    o["flags"] = polyline.data().flags;
    o["closed"] = polyline.isClosed();
}

void dumpCurve(QJsonObject& o, const KcDbEntity& entity)
{
    if (const auto* line = as<KcDbLine>(entity)) {
        o["start"] = json(line->data().start);
        o["end"] = json(line->data().end);
    } else if (const auto* circle = as<KcDbCircle>(entity)) {
        o["center"] = json(circle->data().center);
        o["radius"] = circle->data().radius;
    } else if (const auto* arc = as<KcDbArc>(entity)) {
        o["center"] = json(arc->data().center);
        o["radius"] = arc->data().radius;
        o["angles"] = QJsonArray{ arc->data().startAngle, arc->data().endAngle };
    } else if (const auto* ellipse = as<KcDbEllipse>(entity)) {
        o["center"] = json(ellipse->data().center);
        o["majorAxis"] = json(ellipse->data().majorAxis);
        o["ratio"] = ellipse->data().radiusRatio;
        o["params"] = QJsonArray{ ellipse->data().startParam, ellipse->data().endParam };
    } else if (const auto* spline = as<KcDbSpline>(entity)) {
        o["degree"] = spline->data().degree;
        o["controlPoints"] = jsonPoints(spline->data().controlPoints);
        o["fitPoints"] = jsonPoints(spline->data().fitPoints);
    } else if (const auto* xline = as<KcDbXline>(entity)) {
        o["point"] = json(xline->data().basePoint);
        o["direction"] = json(xline->data().unitDir);
    } else if (const auto* ray = as<KcDbRay>(entity)) {
        o["point"] = json(ray->data().basePoint);
        o["direction"] = json(ray->data().unitDir);
    } else if (const auto* leader = as<KcDbLeader>(entity)) {
        o["vertices"] = jsonPoints(leader->data().vertices);
        o["arrow"] = leader->data().hasArrowHead;
        o["dimStyle"] = kcdbRecordName(leader->data().dimStyle);
    }
}

void dumpOther(QJsonObject& o, const KcDbEntity& entity)
{
    if (const auto* point = as<KcDbPoint>(entity)) {
        o["position"] = json(point->data().position);
    } else if (const auto* solid = as<KcDbSolid>(entity)) {
        o["corners"] = jsonPoints(solid->data().corners);
    } else if (const auto* face = as<KcDbFace>(entity)) {
        o["corners"] = jsonPoints(face->data().corners);
    } else if (const auto* viewport = as<KcDbViewport>(entity)) {
        o["center"] = json(viewport->data().center);
        o["size"] = QJsonArray{ viewport->width(), viewport->height() };
        o["viewCenter"] = json(viewport->viewCenter());
        o["viewHeight"] = viewport->viewHeight();
    } else if (const auto* wipeout = as<KcDbWipeout>(entity)) {
        o["outline"] = jsonPoints(wipeout->outline());
    } else if (const auto* raw = as<KcDbRawEntity>(entity)) {
        o["known"] = false;
        if (!raw->data().block.isNull())
            o["block"] = kcdbRecordName(raw->data().block);
    }
}

// Each application whose data is one text is a tag; other extended data is listed by application.
void dumpExtendedData(QJsonObject& o, const KcDbEntity& entity)
{
    QJsonObject tags;
    QJsonArray others;
    for (const KcDbXData& data : entity.xdata()) {
        const QString name = kcdbRecordName(data.application);
        if (data.values.size() == 1 && data.values.front().code == 1000)
            tags[name] = data.values.front().text();
        else
            others.append(name);
    }
    if (!tags.isEmpty())
        o["tags"] = tags;
    if (!others.isEmpty())
        o["xdata"] = others;
}

} // namespace

QJsonObject kcedDumpEntity(const KcDbEntity& entity)
{
    QJsonObject o;
    o["handle"] = handleText(entity.objectId());
    o["type"] = kcedEntityTypeName(entity);
    o["layer"] = entity.layer();
    o["color"] = entity.colorIndex();
    if (entity.color().rgb >= 0)
        o["trueColor"] = QStringLiteral("#%1").arg(entity.color().rgb, 6, 16, QLatin1Char('0'));
    o["linetype"] = kcedLinetypeName(entity);
    const QString owner = kcdbRecordName(entity.ownerId());
    o["owner"] = owner.isEmpty() ? handleText(entity.ownerId()) : owner;
    if (!entity.isVisible())
        o["visible"] = false;

    if (const auto* table = as<KcDbTable>(entity))
        dumpTable(o, *table);
    if (const auto* reference = as<KcDbBlockReference>(entity))
        dumpReference(o, *reference);
    else if (const auto* text = as<KcDbText>(entity))
        dumpText(o, *text);
    else if (const auto* mtext = as<KcDbMText>(entity))
        dumpMText(o, *mtext);
    else if (const auto* hatch = as<KcDbHatch>(entity))
        dumpHatch(o, *hatch);
    else if (const auto* polyline = as<KcDbPolyline>(entity))
        dumpPolyline(o, *polyline);
    else if (const auto* oldPolyline = as<KcDb2dPolyline>(entity))
        dump2dPolyline(o, *oldPolyline);
    else if (as<KcDbCurve>(entity))
        dumpCurve(o, entity);
    else
        dumpOther(o, entity);
    dumpExtendedData(o, entity);
    return o;
}
