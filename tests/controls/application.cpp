// Widgets need the toolkit's application object; one for all tests of the room.
#include <QApplication>
#include <gtest/gtest.h>

namespace {

class Toolkit : public ::testing::Environment {
public:
    void SetUp() override { m_application = std::make_unique<QApplication>(m_count, m_arguments); }
    void TearDown() override { m_application.reset(); }

private:
    int m_count = 1;
    char m_name[16] = "test_controls";
    char* m_arguments[2] = { m_name, nullptr };
    std::unique_ptr<QApplication> m_application;
};

const auto* const toolkit = ::testing::AddGlobalTestEnvironment(new Toolkit);

} // namespace
