// CIRCLE and ARC.

#include "ed/commands/commands.h"
#include "ed/commands/tools.h"

#include "db/curves.h"

using namespace hand;

namespace {

/// Of the last circle, offered for the next one until the program ends.
double& lastRadius()
{
    static double radius = 0.0;
    return radius;
}

void appendCircle(KcGePoint3d center, double radius)
{
    if (!(radius > 0.0) || !std::isfinite(radius))
        return kcedSay(QStringLiteral("A circle needs a radius above 0."));
    lastRadius() = radius;
    append(std::make_unique<KcDbCircle>(center, radius));
}

void circleBetween()
{
    KcGePoint3d first, second;
    if (kcedGetPoint(nullptr, QStringLiteral("\nFirst end of the diameter: "), first) != kcedNormal
        || kcedGetPoint(&first, QStringLiteral("\nSecond end of the diameter: "), second) != kcedNormal)
        return;
    appendCircle(first + (second - first) * 0.5, first.plan().distanceTo(second.plan()) / 2.0);
}

/// The three points of an arc or circle; false when the user gave up or they make none, which is said.
bool askThreePoints(
    KcGePoint3d first, KcGePoint3d& second, KcGePoint3d& third, std::optional<KcGeCircArc2d>& arc)
{
    if (kcedGetPoint(&first, QStringLiteral("\nSecond point: "), second) != kcedNormal
        || kcedGetPoint(&second, QStringLiteral("\nThird point: "), third) != kcedNormal)
        return false;
    arc = KcGeCircArc2d::throughPoints(first.plan(), second.plan(), third.plan());
    if (!arc)
        kcedSay(QStringLiteral("These points lie on one line."));
    return arc.has_value();
}

void circleThrough()
{
    KcGePoint3d first, second, third;
    std::optional<KcGeCircArc2d> arc;
    if (kcedGetPoint(nullptr, QStringLiteral("\nFirst point on the circle: "), first) != kcedNormal
        || !askThreePoints(first, second, third, arc))
        return;
    appendCircle({ arc->center().x, arc->center().y, first.z }, arc->radius());
}

/// A counter-clockwise arc from one direction to another.
void appendArc(KcGePoint3d center, double radius, double startAngle, double endAngle)
{
    if (!(radius > 0.0) || !std::isfinite(radius))
        return kcedSay(QStringLiteral("An arc needs a radius above 0."));
    auto arc = std::make_unique<KcDbArc>();
    arc->data().center = center;
    arc->data().radius = radius;
    arc->data().startAngle = normalizedAngle(startAngle);
    arc->data().endAngle = normalizedAngle(endAngle);
    append(std::move(arc));
}

void appendArc(const KcGeCircArc2d& arc, double elevation)
{
    const bool reversed = arc.isClockwise();
    appendArc(
        { arc.center().x, arc.center().y, elevation }, arc.radius(),
        reversed ? arc.endAngle() : arc.startAngle(), reversed ? arc.startAngle() : arc.endAngle());
}

/// Start and centre are known; the end is a point, an angle or the length of the chord.
void arcFromCenter(KcGePoint3d start, KcGePoint3d center)
{
    const KcGeVector2d radius = start.plan() - center.plan();
    kcedInitGet(KcEdPrompt::kNoEmpty, QStringLiteral("Angle chordLength _ Angle Length"));
    KcGePoint3d end;
    const KcEdStatus status
        = kcedGetPoint(&center, QStringLiteral("\nEnd point of arc or [Angle/chordLength]: "), end);
    if (status == kcedNormal)
        return appendArc(center, radius.length(), radius.angle(), (end.plan() - center.plan()).angle());
    if (status != kcedKeyword)
        return;
    double sweep = 0.0;
    if (kcedGetInput() == u"Angle") {
        kcedInitGet(KcEdPrompt::kNoEmpty | KcEdPrompt::kNoZero);
        if (kcedGetAngle(&center, QStringLiteral("\nIncluded angle: "), sweep) != kcedNormal)
            return;
    } else {
        double chord = 0.0;
        kcedInitGet(KcEdPrompt::kNoEmpty | KcEdPrompt::kNoZero);
        if (kcedGetDist(&start, QStringLiteral("\nLength of the chord: "), chord) != kcedNormal)
            return;
        if (std::abs(chord) > 2.0 * radius.length())
            return kcedSay(QStringLiteral("The chord is longer than the diameter."));
        // A negative chord takes the larger of the two arcs.
        sweep = 2.0 * std::asin(std::abs(chord) / (2.0 * radius.length()));
        sweep = chord < 0.0 ? kTwoPi - sweep : sweep;
    }
    appendArc(KcGeCircArc2d(center.plan(), radius.length(), radius.angle(), sweep), center.z);
}

/// Start and end are known; the rest is the centre, the included angle, the direction at the start or the
/// radius.
void arcToEnd(KcGePoint3d start, KcGePoint3d end)
{
    kcedInitGet(KcEdPrompt::kNoEmpty, QStringLiteral("Angle Direction Radius _ Angle Direction Radius"));
    KcGePoint3d center;
    const KcEdStatus status
        = kcedGetPoint(&start, QStringLiteral("\nCenter of arc or [Angle/Direction/Radius]: "), center);
    if (status == kcedNormal) {
        const KcGeVector2d radius = start.plan() - center.plan();
        return appendArc(center, radius.length(), radius.angle(), (end.plan() - center.plan()).angle());
    }
    if (status != kcedKeyword)
        return;
    std::optional<KcGeCircArc2d> arc;
    const QString keyword = kcedGetInput();
    double value = 0.0;
    kcedInitGet(KcEdPrompt::kNoEmpty);
    if (keyword == u"Radius") {
        if (kcedGetDist(&end, QStringLiteral("\nRadius: "), value) != kcedNormal)
            return;
        arc = KcGeCircArc2d::fromRadius(start.plan(), end.plan(), std::abs(value), true);
    } else if (keyword == u"Angle") {
        if (kcedGetAngle(&start, QStringLiteral("\nIncluded angle: "), value) != kcedNormal)
            return;
        arc = KcGeCircArc2d::fromChord(start.plan(), end.plan(), value);
    } else {
        if (kcedGetAngle(&start, QStringLiteral("\nDirection at the start: "), value) != kcedNormal)
            return;
        const KcGeVector2d chord = end.plan() - start.plan(), along{ std::cos(value), std::sin(value) };
        arc = KcGeCircArc2d::fromChord(
            start.plan(), end.plan(), 2.0 * std::atan2(along.crossProduct(chord), along.dotProduct(chord)));
    }
    if (!arc)
        return kcedSay(QStringLiteral("No such arc joins these points."));
    appendArc(*arc, start.z);
}

} // namespace

