// The columns of the statistics tables: keys, header texts, which of them are drawn, as the layout document
// (Sys/VDLTbInfo.xml) has them.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// What is shown for a table or for one of its columns.
struct STbInfoDesc {
    QString text;
    bool visible = true;
    friend bool operator==(const STbInfoDesc&, const STbInfoDesc&) = default;
};

/// A table with its columns in document order, sub-columns after their column.
class CTbInfoStd {
public:
    struct Entry {
        QString key;
        STbInfoDesc desc;
        friend bool operator==(const Entry&, const Entry&) = default;
    };
    CTbInfoStd() = default;
    explicit CTbInfoStd(const QString& table)
        : m_table(table)
    {
    }

    /// The table's name; also the key of its title.
    const QString& tableName() const { return m_table; }
    /// The first entry is the title.
    const std::vector<Entry>& entries() const { return m_entries; }
    /// What is shown for a key (exact); null when the table has none. Valid until the next `Set`.
    const STbInfoDesc* FindByName(const QString& key) const;
    /// Changes what is shown for a key, adding the key when it is new.
    void Set(const QString& key, const STbInfoDesc& desc);

private:
    QString m_table;
    std::vector<Entry> m_entries;
};

/// All tables of a layout document's text; nothing when it is damaged, which is named through the diagnostics.
std::optional<std::vector<CTbInfoStd>> tableInfoIn(const QString& document);

/// All tables of the layout document. Nothing when it is missing or damaged; the latter is named through the
/// diagnostics. A column is visible unless its "Check" is "0".
std::optional<std::vector<CTbInfoStd>> loadTableInfo();

/// The keys of all items of a table in document order, sub-items after their item. False, and no names, when
/// the document or the table is missing.
bool GetVDLTbInfoAllName(const QString& table, QStringList& names);
