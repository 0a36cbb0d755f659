// The drawing: objects under their handles, the frame of tables and dictionaries, notifications.

#include "db/database.h"

#include "db/block_reference.h"
#include "db/dictionary.h"
#include "db/header.h"
#include "db/spatial_index.h"
#include "db/tables.h"

#include <cassert>

KcDbDatabase::KcDbDatabase(Content content)
{
    makeFrame();
    if (content == Content::kNewDrawing)
        makeNewDrawing();
}

KcDbDatabase::~KcDbDatabase()
{
    m_spatialIndex.reset();
    m_undo.discard();
    for (KcDbObjectStub& stub : m_stubs)
        delete stub.object;
}

KcDbObjectStub*& KcDbDatabase::slot(KcDbHandle handle)
{
    const KcDbHandle page = handle >> kPageBits;
    std::unique_ptr<Page>* data;
    if (page < kNearPages) {
        if (page >= m_nearPages.size())
            m_nearPages.resize(size_t(page) + 1);
        data = &m_nearPages[size_t(page)];
    } else {
        data = &m_farPages[page];
    }
    if (!*data)
        *data = std::make_unique<Page>();
    return (**data)[handle & ((KcDbHandle(1) << kPageBits) - 1)];
}

KcDbObjectStub& KcDbDatabase::newStub(KcDbHandle handle)
{
    KcDbObjectStub& stub = m_stubs.emplace_back();
    stub.handle = handle;
    stub.database = this;
    slot(handle) = &stub;
    reserveHandles(handle);
    return stub;
}

void KcDbDatabase::reserveHandles(KcDbHandle atLeast)
{
    if (atLeast >= m_nextHandle)
        m_nextHandle = atLeast + 1;
}

KcDbObjectId KcDbDatabase::addObject(std::unique_ptr<KcDbObject> object, KcDbObjectId owner)
{
    assert(object && !object->m_stub);
    KcDbObjectStub& stub = m_loading ? newUnnumberedStub(0) : newStub(m_nextHandle);
    object->m_stub = &stub;
    object->m_owner = owner;
    object->m_place.changed = true;
    stub.object = object.release();
    ++m_changeCount;
    m_undo.wasCreated(stub);
    notifyCreated(stub);
    return KcDbObjectId(&stub);
}

KcDbObjectId KcDbDatabase::addObjectWithHandle(std::unique_ptr<KcDbObject> object, KcDbHandle handle)
{
    assert(object && !object->m_stub);
    KcDbObjectStub* stub = handle ? slot(handle) : nullptr;
    if (handle == 0 || handle > kHighestHandle || (stub && stub->object))
        stub = &newUnnumberedStub(handle);
    else if (!stub)
        stub = &newStub(handle);
    object->m_stub = stub;
    stub->object = object.release();
    return KcDbObjectId(stub);
}

KcDbObjectStub& KcDbDatabase::newUnnumberedStub(KcDbHandle wanted)
{
    KcDbObjectStub& stub = m_stubs.emplace_back();
    stub.database = this;
    m_unnumbered.emplace_back(&stub, wanted);
    return stub;
}

void KcDbDatabase::beginLoading()
{
    m_loading = true;
}

void KcDbDatabase::endLoading()
{
    m_loading = false;
    for (const auto& [stub, wanted] : m_unnumbered) {
        giveHandle(KcDbObjectId(stub), 0);
        if (wanted != 0)
            addFinding({ kFindingDuplicateHandle, true, stub->handle,
                         QStringLiteral("Handle %1 is borne by two objects; the second is known as %2 while "
                                        "the drawing is open.")
                             .arg(
                                 QString::number(wanted, 16).toUpper(),
                                 QString::number(stub->handle, 16).toUpper()) });
    }
    m_unnumbered.clear();
}

KcDbObjectId KcDbDatabase::idForHandle(KcDbHandle handle)
{
    if (handle == 0 || handle > kHighestHandle)
        return {};
    KcDbObjectStub* stub = slot(handle);
    return KcDbObjectId(stub ? stub : &newStub(handle));
}

