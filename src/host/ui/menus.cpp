// Menus and tool bars: the host's commands, and the landscape commands by subsystem as far as they exist.

#include "ed/activity.h"
#include "ed/command_stack.h"
#include "ed/console.h"
#include "ed/document_files.h"
#include "ed/system_variables.h"
#include "ui/canvas.h"
#include "ui/command_line.h"
#include "ui/drafting_aids.h"
#include "ui/main_window.h"
#include "widgets/theme.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QDockWidget>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QToolBar>

namespace {

struct Entry {
    const char* command; ///< null: a separator
    const char* text;
};
struct Group {
    const char* title;
    std::vector<Entry> entries;
};

// Commands that do not exist are left out, and so are menus without any.
const std::vector<Group>& hostGroups()
{
    static const std::vector<Group> groups{
        { "&Draw",
          { { "LINE", "&Line" },
            { "PLINE", "&Polyline" },
            { "CIRCLE", "&Circle" },
            { "ARC", "&Arc" },
            {},
            { "TEXT", "&Text" },
            { "MTEXT", "&Multiline text" },
            { "INSERT", "&Insert block" },
            {},
            { "HATCH", "&Hatch" },
            { "-BOUNDARY", "&Boundary" },
            { "WIPEOUT", "&Wipeout" } } },
        { "&Modify",
          { { "ERASE", "&Erase" },
            { "MOVE", "&Move" },
            { "COPY", "&Copy" },
            { "ROTATE", "&Rotate" },
            { "SCALE", "&Scale" },
            { "MIRROR", "M&irror" },
            { "OFFSET", "&Offset" },
            { "EXPLODE", "E&xplode" } } },
        { "&Tools",
          { { "LIST", "&List properties" },
            { "DIST", "&Distance" },
            { "AREA", "&Area" },
            {},
            { "LAYER", "La&yers" },
            { "UCS", "&User coordinate system" },
            { "PURGE", "&Purge" },
            { "SCRIPT", "Run &script" } } },
    };
    return groups;
}

const std::vector<Group>& landscapeGroups()
{
    static const std::vector<Group> groups{
        { "统计",
          { { "TREENUMTOTABLE", "苗木数量统计表" },
            { "UPDATETREENUMTOTABLE", "更新苗木数量统计表" },
            { "TREENUMTOEXCEL", "苗木数量输出表格" },
            {},
            { "AREATOTABLE", "地被面积统计表" },
            { "UPDATEAREATOTABLE", "更新地被面积统计表" },
            { "HATCHAREATOTABLE", "填充面积统计表" },
            { "AREATOEXCEL", "地被面积输出表格" },
            {},
            { "ANALYZE", "种植分析" },
            { "MODIFYTABLE", "编辑统计表" },
            { "COMBINETABLE", "合并统计表" },
            { "TABLETOEXCEL", "统计表输出表格" },
            { "EXPORTTOACCESS", "统计表输出数据库" } } },
        { "种植",
          { { "BLOCKARRAY", "沿线阵列" },
            { "PATHARRAY", "路径阵列" },
            { "CLOUDLINE", "云线" },
            { "CIRCLES", "规则树阵" },
            { "FOREST", "针叶林" },
            {},
            { "INSERTBLOCK", "插入图例" },
            { "REPLACEBLOCKS", "替换图例" },
            { "MODIFYBLOCKS", "批量修改图例" },
            { "TREESAMPLES", "苗木图例表" },
            { "FINDBLOCK", "查找图例" },
            { "CHECKBLOCKNEAR", "重叠检查" },
            { "BLOCKORIGIN", "图例基点" },
            { "QUICKBUILDBLOCK", "快速建块" },
            { "EXPLODEATTRIBBLOCK", "分解属性块" },
            {},
            { "BLOCKTOGRAY", "图块显示为灰色" },
            { "RECOVERBLOCK", "恢复图块颜色" },
            { "PARTIALCOPY", "局部复制" },
            { "OPTIMIZEARC", "优化弧线" },
            { "AXISNET", "轴网" } } },
        { "标注",
          { { "DIMMULTITREES", "乔木标注" },
            { "BROKENLINEDIM", "折线标注" },
            { "ARCLINEDIM", "弧线标注" },
            { "DIMCIRCLES", "树阵标注" },
            { "MODDIMLINE", "修改标注线" },
            { "UPDATEDIM", "更新标注" },
            {},
            { "DIMCLOSEDAREA", "封闭区域面积标注" },
            { "DIMCLOSEDAREA2", "动态面积标注" },
            { "DIMMULTIAREAS", "批量面积标注" },
            { "DIMHATCHAREA", "填充面积标注" },
            { "DIMLENGTH", "长度标注" },
            { "DIMNAMEREPLACE", "标注名称替换" },
            { "FINDAREADIM", "查找面积标注" },
            { "DIMENSIONALIGN", "标注对齐" },
            { "EXTRACTDIMINFO", "提取标注" } } },
        { "地被",
          { { "GENERATEZONE", "生成地被区域" },
            { "CLEARZONE", "清除地被区域" },
            { "DIMCROSSZONEAREA", "区域面积标注" },
            { "CHECKAREA", "面积检查" },
            { "QHATCH", "快速填充" },
            { "AREAHATCH", "区域填充" },
            { "ADDPATTERN", "添加填充图案" },
            { "ADJUSTHATCHDIR", "调整填充方向" },
            { "HATCHSTROKE", "填充描边" },
            { "CREATEAREAPROPERTY", "面积属性" } } },
        { "图层与文字",
          { { "LAYERMANAGER", "图层标准管理" },
            { "LAYERMAP", "图层映射" },
            { "LAYERMERGE", "图层合并" },
            { "PROPERTYMERGE", "属性合并" },
            { "DIMTOLAYER", "标注归层" },
            {},
            { "MODTEXTHEIGHT", "修改字高" },
            { "MODTEXT", "修改文字" },
            { "AUTOLEVEL", "标高编号" } } },
        { "设置", { { "DRAWINGSETTING", "绘图设置" }, { "VDHELP", "帮助" }, { "VDLABOUT", "关于" } } },
    };
    return groups;
}

} // namespace

