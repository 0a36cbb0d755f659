// What ties a label to the objects that it counts, and to the entities that it is made of.
#pragma once

#include "db/dictionary.h"

/// The link of one label: a record in the extension dictionary of its main text, saved with the drawing, and
/// a reactor of the main text, the leader and the arc line. It only remembers: changes of trees and labels
/// leave the drawing's geometry alone.
class CDimObjectReactor : public KcDbModuleObject {
    KCRX_DECLARE(CDimObjectReactor)
public:
    /// The entities that the label is made of, and the objects that it counts.
    void SetLinkEntIds(std::vector<KcDbObjectId> dimension, std::vector<KcDbObjectId> counted);
    const std::vector<KcDbObjectId>& dimensionIds() const { return m_dimension; }
    const std::vector<KcDbObjectId>& countedIds() const { return m_counted; }

protected:
    KcDbValueList ownValues() const override;
    void setOwnValues(const KcDbValueList& values) override;

private:
    std::vector<KcDbObjectId> m_dimension, m_counted;
};

/// Ties a label together: puts the link into the extension dictionary of the main text and adds it as a
/// reactor to the main text and to `watching`, which are the leader and the arc line. Null when the main text
/// cannot be opened; nothing is tied then.
KcDbObjectId linkLabel(
    KcDbObjectId text, const std::vector<KcDbObjectId>& watching, const std::vector<KcDbObjectId>& dimension,
    const std::vector<KcDbObjectId>& counted);

// Asked of any entity that a label is made of: leader, texts, marks, arc line. Each returns non-zero when the
// entity belongs to a label and what is asked for is there, and leaves the out values alone otherwise. Copies
// of labels are tied to nothing.

/// The objects that the label counts, those that were erased included.
int GetReatorBlockIds(KcDbObjectId member, std::vector<KcDbObjectId>& ids);
/// The label's main text and all entities that it is made of.
int GetReatorTextId(KcDbObjectId member, KcDbObjectId& text, std::vector<KcDbObjectId>& ids);
int GetReatorLeaderId(KcDbObjectId member, KcDbObjectId& leader);
int GetReatorArcId(KcDbObjectId member, KcDbObjectId& arc);
/// Erases everything that the label is made of.
int EraseAllEntities(KcDbObjectId member);
