// Finding the link of a label from any of its entities, and keeping it.

#include "core/links.h"

#include "core/entity.h"
#include "core/tags.h"
#include "db/leader.h"
#include "db/polyline.h"

KCRX_DEFINE(CDimObjectReactor, KcDbModuleObject, "CDimObjectReactor")

namespace {

// How the two lists follow each other in the record: a count, then as many pointers that keep nothing alive.
constexpr int kCountCode = 90, kPointerCode = 330;

[[maybe_unused]] const bool registered = [] {
    KcDbModuleObject::registerClass(
        CDimObjectReactor::desc(), [] { return std::make_unique<CDimObjectReactor>(); });
    return true;
}();

void append(KcDbValueList& values, const std::vector<KcDbObjectId>& ids)
{
    values.push_back({ kCountCode, int64_t(ids.size()) });
    for (const KcDbObjectId id : ids)
        values.push_back({ kPointerCode, id });
}

bool contains(const std::vector<KcDbObjectId>& ids, KcDbObjectId id)
{
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

// The link in the extension dictionary of a text, when it is about this member.
KcDbObjectId linkIn(KcDbObjectId text, KcDbObjectId member)
{
    CEntity entity;
    if (!entity.Initialize(text))
        return {};
    const KcDbObjectId link = entity.GetXRecord(tags::linkRecord);
    const KcDbRead<CDimObjectReactor> reactor(link);
    return reactor && contains(reactor->dimensionIds(), member) ? link : KcDbObjectId();
}

// Main text, leader and arc line have the link as a reactor; the others share a group with the main text.
KcDbObjectId linkOf(KcDbObjectId member)
{
    const KcDbRead<KcDbEntity> entity(member);
    if (!entity)
        return {};
    for (const KcDbObjectId reactor : entity->reactors())
        if (const KcDbRead<CDimObjectReactor> link(reactor); link && contains(link->dimensionIds(), member))
            return reactor;
    for (const KcDbObjectId reactor : entity->reactors())
        if (const KcDbRead<KcDbGroup> group(reactor); group)
            for (const KcDbObjectId other : group->data().members)
                if (const KcDbObjectId link = linkIn(other, member); !link.isNull())
                    return link;
    return linkIn(member, member);
}

// The text in whose extension dictionary a link lies.
KcDbObjectId textOf(const CDimObjectReactor& link)
{
    const KcDbRead<KcDbObject> dictionary(link.ownerId());
    const KcDbObjectId text = dictionary ? dictionary->ownerId() : KcDbObjectId();
    return text.isResident() ? text : KcDbObjectId();
}

// The first entity of a class that has the link as a reactor.
template <class T> int findWatching(KcDbObjectId member, KcDbObjectId& found)
{
    const KcDbObjectId id = linkOf(member);
    const KcDbRead<CDimObjectReactor> link(id);
    if (!link)
        return 0;
    for (const KcDbObjectId other : link->dimensionIds())
        if (const KcDbRead<T> entity(other); entity && contains(entity->reactors(), id)) {
            found = other;
            return 1;
        }
    return 0;
}

} // namespace

void CDimObjectReactor::SetLinkEntIds(std::vector<KcDbObjectId> dimension, std::vector<KcDbObjectId> counted)
{
    m_dimension = std::move(dimension);
    m_counted = std::move(counted);
}

KcDbValueList CDimObjectReactor::ownValues() const
{
    KcDbValueList values;
    append(values, m_dimension);
    append(values, m_counted);
    return values;
}

void CDimObjectReactor::setOwnValues(const KcDbValueList& values)
{
    m_dimension.clear();
    m_counted.clear();
    int lists = 0;
    for (const KcDbTypedValue& value : values) {
        if (value.code == kCountCode)
            ++lists;
        else if (value.code == kPointerCode && lists > 0)
            (lists == 1 ? m_dimension : m_counted).push_back(value.id());
    }
}

KcDbObjectId linkLabel(
    KcDbObjectId text, const std::vector<KcDbObjectId>& watching, const std::vector<KcDbObjectId>& dimension,
    const std::vector<KcDbObjectId>& counted)
{
    auto reactor = std::make_unique<CDimObjectReactor>();
    reactor->SetLinkEntIds(dimension, counted);
    KcDbObjectId link;
    if (!CEntity::SetXRecord(text, std::move(reactor), tags::linkRecord, link))
        return {};
    std::vector<KcDbObjectId> subjects = watching;
    subjects.push_back(text);
    for (const KcDbObjectId id : subjects)
        if (const KcDbWrite<KcDbEntity> entity(id); entity)
            entity->addPersistentReactor(link);
    return link;
}

int GetReatorBlockIds(KcDbObjectId member, std::vector<KcDbObjectId>& ids)
{
    const KcDbRead<CDimObjectReactor> link(linkOf(member));
    if (!link)
        return 0;
    ids = link->countedIds();
    return 1;
}

int GetReatorTextId(KcDbObjectId member, KcDbObjectId& text, std::vector<KcDbObjectId>& ids)
{
    const KcDbRead<CDimObjectReactor> link(linkOf(member));
    const KcDbObjectId found = link ? textOf(*link) : KcDbObjectId();
    if (found.isNull())
        return 0;
    text = found;
    ids = link->dimensionIds();
    return 1;
}

int GetReatorLeaderId(KcDbObjectId member, KcDbObjectId& leader)
{
    return findWatching<KcDbLeader>(member, leader);
}

int GetReatorArcId(KcDbObjectId member, KcDbObjectId& arc)
{
    return findWatching<KcDbPolyline>(member, arc);
}

int EraseAllEntities(KcDbObjectId member)
{
    std::vector<KcDbObjectId> ids;
    if (const KcDbRead<CDimObjectReactor> link(linkOf(member)); link)
        ids = link->dimensionIds();
    for (const KcDbObjectId id : ids)
        if (const KcDbWrite<KcDbEntity> entity(id); entity)
            entity->erase();
    return ids.empty() ? 0 : 1;
}
