// Table styles and their dictionary.

#include "db/table_style.h"

#include "db/database.h"
#include "db/dictionary.h"
#include "db/header.h"

KCRX_DEFINE(KcDbTableStyle, KcDbObject, "AcDbTableStyle")

namespace {

const QString kDictionary = QStringLiteral("ACAD_TABLESTYLE");

template <class Apply> void forRows(KcDbTableStyle::Data& data, int rowTypes, Apply apply)
{
    for (const KcDbRowType type : { kDataRow, kTitleRow, kHeaderRow })
        if (rowTypes & type)
            apply(data.rows[KcDbTableStyle::indexOf(type)]);
}

template <class Apply> void forGrid(KcDbTableStyle::Data& data, int gridLines, int rowTypes, Apply apply)
{
    forRows(data, rowTypes, [&](KcDbTableStyle::RowFormat& format) {
        for (size_t i = 0; i < format.grid.size(); ++i)
            if (gridLines & (1 << i))
                apply(format.grid[i]);
    });
}

} // namespace

KcDbTableStyle::KcDbTableStyle()
{
    RowFormat& title = m_data.rows[indexOf(kTitleRow)];
    title.textHeight = 0.25;
    title.alignment = 5;
    m_data.rows[indexOf(kHeaderRow)].alignment = 5;
}

void KcDbTableStyle::setTextStyle(KcDbObjectId style, int rowTypes)
{
    forRows(m_data, rowTypes, [&](RowFormat& format) { format.textStyle = style; });
}

void KcDbTableStyle::setTextHeight(double height, int rowTypes)
{
    forRows(m_data, rowTypes, [&](RowFormat& format) { format.textHeight = height; });
}

void KcDbTableStyle::setAlignment(int alignment, int rowTypes)
{
    forRows(m_data, rowTypes, [&](RowFormat& format) { format.alignment = alignment; });
}

void KcDbTableStyle::setColor(const KcCmColor& color, int rowTypes)
{
    forRows(m_data, rowTypes, [&](RowFormat& format) { format.textColor = color; });
}

void KcDbTableStyle::setBackgroundColor(std::optional<KcCmColor> color, int rowTypes)
{
    forRows(m_data, rowTypes, [&](RowFormat& format) {
        format.filled = color.has_value();
        if (color)
            format.fillColor = *color;
    });
}

void KcDbTableStyle::setGridColor(const KcCmColor& color, int gridLines, int rowTypes)
{
    forGrid(m_data, gridLines, rowTypes, [&](KcDbGridLook& look) { look.color = color; });
}

void KcDbTableStyle::setGridLineWeight(int weight, int gridLines, int rowTypes)
{
    forGrid(m_data, gridLines, rowTypes, [&](KcDbGridLook& look) { look.lineWeight = weight; });
}

void KcDbTableStyle::setGridVisibility(bool visible, int gridLines, int rowTypes)
{
    forGrid(m_data, gridLines, rowTypes, [&](KcDbGridLook& look) { look.visible = visible; });
}

void KcDbTableStyle::setMargins(double horizontal, double vertical)
{
    m_data.horizontalMargin = horizontal;
    m_data.verticalMargin = vertical;
}

KcDbObjectId KcDbTableStyle::find(KcDbDatabase& database, const QString& name)
{
    const KcDbRead<KcDbDictionary> root(database.namedObjectsDictionary());
    if (!root)
        return {};
    const KcDbRead<KcDbDictionary> styles(root->getAt(kDictionary));
    if (!styles)
        return {};
    const KcDbObjectId id = styles->getAt(name);
    return KcDbRead<KcDbTableStyle>(id) ? id : KcDbObjectId();
}

KcDbObjectId KcDbTableStyle::create(KcDbDatabase& database, const QString& name)
{
    if (name.isEmpty())
        return {};
    if (const KcDbObjectId there = find(database, name); !there.isNull())
        return there;
    auto style = std::make_unique<KcDbTableStyle>();
    style->m_data.name = name;
    if (KcDbRead<KcDbHeader> header(database.headerId()); header && header->integer("$MEASUREMENT", 0) == 1) {
        style->setMargins(1.5, 1.5);
        style->setTextHeight(4.5, kDataRow | kHeaderRow);
        style->setTextHeight(6.0, kTitleRow);
    }
    KcDbWrite<KcDbDictionary> styles(
        KcDbDictionary::subDictionary(database.namedObjectsDictionary(), kDictionary));
    if (!styles)
        return {};
    const KcDbObjectId id = styles->setAt(name, std::move(style));
    if (KcDbWrite<KcDbTableStyle> made(id); made)
        made->addPersistentReactor(styles->objectId()); // other programs expect the dictionary there
    return id;
}
