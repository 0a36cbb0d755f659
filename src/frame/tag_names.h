// The product's tags in the user's words.
#pragma once

/// Tells the host what the tags and records that the module stores with entities are called, and what their
/// values stand for. The language file must be loaded.
void nameTags();
