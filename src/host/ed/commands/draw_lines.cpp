// LINE and PLINE. What was drawn when a prompt is cancelled stays: every point completes a round.

#include "ed/commands/commands.h"
#include "ed/commands/tools.h"

#include "db/polyline.h"
#include "ed/command_stack.h"
#include "ed/documents.h"
#include "ed/system_variables.h"

using namespace hand;

namespace {

/// The first point; Enter goes on from the last one entered.
bool askStart(KcGePoint3d& start)
{
    const KcEdStatus status = kcedGetPoint(nullptr, QStringLiteral("\nSpecify first point: "), start);
    if (status == kcedNone)
        start = kcDocManagerPtr()->curDocument()->lastPoint;
    return status == kcedNormal || status == kcedNone;
}

/// A polyline while it is drawn: user coordinates, elevation of its first point.
class Path {
public:
    explicit Path(KcGePoint3d start)
        : m_elevation(start.z)
    {
        m_vertices.push_back({ start.x, start.y });
    }

    KcGePoint3d last() const { return { m_vertices.back().x, m_vertices.back().y, m_elevation }; }
    KcGePoint3d first() const { return { m_vertices.front().x, m_vertices.front().y, m_elevation }; }
    size_t size() const { return m_vertices.size(); }

    /// Where the last piece leads; along the X axis before there is one.
    KcGeVector2d direction() const
    {
        if (m_direction)
            return *m_direction;
        if (m_vertices.size() < 2)
            return { 1, 0 };
        const auto& from = m_vertices[m_vertices.size() - 2];
        return KcGeSegment2d::bulge({ from.x, from.y }, last().plan(), from.bulge).endDirection();
    }
    void setDirection(KcGeVector2d direction) { m_direction = direction; }

    void add(KcGePoint3d point, double bulge, double startWidth, double endWidth)
    {
        m_vertices.back().bulge = bulge;
        m_vertices.back().startWidth = startWidth;
        m_vertices.back().endWidth = endWidth;
        m_vertices.push_back({ point.x, point.y });
        m_direction.reset();
        store(false);
    }
    void close(double bulge, double startWidth, double endWidth)
    {
        m_vertices.back().bulge = bulge;
        m_vertices.back().startWidth = startWidth;
        m_vertices.back().endWidth = endWidth;
        store(true);
    }
    bool removeLast()
    {
        if (m_vertices.size() < 2)
            return false;
        m_vertices.pop_back();
        m_vertices.back().bulge = m_vertices.back().startWidth = m_vertices.back().endWidth = 0.0;
        m_direction.reset();
        store(false);
        return true;
    }

private:
    void store(bool closed)
    {
        if (!m_id.isNull())
            KcDbWrite<KcDbEntity>(m_id)->erase();
        m_id = {};
        if (m_vertices.size() > 1) {
            auto polyline = std::make_unique<KcDbPolyline>();
            polyline->data().vertices = m_vertices;
            polyline->data().elevation = m_elevation;
            polyline->setClosed(closed);
            m_id = append(std::move(polyline));
        }
        kcedRoundCompleted();
    }

    std::vector<KcDbPolyline::Vertex> m_vertices;
    double m_elevation;
    std::optional<KcGeVector2d> m_direction;
    KcDbObjectId m_id;
};

/// Bulge of the arc that leaves a point in a direction and ends at another: half the included angle lies
/// between direction and chord. Nothing where it would turn straight back.
std::optional<double> tangentBulge(KcGePoint2d from, KcGeVector2d direction, KcGePoint2d to)
{
    const KcGeVector2d chord = to - from;
    const double half = std::atan2(direction.crossProduct(chord), direction.dotProduct(chord));
    if (chord.length() <= KcGeContext::gTol.equalPoint
        || std::abs(half) > kPi - KcGeContext::gTol.equalVector)
        return {};
    return std::tan(half / 2.0);
}

struct Widths {
    double start = 0.0, end = 0.0;
};

/// One piece of a polyline, as it will look.
std::unique_ptr<KcDbPolyline> piece(KcGePoint3d from, KcGePoint3d to, double bulge, const Widths& widths)
{
    auto polyline = std::make_unique<KcDbPolyline>();
    KcDbPolyline::Vertex start{ from.x, from.y };
    start.bulge = bulge;
    start.startWidth = widths.start;
    start.endWidth = widths.end;
    polyline->data().vertices = { start, { to.x, to.y } };
    polyline->data().elevation = from.z;
    return polyline;
}

/// False when the user gave up; the widths are then as before.
bool askWidths(Widths& widths, bool halves)
{
    const double unit = halves ? 2.0 : 1.0;
    const QString kind = halves ? QStringLiteral("half-width") : QStringLiteral("width");
    double start = widths.start / unit;
    kcedInitGet(KcEdPrompt::kNoNegative);
    if (kcedGetDist(nullptr, QStringLiteral("\nStarting %1%2: ").arg(kind, offered(start)), start)
        == kcedCancel)
        return false;
    double end = start;
    kcedInitGet(KcEdPrompt::kNoNegative);
    if (kcedGetDist(nullptr, QStringLiteral("\nEnding %1%2: ").arg(kind, offered(end)), end) == kcedCancel)
        return false;
    widths = { start * unit, end * unit };
    return true;
}

/// One arc of a polyline through a second point, or in a direction the user gives; false on cancel.
bool askArcBySecondPoint(Path& path, const Widths& widths)
{
    const KcGePoint3d from = path.last();
    KcGePoint3d second, end;
    if (kcedGetPoint(&from, QStringLiteral("\nSecond point of arc: "), second) != kcedNormal)
        return false;
    const auto bulgeTo = [&](KcGePoint3d last) -> std::optional<double> {
        const auto arc = KcGeCircArc2d::throughPoints(from.plan(), second.plan(), last.plan());
        return arc ? std::optional(std::tan(arc->sweep() / 4.0)) : std::nullopt;
    };
    kcedInitPreview([&](KcGePoint3d cursor) {
        const auto bulge = bulgeTo(cursor);
        return bulge ? sketch(piece(from, cursor, *bulge, widths)) : KcEdPreview();
    });
    if (kcedGetPoint(&second, QStringLiteral("\nEnd point of arc: "), end) != kcedNormal)
        return false;
    if (const auto bulge = bulgeTo(end))
        path.add(end, *bulge, widths.start, widths.end);
    else
        kcedSay(QStringLiteral("These points make no arc."));
    return true;
}

void undoPoint(Path& path)
{
    if (path.removeLast())
        kcDocManagerPtr()->curDocument()->lastPoint = path.last(); // relative points count from here again
    else
        kcedSay(QStringLiteral("There is nothing to undo here."));
}

} // namespace

