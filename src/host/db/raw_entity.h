// Entities of kinds that the program does not know: they stay as the file holds them, their common properties apart.
#pragma once

#include "db/entity.h"

class KcDbRawEntity : public KcDbEntity {
    KCRX_DECLARE(KcDbRawEntity)
public:
    KcDbRawEntity() = default;
    explicit KcDbRawEntity(const QByteArray& fileName)
        : m_fileName(fileName)
    {
    }
    struct Data {
        KcDbObjectId block; ///< the block that shows it (dimensions, tables of other programs); null: none
        KcDbObjectId dimStyle; ///< of a dimension
        KcGeExtents3d points; ///< box of the points that its groups hold: for kinds that do not draw
        std::vector<KcDbObjectId> owned; ///< objects that go with it
    };
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }
    /// The name of its kind in the file, such as "MLINE".
    const QByteArray& fileName() const { return m_fileName; }

    /// The box of its block, else of what it draws, else of the points it holds.
    KcGeExtents3d geomExtents() const override;
    /// Draws dimensions, multileaders, multilines, tolerances and frames from the groups of the file; other kinds are
    /// told as left out.
    void worldDraw(KcGiWorldDraw& draw) const override;
    std::vector<KcDbObjectId> ownedObjects() const override;
    /// eNotApplicable: what the program does not know it does not move.
    Kcad::ErrorStatus transformBy(const KcGeMatrix3d&) override { return Kcad::eNotApplicable; }

private:
    QByteArray m_fileName;
    Data m_data;
    mutable KcGeExtents3d m_drawn; ///< what it drew when the drawing had this many changes; empty: not known
    mutable uint64_t m_drawnAt = 0;
};
