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

/// Shows the circle of a radius that follows from the cursor, while the next question waits.
void previewCircle(std::function<std::pair<KcGePoint3d, double>(KcGePoint3d cursor)> circle)
{
    kcedInitPreview([circle = std::move(circle)](KcGePoint3d cursor) {
        const auto [center, radius] = circle(cursor);
        return radius > 0.0 ? sketch(std::make_unique<KcDbCircle>(center, radius)) : KcEdPreview();
    });
}

std::pair<KcGePoint3d, double> circleBetween(KcGePoint3d first, KcGePoint3d second)
{
    return { first + (second - first) * 0.5, first.plan().distanceTo(second.plan()) / 2.0 };
}

void circleBetween()
{
    KcGePoint3d first, second;
    if (kcedGetPoint(nullptr, QStringLiteral("\nFirst end of the diameter: "), first) != kcedNormal)
        return;
    previewCircle([&](KcGePoint3d cursor) { return circleBetween(first, cursor); });
    if (kcedGetPoint(&first, QStringLiteral("\nSecond end of the diameter: "), second) != kcedNormal)
        return;
    const auto [center, radius] = circleBetween(first, second);
    appendCircle(center, radius);
}

void circleThrough()
{
    KcGePoint3d first, second, third;
    if (kcedGetPoint(nullptr, QStringLiteral("\nFirst point on the circle: "), first) != kcedNormal
        || kcedGetPoint(&first, QStringLiteral("\nSecond point: "), second) != kcedNormal)
        return;
    const auto through = [&](KcGePoint3d last) -> std::pair<KcGePoint3d, double> {
        const auto arc = KcGeCircArc2d::throughPoints(first.plan(), second.plan(), last.plan());
        return arc ? std::pair(KcGePoint3d{ arc->center().x, arc->center().y, first.z }, arc->radius())
                   : std::pair(first, 0.0);
    };
    previewCircle(through);
    if (kcedGetPoint(&second, QStringLiteral("\nThird point: "), third) != kcedNormal)
        return;
    const auto [center, radius] = through(third);
    if (radius > 0.0)
        appendCircle(center, radius);
    else
        kcedSay(QStringLiteral("These points lie on one line."));
}

/// A counter-clockwise arc from one direction to another; null without a radius.
std::unique_ptr<KcDbArc> makeArc(KcGePoint3d center, double radius, double startAngle, double endAngle)
{
    if (!(radius > 0.0) || !std::isfinite(radius))
        return {};
    auto arc = std::make_unique<KcDbArc>();
    arc->data().center = center;
    arc->data().radius = radius;
    arc->data().startAngle = normalizedAngle(startAngle);
    arc->data().endAngle = normalizedAngle(endAngle);
    return arc;
}

std::unique_ptr<KcDbArc> makeArc(const std::optional<KcGeCircArc2d>& arc, double elevation)
{
    if (!arc)
        return {};
    const bool reversed = arc->isClockwise();
    return makeArc(
        { arc->center().x, arc->center().y, elevation }, arc->radius(),
        reversed ? arc->endAngle() : arc->startAngle(), reversed ? arc->startAngle() : arc->endAngle());
}

/// From a start about a centre to the direction of a point.
std::unique_ptr<KcDbArc> makeArcAbout(KcGePoint3d center, KcGePoint3d start, KcGePoint3d end)
{
    const KcGeVector2d radius = start.plan() - center.plan();
    return makeArc(center, radius.length(), radius.angle(), (end.plan() - center.plan()).angle());
}

void appendArc(std::unique_ptr<KcDbArc> arc, const char* otherwise)
{
    if (arc)
        append(std::move(arc));
    else
        kcedSay(QString::fromLatin1(otherwise));
}

constexpr char kNoRadius[] = "An arc needs a radius above 0.";

