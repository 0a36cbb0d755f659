// The table of what may happen, and keeping to it.

#include "ed/activity.h"

#include "ed/command_stack.h"
#include "ed/console.h"
#include "ed/editor.h"

namespace {

std::vector<KcEdActivity>& activities()
{
    static std::vector<KcEdActivity> stack;
    return stack;
}

} // namespace

KcEdActivityScope::KcEdActivityScope(KcEdActivity activity)
{
    activities().push_back(activity);
}

KcEdActivityScope::~KcEdActivityScope()
{
    activities().pop_back();
}

KcEdActivity kcedActivity()
{
    if (!activities().empty())
        return activities().back();
    return kcedCommandStack().depth() > 0 ? KcEdActivity::Working : KcEdActivity::Idle;
}

KcEdVerdict kcedVerdict(KcEdActivity activity, KcEdWish wish)
{
    switch (activity) {
    case KcEdActivity::Idle:
        return KcEdVerdict::Now;
    case KcEdActivity::Prompt:
        return wish == KcEdWish::Look ? KcEdVerdict::Now : KcEdVerdict::AfterCancel;
    case KcEdActivity::Dialog:
    case KcEdActivity::Working:
        break;
    }
    return KcEdVerdict::Refused;
}

bool kcedRequest(KcEdWish wish, std::function<void()> body)
{
    const KcEdActivity activity = kcedActivity();
    KcEdInputSource* source = KcEdEditor::instance().source();
    switch (kcedVerdict(activity, wish)) {
    case KcEdVerdict::Refused:
        kcedSay(
            activity == KcEdActivity::Dialog ? QStringLiteral("Close the dialog first.")
                                             : QStringLiteral("A command is working; wait for its end."));
        return false;
    case KcEdVerdict::Now:
        if (wish == KcEdWish::Look || !source) {
            body();
            return true;
        }
        break;
    case KcEdVerdict::AfterCancel:
        break;
    }
    // A prompt that meets a call is cancelled by it and hands it on; the loop that reads commands runs it.
    source->interrupt(KcEdCall{ std::move(body) });
    return true;
}
