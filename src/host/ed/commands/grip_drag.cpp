// The preview and the result come from the same function.

#include "ed/commands/grip_drag.h"

#include "db/tables.h"
#include "ed/commands/tools.h"
#include "ed/console.h"
#include "ed/copy_entity.h"
#include "ed/documents.h"
#include "ed/grips.h"
#include "ed/jig.h"

#include <unordered_set>

namespace {

bool isOnLockedLayer(KcDbObjectId id)
{
    const KcDbRead<KcDbEntity> entity(id);
    if (!entity)
        return true;
    const KcDbRead<KcDbLayerTableRecord> layer(entity->layerId());
    return layer && layer->isLocked();
}

/// An entity and those of its grips that move.
struct Held {
    KcDbObjectId id;
    std::vector<size_t> indices;
};

/// Every grip from where it is now; the others stay where they were.
bool moveGrips(KcDbEntity& entity, const Held& held, KcGePoint3d from, KcGePoint3d to)
{
    const std::vector<KcGePoint3d> before = kcedGripPoints(entity);
    bool done = true;
    for (const size_t index : held.indices) {
        if (index >= before.size())
            return false;
        // What is held itself goes to the very point.
        const KcGePoint3d goal = before[index].isEqualTo(from) ? to : before[index] + (to - from);
        done = kcedMoveGrip(entity, index, goal) == Kcad::eOk && done;
    }
    return done;
}

/// What dragging does; Enter goes on to the next.
enum Mode { kStretch, kMove, kRotate, kScale, kMirror };
struct ModeRow {
    const char *name, *asksFor;
    KcEdDrag::Asks asks;
};
constexpr ModeRow kModes[] = {
    { "Stretch", "place of the grip", KcEdDrag::Asks::Point },
    { "Move", "place of the grip", KcEdDrag::Asks::Point },
    { "Rotate", "angle", KcEdDrag::Asks::Angle },
    { "Scale", "factor", KcEdDrag::Asks::Distance },
    { "Mirror", "second point of the axis", KcEdDrag::Asks::Point },
};

/// What becomes of the whole selection when the cursor, or the point that a typed value gives, lies there.
/// User coordinates.
KcGeMatrix3d transformOf(Mode mode, KcGePoint3d base, KcGePoint3d to)
{
    switch (mode) {
    case kRotate:
        return KcGeMatrix3d::rotation((to.plan() - base.plan()).angle(), KcGeVector3d::kZAxis, base);
    case kScale:
        return KcGeMatrix3d::scaling(to.distanceTo(base), base);
    case kMirror:
        return KcGeMatrix3d::mirroring(base, to - base);
    default:
        return KcGeMatrix3d::translation(to - base);
    }
}

class GripDrag {
public:
    GripDrag(KcApDocument& document, const std::vector<KcEdGrip>& grips, KcGePoint3d from);
    void run();

private:
    KcEdDragged ask();
    KcEdPreview preview(KcGePoint3d cursor) const;
    bool isOfUse(KcGePoint3d to) const;
    void change(KcGePoint3d to);
    void stretch(KcGePoint3d to);

