// The About box.
#pragma once

#include <QDialog>

class CAboutDlg : public QDialog {
public:
    explicit CAboutDlg(QWidget* parent = nullptr);
};
