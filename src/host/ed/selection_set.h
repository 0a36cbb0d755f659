// An ordered set of entities without doubles: what a selection holds.
#pragma once

#include "db/object_id.h"

#include <unordered_set>
#include <vector>

class KcEdSelectionSet {
public:
    KcEdSelectionSet() = default;
    /// `ids` must hold no doubles: a walk through a block gives none.
    explicit KcEdSelectionSet(std::vector<KcDbObjectId> ids)
        : m_ids(std::move(ids))
    {
    }

    const std::vector<KcDbObjectId>& ids() const { return m_ids; }
    size_t size() const { return m_ids.size(); }
    bool isEmpty() const { return m_ids.empty(); }
    bool has(KcDbObjectId id) const;
    void clear();

    /// Adds what is not in yet; gives how many that were.
    size_t add(const std::vector<KcDbObjectId>& ids);
    /// Takes out what is in; gives how many that were. The order of the rest stays.
    size_t remove(const std::vector<KcDbObjectId>& ids);

private:
    void buildIndex() const;

    std::vector<KcDbObjectId> m_ids;
    // Made when first asked for: most selections are one walk through the drawing and never look anything up.
    mutable std::unordered_set<KcDbObjectId> m_index;
    mutable bool m_indexed = false;
};
