// Finding snap points: those that entities have by themselves, and those where curves meet or are met from a
// base point.

#include "ed/object_snap.h"

#include "db/block_reference.h"
#include "db/curves.h"
#include "db/polyline.h"
#include "ed/entity_curves.h"
#include "ge/intersect.h"

namespace {

// Of what lies under the cursor, at most so much is looked at: the answer must come between two mouse moves.
constexpr size_t kMostEntities = 600;
constexpr size_t kMostPieces = 400;
constexpr size_t kMostForMeetings = 40;

struct ModeName {
    KcEdSnapMode mode;
    const char* name;
};
constexpr qsizetype kShortName = 3; // letters; any longer beginning of a name means the mode as well
constexpr ModeName kNames[] = {
    { kcedSnapEnd, "Endpoint" },        { kcedSnapMiddle, "Midpoint" },
    { kcedSnapCenter, "Centre" },       { kcedSnapNode, "Node" },
    { kcedSnapQuadrant, "Quadrant" },   { kcedSnapIntersection, "Intersection" },
    { kcedSnapInsertion, "Insertion" }, { kcedSnapPerpendicular, "Perpendicular" },
    { kcedSnapTangent, "Tangent" },     { kcedSnapNearest, "Nearest" },
};

bool means(const QString& word, const ModeName& row)
{
    const auto begins
        = [&](const char* name) { return QLatin1String(name).startsWith(word, Qt::CaseInsensitive); };
    return word.size() >= kShortName
        && (begins(row.name) || (row.mode == kcedSnapCenter && begins("Center")));
}

template <class T> const T* as(const KcDbEntity& entity)
{
    return entity.isKindOf(T::desc()) ? static_cast<const T*>(&entity) : nullptr;
}

/// Collects candidates and keeps the best.
class Search {
public:
    explicit Search(const KcEdSnapRequest& request)
        : m_request(request)
        , m_cursor(request.cursor.plan())
    {
    }

    bool wants(int modes) const { return m_request.modes & modes; }

    void look(const KcEdSeenEntity& seen)
    {
        m_entity = seen.top;
        const auto at = [&](KcGePoint3d p) { return seen.toWorld * p; };
        if (wants(kcedSnapNode))
            if (const auto* point = as<KcDbPoint>(seen.entity))
                offer(at(point->data().position), kcedSnapNode);
        if (wants(kcedSnapInsertion)) {
            if (const auto* reference = as<KcDbBlockReference>(seen.entity))
                offer(at(reference->position()), kcedSnapInsertion);
            else if (const auto* text = as<KcDbText>(seen.entity))
                offer(at(text->anchor()), kcedSnapInsertion);
            else if (const auto* mtext = as<KcDbMText>(seen.entity))
                offer(at(mtext->data().location), kcedSnapInsertion);
        }
        if (const auto* curve = as<KcDbCurve>(seen.entity))
            lookAt(curve->curve(), seen.toWorld);
    }

    void meetings()
    {
        if (!wants(kcedSnapIntersection))
            return;
        // Those that pass nearest to the cursor; more would take too long.
        if (m_near.size() > kMostForMeetings) {
            std::nth_element(
                m_near.begin(), m_near.begin() + kMostForMeetings, m_near.end(),
                [](const Near& a, const Near& b) { return a.distance < b.distance; });
            m_near.resize(kMostForMeetings);
        }
        for (size_t i = 0; i < m_near.size(); ++i)
            for (size_t j = i + 1; j < m_near.size(); ++j) {
                // The end at which one piece of a polyline goes over into the next is no meeting.
                const KcGeIntersections2d common = intersect(m_near[i].piece, m_near[j].piece);
                for (const KcGeCrossing2d& crossing : common.points)
                    if (m_near[i].curve != m_near[j].curve
                        || (!isEnd(crossing.first) && !isEnd(crossing.second))) {
                        m_entity = m_near[i].entity;
                        offer({ crossing.point.x, crossing.point.y, m_near[i].z }, kcedSnapIntersection);
                    }
            }
    }

    std::optional<KcEdSnap> best() const
    {
        if (m_rank == kNone)
            return {};
        return m_best;
    }
    bool isFull() const { return m_pieces >= kMostPieces; }

private:
    enum Rank { kNone = 3, kNearest = 2, kOfWhatPasses = 1, kPoint = 0 };
    struct Near {
        KcGeSegment2d piece;
        double distance = 0.0, z = 0.0;
        size_t curve = 0;
        KcDbObjectId entity;
    };

    static bool isEnd(double t)
    {
        return t < KcGeContext::gTol.equalVector || t > 1.0 - KcGeContext::gTol.equalVector;
    }

    void offer(KcGePoint3d point, KcEdSnapMode mode, Rank rank = kPoint)
    {
        const double distance = point.plan().distanceTo(m_cursor);
        if (!std::isfinite(distance) || (rank == kPoint && distance > m_request.aperture))
            return;
        if (rank > m_rank || (rank == m_rank && distance >= m_distance))
            return;
        m_rank = rank;
        m_distance = distance;
        m_best = { point, mode, m_entity };
    }

