// A small picture of a drawing, a block or some entities inside a dialog, fitted to the space that it gets.
#pragma once

#include "db/database.h"
#include "db/entity.h"

#include <QWidget>

#include <memory>
#include <vector>

class CGsPreviewCtrl : public QWidget {
public:
    explicit CGsPreviewCtrl(QWidget* parent = nullptr);
    ~CGsPreviewCtrl() override;

    /// Shows model space of a drawing, which is kept. Null: nothing.
    void setDatabase(std::shared_ptr<KcDbDatabase> database);
    /// Shows a block of a drawing that stays open while it is shown. A null id: nothing.
    void setDefinition(KcDbObjectId block);
    /// Shows entities that are in no drawing; what they refer to is looked up in `database`.
    void setEntities(KcDbDatabase& database, std::vector<std::unique_ptr<KcDbEntity>> entities);
    void clear();

    QSize sizeHint() const override { return { 320, 160 }; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    KcGeExtents3d extents() const;

    std::shared_ptr<KcDbDatabase> m_kept;
    KcDbDatabase* m_database = nullptr;
    KcDbObjectId m_block;
    std::vector<std::unique_ptr<KcDbEntity>> m_entities;
};
