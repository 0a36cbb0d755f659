// What is selected: its properties, and for a single entity its values, tags and links.
#pragma once

#include "db/object_id.h"

#include <QTimer>
#include <QWidget>

class CKcUiColorComboBox;
class KcApDocument;
class KcDbEntity;
class QComboBox;
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
    void fillChoices();
    void showCommon(const std::vector<KcDbObjectId>& ids);
    void addValues(const KcDbEntity& entity);
    void addLinks(const KcDbEntity& entity);
    /// Changes every selected entity that is not on a locked layer, as one undo step.
    void change(std::function<void(KcDbEntity&)> setting);
    void addValue(QTreeWidgetItem* parent, const QString& name, const QJsonValue& value);

    KcApDocument* m_document = nullptr;
    QWidget* m_common; ///< what every entity has, and can be changed here
    QComboBox* m_layer;
    CKcUiColorComboBox* m_color;
    QComboBox* m_linetype;
    QTreeWidget* m_tree;
    QTimer m_timer;
    std::vector<KcDbObjectId> m_shown;
    uint64_t m_shownAt = 0;
};
