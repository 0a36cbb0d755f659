// The drag loop: a prompt that hears of the cursor.

#include "ed/jig.h"

#include "ed/activity.h"
#include "ed/editor.h"

namespace {

KcEdPreviewHolder*& currentHolder()
{
    static KcEdPreviewHolder* holder = nullptr;
    return holder;
}

int& runningDrags()
{
    static int count = 0;
    return count;
}

class CountedDrag {
public:
    CountedDrag() { ++runningDrags(); }
    ~CountedDrag() { --runningDrags(); }
};

double angleOf(KcGeVector3d v)
{
    const double angle = std::atan2(v.y, v.x);
    return angle < 0.0 ? angle + 2.0 * kPi : angle;
}

// A value that was picked comes from the point, one that was typed gives the point.
void complete(const KcEdDrag& drag, const KcEdAnswer& answer, KcEdDragged& result)
{
    const KcGePoint3d base = drag.base.value_or(KcGePoint3d());
    if (const auto* point = std::get_if<KcGePoint3d>(&answer)) {
        result.point = *point;
        if (drag.asks == KcEdDrag::Asks::Distance)
            result.value = point->distanceTo(base);
        else if (drag.asks == KcEdDrag::Asks::Angle)
            result.value = angleOf(*point - base);
        return;
    }
    const double typed = std::get<double>(answer);
    if (drag.asks == KcEdDrag::Asks::Angle) {
        const double turned = std::fmod(typed, 360.0) * kPi / 180.0;
        result.value = turned < 0.0 ? turned + 2.0 * kPi : turned;
        result.point = base + KcGeVector3d{ std::cos(result.value), std::sin(result.value), 0.0 };
    } else {
        result.value = typed;
        result.point = base + KcGeVector3d{ typed, 0.0, 0.0 };
    }
}

} // namespace

KcEdPreviewHolder* kcedSetPreviewHolder(KcEdPreviewHolder* holder)
{
    return std::exchange(currentHolder(), holder);
}

void KcEdShownPreview::show(KcEdPreview preview)
{
    KcEdPreview before = std::exchange(m_preview, std::move(preview));
    if (currentHolder() && !(before.empty() && m_preview.empty()))
        currentHolder()->show(m_preview);
}

KcEdDragged kcedDrag(const KcEdDrag& drag)
{
    using Status = KcEdDragged::Status;
    static constexpr KcEdPrompt::Kind kinds[]
        = { KcEdPrompt::Kind::Point, KcEdPrompt::Kind::Distance, KcEdPrompt::Kind::Angle };
    const CountedDrag counted;
    KcEdShownPreview shown;
    KcEdPrompt prompt;
    prompt.kind = kinds[int(drag.asks)];
    prompt.text = drag.prompt;
    prompt.keywords = KcEdKeywordList(drag.keywords);
    prompt.flags = drag.flags;
    prompt.base = drag.base;
    prompt.drag = [&](KcGePoint3d cursor) {
        if (drag.preview)
            shown.show(drag.preview(cursor));
    };
    const KcEdAnswer answer = KcEdEditor::instance().ask(prompt);
    KcEdDragged result;
    if (std::holds_alternative<KcEdRestart>(answer)) {
        result.status = Status::Restart;
    } else if (std::holds_alternative<KcEdEnter>(answer)) {
        result.status = Status::Enter;
    } else if (const auto* keyword = std::get_if<KcEdKeyword>(&answer)) {
        result.status = Status::Keyword;
        result.keyword = keyword->name;
    } else if (std::holds_alternative<KcGePoint3d>(answer) || std::holds_alternative<double>(answer)) {
        result.status = Status::Normal;
        complete(drag, answer, result);
    } else if (const auto* text = std::get_if<QString>(&answer)) {
        result.status = Status::Keyword;
        result.keyword = *text;
    }
    return result;
}

bool kcedRestartDrag()
{
    KcEdInputSource* source = KcEdEditor::instance().source();
    if (runningDrags() == 0 || !source || kcedActivity() != KcEdActivity::Prompt)
        return false;
    source->interrupt(KcEdGiven{ KcEdRestart() });
    return true;
}
