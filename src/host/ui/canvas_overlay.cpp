// What lies over the picture of the drawing: cursor, rubber band, selection rectangle, grips, axes.

#include "ed/next_point.h"
#include "ed/selection.h"
#include "ed/system_variables.h"
#include "ui/canvas.h"
#include "ui/palette.h"

#include <QPainter>

namespace {

constexpr int kAxisPixels = 44, kAxisCorner = 18;

/// What is thin and drawn over the drawing takes away from the colours below it, so that it is seen on light
/// fills as on the dark ground: white turns them over.
class Contrasting {
public:
    explicit Contrasting(QPainter& painter)
        : m_painter(painter)
    {
        m_painter.save();
        m_painter.setCompositionMode(QPainter::CompositionMode_Difference);
    }
    ~Contrasting() { m_painter.restore(); }
    Contrasting(const Contrasting&) = delete;
    Contrasting& operator=(const Contrasting&) = delete;

private:
    QPainter& m_painter;
};
const QColor kContrast(230, 230, 230), kContrastBand(255, 200, 60);

} // namespace

const KcUiPalette& kcuiPalette(bool dark)
{
    static const KcUiPalette darkColors{
        .background = QColor(33, 40, 48),
        .grip = QColor(70, 150, 255),
        .hotGrip = QColor(230, 50, 40),
        .reachedGrip = QColor(250, 140, 160),
        .mark = QColor(255, 170, 60),
        .window = QColor(60, 120, 255, 60),
        .crossing = QColor(60, 220, 90, 60),
        .snap = QColor(60, 230, 120),
    };
    static const KcUiPalette lightColors{
        .background = QColor(255, 255, 255),
        .grip = QColor(0, 90, 220),
        .hotGrip = QColor(210, 20, 20),
        .reachedGrip = QColor(240, 110, 140),
        .mark = QColor(220, 100, 0),
        .window = QColor(0, 60, 255, 45),
        .crossing = QColor(0, 150, 30, 45),
        .snap = QColor(0, 150, 60),
    };
    return dark ? darkColors : lightColors;
}

// While nothing runs but a drag by them; a command that asks has a selection of its own.
bool KcUiCanvas::showsGrips() const
{
    return m_document && m_prompt && (m_prompt->kind == KcEdPrompt::Kind::Command || m_dragsGrips);
}

void KcUiCanvas::drawGrips(QPainter& painter)
{
    if (!showsGrips())
        return;
    m_grips.setEntities(m_document->pickFirst.ids());
    m_grips.draw(
        painter, map(), kcuiPalette(m_dark), devicePixelRatioF(),
        m_inside && !m_dragsGrips ? std::optional(m_pixel) : std::nullopt);
}

