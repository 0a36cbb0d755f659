// How multilines are drawn: the offsets of the elements at every vertex stand in the entity, their colours in
// the style.

#include "db/database.h"
#include "db/draw_raw.h"
#include "gi/sink/world_draw.h"

namespace {

constexpr int kClosed = 2, kNoStartCap = 4, kNoEndCap = 8; // flags of a multiline
constexpr int kFilled = 1, kJoints = 2, kStartSquare = 16, kEndSquare = 256; // flags of a style

struct Style {
    int flags = 0;
    KcGiColor fill;
    std::vector<KcGiColor> elements;
};

Style styleOf(KcDbObjectId id)
{
    Style style;
    const KcDbRead<KcDbObject> object(id);
    if (!object || !object->database()->file())
        return style;
    bool inElements = false;
    for (const KcDbTypedValue& value : object->database()->file()->values(*object)) {
        if (value.code == 70) {
            style.flags = int(value.integer());
        } else if (value.code == 71) {
            inElements = true;
        } else if (value.code == 62) {
            const KcGiColor color{ int(value.integer(KcGiColor::kByLayer)), -1 };
            if (!inElements)
                style.fill = color;
            else if (!style.elements.empty())
                style.elements.back() = color;
        } else if (value.code == 49) {
            style.elements.push_back({});
        }
    }
    return style;
}

struct Vertex {
    KcGePoint3d position;
    KcGeVector3d miter;
    std::vector<double> offsets; ///< of the elements along the miter
    KcGePoint3d at(size_t element) const { return position + miter * offsets[element]; }
};

} // namespace

void kcdbDrawMultiline(KcGiWorldDraw& draw, const KcDbRawEntity&, const KcDbValueList& groups)
{
    const KcDbGroupValues g(groups);
    const int flags = int(g.integer(71));
    std::vector<Vertex> vertices;
    bool first = false; // the next 41 is the offset of an element; further ones are its breaks
    for (const KcDbTypedValue& value : groups) {
        const auto* p = std::get_if<KcGePoint3d>(&value.value);
        if (value.code == 11 && p)
            vertices.push_back({ *p, {}, {} });
        else if (value.code == 13 && p && !vertices.empty())
            vertices.back().miter = *p - KcGePoint3d();
        else if (value.code == 74)
            first = true;
        else if (value.code == 41 && !vertices.empty() && std::exchange(first, false))
            vertices.back().offsets.push_back(value.real());
    }
    size_t elements = vertices.empty() ? 0 : vertices.front().offsets.size();
    for (const Vertex& vertex : vertices)
        elements = std::min(elements, vertex.offsets.size());
    if (vertices.size() < 2 || elements == 0)
        return draw.leftOut(QStringLiteral("a multiline without lines"));

    const Style style = styleOf(g.id(340));
    const KcGiColor own = draw.entityColor();
    const bool closed = flags & kClosed;
    const auto line = [&](size_t element) {
        std::vector<KcGePoint3d> points;
        for (const Vertex& vertex : vertices)
            points.push_back(vertex.at(element));
        return points;
    };
    const auto [low, high] = std::minmax_element(
        vertices.front().offsets.begin(), vertices.front().offsets.begin() + long(elements));
    const size_t lowest = size_t(low - vertices.front().offsets.begin()),
                 highest = size_t(high - vertices.front().offsets.begin());
    if (style.flags & kFilled) {
        KcGiPath area;
        std::vector<KcGePoint3d> around = line(highest);
        const std::vector<KcGePoint3d> back = line(lowest);
        if (closed) {
            area.polyline(around, true);
            area.polyline(back, true);
        } else {
            around.insert(around.end(), back.rbegin(), back.rend());
            area.polyline(around, true);
        }
        draw.setColor(style.fill);
        draw.fill(area);
    }
    for (size_t element = 0; element < elements; ++element) {
        const bool styled
            = element < style.elements.size() && style.elements[element].index != KcGiColor::kByLayer;
        draw.setColor(styled ? style.elements[element] : own);
        KcGiPath path;
        path.polyline(line(element), closed);
        draw.stroke(path);
    }
    draw.setColor(own);
    for (size_t i = 0; i < vertices.size(); ++i) {
        const bool start = i == 0 && !closed, end = i + 1 == vertices.size() && !closed;
        const bool wanted = start ? (style.flags & kStartSquare) && !(flags & kNoStartCap)
            : end                 ? (style.flags & kEndSquare) && !(flags & kNoEndCap)
                                  : bool(style.flags & kJoints);
        if (wanted)
            draw.line(vertices[i].at(lowest), vertices[i].at(highest));
    }
}
