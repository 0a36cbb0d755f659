// Small procedures that many commands call.

#include "ed/commands/tools.h"

#include "db/block_reference.h"
#include "db/block_table_record.h"
#include "db/polyline.h"
#include "ed/copy_entity.h"
#include "ed/documents.h"
#include "ed/pick_geometry.h"
#include "ed/selection.h"

namespace hand {

KcDbDatabase& database()
{
    return kcDocManagerPtr()->curDocument()->database();
}

QString shown(double value)
{
    return QString::number(value, 'g', 10);
}

QString shown(KcGePoint3d point)
{
    return QStringLiteral("%1,%2,%3").arg(shown(point.x), shown(point.y), shown(point.z));
}

QString offered(double value)
{
    return offered(shown(value));
}

QString offered(const QString& value)
{
    return value.isEmpty() ? QString() : QStringLiteral(" <%1>").arg(value);
}

KcDbObjectId append(std::unique_ptr<KcDbEntity> entity)
{
    entity->setDatabaseDefaults(database());
    if (const KcGeMatrix3d toWorld = database().ucsToWorld(); toWorld != KcGeMatrix3d())
        entity->transformBy(toWorld);
    return appendAsItIs(std::move(entity));
}

KcDbObjectId appendAsItIs(std::unique_ptr<KcDbEntity> entity)
{
    return KcDbRead<KcDbBlockTableRecord>(database().currentSpace())->appendEntity(std::move(entity));
}

KcEdSelectionSet askSelection(const QString& prompt)
{
    KcEdSelectionRequest request;
    request.prompt = kcedPreparedPrompt(
        KcEdPrompt::Kind::Selection, prompt.isEmpty() ? QStringLiteral("\nSelect objects: ") : prompt);
    KcEdSelectionAnswer answer = kcedSelect(request);
    return answer.status == kcedNormal ? std::move(answer.set) : KcEdSelectionSet();
}

std::vector<KcDbObjectId> changeable(const KcEdSelectionSet& set)
{
    KcEdPickGeometry layers(1.0);
    std::vector<KcDbObjectId> ids;
    for (const KcDbObjectId id : set.ids())
        if (const KcDbRead<KcDbEntity> entity(id); entity && !layers.isOnLockedLayer(*entity))
            ids.push_back(id);
    if (const size_t locked = set.size() - ids.size(); locked > 0)
        kcedSay(QStringLiteral("%1 on a locked layer").arg(locked));
    return ids;
}

bool isLocked(KcDbObjectId entity)
{
    KcEdPickGeometry layers(1.0);
    const KcDbRead<KcDbEntity> object(entity);
    if (!object || !layers.isOnLockedLayer(*object))
        return false;
    kcedSay(QStringLiteral("That object is on a locked layer."));
    return true;
}

void transform(const std::vector<KcDbObjectId>& ids, const KcGeMatrix3d& toWorld, bool copies)
{
    size_t failed = 0;
    for (const KcDbObjectId id : ids) {
        if (copies) {
            failed += kcedCopyEntity(id, toWorld).isNull();
            continue;
        }
        KcDbWrite<KcDbEntity> entity(id);
        failed += !entity || entity->transformBy(toWorld) != Kcad::eOk;
    }
    if (failed > 0)
        kcedSay(QStringLiteral("%1 could not be %2: the program does not know their kind, or it cannot be so")
                    .arg(failed)
                    .arg(copies ? QStringLiteral("copied") : QStringLiteral("changed")));
}

KcGeMatrix3d inWorld(const KcGeMatrix3d& inUcs)
{
    const KcGeMatrix3d ucs = database().ucsToWorld();
    return ucs * inUcs * ucs.inverse();
}

KcEdPreview sketch(std::unique_ptr<KcDbEntity> entity)
{
    KcEdPreview preview;
    if (!entity)
        return preview;
    entity->setDatabaseDefaults(database());
    if (const KcGeMatrix3d toWorld = database().ucsToWorld(); toWorld != KcGeMatrix3d())
        entity->transformBy(toWorld);
    preview.push_back(std::move(entity));
    return preview;
}

Ghosts::Ghosts(const std::vector<KcDbObjectId>& ids)
    : m_ids(ids)
{
    kcedHighlight(m_ids, true);
    constexpr size_t kMost = 250; // more could not follow the cursor
    KcGeExtents3d box;
    for (const KcDbObjectId id : ids) {
        if (m_copies.size() < kMost) {
            if (auto copy = kcedDetachedCopy(id))
                m_copies.push_back(std::move(copy));
            if (const KcDbRead<KcDbBlockReference> reference(id); reference)
                for (const KcDbObjectId attribute : reference->attributes())
                    if (auto copy = kcedDetachedCopy(attribute))
                        m_copies.push_back(std::move(copy));
        }
        if (ids.size() > kMost)
            if (const KcDbRead<KcDbEntity> entity(id); entity)
                box.addExtents(entity->geomExtents());
    }
    if (box.isEmpty())
        return;
    auto frame = std::make_unique<KcDbPolyline>();
    frame->data().vertices = {
        { box.min.x, box.min.y }, { box.max.x, box.min.y }, { box.max.x, box.max.y }, { box.min.x, box.max.y }
    };
    frame->setClosed(true);
    frame->setDatabaseDefaults(database());
    m_copies.push_back(std::move(frame));
}

Ghosts::~Ghosts()
{
    kcedHighlight(m_ids, false);
}

KcEdPreview Ghosts::at(const KcGeMatrix3d& inUcs) const
{
    const KcGeMatrix3d toWorld = inWorld(inUcs);
    KcEdPreview preview;
    for (const auto& ghost : m_copies) {
        std::unique_ptr<KcDbEntity> copy(static_cast<KcDbEntity*>(ghost->copy().release()));
        if (copy->transformBy(toWorld) == Kcad::eOk)
            preview.push_back(std::move(copy));
    }
    return preview;
}

std::optional<bool> askYesNo(const QString& question, bool otherwise)
{
    kcedInitGet(0, QStringLiteral("Yes No _ Yes No"));
    QString keyword;
    const KcEdStatus status = kcedGetKword(
        QStringLiteral("\n%1 [Yes/No] <%2>: ")
            .arg(question, otherwise ? QStringLiteral("Y") : QStringLiteral("N")),
        keyword);
    if (status == kcedCancel)
        return {};
    return status == kcedNormal ? keyword == u"Yes" : otherwise;
}

} // namespace hand