void KcUiMainWindow::makeMenus()
{
    const auto add = [this](QMenu* menu, const QString& text, QKeySequence keys, std::function<void()> work) {
        QAction* action = menu->addAction(text);
        action->setShortcut(keys);
        QObject::connect(action, &QAction::triggered, this, std::move(work));
        return action;
    };
    const auto addGroup = [this](const Group& group) {
        QMenu* menu = nullptr;
        bool separates = false;
        for (const Entry& entry : group.entries) {
            if (!entry.command) {
                separates = menu && !menu->isEmpty();
                continue;
            }
            const QString name = QString::fromLatin1(entry.command);
            const KcEdCommand* command = kcedCommandStack().lookup(name);
            if (!command)
                continue;
            if (!menu)
                menu = menuBar()->addMenu(QString::fromUtf8(group.title));
            if (std::exchange(separates, false))
                menu->addSeparator();
            QAction* action = menu->addAction(QString::fromUtf8(entry.text));
            action->setObjectName(name);
            action->setStatusTip(name + QStringLiteral(": ") + command->purpose);
            action->setToolTip(action->statusTip());
            QObject::connect(action, &QAction::triggered, this, [this, name] { runCommand(name); });
        }
        return menu;
    };

    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    add(file, QStringLiteral("&New"), QKeySequence::New, [this] {
        kcedRequest(KcEdWish::Close, [this] {
            if (mayDiscard())
                newDrawing();
        });
    });
    add(file, QStringLiteral("&Open…"), QKeySequence::Open, [this] {
        kcedRequest(KcEdWish::Close, [this] {
            if (!mayDiscard())
                return;
            KcApDocument* document = kcDocManagerPtr()->curDocument();
            const QString path = kcedAskDrawingFile(
                QStringLiteral("Open a drawing"), true,
                document ? document->database().fileName() : QString());
            if (!path.isEmpty())
                openDrawing(path);
        });
    });
    m_recentMenu = file->addMenu(QStringLiteral("Open &recent"));
    QObject::connect(m_recentMenu, &QMenu::aboutToShow, this, [this] { fillRecentMenu(); });
    file->addSeparator();
    add(file, QStringLiteral("&Save"), QKeySequence::Save,
        [this] { kcedRequest(KcEdWish::Change, [this] { save(); }); });
    add(file, QStringLiteral("Save &as…"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S),
        [this] { kcedRequest(KcEdWish::Change, [this] { saveAs(); }); });
    if (kcedCommandStack().lookup(QStringLiteral("PLOT")))
        add(file, QStringLiteral("&Plot…"), QKeySequence::Print,
            [this] { runCommand(QStringLiteral("PLOT")); });
    fillAutosaveMenu(*file->addMenu(QStringLiteral("Copies of &unsaved work")));
    file->addSeparator();
    add(file, QStringLiteral("&Quit"), QKeySequence::Quit, [this] { close(); });

    QMenu* edit = menuBar()->addMenu(QStringLiteral("&Edit"));
    add(edit, QStringLiteral("&Undo"), QKeySequence::Undo, [this] { runCommand(QStringLiteral("U")); });
    add(edit, QStringLiteral("&Redo"), {}, [this] {
        runCommand(QStringLiteral("REDO"));
    })->setShortcuts({ Qt::CTRL | Qt::Key_Y, Qt::CTRL | Qt::SHIFT | Qt::Key_Z });
    edit->addSeparator();
    add(edit, QStringLiteral("&Erase"), QKeySequence::Delete,
        [this] { runCommand(QStringLiteral("ERASE")); });
    add(edit, QStringLiteral("Select &all"), QKeySequence::SelectAll, [this] {
        // While objects are selected it answers; else it selects before a command.
        if (kcedActivity() == KcEdActivity::Prompt || kcedActivity() == KcEdActivity::Idle)
            m_source.pushLine(QStringLiteral("ALL"));
    });

    // These look, and change nothing: they work while a prompt waits.
    QMenu* view = menuBar()->addMenu(QStringLiteral("&View"));
    add(view, QStringLiteral("Zoom &extents"), Qt::Key_Home, [this] { m_canvas->zoomExtents(); });
    add(view, QStringLiteral("Zoom &window"), {}, [this] { m_canvas->zoomWindow(); });
    add(view, QStringLiteral("Zoom &previous"), {}, [] {
        if (KcApDocument* document = kcDocManagerPtr()->curDocument())
            kcedPreviousView(*document);
    });
    add(view, QStringLiteral("Zoom &in"), QKeySequence::ZoomIn, [this] { m_canvas->zoom(1.5); });
    add(view, QStringLiteral("Zoom &out"), QKeySequence::ZoomOut, [this] { m_canvas->zoom(1.0 / 1.5); });
    view->addSeparator();
    QAction* dark = add(view, QStringLiteral("&Dark"), {}, [] {});
    dark->setCheckable(true);
    dark->setChecked(QSettings().value(QStringLiteral("window/dark"), true).toBool());
    QObject::connect(dark, &QAction::toggled, this, [this](bool on) { applyTheme(on); });
    m_aids->addTo(*view->addMenu(QStringLiteral("&Snaps and tracking")));
    add(view, QStringLiteral("Command &history"), Qt::Key_F2, [this] { growHistory(); });
    add(view, QStringLiteral("&Manual"), QKeySequence::HelpContents, [this] { help(); });
    view->addSeparator();
    QMenu* panels = createPopupMenu();
    panels->setTitle(QStringLiteral("P&anels"));
    view->addMenu(panels);

    for (const Group& group : hostGroups())
        addGroup(group);
    auto* tools = addToolBar(QStringLiteral("Landscape"));
    tools->setObjectName(QStringLiteral("landscapeTools"));
    for (const Group& group : landscapeGroups())
        if (const QMenu* menu = addGroup(group))
            for (QAction* action : menu->actions())
                tools->addAction(action);

    QStringList names;
    for (const auto& command : kcedCommandStack().commands())
        names += command->globalName;
    names.sort();
    names.removeDuplicates();
    m_commandLine->setCompletions(names);
}

