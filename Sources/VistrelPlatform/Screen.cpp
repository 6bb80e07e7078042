#include "VistrelPlatform/Screen.h"