void hand::line()
{
    KcGePoint3d start;
    if (!askStart(start))
        return;
    std::vector<KcGePoint3d> points{ start };
    std::vector<KcDbObjectId> lines;
    for (;;) {
        const KcGePoint3d from = points.back();
        QString options;
        if (lines.size() >= 2)
            options = QStringLiteral(" or [Close/Undo]");
        else if (!lines.empty())
            options = QStringLiteral(" or [Undo]");
        kcedInitGet(
            0, lines.size() >= 2 ? QStringLiteral("Close Undo _ Close Undo") : QStringLiteral("Undo _ Undo"));
        KcGePoint3d next;
        const KcEdStatus status
            = kcedGetPoint(&from, QStringLiteral("\nSpecify next point%1: ").arg(options), next);
        if (status == kcedKeyword && kcedGetInput() == u"Undo") {
            if (lines.empty()) {
                kcedSay(QStringLiteral("There is nothing to undo here."));
                continue;
            }
            KcDbWrite<KcDbEntity>(lines.back())->erase();
            lines.pop_back();
            points.pop_back();
            kcDocManagerPtr()->curDocument()->lastPoint = points.back();
            kcedRoundCompleted();
            continue;
        }
        const bool closes = status == kcedKeyword;
        if (status != kcedNormal && !closes)
            return;
        points.push_back(closes ? points.front() : next);
        lines.push_back(append(std::make_unique<KcDbLine>(from, points.back())));
        kcedRoundCompleted();
        if (closes)
            return;
    }
}

void hand::polyline()
{
    KcGePoint3d start;
    if (!askStart(start))
        return;
    Path path(start);
    const double width = kcedVarReal(QStringLiteral("PLINEWID"), 0.0);
    Widths widths{ width, width };
    bool arcs = false;
    for (;;) {
        const KcGePoint3d from = path.last();
        kcedInitGet(
            0,
            arcs ? QStringLiteral("CLose Direction Halfwidth Line Second Undo Width _ "
                                  "Close Direction Halfwidth Line Second Undo Width")
                 : QStringLiteral("Arc Close Halfwidth Undo Width _ Arc Close Halfwidth Undo Width"));
        kcedInitPreview([&](KcGePoint3d cursor) {
            const auto bulge
                = arcs ? tangentBulge(from.plan(), path.direction(), cursor.plan()) : std::optional(0.0);
            return bulge ? sketch(piece(from, cursor, *bulge, widths)) : KcEdPreview();
        });
        KcGePoint3d next;
        const KcEdStatus status = kcedGetPoint(
            &from,
            arcs
                ? QStringLiteral("\nEnd point of arc or [CLose/Direction/Halfwidth/Line/Second/Undo/Width]: ")
                : QStringLiteral("\nSpecify next point or [Arc/Close/Halfwidth/Undo/Width]: "),
            next);
        if (status == kcedNormal) {
            const auto bulge
                = arcs ? tangentBulge(from.plan(), path.direction(), next.plan()) : std::optional(0.0);
            if (!bulge) {
                kcedSay(QStringLiteral("No arc leads there."));
                continue;
            }
            path.add(next, *bulge, widths.start, widths.end);
            widths.start = widths.end;
            continue;
        }
        if (status != kcedKeyword)
            return;
        const QString keyword = kcedGetInput();
        if (keyword == u"Arc" || keyword == u"Line") {
            arcs = keyword == u"Arc";
        } else if (keyword == u"Undo") {
            undoPoint(path);
        } else if (keyword == u"Width" || keyword == u"Halfwidth") {
            if (!askWidths(widths, keyword == u"Halfwidth"))
                return;
            kcedSetVar(QStringLiteral("PLINEWID"), widths.end);
        } else if (keyword == u"Second") {
            if (!askArcBySecondPoint(path, widths))
                return;
            widths.start = widths.end;
        } else if (keyword == u"Direction") {
            double angle = 0.0;
            if (kcedGetAngle(&from, QStringLiteral("\nDirection at the start of the arc: "), angle)
                != kcedNormal)
                return;
            path.setDirection({ std::cos(angle), std::sin(angle) });
        } else if (path.size() < (arcs ? 2 : 3)) {
            kcedSay(QStringLiteral("There is not enough to close yet."));
        } else {
            const auto bulge = arcs ? tangentBulge(from.plan(), path.direction(), path.first().plan())
                                    : std::optional(0.0);
            if (bulge)
                return path.close(*bulge, widths.start, widths.end);
            kcedSay(QStringLiteral("No arc leads there."));
        }
    }
}
