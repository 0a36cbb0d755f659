// Showing the drawing, and turning what the mouse does into answers.

#include "ui/canvas.h"

#include "ed/activity.h"
#include "ed/next_point.h"
#include "ed/property_names.h"
#include "ed/selection.h"
#include "ui/palette.h"
#include "ui/window_source.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

namespace {

constexpr double kWheelStep = 1.2; // zoom of one notch
constexpr int kDragPixels = 5; // a button that moves less was a click
constexpr int kFrameDelay = 15; // milliseconds; changes that follow one another closely cost one picture
constexpr int kNotch = 120; // of a wheel, in the toolkit's units
constexpr int kWheelPause = 700; // milliseconds; turns closer to each other are one change of the view
constexpr int kAtOnce = 40; // milliseconds; pictures that take less are not shown stretched first

// Twins that lie on each other look alike, whichever is marked.
QString whichOf(size_t at, const std::vector<KcDbObjectId>& under)
{
    const KcDbRead<KcDbEntity> entity(under[at]);
    return entity ? QStringLiteral("%1 of %2: %3, layer %4")
                        .arg(at + 1)
                        .arg(under.size())
                        .arg(kcedKindInWords(kcedEntityTypeName(*entity)), entity->layer())
                  : QString();
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
    m_marksTimer.setInterval(0);
    QObject::connect(&m_marksTimer, &QTimer::timeout, this, [this] { showMarks(); });
    kcedSetViewWindow(this);
    kcedSetPreviewHolder(&m_previewHolder);
    m_source.onCursorAsked = [this](const KcEdPrompt& prompt) {
        return m_document ? std::optional(aimAt(m_pixel, &prompt).point) : std::nullopt;
    };
}

KcUiCanvas::~KcUiCanvas()
{
    m_source.onCursorAsked = {};
    setDocument(nullptr);
    if (kcedViewWindow() == this)
        kcedSetViewWindow(nullptr);
    kcedSetPreviewHolder(nullptr);
}

void KcUiCanvas::setDocument(KcApDocument* document)
{
    if (m_document)
        m_document->database().removeListener(this);
    m_document = document;
    if (m_document)
        m_document->database().addListener(this);
    m_highlighted.clear();
    m_selected.clear();
    m_grips.setEntities({});
    m_picture.setDatabase(m_document ? &m_document->database() : nullptr);
    regenerate();
}

void KcUiCanvas::setPrompt(const KcEdPrompt* prompt)
{
    if (prompt)
        m_prompt = *prompt;
    else
        m_prompt.reset();
    if (!m_zoomsWindow) {
        m_rectangleFrom.reset();
        m_dragging = false;
    }
    if (prompt && prompt->kind == KcEdPrompt::Kind::Command && std::exchange(m_dragsGrips, false))
        m_grips.setHot({});
    if (m_document && m_document->pickFirst.ids() != m_selected)
        planMarks();
    // The new prompt may draw the cursor elsewhere, and a drag begins with what is under it. A command that
    // tracks the cursor hears of real moves only: it asks again after each.
    if (m_prompt && m_inside && m_prompt->kind != KcEdPrompt::Kind::Track)
        moveCursor(m_pixel);
    QWidget::update();
}

void KcUiCanvas::setDark(bool dark)
{
    m_dark = dark;
    m_picture.setColors(kcuiPalette(dark).background.rgb(), kcuiPalette(dark).mark.rgb());
    regenerate();
}

void KcUiCanvas::aidsChanged()
{
    if (m_inside)
        moveCursor(m_pixel);
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
    // What is quickly drawn, and a step of a pan, is shown at once; else the last picture, moved and
    // stretched, until the new one is there.
    if (m_panFrom || m_renderTime < kAtOnce)
        renderFrame();
    else
        planFrame(kFrameDelay);
    if (m_inside && !m_panFrom)
        moveCursor(m_pixel);
    QWidget::update();
}

void KcUiCanvas::regenerate()
{
    m_picture.contentsChanged();
    planFrame(0);
}

void KcUiCanvas::contentsChanged()
{
    m_picture.contentsChanged();
    m_grips.forget();
    planFrame(kFrameDelay);
}

void KcUiCanvas::update()
{
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
    planMarks();
}

void KcUiCanvas::planMarks()
{
    m_marksChanged = true;
    m_marksTimer.start();
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
    if (m_document && event->angleDelta().y() != 0) {
        const bool goesOn = m_sinceWheel.isValid() && m_sinceWheel.elapsed() < kWheelPause;
        m_sinceWheel.start();
        const double notches = event->angleDelta().y() / double(kNotch);
        kcedSetView(*m_document, map().zoomed(std::pow(kWheelStep, notches), event->position()), goesOn);
    }
    event->accept();
}

// The mouse.

// A button is for what the user sees asked. One that follows an answer at once is for the question after it.
bool KcUiCanvas::event(QEvent* event)
{
    const bool isButton = event->type() == QEvent::MouseButtonPress
        || event->type() == QEvent::MouseButtonRelease || event->type() == QEvent::MouseButtonDblClick;
    if (!isButton || static_cast<QMouseEvent*>(event)->button() == Qt::MiddleButton || !m_source.isAnswered())
        return QWidget::event(event);
    m_source.pushWhenAsked(
        [this, later = std::shared_ptr<QEvent>(event->clone())] { QWidget::event(later.get()); });
    return true;
}

bool KcUiCanvas::selects() const
{
    return m_prompt
        && (m_prompt->kind == KcEdPrompt::Kind::Selection || m_prompt->kind == KcEdPrompt::Kind::Command);
}

KcUiAim KcUiCanvas::aimAt(QPointF pixel, const KcEdPrompt* prompt) const
{
    const KcUiScreenMap shown = map();
    return kcuiAim(*m_document, prompt, shown.toModel(pixel), 1.0 / shown.pixelsPerUnit());
}

KcGePoint3d KcUiCanvas::inUcs(QPointF pixel) const
{
    const KcGePoint2d world = map().toModel(pixel);
    return m_document->database().ucsToWorld().inverse() * KcGePoint3d{ world.x, world.y, 0.0 };
}

// After words about the next point its place is looked for once more from the cursor, and refused where there
// is none.
KcGePoint3d KcUiCanvas::clicked() const
{
    return kcedNextPoint().snaps ? inUcs(m_pixel) : m_aim.point;
}

void KcUiCanvas::moveCursor(QPointF pixel)
{
    if (std::exchange(m_pixel, pixel) != pixel)
        m_note.clear();
    m_inside = rect().contains(pixel.toPoint());
    if (!m_document)
        return;
    m_aim = aimAt(pixel, m_prompt ? &*m_prompt : nullptr);
    if (m_prompt && m_source.waiting() && (m_prompt->kind == KcEdPrompt::Kind::Track || m_prompt->drag))
        m_source.push(KcEdMove{ m_aim.point });
    if (onCursor)
        onCursor(m_aim.point);
    QWidget::update();
}

void KcUiCanvas::mouseMoveEvent(QMouseEvent* event)
{
    if (m_panFrom)
        pan(event->position());
    else
        moveCursor(event->position());
}

// Whole pixels of the screen, so that the picture can be moved as it is; the rest stays for the next step.
void KcUiCanvas::pan(QPointF to)
{
    if (!m_document)
        return;
    const double ratio = devicePixelRatioF();
    const QPointF way = to - *m_panFrom;
    const QPointF step(std::round(way.x() * ratio) / ratio, std::round(way.y() * ratio) / ratio);
    if (step.isNull())
        return;
    *m_panFrom += step;
    m_pixel = to;
    kcedSetView(*m_document, map().panned(step), std::exchange(m_panned, true));
}

void KcUiCanvas::enterEvent(QEnterEvent* event)
{
    moveCursor(event->position());
}

void KcUiCanvas::leaveEvent(QEvent*)
{
    m_inside = false;
    if (QWidget* popup = QApplication::activePopupWidget()) {
        popup->removeEventFilter(this);
        popup->installEventFilter(this);
    }
    QWidget::update();
}

bool KcUiCanvas::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Hide)
        QTimer::singleShot(0, this, [this] { findCursor(); });
    return QWidget::eventFilter(watched, event);
}

