// What was said for the point first, then snap points, then ortho, then the tracking lines.

#include "ui/aim.h"

#include "ed/next_point.h"
#include "ed/system_variables.h"

namespace {

constexpr double kTrackPixels = 8.0; // so near to a tracking line the cursor is drawn onto it

} // namespace

KcUiAim kcuiAim(KcApDocument& document, const KcEdPrompt* prompt, KcGePoint2d world, double pixel)
{
    const KcGeMatrix3d toUser = document.database().ucsToWorld().inverse();
    KcUiAim aim{ toUser * KcGePoint3d{ world.x, world.y, 0.0 }, {}, {} };
    if (!prompt || !kcedTakesPoint(prompt->kind))
        return aim;
    aim.snap = kcedSnapFor(*prompt, { world.x, world.y, 0.0 }, kcedSnapPixels * pixel);
    if (aim.snap)
        aim.point = toUser * aim.snap->point;
    if (const auto said = kcedNextPoint().angle; said && prompt->base) {
        aim.point = kcedOnSaidLine(*prompt, aim.point);
        aim.track = *said;
        return aim;
    }
    if (aim.snap || !prompt->base || prompt->kind == KcEdPrompt::Kind::Corner)
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
