// DRAWINGSETTING: scale, text heights, units, and how labels look.

#include "ed/dialogs.h"
#include "ed/documents.h"
#include "frame/commands.h"
#include "frame/drawing_setting_dialog.h"
#include "frame/module.h"

void editDrawingSettings()
{
    const KcApResourceScope resources(moduleHandle());
    CDrawingSettingDlg dialog(kcDocManagerPtr()->mainWindow());
    kcedRunDialog(dialog);
}
