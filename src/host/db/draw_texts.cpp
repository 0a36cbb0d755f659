// How texts are drawn: the runs of their fonts, and the lines under, over and through them.

#include "db/tables.h"
#include "db/text.h"
#include "gi/sink/world_draw.h"

namespace {

// The lines of marked parts of a text, in heights above the base line.
constexpr double kUnderline = -0.2, kOverline = 1.2, kStrike = 0.4;
// A drawn text shorter than this many pixels is a line to the eye.
constexpr double kLeastPixels = 0.5;

void rule(KcGiWorldDraw& draw, const KcGeMatrix3d& matrix, double x1, double y1, double x2, double y2)
{
    draw.line(matrix * KcGePoint3d{ x1, y1, 0.0 }, matrix * KcGePoint3d{ x2, y2, 0.0 });
}

const QString kVerticalText = QStringLiteral("a text of a vertical style, drawn along its line");

bool isVertical(KcDbObjectId style)
{
    constexpr int kVertical = 4;
    const KcDbRead<KcDbTextStyleTableRecord> record(style);
    return record && (record->flags() & kVertical);
}

bool canBeSet(double height)
{
    return height > 0.0 && std::isfinite(height);
}

} // namespace

// Single lines.

void KcDbText::drawText(KcGiWorldDraw& draw, const QString* other) const
{
    const Data data = placed(other);
    if (!canBeSet(data.height))
        return draw.leftOut(QStringLiteral("a text without a height"));
    const KcGi::TextStyle font = kcdbFontOfStyle(data.style, database());
    const KcGeMatrix3d toWorld = transformOf(data);
    if (isVertical(data.style))
        draw.leftOut(kVerticalText);
    draw.setContinuous(true);
    double x = 0.0;
    for (const Run& part : runsOf(data.text)) {
        const double width = KcGi::textAdvance(font, part.text, data.height, data.widthFactor);
        if (!std::isfinite(width))
            return draw.leftOut(QStringLiteral("a text without a width"));
        draw.text({ part.text, font, data.height, toWorld * KcGePoint3d{ x, 0.0, 0.0 },
                    toWorld.axis(0) * data.widthFactor, toWorld.axis(1) });
        const auto mark = [&](bool wanted, double share) {
            if (wanted)
                rule(draw, toWorld, x, share * data.height, x + width, share * data.height);
        };
        mark(part.underlined, kUnderline);
        mark(part.overlined, kOverline);
        mark(part.struck, kStrike);
        x += width;
    }
}

void KcDbText::worldDraw(KcGiWorldDraw& draw) const
{
    drawText(draw);
}

void KcDbAttribute::worldDraw(KcGiWorldDraw& draw) const
{
    if (!isInvisible())
        drawText(draw);
}

void KcDbAttributeDefinition::worldDraw(KcGiWorldDraw& draw) const
{
    drawText(draw, &m_attribute.tag);
}

void KcDbAttributeDefinition::drawInReference(KcGiWorldDraw& draw) const
{
    if (isConstant() && !isInvisible())
        drawText(draw);
}

// Several lines.

namespace {

KcGiColor colorOf(const KcDbMTextFormat& format, const KcGiColor& own)
{
    if (format.rgb >= 0)
        return { KcGiColor::kByLayer, format.rgb };
    return format.colorIndex >= 0 ? KcGiColor{ format.colorIndex, -1 } : own;
}

/// Where the letters of a piece may be, and a little more.
KcGeExtents3d roomOf(const KcDbMTextLayout::Piece& piece, const KcGeMatrix3d& toWorld)
{
    const double margin = 2.0 * piece.format.height;
    KcGeExtents3d box;
    for (const double x : { piece.x - margin, piece.x + piece.width + margin })
        for (const double y : { piece.baseline - margin, piece.baseline + margin })
            box.addPoint(toWorld * KcGePoint3d{ x, y, 0.0 });
    return box;
}

/// One piece of a line; with tracking, letter by letter.
void drawPiece(KcGiWorldDraw& draw, const KcDbMTextLayout::Piece& piece, const KcGeMatrix3d& toWorld)
{
    const KcDbMTextFormat& f = piece.format;
    KcGiTextRun run;
    run.style = f.font;
    run.height = f.height;
    run.along = toWorld.axis(0) * f.widthFactor;
    run.up = toWorld.axis(1) + toWorld.axis(0) * std::tan(f.oblique);
    if (f.tracking == 1.0) { // exact on purpose: untouched
        run.text = piece.text;
        run.origin = toWorld * KcGePoint3d{ piece.x, piece.baseline, 0.0 };
        return draw.text(run);
    }
    double x = piece.x;
    for (qsizetype i = 0; i < piece.text.size();) {
        const qsizetype length = piece.text[i].isHighSurrogate() && i + 1 < piece.text.size() ? 2 : 1;
        run.text = piece.text.mid(i, length);
        run.origin = toWorld * KcGePoint3d{ x, piece.baseline, 0.0 };
        draw.text(run);
        x += KcGi::textAdvance(f.font, run.text, f.height, f.widthFactor) * f.tracking;
        i += length;
    }
}

} // namespace

void KcDbMText::worldDraw(KcGiWorldDraw& draw) const
{
    drawIn(draw, draw.entityColor());
}

void KcDbMText::drawIn(KcGiWorldDraw& draw, const KcGiColor& own) const
{
    constexpr int kColored = 1, kBackground = 2, kFramed = 16;
    constexpr int kTopToBottom = 3, kByStyle = 5;
    if (!canBeSet(m_data.height))
        return draw.leftOut(QStringLiteral("a text without a height"));
    const KcGeMatrix3d toWorld = textTransform();
    const KcDbMTextLayout set = layout();
    if (m_data.flow == kTopToBottom || (m_data.flow == kByStyle && isVertical(m_data.style)))
        draw.leftOut(kVerticalText);
    draw.setContinuous(true);

    if (const KcGeExtents3d box = backgroundOf(set); !box.isEmpty()) {
        KcGiPath area;
        area.polyline(
            { toWorld * box.min, toWorld * KcGePoint3d{ box.max.x, box.min.y, 0.0 }, toWorld * box.max,
              toWorld * KcGePoint3d{ box.min.x, box.max.y, 0.0 } },
            true);
        if (m_data.fillMode & kBackground) {
            draw.mask(area);
        } else if (m_data.fillMode & kColored) {
            draw.setColor({ m_data.fillColor, -1 });
            draw.fill(area);
            draw.setColor(own);
        }
        if (m_data.fillMode & kFramed)
            draw.stroke(area);
    }
    const double least = draw.pixel() * kLeastPixels / std::max(toWorld.axis(1).length(), 1e-300);
    for (const KcDbMTextLayout::Piece& piece : set.pieces) {
        if (piece.format.height < least || !draw.wants(roomOf(piece, toWorld)))
            continue;
        draw.setColor(colorOf(piece.format, own));
        drawPiece(draw, piece, toWorld);
    }
    for (const KcDbMTextLayout::Rule& line : set.rules) {
        draw.setColor(colorOf(line.format, own));
        rule(draw, toWorld, line.x1, line.y1, line.x2, line.y2);
    }
}
