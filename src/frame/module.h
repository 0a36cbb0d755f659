// What the whole module shares: its handle for resources and the texts in the user's language.
#pragma once

#include "core/language.h"

/// Names the module to the document manager, which holds the handle of whoever shows a dialog.
const void* moduleHandle();

/// The texts of prompts and dialogs; read when the module is loaded.
CText& localisedTexts();

/// The text of a key in the user's language; empty when there is none.
inline QString localised(const QString& key)
{
    return localisedTexts().GetString(key);
}
