// How dimensions are drawn that have no block: extension lines, dimension line, arrow heads and the measured
// text, as their style says.

#include "db/arrow_heads.h"
#include "db/database.h"
#include "db/dim_variables.h"
#include "db/draw_raw.h"
#include "db/symbol_table.h"
#include "db/text.h"
#include "gi/sink/world_draw.h"

namespace {

using Dim = KcDbDimVariables;

enum Type { kLinear, kAligned, kAngular, kDiameter, kRadius, kAngular3, kOrdinate };
constexpr int kAlongX = 64; // flag of ordinate dimensions
constexpr double kDegrees = 180.0 / kPi;

/// A value with the style's decimals, without the zeros that it leaves out.
QString formatted(double value, const Dim& variables)
{
    constexpr int kNoLeadingZero = 4, kNoTrailingZeros = 8, kMostDecimals = 8;
    const int decimals = std::clamp(int(variables.integer(Dim::kDecimals, 4)), 0, kMostDecimals);
    const int zeros = int(variables.integer(Dim::kZeros, 0));
    QString text = QString::number(value, 'f', decimals);
    if ((zeros & kNoTrailingZeros) && text.contains(u'.')) {
        while (text.endsWith(u'0'))
            text.chop(1);
        if (text.endsWith(u'.'))
            text.chop(1);
    }
    if ((zeros & kNoLeadingZero) && text.startsWith(QLatin1String("0.")))
        text.remove(0, 1);
    if (const auto mark = variables.integer(Dim::kDecimalMark, u'.'); mark > 0x20 && mark < 0x10000)
        text.replace(u'.', QChar(char16_t(mark)));
    return text;
}

/// Draws in the plane of the dimension; points are object coordinates.
class Drawer {
public:
    Drawer(KcGiWorldDraw& draw, const KcDbRawEntity& entity, const KcDbGroupValues& groups)
        : m_draw(draw)
        , m_entity(entity)
        , m_groups(groups)
        , m_variables(entity, entity.data().dimStyle)
        , m_normal(groups.vector(210, KcGeVector3d::kZAxis))
        , m_toPlane(KcGeMatrix3d::worldToPlane(m_normal))
        , m_own(draw.entityColor())
    {
        // Only the text's middle is given in object coordinates.
        m_elevation = (m_toPlane * groups.point(10)).z;
        m_toWorld = KcGeMatrix3d::planeToWorld(m_normal) * KcGeMatrix3d::translation({ 0, 0, m_elevation });
    }

    /// False when the kind is none, or its points coincide.
    bool run()
    {
        const int type = int(m_groups.integer(70)) & 7;
        if (type == kLinear || type == kAligned)
            return linear(type == kAligned);
        if (type == kAngular || type == kAngular3)
            return angular(type == kAngular3);
        if (type == kDiameter || type == kRadius)
            return radial(type == kDiameter);
        return type == kOrdinate && ordinate();
    }

private:
    KcGePoint2d point(int code) const { return (m_toPlane * m_groups.point(code)).plan(); }
    KcGePoint3d world(KcGePoint2d p) const { return m_toWorld * KcGePoint3d{ p.x, p.y, 0.0 }; }
    void line(KcGePoint2d a, KcGePoint2d b) { m_draw.line(world(a), world(b)); }
    void color(int code)
    {
        const int index = int(m_variables.integer(code, KcGiColor::kByBlock));
        m_draw.setColor(index == KcGiColor::kByBlock ? m_own : KcGiColor{ index, -1 });
    }

    /// Draws the head at the tip and returns the end of the line behind it. `second`: of the second arrow.
    KcGePoint2d arrow(KcGePoint2d tip, KcGeVector2d direction, bool second)
    {
        const double tick = m_variables.length(Dim::kTickSize, 0.0);
        KcDbArrowHead head{ QStringLiteral("OBLIQUE"), tick };
        if (!(tick > 0.0)) {
            head.size = m_variables.length(Dim::kArrowSize, 0.18);
            head.name = m_variables.integer(Dim::kTwoArrows, 0) != 0
                ? second ? m_variables.arrowName(Dim::kArrow2, Dim::kArrowName2)
                         : m_variables.arrowName(Dim::kArrow1, Dim::kArrowName1)
                : m_variables.arrowName(Dim::kArrow, Dim::kArrowName);
        }
        const KcGeVector3d way = world(tip) - world(tip - direction);
        const double covered
            = kcdbDrawArrowHead(m_draw, m_entity.database(), head, world(tip), way, m_normal);
        const double length = direction.length();
        return length > 0.0 ? tip - direction * (std::min(covered, length) / length) : tip;
    }

