// OFFSET: parallels of curves, at a distance or through a point.

#include "ed/commands/commands.h"
#include "ed/commands/tools.h"

#include "db/curves.h"
#include "db/polyline.h"
#include "ed/command_stack.h"
#include "ed/selection.h"
#include "ed/system_variables.h"

using namespace hand;

namespace {

const QString kVariable = QStringLiteral("OFFSETDIST"); // negative: through a point

/// Distance from the curve, and positive when a point lies to the right of the curve's direction, seen
/// against its normal; world coordinates. Nothing for curves of no plane.
std::optional<double> signedDistance(const KcGeCurve3d& curve, KcGePoint3d point)
{
    const auto frame = curve.frame();
    if (!frame)
        return {};
    const KcGePoint2d seen = (frame->inverse() * point).plan();
    double least = std::numeric_limits<double>::infinity(), side = 0.0;
    // At a corner, both pieces agree about a point beyond it, or it lies straight ahead of one.
    for (const KcGeSegment2d& piece : curve.pieces()) {
        const auto nearest = curve.isBounded() ? piece.closest(seen) : piece.closestExtended(seen);
        const double left = piece.directionAt(nearest.t).crossProduct(seen - nearest.point);
        if (nearest.distance < least - KcGeContext::gTol.equalPoint)
            least = nearest.distance, side = left;
        else if (nearest.distance <= least + KcGeContext::gTol.equalPoint)
            side += left;
    }
    return side > 0.0 ? -least : least;
}

/// How far off the parallel lies that a point asks for, as for `signedDistance`: a given distance on its
/// side, or through the point. Nothing when the point is on the curve, which has no side there.
std::optional<double>
wantedDistance(const KcDbCurve& curve, std::optional<double> distance, int steps, KcGePoint3d point)
{
    const auto away = signedDistance(curve.curve(), point);
    if (!away || *away == 0.0) // exact: only a point on the curve has no side
        return {};
    // An open curve goes on beyond its ends when the parallel has to pass a point there.
    return std::copysign(
        distance ? *distance * steps : curve.curve().closestExtended(point)->distance, *away);
}

/// The parallels that lie `distance` off, to the right of the curve's direction when positive.
Kcad::ErrorStatus parallelsOf(const KcDbCurve& curve, double distance, KcDbCurve::Curves& parallels)
{
    // Lines count the other way round.
    const bool straight = as<KcDbLine>(curve) || as<KcDbXline>(curve) || as<KcDbRay>(curve);
    return curve.getOffsetCurves(straight ? -distance : distance, parallels);
}

/// False when none were made, which is said.
bool appendParallels(KcDbObjectId id, double distance)
{
    const KcDbRead<KcDbCurve> curve(id);
    KcDbCurve::Curves parallels;
    const Kcad::ErrorStatus status = parallelsOf(*curve, distance, parallels);
    if (status != Kcad::eOk)
        kcedSay(QStringLiteral("That object has no parallel: %1.").arg(Kcad::errorStatusText(status)));
    else if (parallels.empty())
        kcedSay(QStringLiteral("There is no room for a parallel at that distance."));
    for (auto& parallel : parallels)
        appendAsItIs(std::move(parallel));
    return !parallels.empty();
}

/// The distance, or nothing for one that follows from points; false when the user gave up.
bool askDistance(std::optional<double>& distance)
{
    const double last = kcedVarReal(kVariable, 1.0);
    double value = last;
    kcedInitGet(KcEdPrompt::kNoZero | KcEdPrompt::kNoNegative, QStringLiteral("Through _ Through"));
    const QString offer = last > 0.0 ? offered(last) : offered(QStringLiteral("Through"));
    const KcEdStatus status
        = kcedGetDist(nullptr, QStringLiteral("\nOffset distance or [Through]%1: ").arg(offer), value);
    if (status == kcedCancel)
        return false;
    if (status == kcedKeyword || value <= 0.0)
        distance.reset();
    else
        distance = value;
    kcedSetVar(kVariable, distance.value_or(-1.0));
    return true;
}

/// One parallel of an object; false when the user gave up.
bool offsetOne(KcDbObjectId id, std::optional<double> distance, KcGePoint3d picked)
{
    bool several = false;
    int steps = 0;
    for (;;) {
        KcGePoint3d point;
        kcedInitGet(0, several ? QString() : QStringLiteral("Multiple _ Multiple"));
        kcedInitPreview([&](KcGePoint3d cursor) {
            KcEdPreview preview;
            const KcDbRead<KcDbCurve> curve(id);
            KcDbCurve::Curves parallels;
            const auto wanted = curve
                ? wantedDistance(*curve, distance, steps + 1, database().ucsToWorld() * cursor)
                : std::nullopt;
            if (wanted && parallelsOf(*curve, *wanted, parallels) == Kcad::eOk)
                for (auto& parallel : parallels)
                    preview.push_back(std::move(parallel));
            return preview;
        });
        const KcEdStatus status = kcedGetPoint(
            &picked,
            several        ? QStringLiteral("\nPoint on side to offset <next object>: ")
                : distance ? QStringLiteral("\nPoint on side to offset or [Multiple]: ")
                           : QStringLiteral("\nThrough point or [Multiple]: "),
            point);
        if (status == kcedKeyword) {
            several = true;
            continue;
        }
        if (status != kcedNormal)
            return status == kcedNone;
        const auto wanted
            = wantedDistance(*KcDbRead<KcDbCurve>(id), distance, steps + 1, database().ucsToWorld() * point);
        if (!wanted) {
            kcedSay(QStringLiteral("A point to one side of the object is wanted."));
            continue;
        }
        ++steps;
        if (appendParallels(id, *wanted))
            kcedRoundCompleted();
        if (!several)
            return true;
    }
}

} // namespace

void hand::offset()
{
    std::optional<double> distance;
    if (!askDistance(distance))
        return;
    for (;;) {
        KcEdEntityRequest request;
        request.prompt = kcedPreparedPrompt(
            KcEdPrompt::Kind::Entity, QStringLiteral("\nSelect object to offset <exit>: "));
        request.filter = { { 0, QStringLiteral("LINE,XLINE,RAY,ARC,CIRCLE,ELLIPSE,SPLINE,*POLYLINE") } };
        const KcEdEntityAnswer picked = kcedSelectEntity(request);
        if (picked.status != kcedNormal)
            return;
        if (KcDbRead<KcDbCurve>(picked.id)->curve().isEmpty())
            kcedSay(QStringLiteral("That object cannot be offset."));
        else if (!offsetOne(picked.id, distance, picked.point))
            return;
    }
}
