// Showing the drawing, and turning what the mouse does into answers.

#include "ui/canvas.h"

#include "ed/selection.h"
#include "ed/system_variables.h"
#include "ui/window_source.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

namespace {

constexpr double kWheelStep = 1.2; // zoom of one notch
constexpr int kDragPixels = 5; // a button that moves less was a click
constexpr int kFrameDelay = 15; // milliseconds; changes that follow one another closely cost one picture
constexpr int kNotch = 120; // of a wheel, in the toolkit's units

bool takesPoint(KcEdPrompt::Kind kind)
{
    switch (kind) {
    case KcEdPrompt::Kind::Point:
    case KcEdPrompt::Kind::Corner:
    case KcEdPrompt::Kind::Distance:
    case KcEdPrompt::Kind::Track:
        return true;
    default:
        return false;
    }
}

} // namespace

KcUiCanvas::KcUiCanvas(KcUiWindowSource& source, QWidget* parent)
    : QWidget(parent)
    , m_source(source)
{
    setObjectName(QStringLiteral("canvas"));
    setAccessibleName(QStringLiteral("Drawing area"));
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::BlankCursor);
    setMinimumSize(200, 150);
    m_frameTimer.setSingleShot(true);
    QObject::connect(&m_frameTimer, &QTimer::timeout, this, [this] { renderFrame(); });
    kcedSetViewWindow(this);
}

KcUiCanvas::~KcUiCanvas()
{
    setDocument(nullptr);
    if (kcedViewWindow() == this)
        kcedSetViewWindow(nullptr);
}

void KcUiCanvas::setDocument(KcApDocument* document)
{
    if (m_document)
        m_document->database().removeListener(this);
    m_document = document;
    if (m_document)
        m_document->database().addListener(this);
    m_highlighted.clear();
    regenerate();
}

void KcUiCanvas::setPrompt(const KcEdPrompt* prompt)
{
    if (prompt)
        m_prompt = *prompt;
    else
        m_prompt.reset();
    m_rectangleFrom.reset();
    m_dragging = false;
    QWidget::update();
}

void KcUiCanvas::setDark(bool dark)
{
    m_dark = dark;
    regenerate();
}

KcUiScreenMap KcUiCanvas::map() const
{
    return { m_document ? kcedView(*m_document) : KcEdView(), QSizeF(QWidget::size()) };
}

// Views.

void KcUiCanvas::zoom(double factor)
{
    if (m_document)
        kcedSetView(*m_document, map().zoomed(factor, QPointF(width() / 2.0, height() / 2.0)));
}

void KcUiCanvas::zoomExtents()
{
    if (!m_document)
        return;
    if (const auto view = kcedViewOf(kcedVisibleExtents(m_document->database())))
        kcedSetView(*m_document, *view);
}

void KcUiCanvas::zoomWindow()
{
    m_zoomsWindow = true;
    m_rectangleFrom.reset();
    QWidget::update();
}

void KcUiCanvas::viewChanged()
{
    m_frameStale = true;
    planFrame(m_panFrom ? 0 : kFrameDelay);
    if (m_inside)
        moveCursor(m_pixel);
    QWidget::update();
}

void KcUiCanvas::regenerate()
{
    m_frameStale = true;
    planFrame(0);
}

void KcUiCanvas::contentsChanged()
{
    m_frameStale = true;
    planFrame(kFrameDelay);
}

void KcUiCanvas::update()
{
    if (m_frameStale)
        renderFrame();
    QWidget::repaint();
}

void KcUiCanvas::planFrame(int milliseconds)
{
    if (!m_frameTimer.isActive())
        m_frameTimer.start(milliseconds);
}

void KcUiCanvas::highlight(const std::vector<KcDbObjectId>& ids, bool on)
{
    for (const KcDbObjectId id : ids) {
        if (on)
            m_highlighted.insert(id);
        else
            m_highlighted.erase(id);
    }
    QWidget::update();
}

QPoint KcUiCanvas::toScreen(KcGePoint2d point) const
{
    return mapToGlobal(map().toPixel(point).toPoint());
}

void KcUiCanvas::resizeEvent(QResizeEvent*)
{
    regenerate();
}

void KcUiCanvas::wheelEvent(QWheelEvent* event)
{
    if (m_document && event->angleDelta().y() != 0)
        kcedSetView(
            *m_document,
            map().zoomed(std::pow(kWheelStep, event->angleDelta().y() / double(kNotch)), event->position()));
    event->accept();
}

// The mouse.

bool KcUiCanvas::selects() const
{
    return m_prompt
        && (m_prompt->kind == KcEdPrompt::Kind::Selection || m_prompt->kind == KcEdPrompt::Kind::Command);
}

void KcUiCanvas::moveCursor(QPointF pixel)
{
    m_pixel = pixel;
    m_inside = true;
    if (!m_document)
        return;
    const KcGePoint2d world = map().toModel(pixel);
    KcGePoint3d point = m_document->database().ucsToWorld().inverse() * KcGePoint3d{ world.x, world.y, 0.0 };
    if (m_prompt && m_prompt->base && kcedVarInt("ORTHOMODE", 0) != 0) {
        const KcGeVector3d way = point - *m_prompt->base;
        point = *m_prompt->base
            + (std::abs(way.x) >= std::abs(way.y) ? KcGeVector3d{ way.x, 0, 0 }
                                                  : KcGeVector3d{ 0, way.y, 0 });
    }
    m_point = point;
    if (m_prompt && m_prompt->kind == KcEdPrompt::Kind::Track)
        m_source.push(KcEdMove{ m_point });
    if (onCursor)
        onCursor(m_point);
    QWidget::update();
}

