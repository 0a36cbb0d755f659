// Opening modules with the dynamic linker and keeping account of them.

#include "ed/module.h"

#include <QFile>
#include <QFileInfo>

#include <dlfcn.h>
#include <exception>

namespace {

using EntryPoint = int32_t (*)(int32_t, void*);
using GetApiVersion = int32_t (*)();

platform::Status failure(const QString& path, const QString& cause)
{
    return { QStringLiteral("The module %1 cannot be used: %2.").arg(path, cause) };
}

QString callEntryPoint(EntryPoint entry, int32_t message, void* application)
{
    try {
        const int32_t result = entry(message, application);
        return result == 0 ? QString() : QStringLiteral("its entry point returned %1").arg(result);
    } catch (const std::exception& error) {
        return QStringLiteral("its entry point failed: ") + QString::fromUtf8(error.what());
    } catch (...) {
        return QStringLiteral("its entry point failed");
    }
}

} // namespace

struct KcRxDynamicLinker::Module {
    QString path;
    void* library = nullptr;
    EntryPoint entry = nullptr;
    bool unlocked = false;
    bool mdiAware = false;
};

const KcRxClass* KcRxDynamicLinker::desc()
{
    static const KcRxClass description("KcRxDynamicLinker", KcRxObject::desc());
    return &description;
}

KcRxDynamicLinker& kcrxDynamicLinker()
{
    static KcRxDynamicLinker linker;
    return linker;
}

KcRxRegistry* kcrxSysRegistry()
{
    static KcRxRegistry registry;
    return &registry;
}

KcRxObject* KcRxRegistry::at(const QString& key) const
{
    if (key == QLatin1String("DynamicLinker"))
        return &kcrxDynamicLinker();
    if (key == QLatin1String("KCAD_REGISTERED_COMMANDS"))
        return &kcedCommandStack();
    return nullptr;
}

QString kcrxMainModulePath()
{
    Dl_info here{};
    dladdr(reinterpret_cast<const void*>(&kcrxMainModulePath), &here);
    return QFileInfo(QFile::decodeName(here.dli_fname)).canonicalPath() + QStringLiteral("/vdlMain.krx");
}

KcRxDynamicLinker::Module* KcRxDynamicLinker::find(KcRxAppId application) const
{
    for (const auto& module : m_modules)
        if (module.get() == application)
            return module.get();
    return nullptr;
}

KcRxDynamicLinker::Module* KcRxDynamicLinker::find(const QString& path) const
{
    const QString wanted = QFileInfo(path).absoluteFilePath();
    for (const auto& module : m_modules)
        if (module->path == wanted)
            return module.get();
    return nullptr;
}

platform::Status KcRxDynamicLinker::loadModule(const QString& path)
{
    const QString file = QFileInfo(path).absoluteFilePath();
    if (!QFileInfo::exists(file))
        return failure(file, QStringLiteral("there is no such file"));

    auto module = std::make_shared<Module>();
    module->path = file;
    module->library = dlopen(QFile::encodeName(file).constData(), RTLD_NOW | RTLD_LOCAL);
    if (!module->library)
        return failure(file, QString::fromLocal8Bit(dlerror()));
    const auto giveUp = [&](const QString& cause) {
        dlclose(module->library);
        return failure(file, cause);
    };
    module->entry = reinterpret_cast<EntryPoint>(dlsym(module->library, "kcrxEntryPoint"));
    const auto version = reinterpret_cast<GetApiVersion>(dlsym(module->library, "kcrxGetApiVersion"));
    if (!module->entry || !version)
        return giveUp(QStringLiteral("it does not export kcrxEntryPoint and kcrxGetApiVersion"));
    if (version() != kcrxApiVersion)
        return giveUp(QStringLiteral("it is built for interface version %1, this program has %2")
                          .arg(version())
                          .arg(kcrxApiVersion));

    m_modules.push_back(module);
    if (const QString cause = callEntryPoint(module->entry, kcrxLoadModule, module.get()); !cause.isEmpty()) {
        callEntryPoint(module->entry, kcrxUnloadModule, module.get());
        std::erase(m_modules, module);
        return giveUp(cause);
    }
    return {};
}

platform::Status KcRxDynamicLinker::unloadModule(const QString& path)
{
    Module* found = find(path);
    if (!found)
        return failure(path, QStringLiteral("it is not loaded"));
    if (!found->unlocked)
        return failure(path, QStringLiteral("it does not let itself be unloaded"));
    if (kcedCommandStack().depth() > 0)
        return failure(path, QStringLiteral("a command is running"));
    const QString cause = callEntryPoint(found->entry, kcrxUnloadModule, found);
    void* library = found->library;
    std::erase_if(m_modules, [&](const auto& module) { return module.get() == found; });
    dlclose(library);
    return cause.isEmpty() ? platform::Status() : failure(path, cause);
}

bool KcRxDynamicLinker::isLoaded(const QString& path) const
{
    return find(path) != nullptr;
}

bool KcRxDynamicLinker::unlockApplication(KcRxAppId application)
{
    Module* module = find(application);
    if (module)
        module->unlocked = true;
    return module != nullptr;
}

bool KcRxDynamicLinker::registerAppMDIAware(KcRxAppId application)
{
    Module* module = find(application);
    if (module)
        module->mdiAware = true;
    return module != nullptr;
}

bool KcRxDynamicLinker::isMDIAware(const QString& path) const
{
    const Module* module = find(path);
    return module && module->mdiAware;
}