void KcUiMainWindow::applyTheme(bool dark)
{
    QSettings().setValue(QStringLiteral("window/dark"), dark);
    m_canvas->setDark(dark);
    kcuiSetTheme(dark ? KcUiTheme::Dark : KcUiTheme::Light);
}

void KcUiMainWindow::fillAutosaveMenu(QMenu& menu)
{
    auto* choices = new QActionGroup(&menu);
    for (const int minutes : { 0, 1, 2, 5, 10, 20 }) {
        QAction* action = menu.addAction(
            minutes == 0 ? QStringLiteral("Never") : QStringLiteral("Every %1 min").arg(minutes));
        action->setCheckable(true);
        choices->addAction(action);
        QObject::connect(&menu, &QMenu::aboutToShow, action, [action, minutes] {
            action->setChecked(kcedVarInt(QStringLiteral("SAVETIME"), 0) == minutes);
        });
        QObject::connect(action, &QAction::triggered, action, [minutes] {
            kcedSetVar(QStringLiteral("SAVETIME"), int64_t(minutes));
        });
    }
}

// Half the window for the history, or back to some rows.
void KcUiMainWindow::growHistory()
{
    auto* dock = findChild<QDockWidget*>(QStringLiteral("commandLineDock"));
    constexpr int kRows = 8;
    const int few = fontMetrics().lineSpacing() * kRows;
    dock->show();
    resizeDocks({ dock }, { dock->height() > height() / 3 ? few : height() / 2 }, Qt::Vertical);
}

// The manual belongs to the module; it may be read while a prompt waits.
void KcUiMainWindow::help()
{
    const KcEdCommand* command = kcedCommandStack().lookup(QStringLiteral("VDHELP"));
    if (!command)
        return kcedSay(QStringLiteral("The module that brings the manual is not loaded."));
    kcedRequest(KcEdWish::Look, [command] { kcedCommandStack().run(*command); });
}
