// Putting the window together, and documents going in and out of it.

#include "ui/main_window.h"

#include "ed/activity.h"
#include "ed/command_stack.h"
#include "ed/console.h"
#include "ed/document_files.h"
#include "ed/system_variables.h"
#include "gi/paint/plot.h"
#include "platform/message_box.h"
#include "ui/canvas.h"
#include "ui/command_line.h"
#include "ui/drafting_aids.h"
#include "ui/layer_panel.h"
#include "ui/property_panel.h"
#include "widgets/product_icon.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QScreen>
#include <QSettings>
#include <QStatusBar>
#include <QTabBar>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

QString shownName(KcApDocument& document)
{
    const QString path = document.database().fileName();
    return path.isEmpty() ? QStringLiteral("New drawing") : QFileInfo(path).fileName();
}

} // namespace

KcUiMainWindow::KcUiMainWindow()
    : m_canvas(new KcUiCanvas(m_source, this))
    , m_commandLine(new KcUiCommandLine(m_source, this))
    , m_aids(new KcUiDraftingAids(this))
    , m_tabs(new QTabBar(this))
{
    setObjectName(QStringLiteral("mainWindow"));
    setAcceptDrops(true);
    setWindowIcon(productIcon());

    auto* center = new QWidget(this);
    auto* column = new QVBoxLayout(center);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_canvas, 1);
    m_tabs->setShape(QTabBar::RoundedSouth);
    m_tabs->setObjectName(QStringLiteral("layoutTabs"));
    m_tabs->setExpanding(false);
    m_tabs->setFocusPolicy(Qt::NoFocus);
    column->addWidget(m_tabs);
    setCentralWidget(center);

    auto* dock = new QDockWidget(QStringLiteral("Command line"), this);
    dock->setObjectName(QStringLiteral("commandLineDock"));
    dock->setWidget(m_commandLine);
    dock->setAllowedAreas(Qt::TopDockWidgetArea | Qt::BottomDockWidgetArea);
    addDockWidget(Qt::BottomDockWidgetArea, dock);

    m_canvas->onKey = [this](QKeyEvent* event) { m_commandLine->type(event); };
    m_canvas->onEnter = [this] { m_commandLine->enter(); };
    m_canvas->onSnapMenu = [this](QPoint at) {
        auto* menu = new QMenu(this);
        menu->setObjectName(QStringLiteral("snapMenu"));
        menu->setAttribute(Qt::WA_DeleteOnClose);
        KcUiDraftingAids::addWords(*menu, [this](const QString& word) { m_source.pushLine(word); });
        menu->popup(at);
    };
    m_canvas->onCursor = [this](KcGePoint3d p) {
        m_coordinates->setText(QStringLiteral("%1, %2").arg(p.x, 0, 'f', 3).arg(p.y, 0, 'f', 3));
    };
    m_source.onWaiting = [this](const KcEdPrompt* prompt) { waiting(prompt); };
    m_source.onRefused = [](const QString& reason) { kcedSay(reason); };
    kcedSetOutput([this](const QString& text) { m_commandLine->append(text); });
    kcedSetErrorOutput(
        [this](const QString& text) { m_commandLine->append(QLatin1Char('\n') + text + QLatin1Char('\n')); });
    kcedSetProgressSink(&m_progress);
    kcDocManagerPtr()->setMainWindow(this);
    kcDocManagerPtr()->onCurrentChanged = [this] { showDocument(); };

    m_aids->onChanged = [this] { m_canvas->aidsChanged(); };
    makeStatusBar();
    makePanels();
    makeMenus();
    QObject::connect(m_tabs, &QTabBar::tabBarClicked, this, [this](int index) {
        if (index < 0)
            return;
        const QString name = m_tabs->tabText(index);
        kcedRequest(KcEdWish::Change, [name] {
            if (const QString sentence = kcedSetVar(QStringLiteral("CTAB"), name); !sentence.isEmpty())
                kcedSay(sentence);
        });
    });

    QSettings settings;
    // Not larger than the screen: at a scale of two that is soon reached.
    constexpr double kOfScreen = 0.9;
    resize(QSize(1280, 860).boundedTo(screen()->availableSize() * kOfScreen));
    constexpr int kCommandRows = 6;
    resizeDocks({ dock }, { fontMetrics().lineSpacing() * (kCommandRows + 2) }, Qt::Vertical);
    constexpr int kPanelCharacters = 60; // wide enough for the columns of the layers
    resizeDocks(
        { findChild<QDockWidget*>(QStringLiteral("layerPanelDock")) },
        { fontMetrics().averageCharWidth() * kPanelCharacters }, Qt::Horizontal);
    restoreGeometry(settings.value(QStringLiteral("window/geometry")).toByteArray());
    restoreState(settings.value(QStringLiteral("window/state")).toByteArray());
    applyTheme(settings.value(QStringLiteral("window/dark"), true).toBool());
    // As it shall look while the first drawing is read.
    m_aids->refresh();
    updateTitle();
    m_commandLine->setFocus();
}

