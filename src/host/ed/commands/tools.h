// What the hand commands share: the drawing, entities made in the user coordinate system, selections.
#pragma once

#include "db/database.h"
#include "db/entity.h"
#include "ed/console.h"
#include "ed/input.h"
#include "ed/selection_set.h"

namespace hand {

/// The current drawing; commands run only when there is one.
KcDbDatabase& database();
/// Text, or nothing, to be added behind a value that is offered: " <5>".
QString offered(double value);
QString offered(const QString& value);
/// A number as it is shown, without needless digits.
QString shown(double value);
QString shown(KcGePoint3d point);

/// Appends an entity, whose coordinates are those of the user coordinate system, to the current space with
/// the current layer, colour and line type.
KcDbObjectId append(std::unique_ptr<KcDbEntity> entity);
/// Appends an entity as it is.
KcDbObjectId appendAsItIs(std::unique_ptr<KcDbEntity> entity);

/// What the user selects; empty when nothing was.
KcEdSelectionSet askSelection(const QString& prompt = {});
/// Those that may be changed; the user is told about the others.
std::vector<KcDbObjectId> changeable(const KcEdSelectionSet& set);
/// True, and said, when a layer is locked.
bool isLocked(KcDbObjectId entity);
/// Transforms entities, or copies of them; the user is told how many could not be.
void transform(const std::vector<KcDbObjectId>& ids, const KcGeMatrix3d& toWorld, bool copies);
/// The transform, given in the user coordinate system, in world coordinates.
KcGeMatrix3d inWorld(const KcGeMatrix3d& inUcs);

/// An entity, whose coordinates are those of the user coordinate system, as a preview; nothing for null.
KcEdPreview sketch(std::unique_ptr<KcDbEntity> entity);

/// What a transform would make of entities, as a preview: of very many the first ones and the box of all. The
/// entities themselves are marked meanwhile.
class Ghosts {
public:
    explicit Ghosts(const std::vector<KcDbObjectId>& ids);
    ~Ghosts();
    Ghosts(const Ghosts&) = delete;
    Ghosts& operator=(const Ghosts&) = delete;
    /// The transform is given in the user coordinate system.
    KcEdPreview at(const KcGeMatrix3d& inUcs) const;

private:
    std::vector<KcDbObjectId> m_ids;
    std::vector<std::unique_ptr<KcDbEntity>> m_copies;
};

/// A yes-or-no question by keywords; nothing when it was cancelled.
std::optional<bool> askYesNo(const QString& question, bool otherwise);

/// The object as one class; null when it is of another.
template <class T> const T* as(const KcDbObject& object)
{
    return object.isKindOf(T::desc()) ? static_cast<const T*>(&object) : nullptr;
}
template <class T> T* as(KcDbObject& object)
{
    return object.isKindOf(T::desc()) ? static_cast<T*>(&object) : nullptr;
}

} // namespace hand
