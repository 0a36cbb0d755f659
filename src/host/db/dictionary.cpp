// Dictionaries, extension records, module objects and groups.

#include "db/dictionary.h"

#include "db/database.h"
#include "db/entity.h"
#include "db/open.h"

#include <cassert>

KCRX_DEFINE(KcDbDictionary, KcDbObject, "AcDbDictionary")
KCRX_DEFINE(KcDbXrecord, KcDbObject, "AcDbXrecord")
KCRX_DEFINE(KcDbGroup, KcDbObject, "AcDbGroup")
KCRX_DEFINE(KcDbLayout, KcDbObject, "AcDbLayout")
KCRX_DEFINE(KcDbRawObject, KcDbObject, "AcDbProxyObject")

KcDbObjectId KcDbDictionary::getAt(const QString& name) const
{
    for (const Entry& entry : m_data.entries)
        if (entry.id.isResident() && entry.name.compare(name, Qt::CaseInsensitive) == 0)
            return entry.id;
    return {};
}

QString KcDbDictionary::nameOf(KcDbObjectId id) const
{
    for (const Entry& entry : m_data.entries)
        if (entry.id == id)
            return entry.name;
    return {};
}

KcDbObjectId KcDbDictionary::setAt(const QString& name, std::unique_ptr<KcDbObject> object)
{
    assert(database());
    remove(name);
    const KcDbObjectId id = database()->addObject(std::move(object), objectId());
    m_data.entries.push_back({ name, id });
    return id;
}

Kcad::ErrorStatus KcDbDictionary::remove(const QString& name)
{
    const auto found = std::find_if(m_data.entries.begin(), m_data.entries.end(), [&](const Entry& entry) {
        return entry.name.compare(name, Qt::CaseInsensitive) == 0;
    });
    if (found == m_data.entries.end())
        return Kcad::eKeyNotFound;
    if (KcDbWrite<KcDbObject> object(found->id); object)
        object->erase();
    m_data.entries.erase(found);
    return Kcad::eOk;
}

std::vector<KcDbObjectId> KcDbDictionary::ownedObjects() const
{
    // Entries may also name objects that others own.
    std::vector<KcDbObjectId> owned = KcDbObject::ownedObjects();
    for (const Entry& entry : m_data.entries)
        if (KcDbRead<KcDbObject> object(entry.id, true); object && object->ownerId() == objectId())
            owned.push_back(entry.id);
    return owned;
}

std::vector<KcDbDictionary::Entry> KcDbDictionary::entries() const
{
    std::vector<Entry> result;
    for (const Entry& entry : m_data.entries)
        if (entry.id.isResident())
            result.push_back(entry);
    return result;
}

KcDbObjectId KcDbDictionary::subDictionary(KcDbObjectId parent, const QString& name)
{
    if (KcDbRead<KcDbDictionary> dictionary(parent); !dictionary)
        return {};
    else if (const KcDbObjectId id = dictionary->getAt(name); !id.isNull())
        return id;
    KcDbWrite<KcDbDictionary> dictionary(parent);
    return dictionary->setAt(name, std::make_unique<KcDbDictionary>());
}

namespace {

struct ModuleClass {
    const KcRxClass* type;
    KcDbModuleObject::Factory make;
};

std::vector<ModuleClass>& moduleClasses()
{
    static std::vector<ModuleClass> classes;
    return classes;
}

// The first value of a module object's record: tells it from records of other programs.
const QString kClassMark = QStringLiteral("KcRxClass:");

} // namespace

const KcRxClass* KcDbModuleObject::desc()
{
    static const KcRxClass description("AcDbModuleObject", KcDbXrecord::desc());
    return &description;
}

KcDbValueList KcDbModuleObject::values() const
{
    KcDbValueList list{ { 1, kClassMark + QLatin1String(isA()->name()) } };
    const KcDbValueList own = ownValues();
    list.insert(list.end(), own.begin(), own.end());
    return list;
}

void KcDbModuleObject::setValues(KcDbValueList values)
{
    if (!values.empty() && values.front().code == 1 && values.front().text().startsWith(kClassMark))
        values.erase(values.begin());
    setOwnValues(values);
}

void KcDbModuleObject::registerClass(const KcRxClass* type, Factory factory)
{
    unregisterClass(type);
    moduleClasses().push_back({ type, std::move(factory) });
}

void KcDbModuleObject::unregisterClass(const KcRxClass* type)
{
    std::erase_if(moduleClasses(), [&](const ModuleClass& c) { return c.type == type; });
}

std::unique_ptr<KcDbModuleObject> KcDbModuleObject::fromRecord(const KcDbXrecord& record)
{
    const KcDbValueList values = record.values();
    if (values.empty() || values.front().code != 1 || !values.front().text().startsWith(kClassMark))
        return nullptr;
    const QString name = values.front().text().mid(kClassMark.size());
    for (const ModuleClass& c : moduleClasses()) {
        if (name != QLatin1String(c.type->name()))
            continue;
        std::unique_ptr<KcDbModuleObject> object = c.make();
        object->setValues(values);
        return object;
    }
    return nullptr;
}

void KcDbModuleObject::reviveAll(KcDbDatabase& database)
{
    if (moduleClasses().empty())
        return;
    for (KcDbObjectStub& stub : database.stubs()) {
        if (!stub.object || stub.object->isA() != KcDbXrecord::desc())
            continue;
        if (auto object = fromRecord(static_cast<const KcDbXrecord&>(*stub.object)))
            database.replaceObject(KcDbObjectId(&stub), std::move(object));
    }
}

KcDbObjectId
KcDbGroup::create(KcDbDatabase& database, const QString& name, const std::vector<KcDbObjectId>& members)
{
    auto group = std::make_unique<KcDbGroup>();
    for (KcDbObjectId id : members)
        if (id.isResident())
            group->data().members.push_back(id);
    if (group->data().members.empty())
        return {};
    const std::vector<KcDbObjectId> kept = group->data().members;
    const KcDbObjectId groups
        = KcDbDictionary::subDictionary(database.namedObjectsDictionary(), QStringLiteral("ACAD_GROUP"));
    KcDbWrite<KcDbDictionary> dictionary(groups);
    if (!dictionary)
        return {};
    QString key = name;
    if (name.compare("*U", Qt::CaseInsensitive) == 0) {
        group->data().anonymous = true;
        int next = 1;
        for (const KcDbDictionary::Entry& entry : dictionary->data().entries)
            if (entry.name.startsWith("*A", Qt::CaseInsensitive))
                next = std::max(next, entry.name.mid(2).toInt() + 1);
        key = QStringLiteral("*A%1").arg(next);
    }
    const KcDbObjectId id = dictionary->setAt(key, std::move(group));
    for (KcDbObjectId member : kept)
        if (KcDbWrite<KcDbObject> object(member); object)
            object->addPersistentReactor(id);
    return id;
}
