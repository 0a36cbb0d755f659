// The layers of the drawing: on, frozen, locked, colour, current.
#pragma once

#include "db/database.h"

#include <QTimer>
#include <QWidget>

class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;
class KcApDocument;

class KcUiLayerPanel : public QWidget, public KcDbListener {
public:
    explicit KcUiLayerPanel(QWidget* parent = nullptr);
    ~KcUiLayerPanel() override;
    void setDocument(KcApDocument* document);

    // KcDbListener
    void objectCreated(const KcDbObject& object) override { changed(object); }
    void objectModified(const KcDbObject& object) override { changed(object); }
    void objectErased(const KcDbObject& object, bool) override { changed(object); }

protected:
    void showEvent(QShowEvent* event) override;

private:
    enum Column { kName, kOn, kFrozen, kLocked, kColor, kLinetype, kColumns };
    void changed(const KcDbObject& object);
    void fill();
    void applyFilter();
    void changeColor(const QString& name);
    void itemChanged(QTreeWidgetItem* item, int column);
    void itemActivated(QTreeWidgetItem* item, int column);

    KcApDocument* m_document = nullptr;
    QLineEdit* m_filter;
    QTreeWidget* m_list;
    QTimer m_timer;
    bool m_filling = false;
};
