// The module as the host sees it: the two functions that it exports, and what happens when it is loaded and
// unloaded.

#include "frame/module.h"

#include "ed/documents.h"
#include "ed/module.h"
#include "frame/command_table.h"
#include "frame/tag_names.h"
#include "platform/message_box.h"

namespace {

KcRxDynamicLinker* dynamicLinker()
{
    return dynamic_cast<KcRxDynamicLinker*>(kcrxSysRegistry()->at(QStringLiteral("DynamicLinker")));
}

void initialise(KcRxAppId application)
{
    if (auto* linker = dynamicLinker()) {
        linker->unlockApplication(application);
        linker->registerAppMDIAware(application);
    }
    const KcApResourceScope resources(moduleHandle());
    registerCommands();
    if (!localisedTexts().Initialize(QStringLiteral("_zh")))
        platform::MessageBoxW(
            nullptr, QStringLiteral("No language file found. Error loading Verdelis Software."),
            QStringLiteral("Verdelis Error"), platform::MessageBoxButtons::Ok,
            platform::MessageBoxIcon::Warning);
    else
        nameTags();
}

void unload()
{
    KcRxObject* entry = kcrxSysRegistry()->at(QStringLiteral("KCAD_REGISTERED_COMMANDS"));
    if (entry && entry->isA()->isDerivedFrom(KcEdCommandStack::desc()))
        static_cast<KcEdCommandStack*>(entry)->removeGroup(commandGroup);
}

} // namespace

const void* moduleHandle()
{
    static const char handle = 0;
    return &handle;
}

CText& localisedTexts()
{
    static CText texts;
    return texts;
}

extern "C" {

__attribute__((visibility("default"))) int32_t kcrxEntryPoint(int32_t message, void* applicationId)
{
    if (message == kcrxLoadModule)
        initialise(applicationId);
    else if (message == kcrxUnloadModule)
        unload();
    return 0;
}

__attribute__((visibility("default"))) int32_t kcrxGetApiVersion()
{
    return kcrxApiVersion;
}
}
