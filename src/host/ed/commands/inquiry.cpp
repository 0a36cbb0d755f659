// LIST, DIST, AREA, SETVAR, OSNAP: what is there, and how large; settings by name.

#include "ed/commands/commands.h"
#include "ed/commands/tools.h"

#include "db/curve.h"
#include "db/hatch.h"
#include "ed/entity_dump.h"
#include "ed/object_snap.h"
#include "ed/system_variables.h"
#include "ed/wild_card.h"
#include "ge/polygon.h"

#include <QJsonDocument>

using namespace hand;

namespace {

QString measure(double value)
{
    return QString::number(value, 'f', std::clamp(kcedVarInt(QStringLiteral("LUPREC"), 4), 0, 8));
}

QString angle(double radians)
{
    return QString::number(
        radians * 180.0 / kPi, 'f', std::clamp(kcedVarInt(QStringLiteral("AUPREC"), 0), 0, 8));
}

struct Size {
    double area = 0.0, perimeter = 0.0;
};

/// Of a curve or hatch; nothing for other kinds, and for curves of no plane.
std::optional<Size> sizeOf(KcDbObjectId id)
{
    Size size;
    if (const KcDbRead<KcDbHatch> hatch(id); hatch) {
        const auto area = hatch->getArea();
        if (!area)
            return {};
        for (const auto& outline : hatch->boundaryCurves())
            size.perimeter += outline->curve().length().value_or(0.0);
        size.area = *area;
        return size;
    }
    const KcDbRead<KcDbCurve> curve(id);
    if (!curve || curve->getArea(size.area) != Kcad::eOk)
        return {};
    size.perimeter = curve->curve().length().value_or(0.0);
    return size;
}

/// The polygon of points that the user enters; nothing when he gave up.
std::optional<Size> askPolygon(KcGePoint3d first)
{
    std::vector<KcGePoint3d> points{ first };
    for (;;) {
        KcGePoint3d next;
        const KcEdStatus status = kcedGetPoint(&points.back(), QStringLiteral("\nNext corner point: "), next);
        if (status == kcedCancel)
            return {};
        if (status != kcedNormal)
            break;
        points.push_back(next);
    }
    Size size;
    const KcGePoint3d origin = points.front();
    for (size_t i = 0; i < points.size(); ++i) {
        const KcGePoint3d& a = points[i];
        const KcGePoint3d& b = points[(i + 1) % points.size()];
        size.area += (a.plan() - origin.plan()).crossProduct(b.plan() - origin.plan()) / 2.0;
        size.perimeter += a.plan().distanceTo(b.plan());
    }
    size.area = std::abs(size.area);
    return size;
}

void say(const Size& size)
{
    kcedSay(QStringLiteral("Area = %1, Perimeter = %2").arg(measure(size.area), measure(size.perimeter)));
}

} // namespace

void hand::list()
{
    const KcEdSelectionSet set = askSelection();
    for (const KcDbObjectId id : set.ids())
        if (const KcDbRead<KcDbEntity> entity(id); entity)
            kcedSay(QString::fromUtf8(QJsonDocument(kcedDumpEntity(*entity)).toJson(QJsonDocument::Compact)));
}

void hand::distance()
{
    KcGePoint3d first, second;
    kcedInitGet(KcEdPrompt::kNoEmpty);
    if (kcedGetPoint(nullptr, QStringLiteral("\nFirst point: "), first) != kcedNormal)
        return;
    kcedInitGet(KcEdPrompt::kNoEmpty);
    if (kcedGetPoint(&first, QStringLiteral("\nSecond point: "), second) != kcedNormal)
        return;
    const KcGeVector3d way = second - first;
    kcedSay(QStringLiteral("Distance = %1, Angle in XY Plane = %2")
                .arg(measure(way.length()), angle(KcGeVector2d{ way.x, way.y }.angle())));
    kcedSay(QStringLiteral("Delta X = %1, Delta Y = %2, Delta Z = %3")
                .arg(measure(way.x), measure(way.y), measure(way.z)));
}

void hand::area()
{
    double total = 0.0;
    int sign = 0; // 0: one area, no total
    for (;;) {
        kcedInitGet(
            0,
            sign > 0       ? QStringLiteral("Object Subtract _ Object Subtract")
                : sign < 0 ? QStringLiteral("Object Add _ Object Add")
                           : QStringLiteral("Object Add Subtract _ Object Add Subtract"));
        KcGePoint3d first;
        const KcEdStatus status = kcedGetPoint(
            nullptr,
            sign > 0       ? QStringLiteral("\n(ADD) First corner point or [Object/Subtract]: ")
                : sign < 0 ? QStringLiteral("\n(SUBTRACT) First corner point or [Object/Add]: ")
                           : QStringLiteral("\nFirst corner point or [Object/Add/Subtract]: "),
            first);
        std::optional<Size> size;
        if (status == kcedKeyword && kcedGetInput() != u"Object") {
            sign = kcedGetInput() == u"Add" ? 1 : -1;
            continue;
        }
        if (status == kcedKeyword) {
            KcDbObjectId id;
            KcGePoint3d at;
            const KcEdStatus picked = kcedEntSel(QStringLiteral("\nSelect object: "), id, at);
            if (picked == kcedCancel || (picked != kcedNormal && sign == 0))
                return;
            if (picked != kcedNormal)
                continue;
            size = sizeOf(id);
            if (!size) {
                kcedSay(QStringLiteral("That object has no area."));
                continue;
            }
        } else if (status == kcedNormal) {
            size = askPolygon(first);
        }
        if (!size)
            return;
        say(*size);
        if (sign == 0)
            return;
        total += sign * size->area;
        kcedSay(QStringLiteral("Total area = %1").arg(measure(total)));
    }
}

void hand::variable()
{
    static QString last;
    QString name;
    const KcEdStatus status
        = kcedGetString(false, QStringLiteral("\nVariable name or [?]%1: ").arg(offered(last)), name);
    if (status == kcedCancel || (status == kcedNone && last.isEmpty()))
        return;
    if (status == kcedNone)
        name = last;
    if (name == u"?") {
        for (const QString& each : kcedVarNames())
            if (const auto value = kcedGetVar(each))
                kcedSay(QStringLiteral("%1 %2").arg(each, -12).arg(kcedVarAsText(*value)));
        return;
    }
    if (!kcedHasVar(name))
        return kcedSay(QStringLiteral("There is no variable %1.").arg(name));
    last = name.toUpper();
    kcedAskVar(name);
}

void hand::objectSnapModes()
{
    const QString variable = QStringLiteral("OSMODE");
    const int before = kcedVarInt(variable, 0);
    kcedSay(QStringLiteral("Current modes: %1").arg(kcedSnapModeNames(before)));
    for (;;) {
        QString text;
        if (kcedGetString(
                true, QStringLiteral("\nObject snap modes, such as END,MID (NON: none; Enter keeps them): "),
                text)
            != kcedNormal)
            return;
        if (const auto modes = kcedSnapModesOf(text)) {
            kcedSetVar(variable, int64_t(*modes));
            return;
        }
        kcedSay(
            QStringLiteral("\"%1\" names no modes. There are %2.").arg(text, kcedSnapModeNames(kcedSnapAll)));
    }
}
