// A combo box of index colours, whose last entry opens the colour dialog.
#pragma once

#include <QComboBox>

#include <functional>

class CKcUiColorComboBox : public QComboBox {
public:
    /// @param allowMetaColors offers ByLayer (256) and ByBlock (0)
    explicit CKcUiColorComboBox(bool allowMetaColors = true, QWidget* parent = nullptr);

    /// -1 while nothing is chosen.
    int colorIndex() const;
    /// A colour that is not in the list joins it; one that is no index colour leaves nothing chosen.
    void setColorIndex(int index);
    /// How ByLayer is shown.
    void setCurrentLayerColor(int index);
    /// Told when the user has chosen a colour.
    std::function<void(int)> onChosen;

private:
    void addColor(int position, int index);
    void chosen(int row);

    bool m_allowMeta;
    int m_layerColor = 7;
    int m_index = -1;
};
