// Sorting and clearing of the counted records.
#include "statistics/records.h"

namespace {

template <class T, class Empty> void removeIf(DList<T>& records, Empty isEmpty)
{
    for (int i = 0; i < records.count();) {
        if (isEmpty(*records.at(i)))
            records.removeAtCursor();
        else
            ++i;
    }
}

} // namespace

void sortByCount(DList<CTreeData>& records)
{
    records.sort([](const CTreeData& a, const CTreeData& b) { return a.count < b.count; });
}

void sortByNames(DList<CAreaData>& records, const QStringList& names)
{
    QHash<QString, qsizetype> places;
    for (const QString& name : names)
        if (!places.contains(name))
            places.insert(name, places.size());
    const qsizetype last = places.size();
    records.sort([&](const CAreaData& a, const CAreaData& b) {
        return places.value(a.name, last) < places.value(b.name, last);
    });
}

void removeEmptyRecords(DList<CTreeData>& records)
{
    removeIf(records, [](const CTreeData& record) { return record.block.isNull() || record.count < 1; });
}

void removeEmptyRecords(DList<CAreaData>& records)
{
    removeIf(records, [](const CAreaData& record) { return record.name.isEmpty() || record.count < 1; });
}
