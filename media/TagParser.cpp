#include "foundation/Platform.h"
