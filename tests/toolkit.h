// Widgets need the toolkit's application object: one for all tests of a program, and gone when they have run.
// A program has it by including this in one of its sources.
#pragma once

#include <QApplication>
#include <gtest/gtest.h>

namespace toolkit {

class Application : public ::testing::Environment {
public:
    void SetUp() override { m_application = std::make_unique<QApplication>(m_count, m_arguments); }
    void TearDown() override { m_application.reset(); }

private:
    int m_count = 1;
    char m_name[8] = "test";
    char* m_arguments[2] = { m_name, nullptr };
    std::unique_ptr<QApplication> m_application;
};

inline const auto* const kApplication = ::testing::AddGlobalTestEnvironment(new Application);

} // namespace toolkit
