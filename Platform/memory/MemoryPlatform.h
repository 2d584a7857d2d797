#pragma once

#include "Platform/Platform.h"
#include "Platform/memory/MemoryPasteboard.h"
#include "Platform/memory/MemoryUserDefaults.h"

#include <QHash>
