// The bases stand in the host, so that one that a module inherits is known here.

#include "ed/scriptable.h"

KcEdScriptableGrid::~KcEdScriptableGrid() = default;
KcEdScriptableTree::~KcEdScriptableTree() = default;
KcEdScriptableColours::~KcEdScriptableColours() = default;
