// The pictures that the drawing area shows: the drawing itself, the marks of what is selected over it, and
// over both what a drag would make. Each is computed anew only when it has changed.
#pragma once

#include "db/entity.h"
#include "gi/paint/screen.h"
#include "ui/screen_map.h"

class QPainter;

class KcUiPicture {
public:
    /// The drawing that is shown; null: none. It must outlive its being shown.
    void setDatabase(KcDbDatabase* database);
    /// In pixels of the screen, which may be finer than those of the toolkit.
    void setSize(QSize logical, double ratio);
    void setColors(QRgb background, QRgb mark);
    /// The drawing has changed: the next `render` draws everything.
    void contentsChanged() { m_stale = true; }
    /// What is marked from now on. Marks of very many entities come in slices, see `markOn`.
    void setMarks(std::vector<KcDbObjectId> ids);
    /// Shown over everything; the entities must live until they are replaced.
    void setPreview(std::vector<const KcDbEntity*> entities);

    /// Brings the picture up to date for a view. After a move by whole pixels only the strips that came into
    /// view are drawn.
    void render(const KcEdView& view);
    /// Draws some of the marks that are still missing; false when none is.
    bool markOn();
    /// True when `render` has something to do.
    bool isStale(const KcEdView& view) const;

    /// Shows the picture; one of another view is moved and stretched into place.
    void draw(QPainter& painter, const KcEdView& view);

private:
    KcGiScreen::View viewOf(const KcEdView& view) const;
    bool scrollTo(const KcEdView& view);
    void renderStrip(const KcEdView& view, QRect strip);
    void restartMarks();

    KcDbDatabase* m_database = nullptr;
    std::unique_ptr<KcGiScreen> m_screen;
    QSize m_logical;
    double m_ratio = 1.0;
    QRgb m_background = 0xff000000, m_mark = 0xffffffff;

    QImage m_base; ///< the drawing
    QImage m_marked; ///< with marks; null while nothing is marked
    QImage m_shown; ///< with the preview; null while there is none
    KcEdView m_view; ///< what `m_base` shows
    KcDbObjectId m_space; ///< and of which space
    bool m_stale = true;
    std::vector<KcDbObjectId> m_marks;
    size_t m_marksDone = 0;
    std::vector<const KcDbEntity*> m_preview;
};