KcDbObjectId KcDbDatabase::findHandle(KcDbHandle handle) const
{
    const KcDbHandle number = handle >> kPageBits;
    const Page* page = nullptr;
    if (number < m_nearPages.size())
        page = m_nearPages[size_t(number)].get();
    else if (const auto far = m_farPages.find(number); far != m_farPages.end())
        page = far->second.get();
    if (handle == 0 || !page)
        return {};
    KcDbObjectStub* stub = (*page)[handle & ((KcDbHandle(1) << kPageBits) - 1)];
    return stub && stub->object ? KcDbObjectId(stub) : KcDbObjectId();
}

KcDbObjectId KcDbDatabase::findHandle(const QString& hexadecimal) const
{
    bool ok = false;
    const KcDbHandle handle = hexadecimal.toULongLong(&ok, 16);
    return ok ? findHandle(handle) : KcDbObjectId();
}

void KcDbDatabase::replaceObject(KcDbObjectId id, std::unique_ptr<KcDbObject> object)
{
    assert(id.isValid() && object);
    KcDbObjectStub& stub = *id.stub();
    object->m_stub = &stub;
    object->m_owner = stub.object->m_owner;
    object->m_place = stub.object->m_place;
    if (stub.object->m_extras && !object->m_extras)
        object->m_extras = std::move(stub.object->m_extras);
    delete stub.object;
    stub.object = object.release();
}

KcDbObjectId KcDbDatabase::tableNamed(const char* fileName) const
{
    const std::string_view name(fileName);
    for (KcDbObjectId id : { m_layerTable, m_linetypeTable, m_textStyleTable, m_dimStyleTable, m_regAppTable,
                             m_ucsTable, m_viewTable, m_viewportTable, m_blockTable })
        if (KcDbRead<KcDbSymbolTable> table(id); table && name == table->fileName())
            return id;
    return {};
}

void KcDbDatabase::makeFrame()
{
    // Frame objects stand outside the handles of the file: they get theirs when the file names them.
    const auto frame = [this](std::unique_ptr<KcDbObject> object) {
        KcDbObjectStub& stub = m_stubs.emplace_back();
        stub.database = this;
        stub.flags = KcDbObjectStub::kImplicit;
        object->m_stub = &stub;
        stub.object = object.release();
        return KcDbObjectId(&stub);
    };
    const auto table = [&](const char* name) { return frame(std::make_unique<KcDbSymbolTable>(name)); };
    m_viewportTable = table("VPORT");
    m_linetypeTable = table("LTYPE");
    m_layerTable = table("LAYER");
    m_textStyleTable = table("STYLE");
    m_viewTable = table("VIEW");
    m_ucsTable = table("UCS");
    m_regAppTable = table("APPID");
    m_dimStyleTable = table("DIMSTYLE");
    m_blockTable = table("BLOCK_RECORD");
    m_header = frame(std::make_unique<KcDbHeader>());
}

void KcDbDatabase::giveHandle(KcDbObjectId id, KcDbHandle handle)
{
    KcDbObjectStub& stub = *id.stub();
    if (stub.handle != 0)
        return;
    if (handle > kHighestHandle)
        handle = 0;
    KcDbObjectStub* there = handle ? slot(handle) : nullptr;
    if (there && there->object)
        handle = 0; // taken by another object: known under a new one while the drawing is open
    if (handle == 0)
        handle = m_nextHandle;
    stub.handle = handle;
    slot(handle) = &stub;
    reserveHandles(handle);
}

void KcDbDatabase::exchangeHandles(KcDbObjectStub& a, KcDbObjectStub& b)
{
    std::swap(a.handle, b.handle);
    for (KcDbObjectStub* stub : { &a, &b })
        if (stub->handle != 0)
            slot(stub->handle) = stub;
}

KcDbObjectId KcDbDatabase::modelSpace() const
{
    const KcDbObjectId id = kcdbFindRecord(m_blockTable, QStringLiteral("*Model_Space"));
    return id.isNull() ? kcdbFindRecord(m_blockTable, QStringLiteral("$MODEL_SPACE")) : id;
}

KcDbObjectId KcDbDatabase::paperSpace() const
{
    const KcDbObjectId id = kcdbFindRecord(m_blockTable, QStringLiteral("*Paper_Space"));
    return id.isNull() ? kcdbFindRecord(m_blockTable, QStringLiteral("$PAPER_SPACE")) : id;
}