void KcUiCanvas::drawRubberBand(QPainter& painter)
{
    const KcUiPalette& colors = kcuiPalette(m_dark);
    if (!m_prompt || !m_prompt->base || !m_document || !m_inside)
        return;
    const KcGeMatrix3d ucs = m_document->database().ucsToWorld();
    const KcUiScreenMap shown = map();
    const auto pixelOf = [&](KcGePoint3d inUcs) {
        const KcGePoint3d world = ucs * inUcs;
        return shown.toPixel({ world.x, world.y });
    };
    if (m_aim.track) {
        // Beyond the cursor to the rim of the window.
        const double far = std::hypot(width(), height()) / shown.pixelsPerUnit();
        const KcGeVector3d way{ std::cos(*m_aim.track) * far, std::sin(*m_aim.track) * far, 0.0 };
        painter.setPen(QPen(colors.snap, 1, Qt::DotLine));
        painter.drawLine(pixelOf(*m_prompt->base), pixelOf(m_aim.point + way));
        const QString words = QStringLiteral("%1 < %2°")
                                  .arg(m_aim.point.distanceTo(*m_prompt->base), 0, 'f', 2)
                                  .arg(std::fmod(*m_aim.track * 180.0 / kPi + 360.0, 360.0), 0, 'f', 0);
        drawNote(painter, pixelOf(m_aim.point) + QPointF(14, 26), words);
    }
    const Contrasting contrasting(painter);
    painter.setPen(QPen(kContrastBand, 1, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    if (m_prompt->kind == KcEdPrompt::Kind::Corner) {
        const KcGePoint3d a = *m_prompt->base, b = m_aim.point;
        const QPointF corners[]
            = { pixelOf(a), pixelOf({ b.x, a.y, a.z }), pixelOf(b), pixelOf({ a.x, b.y, a.z }) };
        painter.drawPolygon(corners, 4);
    } else if (kcedTakesPoint(m_prompt->kind)) {
        painter.drawLine(pixelOf(*m_prompt->base), pixelOf(m_aim.point));
    }
}

void KcUiCanvas::drawSelectionRectangle(QPainter& painter)
{
    const KcUiPalette& colors = kcuiPalette(m_dark);
    if (m_rectangleFrom) {
        const bool crossing = !m_zoomsWindow && m_pixel.x() < m_rectangleFrom->x();
        const QColor fill = crossing ? colors.crossing : colors.window;
        QPen pen(QColor(fill.red(), fill.green(), fill.blue()));
        pen.setStyle(crossing ? Qt::DashLine : Qt::SolidLine);
        painter.setPen(pen);
        painter.setBrush(fill);
        painter.drawRect(QRectF(*m_rectangleFrom, m_pixel).normalized());
    }
}

void KcUiCanvas::drawCursor(QPainter& painter)
{
    if (!m_inside || m_panFrom)
        return;
    const Contrasting contrasting(painter);
    // Along the axes of the user coordinate system, which ortho and windows go by.
    const KcGeVector3d axis
        = m_document ? m_document->database().ucsToWorld() * KcGeVector3d::kXAxis : KcGeVector3d::kXAxis;
    const double turn = -std::atan2(axis.y, axis.x) * 180.0 / kPi;
    painter.setRenderHint(QPainter::Antialiasing, turn != 0.0); // exact: turned at all
    painter.setPen(kContrast);
    painter.setBrush(Qt::NoBrush);
    const QPointF at(std::floor(m_pixel.x()) + 0.5, std::floor(m_pixel.y()) + 0.5);
    const double box = kcedVarReal("PICKBOX", 3.0);
    const bool picks = !m_prompt || selects() || m_prompt->kind == KcEdPrompt::Kind::Entity;
    const bool crosses = !m_prompt || m_prompt->kind == KcEdPrompt::Kind::Command || !picks;
    // Horizontal and vertical arms stop at the pick box, so that what is picked can be seen.
    const double gap = picks ? box : 0.0;
    const double far = width() + height();
    painter.save();
    painter.translate(at);
    painter.rotate(turn);
    if (crosses)
        for (const QPointF way : { QPointF(1, 0), QPointF(-1, 0), QPointF(0, 1), QPointF(0, -1) })
            painter.drawLine(way * gap, way * far);
    painter.restore();
    if (picks)
        painter.drawRect(QRectF(at.x() - box, at.y() - box, 2 * box, 2 * box));
}

// One sign for each kind of point, as draughtsmen know them.
void KcUiCanvas::drawSnap(QPainter& painter)
{
    if (!m_inside || m_panFrom)
        return;
    if (!m_note.isEmpty())
        drawNote(painter, m_pixel + QPointF(14, -12), m_note);
    if (!m_aim.snap) {
        // What was said for the next point is not here.
        if (const auto said = kcedNextPoint().snaps; said && m_prompt && kcedTakesPoint(m_prompt->kind))
            drawNote(painter, m_pixel + QPointF(14, -12), kcedSnapModesInWords(*said) + QStringLiteral("?"));
        return;
    }
    const KcGePoint3d p = m_aim.snap->point;
    const QPointF at = map().toPixel({ p.x, p.y });
    constexpr double r = 6.0;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kcuiPalette(m_dark).snap, 2));
    painter.setBrush(Qt::NoBrush);
    const auto polygon = [&](std::initializer_list<QPointF> corners) {
        QPolygonF shape;
        for (const QPointF corner : corners)
            shape += at + corner * r;
        painter.drawPolygon(shape);
    };
    const auto line = [&](double x1, double y1, double x2, double y2) {
        painter.drawLine(at + QPointF(x1, y1) * r, at + QPointF(x2, y2) * r);
    };
    switch (m_aim.snap->mode) {
    case kcedSnapEnd:
        polygon({ { -1, -1 }, { 1, -1 }, { 1, 1 }, { -1, 1 } });
        break;
    case kcedSnapMiddle:
        polygon({ { 0, -1 }, { 1, 1 }, { -1, 1 } });
        break;
    case kcedSnapCenter:
        painter.drawEllipse(at, r, r);
        break;
    case kcedSnapNode:
        painter.drawEllipse(at, r, r);
        line(-1, -1, 1, 1);
        line(-1, 1, 1, -1);
        break;
    case kcedSnapQuadrant:
        polygon({ { 0, -1.2 }, { 1.2, 0 }, { 0, 1.2 }, { -1.2, 0 } });
        break;
    case kcedSnapIntersection:
        line(-1, -1, 1, 1);
        line(-1, 1, 1, -1);
        break;
    case kcedSnapInsertion:
        polygon({ { -1, -1 },
                  { 0.2, -1 },
                  { 0.2, -0.2 },
                  { 1, -0.2 },
                  { 1, 1 },
                  { -0.2, 1 },
                  { -0.2, 0.2 },
                  { -1, 0.2 } });
        break;
    case kcedSnapPerpendicular:
        line(-1, -1, -1, 1);
        line(-1, 1, 1, 1);
        line(-1, 0, 0, 0);
        line(0, 0, 0, 1);
        break;
    case kcedSnapTangent:
        painter.drawEllipse(at, r * 0.8, r * 0.8);
        line(-1.2, -1, 1.2, -1);
        break;
    case kcedSnapNearest:
        polygon({ { -1, -1 }, { 1, -1 }, { -1, 1 }, { 1, 1 } });
        break;
    default:
        break;
    }
    drawNote(painter, at + QPointF(14, -12), kcedSnapModesInWords(m_aim.snap->mode));
}

