// Columns of multiline texts: what files say of them, and what becomes of it when the text changes.

#include "db/database.h"
#include "db/symbol_table.h"
#include "db/text.h"

namespace {

const QString kApplication = QStringLiteral("ACAD");

// The marks round what the extended data say, and the numbers of its values.
constexpr QLatin1String kInfoBegin("ACAD_MTEXT_COLUMN_INFO_BEGIN"), kInfoEnd("ACAD_MTEXT_COLUMN_INFO_END"),
    kOthersBegin("ACAD_MTEXT_COLUMNS_BEGIN"), kOthersEnd("ACAD_MTEXT_COLUMNS_END"),
    kHeightBegin("ACAD_MTEXT_DEFINED_HEIGHT_BEGIN"), kHeightEnd("ACAD_MTEXT_DEFINED_HEIGHT_END");
constexpr int64_t kKind = 75, kWidth = 48, kGutter = 49;

/// Tells `told` each value between the marks with the number that stands before it.
template <class List, class Told> void walk(List& values, const Told& told)
{
    bool inInfo = false, inOthers = false, inHeight = false;
    int64_t number = 0;
    bool isNumber = true;
    for (auto& value : values) {
        const QString mark = value.code == 1000 ? value.text() : QString();
        if (!mark.isEmpty()) {
            inInfo = mark == kInfoBegin || (inInfo && mark != kInfoEnd);
            inOthers = mark == kOthersBegin || (inOthers && mark != kOthersEnd);
            inHeight = mark == kHeightBegin || (inHeight && mark != kHeightEnd);
            isNumber = true;
            continue;
        }
        if (!inInfo && !inOthers && !inHeight)
            continue;
        // Pairs of a number and a value; only the list of heights and that of the texts go on for longer.
        if (value.code == 1070 && isNumber) {
            number = value.integer();
            isNumber = false;
        } else {
            told(number, value);
            isNumber = true;
        }
    }
}

} // namespace

double KcDbMTextColumns::heightOf(size_t column, double definedHeight) const
{
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    const bool ownHeights = kind == Kind::kDynamic && !autoHeight;
    double height = definedHeight;
    if (ownHeights)
        height = column < heights.size() ? heights[column] : 0.0;
    else if (kind == Kind::kStatic && int64_t(column) + 1 >= count)
        height = 0.0;
    return height > 0.0 && std::isfinite(height) ? height : kEndless;
}

KcDbMText::ColumnNote KcDbMText::columnNote() const
{
    ColumnNote note;
    const KcDbValueList* values = xdataOf(kApplication);
    if (!values)
        return note;
    bool hasColumns = false;
    double width = 0.0;
    walk(*values, [&](int64_t number, const KcDbTypedValue& value) {
        if (value.code == 1005)
            note.others.push_back(value.id());
        else if (number == kKind && value.code == 1070)
            hasColumns = value.integer() != 0;
        else if (number == kWidth && value.code == 1040)
            width = value.real();
    });
    if (!hasColumns || !(width > 0.0) || !std::isfinite(width))
        return {};
    note.width = width;
    return note;
}

void KcDbMText::forgetOtherColumns()
{
    const auto isMark = [](const KcDbTypedValue& value) {
        return value.text().startsWith(QLatin1String("ACAD_MTEXT_COLUMN"));
    };
    const KcDbValueList* values = xdataOf(kApplication);
    if (values && std::any_of(values->begin(), values->end(), isMark))
        setXData(kApplication, {}, ownerId().database());
    if (m_data.columnWidth > 0.0)
        m_data.width = std::exchange(m_data.columnWidth, 0.0);
}

void KcDbMText::scaleColumns(double along, double up)
{
    m_data.columnWidth *= along;
    if (m_data.columns) {
        auto columns = std::make_shared<KcDbMTextColumns>(*m_data.columns);
        columns->width *= along;
        columns->gutter *= along;
        columns->totalWidth *= along;
        columns->totalHeight *= up;
        for (double& height : columns->heights)
            height *= up;
        m_data.columns = std::move(columns);
    }
    if (!xdataOf(kApplication) || (along == 1.0 && up == 1.0)) // exact on purpose: moved, not scaled
        return;
    std::vector<KcDbXData> all = xdata();
    for (KcDbXData& data : all)
        if (kcdbRecordName(data.application).compare(kApplication, Qt::CaseInsensitive) == 0)
            walk(data.values, [&](int64_t number, KcDbTypedValue& value) {
                if (auto* length = std::get_if<double>(&value.value))
                    *length *= number == kWidth || number == kGutter ? along : up;
            });
    setAllXData(std::move(all));
}
