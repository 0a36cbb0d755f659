// Reads the table layout document. Elements are known by name and place: tables below the root, items below
// tables and below items.

#include "core/table_info.h"

#include "core/xml_file.h"

#include <QXmlStreamReader>

namespace {

const QString layoutDocument = QStringLiteral("VDLTbInfo.xml");

// Items nested deeper than this are damage.
constexpr int kDeepest = 16;

struct Item {
    QString name, value, check;
    std::vector<Item> items;
};

Item readItem(QXmlStreamReader& xml, int depth = 0)
{
    Item item;
    while (xml.readNextStartElement()) {
        if (xml.name() == u"Name")
            item.name = xml.readElementText(QXmlStreamReader::IncludeChildElements);
        else if (xml.name() == u"Value")
            item.value = xml.readElementText(QXmlStreamReader::IncludeChildElements);
        else if (xml.name() == u"Check")
            item.check = xml.readElementText(QXmlStreamReader::IncludeChildElements);
        else if (xml.name() == u"Item" && depth < kDeepest)
            item.items.push_back(readItem(xml, depth + 1));
        else
            xml.skipCurrentElement();
    }
    return item;
}

void list(const Item& item, CTbInfoStd& table)
{
    if (!item.name.isEmpty() && !table.FindByName(item.name)) // of two with one key the first counts
        table.Set(item.name, { item.value.isEmpty() ? item.name : item.value, item.check != u"0" });
    for (const Item& child : item.items)
        list(child, table);
}

void collectNames(const Item& item, QStringList& names)
{
    for (const Item& child : item.items) {
        names.push_back(child.name);
        collectNames(child, names);
    }
}

std::optional<std::vector<Item>> readLayout(const QString& text)
{
    QXmlStreamReader xml(text);
    std::vector<Item> tables;
    if (xml.readNextStartElement())
        while (xml.readNextStartElement()) {
            if (xml.name() == u"Table")
                tables.push_back(readItem(xml));
            else
                xml.skipCurrentElement();
        }
    if (xml.hasError()) {
        diagnoseDocument(layoutDocument, xml.lineNumber(), xml.errorString());
        return std::nullopt;
    }
    return tables;
}

} // namespace

const STbInfoDesc* CTbInfoStd::FindByName(const QString& key) const
{
    const auto found = std::find_if(
        m_entries.begin(), m_entries.end(), [&](const Entry& entry) { return entry.key == key; });
    return found == m_entries.end() ? nullptr : &found->desc;
}

void CTbInfoStd::Set(const QString& key, const STbInfoDesc& desc)
{
    const auto found = std::find_if(
        m_entries.begin(), m_entries.end(), [&](const Entry& entry) { return entry.key == key; });
    if (found == m_entries.end())
        m_entries.push_back({ key, desc });
    else
        found->desc = desc;
}

std::optional<std::vector<CTbInfoStd>> loadTableInfo()
{
    const std::optional<QString> text = readSystemDocument(layoutDocument);
    return text ? tableInfoIn(*text) : std::nullopt;
}

std::optional<std::vector<CTbInfoStd>> tableInfoIn(const QString& document)
{
    const std::optional<std::vector<Item>> layout = readLayout(document);
    if (!layout)
        return std::nullopt;
    std::vector<CTbInfoStd> tables;
    for (const Item& item : *layout) {
        CTbInfoStd& table = tables.emplace_back(item.name);
        list(item, table);
    }
    return tables;
}

bool GetVDLTbInfoAllName(const QString& table, QStringList& names)
{
    names.clear();
    const std::optional<QString> text = readSystemDocument(layoutDocument);
    const std::optional<std::vector<Item>> layout = text ? readLayout(*text) : std::nullopt;
    if (!layout)
        return false;
    const auto found
        = std::find_if(layout->begin(), layout->end(), [&](const Item& item) { return item.name == table; });
    if (found == layout->end())
        return false;
    collectNames(*found, names);
    return true;
}
