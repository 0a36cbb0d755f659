// Block definitions: model space, paper spaces and the blocks that references draw.
#pragma once

#include "db/entity.h"
#include "db/symbol_table.h"

#include <iterator>

class KcDbBlockTableRecord : public KcDbSymbolTableRecord {
    KCRX_DECLARE(KcDbBlockTableRecord)
public:
    struct Data {
        KcGePoint3d origin;
        int blockFlags = 0; ///< group 70 of the block: 1 anonymous, 2 has attributes, 4 external reference, …
        QString description, xrefPath;
        KcDbObjectId layout;
        KcDbObjectId begin, end; ///< the block's begin and end marks
        int insertUnits = 0;
        bool explodable = true, scaleUniformly = false;
    };
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }

    KcGePoint3d origin() const { return m_data.origin; }
    bool isLayout() const;
    bool isModelSpace() const;
    /// True for blocks whose names begin with an asterisk, layouts apart.
    bool isAnonymous() const;
    bool isFromExternalReference() const { return m_data.blockFlags & (4 | 8); }

    /// Walks the entities in the order in which they were added, those that were erased or moved away left out.
    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = KcDbObjectId;
        using difference_type = std::ptrdiff_t;
        using pointer = const KcDbObjectId*;
        using reference = KcDbObjectId;

        Iterator() = default;
        Iterator(const std::vector<KcDbObjectId>* list, size_t index, KcDbObjectId owner)
            : m_list(list)
            , m_index(index)
            , m_owner(owner)
        {
            skip();
        }
        KcDbObjectId operator*() const { return (*m_list)[m_index]; }
        Iterator& operator++()
        {
            ++m_index;
            skip();
            return *this;
        }
        Iterator operator++(int)
        {
            Iterator before = *this;
            ++*this;
            return before;
        }
        // Compares positions; entities appended while walking are reached.
        bool operator==(const Iterator& other) const { return atEnd() ? other.atEnd() : m_index == other.m_index; }

    private:
        bool atEnd() const { return !m_list || m_index >= m_list->size(); }
        void skip()
        {
            while (m_index < m_list->size()) {
                const KcDbObjectStub& stub = *(*m_list)[m_index].stub();
                if (!(stub.flags & KcDbObjectStub::kErased) && stub.object && stub.object->ownerId() == m_owner)
                    break;
                ++m_index;
            }
        }
        const std::vector<KcDbObjectId>* m_list = nullptr;
        size_t m_index = 0;
        KcDbObjectId m_owner;
    };
    Iterator begin() const { return Iterator(m_entities.get(), 0, objectId()); }
    Iterator end() const { return Iterator(m_entities.get(), m_entities->size(), objectId()); }
    bool isEmpty() const { return begin() == end(); }
    std::vector<KcDbObjectId> entityIds() const { return {begin(), end()}; }
    /// Every entity that was ever listed here, in drawing order, those that were erased or moved away included. The list
    /// grows; it shrinks only in `adopt`, which says so to the drawing's spatial index.
    std::shared_ptr<const std::vector<KcDbObjectId>> listed() const { return m_entities; }

    /// Takes an entity into the block; it gets a handle. The record need not be open for writing: the list of
    /// entities is no part of its snapshots, an entity that undo takes away is simply left out.
    KcDbObjectId appendEntity(std::unique_ptr<KcDbEntity> entity) const;
    /// Moves an entity of the same drawing, open for writing, from its block into this one.
    void adopt(KcDbEntity& entity) const;
    /// For readers: lists an entity whose owner this is.
    void list(KcDbObjectId entity) const { m_entities->push_back(entity); }

    /// The box of what the block draws, as computed at a count of the drawing's changes.
    struct ExtentsCache {
        bool filled = false;
        uint64_t changeCount = 0;
        KcGeExtents3d box;
        size_t entities = 0; ///< that the block draws, nested ones counted; exact up to a few hundred
    };
    ExtentsCache& extentsCache() const { return m_extentsCache; }

private:
    Data m_data;
    mutable ExtentsCache m_extentsCache;
    std::shared_ptr<std::vector<KcDbObjectId>> m_entities = std::make_shared<std::vector<KcDbObjectId>>();
};
