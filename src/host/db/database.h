// A drawing: owner of all objects, their ids and handles, the root tables and dictionaries, header variables, undo.
#pragma once

#include "db/object.h"
#include "db/undo.h"
#include "ge/matrix.h"

#include <QString>

#include <array>
#include <deque>
#include <memory>
#include <unordered_map>
#include <vector>

/// Versions of the drawing file format, by the year of their first program.
enum class KcDbVersion { R12, R13, R14, V2000, V2004, V2007, V2010, V2013, V2018 };

/// Told of changes to a drawing as they are finished.
class KcDbListener {
public:
    virtual ~KcDbListener() = default;
    virtual void objectCreated(const KcDbObject&) { }
    virtual void objectModified(const KcDbObject&) { }
    /// Also called when undo brings an object back or takes it away.
    virtual void objectErased(const KcDbObject&, bool /*erased*/) { }
};

/// Something noticed while a drawing was read or checked, numbered by its kind. `fixed` findings were repaired in
/// memory; the others are errors that stay in the drawing.
struct KcDbFinding {
    int number = 0;
    bool fixed = false;
    KcDbHandle handle = 0; ///< the object it is about; 0: the drawing
    QString text;
};

enum KcDbFindingNumber {
    kFindingDuplicateHandle = 101,
    kFindingUndefinedName = 102,
    kFindingBadGroup = 103,
    kFindingUndecodableText = 104,
    kFindingTruncated = 105,
    kFindingMisplacedRecord = 106,
    kFindingUnknownReference = 107,
};

/// What remains of the file a database was read from; the file code derives its own from it.
class KcDbDrawingFile {
public:
    virtual ~KcDbDrawingFile() = default;
    /// The groups of an object as the file holds them, the common ones included; points are one value each. Empty for
    /// an object that was made in memory.
    virtual KcDbValueList values(const KcDbObject& object) const = 0;
};

class KcDbSpatialIndex;

class KcDbDatabase {
public:
    enum class Content {
        kEmpty, ///< only the bare frame that a reader fills
        kNewDrawing, ///< everything that an empty drawing needs, so that it can be drawn in and saved
    };
    explicit KcDbDatabase(Content content = Content::kNewDrawing);
    ~KcDbDatabase();
    KcDbDatabase(const KcDbDatabase&) = delete;
    KcDbDatabase& operator=(const KcDbDatabase&) = delete;

    // Objects.

    /// Takes an object into the drawing under a new handle. Owners' own operations (append to a block, add to a
    /// dictionary or table) call it; `owner` is recorded as the owner.
    KcDbObjectId addObject(std::unique_ptr<KcDbObject> object, KcDbObjectId owner);
    /// The same under a handle read from a file. When it is 0, or another object bears it already, the object gets one
    /// of its own when loading ends.
    KcDbObjectId addObjectWithHandle(std::unique_ptr<KcDbObject> object, KcDbHandle handle);
    /// The id for a handle; an id without object when nothing bears the handle yet. Null for handle 0.
    KcDbObjectId idForHandle(KcDbHandle handle);
    /// The id of an object that bears the handle, erased or not; null when there is none.
    KcDbObjectId findHandle(KcDbHandle handle) const;
    KcDbObjectId findHandle(const QString& hexadecimal) const;
    /// One more than the highest handle in use.
    KcDbHandle nextHandle() const { return m_nextHandle; }
    void reserveHandles(KcDbHandle atLeast);
    /// Puts another object in the place of one (a module's object for a plain record, or back).
    void replaceObject(KcDbObjectId id, std::unique_ptr<KcDbObject> object);
    /// All ids in the order in which their objects came into the drawing; erased and unborn ones included.
    const std::deque<KcDbObjectStub>& stubs() const { return m_stubs; }
    std::deque<KcDbObjectStub>& stubs() { return m_stubs; }

    // Roots.

    KcDbObjectId layerTable() const { return m_layerTable; }
    KcDbObjectId linetypeTable() const { return m_linetypeTable; }
    KcDbObjectId textStyleTable() const { return m_textStyleTable; }
    KcDbObjectId dimStyleTable() const { return m_dimStyleTable; }
    KcDbObjectId regAppTable() const { return m_regAppTable; }
    KcDbObjectId ucsTable() const { return m_ucsTable; }
    KcDbObjectId viewTable() const { return m_viewTable; }
    KcDbObjectId viewportTable() const { return m_viewportTable; }
    KcDbObjectId blockTable() const { return m_blockTable; }
    /// The table whose file name is "LAYER", "LTYPE", "STYLE", "DIMSTYLE", "APPID", "UCS", "VIEW", "VPORT" or
    /// "BLOCK_RECORD"; null for any other.
    KcDbObjectId tableNamed(const char* fileName) const;
    KcDbObjectId namedObjectsDictionary() const { return m_namedObjects; }
    void setNamedObjectsDictionary(KcDbObjectId id) { m_namedObjects = id; }
    KcDbObjectId headerId() const { return m_header; }

