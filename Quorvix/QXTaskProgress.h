#pragma once

// The rooms below this one report progress, too.
#include "Platform/QXTaskProgress.h"
