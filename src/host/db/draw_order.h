// What lies above what: the drawing order of a block's entities.
#pragma once

#include "db/object.h"

class KcDbBlockTableRecord;

/// The table of drawing order of one block, kept in the extension dictionary of its record as
/// "ACAD_SORTENTS".
class KcDbSortentsTable : public KcDbObject {
    KCRX_DECLARE(KcDbSortentsTable)
public:
    /// The entity is drawn where the entity of that handle would be.
    struct Entry {
        KcDbObjectId entity;
        KcDbHandle place = 0;
        friend bool operator==(const Entry&, const Entry&) = default;
    };
    struct Data {
        KcDbObjectId block;
        std::vector<Entry> entries;
    };
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }

private:
    Data m_data;
};

/// The entities of a block, those drawn first in front. They are drawn as they are listed, unless the drawing
/// has a table of drawing order for the block: it gives some entities the place of another handle, and then
/// all are drawn in the order of their handles.
std::vector<KcDbObjectId> kcdbInDrawingOrder(const KcDbBlockTableRecord& block);
/// Sorts some of a block's entities, which come as the block lists them, in the same way. False when the
/// block has no table, so that nothing was to be done.
bool kcdbSortForDrawing(KcDbObjectId block, std::vector<KcDbObjectId>& ids);
/// Keeps an order of a block's entities, those drawn first in front; entities that are not given stay below
/// them. eInvalidInput when one does not belong to the block or is given twice.
Kcad::ErrorStatus kcdbSetDrawingOrder(KcDbObjectId block, const std::vector<KcDbObjectId>& order);