void KcUiCanvas::findCursor()
{
    const QPoint at = QCursor::pos();
    if (!QApplication::activePopupWidget() && QApplication::widgetAt(at) == this)
        moveCursor(mapFromGlobal(QPointF(at)));
}

void KcUiCanvas::mousePressEvent(QMouseEvent* event)
{
    setFocus();
    moveCursor(event->position());
    if (event->button() == Qt::MiddleButton) {
        m_panFrom = event->position();
        m_panned = false;
        setCursor(Qt::ClosedHandCursor);
        QWidget::update();
    } else if (event->button() == Qt::RightButton) {
        const bool wantsPoint = m_prompt && kcedTakesPoint(m_prompt->kind);
        if (onSnapMenu && wantsPoint && event->modifiers() & Qt::ShiftModifier)
            onSnapMenu(event->globalPosition().toPoint());
        else if (onEnter)
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
        moveCursor(event->position());
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    // A grip that was dragged is let go here; one that was clicked goes on to the next click.
    if (const auto from = std::exchange(m_gripFrom, {}); from && m_prompt && m_prompt->drag
        && m_source.waiting() && (event->position() - *from).manhattanLength() > kDragPixels) {
        moveCursor(event->position());
        m_source.push(KcEdClick{ clicked() });
        return;
    }
    if (!m_dragging)
        return;
    m_dragging = false;
    if (!m_rectangleFrom)
        return;
    // A drag draws a rectangle, wherever it begins: dense plans leave no empty place for a corner. A click
    // picks what lies there; where nothing does, it leaves the first corner, and the next click is the other
    // one.
    if ((event->position() - *m_rectangleFrom).manhattanLength() > kDragPixels)
        finishRectangle(event->position(), event->modifiers() & Qt::ShiftModifier);
    else if (!m_zoomsWindow && m_source.waiting() && pickUnder(*m_rectangleFrom, event->modifiers()))
        m_rectangleFrom.reset();
    QWidget::update();
}

void KcUiCanvas::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton) {
        m_panFrom.reset();
        zoomExtents();
    } else
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
    if (kcedTakesPoint(m_prompt->kind)) {
        m_source.push(KcEdClick{ clicked() });
    } else if (m_prompt->kind == KcEdPrompt::Kind::Entity) {
        const KcDbObjectId id = entityUnder(pixel);
        m_source.push(KcEdGiven{ KcEdPick{ id.isNull() ? 0 : id.handle(), m_aim.point } });
    } else if (selects()) {
        if (m_rectangleFrom)
            return finishRectangle(pixel, keys & Qt::ShiftModifier);
        if (m_prompt->kind == KcEdPrompt::Kind::Command && !(keys & ~Qt::ShiftModifier)
            && pressGrip(pixel, keys & Qt::ShiftModifier))
            return;
        m_rectangleFrom = pixel;
        m_dragging = true;
    }
}

