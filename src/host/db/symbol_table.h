// Symbol tables: named records, looked up without regard to case.
#pragma once

#include "db/object.h"

#include <string>
#include <unordered_map>

/// A record of a symbol table. Names are changed through the table, which keeps its index.
class KcDbSymbolTableRecord : public KcDbObject {
public:
    static const KcRxClass* desc();
    const QString& name() const { return m_name; }
    /// Group 70 of the record: 1 frozen layer, 16 and 32 external reference, …
    int flags() const { return m_flags; }
    void setFlags(int flags) { m_flags = flags; }
    bool isXrefDependent() const { return m_flags & 16; }

    /// For readers and new records that no table holds yet.
    void initName(const QString& name) { m_name = name; }

protected:
    KcDbSymbolTableRecord() = default;
    KcDbSymbolTableRecord(const KcDbSymbolTableRecord&) = default;

private:
    friend class KcDbSymbolTable;
    QString m_name;
    int m_flags = 0;
};

/// One of the nine tables; which one tells its file name.
class KcDbSymbolTable : public KcDbObject {
    KCRX_DECLARE(KcDbSymbolTable)
public:
    KcDbSymbolTable() = default;
    explicit KcDbSymbolTable(const char* fileName)
        : m_fileName(fileName)
    {
    }
    /// "LAYER", "LTYPE", …
    const char* fileName() const { return m_fileName; }

    bool has(const QString& name) const { return !getAt(name).isNull(); }
    /// Null when there is none of that name. Erased records are not found.
    KcDbObjectId getAt(const QString& name) const;
    /// In table order, erased ones left out.
    std::vector<KcDbObjectId> records() const;
    /// The records' names in table order.
    QStringList names() const;
    /// Adds a record; when the name is taken, the id of the record that has it. The table must be open for writing
    /// and in a database.
    KcDbObjectId add(std::unique_ptr<KcDbSymbolTableRecord> record);
    /// Renames a record; eDuplicateKey when another has the name.
    Kcad::ErrorStatus rename(KcDbObjectId record, const QString& name);

    /// For readers: lists a record that is in the database already. Of two with one name the first is found.
    void list(KcDbObjectId record, const QString& name);

private:
    const char* m_fileName = "";
    std::vector<KcDbObjectId> m_records;
    std::unordered_map<std::u16string, KcDbObjectId> m_index; ///< by case-folded name
};

/// Convenience over the tables of a database.
KcDbObjectId kcdbFindRecord(KcDbObjectId table, const QString& name);
/// The name of a symbol table record; an empty text for any other id.
QString kcdbRecordName(KcDbObjectId record);