KcUiMainWindow::~KcUiMainWindow()
{
    // The docks hide when they are destroyed, which is when this window has been.
    for (QDockWidget* dock : findChildren<QDockWidget*>())
        dock->disconnect(this);
    kcDocManagerPtr()->onCurrentChanged = nullptr;
    kcDocManagerPtr()->setMainWindow(nullptr);
    kcedSetProgressSink(nullptr);
    kcedSetOutput({});
    kcedSetErrorOutput({});
}

// What waits.

void KcUiMainWindow::waiting(const KcEdPrompt* prompt)
{
    // A command that tracks the cursor asks again after every move; the panels need not hear of each.
    if (prompt ? m_tracking && prompt->kind == KcEdPrompt::Kind::Track : m_tracking)
        return m_canvas->setPrompt(prompt);
    m_tracking = prompt && prompt->kind == KcEdPrompt::Kind::Track;
    m_commandLine->setPrompt(prompt);
    m_canvas->setPrompt(prompt);
    updateTitle();
    if (!prompt)
        return;
    if (std::exchange(m_closesAfterWork, false))
        QTimer::singleShot(0, this, [this] { close(); });
    if (prompt->kind == KcEdPrompt::Kind::Command && !kcedCommandStack().active()) {
        updateTabs();
        rememberRecent();
    }
    m_properties->refresh();
    m_aids->refresh();
}

void KcUiMainWindow::runCommand(const QString& name)
{
    kcedRequest(KcEdWish::Change, [this, name] { m_source.pushLine(name); });
}

// Documents.

void KcUiMainWindow::showDocument()
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    m_canvas->setDocument(document);
    m_layers->setDocument(document);
    m_properties->setDocument(document);
    updateTitle();
    updateTabs();
}

bool KcUiMainWindow::openDrawing(const QString& path)
{
    QApplication::setOverrideCursor(Qt::BusyCursor);
    const bool opened = kcedOpenDrawing(path);
    QApplication::restoreOverrideCursor();
    return opened;
}

void KcUiMainWindow::newDrawing()
{
    kcedNewDrawing();
}

bool KcUiMainWindow::save()
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    if (!document)
        return false;
    const QString path = document->database().fileName();
    return path.isEmpty() ? saveAs() : kcedSaveDrawing(*document, path);
}

bool KcUiMainWindow::saveAs()
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    if (!document)
        return false;
    const QString path
        = kcedAskDrawingFile(QStringLiteral("Save the drawing as"), false, document->database().fileName());
    return !path.isEmpty() && kcedSaveDrawing(*document, path);
}

bool KcUiMainWindow::mayDiscard()
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    return !document || kcedMayDiscard(*document);
}

void KcUiMainWindow::updateTitle()
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    const QString title
        = document ? shownName(*document) + QStringLiteral("[*] – Verdelis") : QStringLiteral("Verdelis");
    const bool modified = document && document->isModified();
    if (title != windowTitle())
        setWindowTitle(title);
    if (modified != isWindowModified())
        setWindowModified(modified);
}

