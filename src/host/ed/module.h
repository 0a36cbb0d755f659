// Modules: libraries that the program opens while it runs and that bring commands. What a module must export,
// and the registry through which it reaches the program.
#pragma once

#include "ed/command_stack.h"
#include "platform/result.h"

/// Names a loaded module to the services that it calls while it is loaded.
using KcRxAppId = void*;

/// Messages of `kcrxEntryPoint`.
enum KcRxMessage : int { kcrxLoadModule = 1, kcrxUnloadModule = 2 };

/// The interface version that modules are built for; `kcrxGetApiVersion` of a module must return it.
inline constexpr int32_t kcrxApiVersion = 132251688;

// A module exports:
//     extern "C" int32_t kcrxEntryPoint(int32_t message, void* applicationId);   0: done
//     extern "C" int32_t kcrxGetApiVersion();

/// Found in the registry as "DynamicLinker".
class KcRxDynamicLinker : public KcRxObject {
public:
    static const KcRxClass* desc();
    const KcRxClass* isA() const override { return desc(); }

    /// Opens a module and calls its entry point with the load message. The error names the file and the
    /// cause; nothing of the module stays behind then.
    platform::Status loadModule(const QString& path);
    /// Calls the entry point with the unload message. Fails for a module that is not loaded or stays locked.
    platform::Status unloadModule(const QString& path);
    bool isLoaded(const QString& path) const;

    /// Called by a module while it loads: it may be unloaded later. False for an unknown application.
    bool unlockApplication(KcRxAppId application);
    /// Called by a module while it loads: it copes with several open drawings.
    bool registerAppMDIAware(KcRxAppId application);
    bool isMDIAware(const QString& path) const;

private:
    struct Module;
    Module* find(KcRxAppId application) const;
    Module* find(const QString& path) const;

    std::vector<std::shared_ptr<Module>> m_modules;
};

/// What modules find by name: "DynamicLinker", "KCAD_REGISTERED_COMMANDS".
class KcRxRegistry {
public:
    /// Null for an unknown key.
    KcRxObject* at(const QString& key) const;
};

KcRxRegistry* kcrxSysRegistry();
KcRxDynamicLinker& kcrxDynamicLinker();
/// The module of the program, beside the library of the host.
QString kcrxMainModulePath();
