// Erasing, copying, moving, turning, scaling, mirroring.

#include "ed/commands/commands.h"
#include "ed/commands/tools.h"

#include "db/text.h"
#include "ed/command_stack.h"
#include "ed/copy_entity.h"
#include "ed/system_variables.h"

using namespace hand;

namespace {

/// Base point and second point of a displacement; Enter at the second takes the first as the displacement
/// itself.
std::optional<KcGeVector3d> askDisplacement(const std::vector<KcDbObjectId>& ids)
{
    const Ghosts ghosts(ids);
    kcedInitGet(KcEdPrompt::kNoEmpty);
    KcGePoint3d base, second;
    if (kcedGetPoint(nullptr, QStringLiteral("\nBase point: "), base) != kcedNormal)
        return {};
    kcedInitPreview([&](KcGePoint3d to) { return ghosts.at(KcGeMatrix3d::translation(to - base)); });
    const KcEdStatus status
        = kcedGetPoint(&base, QStringLiteral("\nSecond point <use the first as displacement>: "), second);
    if (status == kcedCancel)
        return {};
    const KcGeVector3d inUcs = status == kcedNormal ? second - base : base.asVector();
    return database().ucsToWorld() * inUcs;
}

/// What ROTATE and SCALE ask alike.
struct Change {
    std::vector<KcDbObjectId> ids;
    std::unique_ptr<Ghosts> ghosts;
    KcGePoint3d base;
    bool copies = false;
};
std::optional<Change> askChange()
{
    Change change;
    change.ids = changeable(askSelection());
    if (change.ids.empty())
        return {};
    change.ghosts = std::make_unique<Ghosts>(change.ids);
    kcedInitGet(KcEdPrompt::kNoEmpty);
    if (kcedGetPoint(nullptr, QStringLiteral("\nBase point: "), change.base) != kcedNormal)
        return {};
    return change;
}

/// A distance, or an angle, of two points; nothing when the user gave up.
using Ask = KcEdStatus (*)(const KcGePoint3d*, const QString&, double&);
std::optional<std::pair<double, double>>
askReference(const KcGePoint3d& base, Ask ask, const QString& what, double standard, int flags)
{
    double reference = standard, wanted = 0.0;
    kcedInitGet(flags);
    const QString offer = offered(ask == &kcedGetAngle ? standard * 180.0 / kPi : standard);
    if (ask(nullptr, QStringLiteral("\nReference %1%2: ").arg(what, offer), reference) == kcedCancel)
        return {};
    kcedInitGet(flags | KcEdPrompt::kNoEmpty);
    if (ask(&base, QStringLiteral("\nNew %1: ").arg(what), wanted) != kcedNormal)
        return {};
    return std::pair(reference, wanted);
}

/// Turns a mirrored text's writing over, so that it is read as before; it stays in the mirrored place.
void keepReadable(KcDbText& text, int generation)
{
    const KcGePoint3d mirrored = text.geomExtents().center();
    text.data().generation = generation;
    text.adjustAlignment();
    const KcGePoint3d now = text.geomExtents().center();
    if (!text.geomExtents().isEmpty())
        text.transformBy(KcGeMatrix3d::translation(mirrored - now));
}

} // namespace

void hand::erase()
{
    for (const KcDbObjectId id : changeable(askSelection()))
        if (KcDbWrite<KcDbEntity> entity(id); entity)
            entity->erase();
}

void hand::move()
{
    const auto ids = changeable(askSelection());
    if (ids.empty())
        return;
    if (const auto displacement = askDisplacement(ids))
        transform(ids, KcGeMatrix3d::translation(*displacement), false);
}

void hand::copy()
{
    const KcEdSelectionSet set = askSelection();
    if (set.isEmpty())
        return;
    if (const auto displacement = askDisplacement(set.ids()))
        transform(set.ids(), KcGeMatrix3d::translation(*displacement), true);
}

