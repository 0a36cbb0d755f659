// The base of database objects: extended data, extension dictionaries, reactors, erasing; and the handles
// that open them.

#include "db/open.h"

#include "db/database.h"
#include "db/dictionary.h"
#include "db/symbol_table.h"
#include "db/tables.h"

const KcRxClass* KcDbObject::desc()
{
    static const KcRxClass description("AcDbObject", nullptr);
    return &description;
}

KcDbObject::KcDbObject(const KcDbObject& other)
    : m_owner(other.m_owner)
    , m_extras(other.m_extras ? std::make_unique<KcDbObjectExtras>(*other.m_extras) : nullptr)
    , m_place(other.m_place)
{
}

KcDbObjectExtras& KcDbObject::extras()
{
    if (!m_extras)
        m_extras = std::make_unique<KcDbObjectExtras>();
    return *m_extras;
}

Kcad::ErrorStatus KcDbObject::erase(bool erasing)
{
    if (!m_stub)
        return Kcad::eNotInDatabase;
    if (erasing == isErased())
        return Kcad::eOk;
    if (erasing)
        m_stub->flags |= KcDbObjectStub::kErased;
    else
        m_stub->flags &= ~uint32_t(KcDbObjectStub::kErased);
    for (KcDbObjectId id : ownedObjects())
        if (KcDbWrite<KcDbObject> object(id, true); object)
            object->erase(erasing);
    m_stub->database->notifyErased(*m_stub);
    return Kcad::eOk;
}

std::vector<KcDbObjectId> KcDbObject::ownedObjects() const
{
    std::vector<KcDbObjectId> owned = subObjects();
    if (extensionDictionary().isValid())
        owned.push_back(extensionDictionary());
    return owned;
}

const std::vector<KcDbXData>& KcDbObject::xdata() const
{
    static const std::vector<KcDbXData> none;
    return m_extras ? m_extras->xdata : none;
}

const KcDbValueList* KcDbObject::xdataOf(const QString& application) const
{
    if (!m_extras)
        return nullptr;
    for (const KcDbXData& data : m_extras->xdata)
        if (kcdbRecordName(data.application).compare(application, Qt::CaseInsensitive) == 0)
            return &data.values;
    return nullptr;
}

void KcDbObject::setXData(const QString& application, KcDbValueList values, KcDbDatabase* database)
{
    if (!database)
        database = this->database();
    if (!database || application.isEmpty())
        return;
    std::vector<KcDbXData>& list = extras().xdata;
    const auto found = std::find_if(list.begin(), list.end(), [&](const KcDbXData& data) {
        return kcdbRecordName(data.application).compare(application, Qt::CaseInsensitive) == 0;
    });
    if (values.empty()) {
        if (found != list.end())
            list.erase(found);
        return;
    }
    if (found != list.end()) {
        found->values = std::move(values);
        return;
    }
    KcDbObjectId record = kcdbFindRecord(database->regAppTable(), application);
    if (record.isNull()) {
        KcDbWrite<KcDbSymbolTable> table(database->regAppTable());
        auto added = std::make_unique<KcDbRegAppTableRecord>();
        added->initName(application);
        record = table->add(std::move(added));
    }
    list.push_back({ record, std::move(values) });
}

KcDbObjectId KcDbObject::createExtensionDictionary()
{
    if (KcDbObjectId id = extensionDictionary(); id.isResident())
        return id;
    if (!m_stub)
        return {};
    auto dictionary = std::make_unique<KcDbDictionary>();
    dictionary->data().hardOwner = true;
    const KcDbObjectId id = m_stub->database->addObject(std::move(dictionary), objectId());
    extras().extensionDictionary = id;
    return id;
}

void KcDbObject::setExtensionDictionary(KcDbObjectId id)
{
    if (!id.isNull() || m_extras)
        extras().extensionDictionary = id;
}

const std::vector<KcDbObjectId>& KcDbObject::reactors() const
{
    static const std::vector<KcDbObjectId> none;
    return m_extras ? m_extras->reactors : none;
}

void KcDbObject::addPersistentReactor(KcDbObjectId reactor)
{
    std::vector<KcDbObjectId>& list = extras().reactors;
    if (!reactor.isNull() && std::find(list.begin(), list.end(), reactor) == list.end())
        list.push_back(reactor);
}

void KcDbObject::removePersistentReactor(KcDbObjectId reactor)
{
    if (m_extras)
        std::erase(m_extras->reactors, reactor);
}

void KcDbObject::subjectModified(const KcDbObject&) { }

void KcDbObject::subjectErased(const KcDbObject&, bool) { }

Kcad::ErrorStatus KcDbOpenBase::check(KcDbObjectId id, const KcRxClass* type, bool erasedToo)
{
    if (!id.isValid())
        return Kcad::eNullObjectId;
    if (id.isErased() && !erasedToo)
        return Kcad::eWasErased;
    return id.stub()->object->isKindOf(type) ? Kcad::eOk : Kcad::eNotThatKindOfClass;
}

void KcDbOpenBase::beginWrite(KcDbObjectStub& stub)
{
    stub.database->m_undo.willChange(stub);
    KcDbSourcePlace place = stub.object->sourcePlace();
    // What every drawing is given in memory enters the file with its first change, and its owner must then
    // name it.
    if ((stub.flags & KcDbObjectStub::kImplicit) && !place.changed)
        if (const KcDbObjectId owner = stub.object->ownerId(); owner.isResident())
            beginWrite(*owner.stub());
    place.changed = true;
    stub.object->setSourcePlace(place);
}

void KcDbOpenBase::endWrite(KcDbObjectStub& stub)
{
    stub.database->notifyModified(stub);
}
