// Ids and handles: how objects of a drawing are named without being opened.
#pragma once

#include <cstdint>
#include <functional>

class KcDbDatabase;
class KcDbObject;

/// The number under which an object is known in its drawing file; 0 names nothing.
using KcDbHandle = uint64_t;

/// The database's own record of one object. Lives as long as the database, so that ids never dangle.
struct KcDbObjectStub {
    enum Flag : uint32_t {
        kErased = 1, ///< erased; the object is kept for undo
        kLoaded = 2, ///< has a place of its own in the file that was read
        kRelisted = 4, ///< has been moved between blocks
        kImplicit = 8, ///< made because the drawing names it without defining it; not written
    };

    KcDbObject* object = nullptr; ///< null: a handle that the drawing mentions and that nothing bears
    KcDbHandle handle = 0;
    KcDbDatabase* database = nullptr;
    uint32_t flags = 0;
    uint32_t undoStep = 0; ///< the last step that took a snapshot
};

/// Names an object of a database. A null id names nothing; the id of an erased object stays valid and says so.
class KcDbObjectId {
public:
    constexpr KcDbObjectId() = default;
    constexpr explicit KcDbObjectId(KcDbObjectStub* stub)
        : m_stub(stub)
    {
    }

    constexpr bool isNull() const { return m_stub == nullptr; }
    /// True when there is an object, erased or not, behind the id.
    bool isValid() const { return m_stub && m_stub->object; }
    bool isErased() const { return m_stub && (m_stub->flags & KcDbObjectStub::kErased); }
    /// True when the object can be opened.
    bool isResident() const { return isValid() && !isErased(); }
    KcDbHandle handle() const { return m_stub ? m_stub->handle : 0; }
    KcDbDatabase* database() const { return m_stub ? m_stub->database : nullptr; }
    constexpr KcDbObjectStub* stub() const { return m_stub; }

    friend constexpr bool operator==(KcDbObjectId, KcDbObjectId) = default;
    /// Ascending by handle: the order in which a drawing's objects were made.
    friend bool operator<(KcDbObjectId a, KcDbObjectId b) { return a.handle() < b.handle(); }

private:
    KcDbObjectStub* m_stub = nullptr;
};

template <> struct std::hash<KcDbObjectId> {
    size_t operator()(KcDbObjectId id) const noexcept { return std::hash<void*>()(id.stub()); }
};

inline size_t qHash(KcDbObjectId id, size_t seed = 0) noexcept
{
    return std::hash<KcDbObjectId>()(id) ^ seed;
}
