// Block references: one definition drawn at a place, with attributes.
#pragma once

#include "db/block_table_record.h"
#include "db/entity.h"
#include "db/entity_macros.h"
#include "db/text.h"

class KcDbBlockReference : public KcDbEntity {
    KCRX_DECLARE(KcDbBlockReference)
public:
    /// What few references have.
    struct Array {
        int columns = 1, rows = 1;
        double columnSpacing = 0.0, rowSpacing = 0.0;
        std::vector<KcDbObjectId> attributes;
        KcDbObjectId sequenceEnd;
    };
    struct Data {
        KcDbObjectId block;
        KcGePoint3d position; ///< object coordinates
        KcGeVector3d scale {1, 1, 1};
        double rotation = 0.0; ///< radians
        KcGeVector3d normal = KcGeVector3d::kZAxis;
        std::unique_ptr<Array> array; ///< null: one column and row, no attributes

        Data() = default;
        Data(const Data& other);
        Data& operator=(const Data& other);
    };
    KCDB_ENTITY_DATA
    void worldDraw(KcGiWorldDraw& draw) const override;
    KcDbBlockReference() = default;
    KcDbBlockReference(KcGePoint3d position, KcDbObjectId block) { m_data.position = position, m_data.block = block; }

    KcDbObjectId blockTableRecord() const { return m_data.block; }
    void setBlockTableRecord(KcDbObjectId block) { m_data.block = block; }
    /// World coordinates.
    KcGePoint3d position() const { return KcGeMatrix3d::planeToWorld(m_data.normal) * m_data.position; }
    void setPosition(KcGePoint3d world) { m_data.position = KcGeMatrix3d::worldToPlane(m_data.normal) * world; }
    KcGeVector3d scaleFactors() const { return m_data.scale; }
    void setScaleFactors(KcGeVector3d scale) { m_data.scale = scale; }
    double rotation() const { return m_data.rotation; }
    void setRotation(double angle) { m_data.rotation = angle; }
    /// From the coordinates of the definition to world coordinates, of the first cell of an array.
    KcGeMatrix3d blockTransform() const;

    const std::vector<KcDbObjectId>& attributes() const;
    /// The value of an attribute by its tag (without regard to case).
    std::optional<QString> attributeValue(const QString& tag) const;
    /// Adds an attribute; the reference must be in a drawing and open for writing.
    KcDbObjectId appendAttribute(std::unique_ptr<KcDbAttribute> attribute);
    std::vector<KcDbObjectId> subObjects() const override;

    /// The box of the definition's entities, attribute definitions that are not constant left out, in the coordinates
    /// of the definition. Cached by the database until something in a block changes.
    static KcGeExtents3d definitionExtents(KcDbObjectId block);
    /// The box of the reference without its attributes.
    KcGeExtents3d extentsWithoutAttributes() const;

private:
    /// The box of what the reference draws of its definition under a transform, every cell of an array counted.
    KcGeExtents3d definitionUnder(const KcGeMatrix3d& matrix) const;
    /// What stands for another drawing that is referred to and not there: its name, and a frame from the position.
    struct MissingFile {
        QString name; ///< empty: nothing is missing
        KcGeVector3d right, up; ///< world coordinates
    };
    MissingFile missingFile() const;
    Array& array();
};

/// The begin and end marks of a block definition in the file.
class KcDbBlockBegin : public KcDbEntity {
    KCRX_DECLARE(KcDbBlockBegin)
public:
    /// Values of the definition that the file keeps here; brought up to date from the block's record when it is saved.
    struct Data {
        QString name;
        KcGePoint3d origin;
        int flags = 0;
        QString xrefPath, description;
        friend bool operator==(const Data&, const Data&) = default;
    };
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }

    KcGeExtents3d geomExtents() const override { return {}; }
    void worldDraw(KcGiWorldDraw& draw) const override;
    Kcad::ErrorStatus transformBy(const KcGeMatrix3d&) override { return Kcad::eOk; }

private:
    Data m_data;
};

class KcDbBlockEnd : public KcDbEntity {
    KCRX_DECLARE(KcDbBlockEnd)
public:
    KcGeExtents3d geomExtents() const override { return {}; }
    void worldDraw(KcGiWorldDraw& draw) const override;
    Kcad::ErrorStatus transformBy(const KcGeMatrix3d&) override { return Kcad::eOk; }
};