    KcDbObjectId modelSpace() const;
    /// The block of the layout that was last current in paper space.
    KcDbObjectId paperSpace() const;
    /// Model space until the variables TILEMODE and CTAB say otherwise.
    KcDbObjectId currentSpace() const;
    /// From the current user coordinate system to world coordinates.
    KcGeMatrix3d ucsToWorld() const;

    /// Current properties of new entities; fall back to layer "0", text style "Standard" and so on.
    KcDbObjectId currentLayer() const;
    KcDbObjectId currentTextStyle() const;
    KcDbObjectId currentLinetype() const;
    KcDbObjectId byLayerLinetype() const;

    // State.

    KcDbUndo& undo() { return m_undo; }
    void addListener(KcDbListener* listener);
    void removeListener(KcDbListener* listener);

    /// Finds entities by place. Made when first asked for; what it keeps is no part of the drawing.
    KcDbSpatialIndex& spatialIndex() const;

    const QString& fileName() const { return m_fileName; }
    void setFileName(const QString& name) { m_fileName = name; }
    KcDbVersion version() const { return m_version; }
    void setVersion(KcDbVersion version) { m_version = version; }
    const std::vector<KcDbFinding>& findings() const { return m_findings; }
    void addFinding(KcDbFinding finding);

    /// Grows with every change; what is computed from the drawing can be kept until it does.
    uint64_t changeCount() const { return m_changeCount; }

    /// For readers: between these, objects without a handle of their own stay without; at the end they get handles above
    /// the highest one met.
    void beginLoading();
    void endLoading();
    /// For readers: gives a table its handle in the file (0: the next free one).
    void giveHandle(KcDbObjectId id, KcDbHandle handle);
    /// For readers: lets two objects bear each other's handles.
    void exchangeHandles(KcDbObjectStub& a, KcDbObjectStub& b);
    /// For readers, after the last object: makes what every drawing needs and this one lacks (layer "0", model space,
    /// …), marked as implicit.
    void completeFrame();
    /// For readers: marks an object as made only because the drawing implies it; it is written once it is changed.
    static void markImplicit(KcDbObjectId id);
    void setCurrentSpace(KcDbObjectId block) { m_currentSpace = block; }

    KcDbDrawingFile* file() const { return m_file.get(); }
    void setFile(std::shared_ptr<KcDbDrawingFile> file) { m_file = std::move(file); }

private:
    friend class KcDbOpenBase;
    friend class KcDbObject;
    friend class KcDbUndo;

    KcDbObjectStub& newStub(KcDbHandle handle);
    KcDbObjectStub& newUnnumberedStub(KcDbHandle wanted);
    KcDbObjectStub*& slot(KcDbHandle handle);
    void makeFrame();
    KcDbObjectId currentRecord(KcDbObjectId table, const char* variable, const char* otherwise) const;
    void makeNewDrawing();
    void notifyCreated(KcDbObjectStub& stub);
    void notifyModified(KcDbObjectStub& stub);
    void notifyErased(KcDbObjectStub& stub);
    void notifyRestored(KcDbObjectStub& stub);

    // Handles are nearly dense, so pages of consecutive ones serve better than a hash.
    static constexpr int kPageBits = 10;
    using Page = std::array<KcDbObjectStub*, size_t(1) << kPageBits>;
    static constexpr KcDbHandle kNearPages = KcDbHandle(1) << 16; // 67 million handles
    std::vector<std::unique_ptr<Page>> m_nearPages;
    std::unordered_map<KcDbHandle, std::unique_ptr<Page>> m_farPages; // of drawings with gigantic handles

    std::deque<KcDbObjectStub> m_stubs;
    KcDbHandle m_nextHandle = 1;
    // "One more than the highest" must be sayable.
    static constexpr KcDbHandle kHighestHandle = KcDbHandle(1) << 62;
    bool m_loading = false;
    std::vector<std::pair<KcDbObjectStub*, KcDbHandle>> m_unnumbered; ///< with the handles that were taken
    KcDbObjectId m_layerTable, m_linetypeTable, m_textStyleTable, m_dimStyleTable, m_regAppTable, m_ucsTable, m_viewTable,
        m_viewportTable, m_blockTable, m_namedObjects, m_header;
    KcDbUndo m_undo {*this};
    std::vector<KcDbListener*> m_listeners;
    QString m_fileName;
    KcDbVersion m_version = KcDbVersion::V2010;
    std::vector<KcDbFinding> m_findings;
    KcDbObjectId m_currentSpace;
    uint64_t m_changeCount = 0;
    bool m_insideReactor = false;
    std::shared_ptr<KcDbDrawingFile> m_file;
    mutable std::unique_ptr<KcDbSpatialIndex> m_spatialIndex;
};
