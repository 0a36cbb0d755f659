// The dialog that asks for an index colour.
#pragma once

#include <QIcon>
#include <QString>

class QWidget;

/// Asks for an index colour: 1 to 255, with `allowMetaColors` also ByLayer (256) and ByBlock (0).
/// `colorIndex` is shown first and keeps its value when the user cancels. `currentLayerColor`, an index, is
/// how ByLayer is shown. True on OK. In scripts the line "!color N" chooses.
bool kcedSetColorDialog(int& colorIndex, bool allowMetaColors, int currentLayerColor);

/// "随层", "随块", the names of the first seven colours, else the number.
QString kcuiColorName(int index);
/// A swatch of a colour, for lists. ByLayer is shown in `currentLayerColor`, ByBlock in white.
QIcon kcuiColorIcon(int index, int currentLayerColor = 7);