void hand::circle()
{
    kcedInitGet(KcEdPrompt::kNoEmpty, QStringLiteral("3P 2P _ 3P 2P"));
    KcGePoint3d center;
    const KcEdStatus status
        = kcedGetPoint(nullptr, QStringLiteral("\nCenter of circle or [3P/2P]: "), center);
    if (status == kcedKeyword)
        return kcedGetInput() == u"2P" ? circleBetween() : circleThrough();
    if (status != kcedNormal)
        return;
    const double last = lastRadius();
    const int refused
        = KcEdPrompt::kNoZero | KcEdPrompt::kNoNegative | (last > 0.0 ? 0 : KcEdPrompt::kNoEmpty);
    const QString offer = last > 0.0 ? offered(last) : QString();
    double radius = last;
    kcedInitGet(refused, QStringLiteral("Diameter _ Diameter"));
    const KcEdStatus answer
        = kcedGetDist(&center, QStringLiteral("\nRadius of circle or [Diameter]%1: ").arg(offer), radius);
    if (answer == kcedNormal || answer == kcedNone)
        return appendCircle(center, radius);
    if (answer != kcedKeyword)
        return;
    double diameter = 2.0 * last;
    kcedInitGet(refused);
    if (kcedGetDist(
            &center,
            QStringLiteral("\nDiameter of circle%1: ").arg(last > 0.0 ? offered(diameter) : QString()),
            diameter)
        != kcedCancel)
        appendCircle(center, diameter / 2.0);
}

void hand::arc()
{
    kcedInitGet(KcEdPrompt::kNoEmpty, QStringLiteral("Center _ Center"));
    KcGePoint3d start;
    KcEdStatus status = kcedGetPoint(nullptr, QStringLiteral("\nStart point of arc or [Center]: "), start);
    KcGePoint3d center;
    if (status == kcedKeyword) {
        kcedInitGet(KcEdPrompt::kNoEmpty);
        if (kcedGetPoint(nullptr, QStringLiteral("\nCenter of arc: "), center) != kcedNormal)
            return;
        kcedInitGet(KcEdPrompt::kNoEmpty);
        if (kcedGetPoint(&center, QStringLiteral("\nStart point of arc: "), start) == kcedNormal)
            arcFromCenter(start, center);
        return;
    }
    if (status != kcedNormal)
        return;
    kcedInitGet(KcEdPrompt::kNoEmpty, QStringLiteral("Center End _ Center End"));
    KcGePoint3d second;
    status = kcedGetPoint(&start, QStringLiteral("\nSecond point of arc or [Center/End]: "), second);
    if (status == kcedKeyword) {
        const bool byCenter = kcedGetInput() == u"Center";
        kcedInitGet(KcEdPrompt::kNoEmpty);
        KcGePoint3d point;
        if (kcedGetPoint(
                &start,
                byCenter ? QStringLiteral("\nCenter of arc: ") : QStringLiteral("\nEnd point of arc: "),
                point)
            == kcedNormal)
            byCenter ? arcFromCenter(start, point) : arcToEnd(start, point);
        return;
    }
    if (status != kcedNormal)
        return;
    KcGePoint3d end;
    kcedInitGet(KcEdPrompt::kNoEmpty);
    if (kcedGetPoint(&second, QStringLiteral("\nEnd point of arc: "), end) != kcedNormal)
        return;
    const auto through = KcGeCircArc2d::throughPoints(start.plan(), second.plan(), end.plan());
    if (!through)
        return kcedSay(QStringLiteral("These points lie on one line."));
    appendArc(*through, start.z);
}