// Those collected with Shift go along when one of them is taken.
bool KcUiCanvas::pressGrip(QPointF pixel, bool collects)
{
    if (!showsGrips())
        return false;
    m_grips.setEntities(m_document->pickFirst.ids());
    KcGePoint3d from;
    const std::vector<KcEdGrip> grips = m_grips.under(pixel, map(), from);
    if (grips.empty())
        return false;
    if (collects) {
        m_grips.toggleHot(grips);
        QWidget::update();
        return true;
    }
    if (!m_grips.isHot(grips.front()))
        m_grips.setHot(grips);
    m_gripFrom = pixel;
    m_dragsGrips = true;
    return kcedRequest(KcEdWish::Change, [document = m_document, held = m_grips.hot(), from] {
        if (document == kcDocManagerPtr()->curDocument())
            kcedDragGrips(*document, held, from);
    });
}

// Picking again at the same place with Ctrl takes what lies below in the place of what was taken.
bool KcUiCanvas::pickUnder(QPointF pixel, Qt::KeyboardModifiers keys)
{
    using Mode = KcEdSelectionLine::Mode;
    const std::vector<KcDbObjectId> before = m_under;
    const size_t beforeAt = m_underAt;
    KcDbObjectId id = entityUnder(pixel);
    if (id.isNull())
        return false;
    if (keys & Qt::ControlModifier && m_under == before) {
        m_underAt = (beforeAt + 1) % m_under.size();
        id = m_under[m_underAt];
        m_note = whichOf(m_underAt, m_under);
        if (m_under.size() > 1)
            answerSelection({ Mode::Handles, true, {}, { m_under[beforeAt].handle() } });
    }
    answerSelection({ Mode::Handles, bool(keys & Qt::ShiftModifier), {}, { id.handle() } });
    return true;
}

KcDbObjectId KcUiCanvas::entityUnder(QPointF pixel)
{
    const KcGePoint3d point = inUcs(pixel);
    m_under = m_prompt && m_prompt->under ? m_prompt->under(point) : kcedEntitiesAt(point);
    m_underAt = 0;
    return m_under.empty() ? KcDbObjectId() : m_under.front();
}

void KcUiCanvas::finishRectangle(QPointF pixel, bool removes)
{
    const QPointF from = *m_rectangleFrom;
    m_rectangleFrom.reset();
    m_dragging = false;
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
    using Mode = KcEdSelectionLine::Mode;
    const bool crosses = pixel.x() < from.x();
    const KcGeVector3d axis = m_document->database().ucsToWorld() * KcGeVector3d::kXAxis;
    if (axis.isEqualTo(KcGeVector3d::kXAxis)) {
        answerSelection(
            { crosses ? Mode::Crossing : Mode::Window, removes, { inUcs(from), inUcs(pixel) }, {} });
    } else {
        // What was drawn on the screen is no rectangle along axes that are turned.
        const QPointF across(pixel.x(), from.y()), up(from.x(), pixel.y());
        answerSelection({ crosses ? Mode::CrossingPolygon : Mode::WindowPolygon,
                          removes,
                          { inUcs(from), inUcs(across), inUcs(pixel), inUcs(up) },
                          {} });
    }
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
