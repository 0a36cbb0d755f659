// The window: drawing area, command line, menus, panels, status bar.
#pragma once

#include "ed/documents.h"
#include "ui/autosave.h"
#include "ui/progress_meter.h"
#include "ui/window_source.h"

#include <QMainWindow>

class KcUiCanvas;
class KcUiCommandLine;
class KcUiDraftingAids;
class KcUiLayerPanel;
class KcUiPropertyPanel;
class QLabel;
class QTabBar;

class KcUiMainWindow : public QMainWindow {
public:
    KcUiMainWindow();
    ~KcUiMainWindow() override;

    KcUiWindowSource& source() { return m_source; }
    KcUiCanvas& canvas() { return *m_canvas; }

    /// Opens a drawing in the place of the current one; see ed/document_files.h for this and what follows.
    bool openDrawing(const QString& path);
    /// Begins an empty drawing in the place of the current one.
    void newDrawing();
    /// Saves under the drawing's own name, or asks for one. False when that failed or was cancelled.
    bool save();
    bool saveAs();

    /// Offers what a program that ended badly has left: of that drawing, or of any when it is empty. True
    /// when the user took a copy; it is the current drawing then, unsaved.
    bool offerLostWork(const QString& drawing);
    KcUiAutosave& autosave() { return m_autosave; }

    /// Asks whether changes shall be saved, where there are any; true when the drawing may go.
    bool mayDiscard();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void makeMenus();
    void makePanels();
    void makeStatusBar();
    void waiting(const KcEdPrompt* prompt);
    void runCommand(const QString& name);
    void showDocument();
    void updateTitle();
    void rememberRecent();
    void fillRecentMenu();
    void fillAutosaveMenu(QMenu& menu);
    void growHistory();
    void help();
    void applyTheme(bool dark);
    void updateTabs();

    KcUiWindowSource m_source;
    KcUiCanvas* m_canvas;
    KcUiCommandLine* m_commandLine;
    KcUiLayerPanel* m_layers = nullptr;
    KcUiPropertyPanel* m_properties = nullptr;
    KcUiDraftingAids* m_aids;
    KcUiAutosave m_autosave;
    QLabel* m_coordinates;
    KcUiProgressMeter m_progress;
    QTabBar* m_tabs;
    QMenu* m_recentMenu = nullptr;
    QString m_recent; ///< the drawing remembered last
    bool m_closing = false;
    bool m_closesAfterWork = false; ///< the user closed the window while something was done
    bool m_tracking = false; ///< the prompt shown last follows the cursor
};
