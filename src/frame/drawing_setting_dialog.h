// The dialog of DRAWINGSETTING. Its controls carry the names of the settings that they show.
#pragma once

#include "frame/drawing_settings.h"

#include <QDialog>

class CGsPreviewCtrl;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLineEdit;

class CDrawingSettingDlg : public QDialog {
public:
    explicit CDrawingSettingDlg(QWidget* parent = nullptr);
    ~CDrawingSettingDlg() override;

    void accept() override;

private:
    struct Controls;

    QWidget* makeCommonGroup();
    QWidget* makeTreeGroup();
    QWidget* makeAreaGroup();
    void watch();
    void show(const DrawingSettings& settings);
    DrawingSettings values() const;
    void refuse(QLineEdit& field, const QString& before, const QString& message, const QString& caption);
    void drawPreview();

    std::unique_ptr<Controls> m_controls;
    bool m_isLoaded = false; ///< false: there is no settings file, and OK saves nothing
    bool m_refused = false; ///< an entry was refused by the key or click that is being handled
    QString m_scale, m_textHeight, m_tableTextHeight, m_areaDigits; ///< as they were accepted last
};
