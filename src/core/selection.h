// What was selected, and what commands do with all of it.
#pragma once

#include "core/entity.h"

#include <QStringList>

class CSs {
public:
    CSs() = default;
    explicit CSs(std::vector<KcDbObjectId> ids)
        : m_ids(std::move(ids))
    {
    }
    const std::vector<KcDbObjectId>& ids() const { return m_ids; }
    size_t size() const { return m_ids.size(); }
    bool IsEmpty() const { return m_ids.empty(); }

    // The getters replace what the list held, keep the order of selecting and give false when nothing was
    // found. What was erased meanwhile is left out.

    /// Of that published class ("AcDbBlockReference"); a class stands for itself only.
    bool GetEntitiesOfType(const QString& type, std::vector<KcDbObjectId>& ids) const;
    /// Single-line and multiline texts.
    bool GetTexts(std::vector<KcDbObjectId>& ids) const;
    /// The references of blocks of these names, compared without regard to case.
    bool GetBlocks(const QStringList& names, std::vector<KcDbObjectId>& ids) const;
    /// The names of the blocks referred to, each once; anonymous ones that are nobody's variants left out.
    bool GetBlockNames(QStringList& names) const;
    /// The first reference of a block.
    bool GetBlock(const QString& name, KcDbObjectId& id) const;

    /// Drops the references of external references from the selection.
    void RemoveExternalReference();
    /// Drops what is on these layers; names without regard to case.
    void RemoveEntitiesOnLayers(const QStringList& names);

    /// The box of everything, in world coordinates. False when nothing is drawn.
    bool GetBoundaryBox(KcGePoint3d& min, KcGePoint3d& max) const;
    /// Erases the entities; the selection is empty then. How many were erased.
    int Delete();
    /// Makes the entities a block definition, in their order, and puts one reference in their place, whose id
    /// it gives; the selection is that reference then. "*U" makes an anonymous block. The base point is the
    /// world's origin; the reference has the current layer. Entities of other spaces than the first one's
    /// stay where they are. Null when there is none, or another block has the name.
    KcDbObjectId CreateBlock(const QString& name);
    /// Puts everything on a layer of a drawing (null: the current one), making it when missing; entities of
    /// other drawings stay. With a `colour` above 0 a layer that is made gets it. False without a drawing or
    /// for an empty name.
    bool SetLayer(const QString& name, KcDbDatabase* database = nullptr, int colour = 0);

private:
    std::vector<KcDbObjectId> m_ids;
};
