// Counting. Symbols are grouped by their definitions first: a drawing holds a million of the former and a few
// dozen of the latter, and only these are looked up by name.

#include "statistics/plant_count.h"

#include "core/block.h"
#include "core/draw.h"
#include "core/entity_tags.h"
#include "core/label_parse.h"
#include "core/long_work.h"
#include "core/tags.h"
#include "core/text.h"
#include "frame/split.h"

#include <limits>
#include <optional>
#include <unordered_map>

namespace {

// Above so many objects a progress meter is shown.
constexpr size_t symbolsWithoutMeter = 1000;
constexpr size_t labelsWithoutMeter = 100;

// The references of one definition.
struct Symbols {
    KcDbObjectId definition;
    KcDbObjectId first; ///< the reference that was met first
    int count = 0;
};

// In the order in which the definitions are first met; nothing when the user stopped it.
std::optional<std::vector<Symbols>> groupByDefinition(const std::vector<KcDbObjectId>& references)
{
    LongWork work(QStringLiteral("正在分析%1个图块的数据"), references.size(), symbolsWithoutMeter);
    std::vector<Symbols> groups;
    std::unordered_map<KcDbObjectId, size_t> places;
    KcDbObjectId previous; // symbols of one kind often follow one another
    size_t place = 0;
    for (const KcDbObjectId reference : references) {
        const KcDbObjectId definition = blockDefinitionOf(reference);
        if (!definition.isNull()) {
            if (definition != previous) {
                place = places.try_emplace(definition, groups.size()).first->second;
                if (place == groups.size())
                    groups.push_back({ definition, reference, 0 });
                previous = definition;
            }
            ++groups[place].count;
        }
        if (!work.advance())
            return std::nullopt;
    }
    return groups;
}

// The record of a name, made when the list has none.
CTreeData& recordOf(DList<CTreeData>& records, const QString& name)
{
    if (CTreeData* record = records.findByName(name))
        return *record;
    return *records.append(new CTreeData{ name, {}, 0, records.count() + 1, {} });
}

// Labels may say any number; a sum stops at what a count can hold.
void add(CTreeData& record, int count)
{
    record.count = int(std::min<int64_t>(int64_t(record.count) + count, std::numeric_limits<int>::max()));
}

} // namespace

bool countSymbols(const std::vector<KcDbObjectId>& references, DList<CTreeData>& records)
{
    const bool isNew = records.isEmpty();
    const auto groups = groupByDefinition(references);
    if (!groups)
        return false;
    for (const Symbols& group : *groups) {
        CTreeData& record = recordOf(records, blockDefinitionName(group.definition));
        add(record, group.count);
        if (record.block.isNull())
            record.block = group.first;
    }
    if (isNew)
        sortByCount(records);
    else
        removeEmptyRecords(records);
    return true;
}

bool countLabels(const std::vector<KcDbObjectId>& texts, DList<CTreeData>& records)
{
    const bool isNew = records.isEmpty();
    LongWork work(QStringLiteral("正在分析%1条数据"), texts.size(), labelsWithoutMeter);
    for (const KcDbObjectId text : texts) {
        if (!work.advance())
            return false;
        MText label;
        if (!label.Initialize(text) || entityTag(text, tags::entityType) == tags::kind::areaLabel)
            continue;
        for (const LabelEntry& entry : entriesOfLabel(label.GetText())) {
            CTreeData& record = recordOf(records, entry.name);
            add(record, entry.count);
            if (record.block.isNull())
                GetBlockTableRecordId(entry.name, record.block, text.database());
        }
    }
    if (isNew)
        sortByCount(records);
    return true;
}

bool countPlants(const PlantSelection& plants, DList<CTreeData>& records)
{
    return plants.mode == PlantSelection::Mode::Symbols ? countSymbols(plants.ids, records)
                                                        : countLabels(plants.ids, records);
}

std::vector<LabelEntry> entriesOfLabel(const QString& text)
{
    std::vector<LabelEntry> entries;
    QString species;
    for (const QString& field : splitFields(text, u',')) {
        const std::optional<TreeLabel> label = parseTreeLabel(field);
        if (!label || label->count < 1)
            continue;
        // A number alone names no plant, unless an entry before it says which.
        const QString name = entries.empty() ? label->name : species + label->name;
        if (name.isEmpty())
            continue;
        if (entries.empty())
            species = GetSpeciesName(label->name);
        entries.push_back({ name, label->count });
    }
    return entries;
}
