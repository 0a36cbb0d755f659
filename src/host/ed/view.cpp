// The view of a document, with and without a window.

#include "ed/view.h"

#include "db/block_table_record.h"
#include "db/dictionary.h"
#include "db/tables.h"
#include "ed/documents.h"
#include "ed/pick_geometry.h"
#include "ed/system_variables.h"

namespace {

KcEdViewWindow*& current()
{
    static KcEdViewWindow* window = nullptr;
    return window;
}

constexpr size_t kRememberedViews = 30;
constexpr double kMargin = 1.05; // of a view that shows a box, to each side
constexpr double kPlaceMargin = 4.0; // of a view that shows where something is
// Views are not wider or narrower than this: beyond it pixels could not be told apart.
constexpr double kLargestHeight = 1e18, kSmallestHeight = 1e-9;

double aspect()
{
    const QSize size = current() ? current()->size() : QSize();
    return size.width() > 0 && size.height() > 0 ? double(size.width()) / size.height() : 1.6;
}

KcEdView firstView(KcDbDatabase& database)
{
    if (database.currentSpace() == database.modelSpace()) {
        const KcDbObjectId active = kcdbFindRecord(database.viewportTable(), QStringLiteral("*Active"));
        if (const KcDbRead<KcDbViewportTableRecord> record(active);
            record && record->data().viewHeight > 0.0) {
            // The window that saved it may have been wider than this one; all that it showed is shown.
            const auto& [center, height, shape] = record->data();
            return { center, shape > 0.0 ? std::max(height, height * shape / aspect()) : height };
        }
    }
    if (const auto all = kcedViewOf(kcedVisibleExtents(database)))
        return *all;
    // An empty layout shows its sheet.
    const KcDbRead<KcDbBlockTableRecord> space(database.currentSpace());
    if (const KcDbRead<KcDbLayout> layout(space ? space->data().layout : KcDbObjectId()); layout) {
        const auto& [min, max] = std::pair(layout->data().limitsMin, layout->data().limitsMax);
        if (const auto sheet = kcedViewOf({ { min.x, min.y, 0.0 }, { max.x, max.y, 0.0 } }))
            return *sheet;
    }
    return {};
}

KcApDocument::Views& viewsOf(KcApDocument& document)
{
    KcApDocument::Views& views = document.views[document.database().currentSpace()];
    if (!views.current)
        views.current = firstView(document.database());
    return views;
}

} // namespace

KcEdViewWindow* kcedSetViewWindow(KcEdViewWindow* window)
{
    return std::exchange(current(), window);
}

KcEdViewWindow* kcedViewWindow()
{
    return current();
}

KcEdView kcedView(KcApDocument& document)
{
    return *viewsOf(document).current;
}

bool kcedSetView(KcApDocument& document, const KcEdView& view, bool goesOn)
{
    if (!std::isfinite(view.center.x) || !std::isfinite(view.center.y) || !std::isfinite(view.height)
        || !(view.height > 0.0))
        return false;
    KcApDocument::Views& views = viewsOf(document);
    const KcEdView shown{ view.center, std::clamp(view.height, kSmallestHeight, kLargestHeight) };
    if (shown == *views.current)
        return true;
    if (!goesOn || views.before.empty())
        views.before.push_back(*views.current);
    if (views.before.size() > kRememberedViews)
        views.before.erase(views.before.begin());
    views.current = shown;
    if (current())
        current()->viewChanged();
    return true;
}

bool kcedPreviousView(KcApDocument& document)
{
    KcApDocument::Views& views = viewsOf(document);
    if (views.before.empty())
        return false;
    views.current = views.before.back();
    views.before.pop_back();
    if (current())
        current()->viewChanged();
    return true;
}

std::optional<KcEdView> kcedViewOf(const KcGeExtents3d& box)
{
    if (box.isEmpty())
        return {};
    const double height = std::max(box.height(), box.width() / aspect()) * kMargin;
    const KcGePoint3d center = box.center();
    // A single point is shown at the scale of one unit.
    return KcEdView{ { center.x, center.y }, height > 0.0 ? height : 1.0 };
}

KcGeExtents3d kcedVisibleExtents(KcDbDatabase& database)
{
    KcGeExtents3d box;
    KcEdPickGeometry layers(1.0);
    if (const KcDbRead<KcDbBlockTableRecord> space(database.currentSpace()); space)
        for (const KcDbObjectId id : *space)
            if (const KcDbRead<KcDbEntity> entity(id); entity && layers.isVisible(*entity))
                box.addExtents(entity->geomExtents());
    return box;
}

double kcedPixelSize()
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    const double pixels
        = current() && current()->size().height() > 0 ? current()->size().height() : kcedScreenHeight;
    return document ? kcedView(*document).height / pixels : 1.0;
}

void kcedRegenerate()
{
    if (current())
        current()->regenerate();
}

void kcedUpdateDisplay()
{
    if (current())
        current()->update();
}

void kcedHighlight(const std::vector<KcDbObjectId>& ids, bool on)
{
    if (current())
        current()->highlight(ids, on);
}

void kcedShowPlace(const KcGeExtents3d& box)
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    std::optional<KcEdView> view = kcedViewOf(box);
    if (!document || !view)
        return;
    view->height *= kPlaceMargin;
    kcedSetView(*document, *view);
}

std::optional<QRect> kcedScreenRectangle(const KcGeExtents3d& box)
{
    if (!current() || box.isEmpty())
        return {};
    return QRect(current()->toScreen({ box.min.x, box.min.y }), current()->toScreen({ box.max.x, box.max.y }))
        .normalized();
}