void KcUiCanvas::mouseMoveEvent(QMouseEvent* event)
{
    if (m_panFrom && m_document) {
        kcedSetView(*m_document, map().panned(event->position() - *m_panFrom));
        m_panFrom = event->position();
    }
    moveCursor(event->position());
}

void KcUiCanvas::leaveEvent(QEvent*)
{
    m_inside = false;
    QWidget::update();
}

void KcUiCanvas::mousePressEvent(QMouseEvent* event)
{
    setFocus();
    moveCursor(event->position());
    if (event->button() == Qt::MiddleButton) {
        m_panFrom = event->position();
        setCursor(Qt::ClosedHandCursor);
    } else if (event->button() == Qt::RightButton) {
        if (onEnter)
            onEnter();
    } else if (event->button() == Qt::LeftButton) {
        press(event->position(), event->modifiers());
    }
}

void KcUiCanvas::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton) {
        m_panFrom.reset();
        setCursor(Qt::BlankCursor);
        return;
    }
    if (event->button() != Qt::LeftButton || !m_dragging)
        return;
    m_dragging = false;
    // A click leaves the first corner; the rectangle then ends with the next click.
    if (m_rectangleFrom && (event->position() - *m_rectangleFrom).manhattanLength() > kDragPixels)
        finishRectangle(event->position(), event->modifiers() & Qt::ShiftModifier);
}

void KcUiCanvas::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton)
        zoomExtents();
    else
        mousePressEvent(event);
}

void KcUiCanvas::press(QPointF pixel, Qt::KeyboardModifiers keys)
{
    if (!m_document)
        return;
    if (m_zoomsWindow) {
        if (m_rectangleFrom)
            return finishRectangle(pixel, false);
        m_rectangleFrom = pixel;
        m_dragging = true;
        return;
    }
    if (!m_prompt || !m_source.waiting())
        return;
    const bool next = keys & Qt::ControlModifier;
    if (takesPoint(m_prompt->kind)) {
        m_source.push(KcEdClick{ m_point });
    } else if (m_prompt->kind == KcEdPrompt::Kind::Entity) {
        const KcDbObjectId id = entityUnder(pixel, next);
        m_source.push(KcEdGiven{ KcEdPick{ id.isNull() ? 0 : id.handle(), m_point } });
    } else if (selects()) {
        const bool removes = keys & Qt::ShiftModifier;
        if (m_rectangleFrom)
            return finishRectangle(pixel, removes);
        const KcDbObjectId id = entityUnder(pixel, next);
        if (id.isNull()) {
            m_rectangleFrom = pixel;
            m_dragging = true;
            return;
        }
        answerSelection({ KcEdSelectionLine::Mode::Handles, removes, {}, { id.handle() } });
    }
}

// Picking again at the same place with Ctrl takes what lies below.
KcDbObjectId KcUiCanvas::entityUnder(QPointF pixel, bool next)
{
    const KcGePoint2d world = map().toModel(pixel);
    const KcGePoint3d point
        = m_document->database().ucsToWorld().inverse() * KcGePoint3d{ world.x, world.y, 0.0 };
    std::vector<KcDbObjectId> under = kcedEntitiesAt(point);
    m_underAt = next && under == m_under && !under.empty() ? (m_underAt + 1) % under.size() : 0;
    m_under = std::move(under);
    return m_under.empty() ? KcDbObjectId() : m_under[m_underAt];
}

void KcUiCanvas::finishRectangle(QPointF pixel, bool removes)
{
    const QPointF from = *m_rectangleFrom;
    m_rectangleFrom.reset();
    m_dragging = false;
    const auto inUcs = [&](QPointF corner) {
        const KcGePoint2d world = map().toModel(corner);
        return m_document->database().ucsToWorld().inverse() * KcGePoint3d{ world.x, world.y, 0.0 };
    };
    if (std::exchange(m_zoomsWindow, false)) {
        const KcGePoint2d a = map().toModel(from), b = map().toModel(pixel);
        KcGeExtents3d box;
        box.addPoint({ a.x, a.y, 0 });
        box.addPoint({ b.x, b.y, 0 });
        if (const auto view = kcedViewOf(box); view && from != pixel)
            kcedSetView(*m_document, *view);
        return;
    }
    // To the right: what lies inside; to the left: what it touches as well.
    const auto mode
        = pixel.x() >= from.x() ? KcEdSelectionLine::Mode::Window : KcEdSelectionLine::Mode::Crossing;
    answerSelection({ mode, removes, { inUcs(from), inUcs(pixel) }, {} });
    QWidget::update();
}

void KcUiCanvas::answerSelection(KcEdSelectionLine line)
{
    m_source.push(KcEdGiven{ std::move(line) });
}

void KcUiCanvas::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && (m_rectangleFrom || m_zoomsWindow)) {
        m_rectangleFrom.reset();
        m_zoomsWindow = false;
        QWidget::update();
        return;
    }
    if (onKey)
        onKey(event);
}
