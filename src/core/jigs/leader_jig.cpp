// The loop of a leader: a point a round, keywords between them.

#include "core/jigs/leader_jig.h"

#include "core/coordinates.h"
#include "db/leader.h"
#include "ed/console.h"

namespace {

KcEdPreview previewOf(const std::vector<KcGePoint3d>& points, KcGePoint3d cursor)
{
    std::vector<KcGePoint3d> path = points;
    path.push_back(SetUcsPointToWcs(cursor));
    KcEdPreview preview;
    if (auto leader = leaderThrough(path))
        preview.push_back(std::move(leader));
    return preview;
}

} // namespace

std::unique_ptr<KcDbLeader> leaderThrough(const std::vector<KcGePoint3d>& points)
{
    if (points.size() < 2)
        return nullptr;
    auto leader = std::make_unique<KcDbLeader>();
    leader->data().hasArrowHead = false;
    leader->data().vertices = points;
    return leader;
}

void MLeaderJig::SetDimType(int type)
{
    m_type = type;
    if (type != 0)
        m_countingType = type;
}

QString MLeaderJig::options(bool canUndo) const
{
    QStringList words;
    if (m_offersKeywords) {
        words += m_type == 0 ? QStringLiteral("名称与数量(N)") : QStringLiteral("仅名称(N)");
        words += m_option == 0 ? QStringLiteral("引线接树心(L)") : QStringLiteral("引线不接树心(L)");
    }
    if (canUndo)
        words += QStringLiteral("放弃(U)");
    return words.isEmpty() ? QString() : QStringLiteral(" 或 [%1]").arg(words.join(QLatin1Char('/')));
}

bool MLeaderJig::handle(const QString& keyword)
{
    if (keyword == u"Name")
        m_type = m_type == 0 ? m_countingType : 0;
    else if (keyword == u"Leader")
        m_option = m_option == 0 ? 1 : 0;
    else
        return false;
    return true;
}

bool MLeaderJig::CreateLeader(std::vector<KcGePoint3d>& points)
{
    for (;;) {
        KcEdDrag drag;
        drag.prompt = QStringLiteral("\n请指定引线起点%1: ").arg(options(false));
        drag.keywords = m_offersKeywords ? QStringLiteral("Name Leader _ Name Leader") : QString();
        const KcEdDragged answer = kcedDrag(drag);
        if (answer.status == KcEdDragged::Status::Normal)
            return CreateLeader(SetUcsPointToWcs(answer.point), points);
        if (answer.status == KcEdDragged::Status::Cancel || answer.status == KcEdDragged::Status::Enter)
            return false;
        handle(answer.keyword);
    }
}

bool MLeaderJig::CreateLeader(KcGePoint3d start, std::vector<KcGePoint3d>& points)
{
    std::vector<KcGePoint3d> path{ start };
    for (;;) {
        const bool canUndo = path.size() > 1;
        KcEdDrag drag;
        drag.prompt = QStringLiteral("\n请指定引线下一点%1: ").arg(options(canUndo));
        QStringList words;
        if (m_offersKeywords)
            words << QStringLiteral("Name") << QStringLiteral("Leader");
        if (canUndo)
            words << QStringLiteral("Undo");
        drag.keywords = words.join(QLatin1Char(' '));
        drag.base = SetWcsPointToUcs(path.back());
        drag.preview = [&](KcGePoint3d cursor) { return previewOf(path, cursor); };
        const KcEdDragged answer = kcedDrag(drag);
        switch (answer.status) {
        case KcEdDragged::Status::Normal:
            if (const KcGePoint3d next = SetUcsPointToWcs(answer.point);
                next.distanceTo(path.back()) >= KcGeContext::kLabelVertex)
                path.push_back(next);
            break;
        case KcEdDragged::Status::Keyword:
            if (!handle(answer.keyword))
                path.pop_back();
            break;
        case KcEdDragged::Status::Enter:
            if (path.size() >= 2) {
                points = std::move(path);
                return true;
            }
            kcedSay(QStringLiteral("引线至少需要两个点."));
            break;
        case KcEdDragged::Status::Restart:
            break;
        case KcEdDragged::Status::Cancel:
            return false;
        }
    }
}