// Words beside the cursor, on a ground that keeps them apart from the drawing.
void KcUiCanvas::drawNote(QPainter& painter, QPointF at, const QString& words)
{
    const KcUiPalette& colors = kcuiPalette(m_dark);
    QRectF box = painter.fontMetrics().boundingRect(words).adjusted(-4, -2, 4, 2);
    box.translate(at);
    // Not beyond the rim.
    const QPointF back(std::min(0.0, width() - 2 - box.right()), std::max(0.0, 2 - box.top()));
    box.translate(back);
    QColor ground = colors.background;
    ground.setAlpha(210);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRect(box);
    painter.setPen(colors.snap);
    painter.setBrush(Qt::NoBrush);
    painter.drawText(at + back, words);
}

void KcUiCanvas::drawAxes(QPainter& painter)
{
    if (!m_document)
        return;
    const Contrasting contrasting(painter);
    const KcGeMatrix3d ucs = m_document->database().ucsToWorld();
    const struct {
        KcGeVector3d axis;
        const char* name;
    } axes[] = { { { 1, 0, 0 }, "X" }, { { 0, 1, 0 }, "Y" } };
    // In the corner, as far in as arms that point to the left or down need.
    const KcGeVector3d x = ucs * axes[0].axis, y = ucs * axes[1].axis;
    const QPointF origin(
        kAxisCorner + kAxisPixels * std::max({ 0.0, -x.x, -y.x }),
        height() - kAxisCorner - kAxisPixels * std::max({ 0.0, -x.y, -y.y }));
    painter.setPen(QPen(kContrast, 1.5));
    for (const auto& [axis, name] : axes) {
        const KcGeVector3d direction = ucs * axis;
        if (!(std::hypot(direction.x, direction.y) > KcGeContext::gTol.equalVector))
            continue;
        const QPointF tip = origin + QPointF(direction.x, -direction.y) * kAxisPixels;
        painter.drawLine(origin, tip);
        painter.drawText(tip + QPointF(3, 4), QLatin1String(name));
    }
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(origin.x() - 3, origin.y() - 3, 6, 6));
}
