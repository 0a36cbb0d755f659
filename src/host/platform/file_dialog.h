// Asking for files. Who runs the session (window or script) decides how the user is asked; the caller cannot
// tell.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class QWidget;

namespace platform {

struct FileRequest {
    QWidget* owner = nullptr; ///< null: the main window, if there is one
    QString caption;
    bool opens = true; ///< false: a name to write to; one that is there is asked about
    bool several = false; ///< when opening, more than one file may be chosen
    QString filter; ///< "Drawings (*.dxf)|*.dxf|All files|*.*||"
    QString defaultExtension; ///< without dot; added to a name to write to that has none
    QString folder; ///< where to begin; empty: the current one
    QString name; ///< suggested
};

/// One row of a filter.
struct FileFilter {
    QString title;
    QStringList patterns; ///< "*.dxf"
};
/// The rows of a filter text; "*.*" becomes "*".
std::vector<FileFilter> fileFilters(const QString& filter);

using FileDialogHandler = std::function<QStringList(const FileRequest&)>;

/// Installs who asks for files and returns who did before. Without one nobody chooses anything.
FileDialogHandler setFileDialogHandler(FileDialogHandler handler);

/// The paths that the user chose; empty when nothing was.
QStringList askForFiles(const FileRequest& request);
/// The first of them; empty when nothing was chosen.
QString askForFile(const FileRequest& request);

} // namespace platform
