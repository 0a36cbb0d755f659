// A user at the window: does one thing after the other, each when the window waits for him.
#pragma once

#include "db/block_table_record.h"
#include "db/curves.h"
#include "db/tables.h"
#include "ed/command_stack.h"
#include "ed/editor.h"
#include "ed/jig.h"
#include "ed/system_variables.h"
#include "ui/canvas.h"
#include "ui/main_window.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QtTest/QTest>
#include <gtest/gtest.h>

inline std::ostream& operator<<(std::ostream& stream, const QString& text)
{
    return stream << text.toStdString();
}

namespace ui_test {

/// A window on an empty drawing, 100 units high about (50,50), without snaps.
class Hand : public ::testing::Test {
protected:
    Hand()
    {
        kcedSetVar(QStringLiteral("OSMODE"), int64_t(0));
        kcedSetVar(QStringLiteral("POLARMODE"), int64_t(0));
        window.resize(900, 700);
        window.show();
        window.newDrawing();
        kcedSetView(document(), { { 50, 50 }, 100 });
    }
    ~Hand() override
    {
        kcedCommandStack().removeGroup(QStringLiteral("TEST"));
        if (KcApDocument* open = kcDocManagerPtr()->curDocument())
            kcDocManagerPtr()->close(*open);
    }

    KcApDocument& document() { return *kcDocManagerPtr()->curDocument(); }
    KcDbDatabase& database() { return document().database(); }
    KcUiCanvas& canvas() { return window.canvas(); }
    QLineEdit& field() { return *window.findChild<QLineEdit*>(QStringLiteral("field")); }
    static QAction& action(QWidget& window, const QString& text)
    {
        for (QAction* action : window.findChildren<QAction*>())
            if (action->objectName() == text || action->text().remove(QLatin1Char('&')) == text)
                return *action;
        ADD_FAILURE() << "no action " << text;
        static QAction none;
        return none;
    }

    KcDbObjectId add(std::unique_ptr<KcDbEntity> entity)
    {
        const KcApUndoStep step(database(), QStringLiteral("TEST"));
        entity->setLayer(database().currentLayer());
        return KcDbRead<KcDbBlockTableRecord>(database().currentSpace())->appendEntity(std::move(entity));
    }
    KcDbObjectId addLine(double x1, double y1, double x2, double y2)
    {
        return add(std::make_unique<KcDbLine>(KcGePoint3d{ x1, y1, 0 }, KcGePoint3d{ x2, y2, 0 }));
    }
    /// What the command line shows.
    QString history() { return window.findChild<QPlainTextEdit*>(QStringLiteral("history"))->toPlainText(); }
    /// A command of this test.
    void command(std::function<void()> body)
    {
        kcedCommandStack().addCommand(
            QStringLiteral("TEST"), QStringLiteral("TESTED"), QStringLiteral("TESTED"), 0, std::move(body));
    }

    // What a user does; each is done at once.

    QPoint pixel(double x, double y) { return canvas().mapFromGlobal(canvas().toScreen({ x, y })); }
    void type(const QString& text) { QTest::keyClicks(&field(), text); }
    void press(Qt::Key key) { QTest::keyClick(&canvas(), key); }
    void move(double x, double y) { QTest::mouseMove(&canvas(), pixel(x, y)); }
    void click(double x, double y, Qt::KeyboardModifiers keys = {})
    {
        move(x, y);
        QTest::mouseClick(&canvas(), Qt::LeftButton, keys, pixel(x, y));
    }
    void drag(
        double x1, double y1, double x2, double y2, Qt::MouseButton button = Qt::LeftButton,
        Qt::KeyboardModifiers keys = {})
    {
        const QPoint from = pixel(x1, y1), to = pixel(x2, y2);
        QTest::mouseMove(&canvas(), from);
        QTest::mousePress(&canvas(), button, keys, from);
        QTest::mouseMove(&canvas(), (from + to) / 2);
        QTest::mouseMove(&canvas(), to);
        m_release = [this, button, keys, to] { QTest::mouseRelease(&canvas(), button, keys, to); };
    }
    void answer(QMessageBox::StandardButton button)
    {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_TRUE(box) << "no question";
        box->button(button)->click();
    }

    /// Does the steps, each when a prompt or a dialog waits, and ends the conversation.
    void run(std::vector<std::function<void()>> steps)
    {
        size_t next = 0;
        QElapsedTimer clock;
        clock.start();
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &window, [&] {
            constexpr int kPatience = 60'000;
            if (clock.elapsed() > kPatience) {
                ADD_FAILURE() << "step " << next << " was never asked for";
                if (QWidget* dialog = QApplication::activeModalWidget())
                    dialog->close();
                return window.source().finish();
            }
            if (!window.source().waiting() && !QApplication::activeModalWidget())
                return;
            if (m_release)
                return std::exchange(m_release, {})();
            if (next < steps.size())
                return steps[next++]();
            window.source().finish();
        });
        timer.start(1);
        const KcEdSourceScope source(window.source());
        KcEdEditor::instance().run();
        EXPECT_EQ(next, steps.size());
    }

    KcUiMainWindow window;

private:
    std::function<void()>
        m_release; ///< of the button that drags; the window may have to answer the press first
};

/// A user who looks at the window again and again, whatever it does.
class Onlooker {
public:
    explicit Onlooker(std::function<void()> looks)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, std::move(looks));
        m_timer.start(0);
    }

private:
    QTimer m_timer;
};

} // namespace ui_test
