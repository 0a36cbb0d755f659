// What part of the drawing is shown, and the window that shows it. Without a window the view is still there:
// zooming, VIEWCTR and the pick box answer as they would with one.
#pragma once

#include "db/database.h"
#include "ge/extents.h"

#include <QRect>
#include <QSize>

class KcApDocument;

/// A part of the current space, seen along the Z axis. Drawing units.
struct KcEdView {
    KcGePoint2d center;
    double height = 1.0;

    friend bool operator==(const KcEdView& a, const KcEdView& b)
    {
        return a.center.x == b.center.x && a.center.y == b.center.y && a.height == b.height;
    }
};

/// A window that shows the current document.
class KcEdViewWindow {
public:
    virtual ~KcEdViewWindow() = default;
    /// Of the drawing area, in pixels.
    virtual QSize size() const = 0;
    /// The view, the current space or the current document is another one.
    virtual void viewChanged() = 0;
    /// Everything is to be computed anew.
    virtual void regenerate() = 0;
    /// Shows at once what has changed.
    virtual void update() = 0;
    /// Marks entities, or takes the mark away.
    virtual void highlight(const std::vector<KcDbObjectId>& ids, bool on) = 0;
    /// Where a point of the current view, in world coordinates, lies on the screen: what places a tip window.
    virtual QPoint toScreen(KcGePoint2d point) const = 0;
};
/// Installs the window, which must outlive its use, and returns the one before; null: none.
KcEdViewWindow* kcedSetViewWindow(KcEdViewWindow* window);
KcEdViewWindow* kcedViewWindow();

/// The view of the current space: as it was set last, else the one the drawing was saved with, else one that
/// shows everything.
KcEdView kcedView(KcApDocument& document);
/// Shows another part. The view before it is remembered, unless this goes on with the same movement (a pan, a
/// turn of the wheel) that led to it. False when a value is no number, or the height is not positive.
bool kcedSetView(KcApDocument& document, const KcEdView& view, bool goesOn = false);
/// Back to the view before; false when there is none.
bool kcedPreviousView(KcApDocument& document);
/// The view that shows a box with a margin; nothing for an empty box.
std::optional<KcEdView> kcedViewOf(const KcGeExtents3d& box);
/// The box of everything visible in the current space.
KcGeExtents3d kcedVisibleExtents(KcDbDatabase& database);
/// Size of one pixel in drawing units.
double kcedPixelSize();

/// Draws everything anew; nothing without a window.
void kcedRegenerate();
/// Shows at once what has changed.
void kcedUpdateDisplay();
/// Marks entities for the user, or takes the mark away.
void kcedHighlight(const std::vector<KcDbObjectId>& ids, bool on);
/// Marks entities for the length of a scope.
class KcEdMarks {
public:
    KcEdMarks() = default;
    ~KcEdMarks() { kcedHighlight(m_ids, false); }
    KcEdMarks(const KcEdMarks&) = delete;
    KcEdMarks& operator=(const KcEdMarks&) = delete;
    /// Takes the place of what was marked before.
    void show(std::vector<KcDbObjectId> ids)
    {
        kcedHighlight(std::exchange(m_ids, std::move(ids)), false);
        kcedHighlight(m_ids, true);
    }

private:
    std::vector<KcDbObjectId> m_ids;
};
/// Zooms so that a box is in the middle of the view and well to be seen.
void kcedShowPlace(const KcGeExtents3d& box);
/// Where a box in world coordinates lies on the screen, in pixels; nothing without a window.
std::optional<QRect> kcedScreenRectangle(const KcGeExtents3d& box);
