// Listening to the user in the midst of work without letting him into it.

#include "ui/progress_meter.h"

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QProgressBar>
#include <QStatusBar>
#include <QToolButton>

KcUiProgressMeter::~KcUiProgressMeter()
{
    clear();
}

void KcUiProgressMeter::addTo(QStatusBar& bar)
{
    m_bar = new QProgressBar(&bar);
    m_bar->setObjectName(QStringLiteral("progress"));
    m_bar->setMaximumWidth(m_bar->fontMetrics().averageCharWidth() * 40);
    m_stop = new QToolButton(&bar);
    m_stop->setObjectName(QStringLiteral("cancelProgress"));
    m_stop->setText(QStringLiteral("Stop"));
    m_stop->setToolTip(QStringLiteral("Stop what is being done (Escape)"));
    m_stop->setFocusPolicy(Qt::NoFocus);
    QObject::connect(m_stop, &QToolButton::clicked, this, [this] { m_stopped = true; });
    for (QWidget* widget : { static_cast<QWidget*>(m_bar), static_cast<QWidget*>(m_stop) }) {
        bar.addPermanentWidget(widget);
        widget->hide();
    }
}

void KcUiProgressMeter::show(const QString& label, int percent)
{
    if (!std::exchange(m_shown, true)) {
        m_stoppable = m_stopped = false;
        m_stop->setEnabled(false);
        m_bar->show();
        m_stop->show();
        qApp->installEventFilter(this);
    }
    m_bar->setFormat(label.isEmpty() ? QStringLiteral("%p%") : label + QStringLiteral(" %p%"));
    m_bar->setValue(percent);
    QApplication::processEvents(QEventLoop::ExcludeSocketNotifiers);
}

void KcUiProgressMeter::clear()
{
    if (!std::exchange(m_shown, false))
        return;
    qApp->removeEventFilter(this);
    m_bar->hide();
    m_stop->hide();
}

bool KcUiProgressMeter::stop()
{
    m_stopped |= m_shown;
    return m_shown;
}

bool KcUiProgressMeter::isCancelled()
{
    if (!std::exchange(m_stoppable, true))
        m_stop->setEnabled(true);
    return m_stopped;
}

bool KcUiProgressMeter::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
        if (m_stoppable && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
            m_stopped = true;
            event->accept();
            return true;
        }
        [[fallthrough]];
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::Wheel:
    case QEvent::Close: {
        const auto* widget = qobject_cast<QWidget*>(watched);
        const bool closesItself = event->type() == QEvent::Close && !event->spontaneous();
        if (!widget || closesItself || !qobject_cast<QDialog*>(widget->window()))
            return false;
        event->ignore();
        return true;
    }
    default:
        return false;
    }
}
