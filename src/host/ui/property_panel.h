// What is selected: its properties, and for a single entity its values, tags and links.
#pragma once

#include "db/object_id.h"

#include <QTimer>
#include <QWidget>

class KcApDocument;
class QJsonValue;
class QTreeWidget;
class QTreeWidgetItem;

class KcUiPropertyPanel : public QWidget {
public:
    explicit KcUiPropertyPanel(QWidget* parent = nullptr);
    void setDocument(KcApDocument* document);
    /// Looks again at what is selected.
    void refresh();

private:
    void fill();
    void addValue(QTreeWidgetItem* parent, const QString& name, const QJsonValue& value);

    KcApDocument* m_document = nullptr;
    QTreeWidget* m_tree;
    QTimer m_timer;
    std::vector<KcDbObjectId> m_shown;
    uint64_t m_shownAt = 0;
};
