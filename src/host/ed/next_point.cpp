// Words for the next point, and what they make of it.

#include "ed/next_point.h"

#include "ed/console.h"
#include "ed/documents.h"
#include "ed/system_variables.h"
#include "ed/view.h"

namespace {

bool hasDirection(const KcEdPrompt& prompt)
{
    // Where any text is an answer, a number or a word is no less one.
    return prompt.kind == KcEdPrompt::Kind::Point && prompt.base && !(prompt.flags & KcEdPrompt::kAnyText);
}

} // namespace

KcEdNextPoint& kcedNextPoint()
{
    static KcEdNextPoint next;
    return next;
}

bool kcedSayNextPoint(const KcEdPrompt& prompt, const QString& line)
{
    const QString text = line.trimmed();
    if (hasDirection(prompt) && text.startsWith(QLatin1Char('<')))
        if (const auto degrees = kcedParseReal(text.mid(1))) {
            kcedNextPoint().angle = *degrees * kPi / 180.0;
            return true;
        }
    if (text.isEmpty() || !kcedTakesPoint(prompt.kind) || (prompt.flags & KcEdPrompt::kAnyText))
        return false;
    const auto snaps = kcedSnapModesOf(text);
    if (!snaps)
        return false;
    kcedNextPoint().snaps = snaps;
    if ((*snaps & (kcedSnapPerpendicular | kcedSnapTangent)) && !prompt.base)
        kcedSay(QStringLiteral("Perpendicular and tangent go from a point; there is none yet."));
    return true;
}

std::optional<KcEdSnap> kcedSnapFor(const KcEdPrompt& prompt, KcGePoint3d world, double aperture)
{
    const KcDbDatabase* database = kcedCurrentDatabase();
    const int modes = kcedNextPoint().snaps.value_or(kcedVarInt(QStringLiteral("OSMODE"), 0));
    if (!database || !(modes & kcedSnapAll) || modes & kcedSnapSuppressed)
        return {};
    KcEdSnapRequest request;
    request.cursor = world;
    request.aperture = aperture;
    request.modes = modes & kcedSnapAll;
    if (prompt.base)
        request.base = database->ucsToWorld() * *prompt.base;
    return kcedObjectSnap(*database, request);
}

KcGePoint3d kcedOnSaidLine(const KcEdPrompt& prompt, KcGePoint3d point)
{
    const auto angle = kcedNextPoint().angle;
    if (!angle || !prompt.base)
        return point;
    const KcGeVector3d way{ std::cos(*angle), std::sin(*angle), 0.0 };
    return *prompt.base + way * (point - *prompt.base).dotProduct(way);
}

std::variant<KcGePoint3d, KcEdRefusal> kcedSaidPoint(const KcEdPrompt& prompt, KcGePoint3d point)
{
    const KcDbDatabase* database = kcedCurrentDatabase();
    const int snaps = kcedNextPoint().snaps.value_or(0);
    if (database && snaps) {
        const KcGeMatrix3d ucs = database->ucsToWorld();
        const auto snap = kcedSnapFor(prompt, ucs * point, kcedSnapPixels * kcedPixelSize());
        if (!snap)
            return KcEdRefusal{ QStringLiteral("%1: there is none at this place. NON takes the place itself.")
                                    .arg(kcedSnapModesInWords(snaps)) };
        point = ucs.inverse() * snap->point;
    }
    return kcedOnSaidLine(prompt, point);
}

std::optional<KcGePoint3d>
kcedPointAtDistance(const KcEdPrompt& prompt, const QString& text, std::optional<KcGePoint3d> cursor)
{
    const auto distance = hasDirection(prompt) ? kcedParseReal(text.trimmed()) : std::nullopt;
    if (!distance)
        return {};
    if (const auto angle = kcedNextPoint().angle)
        return *prompt.base + KcGeVector3d{ std::cos(*angle), std::sin(*angle), 0.0 } * *distance;
    if (!cursor)
        return {};
    const KcGeVector3d way{ cursor->x - prompt.base->x, cursor->y - prompt.base->y, 0.0 };
    if (!(way.length() > KcGeContext::gTol.equalPoint))
        return {};
    return *prompt.base + way * (*distance / way.length());
}
