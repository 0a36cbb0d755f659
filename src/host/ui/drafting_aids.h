// What helps the cursor to the right place, as the user switches it: object snaps, ortho, tracking lines.
// Keys F3, F8 and F10, buttons in the status bar, a menu of the snap modes.
#pragma once

#include <QObject>

#include <vector>

class QAction;
class QMenu;

class KcUiDraftingAids : public QObject {
public:
    explicit KcUiDraftingAids(QObject* parent);
    /// Remembers what is switched on for the next start.
    void save() const;
    /// Shows what the system variables say now.
    void refresh();

    QAction* snap() const { return m_snap; }
    QAction* ortho() const { return m_ortho; }
    QAction* polar() const { return m_polar; }
    /// Adds the modes of the object snaps and the steps of the tracking lines to a menu.
    void addTo(QMenu& menu);
    /// Fills a menu with the snaps that may be said for the next point only; `say` gets the word.
    static void addWords(QMenu& menu, std::function<void(const QString&)> say);
    /// Told when something was switched.
    std::function<void()> onChanged;

private:
    void set(const char* variable, int value);
    void setSnapModes(int modes);

    QAction *m_snap, *m_ortho, *m_polar;
    std::vector<std::pair<QAction*, int>> m_modes;
    std::vector<std::pair<QAction*, double>> m_steps;
};
