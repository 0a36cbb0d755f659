// Format codes of multiline texts: whatever the bytes, reading and setting them ends, and every place is a
// number.

#include "db/text.h"

#include <QString>

#include <cmath>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > 4096) // longer texts only repeat what shorter ones show
        return 0;
    KcDbMText text;
    text.data().height = 2.5;
    text.data().width = size > 0 ? data[0] : 0.0;
    text.data().attachment = size > 1 ? data[1] % 12 : 1;
    if (size > 3 && data[2] % 3 != 0) {
        KcDbMTextColumns columns;
        columns.kind = data[2] % 3 == 1 ? KcDbMTextColumns::Kind::kStatic : KcDbMTextColumns::Kind::kDynamic;
        columns.count = data[3] % 5;
        columns.width = 5.0 * (data[3] / 5);
        columns.autoHeight = data[2] & 64;
        columns.reversed = data[2] & 128;
        columns.heights = { double(data[1]), 0.0 };
        text.data().columns = std::make_shared<const KcDbMTextColumns>(columns);
        text.data().definedHeight = data[0] / 4.0;
    }
    text.setContents(QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size)));
    const KcDbMTextLayout set = text.layout();
    if (!std::isfinite(set.width) || !std::isfinite(set.height) || set.width < 0.0 || set.height < 0.0)
        std::abort();
    for (const KcDbMTextLayout::Piece& piece : set.pieces)
        if (!std::isfinite(piece.x) || !std::isfinite(piece.baseline) || piece.text.isEmpty())
            std::abort();
    if (set.lines.size() > 2 * size + 1)
        std::abort();
    const KcGeExtents3d box = text.geomExtents();
    if (!box.isEmpty() && !std::isfinite(box.width()))
        std::abort();
    text.plainText();
    return 0;
}
