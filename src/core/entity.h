// Entities of the drawing as the commands handle them: an id with what is often asked of it. A wrapper keeps
// no entity open, so it may live across prompts; each operation opens, does its work and closes.
#pragma once

#include "db/dictionary.h"
#include "db/entity.h"

#include <memory>
#include <vector>

class CEntity {
public:
    CEntity() = default;
    virtual ~CEntity() = default;

    /// Takes an entity. False, leaving the wrapper empty, for a null or erased id, an object that is not an
    /// entity of the kind that the wrapper is for, or, when `database` is given, one of another drawing.
    virtual bool Initialize(KcDbObjectId id, const KcDbDatabase* database = nullptr);
    KcDbObjectId GetObjectId() const { return m_id; }

    // Of an empty wrapper, or when the entity was erased meanwhile, the getters give empty texts, null ids
    // and false, and the setters do nothing and give false.

    /// The published class name, such as "AcDbBlockReference".
    QString GetType() const;
    QString GetLayer() const;
    /// False when the drawing has no such layer.
    bool SetLayer(const QString& name);
    /// The index colour: 256 ByLayer, 0 ByBlock.
    int GetColor() const;
    /// Takes away a true colour. False outside 0 to 256.
    bool SetColor(int index);
    /// The line type's name, "ByLayer" where the entity has none of its own.
    QString GetLineType() const;
    /// False when the drawing has no such line type.
    bool SetLineType(const QString& name);

    /// World coordinates. Any curve that has the end asked for; the ends of closed curves coincide. False for other
    /// kinds, and circles.
    bool GetStartPoint(KcGePoint3d& point) const;
    bool GetEndPoint(KcGePoint3d& point) const;
    /// Any curve with two ends, circles included.
    bool GetLength(double& length) const;
    /// The point of a curve of any kind that lies nearest; world coordinates.
    bool GetClosestPoint(KcGePoint3d point, KcGePoint3d& onCurve) const;
    /// Circles, arcs and ellipses; world coordinates.
    bool GetCenter(KcGePoint3d& point) const;
    /// Circles and arcs.
    bool GetRadius(double& radius) const;
    /// Lightweight polylines (an open one closed by a line) and hatches (islands taken away), in square
    /// drawing units. False for other kinds and for hatches with open loops.
    bool GetArea(double& area) const;

    /// A copy beside the original in the same block; null when its kind cannot be copied.
    KcDbObjectId Copy() const;
    /// Erases the entity.
    bool Delete();

    /// The text of a tag; a missing tag gives false and an empty text.
    bool GetXData(const QString& name, QString& value) const;
    static bool GetXData(const KcDbObject& object, const QString& name, QString& value);
    /// Tags an object: extended data of an application of the tag's name, which is registered when needed. An
    /// empty value takes the tag away. An object that is in no drawing yet is tagged for `database`, null
    /// being the current one; false without one, and when the id cannot be opened.
    static bool SetXData(KcDbObjectId object, const QString& name, const QString& value);
    static bool
    SetXData(KcDbObject& object, const QString& name, const QString& value, KcDbDatabase* database = nullptr);

    /// The record of that name in the extension dictionary; null when there is none.
    KcDbObjectId GetXRecord(const QString& key) const;
    /// Puts a record into an object's extension dictionary, which is made when missing; a record of that name
    /// is erased first. `id` becomes the record's. False when the object cannot be opened.
    static bool SetXRecord(
        KcDbObjectId object, std::unique_ptr<KcDbXrecord> record, const QString& key, KcDbObjectId& id);
    /// False when there is no such record.
    bool DeleteXRecord(const QString& key);

protected:
    KcDbObjectId m_id;
};

/// A record that refers to objects without keeping them in the drawing (soft pointers).
std::unique_ptr<KcDbXrecord> InitializeXRecord(const std::vector<KcDbObjectId>& ids);
/// The objects that a record refers to, those that were erased left out; empty for any other id.
std::vector<KcDbObjectId> GetObjectIdArrayFromXRecord(KcDbObjectId record);
