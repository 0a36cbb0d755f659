// The base of everything a drawing holds: identity, owner, extended data, extension dictionary, reactors.
#pragma once

#include "db/object_id.h"
#include "db/rx_class.h"
#include "db/status.h"
#include "db/typed_value.h"

#include <memory>
#include <vector>

/// Extended data of one registered application.
struct KcDbXData {
    KcDbObjectId application; ///< record of the application table
    KcDbValueList values; ///< codes 1000 to 1071, the application name (1001) left out
    friend bool operator==(const KcDbXData&, const KcDbXData&) = default;
};

/// What few objects have; kept apart so that the others stay small.
struct KcDbObjectExtras {
    std::vector<KcDbXData> xdata;
    KcDbObjectId extensionDictionary;
    std::vector<KcDbObjectId> reactors;
    friend bool operator==(const KcDbObjectExtras&, const KcDbObjectExtras&) = default;
};

/// Where an object stands in the file it was read from, and whether it was changed since. The copy of an object keeps
/// the place of its original: values that no class knows are taken from there when the copy is written.
struct KcDbSourcePlace {
    uint64_t offset = 0;
    uint32_t length = 0; ///< 0: made in memory
    bool changed = false;
    bool isRead() const { return length != 0; }
};

class KcDbObject {
public:
    virtual ~KcDbObject() = default;
    KcDbObject& operator=(const KcDbObject&) = delete;

    static const KcRxClass* desc();
    virtual const KcRxClass* isA() const = 0;
    bool isKindOf(const KcRxClass* type) const { return isA()->isDerivedFrom(type); }
    /// A copy with the same values, owner and extras, which belongs to no database.
    virtual std::unique_ptr<KcDbObject> copy() const = 0;

    KcDbObjectId objectId() const { return KcDbObjectId(m_stub); }
    KcDbHandle handle() const { return objectId().handle(); }
    /// Null for an object that is in no drawing yet.
    KcDbDatabase* database() const { return m_stub ? m_stub->database : nullptr; }
    KcDbObjectId ownerId() const { return m_owner; }
    /// Objects are handed to an owner by the owner's own operations; this only records it.
    void setOwnerId(KcDbObjectId owner) { m_owner = owner; }

    /// Erases or brings back; the object must be open for writing. What it owns (attributes, vertices, its extension
    /// dictionary) goes and comes with it.
    Kcad::ErrorStatus erase(bool erasing = true);
    bool isErased() const { return objectId().isErased(); }

    const std::vector<KcDbXData>& xdata() const;
    /// The values of one application; null when it has none here. Name compared without regard to case.
    const KcDbValueList* xdataOf(const QString& application) const;
    /// Replaces the values of one application, registering it when needed; an empty list removes them. The object must
    /// be in a database, or `database` be given.
    void setXData(const QString& application, KcDbValueList values, KcDbDatabase* database = nullptr);

    /// For readers: the extended data of all applications at once.
    void setAllXData(std::vector<KcDbXData> xdata) { extras().xdata = std::move(xdata); }

    KcDbObjectId extensionDictionary() const { return m_extras ? m_extras->extensionDictionary : KcDbObjectId(); }
    /// The extension dictionary, made when missing. Null for an object that is in no database.
    KcDbObjectId createExtensionDictionary();
    void setExtensionDictionary(KcDbObjectId id);

    const std::vector<KcDbObjectId>& reactors() const;
    void addPersistentReactor(KcDbObjectId reactor);
    void removePersistentReactor(KcDbObjectId reactor);

    /// Called on a persistent reactor after an object it watches was changed or erased; the object is open for reading.
    virtual void subjectModified(const KcDbObject& subject);
    virtual void subjectErased(const KcDbObject& subject, bool erased);

    const KcDbSourcePlace& sourcePlace() const { return m_place; }
    void setSourcePlace(KcDbSourcePlace place) { m_place = place; }

    /// Objects that live and die with this one and follow it in the file: attributes, vertices, the end mark.
    virtual std::vector<KcDbObjectId> subObjects() const { return {}; }
    /// All objects that are erased and brought back with this one: the sub-objects, the extension dictionary, …
    virtual std::vector<KcDbObjectId> ownedObjects() const;

protected:
    KcDbObject() = default;
    KcDbObject(const KcDbObject& other);

    KcDbObjectExtras& extras();

private:
    friend class KcDbDatabase;
    friend class KcDbUndo;

    KcDbObjectStub* m_stub = nullptr;
    KcDbObjectId m_owner;
    std::unique_ptr<KcDbObjectExtras> m_extras;
    KcDbSourcePlace m_place;
};