void KcUiMainWindow::closeEvent(QCloseEvent* event)
{
    if (m_closing)
        return event->accept();
    // What works is stopped and what waits is cancelled first; the question comes when nothing runs any more.
    event->ignore();
    if (kcedActivity() == KcEdActivity::Working && m_progress.stop()) {
        if (!std::exchange(m_closesAfterWork, true))
            kcedSay(QStringLiteral("The window closes when the work has stopped."));
        return;
    }
    kcedRequest(KcEdWish::Close, [this] {
        if (!mayDiscard())
            return;
        m_closing = true;
        QSettings settings;
        settings.setValue(QStringLiteral("window/geometry"), saveGeometry());
        settings.setValue(QStringLiteral("window/state"), saveState());
        m_aids->save();
        m_autosave.recovery().discard();
        m_source.finish();
        close();
    });
}

// What is typed over the lists and boxes of the panels goes to the command line, as it does over the drawing:
// a blank ticks there, and letters find nothing that the panels' own fields do not find better. Those fields
// take what is typed, and let go with Escape.
bool KcUiMainWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return QMainWindow::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    if (auto* field = qobject_cast<QLineEdit*>(watched)) {
        if (key->key() != Qt::Key_Escape)
            return QMainWindow::eventFilter(watched, event);
        field->clear();
        m_commandLine->setFocus();
        return true;
    }
    const bool types = !key->text().isEmpty() && key->text().front().isPrint() && key->key() != Qt::Key_Space
        && !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    if (!types && key->key() != Qt::Key_Escape)
        return QMainWindow::eventFilter(watched, event);
    m_commandLine->type(key);
    return true;
}

void KcUiMainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void KcUiMainWindow::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.first().isLocalFile())
        return;
    const QString path = urls.first().toLocalFile();
    kcedRequest(KcEdWish::Close, [this, path] {
        if (mayDiscard())
            openDrawing(path);
    });
}

bool KcUiMainWindow::offerLostWork(const QString& drawing)
{
    const QString wanted = drawing.isEmpty() ? QString() : QFileInfo(drawing).absoluteFilePath();
    for (const KcUiRecovery::Lost& lost : m_autosave.recovery().lost()) {
        if (!wanted.isEmpty() && QFileInfo(lost.drawing).absoluteFilePath() != wanted)
            continue;
        const QString name = lost.drawing.isEmpty() ? QStringLiteral("A drawing without name") : lost.drawing;
        const auto answer = platform::MessageBoxW(
            this,
            QStringLiteral(
                "%1 had changes that were not saved when the program ended. There is a copy of %2. "
                "Open it? (No removes the copy.)")
                .arg(name, lost.time.toString(QStringLiteral("yyyy-MM-dd HH:mm"))),
            QStringLiteral("Verdelis"), platform::MessageBoxButtons::YesNoCancel,
            platform::MessageBoxIcon::Question);
        if (answer == platform::MessageBoxAnswer::Cancel)
            continue;
        if (answer == platform::MessageBoxAnswer::Yes) {
            if (!openDrawing(lost.copy))
                continue;
            KcApDocument* document = kcDocManagerPtr()->curDocument();
            document->database().setFileName(lost.drawing);
            document->markUnsaved();
            // The new copy is there before the old one goes.
            m_autosave.check(true);
            if (const auto failure = m_autosave.recovery().finished(true); failure && !failure->isEmpty()) {
                kcedSay(*failure);
                return true;
            }
            updateTitle();
        }
        KcUiRecovery::remove(lost);
        if (answer == platform::MessageBoxAnswer::Yes)
            return true;
    }
    return false;
}

// Panels and lists.

