// Adding and removing without doubles.

#include "ed/selection_set.h"

void KcEdSelectionSet::buildIndex() const
{
    if (m_indexed)
        return;
    m_index.clear();
    m_index.insert(m_ids.begin(), m_ids.end());
    m_indexed = true;
}

bool KcEdSelectionSet::has(KcDbObjectId id) const
{
    buildIndex();
    return m_index.contains(id);
}

void KcEdSelectionSet::clear()
{
    m_ids.clear();
    m_index.clear();
    m_indexed = false;
}

size_t KcEdSelectionSet::add(const std::vector<KcDbObjectId>& ids)
{
    buildIndex();
    const size_t before = m_ids.size();
    for (const KcDbObjectId id : ids)
        if (m_index.insert(id).second)
            m_ids.push_back(id);
    return m_ids.size() - before;
}

size_t KcEdSelectionSet::remove(const std::vector<KcDbObjectId>& ids)
{
    const std::unordered_set<KcDbObjectId> gone(ids.begin(), ids.end());
    const size_t removed = std::erase_if(m_ids, [&](KcDbObjectId id) { return gone.contains(id); });
    m_indexed = false;
    return removed;
}