    KcDbDatabase& m_database;
    KcGeMatrix3d m_ucs;
    std::vector<Held> m_held;
    std::vector<KcDbObjectId> m_whole; ///< what moves, turns and so on
    KcGePoint3d m_from; ///< world coordinates; what is stretched goes as far as this point
    KcGePoint3d m_base; ///< user coordinates
    Mode m_mode = kStretch;
    bool m_copies = false;
};

GripDrag::GripDrag(KcApDocument& document, const std::vector<KcEdGrip>& grips, KcGePoint3d from)
    : m_database(document.database())
    , m_ucs(m_database.ucsToWorld())
    , m_from(from)
    , m_base(m_ucs.inverse() * from)
{
    std::unordered_set<KcDbObjectId> locked;
    for (const KcEdGrip& grip : grips) {
        const auto known
            = std::find_if(m_held.begin(), m_held.end(), [&](const Held& h) { return h.id == grip.entity; });
        if (known != m_held.end())
            known->indices.push_back(grip.index);
        else if (isOnLockedLayer(grip.entity))
            locked.insert(grip.entity);
        else
            m_held.push_back({ grip.entity, { grip.index } });
    }
    for (const KcDbObjectId id : document.pickFirst.ids()) {
        if (isOnLockedLayer(id))
            locked.insert(id);
        else
            m_whole.push_back(id);
    }
    if (m_whole.empty())
        for (const Held& held : m_held)
            m_whole.push_back(held.id);
    if (!locked.empty())
        kcedSay(QStringLiteral("%1 on a locked layer").arg(locked.size()));
    if (m_held.size() == 1 && m_held.front().indices.size() == 1)
        if (const KcDbRead<KcDbEntity> entity(m_held.front().id); entity)
            m_base = m_ucs.inverse() * kcedGripBase(*entity, m_held.front().indices.front()).value_or(from);
    document.lastPoint = m_base; // "@3,0" goes from where the grip was
}

bool GripDrag::isOfUse(KcGePoint3d to) const
{
    return m_mode == kStretch || m_mode == kMove || to.distanceTo(m_base) > KcGeContext::gTol.equalPoint;
}

KcEdPreview GripDrag::preview(KcGePoint3d cursor) const
{
    KcEdPreview preview;
    for (const Held& held : m_held)
        if (auto copy = kcedDetachedCopy(held.id); copy && moveGrips(*copy, held, m_from, m_ucs * cursor))
            preview.push_back(std::move(copy));
    return preview;
}

KcEdDragged GripDrag::ask()
{
    const ModeRow& row = kModes[m_mode];
    const char* next = m_copies ? "end" : kModes[(m_mode + 1) % std::size(kModes)].name;
    KcEdDrag drag;
    drag.asks = row.asks;
    drag.flags = m_mode == kScale ? KcEdPrompt::kNoZero | KcEdPrompt::kNoNegative : 0;
    drag.keywords = QStringLiteral("Base Copy _ Base Copy");
    drag.prompt = QStringLiteral("\n%1: %2 or [Base/Copy] <%3>: ")
                      .arg(QLatin1String(row.name), QLatin1String(row.asksFor), QLatin1String(next));
    drag.base = m_base;
    if (m_mode == kStretch) {
        drag.preview = [&](KcGePoint3d cursor) { return preview(cursor); };
        return kcedDrag(drag);
    }
    const hand::Ghosts ghosts(m_whole);
    drag.preview = [&](KcGePoint3d cursor) {
        return isOfUse(cursor) ? ghosts.at(transformOf(m_mode, m_base, cursor)) : KcEdPreview();
    };
    return kcedDrag(drag);
}

void GripDrag::stretch(KcGePoint3d to)
{
    size_t refused = 0;
    for (const Held& held : m_held) {
        const KcDbObjectId id = m_copies ? kcedCopyEntity(held.id, {}) : held.id;
        if (KcDbWrite<KcDbEntity> entity(id); !entity || !moveGrips(*entity, held, m_from, m_ucs * to))
            ++refused;
    }
    if (refused > 0)
        kcedSay(QStringLiteral("%1 could not be changed that way").arg(refused));
}

void GripDrag::change(KcGePoint3d to)
{
    if (m_mode == kStretch)
        stretch(to);
    else if (isOfUse(to))
        hand::transform(m_whole, hand::inWorld(transformOf(m_mode, m_base, to)), m_copies);
}

void GripDrag::run()
{
    using Status = KcEdDragged::Status;
    std::optional<KcApUndoStep> step;
    while (!m_held.empty()) {
        const KcEdDragged answer = ask();
        if (answer.status == Status::Enter && !m_copies) {
            m_mode = Mode((m_mode + 1) % int(std::size(kModes)));
        } else if (answer.status == Status::Keyword && answer.keyword == u"Copy") {
            m_copies = true;
        } else if (answer.status == Status::Keyword) {
            KcGePoint3d base;
            if (kcedGetPoint(nullptr, QStringLiteral("\nBase point: "), base) != kcedNormal)
                return;
            m_base = base;
            m_from = m_ucs * base;
        } else if (answer.status == Status::Normal) {
            if (!step)
                step.emplace(m_database, QStringLiteral("GRIP"));
            change(answer.point);
            if (!m_copies)
                return;
        } else {
            return;
        }
    }
}

} // namespace

void kcedDragGrips(KcApDocument& document, const std::vector<KcEdGrip>& grips, KcGePoint3d from)
{
    GripDrag(document, grips, from).run();
}
