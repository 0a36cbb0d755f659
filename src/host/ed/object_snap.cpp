// Finding snap points: those that entities have by themselves, and those where curves meet or are met from a
// base point.

#include "ed/object_snap.h"

#include "db/block_reference.h"
#include "db/curves.h"
#include "db/polyline.h"
#include "db/wipeout.h"
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

/// Of what has corners and is no curve, in its own coordinates.
std::vector<KcGePoint3d> cornersOf(const KcDbEntity& entity)
{
    if (const auto* wipeout = as<KcDbWipeout>(entity))
        return wipeout->outline();
    std::vector<KcGePoint3d> corners;
    if (const auto* face = as<KcDbFace>(entity))
        corners.assign(std::begin(face->data().corners), std::end(face->data().corners));
    if (const auto* solid = as<KcDbSolid>(entity)) {
        const KcGeMatrix3d plane = KcGeMatrix3d::planeToWorld(solid->data().normal);
        for (const KcGePoint3d& corner : solid->data().corners)
            corners.push_back(plane * corner);
    }
    return corners;
}

/// How high a piece lies, by its points seen from above: it rises evenly along one direction.
class Height {
public:
    Height() = default;
    static Height level(double z) { return { {}, z, {} }; }
    static Height between(KcGePoint3d a, KcGePoint3d b)
    {
        const KcGeVector2d way = b.plan() - a.plan();
        const double length = way.length();
        if (!(length > KcGeContext::gTol.equalPoint))
            return level(a.z);
        return { a.plan(), a.z, way * ((b.z - a.z) / (length * length)) };
    }
    /// Of the XY plane of a placed coordinate system; that of its origin where it is seen from its edge.
    static Height ofPlane(const KcGeMatrix3d& place)
    {
        const KcGePoint3d origin = place * KcGePoint3d();
        const KcGeVector3d normal = place.axis(0).crossProduct(place.axis(1));
        if (!(std::abs(normal.z) > KcGeContext::gTol.equalVector * normal.length()))
            return level(origin.z);
        return { origin.plan(), origin.z, KcGeVector2d{ -normal.x / normal.z, -normal.y / normal.z } };
    }
    KcGePoint3d at(KcGePoint2d p) const { return { p.x, p.y, m_z + m_slope.dotProduct(p - m_from) }; }

private:
    Height(KcGePoint2d from, double z, KcGeVector2d slope)
        : m_from(from)
        , m_z(z)
        , m_slope(slope)
    {
    }
    KcGePoint2d m_from;
    double m_z = 0.0;
    KcGeVector2d m_slope;
};

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
        if (wants(kcedSnapEnd))
            for (const KcGePoint3d& corner : cornersOf(seen.entity))
                offer(at(corner), kcedSnapEnd);
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
                        offer(m_near[i].height.at(crossing.point), kcedSnapIntersection);
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
        Height height;
        double distance = 0.0;
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
            const auto placed = [&](KcGePoint2d p) { return place * KcGePoint3d{ p.x, p.y, 0.0 }; };
            const Height height = own.isLine()
                ? Height::between(placed(own.startPoint()), placed(own.endPoint()))
                : Height::ofPlane(place);
            lookAtPiece(flat ? own : own.transformed(place), curve.isBounded(), height);
        }
        if (!curve.isBounded() && curve.hasStart() && wants(kcedSnapEnd))
            if (const auto start = curve.startPoint())
                offer(toWorld * *start, kcedSnapEnd);
    }

    /// What lies in no plane: polylines, and splines, whose height between their ends is only near the truth.
    void lookAtSpatial(const KcGeCurve3d& curve, const KcGeMatrix3d& toWorld)
    {
        ++m_curve;
        std::vector<KcGePoint3d> vertices = curve.vertices();
        if (curve.isClosed() && !vertices.empty())
            vertices.push_back(vertices.front());
        const std::vector<KcGeSegment2d> plan = curve.plan();
        for (size_t i = 0; i < plan.size() && i + 1 < vertices.size() && !isFull(); ++i) {
            ++m_pieces;
            const Height height = Height::between(toWorld * vertices[i], toWorld * vertices[i + 1]);
            lookAtPiece(toWorld == KcGeMatrix3d() ? plan[i] : plan[i].transformed(toWorld), true, height);
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

    void lookAtPiece(const KcGeSegment2d& piece, bool bounded, const Height& height)
    {
        const auto at = [&](KcGePoint2d p) { return height.at(p); };
        const auto nearest = bounded ? piece.closest(m_cursor) : piece.closestExtended(m_cursor);
        const bool passes = nearest.distance <= m_request.aperture;
        const bool whole = piece.isClosed();
        if (wants(kcedSnapEnd) && bounded && !(whole && piece.kind() != KcGeSegment2d::Kind::Spline)) {
            offer(at(piece.startPoint()), kcedSnapEnd);
            offer(at(piece.endPoint()), kcedSnapEnd);
        }
        if (wants(kcedSnapMiddle) && bounded && !whole)
            offer(at(piece.pointAt(piece.paramAtLength(piece.length() / 2.0))), kcedSnapMiddle);
        roundPoints(piece, passes, height);
        if (!passes)
            return;
        m_near.push_back({ piece, height, nearest.distance, m_curve, m_entity });
        if (m_request.base && wants(kcedSnapPerpendicular | kcedSnapTangent))
            fromBase(piece, height);
        if (wants(kcedSnapNearest))
            offer(at(nearest.point), kcedSnapNearest, kNearest);
    }

    void roundPoints(const KcGeSegment2d& piece, bool passes, const Height& height)
    {
        const auto* arc = piece.asArc();
        const auto ellipse = arc ? std::nullopt : piece.asEllipse();
        if (!arc && !ellipse)
            return;
        const KcGePoint2d center = arc ? arc->center() : ellipse->center.plan();
        const KcGePoint3d middle = height.at(center);
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
                    offer(height.at(arc->pointAtAngle(angle)), kcedSnapQuadrant);
                }
            }
        else
            for (const double t : params) {
                offer(height.at(piece.pointAt(t)), kcedSnapQuadrant);
            }
    }

    /// Feet of perpendiculars from the base, and points where lines from it touch.
    void fromBase(const KcGeSegment2d& piece, const Height& height)
    {
        const KcGePoint2d base = m_request.base->plan();
        const auto offerAt = [&](KcGePoint2d p, KcEdSnapMode mode) { offerBoth(height.at(p), mode); };
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