KcDbObjectId KcDbDatabase::currentSpace() const
{
    return m_currentSpace.isResident() ? m_currentSpace : modelSpace();
}

KcGeMatrix3d KcDbDatabase::ucsToWorld() const
{
    const KcDbRead<KcDbHeader> header(m_header);
    const KcGePoint3d x = header->point("$UCSXDIR", { 1, 0, 0 }), y = header->point("$UCSYDIR", { 0, 1, 0 });
    const KcGeVector3d xAxis = x.asVector().normal(), yAxis = y.asVector().normal();
    const KcGeVector3d zAxis = xAxis.crossProduct(yAxis);
    if (!(zAxis.length() > 0.5)) // axes that are no axes: the world system
        return {};
    return KcGeMatrix3d::fromAxes(header->point("$UCSORG"), xAxis, yAxis, zAxis.normal());
}

KcDbObjectId
KcDbDatabase::currentRecord(KcDbObjectId table, const char* variable, const char* otherwise) const
{
    const KcDbRead<KcDbHeader> header(m_header);
    const KcDbObjectId id = kcdbFindRecord(table, header->text(QLatin1String(variable)));
    return id.isNull() ? kcdbFindRecord(table, QLatin1String(otherwise)) : id;
}

KcDbObjectId KcDbDatabase::currentLayer() const
{
    return currentRecord(m_layerTable, "$CLAYER", "0");
}

KcDbObjectId KcDbDatabase::currentTextStyle() const
{
    return currentRecord(m_textStyleTable, "$TEXTSTYLE", "STANDARD");
}

KcDbObjectId KcDbDatabase::currentLinetype() const
{
    return currentRecord(m_linetypeTable, "$CELTYPE", "BYLAYER");
}

KcDbObjectId KcDbDatabase::byLayerLinetype() const
{
    return kcdbFindRecord(m_linetypeTable, QStringLiteral("BYLAYER"));
}

void KcDbDatabase::addListener(KcDbListener* listener)
{
    m_listeners.push_back(listener);
}

void KcDbDatabase::removeListener(KcDbListener* listener)
{
    std::erase(m_listeners, listener);
}

KcDbSpatialIndex& KcDbDatabase::spatialIndex() const
{
    // The index watches the drawing without being part of its state.
    if (!m_spatialIndex)
        m_spatialIndex = std::make_unique<KcDbSpatialIndex>(const_cast<KcDbDatabase&>(*this));
    return *m_spatialIndex;
}

void KcDbDatabase::addFinding(KcDbFinding finding)
{
    m_findings.push_back(std::move(finding));
}

void KcDbDatabase::notifyCreated(KcDbObjectStub& stub)
{
    for (KcDbListener* listener : m_listeners)
        listener->objectCreated(*stub.object);
}

void KcDbDatabase::notifyModified(KcDbObjectStub& stub)
{
    ++m_changeCount;
    const std::vector<KcDbObjectId> reactors = stub.object->reactors();
    for (KcDbObjectId reactor : reactors)
        if (KcDbRead<KcDbObject> object(reactor); object && !m_insideReactor) {
            m_insideReactor = true;
            const_cast<KcDbObject*>(object.get())->subjectModified(*stub.object);
            m_insideReactor = false;
        }
    for (KcDbListener* listener : m_listeners)
        listener->objectModified(*stub.object);
}

void KcDbDatabase::notifyErased(KcDbObjectStub& stub)
{
    ++m_changeCount;
    const bool erased = stub.flags & KcDbObjectStub::kErased;
    const std::vector<KcDbObjectId> reactors = stub.object->reactors();
    for (KcDbObjectId reactor : reactors)
        if (KcDbRead<KcDbObject> object(reactor); object)
            const_cast<KcDbObject*>(object.get())->subjectErased(*stub.object, erased);
    for (KcDbListener* listener : m_listeners)
        listener->objectErased(*stub.object, erased);
}

void KcDbDatabase::notifyRestored(KcDbObjectStub& stub)
{
    ++m_changeCount;
    const bool erased = stub.flags & KcDbObjectStub::kErased;
    for (KcDbListener* listener : m_listeners) {
        listener->objectErased(*stub.object, erased);
        if (!erased)
            listener->objectModified(*stub.object);
    }
}
