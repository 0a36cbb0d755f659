// Dictionaries, extension records, module objects, groups, layouts and objects that are kept as they are.
#pragma once

#include "db/object.h"
#include "ge/extents.h"

#include <functional>

class KcDbDictionary : public KcDbObject {
    KCRX_DECLARE(KcDbDictionary)
public:
    struct Entry {
        QString name;
        KcDbObjectId id;
        friend bool operator==(const Entry&, const Entry&) = default;
    };
    struct Data {
        std::vector<Entry> entries;
        bool hardOwner = false;
        int cloning = 1; ///< group 281
        KcDbObjectId defaultId; ///< of a dictionary with default
    };
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }

    /// Null when there is none of that name, or what it names was erased. Compared without regard to case.
    KcDbObjectId getAt(const QString& name) const;
    /// The name under which an object is entered; empty when it is not.
    QString nameOf(KcDbObjectId id) const;
    /// Enters a new object, which the dictionary then owns; an object of that name is erased first.
    KcDbObjectId setAt(const QString& name, std::unique_ptr<KcDbObject> object);
    /// Takes the entry out and erases the object. eKeyNotFound when there is none.
    Kcad::ErrorStatus remove(const QString& name);
    std::vector<KcDbObjectId> ownedObjects() const override;
    /// Entries whose objects can be opened.
    std::vector<Entry> entries() const;

    /// The dictionary of that name inside this one, made when missing.
    static KcDbObjectId subDictionary(KcDbObjectId parent, const QString& name);

private:
    Data m_data;
};

/// A list of values under a name.
class KcDbXrecord : public KcDbObject {
    KCRX_DECLARE(KcDbXrecord)
public:
    struct Data {
        KcDbValueList values;
        int cloning = 1;
    };
    virtual KcDbValueList values() const { return m_data.values; }
    virtual void setValues(KcDbValueList values) { m_data.values = std::move(values); }
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }

private:
    Data m_data;
};

/// Base of objects that a module defines. Saved as an extension record whose values begin with the class's name; it
/// becomes the class again when the module that registers the name is there.
class KcDbModuleObject : public KcDbXrecord {
public:
    static const KcRxClass* desc();
    KcDbValueList values() const final;
    void setValues(KcDbValueList values) final;

    using Factory = std::function<std::unique_ptr<KcDbModuleObject>()>;
    /// Makes the class known under its published name, or forgets it. Records of open drawings follow.
    static void registerClass(const KcRxClass* type, Factory factory);
    static void unregisterClass(const KcRxClass* type);
    /// The object that a record's values describe; null when they name no registered class.
    static std::unique_ptr<KcDbModuleObject> fromRecord(const KcDbXrecord& record);
    /// Turns all records of a drawing that describe objects of registered classes into them.
    static void reviveAll(KcDbDatabase& database);

protected:
    /// The object's own values, without the leading class name.
    virtual KcDbValueList ownValues() const = 0;
    virtual void setOwnValues(const KcDbValueList& values) = 0;
};

class KcDbGroup : public KcDbObject {
    KCRX_DECLARE(KcDbGroup)
public:
    struct Data {
        QString description;
        bool anonymous = false;
        bool selectable = true;
        std::vector<KcDbObjectId> members;
    };
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }

    /// Makes a group of the entities in the drawing's group dictionary; the name "*U" gives the next anonymous name.
    /// The entities get the group as a reactor. Null when nothing of the list can be opened.
    static KcDbObjectId create(KcDbDatabase& database, const QString& name, const std::vector<KcDbObjectId>& members);

private:
    Data m_data;
};

class KcDbLayout : public KcDbObject {
    KCRX_DECLARE(KcDbLayout)
public:
    /// The paper that the layout is laid out for, as the file has it; it is read only. Millimetres, upright as the
    /// printer takes it.
    struct Page {
        double width = 0.0, height = 0.0; ///< 0: the file has none
        double left = 0.0, bottom = 0.0, right = 0.0, top = 0.0; ///< margins that are not printed on
        KcGePoint2d origin {0, 0}; ///< of the plot, from the corner of the margins
        double paperUnits = 1.0, drawingUnits = 1.0; ///< the plot's scale
        int unit = 1; ///< of the paper: 0 inches, 1 millimetres, 2 pixels
        int rotation = 0; ///< quarter turns counter-clockwise
        int area = 0; ///< what is plotted; 5: the layout
    };
    struct Data {
        QString name;
        int flags = 1;
        int tabOrder = 0;
        KcDbObjectId block;
        KcGePoint2d limitsMin {0, 0}, limitsMax {420, 297};
        int plotFlags = 688;
        Page page;
    };
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }

private:
    Data m_data;
};

/// An object of a kind that the program does not know; it stays as the file holds it.
class KcDbRawObject : public KcDbObject {
    KCRX_DECLARE(KcDbRawObject)
public:
    KcDbRawObject() = default;
    explicit KcDbRawObject(const QByteArray& fileName)
        : m_fileName(fileName)
    {
    }
    /// The name of its kind in the file.
    const QByteArray& fileName() const { return m_fileName; }

private:
    QByteArray m_fileName;
};
