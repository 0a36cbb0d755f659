// Wipeouts: outline, making, drawing; the setting of their frames.

#include "db/wipeout.h"

#include "db/database.h"
#include "db/dictionary.h"
#include "db/plane.h"
#include "gi/sink/world_draw.h"

KCRX_DEFINE(KcDbWipeout, KcDbEntity, "AcDbWipeout")
KCRX_DEFINE(KcDbWipeoutVariables, KcDbObject, "AcDbWipeoutVariables")

KcGeExtents3d KcDbWipeout::extentsUnder(const KcGeMatrix3d& matrix) const
{
    KcGeExtents3d box;
    for (const KcGePoint3d p : outline())
        kcdbAddPoint(box, matrix * p);
    return box;
}

Kcad::ErrorStatus KcDbWipeout::transformBy(const KcGeMatrix3d& matrix)
{
    m_data.origin = matrix * m_data.origin;
    m_data.uVector = matrix * m_data.uVector;
    m_data.vVector = matrix * m_data.vVector;
    return Kcad::eOk;
}

std::vector<KcGePoint3d> KcDbWipeout::outline() const
{
    constexpr int kPolygon = 2;
    std::vector<KcGePoint2d> clip = m_data.clip;
    if (clip.size() == 2 && m_data.clipType != kPolygon)
        clip = { clip[0], { clip[1].x, clip[0].y }, clip[1], { clip[0].x, clip[1].y } };
    if (clip.size() < 3 || !m_data.clipping) {
        const double right = m_data.imageSize.x - 0.5, bottom = m_data.imageSize.y - 0.5;
        clip = { { -0.5, -0.5 }, { right, -0.5 }, { right, bottom }, { -0.5, bottom } };
    }
    if (clip.size() > 3 && clip.front() == clip.back())
        clip.pop_back();
    std::vector<KcGePoint3d> result;
    result.reserve(clip.size());
    // Pixel rows are counted from the top; the centre of the first pixel lies half a pixel inside the image.
    for (const KcGePoint2d p : clip)
        result.push_back(
            m_data.origin + m_data.uVector * (p.x + 0.5) + m_data.vVector * (m_data.imageSize.y - 0.5 - p.y));
    return result;
}

std::unique_ptr<KcDbWipeout> KcDbWipeout::fromCorners(const std::vector<KcGePoint3d>& corners)
{
    KcGeExtents3d box;
    for (const KcGePoint3d p : corners) {
        if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z))
            return nullptr;
        box.addPoint(p);
    }
    if (corners.size() < 3 || box.max.z - box.min.z > KcGeContext::gTol.equalPoint)
        return nullptr;
    // One square pixel over the whole polygon.
    const double size = std::max(box.width(), box.height());
    if (!(size > KcGeContext::gTol.equalPoint))
        return nullptr;
    auto wipeout = std::make_unique<KcDbWipeout>();
    Data& data = wipeout->data();
    data.origin = { box.min.x, box.min.y, corners.front().z };
    data.uVector = { size, 0, 0 };
    data.vVector = { 0, size, 0 };
    for (const KcGePoint3d p : corners)
        data.clip.push_back({ (p.x - box.min.x) / size - 0.5, 0.5 - (p.y - box.min.y) / size });
    if (!corners.front().isEqualTo(corners.back()))
        data.clip.push_back(data.clip.front());
    return wipeout;
}

void KcDbWipeout::worldDraw(KcGiWorldDraw& draw) const
{
    KcGiPath path;
    path.polyline(outline(), true);
    draw.mask(path);
    constexpr int kNone = 0, kScreenOnly = 2;
    const int frame = database() ? kcdbWipeoutFrame(*database()) : 1;
    if (frame != kNone && !(frame == kScreenOnly && draw.isPlotting())) {
        draw.setContinuous(true);
        draw.stroke(path);
    }
}

namespace {

// The entry under which drawings keep the setting.
const QString kVariables = QStringLiteral("ACAD_WIPEOUT_VARS");

} // namespace

int kcdbWipeoutFrame(const KcDbDatabase& database)
{
    const KcDbRead<KcDbDictionary> root(database.namedObjectsDictionary());
    const KcDbRead<KcDbWipeoutVariables> variables(root ? root->getAt(kVariables) : KcDbObjectId());
    return variables ? std::clamp(variables->data().frame, 0, 2) : 1;
}

void kcdbSetWipeoutFrame(KcDbDatabase& database, int frame)
{
    KcDbObjectId id;
    if (const KcDbRead<KcDbDictionary> root(database.namedObjectsDictionary()); root)
        id = root->getAt(kVariables);
    if (KcDbWrite<KcDbWipeoutVariables> variables(id); variables) {
        variables->data().frame = frame;
        return;
    }
    if (KcDbWrite<KcDbDictionary> root(database.namedObjectsDictionary()); root) {
        auto variables = std::make_unique<KcDbWipeoutVariables>();
        variables->data().frame = frame;
        root->setAt(kVariables, std::move(variables));
    }
}
