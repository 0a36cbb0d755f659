// Snap points first, then ortho, then the tracking lines.

#include "ui/aim.h"

#include "ed/system_variables.h"

namespace {

constexpr double kTrackPixels = 8.0; // so near to a tracking line the cursor is drawn onto it
constexpr double kSnapPixels = 10.0; // so near to a point of the drawing it is drawn to that

std::optional<KcEdSnap>
snapAt(KcApDocument& document, const KcEdPrompt& prompt, KcGePoint2d world, double pixel)
{
    const int modes = kcedVarInt(QStringLiteral("OSMODE"), 0);
    if (!(modes & kcedSnapAll) || modes & kcedSnapSuppressed)
        return {};
    KcEdSnapRequest request;
    request.cursor = { world.x, world.y, 0.0 };
    request.aperture = kSnapPixels * pixel;
    request.modes = modes & kcedSnapAll;
    if (prompt.base)
        request.base = document.database().ucsToWorld() * *prompt.base;
    return kcedObjectSnap(document.database(), request);
}

} // namespace

bool kcuiTakesPoint(KcEdPrompt::Kind kind)
{
    switch (kind) {
    case KcEdPrompt::Kind::Point:
    case KcEdPrompt::Kind::Corner:
    case KcEdPrompt::Kind::Distance:
    case KcEdPrompt::Kind::Angle:
    case KcEdPrompt::Kind::Track:
        return true;
    default:
        return false;
    }
}

KcUiAim kcuiAim(KcApDocument& document, const KcEdPrompt* prompt, KcGePoint2d world, double pixel)
{
    const KcGeMatrix3d toUser = document.database().ucsToWorld().inverse();
    KcUiAim aim{ toUser * KcGePoint3d{ world.x, world.y, 0.0 }, {}, {} };
    if (!prompt || !kcuiTakesPoint(prompt->kind))
        return aim;
    if (aim.snap = snapAt(document, *prompt, world, pixel); aim.snap) {
        aim.point = toUser * aim.snap->point;
        return aim;
    }
    if (!prompt->base || prompt->kind == KcEdPrompt::Kind::Corner)
        return aim;
    const KcGePoint3d base = *prompt->base;
    const KcGeVector3d way{ aim.point.x - base.x, aim.point.y - base.y, 0.0 };
    if (kcedVarInt(QStringLiteral("ORTHOMODE"), 0) != 0) {
        aim.point = std::abs(way.x) >= std::abs(way.y) ? KcGePoint3d{ aim.point.x, base.y, aim.point.z }
                                                       : KcGePoint3d{ base.x, aim.point.y, aim.point.z };
        return aim;
    }
    const double step = kcedVarReal(QStringLiteral("POLARANG"), 45.0) * kPi / 180.0;
    const double length = std::hypot(way.x, way.y);
    if (kcedVarInt(QStringLiteral("POLARMODE"), 0) == 0 || !(step > 0.0) || !(length > kTrackPixels * pixel))
        return aim;
    const double angle = std::atan2(way.y, way.x);
    const double nearest = std::round(angle / step) * step;
    if (length * std::abs(std::sin(angle - nearest)) > kTrackPixels * pixel)
        return aim;
    const double along = length * std::cos(angle - nearest);
    aim.point = { base.x + along * std::cos(nearest), base.y + along * std::sin(nearest), aim.point.z };
    aim.track = nearest;
    return aim;
}
