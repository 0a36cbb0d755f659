// Mouse, keys and clipboard as the user's hands have them: keys go to whatever has the focus.
#pragma once

#include "support.h"

#include "controls/grid_parts.h"

#include <QClipboard>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QToolTip>

namespace hand {

inline void key(Qt::Key code, Qt::KeyboardModifiers modifiers = {})
{
    ASSERT_TRUE(QApplication::focusWidget());
    QTest::keyClick(QApplication::focusWidget(), code, modifiers);
}

inline void type(const QString& text)
{
    ASSERT_TRUE(QApplication::focusWidget());
    QTest::keyClicks(QApplication::focusWidget(), text);
}

/// As an input method gives it.
inline void compose(const QString& text)
{
    ASSERT_TRUE(QApplication::focusWidget());
    QInputMethodEvent event;
    event.setCommitString(text);
    QApplication::sendEvent(QApplication::focusWidget(), &event);
}

/// The header, the row selector or the corner of a grid.
template <class Part> Part& part(const CSGrid& grid)
{
    for (QWidget* child : grid.findChildren<QWidget*>())
        if (auto* found = dynamic_cast<Part*>(child))
            return *found;
    throw std::logic_error("The grid has no such part.");
}

/// Presses at the first place and lets go at the last one, the button held between.
inline void drag(QWidget& widget, const std::vector<QPoint>& way)
{
    QTest::mousePress(&widget, Qt::LeftButton, {}, way.front());
    for (size_t i = 1; i < way.size(); ++i) {
        QMouseEvent move(
            QEvent::MouseMove, way[i], widget.mapToGlobal(way[i]), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(&widget, &move);
    }
    QTest::mouseRelease(&widget, Qt::LeftButton, {}, way.back());
}

/// As the second button or the menu key asks for one.
inline void menu(QWidget& widget, QPoint at)
{
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, widget.mapToGlobal(at));
    QApplication::sendEvent(&widget, &event);
}

/// What a tooltip there says; empty for none.
inline QString tip(QWidget& widget, QPoint at)
{
    QToolTip::hideText(); // a little later
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
    QHelpEvent event(QEvent::ToolTip, at, widget.mapToGlobal(at));
    QApplication::sendEvent(&widget, &event);
    return QToolTip::isVisible() ? QToolTip::text() : QString();
}

/// Towards the user (negative) or away, by notches.
inline void wheel(QWidget& widget, int notches, Qt::KeyboardModifiers modifiers = {})
{
    const QPointF at(10, 10);
    QWheelEvent event(
        at, widget.mapToGlobal(at), {}, { 0, notches * 120 }, Qt::NoButton, modifiers, Qt::NoScrollPhase,
        false);
    QApplication::sendEvent(&widget, &event);
}

} // namespace hand
