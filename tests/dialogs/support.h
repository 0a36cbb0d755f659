// Dialogs run by lines, on a drawing in memory.
#pragma once

#include "../ed/session.h"

#include "ed/dialogs.h"
#include "ed/message_boxes.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <gtest/gtest.h>

/// Readable in messages of failed tests.
inline std::ostream& operator<<(std::ostream& stream, const QString& text)
{
    return stream << text.toStdString();
}
