// The application object of the tests of this room.
#include "toolkit.h"
