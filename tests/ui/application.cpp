// The toolkit's application object, and settings of the user that are the tests' own.
#include "ed/host_commands.h"
#include "ed/message_boxes.h"
#include "ed/module.h"
#include "platform/app_root.h"

#include <QApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class Toolkit : public ::testing::Environment {
public:
    void SetUp() override
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("XDG_CONFIG_HOME", m_home.filePath("config").toLocal8Bit());
        qputenv("XDG_STATE_HOME", m_home.filePath("state").toLocal8Bit());
        qputenv("VERDELIS_ROOT", m_home.filePath("root").toLocal8Bit());
        m_application = std::make_unique<QApplication>(m_count, m_arguments);
        m_application->setOrganizationName(QStringLiteral("verdelis"));
        m_application->setApplicationName(QStringLiteral("verdelis"));
        m_application->setQuitOnLastWindowClosed(false);
        ASSERT_TRUE(platform::prepareAppRoot());
        kcedInstallDialogHandlers();
        kcedRegisterHostCommands();
        ASSERT_TRUE(kcrxDynamicLinker().loadModule(kcrxMainModulePath()));
    }
    void TearDown() override
    {
        kcrxDynamicLinker().unloadModule(kcrxMainModulePath());
        m_application.reset();
    }

private:
    QTemporaryDir m_home;
    int m_count = 1;
    char m_name[16] = "test_ui";
    char* m_arguments[2] = { m_name, nullptr };
    std::unique_ptr<QApplication> m_application;
};

const auto* const toolkit = ::testing::AddGlobalTestEnvironment(new Toolkit);

} // namespace