/// Start and centre are known; the end is a point, an angle or the length of the chord.
void arcFromCenter(KcGePoint3d start, KcGePoint3d center)
{
    const KcGeVector2d radius = start.plan() - center.plan();
    kcedInitGet(KcEdPrompt::kNoEmpty, QStringLiteral("Angle chordLength _ Angle Length"));
    kcedInitPreview([&](KcGePoint3d cursor) { return sketch(makeArcAbout(center, start, cursor)); });
    KcGePoint3d end;
    const KcEdStatus status
        = kcedGetPoint(&center, QStringLiteral("\nEnd point of arc or [Angle/chordLength]: "), end);
    if (status == kcedNormal)
        return appendArc(makeArcAbout(center, start, end), kNoRadius);
    if (status != kcedKeyword)
        return;
    const auto swept = [&](double sweep) {
        return makeArc(KcGeCircArc2d(center.plan(), radius.length(), radius.angle(), sweep), center.z);
    };
    double sweep = 0.0;
    if (kcedGetInput() == u"Angle") {
        kcedInitGet(KcEdPrompt::kNoEmpty | KcEdPrompt::kNoZero);
        kcedInitPreview(
            [&](KcGePoint3d cursor) { return sketch(swept((cursor.plan() - center.plan()).angle())); });
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
    appendArc(swept(sweep), kNoRadius);
}

/// Start and end are known; the rest is the centre, the included angle, the direction at the start or the
/// radius.
void arcToEnd(KcGePoint3d start, KcGePoint3d end)
{
    kcedInitGet(KcEdPrompt::kNoEmpty, QStringLiteral("Angle Direction Radius _ Angle Direction Radius"));
    kcedInitPreview([&](KcGePoint3d cursor) { return sketch(makeArcAbout(cursor, start, end)); });
    KcGePoint3d center;
    const KcEdStatus status
        = kcedGetPoint(&start, QStringLiteral("\nCenter of arc or [Angle/Direction/Radius]: "), center);
    if (status == kcedNormal)
        return appendArc(makeArcAbout(center, start, end), kNoRadius);
    if (status != kcedKeyword)
        return;
    const QString keyword = kcedGetInput();
    const auto joining = [&](double value) {
        if (keyword == u"Radius")
            return makeArc(
                KcGeCircArc2d::fromRadius(start.plan(), end.plan(), std::abs(value), true), start.z);
        if (keyword == u"Angle")
            return makeArc(KcGeCircArc2d::fromChord(start.plan(), end.plan(), value), start.z);
        const KcGeVector2d chord = end.plan() - start.plan(), along{ std::cos(value), std::sin(value) };
        const double half = std::atan2(along.crossProduct(chord), along.dotProduct(chord));
        return makeArc(KcGeCircArc2d::fromChord(start.plan(), end.plan(), 2.0 * half), start.z);
    };
    double value = 0.0;
    kcedInitGet(KcEdPrompt::kNoEmpty);
    kcedInitPreview([&](KcGePoint3d cursor) {
        return sketch(
            joining(keyword == u"Radius" ? cursor.distanceTo(end) : (cursor.plan() - start.plan()).angle()));
    });
    const KcEdStatus given = keyword == u"Radius"
        ? kcedGetDist(&end, QStringLiteral("\nRadius: "), value)
        : kcedGetAngle(
            &start,
            keyword == u"Angle" ? QStringLiteral("\nIncluded angle: ")
                                : QStringLiteral("\nDirection at the start: "),
            value);
    if (given == kcedNormal)
        appendArc(joining(value), "No such arc joins these points.");
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
    previewCircle([&](KcGePoint3d cursor) { return std::pair(center, cursor.distanceTo(center)); });
    const KcEdStatus answer
        = kcedGetDist(&center, QStringLiteral("\nRadius of circle or [Diameter]%1: ").arg(offer), radius);
    if (answer == kcedNormal || answer == kcedNone)
        return appendCircle(center, radius);
    if (answer != kcedKeyword)
        return;
    double diameter = 2.0 * last;
    kcedInitGet(refused);
    previewCircle([&](KcGePoint3d cursor) { return std::pair(center, cursor.distanceTo(center) / 2.0); });
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
    const auto through = [&](KcGePoint3d end) {
        return makeArc(KcGeCircArc2d::throughPoints(start.plan(), second.plan(), end.plan()), start.z);
    };
    KcGePoint3d end;
    kcedInitGet(KcEdPrompt::kNoEmpty);
    kcedInitPreview([&](KcGePoint3d cursor) { return sketch(through(cursor)); });
    if (kcedGetPoint(&second, QStringLiteral("\nEnd point of arc: "), end) == kcedNormal)
        appendArc(through(end), "These points lie on one line.");
}