void hand::rotate()
{
    auto change = askChange();
    if (!change)
        return;
    const auto turned
        = [&](double angle) { return KcGeMatrix3d::rotation(angle, KcGeVector3d::kZAxis, change->base); };
    for (;;) {
        kcedInitGet(KcEdPrompt::kNoEmpty, QStringLiteral("Copy Reference _ Copy Reference"));
        kcedInitPreview([&](KcGePoint3d to) {
            return change->ghosts->at(turned((to.plan() - change->base.plan()).angle()));
        });
        double angle = 0.0;
        const KcEdStatus status
            = kcedGetAngle(&change->base, QStringLiteral("\nRotation angle or [Copy/Reference]: "), angle);
        if (status == kcedKeyword && kcedGetInput() == u"Copy") {
            change->copies = true;
            continue;
        }
        if (status == kcedKeyword) {
            const auto angles = askReference(change->base, &kcedGetAngle, QStringLiteral("angle"), 0.0, 0);
            if (!angles)
                return;
            angle = angles->second - angles->first;
        } else if (status != kcedNormal) {
            return;
        }
        return transform(change->ids, inWorld(turned(angle)), change->copies);
    }
}

void hand::scale()
{
    auto change = askChange();
    if (!change)
        return;
    for (;;) {
        const int refused = KcEdPrompt::kNoZero | KcEdPrompt::kNoNegative;
        kcedInitGet(KcEdPrompt::kNoEmpty | refused, QStringLiteral("Copy Reference _ Copy Reference"));
        kcedInitPreview([&](KcGePoint3d to) {
            const double factor = to.distanceTo(change->base);
            return factor > 0.0 ? change->ghosts->at(KcGeMatrix3d::scaling(factor, change->base))
                                : KcEdPreview();
        });
        double factor = 1.0;
        const KcEdStatus status
            = kcedGetDist(&change->base, QStringLiteral("\nScale factor or [Copy/Reference]: "), factor);
        if (status == kcedKeyword && kcedGetInput() == u"Copy") {
            change->copies = true;
            continue;
        }
        if (status == kcedKeyword) {
            const auto lengths
                = askReference(change->base, &kcedGetDist, QStringLiteral("length"), 1.0, refused);
            if (!lengths)
                return;
            factor = lengths->second / lengths->first;
        } else if (status != kcedNormal) {
            return;
        }
        if (!(factor > 0.0) || !std::isfinite(factor))
            return kcedSay(QStringLiteral("A scale factor is above 0."));
        return transform(change->ids, inWorld(KcGeMatrix3d::scaling(factor, change->base)), change->copies);
    }
}

void hand::mirror()
{
    const auto ids = changeable(askSelection());
    if (ids.empty())
        return;
    const Ghosts ghosts(ids);
    KcGePoint3d first, second;
    kcedInitGet(KcEdPrompt::kNoEmpty);
    if (kcedGetPoint(nullptr, QStringLiteral("\nFirst point of mirror line: "), first) != kcedNormal)
        return;
    kcedInitGet(KcEdPrompt::kNoEmpty);
    kcedInitPreview([&](KcGePoint3d to) {
        return first.plan().isEqualTo(to.plan()) ? KcEdPreview()
                                                 : ghosts.at(KcGeMatrix3d::mirroring(first, to - first));
    });
    if (kcedGetPoint(&first, QStringLiteral("\nSecond point of mirror line: "), second) != kcedNormal)
        return;
    if (first.plan().isEqualTo(second.plan()))
        return kcedSay(QStringLiteral("Two points at one place make no mirror line."));
    const auto erases = askYesNo(QStringLiteral("Erase source objects?"), false);
    if (!erases)
        return;
    const KcGeMatrix3d mirroring = inWorld(KcGeMatrix3d::mirroring(first, second - first));
    const bool readable = kcedVarInt(QStringLiteral("MIRRTEXT"), 0) == 0;
    size_t failed = 0;
    for (const KcDbObjectId id : ids) {
        const KcDbObjectId copy = kcedCopyEntity(id, mirroring);
        if (copy.isNull()) {
            ++failed;
            continue;
        }
        if (readable)
            if (const KcDbRead<KcDbText> before(id); before)
                keepReadable(*KcDbWrite<KcDbText>(copy), before->data().generation);
        if (*erases)
            KcDbWrite<KcDbEntity>(id)->erase();
    }
    if (failed > 0)
        kcedSay(QStringLiteral("%1 could not be mirrored: the program does not know their kind").arg(failed));
}