    /// Offers it as a point by itself, and as one of a curve that passes the cursor.
    void offerBoth(KcGePoint3d point, KcEdSnapMode mode)
    {
        offer(point, mode);
        offer(point, mode, kOfWhatPasses);
    }

    void lookAt(const KcGeCurve3d& curve, const KcGeMatrix3d& toWorld)
    {
        const auto frame = curve.frame();
        if (!frame) {
            lookAtSpatial(curve, toWorld);
            return;
        }
        const KcGeMatrix3d place = toWorld * *frame;
        const bool flat = place == KcGeMatrix3d();
        ++m_curve;
        for (const KcGeSegment2d& own : curve.pieces()) {
            if (isFull())
                return;
            if (!own.isFinite())
                continue;
            if (!touches(own, place, curve.isBounded()))
                continue;
            ++m_pieces;
            lookAtPiece(flat ? own : own.transformed(place), curve.isBounded(), place.entry(2, 3));
        }
        if (!curve.isBounded() && curve.hasStart() && wants(kcedSnapEnd))
            if (const auto start = curve.startPoint())
                offer(toWorld * *start, kcedSnapEnd);
    }

    /// Polylines that lie in no plane: seen along the Z axis.
    void lookAtSpatial(const KcGeCurve3d& curve, const KcGeMatrix3d& toWorld)
    {
        ++m_curve;
        const std::vector<KcGePoint3d> vertices = curve.vertices();
        for (const KcGePoint3d& vertex : vertices)
            if (wants(kcedSnapEnd))
                offer(toWorld * vertex, kcedSnapEnd);
        for (const KcGeSegment2d& piece : curve.plan()) {
            if (isFull())
                return;
            ++m_pieces;
            const KcGeSegment2d seen = toWorld == KcGeMatrix3d() ? piece : piece.transformed(toWorld);
            lookAtPiece(seen, true, 0.0);
        }
    }

    /// Whether a piece can have anything to do with the cursor; by boxes, and generously.
    bool touches(const KcGeSegment2d& piece, const KcGeMatrix3d& place, bool bounded) const
    {
        if (!bounded)
            return true;
        const KcGeExtents2d box = piece.extents();
        KcGeExtents3d own;
        own.addPoint({ box.min.x, box.min.y, 0.0 });
        own.addPoint({ box.max.x, box.max.y, 0.0 });
        const KcGeExtents3d seen = place.transformed(own);
        const double a = m_request.aperture;
        const bool near = seen.min.x - a <= m_cursor.x && m_cursor.x <= seen.max.x + a
            && seen.min.y - a <= m_cursor.y && m_cursor.y <= seen.max.y + a;
        return near;
    }

    void lookAtPiece(const KcGeSegment2d& piece, bool bounded, double z)
    {
        const auto at = [z](KcGePoint2d p) { return KcGePoint3d{ p.x, p.y, z }; };
        const auto nearest = bounded ? piece.closest(m_cursor) : piece.closestExtended(m_cursor);
        const bool passes = nearest.distance <= m_request.aperture;
        const bool whole = piece.isClosed();
        if (wants(kcedSnapEnd) && bounded && !(whole && piece.kind() != KcGeSegment2d::Kind::Spline)) {
            offer(at(piece.startPoint()), kcedSnapEnd);
            offer(at(piece.endPoint()), kcedSnapEnd);
        }
        if (wants(kcedSnapMiddle) && bounded && !whole)
            offer(at(piece.pointAt(piece.paramAtLength(piece.length() / 2.0))), kcedSnapMiddle);
        roundPoints(piece, passes, z);
        if (!passes)
            return;
        m_near.push_back({ piece, nearest.distance, z, m_curve, m_entity });
        if (m_request.base && wants(kcedSnapPerpendicular | kcedSnapTangent))
            fromBase(piece, z);
        if (wants(kcedSnapNearest))
            offer(at(nearest.point), kcedSnapNearest, kNearest);
    }

    void roundPoints(const KcGeSegment2d& piece, bool passes, double z)
    {
        const auto* arc = piece.asArc();
        const auto ellipse = arc ? std::nullopt : piece.asEllipse();
        if (!arc && !ellipse)
            return;
        const KcGePoint2d center = arc ? arc->center() : ellipse->center.plan();
        const KcGePoint3d middle{ center.x, center.y, z };
        if (wants(kcedSnapCenter)) {
            if (passes)
                offerBoth(middle, kcedSnapCenter);
            else
                offer(middle, kcedSnapCenter);
        }
        if (!wants(kcedSnapQuadrant))
            return;
        // Where the piece turns back in x or y.
        std::vector<double> params = piece.monotoneParams();
        if (arc)
            for (int quarter = 0; quarter < 4; ++quarter) {
                const double angle = quarter * kPi / 2.0;
                if (arc->isFullCircle() || arc->containsAngle(angle)) {
                    const KcGePoint2d p = arc->pointAtAngle(angle);
                    offer({ p.x, p.y, z }, kcedSnapQuadrant);
                }
            }
        else
            for (const double t : params) {
                const KcGePoint2d p = piece.pointAt(t);
                offer({ p.x, p.y, z }, kcedSnapQuadrant);
            }
    }

