// The drawing area: shows the current space, and turns what the mouse does into answers.
#pragma once

#include "ed/documents.h"
#include "ed/jig.h"
#include "ui/aim.h"
#include "ui/grip_layer.h"
#include "ui/picture.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

#include <unordered_set>

class KcUiWindowSource;

class KcUiCanvas : public QWidget, public KcEdViewWindow, public KcDbListener {
public:
    explicit KcUiCanvas(KcUiWindowSource& source, QWidget* parent = nullptr);
    ~KcUiCanvas() override;

    /// The document shown; null: none.
    void setDocument(KcApDocument* document);
    /// What waits for an answer; null while a command computes.
    void setPrompt(const KcEdPrompt* prompt);
    void setDark(bool dark);
    /// Snaps, ortho or tracking have been switched.
    void aidsChanged();
    bool isDark() const { return m_dark; }

    /// Keys that the drawing area does not take.
    std::function<void(QKeyEvent*)> onKey;
    /// Where the cursor is, in user coordinates.
    std::function<void(KcGePoint3d)> onCursor;
    /// The right button.
    std::function<void()> onEnter;
    /// The right button with Shift while a point is wanted; where on the screen.
    std::function<void(QPoint)> onSnapMenu;

    void zoom(double factor);
    void zoomExtents();
    /// The next rectangle drawn with the mouse is what is shown then.
    void zoomWindow();

    // KcEdViewWindow
    QSize size() const override { return QWidget::size(); }
    void viewChanged() override;
    void regenerate() override;
    void update() override;
    void highlight(const std::vector<KcDbObjectId>& ids, bool on) override;
    QPoint toScreen(KcGePoint2d point) const override;

    // KcDbListener
    void objectCreated(const KcDbObject&) override { contentsChanged(); }
    void objectModified(const KcDbObject&) override { contentsChanged(); }
    void objectErased(const KcDbObject&, bool) override { contentsChanged(); }

    /// What the cursor stands for: the snapped and constrained point in user coordinates.
    KcGePoint3d cursorPoint() const { return m_aim.point; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    KcUiScreenMap map() const;
    void contentsChanged();
    void planFrame(int milliseconds);
    void renderFrame();
    void planMarks();
    void showMarks();
    void pan(QPointF to);
    void moveCursor(QPointF pixel);
    /// Looks where the mouse is, of which no event tells when a menu over the drawing area has closed.
    void findCursor();
    KcUiAim aimAt(QPointF pixel, const KcEdPrompt* prompt) const;
    KcGePoint3d inUcs(QPointF pixel) const;
    KcGePoint3d clicked() const;
    bool selects() const;
    void press(QPointF pixel, Qt::KeyboardModifiers keys);
    void finishRectangle(QPointF pixel, bool removes);
    void answerSelection(KcEdSelectionLine line);
    KcDbObjectId entityUnder(QPointF pixel);
    bool pressGrip(QPointF pixel, bool collects);
    /// False when nothing lies there.
    bool pickUnder(QPointF pixel, Qt::KeyboardModifiers keys);

    void drawCursor(QPainter& painter);
    void drawSnap(QPainter& painter);
    void drawNote(QPainter& painter, QPointF at, const QString& words);
    void drawRubberBand(QPainter& painter);
    void drawSelectionRectangle(QPainter& painter);
    void drawGrips(QPainter& painter);
    bool showsGrips() const;
    void drawAxes(QPainter& painter);

    KcUiWindowSource& m_source;
    KcApDocument* m_document = nullptr;
    std::optional<KcEdPrompt> m_prompt; ///< a copy: the waiting one may go while the canvas looks at it
    bool m_dark = true;

    /// Shows what a drag would make.
    struct PreviewHolder : KcEdPreviewHolder {
        explicit PreviewHolder(KcUiCanvas& owner)
            : canvas(owner)
        {
        }
        void show(const KcEdPreview& preview) override;
        KcUiCanvas& canvas;
    };
    PreviewHolder m_previewHolder{ *this };

    KcUiPicture m_picture;
    QTimer m_frameTimer, m_marksTimer;
    qint64 m_renderTime = 0; ///< milliseconds that the last picture took
    QElapsedTimer m_sinceWheel;

    QPointF m_pixel; ///< of the cursor
    bool m_inside = false;
    KcUiAim m_aim;
    std::optional<QPointF> m_panFrom; ///< where the drawing is held
    bool m_panned = false; ///< since the button went down
    std::optional<QPointF> m_rectangleFrom; ///< first corner of a selection rectangle
    bool m_zoomsWindow = false; ///< the rectangle is no selection but the next view
    std::optional<QPointF> m_gripFrom; ///< where a grip was pressed, while the button is down
    KcUiGripLayer m_grips;
    bool m_dragsGrips = false; ///< the hot ones are dragged
    bool m_dragging = false; ///< the button is still down since the first corner
    std::vector<KcDbObjectId> m_under; ///< what lay under the cursor at the last pick, and
    size_t m_underAt = 0; ///< which of it was taken
    QString m_note; ///< about that, beside the cursor until it moves
    std::unordered_set<KcDbObjectId> m_highlighted;
    std::vector<KcDbObjectId> m_selected; ///< as it is marked
    bool m_marksChanged = false;
};