void KcUiMainWindow::makeStatusBar()
{
    m_coordinates = new QLabel(this);
    m_coordinates->setObjectName(QStringLiteral("coordinates"));
    m_coordinates->setMinimumWidth(
        fontMetrics().horizontalAdvance(QStringLiteral("000000000.000, 000000000.000")));
    statusBar()->addWidget(m_coordinates);
    for (QAction* action : { m_aids->snap(), m_aids->ortho(), m_aids->polar() }) {
        auto* button = new QToolButton(this);
        button->setObjectName(action->objectName() + QStringLiteral("Button"));
        button->setDefaultAction(action);
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::NoFocus);
        statusBar()->addPermanentWidget(button);
    }
    m_progress.addTo(*statusBar());
}

void KcUiMainWindow::makePanels()
{
    const auto addPanel = [this](const QString& title, QWidget* panel) {
        auto* dock = new QDockWidget(title, this);
        dock->setObjectName(panel->objectName() + QStringLiteral("Dock"));
        dock->setWidget(panel);
        addDockWidget(Qt::RightDockWidgetArea, dock);
        return dock;
    };
    m_layers = new KcUiLayerPanel(this);
    m_properties = new KcUiPropertyPanel(this);
    QDockWidget* layers = addPanel(QStringLiteral("Layers"), m_layers);
    QDockWidget* properties = addPanel(QStringLiteral("Properties"), m_properties);
    QObject::connect(properties, &QDockWidget::visibilityChanged, this, [this] { m_properties->refresh(); });
    for (const QWidget* panel : { static_cast<QWidget*>(m_layers), static_cast<QWidget*>(m_properties) }) {
        for (QTreeWidget* list : panel->findChildren<QTreeWidget*>())
            list->installEventFilter(this);
        for (QComboBox* box : panel->findChildren<QComboBox*>())
            box->installEventFilter(this);
        for (QLineEdit* field : panel->findChildren<QLineEdit*>())
            field->installEventFilter(this);
    }
    tabifyDockWidget(layers, properties);
    layers->raise();
}

void KcUiMainWindow::updateTabs()
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    const QStringList names = document ? kcgiLayoutNames(document->database()) : QStringList();
    QStringList shown;
    for (int i = 0; i < m_tabs->count(); ++i)
        shown += m_tabs->tabText(i);
    if (shown != names) {
        while (m_tabs->count() > 0)
            m_tabs->removeTab(0);
        for (const QString& name : names)
            m_tabs->addTab(name);
    }
    const QString current = kcedVarText(QStringLiteral("CTAB"));
    for (int i = 0; i < m_tabs->count(); ++i)
        if (m_tabs->tabText(i).compare(current, Qt::CaseInsensitive) == 0)
            m_tabs->setCurrentIndex(i);
}

void KcUiMainWindow::rememberRecent()
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    const QString path = document ? document->database().fileName() : QString();
    if (path == m_recent)
        return;
    m_recent = path;
    if (path.isEmpty())
        return;
    constexpr int kRecent = 9;
    QSettings settings;
    QStringList recent = settings.value(QStringLiteral("window/recent")).toStringList();
    const QString whole = QFileInfo(path).absoluteFilePath();
    recent.removeAll(whole);
    recent.prepend(whole);
    settings.setValue(QStringLiteral("window/recent"), recent.mid(0, kRecent));
}

void KcUiMainWindow::fillRecentMenu()
{
    m_recentMenu->clear();
    const QStringList recent = QSettings().value(QStringLiteral("window/recent")).toStringList();
    for (int i = 0; i < recent.size(); ++i) {
        const QString path = recent[i];
        QAction* action
            = m_recentMenu->addAction(QStringLiteral("&%1  %2").arg(i + 1).arg(QFileInfo(path).fileName()));
        action->setToolTip(path);
        action->setEnabled(QFileInfo::exists(path));
        QObject::connect(action, &QAction::triggered, this, [this, path] {
            kcedRequest(KcEdWish::Close, [this, path] {
                if (mayDiscard())
                    openDrawing(path);
            });
        });
    }
    if (recent.isEmpty())
        m_recentMenu->addAction(QStringLiteral("No drawing yet"))->setEnabled(false);
}