    /// Feet of perpendiculars from the base, and points where lines from it touch.
    void fromBase(const KcGeSegment2d& piece, double z)
    {
        const KcGePoint2d base = m_request.base->plan();
        const auto offerAt = [&](KcGePoint2d p, KcEdSnapMode mode) { offerBoth({ p.x, p.y, z }, mode); };
        const auto* arc = piece.asArc();
        if (wants(kcedSnapPerpendicular)) {
            if (piece.isLine()) {
                const auto foot = piece.closestExtended(base);
                offerAt(foot.point, kcedSnapPerpendicular);
            } else if (arc) {
                const double towards = (base - arc->center()).angle();
                for (const double angle : { towards, towards + kPi })
                    offerAt(arc->pointAtAngle(angle), kcedSnapPerpendicular);
            } else {
                for (const double t : roots(piece, [&](double t) {
                         return (piece.pointAt(t) - base).dotProduct(piece.directionAt(t));
                     }))
                    offerAt(piece.pointAt(t), kcedSnapPerpendicular);
            }
        }
        if (!wants(kcedSnapTangent) || piece.isLine())
            return;
        if (arc) {
            const KcGeVector2d way = base - arc->center();
            const double distance = way.length();
            if (distance <= arc->radius())
                return;
            const double half = std::acos(arc->radius() / distance);
            for (const double angle : { way.angle() + half, way.angle() - half })
                offerAt(arc->pointAtAngle(angle), kcedSnapTangent);
            return;
        }
        for (const double t : roots(piece, [&](double t) {
                 return (piece.pointAt(t) - base).crossProduct(piece.directionAt(t));
             }))
            offerAt(piece.pointAt(t), kcedSnapTangent);
    }

    /// Parameters at which a function of the piece changes its sign; by steps and bisection.
    template <class Function> static std::vector<double> roots(const KcGeSegment2d&, Function function)
    {
        constexpr int kSteps = 64, kHalvings = 48;
        std::vector<double> found;
        double before = function(0.0);
        for (int i = 1; i <= kSteps; ++i) {
            double low = double(i - 1) / kSteps, high = double(i) / kSteps;
            const double now = function(high);
            if ((before < 0.0) != (now < 0.0)) {
                for (int j = 0; j < kHalvings; ++j) {
                    const double middle = (low + high) / 2.0;
                    ((function(middle) < 0.0) == (before < 0.0) ? low : high) = middle;
                }
                found.push_back(low);
            }
            before = now;
        }
        return found;
    }

    const KcEdSnapRequest& m_request;
    KcGePoint2d m_cursor;
    KcDbObjectId m_entity;
    std::vector<Near> m_near;
    size_t m_pieces = 0, m_curve = 0;
    int m_rank = kNone;
    double m_distance = std::numeric_limits<double>::infinity();
    KcEdSnap m_best;
};

} // namespace

std::optional<KcEdSnap> kcedObjectSnap(const KcDbDatabase& database, const KcEdSnapRequest& request)
{
    if (!(request.modes & kcedSnapAll) || (request.modes & kcedSnapSuppressed) || !(request.aperture > 0.0)
        || !std::isfinite(request.cursor.x) || !std::isfinite(request.cursor.y))
        return {};
    KcGeExtents2d box;
    const KcGeVector2d half{ request.aperture, request.aperture };
    box.addPoint(request.cursor.plan() - half);
    box.addPoint(request.cursor.plan() + half);
    Search search(request);
    kcedVisitSeen(database, database.currentSpace(), box, kMostEntities, [&](const KcEdSeenEntity& seen) {
        search.look(seen);
        return !search.isFull();
    });
    search.meetings();
    return search.best();
}

QString kcedSnapModeNames(int modes)
{
    QStringList names;
    for (const ModeName& row : kNames)
        if (modes & row.mode)
            names += QLatin1String(row.name, kShortName).toString().toUpper();
    return names.isEmpty() || (modes & kcedSnapSuppressed) ? QStringLiteral("NON") : names.join(u',');
}

QString kcedSnapModesInWords(int modes)
{
    QStringList names;
    for (const ModeName& row : kNames)
        if (modes & row.mode)
            names += QLatin1String(row.name);
    return names.isEmpty() || (modes & kcedSnapSuppressed) ? QStringLiteral("No snap")
                                                           : names.join(QStringLiteral(" or "));
}

std::optional<int> kcedSnapModesOf(const QString& names)
{
    static const QRegularExpression between(QStringLiteral("[, ]+"));
    int modes = 0;
    for (const QString& word : names.toUpper().split(between, Qt::SkipEmptyParts)) {
        const auto* row = std::find_if(
            std::begin(kNames), std::end(kNames), [&](const ModeName& each) { return means(word, each); });
        if (row != std::end(kNames))
            modes |= row->mode;
        else if (word == u"NON" || word == u"NONE" || word == u"OFF")
            modes = 0;
        else if (word == u"ALL")
            modes = kcedSnapAll;
        else
            return {};
    }
    return modes;
}