    void extensionLine(KcGePoint2d from, KcGePoint2d to)
    {
        const KcGeVector2d way = to - from;
        const double length = way.length();
        if (!(length > KcGeContext::gTol.equalPoint))
            return;
        const KcGeVector2d unit = way / length;
        line(
            from + unit * std::min(length, m_variables.length(Dim::kExtensionOffset, 0.0625)),
            to + unit * m_variables.length(Dim::kExtensionBeyond, 0.18));
    }

    /// The text at group 11, or at `usual` where that is missing; turned by an angle that it can be read at.
    void text(const QString& measured, KcGePoint2d usual, double angle)
    {
        QString shown = m_groups.text(1);
        if (shown == QLatin1String(" "))
            return; // the dimension has no text
        QString value = measured;
        if (const QString around = m_variables.text(Dim::kSuffix); !around.isEmpty())
            value = around.contains(QLatin1String("<>"))
                ? QString(around).replace(QLatin1String("<>"), measured)
                : measured + around;
        shown = shown.isEmpty() ? value : shown.replace(QLatin1String("<>"), value);
        angle = std::remainder(angle, kTwoPi);
        if (angle > kPi / 2.0 + KcGeContext::gTol.equalVector
            || angle <= -kPi / 2.0 + KcGeContext::gTol.equalVector)
            angle += kPi;
        if (m_groups.find(53) && m_groups.real(53) != 0.0)
            angle = m_groups.real(53) / kDegrees;
        const KcGePoint3d middle = m_groups.point(11);
        const bool isPlaced = m_groups.find(11) && (middle.x != 0.0 || middle.y != 0.0);
        KcDbMText text;
        KcDbMText::Data& d = text.data();
        d.height = m_variables.length(Dim::kTextHeight, 0.18);
        d.style = m_variables.id(Dim::kTextStyle);
        d.attachment = 5;
        d.normal = m_normal;
        d.rotation = angle;
        const double up = m_variables.integer(Dim::kTextAbove, 0) != 0
            ? m_variables.length(Dim::kGap, 0.09) + d.height / 2.0
            : 0.0;
        const KcGeVector2d above = KcGeVector2d{ 0, 1 }.rotateBy(angle) * up;
        d.location = world(isPlaced ? middle.plan() : usual + above);
        text.setContents(shown);
        const int index = int(m_variables.integer(Dim::kTextColor, KcGiColor::kByBlock));
        text.drawIn(m_draw, index == KcGiColor::kByBlock ? m_own : KcGiColor{ index, -1 });
    }

    double measured(double computed) const
    {
        const double held = m_groups.real(42, -1.0);
        return (held > 0.0 ? held : computed) * std::abs(m_variables.real(Dim::kLengthFactor, 1.0));
    }

    bool linear(bool aligned)
    {
        const KcGePoint2d first = point(13), second = point(14), onLine = point(10);
        const KcGeVector2d along
            = aligned ? second - first : KcGeVector2d{ 1, 0 }.rotateBy(m_groups.real(50) / kDegrees);
        if (!(along.length() > 0.0))
            return false;
        const KcGeVector2d unit = along / along.length(), across = unit.perpVector();
        const KcGePoint2d a = first + across * (onLine - first).dotProduct(across),
                          b = second + across * (onLine - second).dotProduct(across);
        if (!(a.distanceTo(b) > 0.0))
            return false;
        color(Dim::kExtensionColor);
        if (m_variables.integer(Dim::kSuppressFirst, 0) == 0)
            extensionLine(first, a);
        if (m_variables.integer(Dim::kSuppressSecond, 0) == 0)
            extensionLine(second, b);
        color(Dim::kLineColor);
        const KcGePoint2d from = arrow(a, a - b, false), to = arrow(b, b - a, true);
        line(from, to);
        text(formatted(measured(a.distanceTo(b)), m_variables), a + (b - a) * 0.5, unit.angle());
        return true;
    }

    bool radial(bool diameter)
    {
        const KcGePoint2d center = point(10), rim = point(15);
        const KcGeVector2d way = rim - center;
        if (!(way.length() > 0.0))
            return false;
        color(Dim::kLineColor);
        const KcGePoint2d from = diameter ? arrow(center, -way, true) : center;
        line(from, arrow(rim, way, false));
        const QString value = formatted(measured(way.length()), m_variables);
        text(
            (diameter ? QStringLiteral("%%c") : QStringLiteral("R")) + value, center + way * 0.5,
            way.angle());
        return true;
    }

