// Filters of selections: lists of group codes and values that an entity must have.
//
//     kcutBuildList(0, "INSERT", 8, "trees*")
//     kcutBuildList(-4, "<OR", 0, "HATCH", -4, "<AND", 0, "CIRCLE", -4, ">", 40, 5.0, -4, "AND>", -4, "OR>")
//
// Understood are 0 entity type, 1 text, 2 block, pattern or tag name, 3 dimension style, 5 handle, 6 line
// type, 7 text style, 8 layer, 10 insertion point, centre or start, 39 thickness, 40 radius or height, 41 to
// 43 scales, 48 line type scale, 50 rotation in radians, 60 invisible, 62 colour, 67 paper space, 70 flags,
// 102 "{ACAD_REACTORS" or
// "{ACAD_XDICTIONARY", 370 line weight, 410 layout, -3 or 1001 extended data followed by its values, -4
// operators.
#pragma once

#include "db/entity.h"
#include "ed/wild_card.h"

/// An empty list lets everything pass.
using KcEdFilter = KcDbValueList;

namespace kcedDetail {
inline KcDbTypedValue filterItem(int code, const char* value)
{
    return { code, QString::fromUtf8(value) };
}
inline KcDbTypedValue filterItem(int code, const char16_t* value)
{
    return { code, QString::fromUtf16(value) };
}
inline KcDbTypedValue filterItem(int code, const QString& value)
{
    return { code, value };
}
inline KcDbTypedValue filterItem(int code, int value)
{
    return { code, int64_t(value) };
}
inline KcDbTypedValue filterItem(int code, double value)
{
    return { code, value };
}
inline KcDbTypedValue filterItem(int code, KcGePoint3d value)
{
    return { code, value };
}
inline void appendItems(KcEdFilter&) { }
template <class T, class... Rest>
void appendItems(KcEdFilter& list, int code, const T& value, const Rest&... rest)
{
    list.push_back(filterItem(code, value));
    appendItems(list, rest...);
}
} // namespace kcedDetail

/// A list from pairs of code and value.
template <class... Items> KcEdFilter kcutBuildList(const Items&... items)
{
    static_assert(sizeof...(Items) % 2 == 0, "codes and values come in pairs");
    KcEdFilter list;
    kcedDetail::appendItems(list, items...);
    return list;
}

/// A filter made ready for many entities of one drawing.
class KcEdCompiledFilter {
public:
    explicit KcEdCompiledFilter(const KcEdFilter& filter);
    ~KcEdCompiledFilter();
    KcEdCompiledFilter(const KcEdCompiledFilter&) = delete;
    KcEdCompiledFilter& operator=(const KcEdCompiledFilter&) = delete;

    /// Why the list makes no sense, such as an operator that is not closed; then nothing passes. Empty when
    /// it does.
    const QString& error() const { return m_error; }
    bool passes(const KcDbEntity& entity) const;

    struct Node;

private:
    std::unique_ptr<Node> m_root;
    QString m_error;
};

/// The name of an entity's kind in drawing files, such as "INSERT".
const QString& kcedEntityTypeName(const KcDbEntity& entity);
