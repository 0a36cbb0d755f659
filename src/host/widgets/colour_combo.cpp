// Entries are index colours in their item data; the last one has none and asks.

#include "widgets/colour_combo.h"

#include "widgets/colours.h"

CKcUiColorComboBox::CKcUiColorComboBox(bool allowMetaColors, QWidget* parent)
    : QComboBox(parent)
    , m_allowMeta(allowMetaColors)
{
    setIconSize({ 32, 18 });
    for (const int index : { 256, 0, 1, 2, 3, 4, 5, 6, 7 })
        if (allowMetaColors || (index >= 1 && index <= 255))
            addColor(count(), index);
    addItem(QStringLiteral("其他颜色…"));
    setCurrentIndex(-1);
    connect(this, &QComboBox::activated, this, [this](int row) { chosen(row); });
}

void CKcUiColorComboBox::addColor(int position, int index)
{
    insertItem(position, kcuiColorIcon(index, m_layerColor), kcuiColorName(index), index);
}

int CKcUiColorComboBox::colorIndex() const
{
    return m_index;
}

void CKcUiColorComboBox::setColorIndex(int index)
{
    const bool isMeta = index == 0 || index == 256;
    const bool isColor = isMeta ? m_allowMeta : index >= 1 && index <= 255;
    m_index = isColor ? index : -1;
    if (!isColor)
        return setCurrentIndex(-1);
    int row = findData(index);
    if (row < 0) {
        row = count() - 1;
        addColor(row, index);
    }
    setCurrentIndex(row);
}

void CKcUiColorComboBox::setCurrentLayerColor(int index)
{
    m_layerColor = index;
    if (const int row = findData(256); row >= 0)
        setItemIcon(row, kcuiColorIcon(256, index));
}

void CKcUiColorComboBox::chosen(int row)
{
    int index = m_index;
    if (itemData(row).isValid()) {
        index = itemData(row).toInt();
    } else if (!kcedSetColorDialog(index, m_allowMeta, m_layerColor)) {
        setColorIndex(m_index);
        return;
    }
    setColorIndex(index);
    if (onChosen)
        onChosen(index);
}
