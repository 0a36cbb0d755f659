// Plant symbols and other block references: names, places, sizes and the data that hangs on them.
#pragma once

#include "core/entity.h"
#include "db/block_reference.h"

/// The definition that a reference draws, by its id alone: the key by which large selections are grouped, at
/// the cost of one look. Null for what is no reference (tables included).
KcDbObjectId blockDefinitionOf(KcDbObjectId reference);
/// The definition that a user knows: of the anonymous variant of a dynamic block the block that it was made
/// from, of any other the definition itself.
KcDbObjectId namedBlockDefinition(KcDbObjectId definition);
/// The name under which a user knows a definition. Anonymous blocks that are nobody's variants keep their
/// "*U…" names. Empty for an id that is no definition.
QString blockDefinitionName(KcDbObjectId definition);

class CBlock : public CEntity {
public:
    /// Block references only; tables, which the drawing keeps like references, are none.
    bool Initialize(KcDbObjectId id, const KcDbDatabase* database = nullptr) override;

    /// True when the definition draws nothing.
    bool IsEmpty() const;
    /// The name of `blockDefinitionName`. Cheap: no text is built, a million calls take a fraction of a
    /// second.
    QString GetName() const;
    /// The definition that the reference draws, anonymous or not.
    KcDbObjectId GetDefinitionObjectId() const;
    /// World coordinates of the insertion point.
    bool GetPosition(KcGePoint3d& point) const;
    bool GetScale(KcGeVector3d& factors) const;
    /// Radians about the normal.
    double GetRotation() const;
    /// The entities of the definition, attribute definitions included. False when there is none.
    bool GetObjectIdArray(std::vector<KcDbObjectId>& ids) const;

    // Boxes are parallel to the world axes. False when the symbol draws nothing.

    /// The box of what the reference draws, attributes included.
    bool GetBoundaryBox(KcGePoint3d& min, KcGePoint3d& max) const;
    /// The box of the symbol itself: without attributes and invisible parts.
    bool GetBoundaryBestBox(KcGePoint3d& min, KcGePoint3d& max) const;
    /// The centre of the symbol itself (the best box), so that a name beside it does not shift it; in user
    /// coordinates when `transformed`, else in world coordinates.
    bool GetCenterPointBoundaryBox(KcGePoint3d& point, bool transformed = false) const;
    /// Half the longer side of the best box, drawing units.
    bool GetBoundaryBoxRadius(double& radius) const;

    /// The data of a plant under a name: the reference's attribute of that tag, else the text that the
    /// definition holds for it. False, and an empty text, when neither has it.
    bool GetTreeData(const QString& name, QString& value) const;
    /// The tags of the reference's attributes, in their order. False when there is none.
    bool GetAttributes(QStringList& tags) const;
    /// Tags are compared without regard to case.
    bool GetAttributeValue(const QString& tag, QString& value) const;
    bool GetAttribute(const QString& tag, KcDbObjectId& id) const;

    /// Moves the base point of the definition to a point of the drawing, world coordinates, as this reference shows
    /// it. Every reference of the definition in the drawing, nested ones too, is moved against it, so that all of
    /// them and their attributes stay where they are seen. False, changing nothing, when the reference is flattened
    /// (a scale of 0) or the point is no point.
    bool ChangeOrigin(KcGePoint3d point);
};