    bool angular(bool threePoints)
    {
        const KcGePoint2d a1 = point(13), a2 = point(14);
        KcGePoint2d vertex = point(15), end1 = a1, end2 = a2, onArc = point(10);
        if (!threePoints) { // two lines: 13 to 14 and 15 to 10, the arc through 16
            const KcGeVector2d u = a2 - a1, v = point(10) - point(15);
            const double cross = u.crossProduct(v);
            if (std::abs(cross) <= KcGeContext::gTol.equalVector * u.length() * v.length())
                return false;
            vertex = a1 + u * ((point(15) - a1).crossProduct(v) / cross);
            onArc = (m_toPlane * m_groups.point(16)).plan();
            const auto far = [&](KcGePoint2d p, KcGePoint2d q) {
                return vertex.distanceTo(p) > vertex.distanceTo(q) ? p : q;
            };
            end1 = far(a1, a2);
            end2 = far(point(15), point(10));
        }
        const double radius = vertex.distanceTo(onArc);
        if (!(radius > 0.0) || !(vertex.distanceTo(end1) > 0.0) || !(vertex.distanceTo(end2) > 0.0))
            return false;
        double start = (end1 - vertex).angle(), stop = (end2 - vertex).angle();
        const double middle = (onArc - vertex).angle();
        if (sweepBetween(start, middle) > sweepBetween(start, stop)) {
            std::swap(start, stop);
            std::swap(end1, end2);
        }
        const double sweep = sweepBetween(start, stop);
        const auto at = [&](double angle) { return vertex + KcGeVector2d{ radius, 0 }.rotateBy(angle); };
        color(Dim::kExtensionColor);
        for (const auto& [end, angle] : { std::pair{ end1, start }, std::pair{ end2, stop } })
            if (vertex.distanceTo(end) < radius)
                extensionLine(end, at(angle));
        color(Dim::kLineColor);
        arrow(at(start), KcGeVector2d{ 0, -radius }.rotateBy(start), false);
        arrow(at(stop), KcGeVector2d{ 0, radius }.rotateBy(stop), true);
        KcGiPath path;
        path.arc({ world(vertex), m_toWorld.axis(0) * radius, m_toWorld.axis(1) * radius, start, sweep });
        m_draw.stroke(path);
        text(
            formatted(sweep * kDegrees, m_variables) + QChar(0xb0), at(start + sweep / 2.0),
            start + sweep / 2.0 - kPi / 2.0);
        return true;
    }

    bool ordinate()
    {
        const KcGePoint2d feature = point(13), end = point(14);
        const bool alongX = m_groups.integer(70) & kAlongX;
        color(Dim::kLineColor);
        // The line leaves the feature along its axis and ends along it, with a step between.
        const KcGePoint2d middle = feature + (end - feature) * 0.5;
        const KcGePoint2d bend1
            = alongX ? KcGePoint2d{ feature.x, middle.y } : KcGePoint2d{ middle.x, feature.y };
        const KcGePoint2d bend2 = alongX ? KcGePoint2d{ end.x, middle.y } : KcGePoint2d{ middle.x, end.y };
        KcGiPath path;
        path.polyline({ world(feature), world(bend1), world(bend2), world(end) }, false);
        m_draw.stroke(path);
        const KcGeVector2d from = feature - point(10);
        text(
            formatted(measured(std::abs(alongX ? from.x : from.y)), m_variables), end,
            alongX ? kPi / 2.0 : 0.0);
        return true;
    }

    KcGiWorldDraw& m_draw;
    const KcDbRawEntity& m_entity;
    const KcDbGroupValues& m_groups;
    Dim m_variables;
    KcGeVector3d m_normal;
    KcGeMatrix3d m_toPlane, m_toWorld;
    KcGiColor m_own;
    double m_elevation = 0.0;
};

} // namespace

void kcdbDrawDimension(KcGiWorldDraw& draw, const KcDbRawEntity& entity, const KcDbValueList& groups)
{
    // In this order the first of equal codes are the dimension's own: those of its text come with the common
    // ones.
    KcDbValueList own;
    bool inDimension = false;
    for (const KcDbTypedValue& value : groups) {
        inDimension |= value.code == 100 && value.text() == QLatin1String("AcDbDimension");
        if (inDimension)
            own.push_back(value);
    }
    const KcDbGroupValues values(own.empty() ? groups : own);
    if (!Drawer(draw, entity, values).run())
        draw.leftOut(QStringLiteral("a dimension without a length"));
}
